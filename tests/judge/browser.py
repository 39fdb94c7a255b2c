# SPDX-License-Identifier: MIT

"""Compares the library's figures of real outlines with a browser's.

    browser.py FIGURES [--count N] [--browser PROGRAM] [--work FOLDER]

FIGURES is the program trammel_figures. The outlines are those of icon themes and fonts that Debian packages,
drawn evenly from all that are installed, and each text once. For each the browser says its length, its bounds,
points at 11 fractions of the length, and which of 20 points lie inside by both fill rules.

A browser works in single precision and measures curves by chords. Where figures differ by more than 1e-4 of the
size, this file computes the right ones. It measures lengths by quadrature, finds places by bisection and bounds by
the derivative's zeros, and adds up angles for winding numbers. The run fails where the library is off, and says by
how much the browser is off elsewhere. At a gap between two contours both of its ends are right.
"""

import argparse
import bisect
import collections
import glob
import json
import math
import pathlib
import re
import subprocess
import sys
import xml.etree.ElementTree

from fontTools.pens.basePen import decomposeQuadraticSegment
from fontTools.pens.recordingPen import DecomposingRecordingPen
from fontTools.pens.svgPathPen import SVGPathPen
from fontTools.svgLib.path import parse_path
from fontTools.svgLib.path.arc import EllipticalArc
from fontTools.ttLib import TTFont, TTLibError

AGREE = 1e-4  # of the size: the difference that needs no explanation
RIGHT = 1e-9  # of the size: how near to the truth the library has to be
ARC_RIGHT = 1e-5  # the same where elliptical arcs are read as curves
ICONS = "/usr/share/icons"
FONTS = "/usr/share/fonts"
BATCH = 250
FRACTIONS = 11
# The library reads such numbers as SVG 1.1 does; SVG 2 and the browser stop there.
ENDS_IN_POINT = re.compile(r"[0-9]\.(?![0-9])")

# Collect


def icon_texts():
    """The path texts of all icons, files in order of their names."""
    for file in sorted(glob.glob(ICONS + "/**/*.svg", recursive=True)):
        if pathlib.Path(file).is_symlink():
            continue
        try:
            root = xml.etree.ElementTree.parse(file).getroot()
        except xml.etree.ElementTree.ParseError:
            continue
        for element in root.iter("{http://www.w3.org/2000/svg}path"):
            text = " ".join(element.get("d", "").split())
            if text and not ENDS_IN_POINT.search(text):
                yield text


def font_texts():
    """The path texts of all glyphs of the fonts, in font units."""
    for file in sorted(glob.glob(FONTS + "/**/*.[ot]tf", recursive=True)):
        try:
            glyphs = TTFont(file).getGlyphSet()
            names = sorted(glyphs.keys())
        except TTLibError:
            continue
        for name in names:
            pen = SVGPathPen(glyphs)
            glyphs[name].draw(pen)
            if pen.getCommands():
                yield pen.getCommands()


def evenly(texts, count):
    """At most `count` different texts, spread over all."""
    different = list(dict.fromkeys(texts))
    if len(different) <= count:
        return different
    return [different[i * len(different) // count] for i in range(count)]


def collect(count):
    fonts = list(dict.fromkeys(font_texts()))
    icons = list(dict.fromkeys(icon_texts()))
    half = max(count // 2, count - len(fonts))
    chosen = evenly(icons, half)
    return chosen + evenly(fonts, count - len(chosen))


# Measure


def library_figures(program, texts):
    answer = subprocess.run([program], input="\n".join(texts) + "\n", capture_output=True, text=True, check=True)
    return [json.loads(line) for line in answer.stdout.splitlines()]


def browser_figures(browser, page, outlines, work):
    """The browser's figures, which the page writes into its element `figures`."""
    asked = json.dumps(outlines).replace("</", "<\\/")
    file = work / "outlines.html"
    file.write_text(page.replace("ALL_OUTLINES", asked), "utf-8")
    answer = subprocess.run(
        [browser, "--headless", "--no-sandbox", "--disable-gpu", "--timeout=120000", f"--user-data-dir={work}/profile",
         "--dump-dom", file.absolute().as_uri()],
        capture_output=True, text=True, check=True)
    begin = answer.stdout.index('<pre id="figures">') + len('<pre id="figures">')
    return json.loads(answer.stdout[begin : answer.stdout.index("</pre>", begin)])


# Judge: each outline is a list of curves, each the list of its two to four control points


def raised(points):
    """The control points of the same cubic curve."""
    if len(points) == 4:
        return points
    if len(points) == 2:
        (a, b) = points
        return [a, lerp(a, b, 1 / 3), lerp(a, b, 2 / 3), b]
    (a, q, b) = points
    return [a, lerp(q, a, 1 / 3), lerp(q, b, 1 / 3), b]


def lerp(a, b, t):
    return (a[0] + (b[0] - a[0]) * t, a[1] + (b[1] - a[1]) * t)


class FineArc(EllipticalArc):
    """An elliptical arc as curves of 1/64 of its turn each, which follow it to rounding."""

    PIECES = 64

    def draw(self, pen):
        if not self._parametrize():
            return
        begin, turn = self.theta1, self.theta_arc / self.PIECES
        for i in range(self.PIECES):
            self.theta1, self.theta_arc = begin + i * turn, turn
            super().draw(pen)


def contours_of(text):
    """The contours of a path text, read by fontTools: each a list of segments. None where it cannot."""
    pen = DecomposingRecordingPen({})
    try:
        parse_path(text, pen, arc_class=FineArc)
    except (AttributeError, TypeError, ValueError):
        return []
    contours = []
    here = (0.0, 0.0)
    for command, points in pen.value:
        if command == "moveTo":
            contours.append([])
        elif command == "lineTo":
            contours[-1].append([here, points[0]])
        elif command == "curveTo":
            contours[-1].append([here, *points])
        elif command == "qCurveTo":
            for control, end in decomposeQuadraticSegment(points):
                contours[-1].append([here, control, end])
                here = end
        if points:
            here = points[-1]
    return [contour for contour in contours if contour]


def at(curve, t):
    s = 1.0 - t
    weights = (s * s * s, 3 * s * s * t, 3 * s * t * t, t * t * t)
    return (math.fsum(w * p[0] for w, p in zip(weights, curve)), math.fsum(w * p[1] for w, p in zip(weights, curve)))


def speed(curve, t):
    s = 1.0 - t
    weights = (3 * s * s, 6 * s * t, 3 * t * t)
    step = [(b[0] - a[0], b[1] - a[1]) for a, b in zip(curve, curve[1:])]
    return math.hypot(sum(w * p[0] for w, p in zip(weights, step)), sum(w * p[1] for w, p in zip(weights, step)))


# Gauss and Legendre's five nodes and weights on [0, 1].
NODES = [(0.5 + 0.5 * x, 0.5 * w) for x, w in (
    (0.0, 0.5688888888888889),
    (0.5384693101056831, 0.47862867049936647), (-0.5384693101056831, 0.47862867049936647),
    (0.906179845938664, 0.23692688505618908), (-0.906179845938664, 0.23692688505618908))]


def arc_length(curve, a=0.0, b=1.0, depth=40):
    """The arc length by quadrature, halved until two halves agree with the whole."""
    def rule(a, b):
        return (b - a) * math.fsum(w * speed(curve, a + (b - a) * x) for x, w in NODES)

    done = 0.0
    work = [(a, b, rule(a, b), depth)]
    scale = sum(math.dist(p, q) for p, q in zip(curve, curve[1:]))
    while work:
        a, b, whole, left = work.pop()
        middle = 0.5 * (a + b)
        first, second = rule(a, middle), rule(middle, b)
        if left == 0 or abs(first + second - whole) <= 1e-13 * scale:
            done += first + second
        else:
            work += [(a, middle, first, left - 1), (middle, b, second, left - 1)]
    return done


class Truth:
    """The right figures of one outline, to some 1e-11 of its size."""

    def __init__(self, contours):
        self.contours = [[raised(points) for points in contour] for contour in contours]
        self.curves = [curve for contour in self.contours for curve in contour]

    def lengths(self):
        ends = [0.0]
        for curve in self.curves:
            ends.append(ends[-1] + arc_length(curve))
        return ends

    def length(self):
        return self.lengths()[-1]

    def points(self, length):
        """The points at this length from the start; two where a gap between contours lies there, in single precision."""
        ends = self.lengths()
        found = []
        slack = 1e-6 * ends[-1]
        for i, curve in enumerate(self.curves):
            if ends[i] - slack <= length <= ends[i + 1] + slack:
                low, high = 0.0, 1.0
                for _ in range(60):
                    middle = 0.5 * (low + high)
                    if ends[i] + arc_length(curve, 0.0, middle) < length:
                        low = middle
                    else:
                        high = middle
                found.append(at(curve, high))
        return found

    def bounds(self):
        box = [math.inf, math.inf, -math.inf, -math.inf]
        for curve in self.curves:
            ts = [0.0, 1.0]
            for axis in (0, 1):
                a, b, c, d = (p[axis] for p in curve)
                u, v, w = d - 3 * c + 3 * b - a, 2 * (c - 2 * b + a), b - a
                if abs(u) > 1e-12 * (abs(v) + abs(w)):
                    inside = v * v - 4 * u * w
                    if inside >= 0.0:
                        q = -0.5 * (v + math.copysign(math.sqrt(inside), v))
                        ts += [q / u] + ([w / q] if q else [])
                elif v:
                    ts.append(-w / v)
            for t in ts:
                if 0.0 <= t <= 1.0:
                    x, y = at(curve, t)
                    box = [min(box[0], x), min(box[1], y), max(box[2], x), max(box[3], y)]
        return box

    def winding(self, p):
        """The winding number by the angles of chords so short that p lies outside their hulls."""
        total = 0.0
        for contour in self.contours:
            closing = raised([contour[-1][3], contour[0][0]])
            for curve in [*contour, closing]:
                work = [(0.0, 1.0, 30)]
                while work:
                    a, b, left = work.pop()
                    u, v = at(curve, a), at(curve, b)
                    u, v = (u[0] - p[0], u[1] - p[1]), (v[0] - p[0], v[1] - p[1])
                    reach = sum(math.dist(s, t) for s, t in zip(curve, curve[1:])) * 3 * (b - a)
                    if left and reach > 0.5 * math.hypot(*u) and curve is not closing or (
                            left and reach > 4 * math.hypot(*u)):
                        middle = 0.5 * (a + b)
                        work += [(a, middle, left - 1), (middle, b, left - 1)]
                    else:
                        total += math.atan2(u[0] * v[1] - u[1] * v[0], u[0] * v[0] + u[1] * v[1])
        return round(total / (2 * math.pi))


# Compare


def least_difference(numbers, alternatives):
    """The greatest difference of two numbers, from the alternative for which it is least."""
    return min((max(abs(a - b) for a, b in zip(numbers, right)) for right in alternatives), default=math.inf)


class Tally:
    """What agrees, what the browser has wrong and by how much, what the library has wrong."""

    def __init__(self):
        self.agree = collections.Counter()
        self.browser = collections.defaultdict(list)
        self.ours = []

    def judge(self, kind, ours, theirs, size, text, truth):
        """Compares two lists of numbers; `truth` computes the right ones."""
        if all(abs(a - b) <= AGREE * size for a, b in zip(ours, theirs)):
            self.agree[kind] += 1
            return
        alternatives = truth()
        best = least_difference(ours, alternatives)
        if best <= RIGHT * size and least_difference(theirs, alternatives) <= AGREE * size:
            self.agree[kind + " at gaps"] += 1
            return
        if best <= (ARC_RIGHT if kind == "box" else RIGHT) * size:
            self.browser[kind].append((max(abs(a - b) for a, b in zip(ours, theirs)) / size, text))
        else:
            self.ours.append((kind, best / size, ours, theirs, text))

    def report(self):
        print(f"{'figure':<16} {'agree':>8} {'browser off':>12} {'library off':>12}  browser's worst, of the size")
        wrong = collections.Counter(entry[0] for entry in self.ours)
        for kind in sorted({*self.agree, *self.browser, *wrong}):
            worst = max((error for error, _ in self.browser[kind]), default=0.0)
            print(f"{kind:<16} {self.agree[kind]:>8} {len(self.browser[kind]):>12} {wrong[kind]:>12}  {worst:.2g}")
        for kind, error, ours, theirs, text in self.ours[:20]:
            print(f"library off: {kind} by {error:.3g} of the size: {ours}, the browser {theirs}: {text[:300]}")


def compare(ours, theirs, given, tally):
    text = ours["d"]
    truth = Truth(ours["contours"])
    size = max(ours["bounds"][2] - ours["bounds"][0], ours["bounds"][3] - ours["bounds"][1])
    tally.judge("box", ours["box"], theirs["box"], size * (ours["box"][2] - ours["box"][0] or 1.0)
                / (ours["bounds"][2] - ours["bounds"][0] or 1.0), given, lambda: [Truth(contours_of(given)).bounds()])
    tally.judge("bounds", ours["bounds"], theirs["bounds"], size, text, lambda: [truth.bounds()])
    tally.judge("length", [ours["length"]], [theirs["length"]], max(size, ours["length"]), text,
                lambda: [[truth.length()]])
    for i in range(FRACTIONS):
        tally.judge("points", ours["points"][i], theirs["points"][i], size, text,
                    lambda: truth.points(ours["length"] * i / (FRACTIONS - 1)))
    for i, p in enumerate(ours["asked"]):
        for rule in ("nonzero", "evenodd"):
            if ours["near"][i] <= AGREE * size:
                tally.agree["near the outline"] += 1
                continue

            def inside():
                winding = truth.winding(p)
                return [[float(winding != 0 if rule == "nonzero" else winding % 2 != 0)]]

            tally.judge(rule, [float(ours[rule][i])], [float(theirs[rule][i])], 1.0, text, inside)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("figures")
    parser.add_argument("--count", type=int, default=10000)
    parser.add_argument("--browser", default="chromium")
    parser.add_argument("--work", type=pathlib.Path, default=pathlib.Path("build/judge"))
    options = parser.parse_args()
    options.work.mkdir(parents=True, exist_ok=True)
    page = pathlib.Path(__file__).with_name("browser.html").read_text("utf-8")
    texts = collect(options.count)
    figures = library_figures(options.figures, texts)
    measured = [(text, own) for text, own in zip(texts, figures) if "skip" not in own]
    skipped = collections.Counter(own["skip"] for own in figures if "skip" in own)
    print(f"{len(texts)} outlines, {len(measured)} measured")
    for reason, count in skipped.items():
        print(f"left out: {count} because {reason}")
    tally = Tally()
    for begin in range(0, len(measured), BATCH):
        batch = measured[begin : begin + BATCH]
        asked = [{"given": text, "d": own["d"], "asked": own["asked"]} for text, own in batch]
        theirs = browser_figures(options.browser, page, asked, options.work)
        for (text, own), other in zip(batch, theirs):
            compare(own, other, text, tally)
    tally.report()
    return 1 if tally.ours or not measured else 0


if __name__ == "__main__":
    sys.exit(main())
