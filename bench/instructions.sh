#!/usr/bin/env bash
# Counts the instructions of three fixed pieces of work and compares them with bench/instructions.txt, or writes them
# there when MVSIGNPAD_RECORD_INSTRUCTIONS is set.
#
# usage: instructions.sh BENCH_BUILD_DIR QT_VERSION COMPILER
#
# Fewer are always good. With the recorded versions up to a twentieth more are; with others, up to twice as many.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
cd "$1"
versions="Qt $2, $(ldd --version | sed -n '1s/.* //p'), $3, $(uname -m)"
port=27501

# ask ARGUMENTS... : waits for the service, then has the load client ask it; @ stands for the URL.
ask() {
    local url="ws://localhost:$port/MVSignSDK"
    for _ in $(seq 600); do
        (: <"/dev/tcp/127.0.0.1/$port") 2>/dev/null && break
        sleep 0.1
    done
    ./LoadClient --port "$port" --setup "$url/InitialDevice?id=2&width=5242880&height=10000" "${@//@/$url/}"
}

# count NAME ARGUMENTS... : prints the name and what is executed below processTextMessage; the small request that opens
# the pad is part of it. The service runs until its standard input ends, which is when the client is done.
count() {
    local name=$1
    shift
    { ask "$@" >&2; } | valgrind --tool=callgrind --callgrind-out-file=/dev/null \
        --toggle-collect='WebSocketService::processTextMessage*' ./ServiceHost "$port" 2>&1 |
        sed -n "s/.*Collected : /$name\t/p"
    port=$((port + 1))
}

counted=$(
    count 'small commands' --mode pingpong --count 1000 --request '@SetPenColor?R=0&G=0&B=255'
    count 'image' --mode pingpong --count 1 --request '@GetInks'
    count 'points' --mode pingpong --count 1 --request '@GetPointer'
)
echo "$versions"
echo "$counted"

if [ -n "${MVSIGNPAD_RECORD_INSTRUCTIONS-}" ]; then
    { sed '/^#/!d' "$here/instructions.txt"; echo "$versions"; echo "$counted"; } >"$here/instructions.new"
    mv "$here/instructions.new" "$here/instructions.txt"
    exit
fi
most=1.05
if ! grep -qxF "$versions" "$here/instructions.txt"; then
    echo "recorded were other versions"
    most=2
fi
awk -F '\t' -v most="$most" '
    NR == FNR { recorded[$1] = $2; next }
    {
        ratio = recorded[$1] ? $2 / recorded[$1] : 0
        printf "%s: %.3f of what is recorded\n", $1, ratio
        if (ratio > 0 && ratio <= most) ++good
    }
    END { exit good != 3 }' "$here/instructions.txt" <(echo "$counted")
