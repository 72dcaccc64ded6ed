#!/usr/bin/python3
"""Makes data/Fonts: the display's figures and the program's symbols, from outlines drawn here.

ZVR.ttf      seven-segment figures of one width, and symbols under letters.
MSSSMod.ttf  the same symbols with a heavier line, for sizes below about 12 pixels.
README.txt   which symbol stands under which letter.

Needs python3-fonttools. The same script gives the same bytes each time.
"""
import math
import os
import sys

from fontTools.fontBuilder import FontBuilder
from fontTools.pens.ttGlyphPen import TTGlyphPen

UNITS = 1000
ASCENT, DESCENT = 800, 200
CAP = 720              # height of figures and symbols above the base line
FIXED_DATE = 3600000000  # seconds since 1904, as the format counts

SEGMENTS = {"0": "abcdef", "1": "bc", "2": "abdeg", "3": "abcdg", "4": "bcfg", "5": "acdfg", "6": "acdefg",
            "7": "abc", "8": "abcdefg", "9": "abcdfg", "-": "g"}


# ---- outlines: lists of closed contours, each a list of points -------------------------------------------------

def area(points):
    return sum(x0 * y1 - x1 * y0 for (x0, y0), (x1, y1) in zip(points, points[1:] + points[:1])) / 2


def clockwise(points):
    """Filled contours run clockwise, holes the other way round."""
    return points if area(points) < 0 else points[::-1]


def hole(contours):
    return [clockwise(c)[::-1] for c in contours]


def poly(*points):
    return [clockwise(list(points))]


def rect(x0, y0, x1, y1, r=0):
    if r <= 0:
        return poly((x0, y0), (x1, y0), (x1, y1), (x0, y1))
    out = []
    for cx, cy, start in ((x1 - r, y0 + r, 270), (x1 - r, y1 - r, 0), (x0 + r, y1 - r, 90), (x0 + r, y0 + r, 180)):
        for step in range(7):
            a = math.radians(start + 15 * step)
            out.append((cx + r * math.cos(a), cy + r * math.sin(a)))
    return [clockwise(out)]


def disc(cx, cy, r, steps=36):
    return [clockwise([(cx + r * math.cos(2 * math.pi * i / steps), cy + r * math.sin(2 * math.pi * i / steps))
                       for i in range(steps)])]


def ring(cx, cy, r, w):
    return disc(cx, cy, r) + hole(disc(cx, cy, r - w))


def arc(cx, cy, r, w, start, end):
    """A bow of width w around the radius r, angles in degrees, with round ends."""
    steps = max(4, int(abs(end - start) / 8))
    angles = [math.radians(start + (end - start) * i / steps) for i in range(steps + 1)]
    outer = [(cx + (r + w / 2) * math.cos(a), cy + (r + w / 2) * math.sin(a)) for a in angles]
    inner = [(cx + (r - w / 2) * math.cos(a), cy + (r - w / 2) * math.sin(a)) for a in angles]
    ends = [disc(cx + r * math.cos(a), cy + r * math.sin(a), w / 2, 20)[0] for a in (angles[0], angles[-1])]
    return [clockwise(outer + inner[::-1])] + ends


def line(w, *points):
    """A line of width w through the points, with round corners and ends."""
    out = []
    for (x0, y0), (x1, y1) in zip(points, points[1:]):
        length = math.hypot(x1 - x0, y1 - y0)
        dx, dy = -(y1 - y0) / length * w / 2, (x1 - x0) / length * w / 2
        out += poly((x0 + dx, y0 + dy), (x1 + dx, y1 + dy), (x1 - dx, y1 - dy), (x0 - dx, y0 - dy))
    for x, y in points:
        out += disc(x, y, w / 2, 20)
    return out


def head(x, y, angle, size):
    """A filled arrow head with its tip at the place, pointing along the angle."""
    a = math.radians(angle)
    tip = (x, y)
    left = (x + size * math.cos(a + math.radians(150)), y + size * math.sin(a + math.radians(150)))
    right = (x + size * math.cos(a - math.radians(150)), y + size * math.sin(a - math.radians(150)))
    return poly(tip, left, right)


# ---- figures -------------------------------------------------------------------------------------------------

FIGURE_WIDTH, FIGURE_ADVANCE, POINT_ADVANCE = 340, 460, 200


def figure(segments):
    x0, x1, y0, y1 = 60, 60 + FIGURE_WIDTH, 0, CAP
    m, t, s = (y0 + y1) / 2, FIGURE_WIDTH * 0.185, FIGURE_WIDTH * 0.028
    h = t / 2
    shapes = {
        "a": [(x0 + s, y1), (x1 - s, y1), (x1 - s - t, y1 - t), (x0 + s + t, y1 - t)],
        "d": [(x0 + s + t, y0 + t), (x1 - s - t, y0 + t), (x1 - s, y0), (x0 + s, y0)],
        "f": [(x0, y1 - s), (x0 + t, y1 - t - s), (x0 + t, m + h + s), (x0 + h, m + s), (x0, m + h + s)],
        "e": [(x0, m - h - s), (x0 + h, m - s), (x0 + t, m - h - s), (x0 + t, y0 + t + s), (x0, y0 + s)],
        "b": [(x1, y1 - s), (x1, m + h + s), (x1 - h, m + s), (x1 - t, m + h + s), (x1 - t, y1 - t - s)],
        "c": [(x1, m - h - s), (x1, y0 + s), (x1 - t, y0 + t + s), (x1 - t, m - h - s), (x1 - h, m - s)],
        "g": [(x0 + h + s, m), (x0 + t + s, m + h), (x1 - t - s, m + h), (x1 - h - s, m), (x1 - t - s, m - h),
              (x0 + t + s, m - h)],
    }
    return [clockwise(shapes[name]) for name in segments]


def figures():
    glyphs = {c: (figure(s), FIGURE_ADVANCE, "figure") for c, s in SEGMENTS.items()}
    d, x = CAP * 0.115, POINT_ADVANCE / 2
    dot = lambda y: rect(x - d / 2, y - d / 2, x + d / 2, y + d / 2, 8)
    glyphs[":"] = (dot(CAP * 0.3) + dot(CAP * 0.7), POINT_ADVANCE, "colon between figures")
    glyphs["."] = (dot(d / 2), POINT_ADVANCE, "point between figures")
    glyphs[","] = (dot(d / 2), POINT_ADVANCE, "the same")
    glyphs[" "] = ([], FIGURE_ADVANCE, "blank of a figure's width")
    return glyphs


# ---- symbols: in a field of 800 x 720 above the base line, `w` is the width of their lines ----------------------

def symbols(w):
    g = {}

    def put(letter, name, *parts):
        g[letter] = ([c for part in parts for c in part], 800, name)

    mid, centre = 360, 400
    tick = lambda x, y, u: line(w * 1.15, (x - 2.2 * u, y), (x - 0.6 * u, y - 1.7 * u), (x + 2.4 * u, y + 1.9 * u))
    triangle = poly((250, 90), (250, 630), (660, 360))

    put("f", "save", rect(110, 60, 690, 640, 50), hole(rect(230, 420, 520, 580)), hole(rect(220, 110, 580, 330)),
        rect(430, 450, 490, 550))
    put("h", "wait", line(w, (190, 680), (610, 680)), line(w, (190, 40), (610, 40)),
        line(w, (240, 660), (240, 560), (380, 360), (240, 160), (240, 60)),
        line(w, (560, 660), (560, 560), (420, 360), (560, 160), (560, 60)),
        poly((300, 80), (500, 80), (400, 230)), poly((320, 520), (480, 520), (400, 410)))
    put("?", "done", tick(390, 350, 115))
    put("x", "failed", line(w * 1.15, (180, 140), (620, 580)), line(w * 1.15, (180, 580), (620, 140)))
    put("b", "notification", poly((180, 190), (240, 270), (240, 430), (290, 550), (400, 600), (510, 550), (560, 430),
                                  (560, 270), (620, 190)), disc(400, 620, 45), disc(400, 120, 75))
    put("P", "plays a playlist", line(w, (130, 590), (670, 590)), line(w, (130, 420), (460, 420)),
        line(w, (130, 250), (360, 250)), poly((480, 60), (480, 330), (690, 195)))
    put("K", "held by a playlist", rect(170, 50, 630, 400, 50), hole(disc(400, 235, 55)),
        arc(400, 440, 150, w, 0, 180), line(w, (250, 440), (250, 380)), line(w, (550, 440), (550, 380)))
    bars = lambda first: [rect(x, 80, x + 90, 640 if (i < 2) == first else 240) for i, x in enumerate((120, 250, 460, 590))]
    put("p", "meters show the first pair", *bars(True))
    put("q", "meters show the second pair", *bars(False))
    cross = [line(w, (110, 520), (250, 520), (500, 200), (620, 200)),
             line(w, (110, 200), (250, 200), (320, 290)), line(w, (430, 430), (500, 520), (620, 520)),
             head(740, 200, 0, 190), head(740, 520, 0, 190)]
    put("a", "automix on its own", *cross)
    put("n", "automix, all", *cross, line(w, (110, 20), (690, 20)))
    put("r", "repeats by itself", arc(400, 350, 230, w, -45, 250), head(470, 172, 215, 230))
    put("v", "plays while touched", disc(400, 360, 90), arc(400, 360, 190, w * 0.8, 0, 350), arc(400, 360, 300, w * 0.8, 20, 160),
        arc(400, 360, 300, w * 0.8, 200, 340))
    put("w", "plays to its end", poly((150, 90), (150, 630), (540, 360)), rect(570, 90, 670, 630, 20))
    put("y", "play", triangle)
    put("z", "stop the stream", rect(170, 130, 630, 590, 40))
    put("S", "stop", rect(170, 130, 630, 590, 40))
    put("d", "jingle of the time announcer", poly((120, 270), (120, 450), (260, 450), (560, 640), (560, 80), (260, 270)),
        arc(560, 360, 150, w, -50, 50))
    put("j", "date", rect(120, 60, 680, 600, 50), hole(rect(180, 120, 620, 430)), line(w, (260, 560), (260, 680)),
        line(w, (540, 560), (540, 680)), *[rect(x, y, x + 70, y + 70) for x in (240, 365, 490) for y in (170, 300)])
    put("t", "time", ring(400, 360, 330, w), line(w, (400, 360), (400, 570)), line(w, (400, 360), (540, 280)))
    put("A", "before noon", disc(400, 360, 150), *[line(w * 0.9, (400 + 230 * math.cos(a), 360 + 230 * math.sin(a)),
                                                       (400 + 310 * math.cos(a), 360 + 310 * math.sin(a)))
                                                  for a in [math.pi * i / 4 for i in range(8)]])
    # The outer bow from one horn to the other, back along the bow of the shadow.
    moon = [(380 + 290 * math.cos(math.radians(a)), 360 + 290 * math.sin(math.radians(a))) for a in range(80, 361, 8)]
    moon += [(530 + 205 * math.cos(math.radians(a)), 500 + 205 * math.sin(math.radians(a)))
             for a in range(306, 144, -8)]
    put("N", "after noon", [clockwise(moon)])
    put("l", "loop", line(w, (250, 560), (560, 560)), arc(250, 430, 130, w, 90, 190), head(720, 560, 0, 190),
        line(w, (550, 160), (240, 160)), arc(550, 290, 130, w, -90, 10), head(80, 160, 180, 190))
    put("s", "sequence", *[rect(x, 100, x + 120, 100 + hgt, 20) for x, hgt in ((110, 180), (270, 320), (430, 460))],
        line(w, (640, 110), (640, 520)), head(640, 690, 90, 200))
    put("e", "effects", *[line(w * 0.8, (x, 70), (x, 650)) for x in (190, 400, 610)],
        rect(110, 400, 270, 500, 30), rect(320, 190, 480, 290, 30), rect(530, 450, 690, 550, 30))
    put("m", "plays, stops at the next press", poly((40, 100), (40, 620), (390, 360)), rect(450, 160, 780, 560, 30))
    put("u", "second voice", line(w, (160, 560), (160, 160)), line(w, (320, 640), (320, 80)),
        line(w, (480, 500), (480, 220)), line(w, (640, 580), (640, 140)))
    put("c", "colour", disc(400, 260, 210), poly((210, 350), (590, 350), (400, 690)))
    put("o", "settings", ring(400, 360, 220, 130), *[rect_at(400, 360, 200, 330, a, 120) for a in range(0, 360, 45)])
    put("U", "up", poly((140, 180), (660, 180), (400, 580)))
    put("D", "down", poly((140, 540), (660, 540), (400, 140)))
    put("<", "back", poly((580, 100), (580, 620), (180, 360)))
    put(">", "forward", poly((220, 100), (220, 620), (620, 360)))
    put("g", "search", ring(350, 420, 240, w), line(w * 1.35, (530, 240), (680, 90)))
    put("M", "microphone", rect(290, 290, 510, 690, 110), arc(400, 400, 210, w, 180, 360),
        line(w, (400, 190), (400, 60)), line(w, (260, 50), (540, 50)))
    put("T", "talk over", rect(100, 230, 700, 660, 90), poly((220, 260), (420, 260), (220, 60)),
        *[hole(disc(x, 445, 48)) for x in (250, 400, 550)])
    put("E", "exit", line(w, (420, 640), (140, 640), (140, 80), (420, 80)), line(w, (330, 360), (600, 360)),
        head(730, 360, 0, 220))
    put("i", "about", disc(400, 620, 62), line(w * 1.3, (400, 430), (400, 100)))
    put("!", "attention", poly((60, 40), (740, 40), (400, 690)), hole(rect(368, 230, 432, 480)), hole(disc(400, 140, 42)))
    put("+", "add", line(w, (400, 110), (400, 610)), line(w, (150, 360), (650, 360)))
    put("k", "linked", arc(250, 360, 150, w, 50, 310), arc(550, 360, 150, w, 230, 490), line(w, (280, 360), (520, 360)))
    return g


def rect_at(cx, cy, r0, r1, angle, width):
    """A tooth: a bar from radius r0 to r1 along an angle."""
    a = math.radians(angle)
    dx, dy = math.cos(a), math.sin(a)
    nx, ny = -dy * width / 2, dx * width / 2
    return poly((cx + r0 * dx + nx, cy + r0 * dy + ny), (cx + r1 * dx + nx * 0.8, cy + r1 * dy + ny * 0.8),
                (cx + r1 * dx - nx * 0.8, cy + r1 * dy - ny * 0.8), (cx + r0 * dx - nx, cy + r0 * dy - ny))


# ---- files -----------------------------------------------------------------------------------------------------

def drawn(contours):
    pen = TTGlyphPen(None)
    for contour in contours:
        points = [(round(x), round(y)) for x, y in contour]
        points = [p for i, p in enumerate(points) if p != points[i - 1]]
        pen.moveTo(points[0])
        for p in points[1:]:
            pen.lineTo(p)
        pen.closePath()
    return pen.glyph()


def write(path, family, glyphs):
    names = {c: "uni%04X" % ord(c) for c in glyphs}
    order = [".notdef"] + [names[c] for c in sorted(glyphs)]
    fb = FontBuilder(UNITS, isTTF=True)
    fb.setupGlyphOrder(order)
    fb.setupCharacterMap({ord(c): n for c, n in names.items()})
    fb.setupGlyf({".notdef": drawn([]), **{names[c]: drawn(g[0]) for c, g in glyphs.items()}})
    metrics = {".notdef": (FIGURE_ADVANCE, 0)}
    for c, (contours, advance, _) in glyphs.items():
        left = min((round(p[0]) for k in contours for p in k), default=0)
        metrics[names[c]] = (advance, left)
    fb.setupHorizontalMetrics(metrics)
    fb.setupHorizontalHeader(ascent=ASCENT, descent=-DESCENT)
    fb.setupNameTable({"familyName": family, "styleName": "Regular", "uniqueFontIdentifier": family + " 1.0",
                       "fullName": family, "psName": family, "version": "Version 1.0"})
    fb.setupOS2(sTypoAscender=ASCENT, sTypoDescender=-DESCENT, usWinAscent=ASCENT, usWinDescent=DESCENT)
    fb.setupPost()
    fb.font["head"].created = fb.font["head"].modified = FIXED_DATE
    fb.font.recalcTimestamp = False
    fb.save(path)


def main():
    root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    folder = sys.argv[1] if len(sys.argv) > 1 else os.path.join(root, "data", "Fonts")
    os.makedirs(folder, exist_ok=True)
    marks = symbols(78)
    write(os.path.join(folder, "ZVR.ttf"), "ZVR", {**figures(), **marks})
    write(os.path.join(folder, "MSSSMod.ttf"), "MSSSMod", {**figures(), **symbols(108)})
    with open(os.path.join(folder, "README.txt"), "w", encoding="utf-8", newline="\n") as f:
        f.write("ZVR.ttf: seven-segment figures 0 to 9, \"-\", colon, point and blank, figures of one width;\n"
                "symbols under letters. MSSSMod.ttf: the same with a heavier line, for small sizes.\n"
                "Both are made by tools/make_fonts.py; edit that, not the fonts.\n\n")
        for letter in sorted(marks):
            f.write("%s  %s\n" % (letter, marks[letter][2]))


if __name__ == "__main__":
    main()
