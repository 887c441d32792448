#!/bin/sh
# The tests of the client and the demo page.
#
# usage: run-tests.sh install   fetch what the tests need, as the two package-lock.json have it
#        run-tests.sh client    the client, its declarations, what is built of it, the page's texts, and whether the
#                               oldest browsers know all that client and page use
#        run-tests.sh service   the client against the program in $MVSIGNPAD_BIN_DIR (default: ../build/bin)
#        run-tests.sh page      the demo page in Chromium against that program; leaves screenshots in
#                               $MVSIGNPAD_TEST_OUTPUT if that is set
#        run-tests.sh browser [NAME]
#                               the page against that program in one of chromium-72, chromium-78, chromium-88,
#                               chromium-92, chromium and firefox, or in all of them; leaves screenshots likewise
#        run-tests.sh examples  examples/, built, against that program in the newest and the oldest Chromium
set -eu
cd "$(dirname "$0")"

install_in() (
    cd "$1"
    # npm ci empties node_modules first: only when it does not match the lock file.
    cmp -s package-lock.json node_modules/.installed && return
    npm ci --no-audit --no-fund --prefer-offline --fetch-retries 5
    cp package-lock.json node_modules/.installed
)

install() {
    install_in .
    install_in tests
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
    npx --no-install tsc -p .
    node build.js --check
    npx --no-install tsc -p tests/types
    exec node --test tests/*.test.js
    ;;
service | page)
    install
    exec node --test "tests/page/$1.test.js"
    ;;
browser)
    install
    [ $# -lt 2 ] || export MVSIGNPAD_BROWSER="$2"
    exec node --test tests/browsers/browsers.test.js
    ;;
examples)
    install
    exec node --test tests/browsers/examples.test.js
    ;;
*)
    sed -n '2,/^set/s/^# \{0,1\}//p' "$0" >&2
    exit 2
    ;;
esac
