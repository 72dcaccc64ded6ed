#!/usr/bin/env python3
"""Walks the program's accessibility tree as a screen reader does: names, states, presses. Run in a session with the
accessibility bus and the program, by screen_reader.sh."""
import re
import sys
import time

import pyatspi

BUTTONS = 30 + 10  # the grid of the first start and two rows of hot jingles
WAIT = 10  # seconds for anything to happen
NAMED = ("STOP", "Repeat", "Touch", "Automix", "Exit", "Assign", "Save", "New", "Delete")
TABS = ("Palettes", "Time announcer", "Live stream", "Jingle options")
READY = re.compile(r"^(ready|prêt)\b.*\d")
PLAYING = re.compile(r"^playing, time left (\d+:)?\d+\.\d$")

faults = []


def check(holds, text):
    if not holds:
        faults.append(text)


def until(what):
    """The first true answer within the time, or the last one."""
    end = time.monotonic() + WAIT
    while True:
        answer = what()
        if answer or time.monotonic() > end:
            return answer
        time.sleep(0.05)


def below(node):
    for child in node:
        if child is None:
            continue
        yield child
        yield from below(child)


def program():
    for app in pyatspi.Registry.getDesktop(0):
        if app is not None and "entrova" in app.name:
            for window in app:
                # The splash window comes first and goes.
                found = [n for n in below(window) if n.getRole() == pyatspi.ROLE_PUSH_BUTTON]
                if len(found) >= BUTTONS:
                    return window
    return None


def press(node):
    action = node.queryAction()
    names = [action.getName(i) for i in range(action.nActions)]
    for wanted in ("Press", "press", "Toggle", "click"):
        if wanted in names:
            return action.doAction(names.index(wanted))
    return False


def shown(node):
    return node.getState().contains(pyatspi.STATE_SHOWING)


def main():
    window = until(program)
    if window is None:
        print("screen_reader: the program's window is not in the tree", file=sys.stderr)
        return 1
    nodes = [n for n in below(window) if shown(n)]
    by_name = {}
    for n in nodes:
        by_name.setdefault(n.name, []).append(n)

    jingles = [n for n in nodes if n.getRole() == pyatspi.ROLE_PUSH_BUTTON and n.description]
    jingles = [n for n in jingles if re.match(r"ready|empty|file missing|playing|fading", n.description)]
    check(len(jingles) == BUTTONS, f"{len(jingles)} jingle buttons tell a state, wanted {BUTTONS}")
    for n in jingles:
        check(n.name, "a jingle button without a name")
    filled = [n for n in jingles if n.description.startswith("ready")]
    check(len(filled) > 25, f"only {len(filled)} jingles are ready")
    for n in filled:
        check(READY.match(n.description), f"{n.name}: \"{n.description}\" lacks its duration")

    for name in NAMED:
        buttons = [n for n in by_name.get(name, []) if n.getState().contains(pyatspi.STATE_ENABLED)]
        check(buttons, f"{name} is not reachable by its name")
        for n in buttons[:1]:
            check(n.queryAction().nActions > 0, f"{name} cannot be pressed")
    for name in TABS:
        tabs = by_name.get(name, [])
        check(tabs, f"the tab {name} is not reachable by its name")
        if tabs:
            check(press(tabs[0]), f"the tab {name} cannot be pressed")
    check(until(lambda: any(n.name.startswith("Play") and shown(n) for n in below(window))),
          "the last tab did not show its options")

    # A press starts it, its time runs, STOP ends it.
    bed = next((n for n in filled if n.name == "Weather Bed"), None)
    if bed is None:
        faults.append("there is no Weather Bed")
    else:
        check(press(bed), "the press action was refused")
        check(until(lambda: PLAYING.match(bed.description)), f"after a press: \"{bed.description}\"")
        before = bed.description
        check(until(lambda: bed.description != before), f"the time left stays at \"{before}\"")
        check(PLAYING.match(bed.description), f"while it sounds: \"{bed.description}\"")
        stop = by_name.get("STOP", [None])[0]
        check(stop is not None and press(stop), "STOP was refused")
        check(until(lambda: bed.description.startswith("ready")), f"after STOP: \"{bed.description}\"")

    for text in faults:
        print(f"screen_reader: {text}", file=sys.stderr)
    if not faults:
        print(f"screen_reader: {len(jingles)} jingle buttons, {len(NAMED)} keys and {len(TABS)} tabs; "
              "a press was seen to start and STOP to end it")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
