#!/usr/bin/env python3
"""The tone of the end-to-end test: written, looked for in a recording, and where its button stands."""
import array
import math
import os
import struct
import sys

RATE = 44100
HERTZ = 700
LEVEL = 0.5
SECONDS = 20


def write(path):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    samples = array.array("h")
    for i in range(RATE * SECONDS):
        value = round(LEVEL * 32767 * math.sin(2 * math.pi * HERTZ * i / RATE))
        samples.extend((value, value))
    data = samples.tobytes()
    with open(path, "wb") as file:
        file.write(b"RIFF" + struct.pack("<I", 36 + len(data)) + b"WAVEfmt " +
                   struct.pack("<IHHIIHH", 16, 1, 2, RATE, RATE * 4, 4, 16) + b"data" + struct.pack("<I", len(data)) + data)


def amplitude(left, start, count):
    """Level of the tone in a stretch, by correlation."""
    a = sum(left[start + i] * math.cos(2 * math.pi * HERTZ * i / RATE) for i in range(count))
    b = sum(left[start + i] * math.sin(2 * math.pi * HERTZ * i / RATE) for i in range(count))
    return 2 * math.hypot(a, b) / count


def left_from(path, start):
    """The left side of a recording from its byte `start` on."""
    samples = array.array("f")
    with open(path, "rb") as file:
        raw = file.read()[start // 8 * 8:]
    samples.frombytes(raw[:len(raw) // 8 * 8])
    return samples[0::2]


def levels_from(path, start):
    """Levels of the tone in blocks of 20 ms, from byte `start` of a recording on."""
    left = left_from(path, start)
    block = RATE // 100 * 2  # whole periods of the tone
    return [amplitude(left, i, block) for i in range(0, len(left) - block, block)]


def measure(path, start):
    """Seconds of tone from byte `start` on, and how many stretches without it lie between."""
    loud = [level > 0.9 * LEVEL for level in levels_from(path, start)]
    gaps = sum(1 for i in range(1, len(loud)) if loud[i] and not loud[i - 1] and any(loud[:i]))
    print(f"{sum(loud) * 0.02:.2f} {gaps}")


def ends(path, start):
    """Milliseconds from byte `start` to the end of the tone there; -1 when it goes on to the end."""
    block = RATE // 100
    left = left_from(path, start)
    loud = [i for i in range(0, len(left) - block, block) if max(left[i:i + block]) > 0.1 * LEVEL]
    last = loud[-1] + block if loud else 0
    print(-1 if last > len(left) - 3 * block else last * 1000 // RATE)


def button(width, height):
    """A place inside the first button of the grid of 6 x 5: at the left, under the control strip."""
    print(int(width * 0.08), int(height * 0.28))


if __name__ == "__main__":
    command, rest = sys.argv[1], sys.argv[2:]
    if command == "write":
        write(rest[0])
    elif command == "button":
        button(int(rest[0]), int(rest[1]))
    else:
        (measure if command == "measure" else ends)(rest[0], int(rest[1]))
