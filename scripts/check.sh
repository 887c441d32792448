#!/usr/bin/env bash
# The checks that take long: the tests under sanitizers, static analysis, a minute of fuzzing for each target and two
# minutes of load.
#
#   scripts/check.sh             all of them
#   scripts/check.sh STEP...     some of: address thread analysis fuzz soak
set -euo pipefail
cd "$(dirname "$0")/.."

steps=("$@")
[ ${#steps[@]} -gt 0 ] || steps=(address thread analysis fuzz soak)

. scripts/packages.sh
. scripts/rooms.sh
install_missing "${build_packages[@]}" "${desktop_packages[@]}" "${test_packages[@]}" "${check_packages[@]}"
jobs=$(nproc)

# The tests of the built files, of the packages and of the web client have nothing in them that a sanitizer sees. The pad's
# window is opened and closed for a minute.
check_address() {
    cmake -S . -B build-address -G Ninja -DMVSIGNPAD_SANITIZE=address,undefined >/dev/null
    cmake --build build-address
    local -x MVSIGNPAD_STRESS_SECONDS=60
    local run=(ctest --test-dir build-address --output-on-failure --parallel $((2 * jobs)))
    "${run[@]}" -L '^(unit|sdk)$'
    # A desktop may miss its time on a busy machine, as in scripts/test.sh.
    "${run[@]}" -L '^(desktop|faults)$' --repeat until-pass:2
}

# What runs on several threads: the service's thread beside its owner's, pushes from foreign threads, the log.
thread_tests=(tst_websocketservice tst_push tst_requests tst_logging)
check_thread() {
    cmake -S . -B build-thread -G Ninja -DMVSIGNPAD_SANITIZE=thread >/dev/null
    cmake --build build-thread --target "${thread_tests[@]}"
    local names
    names=$(IFS='|' && echo "${thread_tests[*]}")
    ctest --test-dir build-thread --output-on-failure --parallel "$jobs" --no-tests=error -R "^($names)\$"
}

# The product's sources, as the fuzz build compiles them.
product_sources() {
    grep -o '"file": "[^"]*"' build-fuzz/compile_commands.json | cut -d'"' -f4 |
        grep -E "^$PWD/($product_rooms_pattern)/" | sort -u
}

check_analysis() {
    CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DCMAKE_EXPORT_COMPILE_COMMANDS=ON \
        -DMVSIGNPAD_SANITIZE=fuzzer-no-link,address,undefined >/dev/null
    # The sources that Qt's compiler generates are included by the others.
    cmake --build build-fuzz --target mvsignpadsdk_wssvr mvsignctl virtualpad
    # Texts are handed on by value: a copy shares its characters.
    cppcheck --quiet --error-exitcode=1 --inline-suppr --std=c++17 --library=qt -I . \
        --enable=warning,performance,portability --suppress=missingIncludeSystem \
        --suppress=passedByValue -j "$jobs" \
        "${product_rooms[@]}"
    product_sources | xargs -P "$jobs" -n 1 clazy-standalone -p build-fuzz --checks=level1 \
        --header-filter="^$PWD/($product_rooms_pattern)/" >build-fuzz/clazy.txt 2>&1 || true
    if grep -E '\[-Wclazy|error:' build-fuzz/clazy.txt; then
        return 1
    fi
    product_sources | xargs -P "$jobs" -n 1 clang-tidy -p build-fuzz --quiet \
        --header-filter="^$PWD/($product_rooms_pattern)/" 2>/dev/null
}

check_fuzz() { scripts/fuzz.sh 60; }
check_soak() { scripts/soak.sh 2; }

for step in "${steps[@]}"; do
    echo "== $step"
    started=$SECONDS
    "check_$step"
    echo "== $step: passed in $((SECONDS - started)) s"
done
