#!/usr/bin/env bash
# Installs the packages of dist/ in a bare Debian with its own Qt, upgrades them, takes a signature with them in front of a
# tray, and removes them. Leaves a picture of the screen in test-output/.
#
#   scripts/test-installed.sh SUITE ARCHITECTURE
#   scripts/test-installed.sh bullseye amd64
set -euo pipefail
cd "$(dirname "$0")/.."

. scripts/packages.sh
makers_library=/opt/mvsignpad/libmvsignpadsdk.so

fail() {
    echo "test-installed: $*" >&2
    exit 1
}

# -- packages, in the root --------------------------------------------------------------------------------------------
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
# expect_version VERSION: of the program that is installed.
expect_version() {
    local version
    # shellcheck disable=SC2016 # dpkg's own placeholder
    version=$(dpkg-query -W -f '${Version}' mvsignpad)
    [ "$version" = "$1" ] || fail "version $version is installed, not $1"
    mvsignctl --version >/dev/null || fail "mvsignctl does not run"
}

# -- the desktop, in the root -----------------------------------------------------------------------------------------
# as_clerk COMMAND...: as a user of the desktop.
as_clerk() {
    setpriv --reuid clerk --regid clerk --init-groups \
        env HOME=/home/clerk XDG_RUNTIME_DIR=/home/clerk DISPLAY=:1 LC_ALL=C.UTF-8 "$@"
}
request() { as_clerk mvsignctl --timeout 60 "$@"; }

wait_until() {
    local end=$((SECONDS + 300))
    until "$@" >/dev/null 2>&1; do
        [ $SECONDS -lt $end ] || fail "waited in vain: $*"
        sleep 0.2
    done
}

start_desktop() {
    useradd --create-home clerk
    chmod 700 /home/clerk
    as_clerk mkdir -p /home/clerk/.config/mvsignpadsdk
    printf '[Settings]\nStartWebService=true\n' |
        as_clerk tee /home/clerk/.config/mvsignpadsdk/MVSignPadSDK_WSSvr.conf >/dev/null
    Xvfb :1 -ac -screen 0 1024x768x24 -nolisten tcp -noreset >/dev/null 2>&1 &
    wait_until as_clerk xdpyinfo
    as_clerk trayer --SetDockType false --height 32 >/dev/null 2>&1 &
    wait_until as_clerk xdotool search --class trayer
}
take_picture() { as_clerk xwd -root -silent >/share/screen.xwd; }

# window OPTION PATTERN: a window of the program that can be seen.
window() { as_clerk xdotool search --onlyvisible "$@"; }
has_points() { [ "$(request GetSize)" -ge "$1" ]; }
is_confirmed() { [ "$(request GetDeviceConfirmOrCancelKeyStatus)" = 1 ]; }
# listens_on ADDRESS: as netstat writes it; :: is every one.
listens_on() { netstat -ltn | awk '{ print $4 }' | grep -qxF "$1:8089"; }

is_stopped() { ! pgrep -u clerk -f mvsignpadsdk_wssvr; }
start_program() {
    as_clerk setsid --fork /opt/mvsignpad/mvsignpadsdk_wssvr
    # The icon: no other window of its own is open yet. The program would take its own name, spelt out here, for another copy.
    wait_until window --class 'mvsignpadsdk_wssv[r]'
    wait_until request IsValid
}
stop_program() {
    pkill -x -u clerk mvsignpadsdk_ws # as much of the name as the kernel keeps
    wait_until is_stopped
}

# As a user does: a stroke with the mouse on the pad's window, then the button that confirms. Each waits until the one before
# has arrived: a machine under load merges them.
sign() {
    wait_until window --name Alder
    local pad
    pad=$(window --name Alder)
    as_clerk xdotool mousemove --window "$pad" 200 150 mousedown 1
    wait_until has_points 1
    as_clerk xdotool mousemove --window "$pad" 440 180
    wait_until has_points 2
    as_clerk xdotool mouseup 1 mousemove --window "$pad" 502 566 click 1
    wait_until is_confirmed
}

capture() {
    [ "$(request InitialDevice id=2 width=800 height=480)" = 1 ] || fail "the pad does not open"
    sign
    request SaveDrawingImage type=3 dpi=300 path=/tmp/signature.png >/dev/null
    file /tmp/signature.png | grep -q 'PNG image data, 2500 x 1500' || fail "no signature: $(file /tmp/signature.png)"
}

# -- the course of it, in the root ------------------------------------------------------------------------------------
prepare() {
    apt-get -qq update
    install_packages "$(older /share/mvsignpad.deb)" "$(older /share/mvsignpad-virtual.deb)"
    expect_version 0.9
    dpkg-query -W 'libqt5core5*' libc6 libstdc++6
    # Neither iproute2 nor a window manager: the emulator of another architecture has no netlink, and openbox hangs in it.
    install_packages xvfb trayer xdotool x11-utils x11-apps net-tools file fonts-dejavu-core
}

# One package closes the doors, and opens them when it goes. A program, which has no origin, signs as before.
try_closed_doors() {
    install_packages /share/mvsignpad-secure.deb
    start_program
    listens_on 127.0.0.1 || fail "the service listens on more than this machine"
    [[ $(as_clerk mvsignctl doctor) == *'pages when the user allows it'* ]] || fail "the user would not be asked"
    capture
    request SaveDrawingImage type=3 dpi=300 path=/home/clerk/signature.png >/dev/null
    [ ! -e /home/clerk/signature.png ] || fail "a file outside of /tmp was written"
    stop_program
    apt-get -qq -y remove mvsignpad-secure >/dev/null
    start_program
    listens_on :: || fail "the removal has not opened what was closed"
    stop_program
}

# From here on without a network: the packages install from the files alone.
try_out() {
    ifconfig lo up
    cp /usr/lib/mvsignpad/virtual/libmvsignpadsdk.so "$makers_library"
    install_packages /share/mvsignpad.deb /share/mvsignpad-virtual.deb
    expect_version "$(dpkg-deb -f /share/mvsignpad.deb Version)"
    [ -e "$makers_library" ] || fail "the upgrade has removed the maker's library"

    start_desktop
    trap take_picture EXIT
    start_program
    listens_on :: || fail "the service does not listen on every interface"
    capture
    take_picture
    stop_program
    try_closed_doors
    trap - EXIT

    apt-get -qq -y purge 'mvsignpad*' >/dev/null
    [ ! -e /opt/mvsignpad/mvsignpadsdk_wssvr ] || fail "the removal has left the program"
    [ -e "$makers_library" ] || fail "the removal has removed the maker's library"
}

case ${1-} in
    --inside)
        prepare
        exec unshare --net "$0" --offline
        ;;
    --offline)
        try_out
        exit
        ;;
esac

# -- outside ----------------------------------------------------------------------------------------------------------
if [ $# -ne 2 ]; then
    sed -n '2,/^set/s/^# \{0,1\}//p' "$0" >&2
    exit 2
fi
install_missing imagemagick
share=$(mktemp -d)
trap 'rm -rf "$share"' EXIT
for package in dist/*_{"$2",all}.deb; do
    [ -e "$package" ] || fail "scripts/package.sh $2 comes first"
    name=$(basename "$package")
    cp "$package" "$share/${name%%_*}.deb"
done
picture=test-output/installed-$1-$2.png
mkdir -p test-output
status=0
scripts/root.sh --share "$share" "$1" "$2" scripts/test-installed.sh --inside || status=$?
[ ! -e "$share/screen.xwd" ] || convert "xwd:$share/screen.xwd" "$picture"
[ $status = 0 ] || fail "see $picture"
echo "test-installed: installed, upgraded, used and removed in $1 $2"
