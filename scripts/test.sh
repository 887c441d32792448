#!/usr/bin/env bash
# Builds everything with warnings as errors and runs every test.
#
#   scripts/test.sh               on this machine, in build/
#   scripts/test.sh --arch arm64  cross-built and emulated, in build-arm64/
set -euo pipefail
cd "$(dirname "$0")/.."

case "$*" in
    "") ;;
    "--arch arm64") exec scripts/test-arm64.sh ;;
    *)
        echo "usage: scripts/test.sh [--arch arm64]" >&2
        exit 2
        ;;
esac

. scripts/packages.sh
. scripts/run-tests.sh
install_missing "${build_packages[@]}" "${desktop_packages[@]}" "${test_packages[@]}" "${packaging_packages[@]}" \
    "${packaging_check_packages[@]}"
cmake -S . -B build -G Ninja -DBUILD_TESTING=ON -DCMAKE_COMPILE_WARNING_AS_ERROR=ON
cmake --build build
# Many tests wait most of their time. A real browser on a real desktop may miss its time on a busy machine: what fails is
# run once more, and named at the end.
run_tests build --parallel $((2 * $(nproc)))
