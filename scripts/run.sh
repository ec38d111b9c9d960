#!/usr/bin/env bash
# Builds toval-lyric and shows it at work on the sample lyric. With arguments,
# runs the tool with them instead (scripts/run.sh --help).
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh
cmake --preset default >/dev/null
cmake --build --preset default --target toval-lyric >/dev/null
tool=build/default/app/cli/toval-lyric

if (($#)); then
    exec "$tool" "$@"
fi

echo "== samples/harbour.tvl: its lines and words with their times"
"$tool" print samples/harbour.tvl --words
echo
echo "== the lyric of the track samples/harbour.mp3, found beside it, as LRC"
"$tool" lookup samples/harbour.mp3 --cache build/default/lyric-cache --format lrc \
    --artist "Toval Samples" --title "Harbour Lanterns"
echo
echo "More: $0 --help"
