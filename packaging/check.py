#!/usr/bin/env python3
"""Tries packages where no build is: unpacked in folders with blanks and letters of other alphabets, read-only.

    check.py FOLDER [--emulator COMMAND;...]                        checks every package in it: .deb, .tar.gz, .zip
    check.py --make BUILD --generators GENERATORS [--emulator ...]  makes those of a build first, in a folder for the time

All of them must make the same drawing. Programs for Windows are run by the emulator's words.
"""

import argparse
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
PLAN = ROOT / "examples" / "parts_list" / "plan.dxf"


def run(*words, expect=0, **options):
    result = subprocess.run([str(word) for word in words], capture_output=True, text=True, stdin=subprocess.DEVNULL,
                            timeout=600, **options)
    if result.returncode != expect:
        sys.exit(f"{words}: status {result.returncode}, not {expect}\n{result.stdout}{result.stderr}")
    return result.stdout + result.stderr


def sync(work, words):
    """The drawing that the program makes of the plan."""
    out = work / "synced.dxf"
    out.unlink(missing_ok=True)
    run(*words, "--profile", work / "settings.ini", PLAN, "-c", "AttSync|Name|DOOR", "-o", out, cwd=work)
    if out.read_bytes() == PLAN.read_bytes():
        sys.exit(f"{words}: nothing was changed")
    return out.read_bytes()


def field(package, name):
    return run("dpkg-deb", "-f", package, name).strip()


def check_debian(packages, work):
    def package(name):
        found = [p for p in packages if field(p, "Package") == name]
        if len(found) != 1:
            sys.exit(f"{len(found)} packages {name}")
        return found[0]

    program, view, dev = (package("torvelcmd2" + part) for part in ("", "-view", "-dev"))
    if "qt6" in field(program, "Depends") or "qt6" not in field(view, "Depends"):
        sys.exit("the view, and it alone, needs the toolkit")
    root = work / "root Ж"
    run("dpkg-deb", "-x", program, root)
    torvelhost = root / "usr/bin/torvelhost"
    made = sync(work, [torvelhost])
    if "libtorvelqt" not in run(torvelhost, "--windows", "-c", "QUIT", expect=2):
        sys.exit("what is missing for windows is not named")
    page = (root / "usr/share/man/man1/torvelhost.1").read_text()
    for option in run(torvelhost, "--help").split():
        if option.startswith("--") and option.rstrip(",").replace("-", r"\-") not in page:
            sys.exit(f"the manual page lacks {option}")
    run("bash", "-c", f"source '{root}/usr/share/bash-completion/completions/torvelhost'; COMP_WORDS=('{torvelhost}' --scr);"
        " COMP_CWORD=1; _torvelhost; [ \"${COMPREPLY[*]}\" = --script ]")

    run("dpkg-deb", "-x", view, root)
    if "libtorvelqt" in subprocess.run([torvelhost, "--windows", "-c", "QUIT"], capture_output=True, text=True,
                                       env={"QT_QPA_PLATFORM": "offscreen"}, timeout=60).stderr:
        sys.exit("the view is not found")

    run("dpkg-deb", "-x", dev, root)
    build = work / "consumer"
    run("cmake", "-S", ROOT / "packaging" / "consumer", "-B", build, f"-DCMAKE_PREFIX_PATH={root}/usr",
        "-DCMAKE_BUILD_TYPE=Release")
    run("cmake", "--build", build)
    copy = work / "copy.dxf"
    if int(run(build / "count_entities", PLAN, copy)) < 10 or copy.read_bytes() != PLAN.read_bytes():
        sys.exit("the drawing database alone")
    if (loaded := run(build / "load_module")).count("is there") != 3:
        sys.exit(f"the module: {loaded}")
    return made


def unpack(package, work):
    """The only folder in it, which nobody may write to."""
    into = work / "mit Blank und Ж"
    into.mkdir()
    shutil.unpack_archive(package, into)
    (folder,) = into.iterdir()
    run("chmod", "-R", "a-w", folder)
    return folder


def check_tarball(package, work):
    folder = unpack(package, work)
    # Who may write everywhere would not notice that a folder is read-only.
    run("chmod", "a+rwx", work)
    other = ["setpriv", "--reuid=65534", "--clear-groups"] if os.getuid() == 0 else []
    return sync(work, [*other, folder / "bin" / "torvelhost"])


def check_windows(package, work, emulator):
    program = unpack(package, work) / "torvelhost.exe"
    big = [p.name for p in program.parent.glob("*.dll") if p.stat().st_size > 4_000_000]
    if big:
        sys.exit(f"not stripped: {big}")
    return sync(work, [*emulator, program])


def check(folder, emulator):
    made = {}
    for kind, pattern, check_kind in (
            ("Debian", "*.deb", lambda packages, work: check_debian(packages, work)),
            ("tarball", "*.tar.gz", lambda packages, work: check_tarball(packages[-1], work)),
            ("Windows", "*.zip", lambda packages, work: check_windows(packages[-1], work, emulator))):
        packages = sorted(folder.glob(pattern))
        if not packages:
            continue
        with tempfile.TemporaryDirectory() as name:
            made[kind] = check_kind(packages, pathlib.Path(name))
            run("chmod", "-R", "u+w", name)
        print(f"{kind}: {', '.join(p.name for p in packages)}: fit")
    if not made:
        sys.exit(f"there are no packages in {folder}")
    if len(set(made.values())) != 1:
        sys.exit("they make different drawings")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("folder", nargs="?", type=pathlib.Path)
    parser.add_argument("--make", type=pathlib.Path)
    parser.add_argument("--generators")
    parser.add_argument("--emulator", default="")
    arguments = parser.parse_args()
    emulator = [word for word in arguments.emulator.split(";") if word]
    if not arguments.make:
        return check(arguments.folder, emulator)
    with tempfile.TemporaryDirectory() as name:
        run("cpack", "--config", arguments.make / "CPackConfig.cmake", "-G", arguments.generators, "-B", name, cwd=name)
        check(pathlib.Path(name), emulator)


main()
