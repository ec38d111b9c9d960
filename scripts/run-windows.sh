#!/usr/bin/env bash
# Builds the Windows programs (x86_64) and runs the demo player with Toval
# beside it under Wine: on your display when there is one, otherwise on a
# virtual display, where it takes a short series of screenshots and says
# where they are. SECONDS_TO_RUN (default 20 without a display) limits the run.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh
cmake --preset mingw-x64 >/dev/null
cmake --build --preset mingw-x64 --target toval demo-player

stage=build/windows-run
mkdir -p "$stage"
cp build/mingw-x64/app/win32/toval.exe build/mingw-x64/app/demo-player/demo-player.exe \
    lang/enus.ini lang/heil.ini "$stage"/
# The sample track and its word-timed lyric (the demo player need not play it).
[ -f samples/harbour.flac ] && cp samples/harbour.flac "$stage"/
cp samples/harbour.tvl "$stage"/

export WINEPREFIX=${WINEPREFIX:-$PWD/build/wineprefix-run} WINEDEBUG=${WINEDEBUG:--all}
mkdir -p "$WINEPREFIX"

xvfb_pid=""
cleanup() { [ -n "$xvfb_pid" ] && kill "$xvfb_pid" 2>/dev/null || true; }
trap cleanup EXIT

headless=1
if [ -n "${DISPLAY:-}" ] && timeout 3 xwd -root -display "$DISPLAY" -silent >/dev/null 2>&1; then
    headless=0
else
    for n in $(seq 91 120); do
        [ -e "/tmp/.X11-unix/X$n" ] || [ -e "/tmp/.X$n-lock" ] || { display=":$n"; break; }
    done
    Xvfb "$display" -screen 0 1024x600x24 -nolisten tcp >/dev/null 2>&1 &
    xvfb_pid=$!
    export DISPLAY=$display
    sleep 1
fi

seconds=${SECONDS_TO_RUN:-$((headless ? 20 : 0))}
demo_args=()
((seconds > 0)) && demo_args=(--quit-after "$seconds")

echo "Preparing Wine (the first run takes a while)..."
wineboot -i >/dev/null 2>&1 || true
(cd "$stage" && wine demo-player.exe "${demo_args[@]}" >/dev/null 2>&1) &
demo_pid=$!
sleep 2
(cd "$stage" && wine toval.exe >/dev/null 2>&1) &
toval_pid=$!

if ((headless)); then
    shots=build/windows-run/screens
    rm -rf "$shots"
    mkdir -p "$shots"
    for i in $(seq 1 8); do
        sleep 2
        xwd -root -display "$DISPLAY" -silent | convert xwd:- "$shots/shot-$i.png"
    done
    echo "Screenshots of the demo player and Toval: $PWD/$shots/"
else
    echo "The demo player runs: Space play/pause, arrows seek, N next track, Esc quits (Toval follows)."
fi
wait "$demo_pid" || true
wait "$toval_pid" || true
