#!/usr/bin/env python3
"""Works windows by scripts of events, and compares what comes out with the files beside them.

    run_events.py --program TORVELHOST [--emulator COMMAND ...] [--on-screen] [--update] CASE.ev...

A case is a script of events, CASE.ev. Comment lines of the form "; word: value" at its head say what else belongs to it:

    ; drawing: plan.dxf        the drawing to open; without it a new one
    ; options: --set A=1       more options for the program
    ; files: a.txt b.sld       files to lie in the folder that the window runs in

What must come out:

    CASE.scr                   what was recorded, but for its comment
    CASE.err                   each line is part of standard error, in this order
    CASE.status                the exit status (0 without it); with 2 there is no drawing
    CASE.check.py              check(case): asserts what it likes about case.before and case.after (drawings, see
                               dxf_groups.py), case.output, case.errors, case.folder and case.picture("a.png"), rows of pixels

The script that was recorded, run by -s, must give the same drawing to the byte, with status 0 or 1 as the window.
With --on-screen the events work a real window and real dialogs, of which the same must come out.
--update writes CASE.scr anew, to be looked over before it is kept.
"""

import argparse
import importlib.util
import os
import pathlib
import shlex
import shutil
import subprocess
import sys
import tempfile
import types

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent))
import dxf_groups  # noqa: E402
import png_file  # noqa: E402
from run_case import Failure, directives, said  # noqa: E402

TIME_LIMIT = 120


def lines_of(path, folder):
    """The lines but comments; file dialogs give whole paths, of which the folder of the run is left out, as Wine sees it
    too."""
    folders = [str(folder) + os.sep, "Z:" + str(folder).replace("/", "\\") + "\\"]
    lines = [line for line in path.read_text(encoding="utf-8").splitlines() if not line.startswith(";")]
    for own in folders:
        lines = [line.replace(own, "") for line in lines]
    return [line.replace("nowhere\\", "nowhere/") for line in lines]  # the folder that no case has


def run(command, folder):
    done = subprocess.run(command, cwd=folder, capture_output=True, timeout=TIME_LIMIT)
    text = lambda data: data.decode("utf-8", "replace").replace("\r\n", "\n")
    return done.returncode, text(done.stdout), text(done.stderr)


def run_window(events, program, on_screen, update):
    said = directives(events)
    beside = lambda suffix: events.with_suffix(suffix)
    wanted_status = int(beside(".status").read_text()) if beside(".status").exists() else 0
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        for file in shlex.split(said.get("files", "")):
            shutil.copy(events.parent / file, folder)
        drawing = (events.parent / said["drawing"]).resolve() if "drawing" in said else None
        own = folder / drawing.name if drawing else None
        if drawing:
            shutil.copyfile(drawing, own)
        base = [*program, *([drawing.name] if drawing else []), "--profile", "settings.ini",
                *shlex.split(said.get("options", ""))]
        status, output, errors = run(
            [*base, *(["--view"] if on_screen else []), "--events", str(events.resolve()), "--record", "recorded.scr", "-o", "out.dxf"], folder)
        if status != wanted_status:
            raise Failure(f"the status is {status} instead of {wanted_status}:\n{errors}")
        if beside(".err").exists():
            at = 0
            for line in beside(".err").read_text(encoding="utf-8").splitlines():
                at = errors.find(line, at)
                if at < 0:
                    raise Failure(f"standard error lacks, or has before what stands above it, \"{line}\":\n{errors}")
        if status == 2:
            if (folder / "out.dxf").exists():
                raise Failure("a drawing was saved")
            return
        recorded = lines_of(folder / "recorded.scr", folder)
        if update:
            beside(".scr").write_text("".join(line + "\n" for line in recorded), encoding="utf-8", newline="\n")
        expected = lines_of(beside(".scr"), folder)
        if recorded != expected:
            raise Failure("recorded was:\n" + "\n".join(recorded) + "\ninstead of:\n" + "\n".join(expected))
        if drawing:
            shutil.copyfile(drawing, own)  # a command may have saved it
        (folder / "settings.ini").unlink(missing_ok=True)
        again, _, told = run([*base, "-q", "-s", "recorded.scr", "-o", "again.dxf"], folder)
        if again != status:
            raise Failure(f"the recording, run as a script, ends with status {again} instead of {status}:\n{told}")
        if (folder / "out.dxf").read_bytes() != (folder / "again.dxf").read_bytes():
            raise Failure("the recording, run as a script, gives another drawing")
        if beside(".check.py").exists():
            case = types.SimpleNamespace(
                before=dxf_groups.read(drawing) if drawing else None, after=dxf_groups.read(folder / "out.dxf"),
                output=output, errors=errors, folder=folder, picture=lambda file: png_file.read(folder / file))
            loader = importlib.util.spec_from_file_location("case_check", beside(".check.py"))
            module = importlib.util.module_from_spec(loader)
            loader.loader.exec_module(module)
            module.check(case)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--emulator", default="")
    parser.add_argument("--on-screen", action="store_true")
    parser.add_argument("--update", action="store_true")
    parser.add_argument("events", nargs="+", type=pathlib.Path)
    arguments = parser.parse_args()
    program = [*[part for part in arguments.emulator.split(";") if part], str(pathlib.Path(arguments.program).resolve())]
    failed = 0
    for events in arguments.events:
        try:
            run_window(events, program, arguments.on_screen, arguments.update)
        except (Failure, AssertionError, OSError, subprocess.TimeoutExpired) as problem:
            failed += 1
            print(f"{events.name}: {said(problem) if isinstance(problem, AssertionError) else problem}")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
