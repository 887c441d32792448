#!/usr/bin/env bash
# What bash offers for the beginnings of command lines of mvsignctl.
#
# usage: test-completion.sh COMPLETION_FILE MVSIGNCTL
set -euo pipefail

# shellcheck source=/dev/null
source "$1"
client=$2
failures=0

# offers EXPECTED WORD...: the last word is the one that is being typed.
offers() {
    local expected=$1
    shift
    COMP_WORDS=(mvsignctl "$@")
    COMP_CWORD=$#
    COMPREPLY=()
    _mvsignctl "$client"
    if [ "${COMPREPLY[*]}" != "$expected" ]; then
        echo "mvsignctl $*: offers \"${COMPREPLY[*]}\" in place of \"$expected\""
        failures=$((failures + 1))
    fi
}

offers "status save" s
offers "doctor" doc
offers "SetPenColor SetPenStyle SetPenWidth" SetPen
offers "R= G= B=" SetPenColor ""
offers "type=" Encode ty
offers "on off" log ""
offers "list allow block forget" access ""
offers "block" access b
offers "Encode" --port 8089 --raw Enc
offers "--timeout" --t
offers "" --port ""
offers "" NoSuchCommand ""

# Every word of the client's own is offered, and every option.
help=$("$client" --help)
mapfile -t words < <(sed -n 's/^  \([a-z]\+\) .*/\1/p' <<<"$help" && grep -o -- '--[a-z]\+' <<<"$help" | sort -u)
[ "${#words[@]}" -ge 12 ]
for word in "${words[@]}"; do
    offers "$word" "$word"
done
[ "$failures" -eq 0 ]
