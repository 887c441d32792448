#!/usr/bin/env bash
# Cross-builds for AArch64 in build-arm64/ and runs under user-mode emulation: the unit tests, the tests against the
# recording SDK, and a capture from end to end. scripts/test.sh --arch arm64 calls this.
set -euo pipefail
cd "$(dirname "$0")/.."

formats=/proc/sys/fs/binfmt_misc
handler=/usr/lib/binfmt.d/qemu-aarch64.conf

run_tests() {
    ctest --test-dir build-arm64 --output-on-failure --parallel "$(nproc)" --label-regex '^(unit|sdk)$'
    ctest --test-dir build-arm64 --output-on-failure --tests-regex '^tst_capture$' --no-tests=error
}

if [ "${1-}" = --inside ]; then
    # The tests start programs for AArch64, so the kernel must know what to run them with. A machine with systemd has
    # been told when qemu was installed; elsewhere this namespace is told.
    if [ ! -e "$formats/qemu-aarch64" ]; then
        mount -t binfmt_misc binfmt_misc "$formats"
        cat "$handler" > "$formats/register"
    fi
    run_tests
    exit
fi

[ "$(dpkg --print-architecture)" != arm64 ] || exec scripts/test.sh

. scripts/packages.sh
install_missing "${build_packages[@]}" "${desktop_packages[@]}" "${test_packages[@]}"
install_arm64_tools
cmake -S . -B build-arm64 -G Ninja -DBUILD_TESTING=ON -DCMAKE_COMPILE_WARNING_AS_ERROR=ON \
    -DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-aarch64.cmake
cmake --build build-arm64 --target unit_tests sdk_tests tst_capture

# With processes of their own: a test whose emulation goes wrong has been seen to kill every process in its reach.
exec unshare --user --map-root-user --mount --pid --fork --kill-child --mount-proc \
    scripts/without-pidfd.py "$0" --inside
