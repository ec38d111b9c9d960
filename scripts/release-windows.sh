#!/usr/bin/env bash
# Builds the release archive for Windows users: the 32-bit programs, the
# language files, the sample track with its lyric, and a short how-to.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/deps.sh
cmake --preset mingw-i686 >/dev/null
cmake --build --preset mingw-i686 --target toval demo-player

version=$(sed -nE 's/^project\(Toval VERSION ([0-9.]+).*/\1/p' CMakeLists.txt)
name=toval-$version-win32
stage=build/release/$name
rm -rf "$stage"
mkdir -p "$stage"
cp build/mingw-i686/app/win32/toval.exe build/mingw-i686/app/demo-player/demo-player.exe "$stage"/
cp lang/*.ini "$stage"/
[ -f samples/harbour.flac ] && cp samples/harbour.flac "$stage"/
cp samples/harbour.tvl "$stage"/
printf '%s\r\n' \
    "Toval $version for Windows" \
    "" \
    "Toval shows the lyric of the track your media player plays and highlights" \
    "it word by word. It talks to the Toval plug-in inside the player." \
    "" \
    "Try it without a player:" \
    "  1. Start demo-player.exe: it plays harbour.flac (silently, on a clock)." \
    "  2. Start toval.exe. The lyric appears in a small window; drag it where you" \
    "     like, resize it at its edges, right-click it for the menu." \
    "  In the demo player: Space play/pause, arrows seek, N/P change track, Esc quit." \
    "" \
    "With your player: enable the Toval plug-in; it starts toval.exe for you." \
    "A .tvl or .lrc file beside a track is shown; otherwise the lyrics service is" \
    "asked (set conn_Server in %APPDATA%\\Toval\\config.ini)." \
    "" \
    "Languages: enus.ini (English), heil.ini (Hebrew); choose with language_name." \
    "Problems are written to Error.log beside toval.exe." \
    >"$stage/README.txt"
(cd build/release && rm -f "$name.zip" && zip -qr "$name.zip" "$name")
echo "Release archive: $PWD/build/release/$name.zip"
