#!/bin/sh
# Fails when a source uses interface of Qt newer than 5.9, after showing that the check finds such uses.
#
#     scripts/check-qt59.sh BUILD-DIRECTORY
#
# The build directory was configured with -DCMAKE_EXPORT_COMPILE_COMMANDS=ON and has been built, so that every
# generated source is there.
set -eu

build=$(realpath "$1")
cd "$(dirname "$0")/.."
tests/qt59/selftest.py "$build"
scripts/qt59/check.py "$build"
