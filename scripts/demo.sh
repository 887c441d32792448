#!/usr/bin/env bash
# Signing with the virtual pad, on a service built for it that has settings and a home directory of its own.
#
# On a desktop with a browser (the one that $BROWSER names, or the user's): opens the demo page and the pad's window,
# until Ctrl-C or Exit in the tray menu. Elsewhere: captures a signature through real WebSocket requests and leaves the
# pictures in demo-output/.
set -euo pipefail
cd "$(dirname "$0")/.."

. scripts/packages.sh
program=build-demo/bin/mvsignpadsdk_wssvr
output=$PWD/demo-output
port=8089

fail() {
    echo "demo: $*" >&2
    exit 1
}

install_missing "${build_packages[@]}" procps
if pgrep -f "${program##*/}" >/dev/null; then
    fail "the service is running already; end it through its tray menu and try again."
fi
if (exec 3<>/dev/tcp/localhost/$port) 2>/dev/null; then
    fail "another program listens on port $port."
fi
cmake -S . -B build-demo -G Ninja
cmake --build build-demo

work=$(mktemp -d)
started=()
clean_up() {
    local i
    for ((i = ${#started[@]} - 1; i >= 0; i--)); do
        if kill "${started[i]}" 2>/dev/null; then wait "${started[i]}" 2>/dev/null || true; fi
    done
    rm -rf "$work"
}
trap clean_up EXIT

# -- a desktop ------------------------------------------------------------------------------------------------------
has_desktop() {
    [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]
}
find_browser() {
    local name
    for name in ${BROWSER:+"$BROWSER"} xdg-open x-www-browser; do
        command -v "$name" && return
    done
}
start_desktop() {
    install_missing "${desktop_packages[@]}"
    Xvfb -displayfd 3 -screen 0 1024x768x24 3>"$work/display" 2>/dev/null &
    started+=($!)
    for _ in {1..100}; do
        [ ! -s "$work/display" ] || break
        sleep 0.1
    done
    [ -s "$work/display" ] || fail "Xvfb did not start."
    DISPLAY=:$(cat "$work/display")
    export DISPLAY
    unset WAYLAND_DISPLAY DBUS_SESSION_BUS_ADDRESS
    trayer --edge bottom --align right --widthtype request --height 32 >/dev/null 2>&1 &
    started+=($!)
}

# -- the service ----------------------------------------------------------------------------------------------------
request() {
    build-demo/bin/mvsignctl --port "$port" --timeout 30 "$@"
}
# start_service WINDOW: with the pad's window (1) or without (0).
start_service() {
    mkdir -p "$work/.config/mvsignpadsdk"
    printf '[Settings]\nStartWebService=true\nUILangID=3\nWebSocketPort=%s\n' "$port" \
        >"$work/.config/mvsignpadsdk/MVSignPadSDK_WSSvr.conf"
    env -u XDG_CONFIG_HOME HOME="$work" XAUTHORITY="${XAUTHORITY:-$HOME/.Xauthority}" \
        XDG_RUNTIME_DIR="${XDG_RUNTIME_DIR:-$work}" MVSIGNPAD_VIRTUAL_WINDOW="$1" "$program" &
    service=$!
    started+=("$service")
    for _ in {1..300}; do
        ! request GetSize >/dev/null 2>&1 || return 0
        sleep 0.1
    done
    fail "the service did not start; is there a system tray?"
}

# -- signed by hand -------------------------------------------------------------------------------------------------
sign_by_hand() {
    local page="file://$PWD/web/demo/index.html?port=$port"
    start_service 1
    echo "demo: sign on $page"
    echo "demo: Ctrl-C, or Exit in the tray menu, ends it"
    trap 'exit 0' INT TERM
    # The browser is the user's own: it outlives the demo.
    setsid -f "$browser" "$page" >/dev/null 2>&1
    wait "$service"
}

# -- captured -------------------------------------------------------------------------------------------------------
# Sends a request, leaves the result in $result and shows both.
ask() {
    local call=$1
    shift
    [ $# -gt 0 ] && call+="?$(IFS='&' && echo "$*")"
    result=$(request "${call%%\?*}" "$@")
    show "$call"
}
# show CALL: prints a request and its result, each cut to a line.
show() {
    local line=${result//$'\n'/ }
    [ ${#line} -le 70 ] || line="${line:0:56}... (${#line} characters)"
    printf '  %-62s -> %s\n' "$1" "$line"
}
# keep_saved FILE: takes the picture whose path is in $result into the output.
keep_saved() {
    [[ $result == /* ]] || fail "the picture was not saved: $result"
    mv -f "$result" "$output/$1"
}
# The picture inside the image reply in $result, decoded.
picture() {
    local image=${result#*\"Image\":\"}
    base64 -d <<<"${image%%\"*}"
}
wait_for_confirmation() {
    local key=-1
    for _ in {1..600}; do
        key=$(request GetDeviceConfirmOrCancelKeyStatus)
        [ -t 1 ] && printf '\r  signing: %s points ' "$(request GetSize)"
        [ "$key" = -1 ] || break
        sleep 0.1
    done
    [ -t 1 ] && printf '\r'
    [ "$key" = 1 ] || fail "the signature was not confirmed."
}
capture_signature() {
    echo "A signature on the Alder pad:"
    ask InitialDevice id=2 width=800 height=480
    ask SetPenColor R=20 G=40 B=120
    ask SetPenWidth Width=4
    wait_for_confirmation
    ask GetDeviceConfirmOrCancelKeyStatus
    ask GetSize
    ask GetPointer
    printf '%s\n' "$result" >"$output/points.json"
    ask GetInks
    picture >"$output/signature-transparent.png"
    ask SaveDrawingImage type=3 dpi=300 path="$work/signature.png"
    keep_saved signature.png
    ask GetSVGImageBase64Data
    base64 -d <<<"$result" >"$output/signature.svg"
}
capture_wps_signature() {
    echo "A WPS signature with name and date:"
    ask UpdateWPSSettings id=1 dt=1 af=0 pw=4 name='Lena Vale 简'
    ask WPSSignConfirmed id=1
    keep_saved wps-signature.png
    rm -f /tmp/MVeSignWPS.png # of which it is composed
}
wait_for_finger() {
    for _ in {1..100}; do
        result=$(request GetFingerPrintImage FPImageOnly=1)
        [ -z "$result" ] || return 0
        sleep 0.1
    done
    fail "no finger came to the sensor."
}
capture_fingerprint() {
    echo "A fingerprint on the Cedar pad:"
    ask InitialDevice id=7 width=800 height=480
    wait_for_finger
    show 'GetFingerPrintImage?FPImageOnly=1'
    picture >"$output/fingerprint.png"
    ask UninitialDevice
}
capture() {
    start_service 0
    rm -rf "$output"
    mkdir "$output"
    capture_signature
    capture_wps_signature
    capture_fingerprint
    echo "The pictures are in $output:"
    (cd "$output" && for file in *; do [ -s "$file" ] || fail "$file is empty."; echo "  $file"; done)
}

if has_desktop && browser=$(find_browser); then
    sign_by_hand
elif has_desktop; then
    echo "demo: no browser here, capturing on the running desktop"
    capture
else
    echo "demo: no desktop here, on Xvfb with a tray"
    start_desktop
    capture
fi
