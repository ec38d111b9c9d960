#!/usr/bin/env bash
# Builds toval-lyric and shows it at work on the sample track and its lyric.
# With arguments, runs the tool with them instead, in the caller's folder
# (scripts/run.sh --help). What the script itself says goes to standard error,
# so that the tool's output can be piped or redirected as it is.
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
((first)) && say "building toval-lyric (first run: a minute or two)"
if ! (cd "$root" && cmake --build --preset default --target toval-lyric) >"$log" 2>&1; then
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
echo "More: $0 --help"
