#!/usr/bin/env python3
"""Walks the program's accessibility tree as a screen reader does: names, states, presses. Run in a session with the
accessibility bus and the program, by screen_reader.sh."""
import re
import sys
import time

import pyatspi

BUTTONS = 30 + 10  # the grid of the first start and two rows of hot jingles
WAIT = 10  # seconds for anything to happen
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


def shown(node, state=pyatspi.STATE_SHOWING):
    return node.getState().contains(state)


def question(window, asks, stop, jingle):
    """A question takes the keyboard and tells its text with the key that has it; meanwhile a jingle plays and STOP
    stops it; the answer gives the keyboard back."""
    check(press(asks), "the question was not asked")
    text = "Close Zentrova?"
    with_it = until(lambda: [n for n in below(window) if n.description == text and shown(n, pyatspi.STATE_FOCUSED)])
    if not with_it:
        faults.append("the question did not take the keyboard, or does not tell its text with it")
        return
    key = with_it[0]
    check(key.name == "Go on" and key.getRole() == pyatspi.ROLE_PUSH_BUTTON, f"the keyboard went to {key}")
    told = [n.name for n in below(window) if shown(n)]
    for wanted in (text, "Close Zentrova"):
        check(wanted in told, f"the question does not show \"{wanted}\"")
    check(press(jingle) and until(lambda: PLAYING.match(jingle.description)), "no press plays while a question waits")
    check(press(stop) and until(lambda: jingle.description.startswith("ready")), "no STOP while a question waits")
    check(press(key), "the key cannot be pressed")
    check(until(lambda: not shown(key)), "the answer did not end the question")


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
    check(all(n.name for n in jingles), "a jingle button without a name")
    filled = [n for n in jingles if n.description.startswith("ready")]
    check(len(filled) > 25, f"only {len(filled)} jingles are ready")
    for n in filled:
        check(READY.match(n.description), f"{n.name}: \"{n.description}\" lacks its duration")

    # The keys have their names, the list its rows; tabs and toggles tell whether they are on.
    named = {role: [n.name for n in nodes if n.getRole() == role and n.name and n not in jingles]
             for role in (pyatspi.ROLE_PAGE_TAB, pyatspi.ROLE_PUSH_BUTTON, pyatspi.ROLE_CHECK_BOX, pyatspi.ROLE_LIST_ITEM)}
    tabs, keys, toggles, rows = named.values()
    check(tabs == ["Palettes", "Time announcer", "Live stream", "Jingle options"], f"tabs {tabs}")
    check(keys[3:] == ["New", "Delete", "Settings", "STOP", "Exit"] and "Find" in keys[1], f"keys {keys}")
    check(toggles == ["Assign", "Save", "Restart", "Hold", "Automix", "Mic", "Talkover"], f"toggles {toggles}")
    check(rows[:3] == ["Jazz Hour", "Sample Radio", "Sports Saturday"], f"rows {rows}")
    for name, other, on in (("Time announcer", "Palettes", pyatspi.STATE_SELECTED), ("Hold", "Restart", pyatspi.STATE_CHECKED)):
        one, two = by_name[name][0], next(n for n in by_name[other] if n.getRole() == by_name[name][0].getRole())
        for now, before in ((one, two), (two, one)):
            check(press(now) and until(lambda: shown(now, on)), f"{now.name} is not told to be on")
            check(not shown(before, on), f"{before.name} is told to be on still")
    check(press(by_name["Restart"][0]), "Restart was refused")

    display = [n for n in nodes if n.name == "00.0"]
    check(display and "Sample Radio" in display[0].description, "the display does not tell counter and palette")

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
        check(display and until(lambda: re.match(r"^\d\d\.\d$", display[0].name) and display[0].name != "00.0"),
              "the display does not tell the time left")
        stop = by_name.get("STOP", [None])[0]
        check(stop is not None and press(stop), "STOP was refused")
        check(until(lambda: bed.description.startswith("ready")), f"after STOP: \"{bed.description}\"")

    question(window, by_name["Exit"][0], by_name["STOP"][0], bed)

    for text in faults:
        print(f"screen_reader: {text}", file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
