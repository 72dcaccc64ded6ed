#!/usr/bin/env python3
"""Makes HE-AAC of plain AAC: upper bands are told in each frame, their header in every tenth, first in the sixth.

    add_spectral_bands.py FROM.aac TO.aac
"""
import sys

BANDS, NOISES = 6, 3


def field(value, bits):
    return f"{value:0{bits}b}"


def bands(frame):
    header = "11" + field(5, 4) * 2 + "0" * 7 if frame % 10 == 5 else "0"
    grid = "0" * 8 + "00" * NOISES  # one envelope a frame, told from low to high, filters off
    levels = field(28 + frame % 5, 7) + "00" * (BANDS - 1) + field(30, 5) + "0" * (NOISES - 1)
    payload = "1101" + header + grid + levels + "00"
    payload += "0" * (-len(payload) % 8)
    return "110" + field(len(payload) // 8, 4) + payload


stream = open(sys.argv[1], "rb").read()
at = frame = 0
with open(sys.argv[2], "wb") as out:
    while at + 7 <= len(stream):
        size = (stream[at + 3] & 3) << 11 | stream[at + 4] << 3 | stream[at + 5] >> 5
        head = bytearray(stream[at:at + 7])
        body = "".join(field(byte, 8) for byte in stream[at + 7:at + size]).rstrip("0")
        body = body[:-3] + bands(frame) + "111"  # the three bits that end a frame
        data = int(body.ljust(-(-len(body) // 8) * 8, "0"), 2).to_bytes(-(-len(body) // 8), "big")
        head[3] = head[3] & ~3 | (len(data) + 7) >> 11
        head[4] = len(data) + 7 >> 3 & 255
        head[5] = head[5] & 31 | (len(data) + 7 & 7) << 5
        out.write(head + data)
        at += size
        frame += 1
