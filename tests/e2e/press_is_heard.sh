#!/bin/bash
# From a mouse press in the real program to the recording of a real sound server: starts an X server, a window
# manager and a sound server of its own, presses a button, listens to the output, stops again.
#   press_is_heard.sh BIN_FOLDER
set -u
bin=$(cd "$1" && pwd)
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
pids=()

cleanup() {
    for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null; done
    for pid in "${pids[@]}"; do wait "$pid" 2>/dev/null; done
    rm -rf "$work"
}
trap cleanup EXIT

fail() {
    echo "press_is_heard: $*" >&2
    for log in "$work"/*.log; do echo "--- $log" >&2; tail -20 "$log" >&2; done
    exit 1
}

# Waits up to 20 seconds until a command succeeds.
await() {
    local what=$1
    shift
    for _ in $(seq 200); do
        "$@" >/dev/null 2>&1 && return
        sleep 0.1
    done
    fail "$what did not come"
}

for tool in Xvfb openbox xdotool xprop pulseaudio pactl parec python3; do
    command -v "$tool" >/dev/null || fail "$tool is not installed"
done

export XDG_RUNTIME_DIR=$work/run HOME=$work/user
mkdir -m 700 -p "$XDG_RUNTIME_DIR" "$HOME" "$work/home"
export PULSE_SERVER=unix:$work/run/native
unset WAYLAND_DISPLAY DBUS_SESSION_BUS_ADDRESS

pulseaudio -n --daemonize=no --exit-idle-time=-1 --disallow-exit --use-pid-file=no \
    --load="module-native-protocol-unix auth-anonymous=1 socket=$work/run/native" \
    --load="module-null-sink sink_name=out1 rate=44100 format=float32le norewinds=1 sink_properties=device.description=OutOne" \
    --load="module-null-sink sink_name=out2 rate=44100 format=float32le norewinds=1 sink_properties=device.description=OutTwo" \
    >"$work/pulseaudio.log" 2>&1 &
pids+=($!)
await "the sound server" pactl info

# The X server chooses a free display and tells its number.
mkfifo "$work/display"
Xvfb -displayfd 3 -screen 0 1280x900x24 -nolisten tcp 3>"$work/display" >"$work/xvfb.log" 2>&1 &
pids+=($!)
read -r number <"$work/display"
export DISPLAY=:$number
openbox >"$work/openbox.log" 2>&1 &
pids+=($!)
await "the window manager" sh -c "xprop -root _NET_SUPPORTING_WM_CHECK | grep -q '#'"

# A palette with one tone of 700 Hz on the first button, and settings that ask nothing.
python3 "$here/tone.py" write "$work/home/Audio_Sample/Tone.wav"
printf '[Test]\r\nPath_0=Audio_Sample\\Tone.wav\r\n' >"$work/home/palette.ini"
printf '[Settings]\r\nPaletteIndex=Test\r\nConfirmExit=0\r\nCheckUpdate=0\r\nDeviceAux=2\r\nMIDIEnabled=0\r\n' >"$work/home/zv.ini"

# The trace of the start is written when the palette is open.
"$bin/zentrova" -t --home "$work/home" >"$work/zentrova.log" 2>&1 &
program=$!
pids+=($program)
await "the end of the start" test -s "$work/home/Trace_start.log"
await "the program's sound stream" sh -c "pactl list short sink-inputs | grep -q ."

# The window is the largest of the program's, once its size has come to rest.
largest_window() {
    for id in $(xdotool search --onlyvisible --pid $program --name '^Zentrova' 2>/dev/null); do
        eval "$(xdotool getwindowgeometry --shell "$id" 2>/dev/null)" && echo "$WIDTH $HEIGHT $id"
    done | sort -n | tail -1
}
before=none
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

# One press and one more, recorded from both sinks: whether both hold the tone, whole and with silence around.
heard_on_both() {
    local recorders=() sink
    for sink in out1 out2; do
        rm -f "$work/$sink.raw"
        parec -d $sink.monitor --rate=44100 --format=float32le --channels=2 --raw --latency-msec=20 >"$work/$sink.raw" 2>"$work/parec-$sink.log" &
        recorders+=($!)
    done
    await "the recording" test -s "$work/out1.raw" -a -s "$work/out2.raw"
    xdotool mousemove --window "$window" "$x" "$y" click 1
    sleep 1.2
    xdotool mousemove --window "$window" "$x" "$y" click 1
    sleep 0.6
    kill "${recorders[@]}"
    wait "${recorders[@]}" 2>/dev/null
    for sink in out1 out2; do
        python3 "$here/tone.py" find "$work/$sink.raw" || return 1
    done
}

# A machine that is busy with other things drops a period now and then; a fault of ours is there at every try.
heard=no
for _ in 1 2 3 4 5 6; do
    heard_on_both && heard=yes && break
done
[ $heard = yes ] || fail "the press was not heard on both outputs"

# The program closes as from its window's own button, and saves.
xdotool key --window "$window" alt+F4
for _ in $(seq 100); do
    kill -0 $program 2>/dev/null || break
    sleep 0.1
done
kill -0 $program 2>/dev/null && fail "the program did not close"
wait $program
status=$?
[ $status -eq 0 ] || fail "the program ended with status $status"
grep -q '^\[Settings\]' "$work/home/zv.ini" || fail "the settings were not kept"
echo "press_is_heard: a press was heard on both outputs, a second one stopped it"
