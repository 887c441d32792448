#!/usr/bin/env bash
# Builds the packages of the last commit and leaves them in dist/: two .deb and two .rpm for each architecture, and one of each
# kind for all. Arguments name the architectures, if not this machine's and arm64.
#
# The build runs in a Debian 11 of its own, whose libraries are old enough: what is linked there runs on every desktop since.
set -euo pipefail
cd "$(dirname "$0")/.."

. scripts/packages.sh
native=$(dpkg --print-architecture)

# keep PACKAGE...: leaves them in the shared directory. One for all architectures is the same, whichever build made it.
keep() {
    local package kept
    for package in "$@"; do
        kept=/share/$(basename "$package")
        [ ! -e "$kept" ] || cmp "$package" "$kept"
        cp "$package" "$kept"
    done
}

if [ "${1-}" = --inside ]; then
    shift
    # The same release of each library for both architectures: the later updates are not there for all.
    sed -i '/-security\|-updates/d' /etc/apt/sources.list
    for architecture in "$@"; do
        scripts/build-packages.sh "$architecture"
        tests/packaging/test_rpm.py "build-package-$architecture" RpmTest
        keep "build-package-$architecture"/packages/*.{deb,rpm}
    done
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

rm -rf dist
mkdir dist
scripts/root.sh --share dist bullseye "$native" \
    env SOURCE_DATE_EPOCH="$(source_date)" scripts/package.sh --inside "${architectures[@]}"
lintian --fail-on error dist/*.deb
rpmlint --config packaging/rpmlint.toml dist/*.rpm
ls -l dist/
