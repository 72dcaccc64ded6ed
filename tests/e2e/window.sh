# The real program's window, for scripts that source this first: sets `bin` from their first argument and `here`, and
# brings what own_servers.sh has. `program` is the program's process.
set -u
bin=$(cd "$1" && pwd)
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
. "$here/../../tools/own_servers.sh"
need xdotool parec python3

# own_home [SETTING=VALUE...]: a program folder with settings that ask nothing and a palette, "Test", of one tone of 700 Hz
# on the first button.
own_home() {
    mkdir -p "$work/home"
    python3 "$here/tone.py" write "$work/home/Audio_Sample/Tone.wav"
    printf '[Test]\r\nPath_0=Audio_Sample\\Tone.wav\r\n' >"$work/home/palette.ini"
    printf '%s\r\n' '[Settings]' "$@" PaletteIndex=Test ConfirmExit=0 CheckUpdate=0 MIDIEnabled=0 >"$work/home/zv.ini"
}

# start_program [VARIABLE=VALUE...]: until its palette is open.
start_program() {
    # The trace of the start is written when the palette is open.
    env "$@" "$bin/zentrova" -t --home "$work/home" >"$work/zentrova.log" 2>&1 &
    program=$!
    pids+=($program)
    await test -s "$work/home/Trace_start.log"
}

# Whether it plays into a sound server.
plays() { pactl list short sink-inputs | grep -q .; }
press() { xdotool mousemove --window "$window" "$x" "$y" click 1; }

# close_program SECONDS: as from its window's own button.
close_program() {
    xdotool key --window "$window" alt+F4
    for _ in $(seq $(($1 * 10))); do
        kill -0 $program 2>/dev/null || return 0
        sleep 0.1
    done
    fail "the program did not close"
}

# terminate_program: as the session's end does it. It saves what closing saves, soon, and asks nothing.
terminate_program() {
    local from
    from=$(date +%s%N)
    kill "$program"
    wait "$program" || fail "the program ended with status $?"
    echo "ended $((($(date +%s%N) - from) / 1000000)) ms after SIGTERM"
}

# The window is the largest of the program's.
largest_window() {
    for id in $(xdotool search --onlyvisible --pid $program --name '^Zentrova' 2>/dev/null); do
        eval "$(xdotool getwindowgeometry --shell "$id" 2>/dev/null)" && echo "$WIDTH $HEIGHT $id"
    done | sort -n | tail -1
}

# find_window: sets `window`, and x, y of its first button, once its size has come to rest.
find_window() {
    local before=none now=
    for _ in $(seq 40); do
        now=$(largest_window)
        [ -n "$now" ] && [ "$now" = "$before" ] && break
        before=$now
        sleep 0.5
    done
    [ -n "$now" ] || fail "the window did not come"
    read -r WIDTH HEIGHT window <<<"$now"
    # The first button stands at the left of the grid, right under the control strip.
    read -r x y < <(python3 "$here/tone.py" button "$WIDTH" "$HEIGHT")
}

# record SINK: begins to record what it sends into $work/SINK.raw; `recorder` is the process.
record() {
    rm -f "$work/$1.raw"
    parec -d "$1.monitor" --rate=44100 --format=float32le --channels=2 --raw --latency-msec=20 >"$work/$1.raw" 2>"$work/parec-$1.log" &
    recorder=$!
    pids+=($recorder)
    await test -s "$work/$1.raw"
}

# heard BYTES WHAT LEAST [GAPS]: the recording of out1 holds so many seconds of tone from there on, with no more gaps.
heard() {
    local seconds gaps
    read -r seconds gaps < <(python3 "$here/tone.py" measure "$work/out1.raw" "$1")
    echo "$2: $seconds s of tone, $gaps gaps"
    awk -v s="$seconds" -v g="$gaps" -v l="$3" -v m="${4:-99}" 'BEGIN { exit !(s > l && g <= m) }' || fail "$2: not heard"
}
length() { stat -c %s "$work/out1.raw"; }
ms() { echo $(($(date +%s%N) / 1000000)); }
