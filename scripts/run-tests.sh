# shellcheck shell=bash
# Sourced by the scripts that run tests which may miss their time on a busy machine.

# run_tests BUILD_DIRECTORY [CTEST_ARGUMENT...]: runs once more what fails, and says at the end which tests needed that.
run_tests() {
    local output=$1/tests.txt status=0 name
    ctest --test-dir "$1" --output-on-failure --repeat until-pass:2 "${@:2}" | tee "$output" || status=$?
    # The first run of a test is counted ("3/120 Test #5: ..."), the second is not.
    sed -nE 's/^ +Test +#[0-9]+: ([^ ]+) \.* +Passed.*/\1/p' "$output" | while read -r name; do
        echo "needed a second run: $name"
    done
    return "$status"
}
