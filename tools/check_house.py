#!/usr/bin/env python3
"""Holds the house to its plan: arrows point down only, and third-party headers stay in platform/<library>/."""
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent

# What each room may include, besides itself.
MAY = {
    "engine": set(),
    "startup": {"engine", "platform"},
    "model": {"startup", "engine", "platform"},
    "audio": {"model", "startup", "engine", "platform"},
    "ui": {"audio", "model", "startup", "engine", "platform"},
    "midi": {"audio", "model", "startup", "engine", "platform"},
    "backup": {"audio", "model", "startup", "engine", "platform"},
    "online": {"audio", "model", "startup", "engine", "platform"},
    "platform": {"engine"},
}
FREE = {"app", "tests", "benchmarks", "tools"}
THIRD_PARTY = re.compile(r"^(Q[A-Z]\w*|Qt\w*/.*|lib(av|sw|openmpt)\w*/.*|pulse/.*|rtaudio/.*|RtAudio\.h|soundtouch/.*|SoundTouch\.h|SDL.*|zip\.h)$")
ENGINE_PUBLIC = {"engine/bass.h", "engine/ports.h", "engine/import/library.h"}


def main():
    files = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard", "*.cpp", "*.h"], cwd=ROOT, text=True,
                           capture_output=True, check=True).stdout.split()
    faults = []
    for name in files:
        room = name.split("/")[0]
        path = ROOT / name
        if not path.exists():
            continue
        in_library = room == "platform" and name.count("/") >= 2
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            match = re.match(r'\s*#\s*include\s*([<"])([^>"]+)[>"]', line)
            if not match:
                continue
            header = match.group(2)
            if match.group(1) == "<":
                if THIRD_PARTY.match(header) and not in_library and room not in {"tests"}:
                    faults.append(f"{name}:{number}: {header} is a library's header; only platform/<library>/ may include it")
                continue
            target = header.split("/")[0]
            if room in FREE or target not in MAY:
                continue
            if target != room and target not in MAY.get(room, set()):
                faults.append(f"{name}:{number}: {room}/ may not look up into {target}/ ({header})")
            if target == "engine" and room != "engine" and header not in ENGINE_PUBLIC:
                faults.append(f"{name}:{number}: {header} is the engine's own; use engine/bass.h")
    for fault in faults:
        print(fault, file=sys.stderr)
    print(f"House: {len(files)} files, {len(faults)} arrows out of place")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
