#!/usr/bin/env bash
# Builds everything with clang in build-clang/, with warnings as errors, for the checks that read the compiler's commands.
set -euo pipefail
cd "$(dirname "$0")/.."

. scripts/packages.sh
install_missing "${build_packages[@]}" clang
CXX=clang++ cmake -S . -B build-clang -G Ninja -DBUILD_TESTING=ON -DCMAKE_COMPILE_WARNING_AS_ERROR=ON \
    -DCMAKE_EXPORT_COMPILE_COMMANDS=ON
cmake --build build-clang
