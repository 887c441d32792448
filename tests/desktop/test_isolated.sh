#!/bin/sh
# isolated.sh hands on the status of what it runs, keeps what it writes to the places that all programs share, and runs
# nothing where it cannot isolate.
#
# usage: test_isolated.sh WORK_DIR
set -eu

isolated=$(dirname "$0")/isolated.sh
work=$1
reached=$work/isolated-ran
rm -f "$reached"

fail() {
    echo "$1" >&2
    exit 1
}

status=0
"$isolated" "$work" "$work" sh -c 'exit 7' || status=$?
[ "$status" = 7 ] || fail "status $status in place of 7"

for shared in /tmp /var/lib/xkb; do
    [ -d "$shared" ] || continue
    "$isolated" "$work" "$work" touch "$shared/of-test-$$"
    [ ! -e "$shared/of-test-$$" ] || fail "what a test writes to $shared is seen by others"
done

status=0
message=$(unshare --user --map-root-user sh -euc '
    echo 0 >/proc/sys/user/max_mnt_namespaces
    exec "$@"' sh "$isolated" "$work" "$work" touch "$reached" 2>&1) || status=$?
[ "$status" = 1 ] || fail "status $status without a namespace of mounts"
[ ! -e "$reached" ] || fail "the command was run unisolated"
case $message in
"isolated: not run, "*unshare*) ;;
*) fail "no reason given: $message" ;;
esac
