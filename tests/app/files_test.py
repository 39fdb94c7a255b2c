#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Tests of the commands that read many files: files that fail, lists of files, JSON of several files,
units of length."""

import json
import os
import subprocess
import unittest

from support import AppTest, PROGRAM, SQUARE, svg


class ManyFiles(AppTest):
    def setUp(self):
        super().setUp()
        self.a = self.write("a.svg", SQUARE)
        self.b = self.write("b.svg", svg('<path id="line" d="M-3 0V20"/>'))
        self.bad = self.write("bad.svg", "<svg><g></svg>")

    def run_failing(self, *arguments, **options):
        """Runs a command with a file that fails: status 2, one line for each such file."""
        result = self.execute(*arguments, **options)
        self.assertEqual(result.returncode, 2, arguments)
        return result.stdout.decode(), result.stderr.decode().splitlines()

    def test_a_file_that_fails_costs_one_line(self):
        missing = self.path("missing.svg")
        good = self.run_text("measure", self.a, self.b)
        output, errors = self.run_failing("measure", self.a, missing, self.bad, self.b)
        self.assertEqual(output, good)
        self.assertEqual(len(errors), 2)
        self.assertIn(missing, errors[0])
        self.assertIn(self.bad, errors[1])

    def test_json_of_several_files_is_one_document(self):
        for command, more in (("point", ["--at", "0.5"]), ("nearest", ["--to", "1,1"]),
                              ("hit", ["--at", "1,1"]), ("measure", [])):
            with self.subTest(command):
                whole = self.run_json(command, self.a, self.b, *more)
                self.assertEqual([f["file"] for f in whole["files"]], [self.a, self.b])
                self.assertNotIn("errors", whole)
                if command != "measure":
                    single = self.run_json(command, self.a, *more)
                    self.assertEqual(whole["files"][0], single)
                output, errors = self.run_failing(command, self.bad, self.a, *more, "--json")
                data = json.loads(output)
                self.assertEqual([f["file"] for f in data["files"]], [self.a])
                self.assertEqual([e["file"] for e in data["errors"]], [self.bad])
                self.assertEqual(["trammel: " + e["message"] for e in data["errors"]], errors)
                output, errors = self.run_failing(command, self.bad, "no.svg", *more, "--json")
                self.assertEqual(json.loads(output)["files"], [])
                self.assertEqual(len(errors), 2)

    def test_lines_of_several_files_name_the_file(self):
        self.assertEqual(self.run_text("hit", self.a, self.b, "--at", "1,1"),
                         f"{self.a}: 1,1: sq inside\n{self.b}: 1,1: nothing\n")
        self.assertEqual(self.run_text("nearest", self.a, self.b, "--to", "-3,30"),
                         f"{self.a}: sq: fraction 0.75, at 0,10, distance 20.223748\n"
                         f"{self.b}: line: fraction 1, at -3,20, distance 10\n")

    def test_an_outline_that_fails_costs_its_file_only(self):
        dot = self.write("dot.svg", svg('<path id="dot" d="M5 5"/>'))
        output, errors = self.run_failing("point", dot, self.b, "--at", "0.5")
        self.assertEqual(output, f"{self.b}: line: at 0.5: -3,10 direction 0,1 (90 degrees)\n")
        self.assertIn("dot: the outline has no length", errors[0])
        output, errors = self.run_failing("measure", self.a, self.b, "--id", "line")
        self.assertIn("1 file, 1 outline,", output)
        self.assertIn("'sq'" if "'sq'" in errors[0] else "'line'", errors[0])

    def test_a_list_names_files(self):
        both = self.run_text("measure", self.a, self.b)
        listed = self.write("list", f"{self.a}\n\n{self.b}\r\n")
        self.assertEqual(self.run_text("measure", "--files-from", listed), both)
        self.assertEqual(self.run_text("measure", self.a, "--files-from",
                                       self.write("rest", self.b)), both)
        for end, option in (("\n", []), ("\0", ["--null"])):
            odd = self.write("new" + ("\n" if option else "") + "name.svg", SQUARE)
            result = self.execute("measure", "--files-from", "-", *option,
                                  input=(self.b + end + odd + end).encode())
            self.assertEqual((result.returncode, result.stderr), (0, b""))
            self.assertIn(b"2 files, 2 outlines", result.stdout)

    def test_files_may_have_any_name(self):
        for name, shown in ((b"a b'\"$(x).svg",) * 2, (b"new\nline.svg", b"new\\x0aline.svg"),
                            (b"--strict.svg",) * 2, (b"\xff\xe4.svg",) * 2,
                            (b"a\x1b[1m.svg", b"a\\x1b[1m.svg"), (b"%s:1.svg",) * 2):
            with self.subTest(name):
                with open(os.path.join(os.fsencode(self.folder), name), "wb") as file:
                    file.write(svg('<path id="p" d="M0 0H3"/>').encode())
                lines = self.execute("measure", "--", name).stdout.splitlines()
                self.assertEqual(lines[0], shown + b": p: 2 elements, length 3, bounds 0,0 to 3,0, "
                                 b"open, lines")
                data = json.loads(self.execute("measure", "--json", "--", name).stdout)
                self.assertEqual(data["files"][0]["file"], name.decode("utf-8", "replace"))
                out = b"out" + name
                self.assertEqual(self.execute("reverse", "-o", out, "--", name).returncode, 0)
                self.assertTrue(os.path.exists(os.path.join(os.fsencode(self.folder), out)))

    def test_a_list_may_be_empty_or_missing(self):
        empty = self.write("empty", "")
        self.assertEqual(self.run_json("point", "--files-from", empty, "--at", "0"), {"files": []})
        self.assertIn("0 files", self.run_text("measure", "--files-from", empty))
        self.fails("measure", "--files-from", self.path("none"), names=["none", "No such file"])
        self.fails("measure", "--files-from", self.folder, names=[self.folder])

    def test_a_list_of_names_that_end_with_nul_needs_the_option(self):
        listed = self.write("list", self.a + "\0" + self.b + "\0")
        self.fails("measure", "--files-from", listed, names=[listed, "NUL", "--null"])
        self.assertIn("2 files", self.run_text("measure", "--files-from", listed, "--null"))

    def test_output_comes_file_by_file(self):
        process = subprocess.Popen([PROGRAM, "measure", "--files-from", "-"],
                                   stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        with process:
            for _ in range(2):
                process.stdin.write((self.a + "\n").encode())
                process.stdin.flush()
                self.assertIn(b"sq: 5 elements", process.stdout.readline())
            process.stdin.close()
            self.assertIn(b"2 files", process.stdout.readline())
        self.assertEqual(process.returncode, 0)

    def test_output_is_the_same_for_every_number_of_jobs(self):
        files = []
        for i in range(60):
            body = f'<path id="p{i}" d="M0 0H{i + 1}V{i % 7}C1 2 3 4 {i} 6"/>'
            body += '<text>words</text>' if i % 3 == 0 else ""  # a warning
            body = "<g>" if i % 11 == 3 else body  # an error
            body *= 1 + 30 * (i % 13 == 0)  # files that take longer
            files.append(self.write(f"{i}.svg", svg(body)))
        listed = self.write("list", "\n".join(files))
        for command in (["measure", "--area"], ["hit", "--at", "1,1", "--json"],
                        ["nearest", "--to", "3,4"], ["measure", "--strict"],
                        ["point", "--at", "0.5", "--classic"]):
            with self.subTest(command):
                runs = [self.execute(*command, "--files-from", listed, *jobs)
                        for jobs in (["--jobs", "1"], ["--jobs", "4"])]
                for run in runs:
                    self.assertEqual((run.returncode, run.stdout, run.stderr),
                                     (2, runs[0].stdout, runs[0].stderr))
                self.assertGreater(runs[0].stderr.count(b"\n"), 20)
        together = self.execute("measure", *files[:3], "--jobs", "256")
        self.assertEqual(together.stdout, self.execute("measure", *files[:3], "--jobs=1").stdout)
        for wrong in ("0", "-1", "1.5", "257", "many"):
            self.fails("measure", self.a, "--jobs", wrong, names=["--jobs", wrong])

    def test_standard_input_may_be_one_of_many_files(self):
        result = self.execute("measure", self.a, "-", self.b, "--jobs", "3",
                              input=svg('<path id="in" d="M0 0H7"/>').encode())
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        lines = result.stdout.splitlines()
        self.assertEqual([line.split(b": ")[1] for line in lines[:3]], [b"sq", b"in", b"line"])
        self.assertIn(b"3 files, 3 outlines", lines[3])

    def test_a_full_standard_output_ends_the_run(self):
        with open("/dev/full", "wb") as full:
            result = self.execute("measure", *[self.a] * 50, stdout=full)
        self.assertEqual((result.returncode, result.stderr.count(b"\n")), (2, 1))


class Units(AppTest):
    def test_figures_are_in_the_unit_on_paper(self):
        file = self.write("in.svg", svg('<path id="p" d="M10 10H60"/>',
                                        'viewBox="0 0 100 50" width="200mm" height="100mm"'))
        data = self.run_json("measure", file, "--unit", "mm")["files"][0]
        self.assertEqual(data["unit"], "mm")
        self.assertEqual(data["outlines"][0]["length"], 100)
        self.assertBox(data["outlines"][0]["bounds"], [20, 20, 120, 20])
        for unit, size in (("cm", 10), ("in", 100 / 25.4), ("pt", 7200 / 25.4), ("Q", 400),
                           ("px", 9600 / 25.4), ("pc", 600 / 25.4)):
            outline = self.run_json("measure", file, "--unit", unit)["files"][0]["outlines"][0]
            self.assertAlmostEqual(outline["length"], size, 8)
        self.assertIn("length 100 mm", self.run_text("measure", file, "--unit", "mm"))
        found = self.run_json("nearest", file, "--unit", "mm", "--to", "150,60")["nearest"][0]
        self.assertEqual((found["point"], found["distance"]), ([120, 20], 50))

    def test_a_page_may_begin_anywhere_and_have_any_shape(self):
        body = '<path id="p" d="M10 10H60"/>'
        file = self.write("in.svg", svg(body, 'viewBox="10 10 50 50" width="2in" height="1in"'))
        # The view box fits into the height, in the middle of the width.
        outline = self.run_json("measure", file, "--unit", "in")["files"][0]["outlines"][0]
        self.assertBox(outline["bounds"], [0.5, 0, 1.5, 0])
        file = self.write("in.svg", svg(body, 'width="96" height="96"'))
        outline = self.run_json("measure", file, "--unit", "in")["files"][0]["outlines"][0]
        self.assertAlmostEqual(outline["length"], 50 / 96, 9)

    def test_a_drawing_without_a_size_has_no_unit(self):
        file = self.write("in.svg", SQUARE)
        self.fails("measure", file, "--unit", "mm", names=[file, "size on paper"])
        sized = self.write("sized.svg", svg("<path d='M0 0H1'/>", 'width="1" height="1"'))
        self.fails("measure", sized, "--unit", "furlong", names=["--unit", "'furlong'", "mm"])
        self.fails("measure", sized, "--unit", "%", names=["--unit"])


class Warnings(AppTest):
    def test_quiet_and_strict_are_options_of_every_command(self):
        text = self.run_text("--help")
        commands = [line.split()[0] for line in text.split("Subcommands:")[1].splitlines()
                    if line.startswith("  ")]
        self.assertGreater(len(commands), 10)
        for command in commands:
            help_text = self.run_text(command, "--help")
            self.assertIn("--quiet", help_text)
            self.assertIn("--strict", help_text)


if __name__ == "__main__":
    unittest.main()
