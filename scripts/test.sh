#!/usr/bin/env bash
# Builds and runs every test: the native suite, the same suite under
# AddressSanitizer + UndefinedBehaviorSanitizer, the Windows (x86_64) build of
# the core and its tests under Wine, the 32-bit Windows release build, and a
# short run of every fuzz target.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh

FUZZ_SECONDS=${FUZZ_SECONDS:-5}
status=0
passed=0
failed=0
step() { echo; echo "=== $*"; }

# Runs one ctest preset and adds its counts to the totals.
run_ctest() {
    local log
    log=$(mktemp)
    if ${ctest_wrapper[@]+"${ctest_wrapper[@]}"} ctest --preset "$1" 2>&1 | tee "$log"; then :; fi
    local summary
    summary=$(grep -E 'tests passed, [0-9]+ tests failed out of [0-9]+' "$log" | tail -n 1)
    if [ -z "$summary" ]; then
        echo "ctest --preset $1 printed no summary"
        failed=$((failed + 1)); status=1
    else
        local total bad
        bad=$(sed -E 's/.* ([0-9]+) tests failed out of ([0-9]+).*/\1/' <<<"$summary")
        total=$(sed -E 's/.* ([0-9]+) tests failed out of ([0-9]+).*/\2/' <<<"$summary")
        passed=$((passed + total - bad)); failed=$((failed + bad))
        [ "$bad" = 0 ] || status=1
    fi
    rm -f "$log"
}

step "include ladder"
if scripts/check-layers.sh; then passed=$((passed + 1)); else failed=$((failed + 1)); status=1; fi

step "native build and tests"
cmake --preset default >/dev/null
cmake --build --preset default
run_ctest default

step "sanitizer build (ASan + UBSan) and tests"
cmake --preset asan >/dev/null
cmake --build --preset asan
run_ctest asan

step "Windows x86_64 build, tests under Wine"
cmake --preset mingw-x64 >/dev/null
cmake --build --preset mingw-x64
# One throw-away Wine prefix per run; the Windows programs' windows live on a
# virtual display.
rm -rf build/wineprefix
mkdir -p build/wineprefix
ctest_wrapper=(xvfb-run -a -s "-screen 0 1024x768x24")
run_ctest mingw-x64
ctest_wrapper=()

step "Windows i686 release build"
cmake --preset mingw-i686 >/dev/null
cmake --build --preset mingw-i686

step "fuzz targets, ${FUZZ_SECONDS} s each"
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz
fuzzed=0
for target in build/fuzz/fuzz/fuzz_*; do
    [ -x "$target" ] || continue
    name=$(basename "$target")
    corpus=build/fuzz/corpus/$name
    mkdir -p "$corpus"
    seeds=()
    [ -d "fuzz/corpus/$name" ] && seeds=("fuzz/corpus/$name")
    if "$target" -max_total_time="$FUZZ_SECONDS" -print_final_stats=0 "$corpus" "${seeds[@]}" \
        >"build/fuzz/$name.log" 2>&1; then
        echo "$name: no finding"
        fuzzed=$((fuzzed + 1)); passed=$((passed + 1))
    else
        echo "$name: FINDING"; tail -n 40 "build/fuzz/$name.log"; status=1
        failed=$((failed + 1))
    fi
done
echo "fuzz targets run: $fuzzed"

echo
echo "test suites and fuzz targets:"
echo "total: $passed passed, $failed failed"
exit $status
