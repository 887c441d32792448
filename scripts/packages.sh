# shellcheck shell=bash disable=SC2034
# Sourced by the other scripts: what they need of Debian's packages, and how they get it.

build_packages=(cmake ninja-build g++ qtbase5-dev libqt5websockets5-dev qttools5-dev-tools)
# A desktop without a screen: the server, a tray, fonts for the menu's texts, tools to look and click.
desktop_packages=(xvfb xterm trayer xdotool imagemagick x11-utils procps fonts-dejavu-core fonts-noto-cjk)
# What tests/desktop/isolated.sh takes.
isolation_packages=(util-linux iproute2)
test_packages=("${isolation_packages[@]}" valgrind dbus openbox lxqt-panel desktop-file-utils librsvg2-bin icoutils binutils
    file nodejs npm chromium firefox-esr openssl libsm-dev)
# What the old builds of Chromium that the page is tested in are linked against.
test_packages+=(libnss3 libnspr4 libuuid1)

# The cross-compiler, the emulator, and the target's libraries beside the machine's own.
arm64_packages=(g++-aarch64-linux-gnu qemu-user-static qtbase5-dev:arm64 libqt5websockets5-dev:arm64
    libsm-dev:arm64)
packaging_packages=(dpkg-dev file rpm binutils python3)
packaging_check_packages=(lintian rpm rpmlint)
# The desktops' own panels, by the names that scripts/test-panels.sh has for them. UKUI's panel reads the settings of the
# other packages of its desktop.
declare -A panel_packages=(
    [ukui]='ukui-panel qt5-ukui-platformtheme ukui-themes ukui-settings-daemon-common ukui-control-center'
    [xfce]='xfce4-panel'
    [mate]='mate-panel'
    [sway]='sway waybar qtwayland5'
)
format_packages=(clang-format-14 shellcheck)
lint_packages=(clang python3-clang-14)
fuzz_packages=("${isolation_packages[@]}" clang libclang-rt-dev)
soak_packages=(gnuplot-nox)
check_packages=("${fuzz_packages[@]}" "${soak_packages[@]}" clang-tidy clazy cppcheck)

as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

# Installs those of the named packages that are not there yet.
install_missing() {
    local package missing=()
    for package in "$@"; do
        # A package that is there for two architectures answers twice.
        [[ $(dpkg-query -W -f '${db:Status-Status} ' "$package" 2>/dev/null) == installed* ]] || missing+=("$package")
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
        install --no-remove --no-install-recommends "${wanted[@]}" >/dev/null
}

# What cross-building for AArch64 takes on a machine of another architecture.
install_arm64_tools() {
    [ "$(dpkg --print-architecture)" != arm64 ] || return 0
    dpkg --print-foreign-architectures | grep -qx arm64 || as_root dpkg --add-architecture arm64
    install_missing "${arm64_packages[@]}"
}

# The time that the packages of the last commit bear, so that the same source makes the same packages.
source_date() { echo "${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)}"; }
