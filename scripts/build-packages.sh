#!/usr/bin/env bash
# Builds the packages of this tree, here, and leaves them in build-package-ARCHITECTURE/packages/. The same source and the
# same SOURCE_DATE_EPOCH make the same packages, byte for byte, wherever the tree lies and whenever it is built.
# scripts/package.sh runs it in a Debian 11.
#
#   scripts/build-packages.sh ARCHITECTURE
set -euo pipefail
umask 022
cd "$(dirname "$0")/.."

. scripts/packages.sh
architecture=$1
build=build-package-$architecture
: "${SOURCE_DATE_EPOCH:?seconds since 1970 of what is packed}"
install_missing "${build_packages[@]}" "${packaging_packages[@]}"
toolchain=()
if [ "$architecture" != "$(dpkg --print-architecture)" ]; then
    install_arm64_tools
    toolchain=(-DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-aarch64.cmake)
fi

# settle PACKAGE.deb: packs it again with dpkg, since cpack keeps the times of the build.
settle() {
    local tree
    tree=$(mktemp -d)
    chmod 755 "$tree"
    dpkg-deb --raw-extract "$1" "$tree"
    dpkg-deb --root-owner-group --build "$tree" "$1" >/dev/null
    rm -rf "$tree"
}

# What is packed is stripped, so nothing is made for a debugger. A warning of the old compiler fails the build; its CMake
# knows that by the flag only.
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE='-O2 -DNDEBUG' \
    -DCMAKE_CXX_FLAGS="-Werror -ffile-prefix-map=$PWD=." -DBUILD_TESTING=OFF "${toolchain[@]}"
cmake --build "$build"
scripts/check-symbols.py "$build"/bin/{mvsignpadsdk_wssvr,mvsignctl,libmvsignpadsdk.so}
(cd "$build" && rm -rf packages && cpack -G 'DEB;RPM' -B packages)
for package in "$build"/packages/*.deb; do settle "$package"; done
