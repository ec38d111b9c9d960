#!/usr/bin/env bash
# Installs the Debian packages that building and testing need. Idempotent and
# silent when everything is there already.
set -euo pipefail

packages=(
    cmake ninja-build g++ clang libclang-rt-14-dev
    libgtest-dev googletest libbenchmark-dev
    mingw-w64 g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix
    wine wine64
    libsqlite3-dev
    # toval-lyric reads audio tags; its tests make audio files to read
    libtag1-dev sox libsox-fmt-base libsox-fmt-mp3 flac
    # the lyric service
    libcpp-httplib-dev libpqxx-dev postgresql pkg-config
    # the Linux desktop program, its demo and its tests on a virtual display
    qt6-base-dev mpv mpv-mpris xvfb xauth x11-apps x11-utils imagemagick dbus dbus-x11
    # the Windows program's release archive
    zip
)
missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if ((${#missing[@]})); then
    sudo=""
    [ "$(id -u)" = 0 ] || sudo="sudo"
    export DEBIAN_FRONTEND=noninteractive
    echo "deps.sh: installing ${missing[*]} (once; this can take a few minutes)" >&2
    $sudo apt-get update -qq
    $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi
