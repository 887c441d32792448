#!/usr/bin/env bash
# Fails when clang-format would lay out a C++ source otherwise, or shellcheck finds fault with a shell script.
set -euo pipefail
cd "$(dirname "$0")/.."

. scripts/packages.sh
install_missing git "${format_packages[@]}"

# In newer.cpp each line has a comment that says what the check for newer Qt must find in it.
mapfile -t sources < <(git ls-files '*.cpp' '*.h' '*.inl' ':!tests/qt59/newer.cpp')
clang-format-14 --dry-run --Werror "${sources[@]}"

mapfile -t scripts < <(git grep --cached -lE '^#!.*\b(ba|da)?sh\b|^# shellcheck shell=')
shellcheck --external-sources "${scripts[@]}"
echo "format: ${#sources[@]} sources and ${#scripts[@]} scripts are as they should be"
