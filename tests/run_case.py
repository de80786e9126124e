#!/usr/bin/env python3
"""Runs scripts through torvelhost and compares what comes out with the files beside them.

    run_case.py --program TORVELHOST [--emulator COMMAND ...] [--option OPTION] [--audit] [--update] CASE.scr...

A case is a script, CASE.scr. Comment lines of the form "; word: value" at its head say what else belongs to it:

    ; drawing: plan.dxf        the drawing to open; without it CASE.dxf, and without that a new one
    ; options: --set A=1       more options for the program
    ; files: a.txt b.sld       files to lie in the folder that the script runs in
    ; unchanged                the drawing saved is the drawing opened, to the byte
    ; not saved                no -o is given

What must come out, each checked if it is there:

    CASE.out                   standard output, exactly
    CASE.err                   each line is part of standard error, in this order
    CASE.status                the exit status (0 without it)
    CASE.expected.dxf          the drawing saved, but for time stamps, and for reals within 1e-12 of each other
    CASE.check.py              check(case): asserts what it likes about case.before and case.after (drawings, see
                               dxf_groups.py), case.output, case.errors and case.folder

The drawing is saved as out.dxf in a folder of the run's own, and read again there: it must load without new warnings.
With --audit, and where ezdxf is installed, its auditor must find nothing in a changed drawing that it did not find in the
one opened. All builds write the same drawings, so one of them does it. A case that breaks off, whatever the error, counts as
failed, and the others go on.
--update writes CASE.out and CASE.expected.dxf anew where they exist, to be looked over before they are kept.
"""

import argparse
import collections
import contextlib
import importlib.util
import io
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
import traceback
import types

import dxf_groups

TIME_LIMIT = 120  # seconds, for one run of the program
TIME_STAMPS = {"$TDCREATE", "$TDUCREATE", "$TDUPDATE", "$TDUUPDATE", "$TDINDWG", "$TDUSRTIMER"}


class Failure(Exception):
    pass


def directives(script):
    found = {}
    for line in script.read_text(encoding="utf-8").splitlines():
        match = re.match(r";\s*(drawing|options|files)\s*:\s*(.*)$|;\s*(unchanged|not saved)\s*$", line)
        if match:
            found[match[1] or match[3]] = match[2] or ""
        elif not line.startswith(";"):
            break
    return found


def same_drawing(expected, actual):
    """What is different first, or nothing."""
    before, after = dxf_groups.pairs(expected), dxf_groups.pairs(actual)
    variable = ""
    for number, (a, b) in enumerate(zip(before, after)):
        if a.code == 9:
            variable = a.value
        if a == b or (a.code == b.code and variable in TIME_STAMPS and a.code == 40):
            continue
        if a.code == b.code and dxf_groups.is_real(a.code):
            x, y = float(a.value), float(b.value)
            if abs(x - y) <= 1e-12 * max(abs(x), abs(y), 1.0):
                continue
        return f"group {number}: expected {a.code} {a.value!r}, found {b.code} {b.value!r}"
    if len(before) != len(after):
        return f"expected {len(before)} groups, found {len(after)}"
    return None


def audit(path):
    """The auditor's findings as a count of each kind; nothing where ezdxf is not installed."""
    try:
        import ezdxf
        from ezdxf import recover
    except ImportError:
        return None
    with contextlib.redirect_stdout(io.StringIO()), contextlib.redirect_stderr(io.StringIO()):
        try:
            _, auditor = recover.readfile(str(path))
        except (ezdxf.DXFError, OSError) as error:
            return collections.Counter({f"unreadable: {error}": 1})
    # Handles in messages say where, not what.
    return collections.Counter(re.sub(r"#[0-9A-F]+", "#", f"{entry.code} {entry.message.split(':')[0]}")
                               for entry in list(auditor.errors) + list(auditor.fixes))


def run(command, folder):
    try:
        return subprocess.run(command, cwd=folder, stdin=subprocess.DEVNULL, capture_output=True, timeout=TIME_LIMIT)
    except subprocess.TimeoutExpired:
        raise Failure(f"did not end within {TIME_LIMIT} s") from None


def check_text(path, actual):
    expected = path.read_bytes()
    if expected == actual:
        return
    wanted, found = expected.decode("utf-8", "replace"), actual.decode("utf-8", "replace")
    raise Failure(f"standard output is not {path.name}:\n--- expected\n{wanted}--- found\n{found}---")


def run_case(script, command, options, audited, update, folder):
    words = directives(script)
    stem = script.with_suffix("")
    drawing = script.parent / words["drawing"] if "drawing" in words else stem.with_suffix(".dxf")
    if "drawing" in words and not drawing.exists():
        raise Failure(f"{drawing.name} is missing")
    shutil.copy(script, folder)
    for name in words.get("files", "").split():
        shutil.copy(script.parent / name, folder)
    saved = folder / "out.dxf"

    arguments = command + ["--profile", "profile.ini"] + options + shlex.split(words.get("options", "")) + ["-s", script.name]
    if "not saved" not in words:
        arguments += ["-o", saved.name]
    if drawing.exists():
        shutil.copy(drawing, folder)
        arguments.append(drawing.name)
    result = run(arguments, folder)
    errors = result.stderr.decode("utf-8", "replace")

    try:
        status_file = stem.with_suffix(".status")
        status = int(status_file.read_text()) if status_file.exists() else 0
        if result.returncode != status:
            raise Failure(f"exit status {result.returncode} instead of {status}")
        if status >= 2 and saved.exists():
            raise Failure("a drawing was saved although the run failed")
        output_file = stem.with_suffix(".out")
        if update and output_file.exists():
            output_file.write_bytes(result.stdout)
        if output_file.exists():
            check_text(output_file, result.stdout)
        errors_file = stem.with_suffix(".err")
        if errors_file.exists():
            position = 0
            for line in errors_file.read_text(encoding="utf-8").splitlines():
                position = errors.find(line, position)
                if position < 0:
                    raise Failure(f"standard error lacks {line!r}")
                position += len(line)
        if status < 2 and "not saved" not in words:
            check_drawing(stem, words, drawing if drawing.exists() else None, saved, audited, update)
            again = run(command + ["--profile", "profile.ini", "-o", "again.dxf", saved.name], folder)
            if again.returncode != 0 or (folder / "again.dxf").read_bytes() != saved.read_bytes():
                raise Failure("the saved drawing does not load and save unchanged:\n" + again.stderr.decode())
        check_file = stem.with_suffix(".check.py")
        if check_file.exists():
            loader = importlib.util.spec_from_file_location("case_check", check_file)
            module = importlib.util.module_from_spec(loader)
            loader.loader.exec_module(module)
            module.check(types.SimpleNamespace(
                before=dxf_groups.read(drawing) if drawing.exists() else None,
                after=dxf_groups.read(saved) if saved.exists() else None,
                output=result.stdout.decode("utf-8", "replace"), errors=errors, folder=folder))
    except Failure as failure:
        output = result.stdout.decode("utf-8", "replace")
        raise Failure(f"{failure}\n--- standard output\n{output}--- standard error\n{errors}") from None
    except Exception as error:  # an assertion, or whatever else a check stumbles over
        raise Failure(f"the check failed: {said(error)}--- standard error\n{errors}") from None


def said(error):
    """What an error says, and where it was raised."""
    return "".join(traceback.format_tb(error.__traceback__)[-1:] + traceback.format_exception_only(error))


def check_drawing(stem, words, drawing, saved, audited, update):
    if not saved.exists():
        raise Failure("no drawing was saved")
    if "unchanged" in words and saved.read_bytes() != drawing.read_bytes():
        raise Failure(f"the drawing changed: {same_drawing(drawing.read_bytes(), saved.read_bytes()) or 'in spelling'}")
    expected_file = stem.with_suffix(".expected.dxf")
    if update and expected_file.exists():
        shutil.copy(saved, expected_file)
    if expected_file.exists():
        difference = same_drawing(expected_file.read_bytes(), saved.read_bytes())
        if difference:
            raise Failure(f"the drawing is not {expected_file.name}: {difference}")
    unchanged = drawing and saved.read_bytes() == drawing.read_bytes()
    findings = audit(saved) if audited and not unchanged else None
    if findings:
        known = audit(drawing) if drawing else collections.Counter()
        new = findings - known
        if new:
            raise Failure("the auditor finds what it did not find before: " +
                          "; ".join(f"{kind} ({count})" for kind, count in new.items()))


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--program", required=True)
    parser.add_argument("--emulator", default="", help="words that go before the program, separated by ;")
    parser.add_argument("--option", action="append", default=[], help="one more for the program, in every case")
    parser.add_argument("--audit", action="store_true")
    parser.add_argument("--update", action="store_true")
    parser.add_argument("cases", nargs="+", type=pathlib.Path)
    arguments = parser.parse_args()
    command = [word for word in arguments.emulator.split(";") if word] + [arguments.program]

    failed = []
    for script in arguments.cases:
        with tempfile.TemporaryDirectory() as folder:
            try:
                run_case(script.resolve(), command, arguments.option, arguments.audit, arguments.update, pathlib.Path(folder))
            except Exception as error:
                failed.append(script.stem)
                print(f"{script}: {error if isinstance(error, Failure) else said(error)}", flush=True)
    print(f"{len(arguments.cases) - len(failed)} of {len(arguments.cases)} cases as expected"
          + (f"; not: {', '.join(failed)}" if failed else ""))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
