#!/usr/bin/env python3
"""One window that opens, edits and saves drawings over and over does not grow, and leaves nothing behind.

    many_drawings_test.py --program TORVELHOST
"""

import argparse
import os
import pathlib
import subprocess
import sys
import tempfile

EDIT = """drop {name}
menu Draw/Ray
click ={x},1
click ={x},2
key Enter
expect title *{name}
menu File/Save
expect title {name}
"""


def check(condition, text):
    if not condition:
        sys.exit(text)


def kilobytes(program, folder, rounds):
    """The most memory that so many rounds take."""
    names = ["a.dxf", "b.dxf"]
    for name in names:
        subprocess.run([program, "-q", "-c", "", "-o", folder / name], check=True)
    (folder / "work.ev").write_text("".join(EDIT.format(name=names[i % 2], x=i % 7) for i in range(rounds)))
    process = subprocess.Popen([program, "-q", "--profile", "profile.ini", "--events", "work.ev"], cwd=folder)
    _, status, usage = os.wait4(process.pid, 0)
    check(status == 0, f"exit status {os.waitstatus_to_exitcode(status)}")
    for name in names:
        rays = (folder / name).read_text().count("\nRAY\n")
        check(rays == rounds // 2, f"{name} has {rays} rays after {rounds} rounds")
    left = {path.name for path in folder.iterdir()} - {*names, "work.ev", "profile.ini"}
    check(not left, f"left behind: {left}")
    return usage.ru_maxrss


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True, type=pathlib.Path)
    program = parser.parse_args().program
    with tempfile.TemporaryDirectory() as folder:
        few, many = (kilobytes(program, pathlib.Path(folder), rounds) for rounds in (20, 100))
    check(many < 1.1 * few, f"{few} kB after 20 rounds, {many} kB after 100")


main()
