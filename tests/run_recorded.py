#!/usr/bin/env python3
"""Runs scripts with dialogs, and once more with the lines that were recorded of the dialogs in the place of their own.

    run_recorded.py --program TORVELHOST --recorder LIBRARY [--option OPTION] CASE.scr...

Both runs must print the same, but for the lines themselves, and leave the same files; and a screen reader must get a name
of every control that can have the focus. Options are for the first run alone: windows are
recorded, and forms replay. Cases are those of run_case.py; one whose run breaks off is left out.
"""

import argparse
import difflib
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile

import run_case


def run(script, text, program, options, environment, folder):
    """Status, output, what was printed beside prompts, and the files left."""
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir()
    words = run_case.directives(script)
    drawing = script.parent / words["drawing"] if "drawing" in words else script.with_suffix(".dxf")
    (folder / script.name).write_text(text, encoding="utf-8")
    for name in words.get("files", "").split():
        shutil.copy(script.parent / name, folder)
    arguments = [program, "--profile", "profile.ini"] + options + shlex.split(words.get("options", ""))
    arguments += ["-s", script.name, "-o", "out.dxf"]
    if drawing.exists():
        shutil.copy(drawing, folder)
        arguments.append(drawing.name)
    result = subprocess.run(arguments, cwd=folder, env=environment, stdin=subprocess.DEVNULL, capture_output=True,
                            timeout=run_case.TIME_LIMIT)
    files = {}
    for path in folder.rglob("*"):
        # Windows have another size than forms, and the profile keeps where they were.
        if path.is_file() and path.name != script.name and path.suffix != ".ini":
            stamps = rb"(?m)^ *9\r?\n\$TD\w+\r?\n *40\r?\n.*$" if path.suffix == ".dxf" else rb"$^"
            files[path.name] = re.sub(stamps, b"", path.read_bytes())
    printed = [line for line in result.stderr.decode("utf-8", "replace").splitlines()
               if not re.match(r"[^\[\]]*[:>]( |$)", line)]
    return result.returncode, result.stdout, printed, files


def recorded_script(script, notes):
    """The script with the recorded lines in the place of those that dialogs took."""
    lines, made = script.read_text(encoding="utf-8").split("\n"), []
    for note in notes.splitlines():
        kind, line = note.split(" ", 1)
        if kind == "recorded":
            made.append(line)
            continue
        if kind == "nameless":
            raise run_case.Failure(f"without a name for screen readers: {line}")
        taken = lines.index(line)
        made += lines[:taken] + ([line] if kind == "asked" else [])
        del lines[:taken + 1]
    return "\n".join(made + lines)


def check(script, program, recorder, options, folder):
    """Whether something was recorded."""
    notes = folder.parent / "notes"
    notes.write_text("")
    recording = dict(os.environ, LD_PRELOAD=recorder, RECORDED_LINES=str(notes))
    before = run(script, script.read_text(encoding="utf-8"), program, options, recording, folder)
    if before[0] >= 2:
        return False
    noted = notes.read_text(encoding="utf-8")
    text = recorded_script(script, noted)
    after = run(script, text, program, [], os.environ, folder)
    for what, a, b in zip(("status", "output", "messages", "files"), before, after):
        if a == b:
            continue
        if what == "messages":
            b = "\n".join(difflib.unified_diff(a, b, lineterm="", n=0))
        raise run_case.Failure(f"other {what}: {b}\n--- replayed\n{text}")
    return "recorded " in noted


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--recorder", required=True)
    parser.add_argument("--option", action="append", default=[])
    parser.add_argument("cases", nargs="+", type=pathlib.Path)
    arguments = parser.parse_args()
    failed = recorded = 0
    for script in arguments.cases:
        with tempfile.TemporaryDirectory() as folder:
            try:
                recorded += check(script, arguments.program, arguments.recorder, arguments.option,
                                  pathlib.Path(folder) / "run")
            except (run_case.Failure, ValueError) as failure:
                failed += 1
                print(f"{script.name}: {failure}")
    if not recorded:
        print("nothing was recorded")
    return 0 if recorded and not failed else 1


if __name__ == "__main__":
    sys.exit(main())
