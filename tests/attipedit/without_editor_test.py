#!/usr/bin/env python3
"""Without the text editor module nothing changes: every byte of the drawing stays, and a run says so by its status."""

import argparse
import pathlib
import shutil
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
CASES = [("attsync/plan.dxf", "DBLCLICK #82"), ("attsync/plan.dxf", "DBLCLICK #87"), ("attsync/plan.dxf", "#82|ATTIPedit"),
         ("burst/multi_line.dxf", "DBLCLICK #34|press Default|press OK"),
         ("burst/multi_line.dxf", "Attdef|check Multiple lines|press Default|show|press Cancel")]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", type=pathlib.Path, required=True)
    parser.add_argument("--emulator", default="")
    parser.add_argument("--editor", required=True, help="the file name of the module that is left out")
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        bin_folder = pathlib.Path(folder) / "bin"
        bin_folder.mkdir()
        for file in arguments.program.parent.iterdir():
            if file.is_file() and file.name != arguments.editor and (
                    file == arguments.program or file.suffix in (".so", ".dll") or ".so." in file.name):
                shutil.copy(file, bin_folder)
        command = [word for word in arguments.emulator.split(";") if word] + [str(bin_folder / arguments.program.name)]
        failed = False
        for drawing, lines in CASES:
            before = HERE.parent / drawing
            after = pathlib.Path(folder) / "out.dxf"
            result = subprocess.run(command + ["--profile", "profile.ini", str(before), "-c", lines, "-o", after.name],
                                    cwd=folder, capture_output=True, timeout=120)
            # OK of a dialog whose editor is missing is an OK all the same.
            expected = 0 if "OK" in lines else 1
            if result.returncode != expected or after.read_bytes() != before.read_bytes():
                failed = True
                print(f"{drawing}: {lines}: status {result.returncode} instead of {expected}, or bytes that differ\n"
                      + result.stderr.decode("utf-8", "replace"))
        return failed


if __name__ == "__main__":
    sys.exit(main())
