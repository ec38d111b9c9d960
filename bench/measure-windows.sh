#!/usr/bin/env bash
# Measures the Windows program under Wine on a virtual display, beside the
# demo player: launch to first lyric, working set after a minute of playback,
# CPU time per minute, and how late the highlight comes after a word's time.
# SECONDS_TO_MEASURE (default 60) sets the playback time.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh
cmake --preset mingw-x64 >/dev/null
cmake --build --preset mingw-x64 --target toval demo-player toval-measure

stage=build/windows-measure
rm -rf "$stage"
mkdir -p "$stage"
cp build/mingw-x64/app/win32/toval.exe build/mingw-x64/app/demo-player/demo-player.exe \
    build/mingw-x64/bench/win32/toval-measure.exe lang/enus.ini "$stage"/
cp samples/harbour.tvl "$stage"/
printf 'fLaC' >"$stage/harbour.flac"

export WINEPREFIX=${WINEPREFIX:-$PWD/build/wineprefix-measure} WINEDEBUG=-all
mkdir -p "$WINEPREFIX"
for n in $(seq 121 150); do
    [ -e "/tmp/.X11-unix/X$n" ] || [ -e "/tmp/.X$n-lock" ] || { display=":$n"; break; }
done
Xvfb "$display" -screen 0 1024x600x24 -nolisten tcp >/dev/null 2>&1 &
xvfb_pid=$!
trap 'kill $xvfb_pid 2>/dev/null || true' EXIT
export DISPLAY=$display
wineboot -i >/dev/null 2>&1 || true

folder=$(winepath -w "$PWD/$stage")
(cd "$stage" && wine toval-measure.exe "$folder\\toval.exe" "$folder\\demo-player.exe" "$folder" \
    "${SECONDS_TO_MEASURE:-60}")
