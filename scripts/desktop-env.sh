# Sourced by the desktop scripts: a virtual display and a private session bus,
# each stopped again by its process id.
#   desktop_start_display   starts Xvfb on a free display number, sets DISPLAY
#   desktop_start_bus       starts a private dbus-daemon, sets DBUS_SESSION_BUS_ADDRESS
#   desktop_stop            stops what the two started

desktop_pids=()

desktop_start_display() {
    local n
    for n in $(seq 90 140); do
        [ -e "/tmp/.X$n-lock" ] || [ -e "/tmp/.X11-unix/X$n" ] && continue
        Xvfb ":$n" -screen 0 "${DESKTOP_SCREEN:-1280x800x24}" -nolisten tcp >/dev/null 2>&1 &
        desktop_pids+=($!)
        export DISPLAY=":$n"
        local i
        for i in $(seq 1 50); do
            [ -e "/tmp/.X11-unix/X$n" ] && return 0
            sleep 0.1
        done
        echo "Xvfb did not start on :$n" >&2
        return 1
    done
    echo "no free display number" >&2
    return 1
}

desktop_start_bus() {
    local out
    out=$(dbus-daemon --session --print-address=1 --print-pid=1 --fork)
    export DBUS_SESSION_BUS_ADDRESS=$(sed -n 1p <<<"$out")
    desktop_pids+=($(sed -n 2p <<<"$out"))
}

desktop_stop() {
    local pid
    for pid in "${desktop_pids[@]}"; do
        kill "$pid" 2>/dev/null || true
    done
    desktop_pids=()
}

# The mpv plug-in that speaks MPRIS, as mpv's --script argument (Debian loads
# it by itself from /etc/mpv/scripts; naming it again would load it twice).
desktop_mpv_mpris() {
    if [ -e /etc/mpv/scripts/mpris.so ]; then
        return 0
    fi
    local so
    for so in /usr/lib/mpv-mpris/mpris.so /usr/lib/x86_64-linux-gnu/mpv/mpris.so; do
        [ -e "$so" ] && { echo "--script=$so"; return 0; }
    done
}

# A 20 s test track with tags, for when the repository's sample is missing.
desktop_make_track() {  # FILE ARTIST TITLE [SECONDS]
    sox -n -r 8000 -c 1 "$1" synth "${4:-20}" sine 440 vol 0.1
    metaflac --set-tag="ARTIST=$2" --set-tag="TITLE=$3" "$1"
}
