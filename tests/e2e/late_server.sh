#!/bin/bash
# A sound server that is not there when the real program starts, and one that is stopped then: the program starts all
# the same, takes the server soon after it comes, and a press is heard.
#   late_server.sh BIN_FOLDER
set -u
bin=$(cd "$1" && pwd)
here=$(cd "$(dirname "$0")" && pwd)
. "$here/../../tools/own_servers.sh"
. "$here/window.sh"
need Xvfb openbox xprop pulseaudio pactl xdotool parec python3
own_user
own_desktop
mkdir -p "$work/home"
python3 "$here/tone.py" write "$work/home/Audio_Sample/Tone.wav"
printf '[Test]\r\nPath_0=Audio_Sample\\Tone.wav\r\n' >"$work/home/palette.ini"
printf '[Settings]\r\nPaletteIndex=Test\r\nConfirmExit=0\r\nCheckUpdate=0\r\nMIDIEnabled=0\r\n' >"$work/home/zv.ini"

ms() { echo $(($(date +%s%N) / 1000000)); }
plays() { pactl list short sink-inputs | grep -q .; }
# taken WHEN: the program plays into the server within 4 s, on a machine that is busy with other things too.
taken() {
    local from
    from=$(ms)
    await plays
    local took=$(($(ms) - from))
    echo "$1: taken after $took ms"
    [ $took -lt 4000 ] || fail "$1: the server was taken after $took ms"
}

export PULSE_SERVER=unix:$work/run/native
from=$(ms)
start_program "$bin"
echo "without a server: started in $(($(ms) - from)) ms"
find_window
own_sound 1
taken "a server that came late"
record out1
xdotool mousemove --window "$window" "$x" "$y" click 1
sleep 1.5
read -r seconds gaps < <(python3 "$here/tone.py" measure "$work/out1.raw" 0)
awk -v s="$seconds" 'BEGIN { exit !(s > 0.8) }' || fail "the press was not heard: $seconds s"
kill "$recorder"
xdotool key --window "$window" alt+F4
await sh -c "! kill -0 $program"

server=$(pgrep -f "socket=$work/run/native")
kill -STOP "$server"
rm "$work/home/Trace_start.log"
from=$(ms)
start_program "$bin"
stopped=$(($(ms) - from))
echo "with a stopped server: started in $stopped ms"
kill -CONT "$server"
[ $stopped -lt 8000 ] || fail "a stopped server held the start for $stopped ms"
taken "a server that went on"
echo "late_server: the start did not wait for the server, which was taken when it came"
