#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Tests of what all commands read: TopoJSON maps, damaged files, and real icons and fonts where they
are installed.
"""

import glob
import gzip
import json
import math
import os
import unittest

from support import AppTest, SQUARE, font_bytes, svg

DEJAVU = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"
GARAMOND = "/usr/share/fonts/opentype/ebgaramond/EBGaramond12-Regular.otf"
ICONS = "/usr/share/icons/breeze/actions/22"


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

    def test_countries_are_outlines(self):
        file = self.write("map.svg", self.changed())  # known by content, not by name
        data = self.run_json("measure", file)["files"][0]
        west, east = data["outlines"]
        self.assertEqual((data["kind"], west["id"], east["id"]), ("map", "West", "E"))
        self.assertEqual((west["bounds"], west["length"]), ([0, -10, 10, 0], 40))
        for encoding in ("utf-8-sig", "utf-16", "utf-32", "utf-16-be", "utf-32-le"):
            wide = self.run_json("measure", self.write("map.svg", self.changed().encode(encoding)))
            self.assertEqual(wide["files"], [data], encoding)
        self.assertEqual((east["bounds"], east["length"], east["subpaths"]),
                         ([10, -10, 31, 0], 44, 2))

    def test_neighbours_join(self):
        file = self.write("map.json", self.changed())
        data = self.run_json("combine", "union", file, file, "--id-a", "West", "--id-b", "E")
        self.assertEqual((data["result"]["area"], data["result"]["contours"]), (201, 2))

    def test_a_map_may_have_no_transform(self):
        text = json.dumps({"type": "Topology", "arcs": [[[1, 1], [3, 1], [3, 2], [1, 1]]],
                           "objects": {"x": {"type": "Polygon", "arcs": [[0]]}}})
        self.assertEqual(self.measure(text)["feature#1"]["bounds"], [1, -2, 3, -1])

    def test_damaged_maps_are_refused_with_the_place(self):
        def bad(text, *names):
            file = self.write("bad.json", text)
            self.fails("measure", file, names=[file, *names])
        bad("{", "line 1", "not valid JSON")
        bad('{"type": "Topology",\n "arcs": [}', "line 2", "not valid JSON")
        bad('{"type": 1e999}', "too large")
        bad('{"type": "Tapestry"}', "no map")
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


class GeoMaps(AppTest):
    SQUARE = {"type": "Polygon", "coordinates": [[[0, 0], [10, 0], [10, 10], [0, 10], [0, 0]],
                                                 [[2, 2], [2, 4], [4, 4], [4, 2], [2, 2]]]}

    def outlines(self, data):
        return {k: (o["length"], o["subpaths"], o["bounds"], o["closed"])
                for k, o in self.measure(json.dumps(data), "map.svg").items()}

    def test_features_are_outlines(self):
        features = [
            {"type": "Feature", "id": 7, "properties": {"name": "Land"}, "geometry": self.SQUARE},
            {"type": "Feature", "id": 8, "geometry": {"type": "MultiPolygon", "coordinates": [
                [[[20, 0], [23, 0], [23, 4], [20, 0]]], [[[30, 0], [33, 0], [33, -4], [30, 0]]]]}},
            {"type": "Feature", "geometry": None},
            {"type": "Feature", "id": "way", "geometry": {"type": "GeometryCollection",
             "geometries": [{"type": "LineString", "coordinates": [[0, 0], [3, 4, 99]]},
                            {"type": "Point", "coordinates": [1, 2]},
                            {"type": "MultiLineString", "coordinates": [[[0, 0], [0, 5]]]}]}},
            {"type": "Feature", "geometry": {"type": "LineString", "coordinates": [[0, 0], [1, 0]]}},
        ]
        self.assertEqual(self.outlines({"type": "FeatureCollection", "features": features}), {
            "Land": (48, 2, [0, -10, 10, 0], True), "8": (24, 2, [20, -4, 33, 4], True),
            "way": (10, 2, [0, -5, 3, 0], False), "feature#4": (1, 1, [0, 0, 1, 0], False)})

    def test_a_geometry_alone_is_a_map(self):
        self.assertEqual(list(self.outlines(self.SQUARE)), ["feature#1"])
        self.assertEqual(self.outlines({"type": "GeometryCollection", "geometries": [
            {"type": "MultiPoint", "coordinates": [[1, 2]]}, self.SQUARE]})["feature#1"][0], 48)

    def test_damaged_maps_are_refused_with_the_place(self):
        def bad(data, *names):
            file = self.write("bad.json", json.dumps(data))
            self.fails("measure", file, names=[file, *names])
        bad({"type": "FeatureCollection"}, 'has no "features"')
        bad({"type": "FeatureCollection", "features": [5]}, "features[0]", "object")
        bad({"type": "Feature", "geometry": {"type": "Blob"}}, "geometry", "'Blob'")
        bad({"type": "Polygon", "coordinates": [[[1, 2], [1]]]}, "coordinates[0]", "two numbers")
        bad({"type": "LineString", "coordinates": 5}, "coordinates", "list")
        nested = self.SQUARE
        for _ in range(100):
            nested = {"type": "GeometryCollection", "geometries": [nested]}
        bad(nested, "too deeply")


class Streams(AppTest):
    """Standard input and output, and packed files."""

    def test_a_dash_stands_for_standard_input(self):
        file = self.write("in.svg", SQUARE)
        with open(file, "rb") as stream:
            result = self.execute("measure", "-", "--json", stdin=stream)
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        data = json.loads(result.stdout)["files"][0]
        self.assertEqual((data["file"], data["outlines"][0]["length"]), ("-", 40))

    def test_a_dash_stands_for_standard_output(self):
        file = self.write("in.svg", SQUARE)
        self.run_text("flatten", file, "--error", "1", "-o", self.path("out.svg"))
        self.assertEqual(self.run_text("flatten", file, "--error", "1", "-o", "-").encode(),
                         self.read("out.svg"))
        self.assertEqual(sorted(os.listdir(self.folder)), ["in.svg", "out.svg"])

    def test_packed_files_are_unpacked(self):
        packed = gzip.compress(SQUARE.encode())
        self.assertEqual(self.measure(packed, "in.svgz")["sq"]["length"], 40)
        self.assertEqual(self.measure(gzip.compress(font_bytes()), "font.gz")["glyph2"]["length"],
                         2000)
        # Some packers write several members, and padding behind them.
        half = len(SQUARE) // 2
        members = gzip.compress(SQUARE[:half].encode()) + gzip.compress(SQUARE[half:].encode())
        self.assertEqual(self.measure(members + b"\0" * 512, "two.svgz")["sq"]["length"], 40)

    def test_damaged_packed_files_are_refused(self):
        packed = gzip.compress(SQUARE.encode())
        for content, name in ((packed[:-1], "too early"), (packed[:20], "too early"),
                              (packed[:-5] + bytes([packed[-5] ^ 1]) + packed[-4:], "damaged"),
                              (gzip.compress(b"\0" * (129 << 20)), "128 MiB")):
            file = self.write("in.svgz", content)
            self.fails("measure", file, names=[file, name])

    def test_packed_drawings_are_written(self):
        file = self.write("in.svg", SQUARE)
        self.run_text("flatten", file, "--error", "1", "-o", self.path("out.svg"))
        self.run_text("flatten", file, "--error", "1", "-o", self.path("out.svgz"))
        self.assertEqual(gzip.decompress(self.read("out.svgz")), self.read("out.svg"))


class BadInput(AppTest):
    def bad(self, content, *names, name="bad.svg"):
        file = self.write(name, content)
        self.fails("measure", file, names=[file, *names])
        self.fails("measure", "--json", file, names=[file, *names])
        output = self.path("out.svg")
        self.fails("flatten", file, "--error", "1", "-o", output, names=[file, *names])

    def skipped(self, content, *names):
        """What a browser would pass over is told, and is an error only where --strict asks for it."""
        file = self.write("bad.svg", content)
        result = self.execute("measure", file)
        message = result.stderr.decode("utf-8")
        self.assertEqual(result.returncode, 0, message)
        self.assertTrue(message.startswith("trammel: warning: "), message)
        self.assertEqual(message.count("\n"), 1, message)
        self.fails("measure", "--strict", file, names=[file, *names])
        for name in (file, *names):
            self.assertIn(name, message)
        self.run_text("measure", "-q", file)

    def test_unreadable_kinds_of_files_are_refused(self):
        self.fails("measure", self.path("missing.svg"), names=["missing.svg", "No such file"])
        self.fails("measure", self.folder, names=[self.folder, "folder"])
        self.bad("", "is empty")
        for encoding in ("utf-8", "utf-16-le", "utf-16-be", "utf-32-le", "utf-32-be"):
            self.bad("hello".encode(encoding), "neither")
            self.bad("  <hello/>".encode(encoding), "outermost element must be <svg>")
        self.bad(b"\x1f\x8b\x08\0\0", "compressed")
        self.bad(b"\0\1\0\0 no font at all", "not a font")
        self.bad(font_bytes()[:300], "")
        self.bad("   \n", "neither")

    @unittest.skipIf(os.geteuid() == 0, "root may read everything")
    def test_a_file_without_permission_is_refused(self):
        file = self.write("in.svg", SQUARE)
        os.chmod(file, 0)
        self.fails("measure", file, names=[file, "Permission denied"])

    def test_a_huge_file_is_refused(self):
        file = self.path("huge.svg")
        with open(file, "wb") as stream:
            stream.truncate(200 << 20)
        self.fails("measure", file, names=[file, "128 MiB"])
        self.fails("measure", "/dev/zero", names=["/dev/zero", "128 MiB"])

    def test_damaged_xml_is_refused(self):
        self.bad("<svg><g></svg>", "line 1", "XML")
        self.bad("<svg>\n<path d='", "line 2", "XML")
        self.bad("<!-- nothing -->", "XML")
        self.bad("<html/>", "line 1, column 1", "<html>")

    def test_content_beside_the_outermost_element_is_told(self):
        for content, place in ((SQUARE + " more", "line 4, column 2:"),
                               (SQUARE + "\n" + SQUARE, "line 5, column 1, <svg>"),
                               (SQUARE + "\n\n<g id='x'/>", "line 6, column 1, <g id=\"x\">")):
            with self.subTest(content):
                self.skipped(content, place, "lies outside of the outermost element")
        self.assertIn("1 outline,", self.run_text("measure", "-q", self.path("bad.svg")))

    def test_an_attribute_that_an_element_has_twice_is_told(self):
        self.skipped(svg('<path id="p" d="M0 0H3" id="q" d="M0 0H5"/>'), '<path id="p">',
                     "has two attributes d, of which the first counts")
        self.assertIn("length 3,", self.run_text("measure", "-q", self.path("bad.svg")))

    def test_errors_name_line_column_and_position(self):
        self.skipped(svg('<rect width="1" height="1"/>\n  <path id="p" d="M0 0L1"/>'),
                 'line 3, column 3, <path id="p">: attribute d, position 6:', "number")

    def test_damaged_attributes_are_skipped(self):
        for element, attribute in {
            '<path d="M0 0L nan 1"/>': "attribute d, position 6",
            '<path d="M0 0L inf 1"/>': "attribute d",
            '<path d="M0 0L1e999 1"/>': "attribute d",
            '<path d="L0 0"/>': "attribute d, position 0",
            '<path d="M0 0 &#252;"/>': "attribute d",
            '<rect width="nan" height="1"/>': "attribute width",
            '<rect width="1e999" height="1"/>': "attribute width",
            '<rect width="-1" height="1"/>': "attribute width, position 0: is negative",
            '<rect width="1vw" height="1"/>': "'vw'",
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
                self.skipped(svg(element), "line 2, column 1", attribute)

    def test_a_percentage_needs_a_size(self):
        self.skipped('<svg xmlns="http://www.w3.org/2000/svg"><rect width="50%" height="1"/></svg>',
                     "attribute width")

    def test_uses_without_end_are_refused(self):
        self.skipped(svg('<g id="a"><use href="#a"/></g>'), "line 2", "part")
        self.skipped(svg('<use id="a" href="#a"/>'), "part")
        levels = '<g id="l0">' + '<path d="M0 0H1"/>' * 10 + "</g>"
        for i in range(1, 12):
            levels += f'<g id="l{i}">' + f'<use href="#l{i - 1}"/>' * 10 + "</g>"
        # The limits take a while to reach, so one command is tried.
        for content in (svg("<defs>" + levels + '</defs><use href="#l11"/>'),
                        # Few elements, but long ones.
                        svg('<defs><path id="p" d="M0 0' + "L1 1L0 0" * 40000 + '"/></defs>' +
                            '<use href="#p"/>' * 300)):
            file = self.write("bad.svg", content)
            self.fails("measure", file, names=[file, "multiply"])

    def test_deep_nesting_is_refused(self):
        self.bad(svg("<g>" * 100000 + "</g>" * 100000), "levels deep")
        chain = "".join(f'<g id="g{i}"><use href="#g{i + 1}"/></g>' for i in range(2000))
        self.bad(svg(f"<defs>{chain}</defs><use href='#g0'/>"), "levels deep")
        self.assertEqual(len(self.measure(svg("<g>" * 200 + '<path d="M0 0H1"/>' + "</g>" * 200))),
                         1)

    def test_entities_are_expanded_within_bounds(self):
        head = '<!DOCTYPE svg [<!ENTITY a "1"> <!ENTITY b \'&a;&a;\'>\n<!ENTITY no "display:none">]>\n'
        got = self.measure(head + svg('<path id="p" d="M0 0H&b;"/><path style="&no;" d="M0 0H9"/>'
                                      '<path id="q" d="M0 0H2" fill="&amp;b;"/>'))
        self.assertEqual({k: o["length"] for k, o in got.items()}, {"p": 11, "q": 2})
        self.skipped(head + svg('<path d="M0 0H&c;"/>'), "attribute d", "'&'")
        laughs = "".join(f'<!ENTITY l{i} "{f"&l{i - 1};" * 10}">' for i in range(1, 12))
        self.skipped(f'<!DOCTYPE svg [<!ENTITY l0 "1">{laughs}]>' + svg('<path d="M0 0H&l11;"/>'),
                     "attribute d")
        self.skipped(f'<!DOCTYPE svg [<!ENTITY l0 "&l0;">]>' + svg('<path d="M0 0H&l0;"/>'),
                     "attribute d")

    def test_control_characters_stay_in_one_line(self):
        self.skipped("<svg><path id='a\nb\x1b[31m' d='x'/></svg>", "attribute d")
        self.fails("measure", self.path("new\nline.svg"), names=["new\\x0aline.svg"])

    def test_a_dot_has_no_points_along_it(self):
        file = self.write("dot.svg", svg('<path id="dot" d="M5 5"/>'))
        output = self.path("out.svg")
        for command in (["point", file, "--at", "0.5"], ["nearest", file, "--to", "1,1"],
                        ["cut", file, "--from", "0", "--to", "0.5", "-o", output],
                        ["text", self.write("f", font_bytes()), "A", "--along", file, "-o",
                         output]):
            self.fails(*command, names=[file, "dot: the outline has no length"])
        far = self.write("far.svg", svg('<path id="far" d="M-1e308 0H1e308"/>'))
        self.fails("point", far, "--at", "0.5", names=[far, "far", "too long"])

    def test_commands_need_outlines(self):
        file = self.write("none.svg", svg("<title>a</title>"))
        self.fails("point", file, "--at", "0.5", names=[file, "no outlines"])
        self.fails("hatch", file, "--angle", "1", "--spacing", "1", "-o", self.path("o.svg"),
                   names=[file, "no outlines"])

    def test_an_endless_outline_has_no_fractions(self):
        file = self.write("in.svg", svg('<path id="p" d="M0 0H1.5e308V1e308"/>'))
        self.fails("nearest", file, "--to", "1e308,0", names=[file, "p: ", "too long"])

    def test_huge_and_tiny_coordinates_do_no_harm(self):
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


class RealInput(AppTest):
    @unittest.skipUnless(os.path.isdir(ICONS), "no icons: apt-get install breeze-icon-theme")
    def test_icons_are_measured(self):
        files = sorted(f for f in glob.glob(ICONS + "/*.svg") if not os.path.islink(f))[:300]
        data = self.run_json("measure", "-q", *files)  # some have clip paths
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
    def test_truetype_glyphs_have_their_shapes(self):
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
    def test_cff_glyphs_have_their_shapes(self):
        data = self.run_json("measure", GARAMOND)
        self.assertGreater(data["totals"]["outlines"], 1000)
        period = next(o for o in data["files"][0]["outlines"] if o["id"] == "period")
        self.assertTrue(period["closed"] and period["curves"])


if __name__ == "__main__":
    unittest.main()
