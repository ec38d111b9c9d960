#!/usr/bin/env bash
# Measures the Linux program beside its peer OSD Lyrics, both following the
# same mpv on a virtual display and a private session bus: memory (PSS of all
# the program's processes after a minute of playback), CPU time per minute of
# playback, time from launch until the lyric is shown (Toval: its trace; the
# peer: its first window), and how late Toval's highlight comes after each
# word's time (its trace: TOVAL_TRACE). Not a test: it prints figures.
#   bench/desktop-measure.sh [SECONDS]    (default 60 s of playback each)
#   TOVAL_PEER=0 measures Toval alone.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
seconds=${1:-60}

scripts/deps.sh
cmake --preset default >/dev/null
cmake --build --preset default --target toval >/dev/null
toval=$root/build/default/app/qt/toval
out=$root/build/measure
rm -rf "$out" && mkdir -p "$out"
source scripts/desktop-env.sh
trap desktop_stop EXIT
desktop_start_display
desktop_start_bus
export XDG_CONFIG_HOME=$out/config XDG_CACHE_HOME=$out/cache XDG_STATE_HOME=$out/state
export XDG_RUNTIME_DIR=$out/runtime
mkdir -p "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"

# A track longer than the measurement, with a lyric beside it: a line every
# 4 s, five words in each; the same lines as LRC for the peer, which reads no tvl.
length=$((seconds + 20))
desktop_make_track "$out/long.flac" "Toval Samples" "Long Harbour" "$length"
python3 - "$out/long" "$length" <<'PY'
import sys
path, length = sys.argv[1], int(sys.argv[2])
words = ["Lanterns", "on", "the", "harbour", "wall"]
out = ["[PROPERTY]", "MUTATION:1", "TRACKLENGTH:%d" % (length * 1000), "RIGHTTOLEFT:0"]
body, lrc = [], []
for line, start in enumerate(range(1000, length * 1000 - 4000, 4000)):
    body.append("[%d]" % start + " ".join("<%d>%s" % (start + 700 * w, t) for w, t in enumerate(words)))
    lrc.append("[%02d:%05.2f]%s" % (start // 60000, start % 60000 / 1000, " ".join(words)))
open(path + ".tvl", "w", newline="").write("\r\n".join(out) + "\r\n[\\PROPERTY]" + "\r\n".join(body) + "\r\n")
open(path + ".lrc", "w").write("\n".join(lrc) + "\n")
PY

now_ms() { python3 -c 'import time; print(int(time.monotonic() * 1000))'; }
# Starts a program in the background and sets t0 (the monotonic clock in ms,
# read just before the start, as the programs' traces read it) and pid.
launch() {
    read -r t0 pid < <(python3 - "$@" <<'PY'
import subprocess, sys, time
t0 = time.monotonic()
child = subprocess.Popen(sys.argv[1:], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                         stderr=subprocess.DEVNULL)
print(int(t0 * 1000), child.pid)
PY
)
}
# Process ids of the programs whose command line matches a pattern.
pids_of() { pgrep -u "$(id -u)" -f "$1" || true; }
cpu_ms() {  # PIDS...: CPU time of all their threads, in ms (the scheduler's own count, in ns)
    local pid total=0
    for pid in "$@"; do
        [ -d "/proc/$pid/task" ] || continue
        total=$((total + $(cat /proc/"$pid"/task/*/schedstat 2>/dev/null | awk '{s += $1} END {printf "%d", s / 1e6}')))
    done
    echo "$total"
}
pss_kb() {  # PIDS...
    local total=0 pid
    for pid in "$@"; do
        [ -r "/proc/$pid/smaps_rollup" ] || continue
        total=$((total + $(awk '/^Pss:/ {print $2}' "/proc/$pid/smaps_rollup")))
    done
    echo "$total"
}

start_mpv() {
    mpv --ao=null --vo=null --idle=no --really-quiet $(desktop_mpv_mpris) "$out/long.flac" &
    mpv_pid=$!
    for _ in $(seq 1 50); do
        dbus-send --session --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus \
            org.freedesktop.DBus.ListNames 2>/dev/null | grep -q org.mpris.MediaPlayer2.mpv && return 0
        sleep 0.1
    done
}
window_shown() { xwininfo -root -tree 2>/dev/null | grep -qi "$1"; }

# --- Toval (a first start fills the font caches of the fresh folders, as on any used machine)
"$toval" & warm=$!
sleep 2
kill "$warm"; wait "$warm" 2>/dev/null || true
start_mpv
sleep 2
TOVAL_TRACE=$out/trace.txt launch "$toval"
toval_pid=$pid
until grep -q "highlight line=[0-9]" "$out/trace.txt" 2>/dev/null; do sleep 0.01; done
shown=$(grep -m1 "highlight line=[0-9]" "$out/trace.txt" | cut -d' ' -f1)
started=$(grep -m1 " start$" "$out/trace.txt" | cut -d' ' -f1)
toval_launch=$((shown - t0))
toval_startup=$((started - t0))
# The minute starts 2 s after the lyric shows, as the peer's does after its window.
sleep 2
c0=$(cpu_ms "$toval_pid")
sleep "$seconds"
c1=$(cpu_ms "$toval_pid")
toval_pss=$(pss_kb "$toval_pid")
toval_cpu_ms=$(((c1 - c0) * 60 / seconds))
import -window root "$out/toval.png"
kill "$toval_pid" "$mpv_pid" 2>/dev/null || true
wait "$mpv_pid" 2>/dev/null || true
# The first highlight is the lyric appearing, not a word's time reached: its
# delay is the launch's.
late=$(awk '{split($5,p,"="); split($6,e,"="); if (e[2] > 0 && $3 != "word=-2147483648" && n++) print p[2] - e[2]}' \
    "$out/trace.txt" | sort -n | awk '{v[NR]=$1} END {if (NR) printf "median %d ms, 95%% %d ms, max %d ms (%d words)", v[int((NR+1)/2)], v[int(NR*0.95+0.5)], v[NR], NR}')

# --- the peer, where it can be installed
peer="not installed"
if [ "${TOVAL_PEER:-1}" = 0 ]; then
    peer="not measured (TOVAL_PEER=0)"
elif ! command -v osdlyrics >/dev/null || ! python3 -c 'import chardet, pycurl' 2>/dev/null; then
    sudo=""; [ "$(id -u)" = 0 ] || sudo="sudo"
    # Debian's package leaves out two modules its daemon imports.
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends \
        osdlyrics python3-chardet python3-pycurl >/dev/null 2>&1 || true
fi
if [ "${TOVAL_PEER:-1}" != 0 ] && command -v osdlyrics >/dev/null; then
    start_mpv
    sleep 2
    launch osdlyrics
    until window_shown "osd lyrics\|osdlyrics" || (($(now_ms) - t0 > 30000)); do sleep 0.01; done
    peer_launch=$(($(now_ms) - t0))
    sleep 2
    # The program, its daemon, and the player proxies and lyric sources the
    # daemon starts: the same processes at both readings.
    pids=$(pids_of osdlyrics)
    c0=$(cpu_ms $pids)
    sleep "$seconds"
    c1=$(cpu_ms $pids)
    peer_pss=$(pss_kb $pids)
    peer_cpu_ms=$(((c1 - c0) * 60 / seconds))
    import -window root "$out/peer.png"
    kill $pids "$mpv_pid" 2>/dev/null || true
    peer="$((peer_pss / 1024)) MB PSS ($(wc -w <<<"$pids") processes), ${peer_cpu_ms} ms CPU/min, ${peer_launch} ms to its window"
fi

echo
echo "after ${seconds} s of playback, mpv on a virtual display:"
echo "  Toval:      $((toval_pss / 1024)) MB PSS (1 process), ${toval_cpu_ms} ms CPU/min, ${toval_launch} ms to the lyric (${toval_startup} ms of it before its start-up)"
echo "  OSD Lyrics: $peer"
echo "  Toval's highlight after each word's time: $late"
echo "figures and screenshots: $out"
