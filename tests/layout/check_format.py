#!/usr/bin/env python3
"""Checks that clang-format would leave every source as it is.

    check_format.py CLANG_FORMAT SOURCE_DIR
"""

import pathlib
import subprocess
import sys


def main():
    clang_format, root = sys.argv[1], pathlib.Path(sys.argv[2])
    rooms = "base drawingdb dialogs hostapi torvelcmd2 torvelhost tests bench fuzz examples".split()
    files = [path for room in rooms for path in sorted((root / room).rglob("*"))]
    sources = [str(path) for path in files if path.suffix in {".h", ".cpp"}]
    if not sources:
        print("no sources found")
        return 1
    return subprocess.run([clang_format, "--dry-run", "-Werror", "--style=file", *sources], check=False).returncode


if __name__ == "__main__":
    sys.exit(main())
