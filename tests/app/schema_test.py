#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Tests that what the commands print with --json is what docs/tool.schema.json says."""

import json
import os
import unittest

from support import AppTest, font_bytes, svg

try:
    import jsonschema
except ImportError:
    jsonschema = None

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


@unittest.skipIf(jsonschema is None, "no jsonschema: apt-get install python3-jsonschema")
class Schema(AppTest):
    COMMANDS = ("measure", "point", "nearest", "hit", "area", "intersect", "combine", "polygons")

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        with open(os.path.join(ROOT, "docs", "tool.schema.json"), encoding="utf-8") as file:
            cls.schema = json.load(file)
        jsonschema.Draft7Validator.check_schema(cls.schema)

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

    def errors(self, command, data):
        schema = {"$ref": f"#/definitions/{command}", "definitions": self.schema["definitions"]}
        return [error.message for error in jsonschema.Draft7Validator(schema).iter_errors(data)]

    def check(self, command, *arguments):
        result = self.execute(command, *arguments, "--json")
        self.assertIn(result.returncode, (0, 2))
        data = json.loads(result.stdout)
        self.assertEqual(self.errors(command, data), [], arguments)
        self.assertTrue(jsonschema.Draft7Validator(self.schema).is_valid(data), arguments)
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
            self.assertNotEqual(self.errors("measure", {**data, **change}), [])
        del data["files"][0]["outlines"][0]["length"]
        self.assertNotEqual(self.errors("measure", data), [])
        self.assertNotEqual(self.errors("hit", data), [])

    def test_every_command_with_json_is_in_the_schema(self):
        listed = self.run_text("--help").split("Subcommands:")[1].splitlines()
        commands = [line.split()[0] for line in listed if line.startswith("  ")]
        for command in commands:
            has = "--json" in self.run_text(command, "--help")
            self.assertEqual(has, command in self.COMMANDS, command)
            self.assertEqual(has, command in self.schema["definitions"], command)


if __name__ == "__main__":
    unittest.main()
