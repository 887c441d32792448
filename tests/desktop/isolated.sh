#!/bin/sh
# Runs a test with processes, network ports and a /tmp of its own: a service that the developer has running neither
# disturbs the test nor is disturbed by it, and nothing of the test outlives it. Where the machine does not permit
# that, nothing is run: a test deletes the product's files in /tmp, which would be the developer's own.
#
# usage: isolated.sh SOURCE_DIR BUILD_DIR COMMAND [ARGUMENT...]    the two trees stay visible where they are, also when
#                                                                  they lie in /tmp
set -u

if [ "$1" != --inside ]; then
    spaces="--pid --fork --kill-child --mount-proc --net --mount"
    [ "$(id -u)" = 0 ] || spaces="--map-root-user $spaces"
    # shellcheck disable=SC2086 # the list of options is meant to be split
    reason=$(unshare $spaces sh -c 'ip link set lo up && mount -t tmpfs tmpfs /mnt' 2>&1) &&
        exec unshare $spaces "$0" --inside "$@"
    echo "isolated: not run, this machine permits no processes, ports and /tmp of its own: $reason" >&2
    exit 1
fi

shift
ip link set lo up
mount -t tmpfs -o mode=1777 tmpfs /mnt
for tree in "$1" "$2"; do
    case $tree in
    /tmp/*) mkdir -p "/mnt${tree#/tmp}" && mount --bind "$tree" "/mnt${tree#/tmp}" ;;
    esac
done
mount --move /mnt /tmp
# Every X server of root's lays its keyboard there for a moment, under the number of its display: the same in all tests.
[ ! -d /var/lib/xkb ] || mount -t tmpfs tmpfs /var/lib/xkb
cd "$PWD" || exit 1
shift 2
# This shell stays, as the process 1 that collects what the test leaves behind: no exec.
"$@"
exit $?
