#!/usr/bin/env python3
"""A save either happened or did not: killed half way, and on a full disk, the target is as it was."""

import argparse
import pathlib
import resource
import signal
import subprocess
import sys
import tempfile
import time


def big_drawing(lines):
    out = ["  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1009\n  0\nENDSEC\n  0\nSECTION\n  2\nENTITIES\n"]
    out += [f"  0\nLINE\n  8\n0\n 10\n{i}.0\n 20\n0.0\n 11\n{i}.0\n 21\n1.0\n" for i in range(lines)]
    return "".join(out) + "  0\nENDSEC\n  0\nEOF\n"


def check(condition, text):
    if not condition:
        sys.exit(text)


def killed_half_way(program, folder):
    source = folder / "big.dxf"
    source.write_text(big_drawing(400000))
    target = folder / "target.dxf"
    whole = source.read_bytes()
    kills = 0
    delay = 0.0
    # Small steps while the save goes on; on a busy machine it comes late.
    while delay < 30:
        delay += max(0.005, 0.1 * delay)
        target.write_text("as it was")
        run = subprocess.Popen([program, source, "-q", "-c", "", "-o", target], stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        time.sleep(delay)
        run.send_signal(signal.SIGKILL)
        kills += run.wait() != 0
        now = target.read_bytes()
        check(now in (b"as it was", whole), f"after a kill at {delay:.3f} s the target has {len(now)} of {len(whole)} bytes")
        if now == whole:
            break
    check(kills > 0, "no run was killed")
    check(target.read_bytes() == whole, "no run ever came to its end")


def full_disk(program, folder):
    source = folder / "small.dxf"
    source.write_text(big_drawing(20000))
    for target in (folder / "there.dxf", source):
        before = target.read_bytes() if target.exists() else None
        names = sorted(p.name for p in folder.iterdir())
        run = subprocess.run([program, source, "-q", "-c", "", "-o", target], stdin=subprocess.DEVNULL, capture_output=True, text=True,
                             preexec_fn=lambda: (signal.signal(signal.SIGXFSZ, signal.SIG_DFL), resource.setrlimit(resource.RLIMIT_FSIZE, (200000, 200000))))
        check(run.returncode == 3, f"exit status {run.returncode} on a full disk")
        check(target.name in run.stderr, f"the message does not name the file: {run.stderr}")
        check((target.read_bytes() if target.exists() else None) == before, f"{target.name} was changed")
        check(sorted(p.name for p in folder.iterdir()) == names, "something was left behind")


def ended_by_a_signal(program, folder):
    """A save that a signal ends leaves the target as it was, and nothing beside it."""
    source = folder / "big.dxf"
    source.write_text(big_drawing(400000))
    target = folder / "target.dxf"
    target.write_text("as it was")
    before = sorted(p.name for p in folder.iterdir())
    for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
        for _ in range(20):  # until a signal comes while there is something beside
            run = subprocess.Popen([program, source, "-q", "-c", "", "-o", target], stdin=subprocess.DEVNULL)
            beside = False
            while run.poll() is None and not beside:
                beside = any(p.name.startswith(".target") for p in folder.iterdir())
            run.send_signal(number)
            status = run.wait()
            check(sorted(p.name for p in folder.iterdir()) == before, f"after signal {number}: {list(folder.iterdir())}")
            if status == -number:
                break
            target.write_text("as it was")
        check(status == -number, f"signal {number} never came in time; status {status}")
        check(target.read_text() == "as it was", "the target was changed")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        killed_half_way(arguments.program, pathlib.Path(folder))
    with tempfile.TemporaryDirectory() as folder:
        full_disk(arguments.program, pathlib.Path(folder))
    with tempfile.TemporaryDirectory() as folder:
        ended_by_a_signal(arguments.program, pathlib.Path(folder))


main()
