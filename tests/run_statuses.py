#!/usr/bin/env python3
"""Runs a table of short scripts through torvelhost and compares their exit statuses.

    run_statuses.py --program TORVELHOST [--emulator COMMAND ...] TABLE

A script's status is the worst of its commands', so each way out of a command has a script of its own here. In the table
"; drawing: FILE" names the drawing that every script gets (a new one without it), and other comments begin with ";" too. A
row is the status, the replies as for --command, and behind " ; " why it is so:

    1  XLINE|Offset|2|#100||        ; Enter is no side
"""

import argparse
import pathlib
import re
import subprocess
import sys
import tempfile

TIME_LIMIT = 120  # seconds, for one run of the program


def rows(table):
    drawing, found = None, []
    for number, line in enumerate(table.read_text(encoding="utf-8").splitlines(), 1):
        named = re.match(r";\s*drawing\s*:\s*(\S+)\s*$", line)
        if named:
            drawing = table.parent / named[1]
        elif line.strip() and not line.startswith(";"):
            status, _, replies = line.split(" ; ")[0].rstrip().partition("  ")
            found.append((number, int(status), replies.strip()))
    return drawing, found


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--program", required=True)
    parser.add_argument("--emulator", default="", help="words that go before the program, separated by ;")
    parser.add_argument("table", type=pathlib.Path)
    arguments = parser.parse_args()
    command = [word for word in arguments.emulator.split(";") if word] + [arguments.program]

    drawing, found = rows(arguments.table.resolve())
    wrong = 0
    with tempfile.TemporaryDirectory() as folder:
        for number, status, replies in found:
            words = command + ["--profile", "profile.ini", "-c", replies] + ([str(drawing)] if drawing else [])
            result = subprocess.run(words, cwd=folder, stdin=subprocess.DEVNULL, capture_output=True, timeout=TIME_LIMIT)
            if result.returncode != status:
                wrong += 1
                print(f"{arguments.table}:{number}: {replies}: exit status {result.returncode} instead of {status}\n"
                      f"--- standard error\n{result.stderr.decode('utf-8', 'replace')}---", flush=True)
    print(f"{len(found) - wrong} of {len(found)} statuses as expected")
    return 1 if wrong or not found else 0


if __name__ == "__main__":
    sys.exit(main())
