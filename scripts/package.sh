#!/usr/bin/env bash
# Builds the packages of the last commit and leaves them in dist/: two .deb and two .rpm for each architecture. Arguments
# name the architectures, if not this machine's and arm64.
#
# The build runs in a Debian 11 of its own, whose libraries are old enough: what is linked there runs on every desktop since.
set -euo pipefail
cd "$(dirname "$0")/.."

. scripts/packages.sh
native=$(dpkg --print-architecture)

# build_packages_for ARCHITECTURE: leaves its four packages in the shared directory.
build_packages_for() {
    local build=build-package-$1 toolchain=()
    if [ "$1" != "$native" ]; then
        toolchain=(-DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-aarch64.cmake)
    fi
    cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DBUILD_TESTING=OFF "${toolchain[@]}"
    cmake --build "$build"
    scripts/check-symbols.py "$build"/bin/{mvsignpadsdk_wssvr,mvsignctl,libmvsignpadsdk.so}
    (cd "$build" && cpack -G 'DEB;RPM' -B packages)
    cp "$build"/packages/*.{deb,rpm} /share/
}

if [ "${1-}" = --inside ]; then
    shift
    # The same release of each library for both architectures: the later updates are not there for all.
    sed -i '/-security\|-updates/d' /etc/apt/sources.list
    install_missing "${build_packages[@]}" "${packaging_packages[@]}"
    [ "$*" = "$native" ] || install_arm64_tools
    for architecture in "$@"; do build_packages_for "$architecture"; done
    exit
fi

[ $# -gt 0 ] || mapfile -t architectures < <(printf '%s\n' "$native" arm64 | sort -u)
[ $# -eq 0 ] || architectures=("$@")
for architecture in "${architectures[@]}"; do
    if [ "$architecture" != "$native" ] && [ "$architecture" != arm64 ]; then
        echo "package: this machine can build for $native and arm64 only" >&2
        exit 2
    fi
done
install_missing "${packaging_check_packages[@]}"

# The times in the packages are those of the commit, so that the same source makes the same packages.
epoch=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)}
rm -rf dist
mkdir dist
scripts/root.sh --share dist bullseye "$native" \
    env SOURCE_DATE_EPOCH="$epoch" scripts/package.sh --inside "${architectures[@]}"
lintian --fail-on error dist/*.deb
rpmlint --config packaging/rpmlint.toml dist/*.rpm
ls -l dist/
