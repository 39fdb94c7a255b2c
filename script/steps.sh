# SPDX-License-Identifier: MIT

# The frame of script/test and script/gate, which source it.
#
# Both scripts run steps in order, and the first step that fails ends the run. The last line of output
# is "N passed, N failed". A step that runs tests counts each test; every other step counts as one.

source "${BASH_SOURCE[0]%/*}/common.sh"

passed=0
failed=0
current=
began=$SECONDS

# run_step NAME COMMAND...
run_step() {
    current="$1"
    shift
    local start=$SECONDS before=$((passed + failed))
    step "$current"
    "$@"
    [ $((passed + failed)) -gt $before ] || passed=$((passed + 1))
    echo "    ($((SECONDS - start)) s)"
}

finish() {
    local status=$?
    if [ $status -eq 0 ]; then
        printf '\nAll steps passed in %d s.\n' $((SECONDS - began))
    else
        [ $failed -gt 0 ] || failed=1
        printf '\nFailed: %s\n' "$current"
    fi
    echo "$passed passed, $failed failed"
}
trap finish EXIT

# Configures and builds a preset: build PRESET.
build() {
    cmake --preset "$1" --log-level=WARNING >/dev/null
    cmake --build --preset "$1" --parallel "$JOBS"
}

# Runs all tests of a preset, names those that are skipped, and shows the output of those that fail.
run_tests() {
    local preset="$1" log="build/$1/ctest-output.txt" status=0 total=0 wrong=0 skipped=()
    ctest --preset "$preset" --parallel "$JOBS" >"$log" 2>&1 || status=$?
    if [[ "$(<"$log")" =~ ([0-9]+)\ tests?\ failed\ out\ of\ ([0-9]+) ]]; then
        wrong="${BASH_REMATCH[1]}"
        total="${BASH_REMATCH[2]}"
    fi
    mapfile -t skipped < <(sed -n 's/^[[:space:]]*[0-9]* - \(.*\) (Skipped)$/\1/p' "$log")
    failed=$((failed + wrong))
    passed=$((passed + total - wrong - ${#skipped[@]}))
    [ ${#skipped[@]} -eq 0 ] || printf 'Skipped: %s\n' "${skipped[@]}"
    if [ $status -ne 0 ] || [ "$total" -eq 0 ]; then
        # The lines of the tests that passed are left out.
        grep -vE '^ *([0-9]+/[0-9]+ Test .* Passed|Start +[0-9]+:)' "$log" >&2 || true
        return 1
    fi
    echo "$total tests: none failed, ${#skipped[@]} skipped"
}

# Builds users' projects against the installed tree, in all WAYs or the named ones: consumers [WAY...].
consumers() {
    rm -rf build/install
    cmake --install build/dev --prefix build/install >build/install-log.txt
    script/check-consumers build/install build/consumers "$@"
}
