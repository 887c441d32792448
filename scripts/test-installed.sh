#!/usr/bin/env bash
# Installs the packages of dist/ in a bare Debian with its own Qt, takes a signature with them in front of a tray, upgrades
# and removes them. Leaves a picture of the screen in test-output/.
#
#   scripts/test-installed.sh SUITE ARCHITECTURE
#   scripts/test-installed.sh bullseye amd64
set -euo pipefail
cd "$(dirname "$0")/.."

. scripts/packages.sh
makers_library=/opt/mvsignpad/libmvsignpadsdk.so
# Beside others: the root has the machine's network.
number=$((RANDOM % 10000))
port=$((20000 + number))
display=:$((1000 + number))

fail() {
    echo "test-installed: $*" >&2
    exit 1
}

# -- in the root ------------------------------------------------------------------------------------------------------
# older PACKAGE: the same package as an earlier version; prints its path.
older() {
    local tree
    tree=$(mktemp -d)
    dpkg-deb --raw-extract "$1" "$tree/package"
    sed -i 's/^Version: .*/Version: 0.9/' "$tree/package/DEBIAN/control"
    dpkg-deb --build "$tree/package" "$tree/older.deb" >/dev/null
    echo "$tree/older.deb"
}
install_packages() {
    DEBIAN_FRONTEND=noninteractive apt-get -qq -y install --no-install-recommends "$@" >/dev/null
}
# installed_version PACKAGE
installed_version() { dpkg-query -W -f '${Version}' "$1"; }

# as_clerk COMMAND...: as a user of the desktop.
as_clerk() {
    setpriv --reuid clerk --regid clerk --init-groups \
        env HOME=/home/clerk XDG_RUNTIME_DIR=/home/clerk DISPLAY=$display "$@"
}
request() { as_clerk mvsignctl --port "$port" --timeout 60 "$@"; }

wait_until() {
    local _
    for _ in {1..600}; do
        ! "$@" >/dev/null 2>&1 || return 0
        sleep 0.2
    done
    fail "waited in vain: $*"
}
start_desktop() {
    useradd --create-home clerk
    as_clerk mkdir -p /home/clerk/.config/mvsignpadsdk
    printf '[Settings]\nStartWebService=true\nWebSocketPort=%s\n' "$port" |
        as_clerk tee /home/clerk/.config/mvsignpadsdk/MVSignPadSDK_WSSvr.conf >/dev/null
    Xvfb $display -ac -screen 0 1024x768x24 -nolisten tcp 2>/dev/null &
    wait_until as_clerk xdpyinfo
    as_clerk trayer --SetDockType false --height 32 >/dev/null 2>&1 &
}
is_confirmed() { [ "$(request GetDeviceConfirmOrCancelKeyStatus)" = 1 ]; }
has_icon() { as_clerk xwininfo -root -tree | grep -q '"mvsignpadsdk_wssvr"'; }

capture() {
    as_clerk MVSIGNPAD_VIRTUAL_WINDOW=1 MVSIGNPAD_VIRTUAL_SPEED=0 /opt/mvsignpad/mvsignpadsdk_wssvr &
    wait_until has_icon
    wait_until request IsValid
    [ "$(request InitialDevice id=2 width=800 height=480)" = 1 ] || fail "the pad does not open"
    wait_until is_confirmed
    request SaveDrawingImage type=3 dpi=300 path=/tmp/signature.png >/dev/null
    file /tmp/signature.png | grep -q 'PNG image data, 800 x 480' || fail "no signature: $(file /tmp/signature.png)"
    as_clerk xwd -root -silent -out /home/clerk/screen.xwd
    cp /home/clerk/screen.xwd /share/
}

inside() {
    local program=/share/mvsignpad.deb virtual=/share/mvsignpad-virtual.deb version
    version=$(dpkg-deb -f "$program" Version)
    apt-get -qq update
    install_packages "$(older "$program")" "$(older "$virtual")"
    [ "$(installed_version mvsignpad)" = 0.9 ] || fail "the older version is not installed"
    cp /usr/lib/mvsignpad/virtual/libmvsignpadsdk.so "$makers_library"
    install_packages "$program" "$virtual"
    [ "$(installed_version mvsignpad)" = "$version" ] || fail "the upgrade has failed"
    [ -e "$makers_library" ] || fail "the upgrade has removed the maker's library"
    dpkg-query -W 'libqt5core5*' 'libc6' libstdc++6

    install_packages xvfb trayer x11-utils x11-apps procps file fonts-dejavu-core
    start_desktop
    capture

    apt-get -qq -y purge mvsignpad mvsignpad-virtual >/dev/null
    [ ! -e /opt/mvsignpad/mvsignpadsdk_wssvr ] || fail "the removal has left the program"
    [ -e "$makers_library" ] || fail "the removal has removed the maker's library"
}

if [ "${1-}" = --inside ]; then
    inside
    exit
fi

# -- outside ----------------------------------------------------------------------------------------------------------
if [ $# -ne 2 ]; then
    sed -n '2,/^set/s/^# \{0,1\}//p' "$0" >&2
    exit 2
fi
install_missing imagemagick
share=$(mktemp -d)
trap 'rm -rf "$share"' EXIT
for name in mvsignpad mvsignpad-virtual; do
    cp dist/"$name"_*_"$2".deb "$share/$name.deb" || fail "scripts/package.sh $2 comes first"
done
scripts/root.sh --share "$share" "$1" "$2" scripts/test-installed.sh --inside
mkdir -p test-output
convert "xwd:$share/screen.xwd" "test-output/installed-$1-$2.png"
echo "test-installed: installed, used, upgraded and removed in $1 $2"
