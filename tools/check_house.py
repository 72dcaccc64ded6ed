#!/usr/bin/env python3
"""Holds the house to its plan: arrows point down only, nothing stands in a circle, foreign headers and threads stay at the
border, each source has a header."""
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent

# What each room may include, besides itself.
LOGIC = {"audio", "model", "startup", "engine", "platform"}
MAY = {
    "engine": set(),
    "startup": {"engine", "platform"},
    "model": {"startup", "engine", "platform"},
    "audio": {"model", "startup", "engine", "platform"},
    "midi": LOGIC,
    "backup": LOGIC,
    "online": LOGIC,
    "remote": LOGIC,
    "ui": (LOGIC | {"midi", "backup", "online", "remote"}) - {"engine"},
    "platform": {"engine"},
}
FREE = {"app", "tests", "benchmarks", "tools"}
ENGINE_PUBLIC = {"engine/bass.h", "engine/ports.h", "engine/import/library.h"}

# The floors inside ui/ and engine/, from the ground up. A folder may include those named and nothing else of its room;
# a file that stands in no folder of the room may include all of them, bass.h and ports.h none.
FLOORS = {
    "ui": {
        "records": set(),
        "screen": {"records"},
        "windows": {"records"},
        "edit": {"records", "screen", "windows"},
        "settings": {"records", "screen", "windows"},
        "press": {"records", "screen", "windows", "edit", "settings"},
    },
    "engine": {
        "dsp": set(),
        "realtime": {"dsp"},
        "tempo": {"dsp", "realtime"},
        "sources": {"dsp", "realtime"},
        "graph": {"dsp", "realtime", "tempo", "sources"},
        "devices": {"dsp", "realtime", "sources", "graph"},
        "api": {"dsp", "realtime", "tempo", "sources", "graph", "devices"},
        "import": set(),
    },
}

STANDARD = set("""
algorithm any array atomic barrier bit bitset cassert cctype cerrno cfenv cfloat charconv chrono cinttypes climits
clocale cmath codecvt compare complex concepts condition_variable coroutine csetjmp csignal cstdarg cstddef cstdint
cstdio cstdlib cstring ctime cuchar cwchar cwctype deque exception execution filesystem format forward_list fstream
functional future initializer_list iomanip ios iosfwd iostream istream iterator latch limits list locale map memory
memory_resource mutex new numbers numeric optional ostream queue random ranges ratio regex scoped_allocator semaphore set
shared_mutex source_location span sstream stack stdexcept stop_token streambuf string string_view syncstream system_error
thread tuple type_traits typeindex typeinfo unordered_map unordered_set utility valarray variant vector version
immintrin.h
""".split())  # the last one is the compiler's own
# Threads stand in the engine and behind platform/jobs.h.
THREADS = {"barrier", "condition_variable", "future", "latch", "semaphore", "shared_mutex", "stop_token", "thread"}
MAY_THREAD = {"engine", "platform"} | FREE - {"app"}
LONGEST = 600


def includes(path):
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        match = re.match(r'\s*#\s*include\s*([<"])([^>"]+)[>"]', line)
        if match:
            yield number, match.group(1) == "<", match.group(2)


def folder_in(room, name):
    parts = name.split("/")
    return parts[1] if parts[0] == room and len(parts) > 2 else None


def arrow_fault(name, header):
    """What is wrong with `name` including "header"; None when nothing is."""
    room, target = name.split("/")[0], header.split("/")[0]
    if room in FREE or target not in MAY:
        return None
    if target != room and target not in MAY.get(room, set()):
        return f"{room}/ may not look up into {target}/ ({header})"
    if target == "engine" and room != "engine" and header not in ENGINE_PUBLIC:
        return f"{header} is the engine's own; use engine/bass.h"
    if target == "platform" and room != "platform" and header.count("/") > 1:
        return f"{header} is an answer's own; only platform/*.h may be included from above"
    if target == room and room in FLOORS:
        here, there = folder_in(room, name), folder_in(room, header)
        if here and there and here != there:
            if there not in FLOORS[room].get(here, set()):
                return f"{room}/{here}/ may not look up into {room}/{there}/ ({header})"
        if not here and there and name in {"engine/bass.h", "engine/ports.h"}:
            return f"{name} is the ground; it includes nothing of {room}/{there}/"
        if here and not there and room == "ui":
            return f"{room}/{here}/ may not look up into {header}"
    return None


def header_fault(root, name, known):
    """What is wrong with a source that has no header; None when nothing is."""
    room, path = name.split("/")[0], pathlib.PurePosixPath(name)
    in_library = room == "platform" and not name.startswith("platform/common/")
    if path.suffix != ".cpp" or room in FREE or in_library:
        return None
    if {str(path.with_suffix(".h")), f"platform/{path.stem}.h"} & known:
        return None
    first = (root / name).read_text(encoding="utf-8").split("\n", 1)[0]
    if first.startswith("//") and known.intersection(re.findall(r"[\w/]+\.h", first)):
        return None
    return "has no header of its own name; its first comment must name the one that declares what it defines"


def circles(arrows):
    """The groups of nodes that reach each other (Tarjan)."""
    order, low, stack, found = {}, {}, [], []

    def visit(node):
        order[node] = low[node] = len(order)
        stack.append(node)
        for after in sorted(arrows.get(node, ())):
            if after not in order:
                visit(after)
                low[node] = min(low[node], low[after])
            elif after in stack:
                low[node] = min(low[node], order[after])
        if low[node] == order[node]:
            at = stack.index(node)
            if len(stack) - at > 1:
                found.append(sorted(stack[at:]))
            del stack[at:]

    for node in sorted(arrows):
        if node not in order:
            visit(node)
    return found


def check(root, files):
    """The faults of `files`, names relative to `root`, one a line."""
    faults, known = [], set(files)
    # A source and its header are one subject, and so is a folder inside a room.
    views = {"file": lambda n: n, "subject": lambda n: n.rsplit(".", 1)[0], "folder": lambda n: n.rsplit("/", 1)[0]}
    arrows = {view: {} for view in views}
    for name in files:
        room = name.split("/")[0]
        in_library = room == "platform" and name.count("/") >= 2 and not name.startswith("platform/common/")
        for number, angled, header in includes(root / name):
            if angled:
                if header not in STANDARD and room not in FREE - {"app"} and not in_library:
                    faults.append(f"{name}:{number}: {header} is not of the standard library; only platform/<library>/ may include it")
                if header in THREADS and room not in MAY_THREAD:
                    faults.append(f"{name}:{number}: {room}/ starts no threads ({header}); use platform/jobs.h")
                continue
            fault = arrow_fault(name, header)
            if fault:
                faults.append(f"{name}:{number}: {fault}")
            if header in known:
                for view, key in views.items():
                    if key(name) != key(header):
                        arrows[view].setdefault(key(name), set()).add(key(header))
        fault = header_fault(root, name, known)
        if fault:
            faults.append(f"{name}: {fault}")
        lines = (root / name).read_text(encoding="utf-8").count("\n")
        if lines > LONGEST:
            faults.append(f"{name}: {lines} lines; {LONGEST} at most")
    for view in views:
        for circle in circles(arrows[view]):
            faults.append(f"{view}s in a circle: {', '.join(circle)}")
    return faults


def main():
    listed = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard", "*.cpp", "*.h"], cwd=ROOT, text=True,
                            capture_output=True, check=True).stdout.split()
    files = [name for name in listed if (ROOT / name).exists()]
    faults = check(ROOT, files)
    for fault in faults:
        print(fault, file=sys.stderr)
    print(f"House: {len(files)} files, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
