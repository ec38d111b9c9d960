#!/usr/bin/env bash
# Builds and runs every test: the native suite, the same suite under
# AddressSanitizer + UndefinedBehaviorSanitizer, the Windows (x86_64) build of
# the core and its tests under Wine, the 32-bit Windows release build, and a
# short run of every fuzz target. It ends with the cases of each suite and the
# total, "total: N passed, N failed": every GoogleTest case of every test
# program, one case per fuzz target and one for the include check.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh

FUZZ_SECONDS=${FUZZ_SECONDS:-5}
status=0
passed=0
failed=0
step() { echo; echo "=== $*"; }

suites=()  # one line per suite for the closing breakdown

# Counts one suite's cases into the totals and the breakdown: PASSED FAILED LABEL.
count() {
    passed=$((passed + $1)); failed=$((failed + $2))
    ((${2} == 0)) || status=1
    suites+=("$(printf '%-28s %5d passed, %d failed' "$3" "$1" "$2")")
    echo "${suites[-1]}"
}

# Reads one attribute of the <testsuites> element of a GoogleTest XML report.
report_attr() {
    local v
    v=$(grep -o -m 1 "<testsuites [^>]*" "$1" | grep -o " $2=\"[0-9]*\"" | tr -dc 0-9 || true)
    echo "${v:-0}"
}

# The cases a GoogleTest XML report says were skipped, summed over its suites.
skipped() {
    local n=0 v
    for v in $(grep -o '<testsuite [^>]*' "$1" | grep -o ' skipped="[0-9]*"' | tr -dc '0-9\n' || true); do
        n=$((n + v))
    done
    echo "$n"
}

# Runs every test program of one ctest preset, one at a time, each writing its
# GoogleTest report into a folder of its own, and counts their cases. A program
# that fails with no failed case (a crash, a leak found at exit) or writes no
# report counts as one failed case.
run_ctest() {
    local preset=$1 reports
    reports=$PWD/build/$preset/test-reports
    rm -rf "$reports"; mkdir -p "$reports"
    local list
    list=$(ctest --preset "$preset" -N 2>&1 | sed -n -E 's/^ *Test +#([0-9]+): ([^ ]+).*/\1 \2/p')
    if [ -z "$list" ]; then
        echo "ctest --preset $preset lists no test"
        count 0 1 "$preset: (no tests)"; return
    fi
    local number name
    while read -r number name; do
        local dir=$reports/$name out=$reports/$name.log
        mkdir -p "$dir"
        # Programs under Wine see the Unix root as drive Z:.
        local where=$dir/
        [[ $preset == mingw* ]] && where="Z:${dir//\//\\}\\"
        local ok=1
        GTEST_OUTPUT="xml:$where" ${ctest_wrapper[@]+"${ctest_wrapper[@]}"} ctest --preset "$preset" -I "$number,$number" >"$out" 2>&1 || ok=0
        local xmls=("$dir"/*.xml) tests=0 bad=0 off=0 x
        for x in "${xmls[@]}"; do
            [ -f "$x" ] || continue
            tests=$((tests + $(report_attr "$x" tests)))
            bad=$((bad + $(report_attr "$x" failures) + $(report_attr "$x" errors)))
            off=$((off + $(report_attr "$x" disabled) + $(skipped "$x")))
        done
        [ -f "${xmls[0]}" ] || echo "$preset $name: no test report"
        ((ok)) || { echo "--- $preset $name failed:"; tail -n 60 "$out"; }
        # The program's own failure beyond its failed cases is one more.
        local extra=0
        if ! ((ok)) && ((bad == 0)) || [ ! -f "${xmls[0]}" ]; then extra=1; fi
        count $((tests - bad - off)) $((bad + extra)) "$preset $name"
    done <<<"$list"
}

# Configures and builds one preset; a build that fails counts as one failed case.
build() {
    if cmake --preset "$1" >/dev/null && cmake --build --preset "$1"; then return 0; fi
    count 0 1 "$1: build"
    return 1
}

step "include ladder"
if scripts/check-layers.sh; then count 1 0 "include ladder"; else count 0 1 "include ladder"; fi

step "native build and tests"
build default && run_ctest default

step "sanitizer build (ASan + UBSan) and tests"
build asan && run_ctest asan

step "Windows x86_64 build, tests under Wine"
# One throw-away Wine prefix per run; the Windows programs' windows live on a
# virtual display.
rm -rf build/wineprefix
mkdir -p build/wineprefix
ctest_wrapper=(xvfb-run -a -s "-screen 0 1024x768x24")
build mingw-x64 && run_ctest mingw-x64
ctest_wrapper=()

step "Windows i686 release build"
build mingw-i686 || true

step "fuzz targets, ${FUZZ_SECONDS} s each"
fuzz_ok=0
fuzz_bad=0
build fuzz || true
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
        fuzz_ok=$((fuzz_ok + 1))
    else
        echo "$name: FINDING"; tail -n 40 "build/fuzz/$name.log"
        fuzz_bad=$((fuzz_bad + 1))
    fi
done
count "$fuzz_ok" "$fuzz_bad" "fuzz targets"

echo
echo "=== test cases by suite (fuzz targets: one case each)"
printf '%s\n' "${suites[@]}"
echo "total: $passed passed, $failed failed"
exit $status
