#!/usr/bin/env bash
# Makes samples/harbour.flac, the sample track that samples/harbour.tvl times:
# a soft plucked chord for each line of the lyric (C, Am, F, G, then C to close),
# mono at a low sample rate, with its artist, album and title as Vorbis
# comments. The file is committed; run this only to make it again (needs sox
# and flac).
set -euo pipefail
cd "$(dirname "$0")/.."

rate=11025
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# One chord: LENGTH seconds, its notes strummed upwards, struck twice.
chord() {
    local out=$1 length=$2
    shift 2
    local half
    half=$(awk "BEGIN { print $length / 2 }")
    local synth=()
    for note in "$@"; do synth+=(pluck "$note"); done
    sox -q -r 44100 -c "$#" -n -c 1 "$work/strum.wav" synth "$half" "${synth[@]}" \
        delay 0 0.09 0.18 0.27 remix - trim 0 "$half" fade 0 "$half" 0.2 gain -n -8
    sox -q "$work/strum.wav" "$work/strum.wav" "$work/$out"
}

# Chord changes fall on the line starts of the lyric: 0, 4.2, 8.4, 12.6, 16.5 s.
chord 1.wav 4.2 C3 G3 E4 C5
chord 2.wav 4.2 A2 E3 C4 A4
chord 3.wav 4.2 F2 C3 A3 F4
chord 4.wav 3.9 G2 D3 B3 G4
chord 5.wav 2.5 C3 G3 E4 C5

sox -q "$work"/{1,2,3,4,5}.wav -b 16 -c 1 -t wavpcm "$work/harbour.wav" \
    lowpass 1800 reverb 40 50 60 remix - rate "$rate" fade q 0.05 19.0 2.0 gain -n -3 trim 0 19.0
rm -f samples/harbour.flac
flac --silent --best -o samples/harbour.flac "$work/harbour.wav"
metaflac --remove-all-tags \
    --set-tag="ARTIST=Toval Samples" \
    --set-tag="ALBUM=Toval Samples" \
    --set-tag="TITLE=Harbour Lanterns" \
    samples/harbour.flac
ls -l samples/harbour.flac
