# Sourced by the other scripts: what they need of Debian's packages, and how they get it.

build_packages=(cmake ninja-build g++ qtbase5-dev libqt5websockets5-dev)
# A desktop without a screen: the server, a tray, fonts for the menu's texts, tools to look and click.
desktop_packages=(xvfb trayer xdotool imagemagick x11-utils procps fonts-dejavu-core fonts-noto-cjk)
test_packages=(dbus openbox lxqt-panel util-linux iproute2 desktop-file-utils librsvg2-bin icoutils binutils file
    nodejs npm chromium)

as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

# Installs those of the named packages that are not there yet.
install_missing() {
    local package missing=()
    for package in "$@"; do
        [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    # What is on the path from elsewhere serves as well.
    local wanted=()
    for package in "${missing[@]}"; do
        case $package in
            nodejs) command -v node >/dev/null || wanted+=(nodejs) ;;
            npm) command -v npm >/dev/null || wanted+=(npm) ;;
            *) wanted+=("$package") ;;
        esac
    done
    [ ${#wanted[@]} -eq 0 ] && return
    echo "installing ${wanted[*]}"
    as_root apt-get -qq -o DPkg::Lock::Timeout=300 update
    as_root env DEBIAN_FRONTEND=noninteractive apt-get -qq -y -o DPkg::Lock::Timeout=300 \
        install --no-install-recommends "${wanted[@]}" >/dev/null
}
