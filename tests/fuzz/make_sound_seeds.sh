#!/bin/sh
# Seeds of decoder_fuzz: a blink of sound in every format, with the byte in front that chooses its name.
#   make_sound_seeds.sh FOLDER
set -eu
out=$1
mkdir -p "$out"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
number=0
for kind in wav aiff flac ogg opus mp3 mp2 m4a wma mpg avi mkv; do
    ffmpeg -v error -y -f lavfi -i "sine=440:d=0.06:r=48000" -ac 1 "$work/a.$kind"
    { printf "\\$(printf %o "$number")"; cat "$work/a.$kind"; } >"$out/$kind"
    number=$((number + 1))
done
