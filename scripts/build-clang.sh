#!/usr/bin/env bash
# Builds everything with clang in build-clang/, with warnings as errors, for the checks that read the compiler's commands.
# Nothing of it is run: it is built without optimisation and without what a debugger reads.
set -euo pipefail
cd "$(dirname "$0")/.."

. scripts/packages.sh
install_missing "${build_packages[@]}" clang
CXX=clang++ cmake -S . -B build-clang -G Ninja -DBUILD_TESTING=ON -DCMAKE_COMPILE_WARNING_AS_ERROR=ON \
    -DCMAKE_EXPORT_COMPILE_COMMANDS=ON -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=
cmake --build build-clang
