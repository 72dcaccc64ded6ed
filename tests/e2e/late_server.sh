#!/bin/bash
# A sound server that is not there when the real program starts, and one that is stopped then: the program starts all
# the same, takes the server soon after it comes, and a press is heard. The same for a server that has nothing but its
# stand-in for a sound card until a first card is plugged in.
#   [SOUND_SERVER=pipewire] late_server.sh BIN_FOLDER
. "$(dirname "$0")/window.sh"
need Xvfb openbox xprop pactl
own_user
own_desktop
own_home ErrorLog=1

# taken WHEN: the program plays into the server within 4 s, on a machine that is busy with other things too.
taken() {
    local from
    from=$(ms)
    await plays
    local took=$(($(ms) - from))
    echo "$1: taken after $took ms"
    [ $took -lt 4000 ] || fail "$1: the server was taken after $took ms"
}
press_is_heard() {
    record out1
    press
    sleep 1.5
    heard 0 "the press" 0.8
    kill "$recorder"
}

from=$(ms)
start_program
echo "without a server: started in $(($(ms) - from)) ms"
find_window
own_sound 1
taken "a server that came late"
press_is_heard
terminate_program

kill -STOP "${servers[@]}"
rm "$work/home/Trace_start.log"
from=$(ms)
start_program
stopped=$(($(ms) - from))
echo "with a stopped server: started in $stopped ms"
kill -CONT "${servers[@]}"
[ $stopped -lt 2500 ] || fail "a stopped server held the start for $stopped ms"
taken "a server that went on"
terminate_program

unplug_output out1
rm "$work/home/Trace_start.log"
start_program
sleep 2
plays && fail "the server's stand-in was taken for a sound card"
plug_output out1
taken "a first card that was plugged in"
find_window
press_is_heard
echo "late_server: the start did not wait for the server, which was taken when it came"
