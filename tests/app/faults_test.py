#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Tests that a write which fails costs one line: the old file is whole, and nothing else is left. Each
command that writes is tried with a disk that is full after some bytes, with pipes that are closed, and
with folders that are gone or closed to it."""

import os
import re
import resource
import subprocess
import unittest

from support import AppTest, PROGRAM, font_bytes, svg

NOBODY = 65534


class Faults(AppTest):
    def setUp(self):
        super().setUp()
        self.file = self.write("in.svg", svg(
            '<rect id="r" width="30" height="20"/><circle id="c" cx="30" cy="20" r="9"/>'
            '<path id="l" fill="none" stroke="red" d="M0 0C9 9 18 9 27 0"/>'))
        self.font = self.write("font.ttf", font_bytes())
        self.out = self.path("out.svg")
        a, b = self.file, self.font
        self.writers = {
            "combine": ["union", a, a],
            "cut": [a, "--from", "0", "--to", "0.5"],
            "divide": [a],
            "fit": [a],
            "flatten": [a, "--error", "1"],
            "hatch": [a, "--angle", "0", "--spacing", "5"],
            "offset": [a, "--by", "1"],
            "overlap": [a],
            "polygons": [a, "--describe"],
            "reverse": [a],
            "shape": ["circle", "5,5,4"],
            "simplify": [a],
            "stroke": [a],
            "text": [b, "AB", "--along", a, "--id", "l"],
            "transform": [a, "--scale", "2"],
        }
        self.printers = {
            "area": [a],
            "help": [],
            "hit": [a, "--at", "1,1"],
            "intersect": [a],
            "measure": [a],
            "nearest": [a, "--to", "1,1"],
            "point": [a, "--at", "0"],
            "combine": ["union", a, a, "--json"],
            "polygons": [a, "--describe"],
        }

    def listing(self):
        return {name: self.read(name) for name in os.listdir(self.folder)
                if os.path.isfile(self.path(name))}

    def check(self, *command, **options):
        """Runs a command whose output fails: status 2, one line, the folder as before."""
        before = self.listing()
        options.setdefault("cwd", self.folder)
        options.setdefault("stdout", subprocess.PIPE)
        result = subprocess.run([PROGRAM, *command], stderr=subprocess.PIPE, check=False,
                                timeout=300, **options)
        message = result.stderr.decode()
        self.assertEqual((result.returncode, message.count("\n")), (2, 1), (command, message))
        self.assertRegex(message, "^trammel: .*(cannot be written|No such file)")
        self.assertEqual(self.listing(), before, command)
        return message

    def limited(self, size, *command):
        """Does the same with a disk that takes so many bytes of each file."""
        self.check(*command, preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE,
                                                                   (size, size)))

    def test_all_commands_that_write_are_tried(self):
        text = self.run_text("--help").split("Subcommands:")[1]
        commands = re.findall(r"^  (\w+)", text, re.M)
        writers = [name for name in commands if "--output" in self.run_text(name, "--help")]
        self.assertEqual(sorted(writers), sorted([*self.writers, "gallery"]))
        self.assertEqual(set(commands), {*self.writers, *self.printers, "gallery"})

    def test_a_full_disk_leaves_the_old_file(self):
        for name, arguments in self.writers.items():
            with self.subTest(name):
                self.run_text(name, *arguments, "-o", self.out, "-q")
                size = len(self.read("out.svg"))
                for old in ("precious", None):
                    for limit in (0, size - 1) if old else (1,):
                        if old:
                            self.write("out.svg", old)
                        else:
                            os.remove(self.out)
                        self.limited(limit, name, *arguments, "-o", self.out, "-q")

    def test_a_disk_may_be_full_after_any_byte(self):
        for name in ("out.svg", "out.svgz", "out.png"):
            out = self.path(name)
            self.run_text("reverse", self.file, "-o", out)
            size = len(self.read(name))
            self.write(name, "precious")
            for limit in range(0, size, max(size // 16, 1)):
                self.limited(limit, "reverse", self.file, "-o", out)

    def test_of_two_outputs_neither_changes(self):
        rest = self.write("rest.svg", "mine")
        self.write("out.svg", "precious")
        cut = ["cut", self.file, "--from", "0", "--to", "0.5"]
        for limit in (0, 100):
            self.limited(limit, *cut, "-o", self.out, "--rest", rest)
        os.symlink("/dev/full", self.path("full.svg"))
        self.check(*cut, "-o", self.out, "--rest", self.path("full.svg"))
        self.check(*cut, "-o", self.path("full.svg"), "--rest", rest)
        with open("/dev/full", "wb") as full:
            self.check(*cut, "-o", self.out, "--rest", "-", stdout=full)
            self.check("combine", "union", self.file, self.file, "-o", self.out, "--json",
                       stdout=full)
            self.check("polygons", self.file, "--describe", "-o", self.out, stdout=full)

    def test_of_two_outputs_neither_changes_when_the_second_cannot_be_moved(self):
        # In a sticky folder a file of another user can be written, but not replaced.
        def leave():
            if os.geteuid() == 0:
                os.setuid(NOBODY)
        if os.geteuid() != 0:
            self.skipTest("files of another user take root")
        os.chmod(self.folder, 0o777)
        sticky = self.path("sticky")
        os.mkdir(sticky)
        rest = os.path.join(sticky, "rest.svg")
        with open(rest, "wb") as file:
            file.write(b"mine")
        os.chmod(rest, 0o666)
        os.chmod(sticky, 0o1777)
        try:
            subprocess.run([PROGRAM, "measure", self.file], stdout=subprocess.DEVNULL, check=True,
                           cwd=self.folder, preexec_fn=leave)
        except (OSError, subprocess.SubprocessError):
            self.skipTest("nobody may run the program")
        cut = ["cut", self.file, "--from", "0", "--to", "0.5", "-o", self.out, "--rest", rest]
        for old in (b"precious", None):
            if old:
                self.write("out.svg", old)
                os.chmod(self.out, 0o666)
            elif os.path.exists(self.out):
                os.remove(self.out)
            self.assertIn("rest.svg", self.check(*cut, preexec_fn=leave))
            self.assertEqual(os.listdir(sticky), ["rest.svg"])
            with open(rest, "rb") as file:
                self.assertEqual(file.read(), b"mine")

    def test_standard_output_may_be_full_or_closed(self):
        commands = [[name, *arguments, "-q", "-o", "-"] for name, arguments in self.writers.items()
                    if name != "polygons"]
        commands += [[name, *arguments] for name, arguments in self.printers.items()]
        for command in commands:
            with self.subTest(command[0]):
                reading, writing = os.pipe()
                os.close(reading)
                with open(writing, "wb") as closed, open("/dev/full", "wb") as full:
                    self.assertIn("Broken pipe", self.check(*command, stdout=closed))
                    self.assertIn("No space left", self.check(*command, stdout=full))

    def test_a_folder_may_be_gone(self):
        gone = self.path("gone")
        for name, arguments in self.writers.items():
            with self.subTest(name):
                os.mkdir(gone)
                self.check(name, *arguments, "-q", "-o", "out.svg", cwd=gone,
                           preexec_fn=lambda: os.rmdir(gone))

    def test_a_folder_may_be_closed(self):
        def leave():
            if os.geteuid() == 0:
                os.setuid(NOBODY)
        os.chmod(self.folder, 0o755)
        closed = self.path("closed")
        os.mkdir(closed, 0o755)
        old = os.path.join(closed, "out.svg")
        with open(old, "wb") as file:
            file.write(b"precious")
        os.chmod(old, 0o666)
        os.chmod(closed, 0o555)
        try:
            subprocess.run([PROGRAM, "measure", self.file], stdout=subprocess.DEVNULL, check=True,
                           cwd=self.folder, preexec_fn=leave)
        except (OSError, subprocess.SubprocessError):
            self.skipTest("nobody may run the program")
        for name, arguments in self.writers.items():
            with self.subTest(name):
                self.check(name, *arguments, "-q", "-o", old, preexec_fn=leave)
                self.assertEqual(os.listdir(closed), ["out.svg"])
                with open(old, "rb") as file:
                    self.assertEqual(file.read(), b"precious")


if __name__ == "__main__":
    unittest.main()
