#!/usr/bin/env bash
# Builds the Debian packages of the program and of the virtual pad for amd64 and arm64, checks them with lintian and
# leaves the four of them in dist/. Arguments name the architectures to build for, if not both.
set -euo pipefail
cd "$(dirname "$0")/.."

. scripts/packages.sh

# build_packages_for ARCHITECTURE: leaves its two packages in dist/.
build_packages_for() {
    local build="build-package-$1" toolchain=()
    if [ "$1" != "$(dpkg --print-architecture)" ]; then
        toolchain=(-DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-aarch64.cmake)
    fi
    cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DBUILD_TESTING=OFF "${toolchain[@]}"
    cmake --build "$build"
    (cd "$build" && cpack -B packages)
    cp "$build"/packages/*_"$1".deb dist/
}

[ $# -gt 0 ] || set -- amd64 arm64

install_missing "${build_packages[@]}" "${packaging_packages[@]}"
[[ " $* " != *" arm64 "* ]] || install_arm64_tools

# The times in the packages are those of the commit, so that the same source makes the same packages.
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
export SOURCE_DATE_EPOCH
mkdir -p dist
for architecture in "$@"; do
    rm -f dist/*_"$architecture".deb
    build_packages_for "$architecture"
done
lintian --fail-on error dist/*.deb
ls -l dist/
