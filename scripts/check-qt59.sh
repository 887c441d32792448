#!/usr/bin/env bash
# Builds everything with clang in build-clang/, then fails when the program uses interface of Qt newer than 5.9, after
# showing that the check finds such uses. The tests may use newer interface.
set -euo pipefail
cd "$(dirname "$0")/.."

. scripts/packages.sh
. scripts/rooms.sh
install_missing "${lint_packages[@]}"
scripts/build-clang.sh
tests/qt59/selftest.py build-clang
shopt -s nullglob
sources=()
for room in "${product_rooms[@]}"; do sources+=("$room"/*.cpp); done
scripts/qt59/check.py build-clang "${sources[@]}"
