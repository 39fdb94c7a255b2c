#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Tests of `trammel gallery`: the pictures, the page, the figures, and what can go wrong.

    gallery_test.py PROGRAM [unittest options]

The letters are those of DejaVu Sans, which comes with the drawing library that the tool needs; the
drawing is written by the test. The default font and drawing are used where they are installed.
"""

import html
import json
import math
import os
import re
import resource
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
import zlib

PROGRAM = os.path.abspath(sys.argv.pop(1))

DEJAVU = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"
DEFAULTS = (
    DEJAVU,
    "/usr/share/fonts/opentype/ebgaramond/EBGaramond12-Regular.otf",
    "/usr/share/icons/breeze/devices/64/input-gaming.svg",
)
PLATES = [
    "marks", "text-along-path", "cut", "nearest", "flattening", "hit-test", "hatching",
    "transforms", "circles", "polygons", "rounding", "quadratics", "corner-test", "cached-path",
    "welded", "hard-booleans", "hard-booleans-2", "hard-strokes",
]
MAP_PLATES = ["four-operations", "word-cut", "joined"]
# The default map is looked for below the current folder, where the tests have none.
NOTE = (
    b"trammel: no map in build/data/world-atlas/countries-50m.json (script/setup maps fetches it); "
    b"its pictures are left out\n"
)
ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
MAP = os.path.join(ROOT, "build/data/world-atlas/countries-50m.json")
SVG = "{http://www.w3.org/2000/svg}"
# A square of 10 and, beside it, one of 2: outlines of length 40 and 8.
SQUARES = (
    '<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 20 20">'
    '<rect x="2" y="2" width="10" height="10"/><rect x="16" y="4" width="2" height="2"/></svg>'
)
FILES = sorted([name + end for name in PLATES for end in (".svg", ".png")] + ["index.html"])


def png_rows(data):
    """Width, height and the rows of samples of a PNG of 8 bits a sample."""
    assert data[:8] == b"\x89PNG\r\n\x1a\n"
    place, packed = 8, b""
    width = height = samples = 0
    while place < len(data):
        length, kind = struct.unpack(">I4s", data[place : place + 8])
        content = data[place + 8 : place + 8 + length]
        if kind == b"IHDR":
            width, height, bits, colours = struct.unpack(">IIBB", content[:10])
            assert bits == 8 and colours in (2, 6)
            samples = 3 if colours == 2 else 4
        elif kind == b"IDAT":
            packed += content
        place += 12 + length
    raw = zlib.decompress(packed)
    step = 1 + samples * width
    rows, above = [], bytearray(step - 1)
    for i in range(height):
        row = bytearray(raw[i * step + 1 : (i + 1) * step])
        undo_filter(raw[i * step], row, above, samples)
        rows.append(bytes(row))
        above = row
    return width, height, rows


def undo_filter(kind, row, above, samples):
    """Undoes the filter of one row of a PNG in place (PNG specification, section 9)."""
    if kind == 2:
        row[:] = bytes((a + b) & 255 for a, b in zip(row, above))
    elif kind in (1, 3, 4):
        for i, value in enumerate(row):
            left = row[i - samples] if i >= samples else 0
            if kind == 1:
                guess = left
            elif kind == 3:
                guess = (left + above[i]) // 2
            else:
                corner = above[i - samples] if i >= samples else 0
                estimate = left + above[i] - corner
                guess = min((left, above[i], corner),
                            key=lambda x, estimate=estimate: abs(estimate - x))
            row[i] = (value + guess) & 255
    else:
        assert kind == 0


def numbers(text):
    return [float(n) for n in re.findall(r"-?\d+(?:\.\d+)?(?:e-?\d+)?", text)]


class GalleryCase(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp(prefix="trammel-gallery-")
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        cls.drawing = os.path.join(cls.folder, "squares & <others>.svg")
        with open(cls.drawing, "w", encoding="utf-8") as file:
            file.write(SQUARES)

    def execute(self, *arguments, **options):
        options.setdefault("stdout", subprocess.PIPE)
        return subprocess.run([PROGRAM, "gallery", *arguments], stderr=subprocess.PIPE, check=False,
                              timeout=300, cwd=self.folder, **options)


@unittest.skipUnless(os.path.exists(DEJAVU), "no font: apt-get install fonts-dejavu-core")
class PageTest(GalleryCase):
    """What one run writes."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.out = os.path.join(cls.folder, "new", "gallery")  # neither folder exists
        cls.result = cls.execute(cls, "-o", cls.out, "--font", DEJAVU, "--drawing", cls.drawing)
        cls.page = ""
        if cls.result.returncode == 0:
            with open(os.path.join(cls.out, "index.html"), encoding="utf-8") as file:
                cls.page = file.read()

    def setUp(self):
        self.assertEqual((self.result.returncode, self.result.stderr), (0, NOTE))

    def read(self, name):
        with open(os.path.join(self.out, name), "rb") as file:
            return file.read()

    def figures(self, plate):
        """The figures below one picture, in order."""
        section = re.search(f'<section id="{plate}">.*?</section>', self.page, re.DOTALL).group()
        return [(html.unescape(n), html.unescape(v))
                for n, v in re.findall("<dt>(.*?)</dt><dd>(.*?)</dd>", section)]

    def test_one_run_writes_these_files(self):
        self.assertEqual(sorted(os.listdir(self.out)), FILES)
        self.assertEqual(self.result.stdout.decode(), os.path.join(self.out, "index.html") + "\n")

    def test_pictures_are_whole(self):
        for plate in PLATES:
            with self.subTest(plate):
                root = ElementTree.fromstring(self.read(plate + ".svg"))
                self.assertEqual(root.get("viewBox"), "0 0 800 560")
                paths = [e.get("d") for e in root.iter(SVG + "path")]
                self.assertGreater(len(paths), 5)
                self.assertNotRegex("".join(paths), "nan|inf")
                width, height, rows = png_rows(self.read(plate + ".png"))
                self.assertEqual((width, height), (1600, 1120))
                self.assertGreater(len(set(rows)), 100)
                # Nothing is cut off: rows and columns near the edges are paper.
                samples = len(rows[0]) // width
                for row in rows[:12] + rows[-12:]:
                    self.assertEqual(set(row), {255})
                for row in rows:
                    self.assertEqual(set(row[: 12 * samples] + row[-12 * samples :]), {255})

    def test_the_page_shows_every_picture(self):
        self.assertTrue(self.page.startswith("<!DOCTYPE html>"))
        self.assertIn('<meta name="viewport"', self.page)
        body = self.page[self.page.index("<body>") : self.page.index("</body>") + 7]
        # The body is XML, except that HTML leaves the tags of images and line breaks open.
        ElementTree.fromstring(re.sub(r"(<(?:img|br)\b[^>]*)>", r"\1/>", body))
        for plate in PLATES:
            for link in (f'<img src="{plate}.svg"', f'href="{plate}.png"', f'href="{plate}.svg"',
                         f'href="#{plate}"'):
                self.assertIn(link, body)
            self.assertRegex(body, f'<section id="{plate}">\n<h2>[^<]+</h2>\n<p>[^<]+\\.</p>')
            self.assertGreaterEqual(len(self.figures(plate)), 3)
        for link in re.findall('(?:href|src)="([^"#][^"]*)"', body):
            self.assertIn(link, FILES)
        self.assertNotRegex(self.page, "<script|@import|url\\(")
        self.assertIn("squares &amp; &lt;others&gt;.svg", body)

    def test_marks_tell_their_distance(self):
        figures = [numbers(value) for _, value in self.figures("marks")]
        self.assertAlmostEqual(figures[0][0] / 10, figures[1][0], places=1)
        measured = subprocess.run([PROGRAM, "measure", DEJAVU, "--id", "ampersand", "--json"],
                                  stdout=subprocess.PIPE, check=True, timeout=60)
        ampersand = json.loads(measured.stdout)["files"][0]["outlines"][0]
        self.assertAlmostEqual(figures[0][0], ampersand["length"], delta=0.06)
        left, top, right, bottom = ampersand["bounds"]
        self.assertAlmostEqual(figures[2][0], right - left, delta=0.06)
        self.assertAlmostEqual(figures[2][1], bottom - top, delta=0.06)
        self.assertEqual(figures[3][0], ampersand["subpaths"])
        self.assertLess(figures[4][0], 1e-3)

    def test_words_fit_the_curve(self):
        curve, words, size, letters = (numbers(v)[0] for _, v in self.figures("text-along-path"))
        self.assertAlmostEqual(curve - 20, words, places=1)
        self.assertTrue(10 < size < 60 and letters > 100, (size, letters))

    def test_cut_pieces_add_up(self):
        whole, piece, rest, part, off = (numbers(v)[0] for _, v in self.figures("cut"))
        self.assertAlmostEqual(part, 0.3, places=3)
        self.assertAlmostEqual(whole, piece + rest, delta=0.01)
        self.assertLess(abs(off), 0.01)

    def test_nearest_tells_about_the_drawing(self):
        name, count, length, size, lines = (v for _, v in self.figures("nearest"))
        self.assertEqual(name, self.drawing)
        self.assertEqual((numbers(count), numbers(length)), ([2], [48]))
        self.assertEqual(numbers(size), [16, 10])
        shortest, longest = numbers(lines)
        self.assertTrue(0 < shortest < longest)

    def test_finer_flattening_is_longer(self):
        figures = [numbers(n)[-1:] + numbers(v) for n, v in self.figures("flattening")[1:]]
        true_length = numbers(self.figures("flattening")[0][1])[0]
        self.assertEqual([f[0] for f in figures], [40, 5, 0.5, 0.05])
        last_count, last_length = 0, 0
        for tolerance, count, length, distance in figures:
            self.assertTrue(last_count < count and last_length < length <= true_length + 0.001)
            # The distance is shown with two digits.
            self.assertLessEqual(distance, tolerance * 1.05)
            last_count, last_length = count, length

    def test_some_points_hit(self):
        tested, hits, inside, deepest, farthest = (
            numbers(v)[0] for _, v in self.figures("hit-test"))
        self.assertEqual(tested, 115 * 102)
        self.assertTrue(0 < hits < tested and 0 < inside < tested, (hits, inside))
        self.assertTrue(0 < deepest < farthest)

    def test_hatching_has_lines_of_some_length(self):
        for _, value in self.figures("hatching"):
            count, length = numbers(value)
            self.assertTrue(30 < count < 300 and 1000 < length < 20000, value)

    def test_transforms_tell_their_areas(self):
        factors = [numbers(value)[0] for _, value in self.figures("transforms")]
        self.assertEqual(factors[:5], [1, 1, 1.12, 1, -1])

    def test_circles_have_their_radii(self):
        outer, inner, ratio, off, line = (numbers(v) for _, v in self.figures("circles"))
        self.assertAlmostEqual(outer[0], 2 * inner[0], delta=0.002)
        self.assertEqual(ratio, [2])
        self.assertLess(off[0], 1e-9)
        self.assertEqual(line[0], line[1])

    def test_polygons_contain_their_dots(self):
        built, turned, mapped = (numbers(v) for _, v in self.figures("polygons"))
        # The rectangle holds its upper edge and its right edge, and not the other two: a dot at
        # (h, v) from its centre is inside for -85 < h <= 85 and -60 <= v < 60.
        dots = [(17 * h, 17 * v) for h in range(-6, 7) for v in range(-12, 13)]
        inside = sum(-85 < h <= 85 and -60 <= v < 60 for h, v in dots)
        self.assertEqual(built, [inside, len(dots), 1, 4, 170, 120])
        self.assertEqual(turned[1], len(dots))
        self.assertTrue(60 < turned[0] < 80)
        self.assertEqual(mapped[4:], [124, 370])

    def test_rounding_moves_points_by_little(self):
        count, size, exact, rounded, farthest = (numbers(v) for _, v in self.figures("rounding"))
        polygons, points = count
        self.assertEqual(size[0], 10 * polygons + 4 * points)
        self.assertTrue(all(n == int(n) for n in rounded))
        self.assertTrue(all(abs(a - b) <= 1.001 for a, b in zip(exact, rounded)))
        self.assertLessEqual(farthest[0], 0.7072)  # half a diagonal of the grid

    def test_quadratics_agree_with_raised_ones(self):
        raw, raised, lengths, _ = (numbers(v) for _, v in self.figures("quadratics"))
        self.assertTrue(raw[0] > 24 and raised[0] > 24)
        self.assertTrue(0.99 * lengths[1] < lengths[0] <= lengths[1] + 0.01, lengths)

    def test_corners_are_all_counted(self):
        counts, size, bounds = (numbers(v) for _, v in self.figures("corner-test"))
        self.assertEqual(sum(counts), 12 * 14)
        self.assertTrue(min(counts) > 10)
        angle = math.radians(27)
        width = size[0] * math.cos(angle) + size[1] * math.sin(angle)
        height = size[0] * math.sin(angle) + size[1] * math.cos(angle)
        self.assertAlmostEqual(bounds[0], width, delta=0.001)
        self.assertAlmostEqual(bounds[1], height, delta=0.001)

    def test_cached_paths_are_built_once(self):
        _, built, first, second = (numbers(v) for _, v in self.figures("cached-path"))
        self.assertEqual(built, [24, 2])
        for polygon, filled in (first, second):
            self.assertAlmostEqual(polygon, filled, delta=0.002 * polygon)

    def test_welded_letters_lose_their_overlap(self):
        before, union, twice, _ = (numbers(v) for _, v in self.figures("welded"))
        self.assertEqual(before[0], 8)  # of the letters a, m, b, l, e
        self.assertAlmostEqual(before[1] - union[0], twice[0], delta=0.002)
        self.assertLess(union[0], before[1])

    def test_hard_cases_are_right_here_only(self):
        for plate, count in (("hard-booleans", 3), ("hard-booleans-2", 3), ("hard-strokes", 2)):
            figures = self.figures(plate)
            self.assertEqual(len(figures), count + 1)
            for _, value in figures[:-1]:
                own, peer = numbers(value)[:2]
                self.assertTrue(own == 0 and peer > 0, (plate, value))

    def test_the_page_says_that_maps_are_left_out(self):
        self.assertIn("left out", self.page[self.page.index("<footer>"):])

    def test_a_second_run_changes_nothing_else(self):
        """A second run replaces the files by the same ones and leaves others alone."""
        other = os.path.join(self.out, "notes.txt")
        with open(other, "w", encoding="utf-8") as file:
            file.write("mine")
        self.addCleanup(os.remove, other)
        before = {name: self.read(name) for name in FILES}
        result = self.execute("-o", self.out, "--font", DEJAVU, "--drawing", self.drawing)
        self.assertEqual((result.returncode, result.stderr), (0, NOTE))
        self.assertEqual({name: self.read(name) for name in FILES}, before)
        self.assertEqual(self.read("notes.txt"), b"mine")


class FailureTest(GalleryCase):
    """Wrong input: status 2, one line that names it, nothing written."""

    def fails(self, *arguments, names=(), **options):
        def tree():
            return sorted(os.path.join(path, name) for path, folders, files in
                          os.walk(self.folder) for name in folders + files)

        before = tree()
        result = self.execute(*arguments, **options)
        message = result.stderr.decode("utf-8", "replace")
        self.assertEqual((result.returncode, result.stdout or b""), (2, b""), message)
        self.assertTrue(message.startswith("trammel: ") and message.count("\n") == 1, message)
        for name in names:
            self.assertIn(name, message)
        self.assertEqual(tree(), before)

    def usable(self):
        return ["--font", DEJAVU, "--label-font", DEJAVU, "--drawing", self.drawing]

    def test_missing_input_is_named(self):
        for option, file in (("--font", "no-font.ttf"), ("--label-font", "no-label.ttf"),
                             ("--drawing", "no-drawing.svg"), ("--map", "no-map.json")):
            with self.subTest(option):
                arguments = self.usable() + ["--map", self.drawing]
                arguments[arguments.index(option) + 1] = file
                self.fails("-o", "out", *arguments, names=[file])

    def test_wrong_input_is_named(self):
        with open(os.path.join(self.folder, "words.txt"), "w", encoding="utf-8") as file:
            file.write("no font")
        with open(os.path.join(self.folder, "blank.svg"), "w", encoding="utf-8") as file:
            file.write('<svg xmlns="http://www.w3.org/2000/svg"><path d="M1 1Z"/></svg>')
        arguments = self.usable()
        arguments[1] = "words.txt"
        self.fails("-o", "out", *arguments, names=["words.txt"])
        arguments = self.usable()
        arguments[5] = "blank.svg"
        self.fails("-o", "out", *arguments, names=["blank.svg"])

    @unittest.skipUnless(os.path.exists(DEJAVU), "no font: apt-get install fonts-dejavu-core")
    def test_an_unwritable_output_is_named(self):
        with open(os.path.join(self.folder, "file"), "w", encoding="utf-8") as file:
            file.write("mine")
        self.fails("-o", "file", *self.usable(), names=["file"])
        self.fails("-o", "file/below", *self.usable(), names=["file/below"])
        # Not even root makes a folder there.
        self.fails("-o", "/proc/trammel/gallery", *self.usable(), names=["/proc/trammel/gallery"])
        # One of the files cannot be written: none is.
        os.makedirs(os.path.join(self.folder, "taken", "index.html"))
        self.fails("-o", "taken", *self.usable(), names=["taken/index.html"])

    @unittest.skipUnless(os.path.exists(DEJAVU), "no font: apt-get install fonts-dejavu-core")
    def test_a_full_disk_leaves_nothing(self):
        def limit():
            resource.setrlimit(resource.RLIMIT_FSIZE, (20000, 20000))
        os.mkdir(os.path.join(self.folder, "old"))
        with open(os.path.join(self.folder, "old", "index.html"), "w", encoding="utf-8") as file:
            file.write("mine")
        self.fails("-o", "old", *self.usable(), names=["cannot be written"], preexec_fn=limit)
        with open("/dev/full", "wb") as full:
            self.fails("-o", "old", *self.usable(), names=["standard output"], stdout=full)
        with open(os.path.join(self.folder, "old", "index.html"), encoding="utf-8") as file:
            self.assertEqual(file.read(), "mine")

    def test_the_output_folder_is_required(self):
        self.fails(names=["--output"])
        self.fails("-o", names=["output"])


@unittest.skipUnless(os.path.exists(DEJAVU), "no font: apt-get install fonts-dejavu-core")
@unittest.skipUnless(os.path.exists(MAP), "no map: script/setup maps")
class MapTest(GalleryCase):
    def test_maps_have_pictures_of_their_own(self):
        result = self.execute("-o", "out", "--font", DEJAVU, "--drawing", self.drawing, "--map", MAP)
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        out = os.path.join(self.folder, "out")
        extra = [name + end for name in MAP_PLATES for end in (".svg", ".png")]
        self.assertEqual(sorted(os.listdir(out)), sorted(FILES + extra))
        with open(os.path.join(out, "index.html"), encoding="utf-8") as file:
            page = file.read()

        def figures(plate):
            section = re.search(f'<section id="{plate}">.*?</section>', page, re.DOTALL).group()
            return [numbers(v) for v in re.findall("<dd>(.*?)</dd>", section)]

        # Each figure begins with the area.
        a, b, union, both, less, either, off = (f[0] for f in figures("four-operations"))
        self.assertAlmostEqual(union + both, a + b, delta=0.01)
        self.assertAlmostEqual(less, a - both, delta=0.01)
        self.assertAlmostEqual(either, union - both, delta=0.01)
        self.assertLess(off, 1e-6)
        country, letters, left, off, _ = (f[0] for f in figures("word-cut"))
        self.assertAlmostEqual(country, letters + left, delta=0.01)
        self.assertLess(off, 1e-6)
        countries, union, off, borders = figures("joined")
        self.assertAlmostEqual(countries[0], union[0], delta=0.01)
        self.assertLess(union[-1], countries[1])
        self.assertTrue(off[0] < 1e-6 and borders[0] > 100)


class DefaultsTest(GalleryCase):
    @unittest.skipUnless(all(map(os.path.exists, DEFAULTS)),
                         "no demo packages: script/setup build app demo")
    def test_the_defaults_are_found(self):
        result = self.execute("-o", "out")
        self.assertEqual((result.returncode, result.stderr), (0, NOTE))
        self.assertEqual(sorted(os.listdir(os.path.join(self.folder, "out"))), FILES)


if __name__ == "__main__":
    unittest.main()
