#!/usr/bin/env python3
"""Checks that clang-tidy finds nothing in the program's sources.

    check_tidy.py CLANG_TIDY BUILD_DIR SOURCE_DIR [--all] [--jobs N]

Looks at the sources that changed since they were last found clean, and for a changed header at one source that includes it.
What is committed counts as clean before the first run. With --all, and where CI is set, it looks at every source, which
takes some forty minutes of a processor. What is clean is remembered in BUILD_DIR/tidy/clean.json.
"""

import argparse
import concurrent.futures
import json
import os
import pathlib
import re
import subprocess
import sys

ROOMS = "base drawingdb dialogs hostapi torvelcmd2 torvelhost".split()


def git(root, *arguments, lines=""):
    return subprocess.run(["git", "-C", str(root), *arguments], input=lines, capture_output=True, text=True, check=True).stdout


def contents(root, files):
    """The hash of each file as it is."""
    return dict(zip(files, git(root, "hash-object", "--stdin-paths", lines="\n".join(files)).split()))


def committed(root):
    tree = (line.split("\t") for line in git(root, "ls-tree", "-r", "HEAD", "--", *ROOMS, ".clang-tidy").splitlines())
    return {name: entry.split()[2] for entry, name in tree}


def program_commands(build, root):
    """The command that compiles each source into the program; a test may compile it once more, with its own header."""
    commands = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        name = os.path.relpath(entry["file"], root)
        room = name.split("/")[0]
        if room in ROOMS and f" -o {room}/" in entry["command"]:
            # The compiled header is the other compiler's.
            entry["command"] = re.sub(r"-Winvalid-pch -include \S+", "", entry["command"])
            commands[name] = entry
    folder = build / "tidy"
    folder.mkdir(exist_ok=True)
    (folder / "compile_commands.json").write_text(json.dumps(list(commands.values())))
    return commands


def includer(root, header, sources):
    """The source that a header is looked at in: its own, or else the first that includes it."""
    stem = pathlib.PurePath(header).with_suffix("")
    own = [s for s in sources if pathlib.PurePath(s).with_suffix("") == stem]
    # Headers of the database's public folder are included from there.
    name = header.removeprefix("drawingdb/include/")
    line = f'#include "{name}"'
    return own or [s for s in sources if line in (root / s).read_text(encoding="utf-8")][:1]


def look(clang_tidy, build, root, source):
    """What clang-tidy says of one source, without its notes on how much it left out."""
    result = subprocess.run([clang_tidy, "-p", str(build / "tidy"), "--quiet", "--warnings-as-errors=*", str(root / source)],
                            capture_output=True, text=True)
    if result.returncode == 0 and "warning:" not in result.stdout:
        return ""
    return result.stdout or result.stderr


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("clang_tidy")
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("root", type=pathlib.Path)
    parser.add_argument("--all", action="store_true", help="look at every source")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    arguments = parser.parse_args()
    root, build = arguments.root.resolve(), arguments.build.resolve()

    commands = program_commands(build, root)
    sources = sorted(commands)
    headers = sorted(str(p.relative_to(root)) for room in ROOMS for p in (root / room).rglob("*.h"))
    memory = build / "tidy" / "clean.json"
    try:
        now = contents(root, sources + headers + [".clang-tidy"])
        clean = json.loads(memory.read_text()) if memory.exists() else committed(root)
    except (OSError, subprocess.CalledProcessError):
        now, clean = dict.fromkeys(sources + headers), {}  # no repository: nothing is known to be clean
    changed = {name for name, content in now.items() if clean.get(name) != content or content is None}
    everything = arguments.all or "CI" in os.environ or ".clang-tidy" in changed or not clean
    homes = {header: includer(root, header, sources) for header in headers if header in changed}
    chosen = sources if everything else sorted((changed & set(sources)).union(*homes.values()))

    said, dirty = set(), set()
    with concurrent.futures.ThreadPoolExecutor(arguments.jobs) as pool:
        for source, text in zip(chosen, pool.map(lambda s: look(arguments.clang_tidy, build, root, s), chosen)):
            if not text:
                continue
            dirty.add(source)
            # One finding of a header comes with every source that includes it.
            for finding in re.split(r"^(?=/\S+:\d+:\d+: (?:warning|error))", text, flags=re.MULTILINE):
                if finding.strip() and finding not in said:
                    said.add(finding)
                    print(finding.replace(f"{root}/", ""), end="", flush=True)

    looked = set(chosen) - dirty
    kept = {name: now[name] for name in now if name not in changed or name in looked
            or (name in homes and not dirty.intersection(homes[name])) or (name == ".clang-tidy" and not dirty)}
    if None not in kept.values():
        memory.write_text(json.dumps(kept))
    print(f"{len(looked)} of {len(chosen)} sources looked at are clean"
          + (f"; not: {', '.join(sorted(dirty))}" if dirty else ""))
    return 1 if dirty else 0


if __name__ == "__main__":
    sys.exit(main())
