#!/bin/bash
# STOP, whatever else is open or broken: over a question, a menu and a file dialog, by mouse and by Escape; while the
# sound server stands still, when it dies, and when it loses its output. Times are printed; only gross ones fail.
#   [SOUND_SERVER=pipewire] stop_always.sh BIN_FOLDER
. "$(dirname "$0")/window.sh"
need pactl
own_servers 1
own_home ErrorLog=1
sed -i 's/ConfirmExit=0/ConfirmExit=1/' "$work/home/zv.ini"
start_program
await plays
find_window

menu() { xdotool mousemove --window "$window" "$x" "$y" click 3; }
stop() { xdotool mousemove --window "$window" $((WIDTH * 107 / 128)) $((HEIGHT * 16 / 100)) click 1; }
key() { xdotool key "$@"; }
# A press is heard.
pressed() {
    local from
    from=$(length)
    press
    sleep 1
    heard "$from" "$1" 0.3
}
# silenced WHAT COMMAND...: how long after the command the tone ends.
silenced() {
    local what=$1 from took
    shift
    from=$(length)
    "$@"
    sleep 0.8
    took=$(python3 "$here/tone.py" ends "$work/out1.raw" "$from")
    echo "$what: silent after $took ms"
    [ "$took" -ge 0 ] && [ "$took" -lt 500 ] || fail "$what: STOP did not act ($took ms)"
    kill -0 "$program" || fail "$what: the program is gone"
}

record out1
pressed "at first"
silenced "STOP" stop

# A question: it waits, STOP and a plain press work, Escape stops and declines.
key alt+F4
sleep 0.5
pressed "over a question"
silenced "STOP over a question" stop
pressed "over a question again"
silenced "Escape in a question" key Escape

# A menu, and the file dialog that its first entry opens.
pressed "before a menu"
menu
sleep 0.3
silenced "STOP beside a menu" stop
key Escape
pressed "before a dialog"
menu
sleep 0.3
key Down Return
sleep 1
silenced "STOP beside a file dialog" stop
pressed "beside a file dialog"
silenced "Escape in a file dialog" key Escape
pressed "after the dialog"

# told TEXT: waits until the log of errors says so (what it says stands on the display).
log=$work/home/Error.log
told() {
    local from
    from=$(ms)
    await grep -q "$1" "$log"
    echo "$2: told after $(($(ms) - from)) ms"
    [ $(($(ms) - from)) -lt 5000 ] || fail "$2: told too late"
}
died=("${servers[@]}")
: >"$log"
kill -STOP "${died[@]}"
told "Output lost" "a server that stands still"
stop
sleep 4
from=$(length)
: >"$log"
kill -CONT "${died[@]}"
told "every output plays" "a server that goes on"
took=$(python3 "$here/tone.py" ends "$work/out1.raw" "$from")
echo "STOP while the server stood still: $took ms of sound after it went on"
[ "$took" -ge 0 ] && [ "$took" -lt 500 ] || fail "STOP was not obeyed while the server stood still"
pressed "after the server went on"

: >"$log"
kill -9 "${died[@]}"
told "Output lost" "a server that dies"
stop
: >"$log"
own_sound 1
told "every output plays" "a server that comes again"
record out1
pressed "with the new server"

: >"$log"
unplug_output out1
told "Output lost" "an output that goes"
stop
: >"$log"
plug_output out1
told "every output plays" "an output that comes again"
record out1
pressed "with the new output"

# The keyboard answers a question: Tab to the key beside, Return.
key alt+F4
sleep 0.5
key Tab Return
await sh -c "! kill -0 $program"
wait "$program" || fail "the program ended with status $?"
echo "stop_always: STOP acted each time"
