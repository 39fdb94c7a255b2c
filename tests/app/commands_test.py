#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Tests of the command-line tool, as its users see it: files in, text, JSON and files out.

    commands_test.py PROGRAM [unittest options]

Expected figures are worked out by hand from shapes whose lengths and places are known. The drawings
and the font are written by the test itself; real icons and fonts are used where they are installed.
"""

import glob
import json
import math
import os
import pty
import re
import shutil
import stat
import struct
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

PROGRAM = os.path.abspath(sys.argv.pop(1))

DEJAVU = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"
GARAMOND = "/usr/share/fonts/opentype/ebgaramond/EBGaramond12-Regular.otf"
ICONS = "/usr/share/icons/breeze/actions/22"

SVG = "{http://www.w3.org/2000/svg}"


def svg(body, attributes='viewBox="0 0 100 100"'):
    return (
        '<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink" '
        f"{attributes}>\n{body}\n</svg>\n"
    )


SQUARE = svg('<rect id="sq" width="10" height="10"/>')


def font_bytes():
    """A TrueType font of 1000 units: A is a square of 500, B an arch (one quadratic curve on a
    line), C a contour of off-curve points only, space is blank. A and B kern by -100."""

    def table_checksum(data):
        data += b"\0" * (-len(data) % 4)
        return sum(struct.unpack(f">{len(data) // 4}I", data)) & 0xFFFFFFFF

    def glyph(points):
        on = [p[2] for p in points]
        xs = [p[0] for p in points]
        ys = [p[1] for p in points]
        data = struct.pack(">hhhhh", 1, min(xs), min(ys), max(xs), max(ys))
        data += struct.pack(">HH", len(points) - 1, 0)
        data += bytes(on)
        for values in (xs, ys):
            last = 0
            for value in values:
                data += struct.pack(">h", value - last)
                last = value
        return data + b"\0" * (-len(data) % 4)

    square = glyph([(0, 0, 1), (0, 500, 1), (500, 500, 1), (500, 0, 1)])
    arch = glyph([(0, 0, 1), (500, 1000, 0), (1000, 0, 1)])
    round_ = glyph([(0, 0, 0), (0, 400, 0), (400, 400, 0), (400, 0, 0)])
    glyphs = [square, b"", square, arch, round_]  # .notdef, space, A, B, C
    advances = [600, 250, 600, 1000, 400]
    offsets = [0]
    for data in glyphs:
        offsets.append(offsets[-1] + len(data))

    codes = [(32, 1), (65, 2), (66, 3), (67, 4), (0xFFFF, 0)]
    n = len(codes)
    cmap4 = struct.pack(">HHHHHHH", 4, 16 + 8 * n, 0, 2 * n, 8, 2, 2 * n - 8)
    cmap4 += b"".join(struct.pack(">H", c) for c, _ in codes) + b"\0\0"
    cmap4 += b"".join(struct.pack(">H", c) for c, _ in codes)
    cmap4 += b"".join(struct.pack(">H", (g - c) & 0xFFFF) for c, g in codes)
    cmap4 += b"\0\0" * n
    tables = {
        b"cmap": struct.pack(">HHHHI", 0, 1, 3, 1, 12) + cmap4,
        b"glyf": b"".join(glyphs),
        b"head": struct.pack(
            ">IIIIHHQQhhhhHHhhh",
            0x00010000, 0x00010000, 0, 0x5F0F3CF5, 0, 1000, 0, 0, 0, 0, 1000, 1000, 0, 8, 2, 1, 0,
        ),
        b"hhea": struct.pack(">IhhhHhhhhhh8xhH", 0x00010000, 800, -200, 0, 1000, 0, 0, 1000, 1, 0,
                             0, 0, 5),
        b"hmtx": b"".join(struct.pack(">Hh", a, 0) for a in advances),
        b"kern": struct.pack(">HHHHHHHHHHHh", 0, 1, 0, 20, 1, 1, 6, 0, 0, 2, 3, -100),
        b"loca": b"".join(struct.pack(">I", o) for o in offsets),
        b"maxp": struct.pack(">IHHHHHHHHHHHHHH", 0x00010000, 5, 8, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0,
                             0, 0),
    }
    header = struct.pack(">IHHHH", 0x00010000, len(tables), 128, 3, 0)
    place = len(header) + 16 * len(tables)
    directory, content = b"", b""
    for tag, data in tables.items():
        directory += tag + struct.pack(">III", table_checksum(data), place + len(content), len(data))
        content += data + b"\0" * (-len(data) % 4)
    return header + directory + content


def arch_length():
    """The length of the parabola of height 500 over a base of 1000, and of the base."""
    b, h = 1000.0, 500.0
    root = math.sqrt(b * b + 16 * h * h)
    return root / 2 + b * b / (8 * h) * math.log((4 * h + root) / b) + b


class AppTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="trammel-test-")
        self.addCleanup(shutil.rmtree, self.folder)

    def write(self, name, content):
        path = os.path.join(self.folder, name)
        with open(path, "wb") as file:
            file.write(content if isinstance(content, bytes) else content.encode("utf-8"))
        return path

    def path(self, name):
        return os.path.join(self.folder, name)

    def read(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def execute(self, *arguments, **options):
        options.setdefault("stdout", subprocess.PIPE)
        return subprocess.run([PROGRAM, *arguments], stderr=subprocess.PIPE, check=False,
                              timeout=300, cwd=self.folder, **options)

    def run_text(self, *arguments):
        """Runs a command that must succeed, in silence on standard error."""
        result = self.execute(*arguments)
        self.assertEqual((result.returncode, result.stderr), (0, b""), arguments)
        return result.stdout.decode("utf-8")

    def run_json(self, *arguments):
        return json.loads(self.run_text(*arguments, "--json"))

    def measure(self, content, name="in.svg"):
        """The outlines of one drawing, by id."""
        data = self.run_json("measure", self.write(name, content))
        outlines = data["files"][0]["outlines"]
        return {outline["id"]: outline for outline in outlines}

    def measure_file(self, name):
        data = self.run_json("measure", self.path(name))
        return {outline["id"]: outline for outline in data["files"][0]["outlines"]}

    def path_data(self, name):
        """The text of each path in a written SVG file, by id."""
        root = ElementTree.parse(self.path(name)).getroot()
        return {e.get("id"): e.get("d") for e in root.iter(SVG + "path")}

    def fails(self, *arguments, names=(), output=None):
        """Runs a command that must fail: status 2, one line that contains `names`, nothing on
        standard output, no file written or left behind."""
        before = sorted(os.listdir(self.folder))
        kept = None
        if output is not None and os.path.isfile(self.path(output)):
            kept = self.read(output)
        result = self.execute(*arguments)
        message = result.stderr.decode("utf-8", "replace")
        self.assertEqual(result.returncode, 2, (arguments, message))
        self.assertEqual(result.stdout, b"", arguments)
        self.assertTrue(message.endswith("\n") and message.count("\n") == 1, (arguments, message))
        self.assertTrue(message.startswith("trammel: "), message)
        for name in names:
            self.assertIn(name, message, arguments)
        self.assertEqual(sorted(os.listdir(self.folder)), before, arguments)
        if kept is not None:
            self.assertEqual(self.read(output), kept)
        return message

    def assertBox(self, actual, expected, tolerance=1e-9):
        self.assertEqual(len(actual), len(expected))
        for a, e in zip(actual, expected):
            self.assertLessEqual(abs(a - e), tolerance, (actual, expected))


class Shapes(AppTest):
    def test_square(self):
        outline = self.measure(SQUARE)["sq"]
        self.assertEqual(outline, {
            "id": "sq", "elements": 5, "subpaths": 1, "length": 40.0,
            "bounds": [0.0, 0.0, 10.0, 10.0], "controlBounds": [0.0, 0.0, 10.0, 10.0],
            "closed": True, "lines": True, "curves": False})

    def test_triangle_at_the_origin(self):
        """The origin counts as a point of the bounds, though it comes first."""
        outline = self.measure(svg('<path id="t" d="M0 0L3 4L3 8"/>'))["t"]
        self.assertEqual(outline["length"], 9.0)
        self.assertEqual(outline["bounds"], [0, 0, 3, 8])
        self.assertFalse(outline["closed"])

    def test_circle(self):
        outline = self.measure(svg('<circle id="c" cx="50" cy="50" r="10"/>'))["c"]
        self.assertLess(abs(outline["length"] - 20 * math.pi), 0.003)
        self.assertLessEqual(outline["length"], 20 * math.pi)
        self.assertBox(outline["bounds"], [40, 40, 60, 60])
        self.assertTrue(outline["closed"] and outline["curves"] and not outline["lines"])
        self.assertEqual(outline["elements"], 10)

    def test_ellipse(self):
        outlines = self.measure(svg('<ellipse id="e" cx="5" cy="6" rx="4" ry="3"/>'
                                    '<ellipse id="auto" cx="5" cy="6" rx="4"/>'))
        self.assertBox(outlines["e"]["bounds"], [1, 3, 9, 9])
        self.assertBox(outlines["auto"]["bounds"], [1, 2, 9, 10])

    def test_rectangle_with_round_corners(self):
        outlines = self.measure(svg(
            '<rect id="r" x="60" y="5" width="30" height="20" rx="5"/>'
            '<rect id="pill" width="30" height="20" rx="50" ry="10"/>'
            '<rect id="plain" width="30" height="20" rx="0" ry="5"/>'))
        self.assertLess(abs(outlines["r"]["length"] - (60 + 10 * math.pi)), 0.002)
        self.assertBox(outlines["r"]["bounds"], [60, 5, 90, 25])
        self.assertEqual(outlines["r"]["elements"], 14)
        self.assertBox(outlines["pill"]["bounds"], [0, 0, 30, 20])
        self.assertFalse(outlines["pill"]["lines"])  # the radii meet on all sides
        self.assertEqual(outlines["plain"]["length"], 100)
        self.assertFalse(outlines["plain"]["curves"])

    def test_corners_are_elliptical(self):
        """Points halfway along a corner lie on its ellipse."""
        file = self.write("r.svg", svg('<rect width="20" height="10" rx="10" ry="5"/>'))
        data = self.run_json("point", file, "--at", "0.06,0.125,0.19,0.4,0.66,0.93")
        for entry in data["outlines"][0]["points"]:
            h, v = entry["point"]
            self.assertLess(abs(math.hypot((h - 10) / 10, (v - 5) / 5) - 1), 1e-5)

    def test_line_polyline_polygon(self):
        outlines = self.measure(svg(
            '<line id="l" x1="1" y1="2" x2="4" y2="6"/>'
            '<polyline id="pl" points="0,0 3,4, 6 8"/><polygon id="pg" points="0 0 3 0 3-4"/>'))
        self.assertEqual([outlines[i]["length"] for i in ("l", "pl", "pg")], [5, 10, 12])
        self.assertEqual([outlines[i]["closed"] for i in ("l", "pl", "pg")], [False, False, True])

    def test_bounds_are_those_of_the_drawn_curve(self):
        outline = self.measure(svg('<path id="p" d="M0 0C0 40 40 40 40 0"/>'))["p"]
        self.assertBox(outline["bounds"], [0, 0, 40, 30], 1e-4)
        self.assertEqual(outline["controlBounds"], [0, 0, 40, 40])

    def test_units(self):
        body = "".join(f'<line id="{u}" x2="1{u}"/>' for u in
                       ("px", "pt", "pc", "mm", "cm", "in", "Q"))
        outlines = self.measure(svg(body + '<line id="pct" x2="50%"/>'
                                    '<circle id="r" r="10%"/>', 'viewBox="0 0 30 40"'))
        expected = {"px": 1, "pt": 4 / 3, "pc": 16, "mm": 96 / 25.4, "cm": 96 / 2.54, "in": 96,
                    "Q": 96 / 101.6, "pct": 15}
        for unit, length in expected.items():
            self.assertAlmostEqual(outlines[unit]["length"], length, 12, unit)
        radius = 0.1 * math.sqrt((30 * 30 + 40 * 40) / 2)
        self.assertBox(outlines["r"]["bounds"], [-radius, -radius, radius, radius])

    def test_nothing_to_draw(self):
        self.assertEqual(self.measure(svg(
            '<rect width="0" height="5"/><circle r="0"/><ellipse rx="3" ry="0"/><path/>'
            '<path d=""/><path d="none"/><polyline points=""/><text>words</text><image/>'
            "<!-- comment --><title>t</title>")), {})

    def test_ids_of_nameless_outlines(self):
        self.assertEqual(list(self.measure(svg('<rect width="1" height="1"/><g><circle r="1"/></g>'
                                               '<path d="M0 0H1"/>'))),
                         ["rect#1", "circle#2", "path#3"])


class Structure(AppTest):
    def bounds(self, body, **options):
        return {k: o["bounds"] for k, o in self.measure(svg(body, **options)).items()}

    def test_transforms(self):
        half = math.sqrt(0.5)
        cases = {
            "translate(5)": [5, 0, 15, 10],
            "translate(5,6)": [5, 6, 15, 16],
            "translate(5 -6)": [5, -6, 15, 4],
            "scale(2)": [0, 0, 20, 20],
            "scale(2 .5)": [0, 0, 20, 5],
            "scale(-1,1)": [-10, 0, 0, 10],
            "rotate(90)": [-10, 0, 0, 10],
            "rotate(45)": [-10 * half, 0, 10 * half, 20 * half],
            "rotate(180 5 5)": [0, 0, 10, 10],
            "rotate(90, 10, 10)": [10, 0, 20, 10],
            "skewX(45)": [0, 0, 20, 10],
            "skewY(45)": [0, 0, 10, 20],
            "matrix(1 2 3 4 5 6)": [5, 6, 45, 66],
            "matrix(1,0,0,1,1e1,-1.5e0)": [10, -1.5, 20, 8.5],
            "translate(5,0)scale(2)": [5, 0, 25, 20],
            " scale(2) , translate(5,0) ": [10, 0, 30, 20],
            "": [0, 0, 10, 10],
        }
        for text, expected in cases.items():
            with self.subTest(text):
                got = self.bounds(f'<rect id="r" width="10" height="10" transform="{text}"/>')["r"]
                self.assertBox(got, expected, 1e-12)

    def test_nested_transforms(self):
        got = self.bounds('<g transform="translate(100 0)"><a transform="scale(2)">'
                          '<rect id="r" x="1" width="1" height="1"/></a></g>')
        self.assertEqual(got["r"], [102, 0, 104, 2])

    def test_use(self):
        got = self.bounds(
            '<defs><g id="pair"><rect id="a" width="1" height="1"/>'
            '<rect id="b" x="2" width="1" height="1"/></g></defs>'
            '<use id="u" href="#pair" x="10" y="20" transform="scale(2)"/>'
            '<use xlink:href="#b"/><use href="#missing"/>')
        self.assertEqual(got, {"u/a": [20, 40, 22, 42], "u/b": [24, 40, 26, 42],
                               "b": [2, 0, 3, 1]})

    def test_use_of_later_elements(self):
        self.assertEqual(self.bounds('<use href="#r" x="5"/><defs><rect id="r" width="1" '
                                     'height="1"/></defs>')["r"], [5, 0, 6, 1])

    def test_symbol(self):
        got = self.bounds('<symbol id="s" viewBox="0 0 10 10"><rect id="r" width="10" height="10"/>'
                          '</symbol><use href="#s" x="3" width="40" height="20"/>')
        # Fitted by its height, in the middle of the width: 10 on either side.
        self.assertEqual(got, {"r": [13, 0, 33, 20]})

    def test_inner_svg(self):
        for rule, expected in {
            "": [3 + 10, 4, 3 + 30, 4 + 20],
            "none": [3, 4, 43, 24],
            "xMinYMid": [3, 4, 23, 24],
            "xMaxYMax meet": [23, 4, 43, 24],
            "xMidYMin slice": [3, 4, 43, 44],
            "xMidYMid slice": [3, -6, 43, 34],
        }.items():
            with self.subTest(rule):
                got = self.bounds(
                    '<svg x="3" y="4" width="40" height="20" viewBox="5 5 10 10" '
                    f'preserveAspectRatio="{rule}"><rect id="r" x="5" y="5" width="10" '
                    'height="10"/></svg>')
                self.assertEqual(got["r"], expected)

    def test_what_is_not_drawn(self):
        self.assertEqual(self.bounds(
            '<g display="none"><rect width="1" height="1"/></g>'
            '<rect style="fill:red; display : none !important" width="1" height="1"/>'
            '<clipPath id="c"><rect width="1" height="1"/></clipPath>'
            '<mask><rect width="1" height="1"/></mask><marker><path d="M0 0H1"/></marker>'
            '<pattern><path d="M0 0H1"/></pattern><symbol><path d="M0 0H1"/></symbol>'
            '<other:path xmlns:other="urn:x" d="M0 0H1"/>'
            '<rect id="r" style="display:inline" display="none" width="1" height="1"/>'),
            {"r": [0, 0, 1, 1]})

    def test_switch(self):
        self.assertEqual(list(self.bounds(
            '<switch><rect id="x" requiredExtensions="urn:x" width="1" height="1"/>'
            '<rect id="de" systemLanguage="de" width="1" height="1"/>'
            '<rect id="yes" width="1" height="1"/><rect id="late" width="1" height="1"/></switch>')),
            ["yes"])

    def test_prefixed_document(self):
        self.assertEqual(list(self.measure(
            '<?xml version="1.0"?><!DOCTYPE svg [<!ENTITY x "y">]>'
            '<s:svg xmlns:s="http://www.w3.org/2000/svg"><s:rect id="r" width="1" height="1"/>'
            "</s:svg>")), ["r"])

    def test_utf16(self):
        self.assertEqual(list(self.measure(("\ufeff" + SQUARE).encode("utf-16-le"))), ["sq"])

    def test_names_are_kept(self):
        self.assertEqual(list(self.measure(svg('<path id="a&quot;&lt;ü&amp;" d="M0 0H1"/>'))),
                         ['a"<ü&'])
        self.run_text("flatten", self.path("in.svg"), "--error", "1", "-o", self.path("out.svg"))
        self.assertEqual(list(self.path_data("out.svg")), ['a"<ü&'])


class Measure(AppTest):
    def test_text(self):
        file = self.write("in.svg", SQUARE)
        self.assertEqual(self.run_text("measure", file, file), (
            f"{file}: sq: 5 elements, length 40, bounds 0,0 to 10,10, closed, lines\n" * 2 +
            "2 files, 2 outlines, 10 elements, length 80, bounds 0,0 to 10,10\n"))

    def test_totals(self):
        a = self.write("a.svg", SQUARE)
        b = self.write("b.svg", svg('<path d="M-3 0V20"/>'))
        self.assertEqual(self.run_json("measure", a, b)["totals"], {
            "files": 2, "outlines": 2, "elements": 7, "length": 60.0,
            "bounds": [-3.0, 0.0, 10.0, 20.0]})

    def test_drawing_without_outlines(self):
        self.assertEqual(self.measure(svg("")), {})
        self.assertIn("1 file, 0 outlines", self.run_text("measure", self.path("in.svg")))

    def test_outline_without_length(self):
        outline = self.measure(svg('<path id="p" d="M5 5"/>'))["p"]
        self.assertEqual((outline["length"], outline["bounds"]), (0.0, [5, 5, 5, 5]))

    def test_id(self):
        file = self.write("in.svg", svg('<path id="a" d="M0 0H1"/><path id="b" d="M0 0H2"/>'))
        self.assertEqual(self.run_json("measure", file, "--id", "b")["totals"]["length"], 2)

    def test_infinite_length_is_null(self):
        outline = self.measure(svg('<path id="p" d="M-1e308 0H1e308"/>'))["p"]
        self.assertIsNone(outline["length"])

    def test_compact_path_text(self):
        outline = self.measure(svg('<path id="p" d="M.5.5-1 .5a1 1 0 00.5.5"/>'))["p"]
        self.assertTrue(outline["curves"])

    def test_font(self):
        glyphs = self.measure(font_bytes(), "font.bin")  # the name tells nothing
        names = ["glyph0", "glyph2", "glyph3", "glyph4"]
        self.assertEqual(list(glyphs), names)
        self.assertEqual(glyphs["glyph2"]["length"], 2000)
        self.assertEqual(glyphs["glyph2"]["bounds"], [0, -500, 500, 0])
        self.assertEqual(glyphs["glyph2"]["elements"], 5)
        arch = glyphs["glyph3"]
        self.assertLess(abs(arch["length"] - arch_length()), 0.1)
        self.assertBox(arch["bounds"], [0, -500, 1000, 0], 0.002)
        # The quadratic's control point (500, 1000), two thirds of the way from each end.
        self.assertAlmostEqual(arch["controlBounds"][1], -2000 / 3, 9)
        self.assertEqual(glyphs["glyph4"]["bounds"], [0, -400, 400, 0])
        self.assertTrue(all(g["closed"] for g in glyphs.values()))

    def test_long_work_shows_progress_on_a_terminal_only(self):
        content = svg("".join('<path d="M0 0C0 4e6 4e6 4e6 4e6 0"/>' for _ in range(100)))
        file = self.write("in.svg", content)
        try:
            master, slave = pty.openpty()
        except OSError as error:
            self.skipTest(f"no terminal can be opened here: {error}")
        process = subprocess.Popen([PROGRAM, "measure"] + [file] * 20, stdout=subprocess.DEVNULL,
                                   stderr=slave)
        os.close(slave)
        shown = b""
        while True:
            try:
                data = os.read(master, 65536)
            except OSError:  # Linux tells the end of a terminal so
                break
            if not data:
                break
            shown += data
        os.close(master)
        self.assertEqual(process.wait(), 0)
        self.assertIn(b"of 20", shown)
        self.assertTrue(shown.endswith(b"\x1b[K"))  # wiped at the end
        self.run_text("measure", *[file] * 5)  # and nothing in a pipe


class Queries(AppTest):
    def test_point(self):
        file = self.write("in.svg", SQUARE)
        data = self.run_json("point", file, "--at", "0.125", "--at", "0.375,1")
        self.assertEqual(data["outlines"], [{"id": "sq", "length": 40.0, "points": [
            {"at": 0.125, "point": [5.0, 0.0], "direction": [1.0, 0.0], "angle": 0.0},
            {"at": 0.375, "point": [10.0, 5.0], "direction": [0.0, 1.0], "angle": 90.0},
            {"at": 1.0, "point": [0.0, 0.0], "direction": [0.0, -1.0], "angle": -90.0}]}])
        self.assertEqual(self.run_text("point", file, "--at", "0.125"),
                         "sq: at 0.125: 5,0 direction 1,0 (0 degrees)\n")

    def test_point_on_a_circle(self):
        file = self.write("in.svg", svg('<circle cx="50" cy="50" r="10"/>'))
        fractions = [0, 0.1, 0.25, 0.4, 0.7, 0.9]
        data = self.run_json("point", file, "--at", ",".join(map(str, fractions)))
        for entry in data["outlines"][0]["points"]:
            angle = 2 * math.pi * entry["at"]
            self.assertBox(entry["point"],
                           [50 + 10 * math.cos(angle), 50 + 10 * math.sin(angle)], 0.02)
            self.assertBox(entry["direction"], [-math.sin(angle), math.cos(angle)], 0.002)

    def test_direction_where_a_control_point_is_missing(self):
        file = self.write("in.svg", svg('<path d="M0 0C0 0 0 10 10 10"/>'))
        points = self.run_json("point", file, "--at", "0,1")["outlines"][0]["points"]
        self.assertBox(points[0]["direction"], [0, 1])
        self.assertBox(points[1]["direction"], [1, 0])

    def test_point_passes_dots(self):
        file = self.write("in.svg", svg('<path d="M90 90zM0 0H10"/>'))
        points = self.run_json("point", file, "--at", "0,0.5")["outlines"][0]["points"]
        self.assertEqual([p["point"] for p in points], [[0, 0], [5, 0]])

    def test_nearest(self):
        file = self.write("in.svg", svg('<rect id="a" width="10" height="10"/>'
                                        '<rect id="b" x="50" width="10" height="10"/>'))
        data = self.run_json("nearest", file, "--to", "13,2.5", "--to", "48,-1")
        self.assertEqual(data["nearest"], [
            {"to": [13.0, 2.5], "id": "a", "fraction": 0.3125, "point": [10.0, 2.5],
             "distance": 3.0},
            {"to": [48.0, -1.0], "id": "b", "fraction": 0.0, "point": [50.0, 0.0],
             "distance": math.hypot(2, 1)}])
        self.assertEqual(self.run_text("nearest", file, "--to", "13,2.5"),
                         "a: fraction 0.3125, at 10,2.5, distance 3\n")

    def test_nearest_on_a_curve(self):
        file = self.write("in.svg", svg('<circle cx="50" cy="50" r="10"/>'))
        found = self.run_json("nearest", file, "--to", "80,90")["nearest"][0]
        self.assertLess(abs(found["distance"] - 40), 0.001)
        self.assertBox(found["point"], [56, 58], 0.02)

    def test_hit(self):
        file = self.write("in.svg", svg(
            '<path id="ring" d="M0 0H20V20H0zM5 5H15V15H5z"/><circle id="c" cx="60" cy="10" r="10"/>'
            '<path id="t" d="M0 0 0 40 40 40"/>'))
        def hits(at, *more):
            data = self.run_json("hit", file, "--at", at, *more)
            return {h["id"]: (h["inside"], h["onOutline"]) for h in data["points"][0]["hits"]}
        self.assertEqual(hits("2,1"), {"ring": (True, False)})
        self.assertEqual(hits("10,9"), {})  # in the hole
        self.assertTrue(hits("10,5")["ring"][1])  # on the edge of the hole
        self.assertEqual(hits("2,25"), {"t": (True, False)})  # as if closed
        self.assertEqual(hits("60,10"), {"c": (True, False)})
        self.assertEqual(hits("70.5,10"), {})
        self.assertEqual(hits("70.5,10", "--tolerance", "0.6"), {"c": (False, True)})
        self.assertEqual(hits("30,29"), {})  # the closing line is not drawn
        self.assertEqual(hits("30,-2", "--tolerance", "1"), {})

    def test_hit_text(self):
        file = self.write("in.svg", SQUARE)
        self.assertEqual(
            self.run_text("hit", file, "--at", "5,5", "--at", "10.5,5", "--at", "50,50",
                          "--at", "9.9,5", "--tolerance", "1"),
            "5,5: sq inside\n10.5,5: sq on the outline\n50,50: nothing\n"
            "9.9,5: sq inside, on the outline\n")


class Shaping(AppTest):
    def setUp(self):
        super().setUp()
        self.square = self.write("square.svg", SQUARE)
        self.out = self.path("out.svg")

    def test_flatten(self):
        file = self.write("in.svg", svg('<circle id="c" cx="50" cy="50" r="10"/>'))
        counts = []
        for error in ("1", "0.1", "0.01"):
            self.run_text("flatten", file, "--error", error, "-o", self.out)
            outline = self.measure_file("out.svg")["c"]
            self.assertTrue(outline["lines"] and outline["closed"] and not outline["curves"])
            self.assertBox(outline["bounds"], [40, 40, 60, 60], 1e-9)
            # Chords of a circle of radius 10 that leave it by at most e are shorter than it.
            self.assertLess(outline["length"], 20 * math.pi)
            self.assertGreater(outline["length"], 20 * math.pi * (1 - float(error) / 10))
            counts.append(outline["elements"])
        self.assertTrue(counts[0] <= counts[1] < counts[2], counts)

    def test_flatten_leaves_lines_alone(self):
        self.run_text("flatten", self.square, "--error", "5", "-o", self.out)
        self.assertEqual(self.path_data("out.svg"), {"sq": "M0 0H10V10H0Z"})

    def test_cut(self):
        rest = self.path("rest.svg")
        self.run_text("cut", self.square, "--from", "0.25", "--to", "0.5", "-o", self.out,
                      "--rest", rest)
        self.assertEqual(self.path_data("out.svg"), {"sq": "M10 0V10"})
        self.assertEqual(self.path_data("rest.svg"), {"sq": "M10 10H0V0H10"})

    def test_cut_of_an_open_outline(self):
        file = self.write("in.svg", svg('<path id="p" d="M0 0H100"/>'))
        self.run_text("cut", file, "--from", "0.25", "--to", "0.5", "-o", self.out, "--rest",
                      self.path("rest.svg"))
        self.assertEqual(self.path_data("out.svg"), {"p": "M25 0H50"})
        self.assertEqual(self.path_data("rest.svg"), {"p": "M0 0H25M50 0h50"})

    def test_cut_everything(self):
        self.run_text("cut", self.square, "--from", "0", "--to", "1", "-o", self.out, "--rest",
                      self.path("rest.svg"))
        self.assertEqual(self.path_data("out.svg"), {"sq": "M0 0H10V10H0Z"})
        self.assertEqual(self.path_data("rest.svg"), {})

    def test_cut_does_not_join_subpaths(self):
        file = self.write("in.svg", svg('<path id="p" d="M0 0H10M50 0H60M90 0H110"/>'))
        self.run_text("cut", file, "--from", "0.125", "--to", "0.75", "-o", self.out, "--rest",
                      self.path("rest.svg"))
        self.assertEqual(self.path_data("out.svg"), {"p": "M5 0h5M50 0H60M90 0h10"})
        self.assertEqual(self.path_data("rest.svg"), {"p": "M0 0H5m95 0h10"})

    def test_cut_pieces_of_curves_add_up(self):
        file = self.write("in.svg", svg('<circle id="c" cx="50" cy="50" r="10"/>'))
        whole = self.measure_file("in.svg")["c"]["length"]
        self.run_text("cut", file, "--from", "0.2", "--to", "0.55", "-o", self.out, "--rest",
                      self.path("rest.svg"))
        piece = self.measure_file("out.svg")["c"]
        rest = self.measure_file("rest.svg")["c"]
        self.assertLess(abs(piece["length"] - 0.35 * whole), 0.02)
        self.assertLess(abs(piece["length"] + rest["length"] - whole), 0.01)
        self.assertFalse(piece["closed"] or rest["closed"])

    def test_transform(self):
        for options, expected in {
            ("--rotate", "90"): "M0 0V10H-10V0Z",
            ("--rotate", "90,5,5"): "M10 0V10H0V0Z",
            ("--scale", "2"): "M0 0H20V20H0Z",
            ("--scale", "2,.5"): "M0 0H20V5H0Z",
            ("--translate", "-5,7"): "M-5 7H5V17H-5Z",
            ("--map", "100,100,120,110"): "M100 100h20v10H100Z",
            ("--translate", "1,0", "--scale", "2"): "M2 0H22V20H2Z",
            ("--scale", "2", "--translate", "1,0"): "M1 0H21V20H1Z",
            ("--translate", "1,0", "--scale", "2", "--translate", "1,0"): "M3 0H23V20H3Z",
            (): "M0 0H10V10H0Z",
        }.items():
            with self.subTest(options):
                self.run_text("transform", self.square, *options, "-o", self.out)
                got = self.path_data("out.svg")["sq"]
                want = self.measure(svg(f'<path id="x" d="{expected}"/>'))["x"]["bounds"]
                self.assertEqual(self.measure_file("out.svg")["sq"]["bounds"], want)
                self.assertEqual(
                    self.run_json("point", self.out, "--at", "0,0.3")["outlines"][0]["points"],
                    self.run_json("point", self.path("in.svg"), "--at", "0,0.3")["outlines"][0]
                    ["points"], got)

    def test_map_fits_the_drawn_bounds(self):
        file = self.write("in.svg", svg('<path id="p" d="M0 0C0 40 40 40 40 0"/>'))
        self.run_text("transform", file, "--rotate", "30", "--map", "10,20,30,40", "-o", self.out)
        self.assertBox(self.measure_file("out.svg")["p"]["bounds"], [10, 20, 30, 40], 1e-4)

    def test_page_and_paper_size_are_kept(self):
        file = self.write("in.svg", svg('<rect width="10" height="10"/>',
                                        'viewBox="0 0 100 50" width="20mm" height="10mm"'))
        self.run_text("transform", file, "--translate", "1,1", "-o", self.out)
        root = ElementTree.parse(self.out).getroot()
        self.assertEqual((root.get("viewBox"), root.get("width"), root.get("height")),
                         ("0 0 100 50", "20mm", "10mm"))
        # What would fall off the page enlarges it, and the paper with it.
        self.run_text("transform", file, "--translate", "190,0", "-o", self.out)
        root = ElementTree.parse(self.out).getroot()
        self.assertEqual((root.get("viewBox"), root.get("width"), root.get("height")),
                         ("0 0 200 50", "40mm", "10mm"))

    def test_hatch(self):
        self.run_text("hatch", self.square, "--angle", "0", "--spacing", "2", "-o", self.out)
        outline = self.measure_file("out.svg")["sq-hatch"]
        self.assertEqual((outline["length"], outline["subpaths"]), (50, 5))
        self.assertEqual(outline["bounds"], [0, 1, 10, 9])

    def test_hatch_leaves_holes(self):
        file = self.write("in.svg", svg('<path id="p" d="M0 0H20V20H0zM5 5H15V15H5z"/>'))
        self.run_text("hatch", file, "--angle", "90", "--spacing", "4", "-o", self.out)
        # Lines at 2, 6, 10, 14, 18: the outer two are whole, the others miss 10 each.
        outline = self.measure_file("out.svg")["p-hatch"]
        self.assertAlmostEqual(outline["length"], 20 + 20 + 3 * 10, 9)
        self.assertEqual(outline["subpaths"], 2 + 3 * 2)

    def test_hatch_covers_the_area(self):
        """Length times spacing is the area; overlapping subpaths cancel."""
        file = self.write("in.svg", svg('<path id="p" d="M10 0 20 10 10 20 0 10zM12 8h4v4h-4z"/>'
                                        '<circle id="c" cx="50" cy="50" r="10"/>'))
        for angle in ("0", "17", "45", "90", "-30", "200"):
            with self.subTest(angle):
                self.run_text("hatch", file, "--angle", angle, "--spacing", "0.05", "-o", self.out)
                outlines = self.measure_file("out.svg")
                # To within one line more or less.
                self.assertLess(abs(outlines["p-hatch"]["length"] * 0.05 - (200 - 16)), 1.0)
                self.assertLess(abs(outlines["c-hatch"]["length"] * 0.05 - 100 * math.pi), 1.0)

    def test_hatch_far_from_the_origin(self):
        """Where neighbouring numbers are further apart than the lines, there still is an end."""
        file = self.write("in.svg", svg('<rect width="100" height="100" x="1e17" y="1e17"/>'))
        self.run_text("hatch", file, "--angle", "0", "--spacing", "1", "-o", self.out)

    def test_hatch_with_outlines(self):
        self.run_text("hatch", self.square, "--angle", "0", "--spacing", "20", "--outlines", "-o",
                      self.out)
        self.assertEqual(list(self.path_data("out.svg")), ["sq"])

    def test_png(self):
        self.run_text("flatten", self.square, "--error", "1", "-o", self.path("out.png"))
        data = self.read("out.png")
        self.assertEqual(data[:8], b"\x89PNG\r\n\x1a\n")
        self.assertEqual(struct.unpack(">II", data[16:24]), (1200, 1200))
        self.assertTrue(data.endswith(b"IEND\xaeB`\x82"))

    def test_glyphs_as_input(self):
        font = self.write("font", font_bytes())
        self.run_text("flatten", font, "--id", "glyph2", "--error", "1", "-o", self.out)
        self.assertEqual(self.measure_file("out.svg")["glyph2"]["bounds"], [0, -500, 500, 0])


class Text(AppTest):
    def setUp(self):
        super().setUp()
        self.font = self.write("font", font_bytes())
        self.out = self.path("out.svg")

    def along(self, body):
        return self.write("along.svg", svg(body))

    def bounds(self):
        return {k: o["bounds"] for k, o in self.measure_file("out.svg").items()}

    def test_on_a_straight_line(self):
        file = self.along('<path d="M10 50H90"/>')
        self.run_text("text", self.font, "A CB", "--along", file, "--size", "10", "-o", self.out)
        # Advances of 6, 2.5, 4 and 10 at this size.
        got = self.bounds()
        self.assertEqual(list(got), ["1-glyph2", "3-glyph4", "4-glyph3"])
        self.assertBox(got["1-glyph2"], [10, 45, 15, 50])
        self.assertBox(got["3-glyph4"], [18.5, 46, 22.5, 50])
        self.assertBox(got["4-glyph3"], [22.5, 45, 32.5, 50], 1e-4)

    def test_kerning_and_start(self):
        file = self.along('<path d="M10 50H90"/>')
        self.run_text("text", self.font, "AB", "--along", file, "--size", "10", "--start", "20",
                      "-o", self.out)
        got = self.bounds()
        self.assertBox(got["1-glyph2"], [30, 45, 35, 50])
        self.assertBox(got["2-glyph3"], [35, 45, 45, 50], 1e-4)  # 6 - 1 after the A

    def test_turned(self):
        file = self.along('<path d="M50 10V90"/>')
        self.run_text("text", self.font, "A", "--along", file, "--size", "10", "-o", self.out)
        self.assertBox(self.bounds()["1-glyph2"], [50, 10, 55, 15])

    def test_around_a_circle(self):
        file = self.along('<circle cx="50" cy="50" r="20"/>')
        self.run_text("text", self.font, "AAAAAAAA", "--along", file, "-o", self.out)
        outlines = self.measure_file("out.svg")
        self.assertEqual(len(outlines), 8)
        # Filling the circle, each has an eighth of it; a square's side is 5/6 of its advance.
        side = 40 * math.pi / 8 * 5 / 6
        for outline in outlines.values():
            self.assertLess(abs(outline["length"] / 4 - side), 0.02)
        # The middle of the first advance stands at a sixteenth of the circle.
        angle = 2 * math.pi / 16
        advance = side * 6 / 5
        middle = [50 + 20 * math.cos(angle), 50 + 20 * math.sin(angle)]
        corner = [middle[0] + advance / 2 * math.sin(angle),
                  middle[1] - advance / 2 * math.cos(angle)]
        start = self.run_json("point", self.out, "--id", "1-glyph2", "--at", "0")
        self.assertBox(start["outlines"][0]["points"][0]["point"], corner, 0.05)

    def test_raw_quadratics(self):
        file = self.along('<path d="M10 50H90"/>')
        words = ["text", self.font, "B", "--along", file, "--size", "10", "-o", self.out]
        self.run_text(*words, "--raw-quadratics")
        fine = self.measure_file("out.svg")["1-glyph3"]
        self.assertEqual((fine["lines"], fine["curves"]), (True, False))
        self.assertLess(abs(fine["length"] - arch_length() / 100), 0.02)
        self.run_text(*words, "--raw-quadratics", "--error", "1")
        coarse = self.measure_file("out.svg")["1-glyph3"]
        self.assertLess(coarse["elements"], fine["elements"])
        self.run_text(*words)
        self.assertEqual(self.measure_file("out.svg")["1-glyph3"]["curves"], True)
        self.fails(*words, "--error", "1", names=["--error", "--raw-quadratics"])
        self.fails(*words, "--raw-quadratics", "--error", "0", names=["--error"])

    def test_outline_and_png(self):
        file = self.along('<path id="base" d="M10 50H90"/>')
        self.run_text("text", self.font, "A", "--along", file, "--outline", "-o", self.out)
        self.assertEqual(list(self.path_data("out.svg")), ["base", "1-glyph2"])
        self.run_text("text", self.font, "A", "--along", file, "-o", self.path("out.png"))
        self.assertEqual(self.read("out.png")[:4], b"\x89PNG")

    def test_errors(self):
        file = self.along('<path id="p" d="M10 50H90"/><path id="dot" d="M1 1"/>')
        def fails(*more, words="A", font=self.font, names=()):
            self.fails("text", font, words, "--along", file, "-o", self.out, *more, names=names)
        fails(words="é", names=[self.font, "U+00E9"])
        fails("--size", "100", words="AAAA", names=[file, "p:", "the words end at 240"])
        fails("--size", "0", names=["--size"])
        fails("--size", "nan", names=["--size"])
        fails("--start", "-1", names=["--start"])
        fails("--start", "80", names=["--start"])
        fails("--id", "dot", names=[file, "dot", "no length"])
        fails("--id", "nix", names=[file, "nix"])
        fails(words="", names=["words"])
        fails(font=file, names=[file, "not a font"])
        fails(font=self.path("none"), names=["none", "No such file"])
        self.fails("text", self.font, b"A\xff", "--along", file, "-o", self.out,
                   names=["byte 1", "UTF-8"])


class Combine(AppTest):
    """A square of 10 with a hole of 2, and the same 5 to the right and below with a hole of 2."""

    def setUp(self):
        super().setUp()
        self.a = self.write("a.svg", svg('<rect id="a" width="10" height="10"/>'
                                         '<rect id="h" x="2" y="2" width="2" height="2"/>'))
        self.b = self.write("b.svg", svg('<path d="M5 5H15V15H5ZM6 6V8H8V6Z"/>'))
        self.out = self.path("out.svg")

    def test_operations(self):
        expected = {"union": (171, 2, 1), "intersection": (21, 2, 1), "difference": (75, 3, 1),
                    "xor": (150, 4, 1)}
        for operation, (area, contours, holes) in expected.items():
            with self.subTest(operation):
                data = self.run_json("combine", operation, self.a, self.b, "-o", self.out)
                self.assertEqual(data["operation"], operation)
                for side in ("a", "b"):
                    self.assertEqual((data[side]["area"], data[side]["contours"],
                                      data[side]["holes"], data[side]["vertices"]), (96, 2, 1, 8))
                self.assertEqual((data["result"]["area"], data["result"]["contours"],
                                  data["result"]["holes"]), (area, contours, holes))
                self.assertEqual(list(self.path_data("out.svg")), [operation])
                self.assertIn(b'fill-rule="evenodd"', self.read("out.svg"))
                # What was written covers what was reported.
                again = self.run_json("combine", "union", self.out, self.out)
                self.assertEqual(again["a"]["area"], area)

    def test_chosen_outlines(self):
        data = self.run_json("combine", "difference", self.a, self.a, "--id-a", "a", "--id-b", "h")
        self.assertEqual((data["a"]["area"], data["b"]["area"], data["result"]["area"]),
                         (100, 4, 96))
        self.assertEqual(os.path.exists(self.out), False)

    def test_error(self):
        circle = self.write("c.svg", svg('<circle cx="50" cy="50" r="20"/>'))
        areas = [self.run_json("combine", "union", circle, self.a, "--error", e)["a"]["area"]
                 for e in ("2", "0.1", "0.0001")]
        self.assertTrue(areas[0] < areas[1] < areas[2])
        self.assertLess(abs(areas[2] - 400 * math.pi), 0.1)

    def test_empty_result_and_png(self):
        away = self.write("away.svg", svg('<rect x="50" y="50" width="1" height="1"/>'))
        data = self.run_json("combine", "intersection", self.a, away, "-o", self.out)
        self.assertEqual(data["result"], {"area": 0, "contours": 0, "holes": 0, "vertices": 0})
        self.assertEqual(self.path_data("out.svg"), {})
        self.assertEqual(self.run_text("combine", "union", self.a, away, "-o",
                                       self.path("out.png")), "")
        self.assertEqual(self.read("out.png")[:4], b"\x89PNG")

    def test_errors(self):
        self.fails("combine", "add", self.a, self.b, "-o", self.out, names=["add", "xor"])
        self.fails("combine", "union", self.a, self.b, names=["-o", "--json"])
        self.fails("combine", "union", self.a, "-o", self.out, names=["B"])
        self.fails("combine", "union", self.a, "none.svg", "-o", self.out, names=["none.svg"])
        self.fails("combine", "union", self.a, self.b, "-o", "out.pdf", names=["out.pdf"])
        self.fails("combine", "union", self.a, self.b, "--json", "-o", "no/out.svg",
                   names=["no/out.svg"])
        self.fails("combine", "union", self.a, self.b, "--error", "0", "-o", self.out,
                   names=["--error"])
        self.fails("combine", "union", self.a, self.b, "--id-b", "q", "-o", self.out,
                   names=["b.svg", "q"])


class Polygons(AppTest):
    def setUp(self):
        super().setUp()
        self.file = self.write("in.svg", svg('<path id="p" d="M0.4 0.4H10.6V5.5H.4Z"/>'))

    def test_describe(self):
        self.assertEqual(self.run_text("polygons", self.file, "--describe"),
                         "p: 5 points, last equal to first\n"
                         "0.4, 0.4\n10.6, 0.4\n10.6, 5.5\n0.4, 5.5\n0.4, 0.4\n")
        polygon = self.run_json("polygons", self.file,
                                "--describe")["outlines"][0]["polygons"][0]
        self.assertEqual((polygon["points"], polygon["bounds"], polygon["circular"]),
                         (5, [0.4, 0.4, 10.6, 5.5], False))

    def test_rotated_bounds(self):
        file = self.write("r.svg", svg('<rect id="r" x="10" y="20" width="8" height="4"/>'))
        data = self.run_json("polygons", file, "--rotate-bounds", "90", "-o", self.path("o.svg"))
        outline = data["outlines"][0]
        for corner, expected in zip(outline["corners"], [[16, 18], [16, 26], [12, 26], [12, 18]]):
            self.assertBox(corner, expected)
        self.assertEqual((outline["centre"], outline["radii"]), ([14, 22], [4, 2]))
        self.assertEqual(outline["anyBoundsCornerInside"], False)
        self.assertBox(self.measure_file("o.svg")["r"]["bounds"], [12, 18, 16, 26])

    def test_quickdraw(self):
        data = self.run_json("polygons", self.file, "--to-quickdraw", "-o", self.path("o.svg"))
        polygon = data["outlines"][0]["polygons"][0]
        # Halves are rounded away from zero.
        self.assertEqual(polygon["points"], [[0, 0], [11, 0], [11, 6], [0, 6], [0, 0]])
        self.assertEqual((polygon["bytes"], polygon["box"]), (10 + 4 * 5, [0, 0, 11, 6]))
        self.assertAlmostEqual(polygon["movedByAtMost"], math.hypot(0.4, 0.5), places=12)
        self.assertEqual(self.measure_file("o.svg")["p"]["bounds"], [0, 0, 11, 6])

    def test_errors(self):
        self.fails("polygons", self.file, names=["--describe"])
        self.fails("polygons", self.file, "--describe", "--to-quickdraw", names=["needs one of"])
        self.fails("polygons", self.file, "--rotate-bounds", "x", names=["--rotate-bounds"])
        self.fails("polygons", self.file, "--describe", "--error", "-1", names=["--error"])
        far = self.write("far.svg", svg('<path id="f" d="M0 0H40000V5Z"/>'))
        self.fails("polygons", far, "--to-quickdraw", names=["far.svg", "f", "32767"])


class Maps(AppTest):
    """Two countries that share the arc 1: a square of 10 at (0, 0), its neighbour to the right
    with an island."""

    TOPOLOGY = {
        "type": "Topology",
        "transform": {"scale": [0.5, 0.5], "translate": [0, 0]},
        "arcs": [[[20, 0], [-20, 0], [0, 20], [20, 0]], [[20, 0], [0, 20]],
                 [[20, 20], [20, 0], [0, -20], [-20, 0]],
                 [[60, 0], [2, 0], [0, 2], [-2, 0], [0, -2]]],
        "objects": {
            "land": {"type": "Point", "coordinates": [0, 0]},
            "countries": {"type": "GeometryCollection", "geometries": [
                {"type": "Polygon", "arcs": [[0, -2]], "properties": {"name": "West"}},
                {"type": "MultiPolygon", "arcs": [[[1, 2]], [[3]]], "id": "E"},
                {"type": None},
            ]},
        },
    }

    def changed(self, **changes):
        return json.dumps({**self.TOPOLOGY, **changes})

    def test_outlines(self):
        file = self.write("map.svg", self.changed())  # known by content, not by name
        data = self.run_json("measure", file)["files"][0]
        west, east = data["outlines"]
        self.assertEqual((data["kind"], west["id"], east["id"]), ("map", "West", "E"))
        self.assertEqual((west["bounds"], west["length"]), ([0, -10, 10, 0], 40))
        self.assertEqual((east["bounds"], east["length"], east["subpaths"]),
                         ([10, -10, 31, 0], 44, 2))

    def test_neighbours_join(self):
        file = self.write("map.json", self.changed())
        data = self.run_json("combine", "union", file, file, "--id-a", "West", "--id-b", "E")
        self.assertEqual((data["result"]["area"], data["result"]["contours"]), (201, 2))

    def test_without_transform(self):
        text = json.dumps({"type": "Topology", "arcs": [[[1, 1], [3, 1], [3, 2], [1, 1]]],
                           "objects": {"x": {"type": "Polygon", "arcs": [[0]]}}})
        self.assertEqual(self.measure(text)["feature#1"]["bounds"], [1, -2, 3, -1])

    def test_errors(self):
        def bad(text, *names):
            file = self.write("bad.json", text)
            self.fails("measure", file, names=[file, *names])
        bad("{", "line 1", "not valid JSON")
        bad('{"type": "Topology",\n "arcs": [}', "line 2", "not valid JSON")
        bad('{"type": 1e999}', "too large")
        bad('{"type": "FeatureCollection"}', "no TopoJSON")
        bad(self.changed(arcs=None), "arcs", "list")
        bad(self.changed(arcs=[[[1]]]), "arcs[0]", "two numbers")
        bad(self.changed(arcs=[]), "objects.countries.geometries[0].arcs[0][0]", "no arc 0")
        bad(self.changed(transform={"scale": [1, 1]}), "transform", "translate")
        bad(self.changed(transform={"scale": [1e308, 1], "translate": [0, 0]}), "too large")
        bad(self.changed(objects={}), "objects")
        for feature in ({"type": "Blob"}, {"type": "Polygon"}, {"type": "Polygon", "arcs": [7]},
                        {"type": "Polygon", "arcs": [[0.5]]}, {"type": "Polygon", "arcs": [[-9]]},
                        5):
            bad(self.changed(objects={"o": feature}), "objects.o")
        nested = {"type": "Point"}
        for _ in range(100):
            nested = {"type": "GeometryCollection", "geometries": [nested]}
        bad(self.changed(objects={"o": nested}), "too deeply")


class BadInput(AppTest):
    def bad(self, content, *names, name="bad.svg"):
        file = self.write(name, content)
        self.fails("measure", file, names=[file, *names])
        self.fails("measure", "--json", file, names=[file, *names])
        output = self.path("out.svg")
        self.fails("flatten", file, "--error", "1", "-o", output, names=[file, *names])

    def test_files(self):
        self.fails("measure", self.path("missing.svg"), names=["missing.svg", "No such file"])
        self.fails("measure", self.folder, names=[self.folder, "folder"])
        self.bad("", "is empty")
        self.bad("hello", "neither")
        self.bad(b"\x1f\x8b\x08\0\0", "compressed")
        self.bad(b"\0\1\0\0 no font at all", "not a font")
        self.bad(font_bytes()[:300], "")
        self.bad("   \n", "neither")

    def test_a_good_file_before_a_bad_one(self):
        good = self.write("good.svg", SQUARE)
        self.fails("measure", good, self.path("missing.svg"), names=["missing.svg"])

    @unittest.skipIf(os.geteuid() == 0, "root may read everything")
    def test_unreadable(self):
        file = self.write("in.svg", SQUARE)
        os.chmod(file, 0)
        self.fails("measure", file, names=[file, "Permission denied"])

    def test_huge_file(self):
        file = self.path("huge.svg")
        with open(file, "wb") as stream:
            stream.truncate(200 << 20)
        self.fails("measure", file, names=[file, "128 MiB"])
        self.fails("measure", "/dev/zero", names=["/dev/zero", "128 MiB"])

    def test_xml(self):
        self.bad("<svg><g></svg>", "line 1", "XML")
        self.bad("<svg>\n<path d='", "line 2", "XML")
        self.bad("<!-- nothing -->", "XML")
        self.bad("<html/>", "line 1, column 1", "<html>")

    def test_places(self):
        self.bad(svg('<rect width="1" height="1"/>\n  <path id="p" d="M0 0L1"/>'),
                 'line 3, column 3, <path id="p">: attribute d, position 6:', "number")

    def test_attributes(self):
        for element, attribute in {
            '<path d="M0 0L nan 1"/>': "attribute d, position 6",
            '<path d="M0 0L inf 1"/>': "attribute d",
            '<path d="M0 0L1e999 1"/>': "attribute d",
            '<path d="L0 0"/>': "attribute d, position 0",
            '<path d="M0 0 &#252;"/>': "attribute d",
            '<rect width="nan" height="1"/>': "attribute width",
            '<rect width="1e999" height="1"/>': "attribute width",
            '<rect width="-1" height="1"/>': "attribute width, position 0: is negative",
            '<rect width="1em" height="1"/>': "'em'",
            '<rect width="1 2" height="1"/>': "attribute width, position 2",
            '<rect width="1" height="1" rx="-1"/>': "attribute rx",
            '<rect width="1" height="1" x="infinity"/>': "attribute x",
            '<circle r="-1"/>': "attribute r",
            '<circle r="x"/>': "attribute r",
            '<ellipse rx="1" ry="0x10"/>': "attribute ry",
            '<line x1="1,5"/>': "attribute x1",
            '<polyline points="1 2 3"/>': "attribute points, position 5",
            '<polygon points="1 2 NaN 4"/>': "attribute points, position 4",
            '<polygon points="1 2,"/>': "attribute points",
            '<g transform="rotate(1"/>': "attribute transform",
            '<g transform="rotate(1 2)"/>': "attribute transform",
            '<g transform="turn(1)"/>': "attribute transform, position 0: found 'turn'",
            '<g transform="translate(nan)"/>': "attribute transform",
            '<g transform="matrix(1 2 3 4 5)"/>': "attribute transform",
            '<g transform="scale(1,)"/>': "attribute transform",
            '<g transform="scale()"/>': "attribute transform",
            '<svg viewBox="0 0 1"/>': "attribute viewBox",
            '<svg viewBox="0 0 -1 1"/>': "attribute viewBox",
            '<path transform="scale(1e300)" d="M1e300 0H1"/>': "too large",
            '<use href="other.svg#a"/>': "other.svg",
        }.items():
            with self.subTest(element):
                self.bad(svg(element), "line 2, column 1", attribute)

    def test_percentage_without_a_size(self):
        self.bad('<svg xmlns="http://www.w3.org/2000/svg"><rect width="50%" height="1"/></svg>',
                 "attribute width")

    def test_uses_without_end(self):
        self.bad(svg('<g id="a"><use href="#a"/></g>'), "line 2", "part")
        self.bad(svg('<g id="a"><use href="#b"/></g><g id="b"><use href="#a"/></g>'), "part")
        self.bad(svg('<use id="a" href="#a"/>'), "part")
        levels = '<g id="l0">' + '<path d="M0 0H1"/>' * 10 + "</g>"
        for i in range(1, 12):
            levels += f'<g id="l{i}">' + f'<use href="#l{i - 1}"/>' * 10 + "</g>"
        self.bad(svg("<defs>" + levels + '</defs><use href="#l11"/>'), "multiply")
        # Few elements, but long ones.
        long_path = "M0 0" + "L1 1L0 0" * 40000
        self.bad(svg(f'<defs><path id="p" d="{long_path}"/></defs>' + '<use href="#p"/>' * 300),
                 "multiply")

    def test_deep_nesting(self):
        self.bad(svg("<g>" * 100000 + "</g>" * 100000), "levels deep")
        chain = "".join(f'<g id="g{i}"><use href="#g{i + 1}"/></g>' for i in range(2000))
        self.bad(svg(f"<defs>{chain}</defs><use href='#g0'/>"), "levels deep")
        self.assertEqual(len(self.measure(svg("<g>" * 200 + '<path d="M0 0H1"/>' + "</g>" * 200))),
                         1)

    def test_entities_are_not_expanded(self):
        self.bad('<!DOCTYPE svg [<!ENTITY a "1"><!ENTITY b "&a;&a;">]>'
                 '<svg xmlns="http://www.w3.org/2000/svg"><path d="M0 0H&b;"/></svg>', "attribute d")

    def test_control_characters_stay_in_one_line(self):
        self.bad("<svg><path id='a\nb\x1b[31m' d='x'/></svg>", "attribute d")
        self.fails("measure", self.path("new\nline.svg"), names=["new\\x0aline.svg"])

    def test_outline_without_length(self):
        file = self.write("dot.svg", svg('<path id="dot" d="M5 5"/>'))
        output = self.path("out.svg")
        for command in (["point", file, "--at", "0.5"], ["nearest", file, "--to", "1,1"],
                        ["cut", file, "--from", "0", "--to", "0.5", "-o", output],
                        ["text", self.write("f", font_bytes()), "A", "--along", file, "-o",
                         output]):
            self.fails(*command, names=[file, "dot: the outline has no length"])
        far = self.write("far.svg", svg('<path id="far" d="M-1e308 0H1e308"/>'))
        self.fails("point", far, "--at", "0.5", names=[far, "far", "too long"])

    def test_no_outlines(self):
        file = self.write("none.svg", svg("<text>a</text>"))
        self.fails("point", file, "--at", "0.5", names=[file, "no outlines"])
        self.fails("hatch", file, "--angle", "1", "--spacing", "1", "-o", self.path("o.svg"),
                   names=[file, "no outlines"])

    def test_huge_and_tiny_coordinates(self):
        for number in ("1e308", "1e154", "1e-308", "5e-324"):
            with self.subTest(number):
                n = number
                outline = self.measure(svg(f'<path id="p" d="M0 0C0 {n} {n} {n} {n} 0Z"/>'))["p"]
                self.assertEqual(outline["elements"], 3)
                file = self.path("in.svg")
                for command in (["hit", file, "--at", "0,0"], ["nearest", file, "--to", "0,0"],
                                ["hatch", file, "--angle", "0", "--spacing", "1", "-o", "o.svg"],
                                ["flatten", file, "--error", "1", "-o", "o.png"],
                                ["point", file, "--at", "0.5"]):
                    result = self.execute(*command)
                    self.assertIn(result.returncode, (0, 2), command)
                    self.assertLessEqual(result.stderr.count(b"\n"), 1)
                    self.assertNotIn(b"nan", result.stdout.lower().replace(b"nanosecond", b""))


class BadCommandLines(AppTest):
    def setUp(self):
        super().setUp()
        self.file = self.write("in.svg", SQUARE)
        self.out = self.path("out.svg")

    def test_usage(self):
        self.fails(names=["subcommand"])
        self.fails("frobnicate", names=["'frobnicate'"])
        self.fails("--frob", names=["'--frob'"])
        self.fails("measure", names=["measure", "FILE"])
        self.fails("measure", self.file, "--frob", names=["measure", "'--frob'"])
        self.fails("point", self.file, names=["--at"])
        self.fails("point", self.file, "extra", "--at", "0", names=["'extra'"])
        self.fails("cut", self.file, "--from", "0", "--to", "1", names=["--output"])
        self.fails("point", self.file, "--at", names=["--at"])

    def test_help(self):
        self.assertIn("measure", self.run_text("--help"))
        for command in ("measure", "point", "nearest", "hit", "flatten", "cut", "transform",
                        "hatch", "text"):
            text = self.run_text(command, "--help")
            self.assertIn("Example: trammel " + command, text)
        self.assertRegex(self.run_text("--version"), r"^trammel \d+\.\d+\.\d+\n$")

    def test_numbers(self):
        for bad in ("nan", "inf", "-inf", "1e999", "0x1", "1.2.3", " ", "a", "0.5x", "1,", ",1",
                    "0.5;0.6"):
            with self.subTest(bad):
                self.fails("point", self.file, "--at=" + bad, names=["--at"])
                self.fails("hit", self.file, "--at", "1,1", "--tolerance=" + bad,
                           names=["--tolerance"])
                self.fails("hatch", self.file, "--angle", "0", "--spacing=" + bad, "-o", self.out,
                           names=["--spacing"])
                self.fails("flatten", self.file, "--error=" + bad, "-o", self.out,
                           names=["--error"])
        for bad in ("1", "1,2,3", "1,nan", "1,"):
            self.fails("nearest", self.file, "--to=" + bad, names=["--to"])
            self.fails("hit", self.file, "--at=" + bad, names=["--at"])

    def test_ranges(self):
        self.fails("point", self.file, "--at", "1.5", names=["--at", "between 0 and 1"])
        self.fails("point", self.file, "--at", "-0.1", names=["--at", "between 0 and 1"])
        self.fails("hit", self.file, "--at", "1,1", "--tolerance", "-1", names=["--tolerance"])
        self.fails("flatten", self.file, "--error", "0", "-o", self.out, names=["--error"])
        self.fails("hatch", self.file, "--angle", "0", "--spacing", "0", "-o", self.out,
                   names=["--spacing"])
        self.fails("hatch", self.file, "--angle", "0", "--spacing", "1e-9", "-o", self.out,
                   names=[self.file, "sq", "100000"])
        for a, b in (("0.5", "0.5"), ("0.6", "0.5"), ("-1", "0.5"), ("0", "1.1")):
            self.fails("cut", self.file, "--from", a, "--to", b, "-o", self.out)
        for option, value in (("--rotate", "1,2"), ("--scale", "1,2,3"), ("--map", "1,2,3"),
                              ("--map", "5,5,5,9"), ("--translate", "1"), ("--rotate", "nan")):
            self.fails("transform", self.file, option, value, "-o", self.out, names=[option])
        self.fails("transform", self.file, "--scale", "1e308", "--scale", "1e308", "-o", self.out,
                   names=[self.file, "sq", "--scale"])

    def test_unknown_id(self):
        self.fails("measure", self.file, "--id", "nix", names=[self.file, "'nix'"])

    def test_unwritable_output(self):
        def fails(output, *names):
            self.fails("flatten", self.file, "--error", "1", "-o", output, names=names)
        fails(self.path("no/folder/out.svg"), "no/folder/out.svg", "No such file")
        fails(self.folder, self.folder)
        os.mkdir(self.path("folder.svg"))
        fails(self.path("folder.svg"), "folder.svg", "is a folder")
        fails(self.path("out.gif"), "out.gif", ".svg or .png")
        os.symlink("/dev/full", self.path("full.svg"))
        fails(self.path("full.svg"), "full.svg", "No space left")
        self.assertTrue(os.path.islink(self.path("full.svg")))
        self.assertTrue(stat.S_ISCHR(os.stat("/dev/full").st_mode))

    def test_failure_leaves_the_old_output(self):
        self.write("out.svg", "precious")
        self.fails("flatten", self.path("missing.svg"), "--error", "1", "-o", self.out,
                   output="out.svg")
        # Neither of two outputs is written when one of them cannot be.
        self.fails("cut", self.file, "--from", "0", "--to", "0.5", "-o", self.out, "--rest",
                   self.path("no/rest.svg"), output="out.svg", names=["no/rest.svg"])
        self.fails("cut", self.file, "--from", "0", "--to", "0.5", "-o", self.out, "--rest",
                   self.out, output="out.svg", names=["two outputs"])

    def test_output_over_the_input_and_through_a_link(self):
        os.chmod(self.file, 0o640)
        os.symlink("in.svg", self.path("link.svg"))
        self.run_text("transform", self.file, "--scale", "2", "-o", self.path("link.svg"))
        self.assertTrue(os.path.islink(self.path("link.svg")))
        self.assertEqual(self.measure_file("in.svg")["sq"]["length"], 80)
        self.assertEqual(stat.S_IMODE(os.stat(self.file).st_mode), 0o640)
        self.assertEqual(sorted(os.listdir(self.folder)), ["in.svg", "link.svg"])

    def test_new_files_have_ordinary_permissions(self):
        old = os.umask(0o027)
        try:
            self.run_text("flatten", self.file, "--error", "1", "-o", self.out)
        finally:
            os.umask(old)
        self.assertEqual(stat.S_IMODE(os.stat(self.out).st_mode), 0o640)

    def test_full_standard_output(self):
        with open("/dev/full", "wb") as full:
            result = self.execute("measure", self.file, stdout=full)
        self.assertEqual(result.returncode, 2)
        self.assertEqual(result.stderr.count(b"\n"), 1)
        self.assertIn(b"standard output", result.stderr)


class RealInput(AppTest):
    @unittest.skipUnless(os.path.isdir(ICONS), "no icons: apt-get install breeze-icon-theme")
    def test_icons(self):
        files = sorted(f for f in glob.glob(ICONS + "/*.svg") if not os.path.islink(f))[:300]
        data = self.run_json("measure", *files)
        self.assertEqual(data["totals"]["files"], len(files))
        self.assertGreaterEqual(data["totals"]["outlines"], len(files))
        for file in data["files"]:
            for outline in file["outlines"]:
                left, top, right, bottom = outline["bounds"]
                self.assertTrue(math.isfinite(outline["length"]) and outline["length"] >= 0)
                # An outline is at least as long as its bounds are wide or high.
                self.assertGreaterEqual(outline["length"] * 1.001 + 0.01,
                                        max(right - left, bottom - top), outline)

    @unittest.skipUnless(os.path.exists(DEJAVU), "no font: apt-get install fonts-dejavu-core")
    def test_truetype(self):
        glyphs = {o["id"]: o for o in
                  self.run_json("measure", DEJAVU, "--id", "period", "--id", "H", "--id", "O")
                  ["files"][0]["outlines"]}
        # The full stop is a rectangle, the H has twelve sides.
        left, top, right, bottom = glyphs["period"]["bounds"]
        self.assertEqual(glyphs["period"]["length"], 2 * (right - left + bottom - top))
        self.assertEqual(glyphs["period"]["bounds"], [219, -254, 430, 0])
        self.assertEqual(glyphs["H"]["elements"], 13)
        self.assertEqual(glyphs["H"]["bounds"], [201, -1493, 1339, 0])
        self.assertEqual(glyphs["O"]["subpaths"], 2)
        out = self.path("out.png")
        circle = self.write("c.svg", svg('<circle cx="50" cy="50" r="30"/>'))
        self.run_text("text", DEJAVU, "Fünf Zwölftel rund herum", "--along", circle, "-o", out)
        self.assertEqual(self.read("out.png")[:4], b"\x89PNG")

    @unittest.skipUnless(os.path.exists(GARAMOND), "no font: apt-get install fonts-ebgaramond")
    def test_cff(self):
        data = self.run_json("measure", GARAMOND)
        self.assertGreater(data["totals"]["outlines"], 1000)
        period = next(o for o in data["files"][0]["outlines"] if o["id"] == "period")
        self.assertTrue(period["closed"] and period["curves"])


if __name__ == "__main__":
    unittest.main(verbosity=2)
