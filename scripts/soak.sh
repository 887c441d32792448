#!/usr/bin/env bash
# Drives the program with ten clients for a while and fails when its memory, file descriptors or threads grow. The
# figures go to build/soak/soak.txt, their picture to build/soak/soak.png.
#
#   scripts/soak.sh MINUTES
set -euo pipefail
cd "$(dirname "$0")/.."

if [ $# -ne 1 ]; then
    echo "usage: scripts/soak.sh MINUTES" >&2
    exit 2
fi
. scripts/packages.sh
install_missing "${build_packages[@]}" "${desktop_packages[@]}" "${test_packages[@]}" "${soak_packages[@]}"
build=$PWD/${MVSIGNPAD_BUILD:-build}
cmake -S . -B "$build" -G Ninja -DBUILD_TESTING=ON >/dev/null
cmake --build "$build" --target soak mvsignpadsdk_wssvr
mkdir -p "$build/soak"
status=0
tests/desktop/isolated.sh "$PWD" "$build" "$build/tests/soak/soak" "$1" "$build/soak/soak.txt" || status=$?
gnuplot -c tests/soak/soak.gnuplot "$build/soak/soak.txt" "$build/soak/soak.png"
exit "$status"
