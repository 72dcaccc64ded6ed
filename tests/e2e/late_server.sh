#!/bin/bash
# A sound server that is not there when the real program starts, and one that is stopped then: the program starts all
# the same, takes the server soon after it comes, and a press is heard.
#   late_server.sh BIN_FOLDER
. "$(dirname "$0")/window.sh"
need Xvfb openbox xprop pulseaudio pactl
own_user
own_desktop
own_home

ms() { echo $(($(date +%s%N) / 1000000)); }
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
start_program
echo "without a server: started in $(($(ms) - from)) ms"
find_window
own_sound 1
taken "a server that came late"
record out1
press
sleep 1.5
read -r seconds gaps < <(heard 0)
awk -v s="$seconds" 'BEGIN { exit !(s > 0.8) }' || fail "the press was not heard: $seconds s"
kill "$recorder"
close_program 20

server=$(pgrep -f "socket=$work/run/native")
kill -STOP "$server"
rm "$work/home/Trace_start.log"
from=$(ms)
start_program
stopped=$(($(ms) - from))
echo "with a stopped server: started in $stopped ms"
kill -CONT "$server"
[ $stopped -lt 8000 ] || fail "a stopped server held the start for $stopped ms"
taken "a server that went on"
echo "late_server: the start did not wait for the server, which was taken when it came"
