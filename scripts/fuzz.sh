#!/usr/bin/env bash
# Builds the fuzz targets with clang and runs them side by side; a finding ends the run of its target and stays in
# build-fuzz/findings. What an earlier run has discovered in build-fuzz/corpus is where the next one starts.
#
#   scripts/fuzz.sh                   half an hour for each target
#   scripts/fuzz.sh SECONDS [NAME...] so long for each of the named ones: request, points, settings
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-1800}
[ $# -eq 0 ] || shift
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(request points settings)

. scripts/packages.sh
install_missing "${build_packages[@]}" "${fuzz_packages[@]}"
build=$PWD/build-fuzz
CXX=clang++ cmake -S . -B "$build" -G Ninja -DBUILD_TESTING=ON -DCMAKE_COMPILE_WARNING_AS_ERROR=ON \
    -DMVSIGNPAD_SANITIZE=fuzzer-no-link,address,undefined >/dev/null
cmake --build "$build" --target "${targets[@]/#/fuzz_}" fuzz_sdk

# An input may cost a second and half a gigabyte: what the largest that the real limits allow need at most.
limits=(-timeout=10 -rss_limit_mb=2048 -max_len=8192)

# fuzz TARGET: in a home, a /tmp and a network of its own, since the requests write files and the service listens.
fuzz() {
    local target=$1 corpus=$build/corpus/$1 log=$build/$1.log leaks=1
    mkdir -p "$corpus" "$build/findings"
    # Qt's JSON parser leaks the values of a member that an object names twice.
    [ "$target" != points ] || leaks=0
    env ASAN_OPTIONS="detect_stack_use_after_return=1:detect_leaks=$leaks" \
        UBSAN_OPTIONS=print_stacktrace=1 \
        LSAN_OPTIONS="suppressions=$PWD/tests/sanitizers/leak.supp:print_suppressions=0" \
        tests/desktop/isolated.sh "$PWD" "$build" "$build/bin/fuzz_$target" \
        -max_total_time="$seconds" -dict="$PWD/tests/fuzz/$target.dict" -print_final_stats=1 \
        -artifact_prefix="$build/findings/$target-" "${limits[@]}" -close_fd_mask=2 \
        "$corpus" "$PWD/tests/fuzz/corpus/$target" >"$log" 2>&1 || {
        tail -n 60 "$log" >&2
        return 1
    }
    echo "$target:"
    grep -E ' DONE |number_of_executed_units|peak_rss_mb' "$log"
}

echo "fuzzing ${targets[*]} for $seconds s"
runs=()
for target in "${targets[@]}"; do
    fuzz "$target" &
    runs+=($!)
done
status=0
for run in "${runs[@]}"; do
    wait "$run" || status=1
done
exit $status
