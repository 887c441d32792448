#!/usr/bin/env bash
# Runs the program of the last commit on the panels that desktops have: its icon, its menu, a signature in the pad's window.
# Leaves pictures of each in test-output/. Arguments name some of the panels: ukui xfce mate sway.
#
# The panels are installed in a bare Debian 12 and run as an ordinary user: sway refuses to be root's.
set -euo pipefail
cd "$(dirname "$0")/.."

. scripts/packages.sh
panels=("$@")
[ ${#panels[@]} -gt 0 ] || panels=(ukui xfce mate sway)

test_panels() {
    local panel packages=() output=build/test-output status=0
    for panel in "${panels[@]}"; do
        read -ra packages <<<"${packages[*]} ${panel_packages[$panel]}"
    done
    install_missing "${build_packages[@]}" "${desktop_packages[@]}" dbus openbox "${packages[@]}"
    cmake -S . -B build -G Ninja -DBUILD_TESTING=ON >/dev/null
    cmake --build build --target tst_panels
    install -d -m 1777 $output
    chmod a+rx /root # where the clone is
    setpriv --reuid=nobody --regid=nogroup --clear-groups env QT_QPA_PLATFORM=offscreen \
        build/tests/panels/tst_panels "${panels[@]/#/panel:}" || status=$?
    cp $output/*.png /share/
    return $status
}

if [ "${1-}" = --inside ]; then
    panels=("${@:2}")
    test_panels
    exit
fi

for panel in "${panels[@]}"; do
    if [ -z "${panel_packages[$panel]-}" ]; then
        echo "test-panels: no panel named $panel" >&2
        exit 2
    fi
done
mkdir -p test-output
scripts/root.sh --share test-output bookworm "$(dpkg --print-architecture)" scripts/test-panels.sh --inside "${panels[@]}"
ls -l test-output/panel-*.png
