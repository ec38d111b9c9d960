#!/usr/bin/env bash
# Builds toval, the Linux desktop program, and shows it at work: mpv plays the
# sample track (audio to the null output when there is no sound card) and
# Toval shows its lyric, found beside it, with the karaoke highlight moving.
# On a machine without a display it runs on a virtual one and writes
# screenshots under build/desktop/, and says where.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD

say() { echo "run-desktop.sh: $*" >&2; }
scripts/deps.sh
log=$root/build/run-desktop-build.log
mkdir -p "$root/build"
say "building toval, the desktop program (a first run takes a few minutes; output in $log)"
if ! { cmake --preset default && cmake --build --preset default --target toval; } >"$log" 2>&1; then
    tail -n 40 "$log" >&2
    say "the build failed; the end of its output is above"
    exit 1
fi
toval=$root/build/default/app/qt/toval
out=$root/build/desktop
mkdir -p "$out"
source scripts/desktop-env.sh
trap desktop_stop EXIT

# The sample: the track and its lyric side by side.
track=$root/samples/harbour.flac
if [ ! -e "$track" ]; then
    track=$out/harbour.flac
    [ -e "$track" ] || desktop_make_track "$track" "Toval Samples" "Harbour Lanterns" 19
    cp samples/harbour.tvl "$out/harbour.tvl"
fi

headless=0
if [ -z "${DISPLAY:-}" ] || ! xdpyinfo >/dev/null 2>&1; then
    headless=1
    desktop_start_display
    # A first start on a fresh machine: its own settings, cache and log.
    export XDG_CONFIG_HOME=$out/config XDG_CACHE_HOME=$out/cache XDG_STATE_HOME=$out/state
    export XDG_RUNTIME_DIR=$out/runtime
    mkdir -p "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
fi
[ -n "${DBUS_SESSION_BUS_ADDRESS:-}" ] || desktop_start_bus

audio=()
if [ ! -s /proc/asound/cards ] || grep -q "no soundcards" /proc/asound/cards; then audio=(--ao=null); fi

"$toval" &
toval_pid=$!
mpv_args=("${audio[@]}" --vo=null --idle=no $(desktop_mpv_mpris) --really-quiet "$track")

if ((headless)); then
    mpv "${mpv_args[@]}" &
    mpv_pid=$!
    shots=$out/screenshots
    rm -rf "$shots" && mkdir -p "$shots"
    for t in 2 5 9 14; do
        sleep $((t - ${last:-0}))
        last=$t
        import -window root "$shots/at-${t}s.png"
    done
    wait "$mpv_pid" || true
    kill "$toval_pid" 2>/dev/null || true
    wait "$toval_pid" 2>/dev/null || true
    echo "No display here: Toval ran on a virtual one while mpv played $track."
    echo "Screenshots: $shots"
    ls "$shots"
else
    echo "Toval runs in the tray; mpv plays $track in a loop. Close mpv (q) to end."
    mpv "${mpv_args[@]}" --loop-file=inf || true
    kill "$toval_pid" 2>/dev/null || true
fi
