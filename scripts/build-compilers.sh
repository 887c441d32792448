#!/usr/bin/env bash
# Builds the product of the last commit with the oldest and the newest compilers that it is kept to, each in a bare Debian
# that has it. A warning fails the build. Arguments name some of the compilers, by their packages.
set -euo pipefail
cd "$(dirname "$0")/.."

# The compilers' packages, by Debian's release.
declare -A compilers=(
    [bullseye]='g++-9 g++-10 clang-11'
    [bookworm]='g++-12 clang-14'
    [trixie]='g++-14 clang-19'
)

. scripts/packages.sh

# build_with COMPILER
build_with() {
    local build=build-$1
    # By the flag: the CMake of Debian 11 does not know what makes warnings errors.
    CXX=${1/clang/clang++} cmake -S . -B "$build" -G Ninja -DBUILD_TESTING=OFF -DCMAKE_CXX_FLAGS=-Werror >/dev/null
    cmake --build "$build"
}

if [ "${1-}" = --inside ]; then
    shift
    install_missing "${build_packages[@]}" "$@"
    for compiler in "$@"; do
        build_with "$compiler"
        echo "compiler: $(${compiler/clang/clang++} --version | head -n 1): no warning"
    done
    exit
fi

wanted=("$@")
# is_wanted COMPILER
is_wanted() { [ ${#wanted[@]} -eq 0 ] || [[ " ${wanted[*]} " == *" $1 "* ]]; }

for release in bullseye bookworm trixie; do
    chosen=()
    for compiler in ${compilers[$release]}; do
        ! is_wanted "$compiler" || chosen+=("$compiler")
    done
    [ ${#chosen[@]} -eq 0 ] ||
        scripts/root.sh "$release" "$(dpkg --print-architecture)" scripts/build-compilers.sh --inside "${chosen[@]}"
done
