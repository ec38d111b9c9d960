#!/usr/bin/env bash
# Without arguments: runs Toval, the desktop program, beside mpv playing the
# sample track (scripts/run-desktop.sh), after toval-lyric has shown the
# sample's lyric. With arguments: runs toval-lyric with them, in the caller's
# folder (scripts/run.sh --help). What the script itself says goes to standard
# error, so that the tool's output can be piped or redirected as it is.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
say() { echo "run.sh: $*" >&2; }

"$root/scripts/deps.sh"

tool=$root/build/default/app/cli/toval-lyric
log=$root/build/run-build.log
first=0
[ -x "$tool" ] || first=1
if [ ! -f "$root/build/default/build.ninja" ]; then
    say "configuring the build in build/default (first run only)"
    mkdir -p "$root/build"
    if ! (cd "$root" && cmake --preset default) >"$log" 2>&1; then
        cat "$log" >&2
        say "configuring failed; the whole output is above"
        exit 1
    fi
fi
# Keeps the build's output in the log and shows how far it has come: one
# line that counts up on a terminal, every tenth step otherwise.
progress() {
    local line shown=0
    while IFS= read -r line; do
        printf '%s\n' "$line" >>"$log"
        [[ $line =~ ^\[([1-9][0-9]*)/([0-9]+)\] ]] || continue
        local step=${BASH_REMATCH[1]} of=${BASH_REMATCH[2]}
        if [ -t 2 ]; then
            printf '\rrun.sh: building toval-lyric: step %s of %s ' "$step" "$of" >&2
            shown=1
        elif ((step % 10 == 0 || step == of)); then
            say "building toval-lyric: step $step of $of"
        fi
    done
    ((shown)) && echo >&2
    return 0
}
: >"$log"
((first)) && say "building toval-lyric (first run: a few minutes; output in build/run-build.log)"
if ! (cd "$root" && cmake --build --preset default --target toval-lyric) 2>&1 | progress; then
    tail -n 40 "$log" >&2
    say "the build failed; the end of its output is above (all of it: $log)"
    exit 1
fi
((first)) && say "built: $tool"

if (($#)); then
    exec "$tool" "$@"
fi

# The demonstration runs in the repository so that its paths read short.
cd "$root"
echo "== samples/harbour.tvl: its lines, and the times of its words"
"$tool" print samples/harbour.tvl --words
echo
echo "== lookup samples/harbour.flac: artist, album and title from the track's own"
echo "   tags, the lyric from samples/harbour.tvl beside it, written as LRC"
"$tool" lookup samples/harbour.flac --cache build/default/lyric-cache --format lrc
echo
say "now the desktop program: mpv plays samples/harbour.flac and Toval shows its lyric"
exec "$root/scripts/run-desktop.sh"
