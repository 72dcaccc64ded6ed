#!/usr/bin/env python3
"""Makes HE-AAC of plain AAC: upper bands are told in each frame, their header in every tenth, first in the sixth.

    add_spectral_bands.py FROM.aac TO.aac
"""
import sys

HEADER_EVERY, FIRST_HEADER, BANDS, NOISES = 10, 5, 6, 3


def field(value, bits):
    return f"{value:0{bits}b}"


def bands(frame):
    text = "0"
    if frame % HEADER_EVERY == FIRST_HEADER:
        text = "1" + "1" + field(5, 4) + field(5, 4) + "000" + "00" + "00"
    text += "0" + "00" + "00" + "0" + "00" + "00" * NOISES  # one envelope a frame, told from low to high, filters off
    return text + field(28 + frame % 5, 7) + "00" * (BANDS - 1) + field(30, 5) + "0" * (NOISES - 1) + "00"


def element(payload):
    payload = "1101" + payload
    payload += "0" * (-len(payload) % 8)
    return "110" + field(len(payload) // 8, 4) + payload


def main():
    stream = open(sys.argv[1], "rb").read()
    at = frame = 0
    with open(sys.argv[2], "wb") as out:
        while at + 7 <= len(stream):
            size = (stream[at + 3] & 3) << 11 | stream[at + 4] << 3 | stream[at + 5] >> 5
            head = bytearray(stream[at:at + 7])
            body = "".join(field(byte, 8) for byte in stream[at + 7:at + size]).rstrip("0")
            body = body[:-3] + element(bands(frame)) + "111"  # the three bits that end a frame
            body += "0" * (-len(body) % 8)
            data = bytes(int(body[i:i + 8], 2) for i in range(0, len(body), 8))
            length = len(data) + 7
            head[3] = head[3] & ~3 | length >> 11
            head[4] = length >> 3 & 255
            head[5] = head[5] & 31 | (length & 7) << 5
            out.write(bytes(head) + data)
            at += size
            frame += 1


main()
