#!/bin/sh
# The tests of the client and the demo page.
#
# usage: run-tests.sh install   fetch what the tests need, as package-lock.json has it
#        run-tests.sh client    the client, its declarations and the page's texts
#        run-tests.sh service   the client against the program in $MVSIGNPAD_BIN_DIR (default: ../build/bin)
#        run-tests.sh page      the demo page in Chromium against that program; leaves screenshots in
#                               $MVSIGNPAD_TEST_OUTPUT if that is set
set -eu
cd "$(dirname "$0")"

install() {
    # npm ci empties node_modules first: only when it does not match the lock file.
    cmp -s package-lock.json node_modules/.installed && return
    npm ci --no-audit --no-fund
    cp package-lock.json node_modules/.installed
}

built=../build/bin
if [ -z "${MVSIGNPAD_BIN_DIR:-}" ] && [ -d "$built" ]; then
    MVSIGNPAD_BIN_DIR=$(cd "$built" && pwd)
    export MVSIGNPAD_BIN_DIR
fi

case ${1:-} in
install)
    install
    ;;
client)
    install
    npx --no-install tsc -p tests/types
    exec node --test tests/commands.test.js tests/connection.test.js tests/texts.test.js
    ;;
service | page)
    install
    exec node --test "tests/page/$1.test.js"
    ;;
*)
    sed -n '2,/^set/s/^# \{0,1\}//p' "$0" >&2
    exit 2
    ;;
esac
