#!/usr/bin/env bash
# Runs a command as root in a bare Debian: a throwaway copy of what debootstrap makes, with processes and mounts of its own
# and the machine's network. A clone of the last commit is its working directory.
#
#   scripts/root.sh [--share DIRECTORY] SUITE ARCHITECTURE COMMAND [ARGUMENT...]
#   scripts/root.sh bookworm amd64 scripts/test.sh
#
# The shared directory is /share inside. Kept between runs in $MVSIGNPAD_CACHE (/var/cache/mvsignpad), which may be deleted
# at any time: the bare roots, for a month, and what apt and npm have downloaded.
set -euo pipefail
cd "$(dirname "$0")/.."

share=
if [ "${1-}" = --share ]; then
    share=$(realpath -e "$2")
    shift 2
fi
if [ $# -lt 3 ]; then
    sed -n '2,/^set/s/^# \{0,1\}//p' "$0" >&2
    exit 2
fi
if [ "$(id -u)" != 0 ]; then
    echo "root: only root can make a root and change into it" >&2
    exit 1
fi
suite=$1
architecture=$2
shift 2
. scripts/packages.sh
cache=${MVSIGNPAD_CACHE:-/var/cache/mvsignpad}
bare=$cache/$suite-$architecture
packages=$cache/packages-$suite-$architecture
certificates=/etc/ssl/certs/ca-certificates.crt

# mirror LABEL: where this machine gets Debian's packages from; nothing when it has not asked yet.
mirror() {
    # shellcheck disable=SC2016 # apt's own placeholder
    apt-get indextargets --format '$(REPO_URI)' "Label: $1" 'Identifier: Packages' | head -n 1
}

# -- a foreign architecture -------------------------------------------------------------------------------------------
is_foreign() { [ "$architecture" != "$(dpkg --print-architecture)" ]; }

# Starts this script again in a mount namespace in which the kernel knows what runs programs for AArch64. A machine with
# systemd has been told when qemu was installed.
allow_foreign_programs() {
    local formats=/proc/sys/fs/binfmt_misc
    install_missing qemu-user-static arch-test python3
    [ ! -e $formats/qemu-aarch64 ] || return 0
    # shellcheck disable=SC2016 # the arguments are the inner shell's
    exec unshare --mount sh -euc '
        mount -t binfmt_misc binfmt_misc "$1"
        [ -e "$1/qemu-aarch64" ] || cat /usr/lib/binfmt.d/qemu-aarch64.conf >"$1/register"
        shift
        exec "$@"' sh $formats scripts/root.sh ${share:+--share "$share"} "$suite" "$architecture" "$@"
}

# -- the bare root ----------------------------------------------------------------------------------------------------
make_bare_root() {
    [ -z "$(find "$bare.made" -mtime -30 2>/dev/null)" ] || return 0
    rm -rf "$bare" "$bare.made" "$packages"
    local url
    url=$(mirror Debian)
    debootstrap --variant=minbase --arch="$architecture" "$suite" "$bare" "${url:-http://deb.debian.org/debian}" \
        >"$bare.log" || {
        tail -n 20 "$bare.log" "$bare/debootstrap/debootstrap.log" >&2
        return 1
    }
    rm -f "$bare"/var/cache/apt/archives/*.deb
    touch "$bare.made"
}

# -- the copy ---------------------------------------------------------------------------------------------------------
# What lets the copy reach the network as this machine does, and nothing else of it.
connect() {
    local url security
    url=$(mirror Debian)
    security=$(mirror Debian-Security)
    : "${url:=http://deb.debian.org/debian}" "${security:=http://deb.debian.org/debian-security}"
    printf 'deb %s main\n' "$url $suite" "$url $suite-updates" "$security $suite-security" >"$root/etc/apt/sources.list"
    apt-config dump Acquire | grep -E '^Acquire::(Check-|Retries|ForceIPv|https?::)' >"$root/etc/apt/apt.conf.d/99machine" || true
    cp --dereference /etc/resolv.conf /etc/hosts "$root/etc/"
    [ ! -e "$certificates" ] || cp "$certificates" "$root/etc/machine-certificates.crt"
    environment+=(NODE_EXTRA_CA_CERTS=/etc/machine-certificates.crt)
    local name
    for name in http_proxy https_proxy no_proxy HTTP_PROXY HTTPS_PROXY NO_PROXY; do
        [ -z "${!name-}" ] || environment+=("$name=${!name}")
    done
}

make_copy() {
    cp -a --reflink=auto "$bare" "$root"
    connect
    printf '#!/bin/sh\nexit 101\n' >"$root/usr/sbin/policy-rc.d" # no package starts its service
    chmod +x "$root/usr/sbin/policy-rc.d"
    echo force-unsafe-io >"$root/etc/dpkg/dpkg.cfg.d/throwaway" # nothing in it must outlive the machine's power
    mkdir -p "$packages" "$cache/npm" "$root/root/.npm" "$root/share"
    find "$packages" -name '*.deb' -exec cp -l -t "$root/var/cache/apt/archives" {} +
    git clone --quiet --depth 1 "file://$PWD" "$root/root/mvsignpad"
}

keep_downloads() {
    find "$root/var/cache/apt/archives" -maxdepth 1 -name '*.deb' -exec cp -ln -t "$packages" {} +
}

# Of its own mounts, the first is the copy's root: no other mount namespace could be made inside otherwise.
# shellcheck disable=SC2016 # the arguments are the inner shell's
enter='
    root=$1 cache=$2 share=$3
    shift 3
    mount --bind "$root" "$root"
    mount -t proc proc "$root/proc"
    mount --rbind /sys "$root/sys"
    mount --rbind /dev "$root/dev"
    mount -t tmpfs -o mode=1777 tmpfs "$root/dev/shm"
    mount --bind "$cache/npm" "$root/root/.npm"
    [ -z "$share" ] || mount --bind "$share" "$root/share"
    cd "$root"
    pivot_root . mnt
    umount -l /mnt
    cd /root/mvsignpad
    "$@" || exit # without exec: process 1 collects what the command leaves behind'

run_inside() {
    local launcher=()
    ! is_foreign || launcher=(scripts/without-pidfd.py)
    "${launcher[@]}" unshare --mount --pid --fork --kill-child --ipc --uts env -i "${environment[@]}" \
        bash -euc "$enter" bash "$root" "$cache" "$share" "$@"
}

install_missing debootstrap git util-linux
! is_foreign || allow_foreign_programs "$@"
mkdir -p "$cache"
(flock 9 && make_bare_root) 9>"$bare.lock"
copy=$(mktemp -d "$bare.XXXXXX")
trap 'rm -rf --one-file-system "$copy"' EXIT
root=$copy/root
environment=(HOME=/root LANG=C.UTF-8 PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin)
make_copy
status=0
run_inside "$@" || status=$?
keep_downloads
exit "$status"
