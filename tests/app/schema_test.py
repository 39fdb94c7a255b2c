#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Tests that what the commands print with --json is what docs/tool.schema.json says, and that each option
of each command does its work."""

import json
import os
import re
import unittest
import xml.etree.ElementTree as ElementTree

from support import AppTest, font_bytes, svg

try:
    import jsonschema
except ImportError:
    jsonschema = None

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
with open(os.path.join(ROOT, "docs", "tool.schema.json"), encoding="utf-8") as schema_file:
    SCHEMA = json.load(schema_file)


def schema_errors(command, data):
    """What a command's output has that the schema does not allow."""
    schema = {"$ref": f"#/definitions/{command}", "definitions": SCHEMA["definitions"]}
    return [error.message for error in jsonschema.Draft7Validator(schema).iter_errors(data)]


@unittest.skipIf(jsonschema is None, "no jsonschema: apt-get install python3-jsonschema")
class Schema(AppTest):
    COMMANDS = ("measure", "point", "nearest", "hit", "area", "intersect", "combine", "polygons")

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        jsonschema.Draft7Validator.check_schema(SCHEMA)

    def setUp(self):
        super().setUp()
        self.a = self.write("a.svg", svg(
            '<rect id="sq" width="10" height="10"/><circle id="c" cx="9" cy="9" r="5"/>'
            '<path id="knot" d="M0 0L10 10L10 0L0 10"/><path id="line" d="M0 5H10"/>'
            '<path id="far" fill-rule="evenodd" d="M1e300 0H1.5e300V1Z"/>',
            'viewBox="0 0 20 20" width="40mm" height="40mm"'))
        self.b = self.write("b.svg", svg('<path id="s" d="M0 0C30 55 31 -55 61 0"/>'))
        self.font = self.write("font.ttf", font_bytes())
        self.bad = self.write("bad.svg", "<svg>")

    def check(self, command, *arguments):
        result = self.execute(command, *arguments, "--json")
        self.assertIn(result.returncode, (0, 2))
        data = json.loads(result.stdout)
        self.assertEqual(schema_errors(command, data), [], arguments)
        self.assertTrue(jsonschema.Draft7Validator(SCHEMA).is_valid(data), arguments)
        return data

    def test_every_command_keeps_to_the_schema(self):
        for command, more in {"measure": [], "point": ["--at", "0,0.5,1", "--id", "sq"],
                              "nearest": ["--to", "3,4", "--to", "99,-5"],
                              "hit": ["--at", "9,9", "--tolerance", "3"], "area": []}.items():
            for extra in ([], ["--accuracy", "0.01"], ["--classic"], ["--unit", "mm"]):
                if extra == ["--classic"] and command == "area":
                    continue
                with self.subTest((command, extra)):
                    self.check(command, self.a, *more, *extra)
        self.check("measure", self.a, "--area", "--unit", "mm")
        for files in ([self.a, self.b, self.font], [self.a, self.bad, self.b], [self.bad] * 2):
            self.check("measure", *files)
            self.check("hit", *files, "--at", "1,1")
            self.check("nearest", *files, "--to", "1,1")
            self.check("area", *files)
        self.check("intersect", self.a, "--id-a", "sq", "--id-a", "c", "--id-a", "line")
        self.check("intersect", self.a, "--self", "--id-a", "knot")
        self.check("intersect", self.a, self.b, "--accuracy", "0.001", "--id-a", "sq")
        self.check("combine", "union", self.a, self.b, "--id-a", "sq")
        for mode in ("--describe", "--rotate-bounds=30"):
            self.check("polygons", self.b, mode)

    def test_the_schema_refuses_other_objects(self):
        data = self.check("measure", self.a)
        for change in ({"files": 5}, {"more": 1}, {"totals": {}}):
            self.assertNotEqual(schema_errors("measure", {**data, **change}), [])
        del data["files"][0]["outlines"][0]["length"]
        self.assertNotEqual(schema_errors("measure", data), [])
        self.assertNotEqual(schema_errors("hit", data), [])

    def test_every_command_with_json_is_in_the_schema(self):
        listed = self.run_text("--help").split("Subcommands:")[1].splitlines()
        commands = [line.split()[0] for line in listed if line.startswith("  ")]
        for command in commands:
            has = "--json" in self.run_text(command, "--help")
            self.assertEqual(has, command in self.COMMANDS, command)
            self.assertEqual(has, command in SCHEMA["definitions"], command)


MANY = "--id sq --unit mm --jobs 2 --accuracy 0.1"  # of commands that read many files
LIST = "--files-from {list} --null"
PNG = "-o {png} --width 20 --height 10 --background #fff"
ZOOM = "-o {png} --zoom 2"
SVG = "-o {out} --precision 3 --stroke-width 0.5"
CHANGE = ("{a} --id sq --tolerance 0.1 " + SVG, "{a} " + PNG, "{a} " + ZOOM)


class Options(AppTest):
    """Command lines that have all options of their command together. Options that exclude each other
    come in turn."""

    LINES = {
        "area": ("{a} --rule nonzero " + MANY, LIST),
        "combine": ("union {a} {b} --id-a sq --id-b c --error 0.1 --rule evenodd " + SVG,
                    "xor {a} {b} --json " + PNG, "difference {a} {b} " + ZOOM),
        "cut": ("{a} --id sq --from 0 --to 0.5 --accuracy 0.1 --rest {rest} " + SVG,
                "{a} --from 0.1 --to 1 " + PNG, "{a} --from 0.1 --to 1 " + ZOOM),
        "divide": CHANGE,
        "fit": CHANGE + ("{a} --corner 30 -o {out}",),
        "flatten": ("{a} --id sq --error 0.1 " + SVG, "{a} --error 1 --classic " + PNG,
                    "{a} --error 1 " + ZOOM),
        "hatch": ("{a} --id sq --angle 30 --spacing 3 --outlines " + SVG,
                  "{a} --angle -30 --spacing 4 " + PNG, "{a} --angle 0 --spacing 4 " + ZOOM),
        "help": ("measure",),
        "hit": ("{a} --at 1,1 --tolerance 2 --rule evenodd " + MANY, "--at 9,9 " + LIST,
                "{a} --at 1,1 --classic"),
        "intersect": ("{a} {b} --id-a sq --id-b c --accuracy 0.1", "{a} --self --json"),
        "measure": ("{a} --area " + MANY, LIST, "{a} --classic"),
        "nearest": ("{a} --to 9,9 " + MANY, "--to 9,9 " + LIST, "{a} --to 1,1 --classic"),
        "offset": CHANGE,
        "overlap": CHANGE,
        "point": ("{a} --at 0,0.5 " + MANY, "--at 0 " + LIST, "{a} --at 1 --classic"),
        "polygons": ("{a} --id sq --describe --error 0.1", "{a} --rotate-bounds 20",
                     "{a} --to-quickdraw -o {out}"),
        "reverse": ("{a} --id sq --accuracy 0.1 " + SVG, "{a} " + PNG, "{a} " + ZOOM),
        "shape": ("circle 5,5,3 --tolerance 0.1 --set-id x --into {a} " + SVG,
                  "star 5,5,3,2,5 " + PNG, "rect 1,1,4,4,1 " + ZOOM),
        "simplify": CHANGE + ("{a} --no-new-crossings -o {out}",),
        "stroke": CHANGE + ("{a} --pen 2 --join round --miter-limit 3 --cap square --dash 1,2 "
                            "--dash-offset 0.5 -o {out}",),
        "text": ("{font} AB --along {a} --id sq --size 5 --start 1 --raw-quadratics --error 0.1 "
                 + SVG, "{font} C --along {a} --outline " + PNG, "{font} C --along {a} " + ZOOM),
        "transform": ("{a} --id sq --rotate 30 --scale 2,1 --translate 1,2 " + SVG,
                      "{a} --map 0,0,5,5 " + PNG, "{a} --scale 3 " + ZOOM,
                      "{a} --scale 3 --coordinates --accuracy 0.1 -o {out}"),
    }
    ALWAYS = {"offset": "--by 1 --join bevel --miter-limit 2"}

    def setUp(self):
        super().setUp()
        shapes = ('<path id="sq" stroke="red" d="M1 1H9V9H1Z"/><circle id="c" cx="9" cy="9" r="5"/>'
                  '<path id="s" d="M1 15C9 25 9 5 19 15"/>')
        page = 'viewBox="0 0 20 20" width="40mm" height="40mm"'
        self.names = {"a": self.write("a.svg", svg(shapes, page)),
                      "b": self.write("b.svg", svg(shapes, page)),
                      "font": self.write("font.ttf", font_bytes()), "out": self.path("out.svg"),
                      "rest": self.path("rest.svg"), "png": self.path("out.png")}
        self.names["list"] = self.write("list", f"{self.names['a']}\0{self.names['b']}\0")

    def tried(self, command, line):
        """Runs one command line, and checks what it writes. Returns its options."""
        words = line.format(**self.names).split() + self.ALWAYS.get(command, "").split()
        for name in ("out", "rest", "png"):
            if os.path.exists(self.names[name]):
                os.remove(self.names[name])
        self.run_text(command, *words, "--strict")
        for word in words:
            if word.startswith(self.names["png"]):
                self.assertEqual(self.read("out.png")[:4], b"\x89PNG")
            elif word in (self.names["out"], self.names["rest"]):
                root = ElementTree.parse(word).getroot()
                self.assertTrue(root.tag.endswith("}svg"))
        return {word for word in words if re.match("-[-a-z]", word)}

    def test_each_option_of_each_command_does_its_work(self):
        listed = self.run_text("--help").split("Subcommands:")[1]
        commands = set(re.findall(r"^  (\w+)", listed, re.M))
        self.assertEqual(commands, {*self.LINES, "gallery"}) # which has tests of its own
        for command, lines in self.LINES.items():
            with self.subTest(command):
                options = set(re.findall(r"^  (?:-[a-z],)?(--[a-z-]+)",
                                         self.run_text(command, "--help"), re.M))
                used = {"--help", "--quiet", "--strict"}
                for line in lines:
                    used |= {"--output" if word == "-o" else word for word in
                             self.tried(command, line)}
                    if "--json" in options and "--json" not in line:
                        words = line.format(**self.names).split()
                        data = json.loads(self.run_text(command, *words, "--json", "-q"))
                        self.assertEqual(schema_errors(command, data) if jsonschema else [], [])
                        used.add("--json")
                self.assertEqual(options, used)


if __name__ == "__main__":
    unittest.main()
