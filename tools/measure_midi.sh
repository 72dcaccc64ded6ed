#!/bin/bash
# From a pad that is hit to the first sample that the engine hands to the sound server: starts an X server, a sound
# server, a JACK server without a sound card and the program, all of its own; a surface presses a pad COUNT times (200).
# Prints median, 95 % and worst in milliseconds from the moment at which the driver hands the message over, how soon the
# lamps are right when the cable is put back (with the start of the surface in it), and whether they were right at the
# start and dark after the program was ended by a signal. A measurement: a busy machine gives other numbers.
#   measure_midi.sh BIN_FOLDER [COUNT]
set -u
bin=$(cd "$1" && pwd)
count=${2:-200}
here=$(cd "$(dirname "$0")" && pwd)
. "$here/own_servers.sh"
need jackd
g++ -std=c++20 -O2 -shared -fPIC "$here/measure_press/trace.cpp" -o "$work/trace.so" -ldl || exit 1
g++ -std=c++20 -O2 "$here/measure_midi/surface.cpp" -o "$work/surface" -ljack -pthread || exit 1
own_servers 1
export JACK_DEFAULT_SERVER=zv$$ JACK_NO_START_SERVER=1
jackd -n "$JACK_DEFAULT_SERVER" -r -d dummy -r 44100 -p 128 >"$work/jack.log" 2>&1 &
pids+=($!)
await grep -q "creating dummy driver" "$work/jack.log"
sleep 1
mkdir -p "$work/home/Audio_Sample"
# 60 ms of a tone that begins at its full level: the first sample is heard.
/usr/bin/python3 - "$work/home/Audio_Sample" <<'PY'
import math, struct, sys
frames = 2646
data = b"".join(struct.pack("<hh", *[round(9000 * math.cos(i * 0.1))] * 2) for i in range(frames))
open(f"{sys.argv[1]}/Blip.wav", "wb").write(b"RIFF" + struct.pack("<I", 36 + len(data)) + b"WAVEfmt " +
    struct.pack("<IHHIIHH", 16, 1, 2, 44100, 176400, 4, 16) + b"data" + struct.pack("<I", len(data)) + data)
PY
printf '[Test]\r\nPath_0=Audio_Sample\\Blip.wav\r\n' >"$work/home/palette.ini"
printf '[Settings]\r\nPaletteIndex=Test\r\nConfirmExit=0\r\nCheckUpdate=0\r\nMIDIDevice=Surface:pads\r\n' >"$work/home/zv.ini"
printf '[Surface:pads]\r\nJingle0=903C,803C40,255\r\nOutReset=B00000\r\nOutJingle0=903C01,903C02,903C03,903C04\r\n' \
    >"$work/home/MIDI.ini"
mkfifo "$work/begin"
"$work/surface" "$count" 250 <"$work/begin" >"$work/sent" 2>"$work/surface.log" &
surface=$!
pids+=($surface)
exec 4>"$work/begin"
PRESS_TRACE=$work/trace LD_PRELOAD=$work/trace.so "$bin/zentrova" -t --home "$work/home" >"$work/program.log" 2>&1 &
program=$!
pids+=($program)
await test -s "$work/home/Trace_start.log"
await grep -q 903C02 "$work/sent"
sleep 1
echo "lamp after the start: $(tail -n 1 "$work/sent")"
# The cable is pulled and put back five times: until the lamp is right again.
for _ in 1 2 3 4 5; do
    kill -TERM $surface
    wait $surface 2>/dev/null
    sleep 1.3
    exec 4>&-
    "$work/surface" "$count" 250 <"$work/begin" >"$work/sent" 2>"$work/surface.log" &
    surface=$!
    pids+=($surface)
    exec 4>"$work/begin"
    back=$(date +%s%N)
    await grep -q 903C02 "$work/sent"
    echo "lamp after the cable was put back: $((($(date +%s%N) - back) / 1000000)) ms"
done
sleep 1
echo >&4
for _ in $(seq $((count * 300 / 1000 + 60))); do
    [ -f "$work/trace" ] && [ "$(grep -c '^press' "$work/trace")" -ge "$count" ] && break
    sleep 1
done
sleep 1
kill -TERM $program
wait $program
echo "status after the signal: $?"
sleep 0.5
echo "last message: $(tail -n 1 "$work/sent")"
kill -TERM $surface
/usr/bin/python3 - "$work/trace" "$count" <<'PY'
import sys
press, times, lost = None, [], 0
for line in open(sys.argv[1]):
    what, ns, before = line.split()
    if what == "press":
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
