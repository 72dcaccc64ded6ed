#!/bin/bash
# From a mouse press to the first sample that the engine hands to the sound server: starts an X server, a sound server
# and the program on servers of its own, presses a button COUNT times (200), and prints median, 95 % and worst in
# milliseconds. The server's own period is not in it. A measurement: a busy machine gives other numbers.
#   measure_press.sh BIN_FOLDER [COUNT] [rest|amid]
# The presses follow one another in half a second; with "rest" the outputs have come to rest before each one, with
# "amid" a soft sound goes on all the time.
set -u
bin=$(cd "$1" && pwd)
count=${2:-200}
mode=${3:-}
here=$(cd "$(dirname "$0")" && pwd)
. "$here/own_servers.sh"
g++ -std=c++20 -O2 -shared -fPIC "$here/measure_press/trace.cpp" -o "$work/trace.so" -ldl || exit 1
own_servers 1
mkdir -p "$work/home/Audio_Sample"

# 60 ms of a tone that begins at its full level: the first sample is heard. And a soft one that goes on.
/usr/bin/python3 - "$work/home/Audio_Sample" <<'PY'
import math, struct, sys
for name, frames, level in ("Blip", 2646, 9000), ("Soft", 44100, 30):
    data = b"".join(struct.pack("<hh", *[round(level * math.cos(i * 0.1))] * 2) for i in range(frames))
    open(f"{sys.argv[1]}/{name}.wav", "wb").write(b"RIFF" + struct.pack("<I", 36 + len(data)) + b"WAVEfmt " +
        struct.pack("<IHHIIHH", 16, 1, 2, 44100, 176400, 4, 16) + b"data" + struct.pack("<I", len(data)) + data)
PY
printf '[Test]\r\nPath_0=Audio_Sample\\Blip.wav\r\nPath_1=Audio_Sample\\Soft.wav\r\nLoop_1=1\r\n' \
    >"$work/home/palette.ini"
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
if [ "$mode" = amid ]; then
    xdotool mousemove --window "$id" $((width * 22 / 100)) $((height * 28 / 100)) click 1
fi
xdotool mousemove --window "$id" $((width * 8 / 100)) $((height * 28 / 100))
sleep 0.5
[ "$mode" = rest ] && pause=2.3 || pause=0.2
for ((i = 0; i < count; ++i)); do
    xdotool click 1
    sleep "$pause$((RANDOM % 100))" # never in step with the server
done
sleep 0.5
/usr/bin/python3 - "$work/trace" "$count" "$mode" <<'PY'
import sys
press, times, lost = None, [], 0
for line in open(sys.argv[1]):
    what, ns, before = line.split()
    if what == "press":
        # The server tells of one press in more than one way; the first one counts.
        if press is None or int(ns) - press > 100e6:
            lost += press is not None
            press = int(ns)
    elif press is not None:
        times.append(((int(ns) - press) / 1e6, (int(ns) - int(before)) / 1e6))
        press = None
times.sort()
if len(times) < int(sys.argv[2]) * 9 // 10:
    sys.exit(f"only {len(times)} of {sys.argv[2]} presses were heard")
print(f"presses {len(times)}, unheard {lost}: median {times[len(times) // 2][0]:.2f} ms, "
      f"95 % {times[len(times) * 95 // 100][0]:.2f} ms, worst {times[-1][0]:.2f} ms")
if sys.argv[3] != "rest":
    usual = sorted(gap for _, gap in times)[len(times) // 2]
    own = sorted(took - max(0, gap - usual) for took, gap in times)
    print(f"less what the server was late: 95 % {own[len(own) * 95 // 100]:.2f} ms, worst {own[-1]:.2f} ms")
    print("the worst, and since when the server had not asked: " +
          ", ".join(f"{took:.1f} ({gap:.1f})" for took, gap in times[-5:]))
PY
