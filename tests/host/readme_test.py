#!/usr/bin/env python3
"""Every command line of the program in README and docs works as it stands, with what is in examples.

    readme_test.py --program TORVELHOST [--emulator COMMAND;...]

Those of other tools (builds, packages, GNU parallel) have tests of their own. A page says by "cd FOLDER" where its lines are
typed. Lines that open a window for somebody to look at are run by their own tests too.
"""

import argparse
import csv
import os
import pathlib
import shlex
import shutil
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
# Those two only show what commands look like.
PAGES = [ROOT / "README.md", *sorted(page for page in (ROOT / "docs").glob("*.md")
                                     if page.name not in ("architecture.md", "building.md"))]
COMMAND = []


def typed_lines(page):
    """Its indented and fenced lines as words, comments left out."""
    fenced = False
    for line in page.read_text(encoding="utf-8").splitlines():
        if line.lstrip().startswith("```"):
            fenced = not fenced
        elif (fenced or line.startswith("    ")) and not line.endswith("\\"):
            if line.split()[:1] in (["torvelhost"], ["cd"]) or (line.split() or [""])[0].endswith("/torvel"):
                yield shlex.split(line, comments=True)


class Commands(unittest.TestCase):
    def run_page(self, page):
        """In a copy of the examples. How many commands were run."""
        runs = 0
        with tempfile.TemporaryDirectory() as name:
            top = folder = pathlib.Path(name)
            shutil.copytree(ROOT / "examples", top / "examples")
            for words in typed_lines(page):
                if words[0] == "cd":
                    folder = top / words[1]
                    self.assertTrue(folder.is_dir(), words)
                    continue
                if words[0].endswith("/torvel"):
                    self.assertEqual((folder / words[0]).resolve(), (top / "torvel").resolve())
                if "--view" in words or ("--windows" in words and not self.has_windows()):
                    continue
                env = {**os.environ, "QT_QPA_PLATFORM": "offscreen"}
                run = subprocess.run([*COMMAND, "--profile", str(top / "profile.ini"), *words[1:]], cwd=folder, env=env,
                                     stdin=subprocess.DEVNULL, capture_output=True, timeout=120)
                self.assertEqual(run.returncode, 0, (page.name, words, run.stderr.decode(errors="replace")))
                runs += 1
            if page.name == "README.md":
                self.check_list(top / "examples" / "parts_list" / "parts.csv")
        return runs

    @staticmethod
    def has_windows():
        program = pathlib.Path(COMMAND[-1])
        return program.suffix == ".exe" or (program.parent / "libtorvelqt.so").exists()

    def check_list(self, path):
        """A reader of CSV asks nothing: commas, quotes that begin a field, no blanks around."""
        with open(path, encoding="ascii", newline="") as parts:
            rows = list(csv.reader(parts, strict=True))
        self.assertEqual(rows[0], ["D1", "101x213", "oak", "0", "6.00", "0.30"])
        self.assertEqual(rows[8], ["W4", "120x135", "", "", "9.50", "7.70"])
        self.assertEqual(len(rows), 9)

    def test_they_work(self):
        runs = {}
        for page in PAGES:
            with self.subTest(page.name):
                runs[page.name] = self.run_page(page)
        self.assertGreater(min(runs["README.md"], runs["commands.md"]), 8, runs)


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--emulator", default="")
    known, rest = parser.parse_known_args()
    COMMAND = [word for word in known.emulator.split(";") if word] + [known.program]
    unittest.main(argv=[__file__] + rest)
