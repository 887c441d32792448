#!/usr/bin/env bash
# Builds the Debian packages of the program and of the virtual pad, checks them with lintian and leaves them in dist/: two
# for this machine's architecture and two for arm64. Arguments name the architectures to build for, if not both.
set -euo pipefail
cd "$(dirname "$0")/.."

. scripts/packages.sh

# build_packages_for ARCHITECTURE: leaves its two packages in dist/.
build_packages_for() {
    local build="build-package-$1" toolchain=()
    if [ "$1" != "$native" ]; then
        toolchain=(-DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-aarch64.cmake)
    fi
    cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "${toolchain[@]}"
    cmake --build "$build"
    (cd "$build" && cpack -B packages)
    cp "$build"/packages/*_"$1".deb dist/
}

native=$(dpkg --print-architecture)
[ $# -gt 0 ] || mapfile -t architectures < <(printf '%s\n' "$native" arm64 | sort -u)
[ $# -eq 0 ] || architectures=("$@")
for architecture in "${architectures[@]}"; do
    if [ "$architecture" != "$native" ] && [ "$architecture" != arm64 ]; then
        echo "package: this machine can build for $native and arm64 only" >&2
        exit 2
    fi
done

install_missing "${build_packages[@]}" "${packaging_packages[@]}"
[[ " ${architectures[*]} " != *" arm64 "* ]] || install_arm64_tools

# The times in the packages are those of the commit, so that the same source makes the same packages.
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)}
export SOURCE_DATE_EPOCH
mkdir -p dist
for architecture in "${architectures[@]}"; do
    rm -f dist/*_"$architecture".deb
    build_packages_for "$architecture"
done
lintian --fail-on error dist/*.deb
ls -l dist/
