#!/usr/bin/env python3
"""Seeds of decoder_fuzz: a blink of sound in every format, with the byte in front that chooses its name.

    make_sound_seeds.py FOLDER [modules]
"""
import pathlib
import struct
import subprocess
import sys
import tempfile

# As in decoder_fuzz.cpp.
EXTENSIONS = ("wav aif flac ogg opus mp3 mp2 m4a wma mpg avi mkv mod xm it s3m "
              "mtm mo3 mp1 mpa mp4 3gp wmv asf aac asx webm caf").split()

# Name of the seed, extension, arguments of ffmpeg.
SOUNDS = [
    ("wav", "wav", ""), ("u8", "wav", "-c:a pcm_u8"), ("f32", "wav", "-c:a pcm_f32le"),
    ("ima", "wav", "-c:a adpcm_ima_wav"), ("six", "wav", "-ac 6"), ("mp3inwav", "wav", "-c:a libmp3lame"),
    ("gsm", "wav", "-ar 8000 -c:a libgsm_ms"), ("aif", "aif", "-f aiff"), ("flac", "flac", ""), ("ogg", "ogg", ""),
    ("flacogg", "ogg", "-c:a flac"), ("opus", "opus", ""), ("mp3", "mp3", ""),
    ("bare", "mp3", "-write_xing 0 -id3v2_version 0"), ("mp2", "mp2", ""), ("m4a", "m4a", ""),
    ("alac", "m4a", "-c:a alac"), ("wma", "wma", ""), ("mpg", "mpg", ""), ("avi", "avi", ""), ("mkv", "mkv", ""),
    ("mp4", "mp4", ""), ("3gp", "3gp", "-c:a aac"), ("wmv", "wmv", ""), ("asf", "asf", "-c:a wmav1"),
    ("aac", "aac", "-f adts"), ("webm", "webm", ""), ("caf", "caf", ""), ("mpa", "mpa", "-f mp2"),
]

WAVE = bytes((100 if i < 16 else 156) for i in range(32))


def mod():
    sample = bytes(22) + struct.pack(">HBBHH", 16, 0, 64, 0, 16)
    cell = bytes([1, 0xAC, 0x10, 0])
    return (b"tiny".ljust(20, b"\0") + sample + bytes(30) * 30 + bytes([1, 127]) + bytes(128) + b"M.K."
            + cell + bytes(1020) + WAVE)


def xm():
    header = struct.pack("<HHHHHHHH", 1, 0, 2, 1, 1, 1, 6, 125) + bytes(256)
    pattern = struct.pack("<IBHH", 9, 0, 4, 0)
    rows = bytes([0x83, 49, 1]) + bytes([0x80]) * 7
    pattern = struct.pack("<IBHH", 9, 0, 4, len(rows)) + rows
    instrument = struct.pack("<I", 263) + bytes(22) + b"\0" + struct.pack("<H", 1) + struct.pack("<I", 40)
    instrument = instrument.ljust(263, b"\0")
    sample = struct.pack("<IIIBbBBbB", len(WAVE), 0, len(WAVE), 64, 0, 1, 128, 0, 0) + bytes(22)
    return (b"Extended Module: " + b"tiny".ljust(20) + b"\x1a" + b"tracker".ljust(20) + struct.pack("<HI", 0x104, 276)
            + header + pattern + instrument + sample + WAVE)


def s3m():
    head = (b"tiny".ljust(28, b"\0") + b"\x1a\x10\0\0" + struct.pack("<HHHHHH", 2, 1, 1, 0, 0x1320, 2) + b"SCRM"
            + bytes([64, 6, 125, 0xB0, 0, 0]) + bytes(10) + bytes([0, 8]) + bytes([255]) * 30)
    head += bytes([0, 255]) + struct.pack("<HH", 8, 16)  # orders, instrument at 128, pattern at 256
    head = head.ljust(128, b"\0")
    wave = 512
    instrument = (b"\1" + bytes(12) + bytes([0]) + struct.pack("<H", wave // 16)
                  + struct.pack("<III", len(WAVE), 0, len(WAVE)) + bytes([64, 0, 0, 1]) + struct.pack("<I", 8363)
                  + bytes(12) + bytes(28) + b"SCRS")
    rows = bytes([0xA0, 0x40, 1, 20, 0x13, 0]) + bytes(63)  # the tempo slides up
    pattern = struct.pack("<H", len(rows) + 2) + rows
    return (head + instrument).ljust(256, b"\0") + pattern.ljust(256, b"\0") + WAVE


def it():
    head = (b"IMPM" + b"tiny".ljust(26, b"\0") + struct.pack("<HHHHHHHHH", 0x1004, 2, 0, 1, 1, 0x214, 0x200, 1, 0)
            + bytes([128, 48, 6, 125, 128, 0]) + bytes(10) + bytes([32]) * 64 + bytes([64]) * 64)
    head += bytes([0, 255]) + struct.pack("<II", 256, 384)
    head = head.ljust(256, b"\0")
    sample = (b"IMPS" + bytes(12) + bytes([0, 64, 0x11, 64]) + bytes(26) + bytes([1, 0])
              + struct.pack("<IIIIIIII", len(WAVE), 0, len(WAVE), 8363, 0, 0, 512, 0))
    rows = bytes([0x81, 11, 60, 1, 20, 0x05, 0]) + bytes(63)  # the tempo slides down
    return (head + sample).ljust(384, b"\0") + (struct.pack("<HH", len(rows), 64) + bytes(4) + rows).ljust(128, b"\0") + WAVE


def mtm():
    head = (b"MTM\x10" + b"tiny".ljust(20, b"\0") + struct.pack("<HBBHBBBB", 1, 0, 0, 0, 1, 0, 64, 2) + bytes([8]) * 32)
    sample = bytes(22) + struct.pack("<IIIBBB", len(WAVE), 0, len(WAVE), 0, 64, 0)
    return head + sample + bytes(128) + bytes([0x60, 0x10, 0]) + bytes(189) + struct.pack("<32H", 1, *([0] * 31)) + WAVE


def main():
    folder = pathlib.Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)

    def keep(name, extension, content):
        (folder / name).write_bytes(bytes([EXTENSIONS.index(extension)]) + content)

    for make in (mod, xm, s3m, it, mtm):
        keep(make.__name__, make.__name__, make())
    if sys.argv[2:] == ["modules"]:
        return
    with tempfile.TemporaryDirectory() as work:
        for name, extension, arguments in SOUNDS:
            path = f"{work}/a.{extension}"
            subprocess.run(["ffmpeg", "-v", "error", "-y", "-f", "lavfi", "-i", "sine=440:d=0.06:r=48000",
                            *arguments.split(), path], check=True)
            keep(name, extension, pathlib.Path(path).read_bytes())


main()
