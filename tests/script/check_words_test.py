#!/usr/bin/env python3
# SPDX-License-Identifier: MIT

"""Tests of script/check-words: what it finds in comments, and what it leaves alone."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parent.parent.parent / "script/check-words"

SHORT = "one two three four five six seven eight nine ten"
LONG = " ".join([SHORT, SHORT, SHORT, "eleven"])  # 31 words


class Findings(unittest.TestCase):
    def findings(self, name, text):
        """What the script says of a file: pairs of the line and the complaint."""
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / name
            path.write_text(text, encoding="utf-8")
            done = subprocess.run([sys.executable, SCRIPT, path], capture_output=True, text=True,
                                  check=False)
        self.assertEqual(done.stderr, "")
        lines = done.stdout.splitlines()
        self.assertEqual(lines[-1], f"1 files, {len(lines) - 1} sentences to mend.")
        self.assertEqual(done.returncode, 1 if lines[1:] else 0)
        found = [line.split(f"{name}:", 1)[1].split(": ", 1) for line in lines[:-1]]
        return [(int(number), complaint) for number, complaint in found]

    def lines(self, name, text):
        return [number for number, complaint in self.findings(name, text)]

    def test_a_sentence_of_31_words_is_too_long(self):
        [(line, complaint)] = self.findings("a.cpp", f"// {SHORT}.\n// {LONG}.\n")
        self.assertEqual(line, 2)
        self.assertEqual(complaint, "a sentence of 31 words: one two three four five six ...")

    def test_a_sentence_of_30_words_is_not(self):
        self.assertEqual(self.lines("a.cpp", f"// {SHORT} {SHORT} {SHORT}.\n"), [])

    def test_sentences_go_on_from_line_to_line(self):
        self.assertEqual(self.lines("a.h", f"/// {SHORT}.\n/// {SHORT}\n/// {SHORT} {SHORT} more.\n"), [2])

    def test_an_empty_line_and_a_list_end_a_sentence(self):
        self.assertEqual(self.lines("a.h", f"// {SHORT} {SHORT}\n//\n// {SHORT} {SHORT}\n"), [])
        self.assertEqual(self.lines("a.h", f"// {SHORT}:\n// - {SHORT} {SHORT}\n// - {SHORT}\n"), [])

    def test_numbers_and_symbols_are_no_words(self):
        self.assertEqual(self.lines("a.h", "// " + "1 + 2 = 3 " * 20 + "\n"), [])

    def test_phrases_without_a_noun_are_found_across_lines(self):
        for text in ("all points but\n// for the last", "the sum is that\n// of the parts",
                     "it takes those\n// that fit", "it works all the\n// same",
                     "it is looked\n// at again"):
            self.assertEqual(len(self.lines("a.cpp", f"// So {text}.\n")), 1, text)

    def test_a_noun_is_missed_at_the_start_of_a_sentence_only(self):
        self.assertEqual(self.lines("a.cpp", "// It ends.\n// What is left goes.\n"), [2])
        self.assertEqual(self.lines("a.cpp", "// What is left?\n"), [])

    def test_examples_and_tables_are_not_read(self):
        self.assertEqual(self.lines("a.h", f"// See:\n//\n//     {LONG} but for\n"), [])
        self.assertEqual(self.lines("a.h", f"// name   {LONG} but for\n"), [])

    def test_strings_and_code_are_not_read(self):
        self.assertEqual(self.lines("a.cpp", f'char const* a = "// {LONG} but for";\n'), [])
        self.assertEqual(self.lines("a.cpp", "int n = 1'000; // fine\nchar c = '\"'; // but for\n"), [2])

    def test_comments_of_python_shell_and_cmake_are_read(self):
        self.assertEqual(self.lines("a.py", '"""All but for one."""\n\nx = 1  # those that are\n'), [1, 3])
        self.assertEqual(self.lines("run", "#!/bin/bash\n# All but for one.\necho 1 # fine\n"), [2])
        self.assertEqual(self.lines("CMakeLists.txt", "# All but for one.\nset(a b)\n"), [1])


if __name__ == "__main__":
    unittest.main()
