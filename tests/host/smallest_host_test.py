#!/usr/bin/env python3
"""The smallest host makes of a drawing, to the byte, what torvelhost makes of it.

    smallest_host_test.py --smallest SMALLEST_HOST --program TORVELHOST [--emulator COMMAND;...]
"""

import argparse
import pathlib
import subprocess
import sys
import tempfile

DRAWING = pathlib.Path(__file__).resolve().parent.parent / "attsync" / "plan.dxf"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--smallest", required=True)
    parser.add_argument("--program", required=True)
    parser.add_argument("--emulator", default="")
    arguments = parser.parse_args()
    emulator = [word for word in arguments.emulator.split(";") if word]
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)

        def run(program, *words):
            result = subprocess.run([*emulator, program, *words], cwd=folder, stdin=subprocess.DEVNULL,
                                    capture_output=True, timeout=120)
            return result.returncode, result.stdout.decode("utf-8"), result.stderr.decode("utf-8", "replace")

        ours = run(arguments.smallest, str(DRAWING), "ours.dxf", "DOOR")
        if ours[0] != 0 or ours[1] != "ATTSYNC complete.\nopens 90\u00b0\n":
            sys.exit(f"the smallest host: {ours}")
        theirs = run(arguments.program, "--profile", "profile.ini", str(DRAWING),
                     "-c", "Ray|0,0|10,5||AttSync|Name|DOOR", "-o", "theirs.dxf")
        if theirs[0] != 0 or (folder / "ours.dxf").read_bytes() != (folder / "theirs.dxf").read_bytes():
            sys.exit(f"torvelhost makes another drawing: {theirs}")
        # What goes wrong is told, and nothing is saved.
        failed = run(arguments.smallest, str(DRAWING), "failed.dxf", "NO_SUCH_BLOCK")
        if failed[0] != 1 or "AttSync was cancelled" not in failed[2] or (folder / "failed.dxf").exists():
            sys.exit(f"a block that is not there: {failed}")


if __name__ == "__main__":
    main()
