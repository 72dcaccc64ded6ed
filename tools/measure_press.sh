#!/bin/bash
# From a mouse press to the first sample that the engine hands to the sound server: starts an X server, a sound server
# and the program on servers of its own, presses a button COUNT times (200), and prints median, 95 % and worst in
# milliseconds. The server's own period is not in it. A measurement: a busy machine gives other numbers.
#   measure_press.sh BIN_FOLDER [COUNT]
set -u
bin=$(cd "$1" && pwd)
count=${2:-200}
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
pids=()
cleanup() {
    for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null; done
    for pid in "${pids[@]}"; do wait "$pid" 2>/dev/null; done
    rm -rf "$work"
}
trap cleanup EXIT
await() {
    for _ in $(seq 200); do "$@" >/dev/null 2>&1 && return; sleep 0.1; done
    echo "measure_press: waited in vain for: $*" >&2
    exit 1
}

g++ -std=c++20 -O2 -shared -fPIC "$here/measure_press/trace.cpp" -o "$work/trace.so" -ldl || exit 1
export XDG_RUNTIME_DIR=$work/run HOME=$work/user PULSE_SERVER=unix:$work/run/native
mkdir -m 700 -p "$XDG_RUNTIME_DIR" "$HOME" "$work/home/Audio_Sample"
unset WAYLAND_DISPLAY DBUS_SESSION_BUS_ADDRESS
pulseaudio -n --daemonize=no --exit-idle-time=-1 --disallow-exit --use-pid-file=no \
    --load="module-native-protocol-unix auth-anonymous=1 socket=$work/run/native" \
    --load="module-null-sink sink_name=out1 rate=44100 format=float32le norewinds=1" >"$work/pulse.log" 2>&1 &
pids+=($!)
await pactl info
mkfifo "$work/display"
Xvfb -displayfd 3 -screen 0 1280x900x24 -nolisten tcp 3>"$work/display" >"$work/xvfb.log" 2>&1 &
pids+=($!)
read -r number <"$work/display"
export DISPLAY=:$number
openbox >"$work/openbox.log" 2>&1 &
pids+=($!)
await sh -c "xprop -root _NET_SUPPORTING_WM_CHECK | grep -q '#'"

# 60 ms of a tone that begins at its full level: the first sample is heard.
/usr/bin/python3 - "$work/home/Audio_Sample/Blip.wav" <<'PY'
import math, struct, sys
data = b"".join(struct.pack("<hh", *[round(9000 * math.cos(i * 0.1))] * 2) for i in range(2646))
open(sys.argv[1], "wb").write(b"RIFF" + struct.pack("<I", 36 + len(data)) + b"WAVEfmt " +
    struct.pack("<IHHIIHH", 16, 1, 2, 44100, 176400, 4, 16) + b"data" + struct.pack("<I", len(data)) + data)
PY
printf '[Test]\r\nPath_0=Audio_Sample\\Blip.wav\r\n' >"$work/home/palette.ini"
printf '[Settings]\r\nPaletteIndex=Test\r\nConfirmExit=0\r\nCheckUpdate=0\r\nMIDIEnabled=0\r\n' >"$work/home/zv.ini"
PRESS_TRACE=$work/trace LD_PRELOAD=$work/trace.so "$bin/zentrova" -t --home "$work/home" >"$work/program.log" 2>&1 &
program=$!
pids+=($program)
await test -s "$work/home/Trace_start.log"
sleep 2
window=$(for id in $(xdotool search --onlyvisible --pid $program --name '^Zentrova'); do
    eval "$(xdotool getwindowgeometry --shell "$id")" && echo "$WIDTH $HEIGHT $id"
done | sort -n | tail -1)
read -r width height id <<<"$window"
xdotool mousemove --window "$id" $((width * 8 / 100)) $((height * 28 / 100))
sleep 0.5
for ((i = 0; i < count; ++i)); do
    xdotool click 1
    sleep "0.2$((RANDOM % 100))" # never in step with the server
done
sleep 0.5
/usr/bin/python3 - "$work/trace" "$count" <<'PY'
import sys
press, times, lost = None, [], 0
for line in open(sys.argv[1]):
    what, ns = line.split()
    if what == "press":
        # The server tells of one press in more than one way; the first one counts.
        if press is None or int(ns) - press > 100e6:
            lost += press is not None
            press = int(ns)
    elif press is not None:
        times.append((int(ns) - press) / 1e6)
        press = None
times.sort()
if len(times) < int(sys.argv[2]) * 9 // 10:
    sys.exit(f"only {len(times)} of {sys.argv[2]} presses were heard")
print(f"presses {len(times)}, unheard {lost}: median {times[len(times) // 2]:.2f} ms, "
      f"95 % {times[len(times) * 95 // 100]:.2f} ms, worst {times[-1]:.2f} ms")
PY
