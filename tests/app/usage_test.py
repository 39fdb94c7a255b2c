#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Tests of the command line itself: help, arguments that are wrong, and how output files are written."""

import os
import stat
import unittest

from support import AppTest, SQUARE, svg


class BadCommandLines(AppTest):
    def setUp(self):
        super().setUp()
        self.file = self.write("in.svg", SQUARE)
        self.out = self.path("out.svg")

    def test_wrong_usage_is_named(self):
        self.fails(names=["subcommand"])
        self.fails("frobnicate", names=["'frobnicate'"])
        self.fails("--frob", names=["'--frob'"])
        self.fails("measure", names=["measure", "FILE"])
        self.fails("measure", self.file, "--frob", names=["measure", "'--frob'"])
        self.fails("point", self.file, names=["--at"])
        self.fails("cut", self.file, "extra", "--from", "0", "--to", "1", "-o", self.out,
                   names=["'extra'"])
        self.fails("cut", self.file, "--from", "0", "--to", "1", names=["--output"])
        self.fails("point", self.file, "--at", names=["--at"])

    def test_help_names_every_option(self):
        self.assertIn("measure", self.run_text("--help"))
        for command in ("measure", "point", "nearest", "hit", "flatten", "cut", "transform",
                        "hatch", "text"):
            text = self.run_text(command, "--help")
            self.assertIn("Example: trammel " + command, text)
        self.assertRegex(self.run_text("--version"), r"^trammel \d+\.\d+\.\d+\n$")

    def test_an_option_given_twice_is_told(self):
        for option in ("--tolerance", "-o"):
            self.fails("overlap", "x.svg", "-o", self.path("o.svg"), option, "1", option, "2",
                       names=["overlap: ", "may be given only once (see"])

    def test_names_of_files_may_be_in_capitals(self):
        for name, begin in (("A.SVG", b"<svg"), ("A.SvgZ", b"\x1f\x8b"), ("A.PNG", b"\x89PNG")):
            self.run_text("shape", "circle", "5,5,4", "-o", self.path(name))
            self.assertEqual(self.read(name)[:len(begin)], begin)

    def test_help_is_a_command(self):
        self.assertEqual(self.run_text("help"), self.run_text("--help"))
        self.assertEqual(self.run_text("help", "measure"), self.run_text("measure", "--help"))
        self.fails("help", "mesure", names=["'mesure'", "did you mean 'measure'?"])

    def test_misspelt_words_get_a_suggestion(self):
        for word, meant in (("mesure", "measure"), ("naerest", "nearest"), ("flaten", "flatten")):
            self.fails(word, names=[f"'{word}'", f"did you mean '{meant}'?"])
        self.fails("measure", self.file, "--jason", names=["'--jason'", "'--json'"])
        self.fails("hit", self.file, "--at", "1,1", "--tolerence=3", names=["'--tolerance'"])
        self.assertNotIn("did you mean", self.fails("frobnicate"))
        self.assertNotIn("did you mean", self.fails("measure", self.file, "--xyz"))

    def test_numbers_must_be_numbers(self):
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

    def test_numbers_must_be_in_range(self):
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

    def test_an_unknown_id_is_named(self):
        self.fails("measure", self.file, "--id", "nix", names=[self.file, "'nix'"])

    def test_an_unwritable_output_is_named(self):
        def fails(output, *names):
            self.fails("flatten", self.file, "--error", "1", "-o", output, names=names)
        fails(self.path("no/folder/out.svg"), "no/folder/out.svg", "No such file")
        fails(self.folder, self.folder)
        os.mkdir(self.path("folder.svg"))
        fails(self.path("folder.svg"), "folder.svg", "is a folder")
        fails(self.path("out.gif"), "out.gif", ".svg, .svgz or .png")
        os.symlink("/dev/full", self.path("full.svg"))
        fails(self.path("full.svg"), "full.svg", "No space left")
        self.assertTrue(os.path.islink(self.path("full.svg")))
        self.assertTrue(stat.S_ISCHR(os.stat("/dev/full").st_mode))

    def test_a_failure_leaves_the_old_output(self):
        self.write("out.svg", "precious")
        self.fails("flatten", self.path("missing.svg"), "--error", "1", "-o", self.out,
                   output="out.svg")
        # Neither of two outputs is written when one of them cannot be.
        self.fails("cut", self.file, "--from", "0", "--to", "0.5", "-o", self.out, "--rest",
                   self.path("no/rest.svg"), output="out.svg", names=["no/rest.svg"])
        self.fails("cut", self.file, "--from", "0", "--to", "0.5", "-o", self.out, "--rest",
                   self.out, output="out.svg", names=["two outputs"])

    def test_output_may_replace_its_input_through_a_link(self):
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

    def test_a_full_standard_output_is_an_error(self):
        with open("/dev/full", "wb") as full:
            result = self.execute("measure", self.file, stdout=full)
        self.assertEqual(result.returncode, 2)
        self.assertEqual(result.stderr.count(b"\n"), 1)
        self.assertIn(b"standard output", result.stderr)


if __name__ == "__main__":
    unittest.main()
