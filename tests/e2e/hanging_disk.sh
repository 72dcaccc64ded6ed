#!/bin/bash
# A disk that does not answer, under the real program: what sounds goes on, STOP stops it, the palette shows its
# names, and a press sounds as soon as its file is there.
#   hanging_disk.sh BIN_FOLDER SLOW_DISK_LIBRARY
. "$(dirname "$0")/window.sh"
own_servers 1
own_home PaletteIndex=Good
mkdir -p "$work/slow"
{
    printf '[Good]\r\nPath_0=Audio_Sample\\Tone.wav\r\n[Slow]\r\n'
    for slot in $(seq 0 11); do
        cp "$work/home/Audio_Sample/Tone.wav" "$work/slow/Tone$slot.wav"
        printf 'Path_%d=%s\r\n' "$slot" "$work/slow/Tone$slot.wav"
    done
} >"$work/home/palette.ini"
touch "$work/hangs"
start_program LD_PRELOAD="$2" SLOW_FOLDER="$work/slow" SLOW_SWITCH="$work/hangs"
await plays
find_window

record out1
press
sleep 1
xdotool key --window "$window" Next
sleep 3
heard 0 "while the palette opened" 3 2
xdotool key --window "$window" Escape
sleep 0.7
from=$(length)
sleep 1
[ "$(python3 "$here/tone.py" measure "$work/out1.raw" "$from")" = "0.00 0" ] || fail "STOP had not stopped it"
press
sleep 1
from=$(length)
rm "$work/hangs"
sleep 2
heard "$from" "when the disk answered" 1.2
touch "$work/hangs"
xdotool key --window "$window" Prior
xdotool key --window "$window" Next
sleep 0.3
close_program 5  # while its disk hangs
echo "hanging_disk: sound, STOP, a press and the end did not wait for the disk"
