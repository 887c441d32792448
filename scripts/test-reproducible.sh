#!/usr/bin/env bash
# Builds the packages of the last commit twice, in two folders, at two times and from files of two umasks, and compares them
# byte for byte. As scripts/package.sh does, in a Debian 11 of its own. scripts/check.sh reproducible calls this.
set -euo pipefail
cd "$(dirname "$0")/.."

. scripts/packages.sh
native=$(dpkg --print-architecture)
if [ "${1-}" != --inside ]; then
    exec scripts/root.sh bullseye "$native" \
        env SOURCE_DATE_EPOCH="$(source_date)" scripts/test-reproducible.sh --inside
fi

elsewhere=/var/tmp/elsewhere
(umask 027 && cp -r . $elsewhere)
scripts/build-packages.sh "$native"
$elsewhere/scripts/build-packages.sh "$native"
for package in build-package-"$native"/packages/*.{deb,rpm}; do
    cmp "$package" "$elsewhere/$package"
done
