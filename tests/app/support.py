# SPDX-License-Identifier: MIT

"""What the tests of the command-line tool share: drawings and a font that they write themselves, and
a test case that runs the tool in a folder of its own.

Each test file runs as FILE PROGRAM [unittest options]. Expected figures are worked out by hand from
shapes whose lengths and places are known.
"""

import json
import math
import os
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

PROGRAM = os.path.abspath(sys.argv.pop(1))

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
