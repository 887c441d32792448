#!/bin/sh
# Runs a test with processes, network ports and a /tmp of its own: a service that the developer has running neither
# disturbs the test nor is disturbed by it, and nothing of the test outlives it. Where the machine does not permit
# that, the test runs as it is.
#
# usage: isolated.sh SOURCE_DIR BUILD_DIR COMMAND [ARGUMENT...]    run COMMAND; the two trees stay visible where they
#                                                                  are, also when they lie in /tmp
#        isolated.sh --possible                                    exit with 0 when the machine permits it
set -u

spaces="--pid --fork --kill-child --mount-proc --net --mount"
[ "$(id -u)" = 0 ] || spaces="--map-root-user $spaces"

# shellcheck disable=SC2086 # the list of options is meant to be split
is_possible() {
    unshare $spaces sh -c 'ip link set lo up && mount -t tmpfs tmpfs /mnt' 2>/dev/null
}

case $1 in
--possible)
    is_possible
    exit
    ;;
--inside) ;;
*)
    # shellcheck disable=SC2086
    is_possible && exec unshare $spaces "$0" --inside "$@"
    shift 2
    exec "$@"
    ;;
esac

shift
ip link set lo up
mount -t tmpfs -o mode=1777 tmpfs /mnt
for tree in "$1" "$2"; do
    case $tree in
    /tmp/*) mkdir -p "/mnt${tree#/tmp}" && mount --bind "$tree" "/mnt${tree#/tmp}" ;;
    esac
done
mount --move /mnt /tmp
cd "$PWD" || exit 1
shift 2
# This shell stays, as the process 1 that collects what the test leaves behind: no exec.
"$@"
exit $?
