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
step() { echo; echo "=== $*"; }

step "native build and tests"
cmake --preset default >/dev/null
cmake --build --preset default
ctest --preset default || status=1

step "sanitizer build (ASan + UBSan) and tests"
cmake --preset asan >/dev/null
cmake --build --preset asan
ctest --preset asan || status=1

step "Windows x86_64 build, tests under Wine"
cmake --preset mingw-x64 >/dev/null
cmake --build --preset mingw-x64
mkdir -p build/wineprefix
ctest --preset mingw-x64 || status=1

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
        fuzzed=$((fuzzed + 1))
    else
        echo "$name: FINDING"; tail -n 40 "build/fuzz/$name.log"; status=1
    fi
done
echo "fuzz targets run: $fuzzed"

exit $status
