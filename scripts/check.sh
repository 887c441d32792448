#!/usr/bin/env bash
# The checks that take long: the tests under sanitizers, static analysis, a minute of fuzzing for each target and two
# minutes of load; and, where they are named, the build with other compilers and whether the packages can be built again.
#
#   scripts/check.sh             address thread analysis fuzz soak
#   scripts/check.sh STEP...     some of these, or: compilers reproducible
set -euo pipefail
cd "$(dirname "$0")/.."

steps=("$@")
[ ${#steps[@]} -gt 0 ] || steps=(address thread analysis fuzz soak)

. scripts/packages.sh
. scripts/rooms.sh
. scripts/run-tests.sh
install_missing "${build_packages[@]}" "${desktop_packages[@]}" "${test_packages[@]}" "${check_packages[@]}"
jobs=$(nproc)

# The tests of the built files, of the packages and of the web client have nothing in them that a sanitizer sees. The pad's
# window is opened and closed for a minute.
check_address() {
    cmake -S . -B build-address -G Ninja -DBUILD_TESTING=ON -DCMAKE_COMPILE_WARNING_AS_ERROR=ON \
        -DMVSIGNPAD_SANITIZE=address,undefined >/dev/null
    cmake --build build-address --target unit_tests sdk_tests desktop_tests faults_tests
    local -x MVSIGNPAD_STRESS_SECONDS=60
    local parallel=$((2 * jobs))
    ctest --test-dir build-address --output-on-failure --parallel "$parallel" -L '^(unit|sdk)$'
    # A desktop may miss its time on a busy machine, as in scripts/test.sh.
    run_tests build-address --parallel "$parallel" -L '^(desktop|faults)$'
}

# What runs on several threads: the service's thread beside its owner's, pushes from foreign threads, the log.
thread_tests=(tst_websocketservice tst_push tst_requests tst_askorigin tst_logging)
check_thread() {
    cmake -S . -B build-thread -G Ninja -DBUILD_TESTING=ON -DCMAKE_COMPILE_WARNING_AS_ERROR=ON \
        -DMVSIGNPAD_SANITIZE=thread >/dev/null
    cmake --build build-thread --target "${thread_tests[@]}"
    local names
    names=$(IFS='|' && echo "${thread_tests[*]}")
    ctest --test-dir build-thread --output-on-failure --parallel "$jobs" --no-tests=error -R "^($names)\$"
}

# The product's sources, as clang compiles them.
product_sources() {
    grep -o '"file": "[^"]*"' build-clang/compile_commands.json | cut -d'"' -f4 |
        grep -E "^$PWD/($product_rooms_pattern)/" | sort -u
}

check_analysis() {
    scripts/build-clang.sh # the sources that Qt's compiler generates are included by the others
    # Texts are handed on by value: a copy shares its characters. Qt's macros around a warning are none to cppcheck.
    cppcheck --quiet --error-exitcode=1 --inline-suppr --std=c++17 --library=qt -I . \
        --enable=warning,performance,portability --suppress=missingIncludeSystem \
        --suppress=passedByValue -j "$jobs" --force \
        -DQT_WARNING_PUSH= -DQT_WARNING_POP= -DQT_WARNING_DISABLE_DEPRECATED= \
        "${product_rooms[@]}"
    product_sources | xargs -P "$jobs" -n 1 clazy-standalone -p build-clang --checks=level1 \
        --header-filter="^$PWD/($product_rooms_pattern)/"
    product_sources | xargs -P "$jobs" -n 1 clang-tidy -p build-clang --quiet \
        --header-filter="^$PWD/($product_rooms_pattern)/" 2>/dev/null
}

check_compilers() { scripts/build-compilers.sh; }
check_fuzz() { scripts/fuzz.sh 60; }
check_reproducible() { scripts/test-reproducible.sh; }
check_soak() { scripts/soak.sh 2; }

for step in "${steps[@]}"; do
    echo "== $step"
    started=$SECONDS
    "check_$step"
    echo "== $step: passed in $((SECONDS - started)) s"
done
