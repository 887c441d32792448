#!/bin/sh
# Checks that built files are hardened, by what readelf shows of them.
#
# usage: check-elf.sh FILE...
set -u
export LC_ALL=C
status=0

# expect FILE WHAT PATTERN TEXT: the text must have a line that matches.
expect() {
    printf '%s\n' "$4" | grep -Eq "$3" && return
    echo "$1: $2 is missing" >&2
    status=1
}

[ $# -gt 0 ] || exit 2
for file in "$@"; do
    segments=$(readelf -hlW "$file")
    dynamic=$(readelf -dW "$file")
    symbols=$(readelf --dyn-syms -W "$file")
    expect "$file" "position-independent code" '^ *Type: +DYN' "$segments"
    expect "$file" "a table that becomes read-only (relro)" '^ *GNU_RELRO' "$segments"
    expect "$file" "binding before the start (now)" '\((FLAGS|FLAGS_1)\).*NOW' "$dynamic"
    expect "$file" "the stack protector" ' __stack_chk_fail' "$symbols"
    expect "$file" "a stack that holds no code" '^ *GNU_STACK .* RW ' "$segments"
    case $file in
    *.so) ;;
    *) expect "$file" "the mark of a position-independent program" 'FLAGS_1.*PIE' "$dynamic" ;;
    esac
    expect "$file" "the checked form of library calls (_FORTIFY_SOURCE)" ' __(v?sn?|v?f)printf_chk' "$symbols"
    echo "$file: checked"
done
exit $status
