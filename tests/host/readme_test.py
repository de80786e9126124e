#!/usr/bin/env python3
"""What README tells a newcomer to type works as it stands, from the folders that it names.

    readme_test.py --program TORVELHOST [--emulator COMMAND;...]
"""

import argparse
import csv
import pathlib
import shlex
import shutil
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
COMMAND = []


def typed_lines():
    """The indented lines of README as words, comments left out."""
    for line in (ROOT / "README.md").read_text(encoding="utf-8").splitlines():
        if line.startswith("    "):
            yield shlex.split(line, comments=True)


class Readme(unittest.TestCase):
    def test_its_commands_work(self):
        with tempfile.TemporaryDirectory() as name:
            top = folder = pathlib.Path(name)
            shutil.copytree(ROOT / "examples", top / "examples")
            runs = 0
            for words in typed_lines():
                if words[0] == "cd":
                    folder = top / words[1]
                if not words[0].endswith("/torvel"):
                    continue
                self.assertEqual((folder / words[0]).resolve(), (top / "torvel").resolve())
                run = subprocess.run([*COMMAND, *words[1:], "--profile", str(top / "profile.ini")], cwd=folder,
                                     stdin=subprocess.DEVNULL, capture_output=True, timeout=120)
                self.assertEqual(run.returncode, 0, (words, run.stderr.decode(errors="replace")))
                runs += 1
            self.assertGreater(runs, 5)
            # A spreadsheet asks nothing: commas, quotes that begin a field, no blanks around.
            with open(top / "examples" / "parts_list" / "parts.csv", encoding="ascii", newline="") as parts:
                rows = list(csv.reader(parts, strict=True))
            self.assertEqual(rows[0], ["D1", "101x213", "oak", "0", "6.00", "0.30"])
            self.assertEqual(rows[8], ["W4", "120x135", "", "", "9.50", "7.70"])
            self.assertEqual(len(rows), 9)


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--emulator", default="")
    known, rest = parser.parse_known_args()
    COMMAND = [word for word in known.emulator.split(";") if word] + [known.program]
    unittest.main(argv=[__file__] + rest)
