#!/usr/bin/env python3
"""Checks that the rooms include only what they may, and that platform differences stay in their files.

    check_layout.py SOURCE_DIR

    torvelhost, torvelcmd2 ---> hostapi, dialogs, drawingdb, base
    dialogs, drawingdb     ---> base
    hostapi                ---> drawingdb (public headers, for their types)

Nobody but drawingdb sees drawingdb/src. Within a room its sub-rooms point down too: SUBROOMS lists them from the bottom
up. Headers that lie in a room itself may be included by all of its sub-rooms.
"""

import pathlib
import re
import sys

ROOMS = {
    "base": set(),
    "drawingdb": {"base"},
    "dialogs": {"base"},
    "hostapi": {"drawingdb"},
    "torvelcmd2": {"hostapi", "dialogs", "drawingdb", "base"},
    "torvelhost": {"hostapi", "dialogs", "drawingdb", "base"},
}
# The sub-rooms of a room from the bottom up; those of one line do not see each other.
SUBROOMS = {
    "drawingdb/src": [["geometry", "file"], ["lettering"], ["core"], ["fields"], ["entities"]],
    "torvelhost": [["resources"], ["lines"], ["plot"], ["session"], ["commands", "modules", "window"], ["program"]],
    "torvelcmd2": [["resources"], ["frame"], ["attributes/values"], ["attributes"],
                   ["attmanager", "construction", "extract/burst", "slides"], ["extract"]],
    "dialogs": [[""], ["forms", "qt", "windows"]],
}
# What points up all the same, and why.
ALLOWED_UP = {
    # The registrations name every command; nothing includes them.
    ("torvelcmd2/frame/registrations.cpp", None),
    # A plot shows what the document's view says.
    ("torvelhost/plot/plot.h", "torvelhost/session/document_view.h"),
}
# Tests, benches, fuzzers and examples may look into every room; their own platform switches are no better, though.
OUTSIDE = ["tests", "bench", "fuzz", "examples"]

# Only the header that declares what drawingdb exports, and its like in dialogs, may ask for the platform.
PLATFORM_HEADERS = re.compile(r"(^|/)api\.h$")
PLATFORM_FILES = re.compile(r"_(windows|posix)(_test)?\.(cpp|h)$|^dialogs/(src/)?windows/")
PLATFORM_CONDITION = re.compile(
    r"^\s*#\s*(if|ifdef|ifndef|elif)\b.*\b(_WIN32|_WIN64|WIN32|__linux__|__unix__|__MINGW\w*)\b")
PLATFORM_HEADER = re.compile(
    r"^<(windows|windowsx|commctrl|richedit|shlobj|shellapi|commdlg|unistd|dlfcn|link|fcntl|termios|sys/\w+)\.h>$")
INCLUDE = re.compile(r'^\s*#\s*include\s+([<"][^>"]+[>"])')


def room_of(name):
    return name.split("/", 1)[0]


def floor_of(room, name):
    """The sub-room of a file, as (floor, sub-room); nothing for one outside of all."""
    inner = name[len(room) + 1:]
    floors = [(floor, sub) for floor, line in enumerate(SUBROOMS[room]) for sub in line
              if inner.startswith(sub + "/") or (not sub and "/" not in inner)]
    return max(floors, key=lambda found: len(found[1]), default=None)


def check_subrooms(name, target):
    for room in SUBROOMS:
        if not (name.startswith(room + "/") and target.startswith(room + "/")):
            continue
        here, there = floor_of(room, name), floor_of(room, target)
        if not here or not there or here[1] == there[1] or here[0] > there[0]:
            return None
        if (name, None) in ALLOWED_UP or (name, target) in ALLOWED_UP:
            return None
        return f"{room}/{here[1]} may not include {room}/{there[1]}"
    return None


def check_include(root, path, included):
    """What is wrong with the include, or nothing."""
    name = path.relative_to(root).as_posix()
    room = room_of(name)
    if included.startswith("<"):
        if PLATFORM_HEADER.match(included) and not PLATFORM_FILES.search(name) and room in ROOMS:
            return f"{included} belongs into a file of one platform (name_posix.cpp, name_windows.cpp)"
        return None
    target = included[1:-1]
    beside = (path.parent / target).resolve()
    if beside.exists() and beside.is_relative_to(root):
        target = beside.relative_to(root).as_posix()
    target_room = room_of(target)
    problem = check_subrooms(name, target)
    if problem:
        return problem
    if room not in ROOMS or target_room not in ROOMS or target_room == room:
        return None
    if target_room not in ROOMS[room]:
        return f"{room} may not include {target_room}"
    if target.startswith("drawingdb/src/"):
        return "the sources of drawingdb are its own"
    return None


def problems(root):
    for room in list(ROOMS) + OUTSIDE:
        for path in sorted((root / room).rglob("*")):
            if path.suffix not in {".h", ".cpp", ".rc"} or not path.is_file():
                continue
            name = path.relative_to(root).as_posix()
            text = path.read_text(encoding="utf-8", errors="replace")
            for number, line in enumerate(text.splitlines(), 1):
                found = INCLUDE.match(line)
                if found:
                    problem = check_include(root, path, found.group(1))
                    if problem:
                        yield f"{name}:{number}: {problem}"
                if PLATFORM_CONDITION.match(line) and not PLATFORM_HEADERS.search(name):
                    yield f"{name}:{number}: a platform condition; make one file per platform behind a header"


def self_check():
    """The rules above must be able to fail: a tree that breaks each of them once."""
    import tempfile

    wrong = {
        "base/a.cpp": '#include "drawingdb/x.h"\n',
        "hostapi/b.h": '#include "base/text.h"\n',
        "dialogs/c.cpp": '#include "../torvelcmd2/frame/x.h"\n',
        "torvelcmd2/d.cpp": '#include "torvelhost/x.h"\n',
        "torvelcmd2/e.cpp": '#include "drawingdb/src/x.h"\n',
        "torvelcmd2/f.cpp": "#ifdef _WIN32\n#endif\n",
        "torvelhost/g.cpp": "#include <windows.h>\n",
        "tests/h.cpp": "#if defined(_WIN32)\n#endif\n",
        "drawingdb/src/core/i.cpp": '#include "drawingdb/src/entities/x.h"\n',
        "drawingdb/src/file/j.cpp": '#include "drawingdb/src/geometry/x.h"\n',
        "torvelhost/lines/k.cpp": '#include "torvelhost/session/x.h"\n',
        "torvelhost/plot/l.cpp": '#include "torvelhost/session/document_view.h"\n',
        "torvelcmd2/frame/m.cpp": '#include "torvelcmd2/slides/x.h"\n',
        "torvelcmd2/attributes/values/n.cpp": '#include "torvelcmd2/attributes/x.h"\n',
        "dialogs/o.cpp": '#include "dialogs/forms/x.h"\n',
    }
    right = {
        "torvelcmd2/ok.cpp": '#include "frame/own.h"\n#include "base/text.h"\n#include "hostapi/x.h"\n',
        "torvelcmd2/frame/x.h": "",
        "torvelcmd2/frame/registrations.cpp": '#include "torvelcmd2/slides/x.h"\n',
        "torvelcmd2/attributes/ok.cpp": '#include "torvelcmd2/attributes/values/x.h"\n',
        "torvelcmd2/extract/ok.cpp": '#include "torvelcmd2/extract/burst/x.h"\n',
        "drawingdb/src/entities/ok.cpp": '#include "drawingdb/src/core/x.h"\n',
        "torvelhost/plot/plot.h": '#include "torvelhost/session/document_view.h"\n',
        "dialogs/windows/ok_windows.cpp": '#include "dialogs/x.h"\n',
        "base/ok_windows.cpp": "#include <windows.h>\n",
        "drawingdb/include/drawingdb/api.h": "#if defined(_WIN32)\n#endif\n",
        "drawingdb/src/ok.cpp": '#include "drawingdb/src/own.h"\n#include "drawingdb/ge.h"\n',
        "tests/ok.cpp": '#include "drawingdb/src/own.h"\n',
    }
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder).resolve()
        for name, text in {**wrong, **right}.items():
            (root / name).parent.mkdir(parents=True, exist_ok=True)
            (root / name).write_text(text)
        reported = {problem.split(":", 1)[0] for problem in problems(root)}
    return [f"check_layout.py: {name} should be refused" for name in sorted(set(wrong) - reported)] + [
        f"check_layout.py: {name} should be accepted" for name in sorted(reported - set(wrong))]


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    found = self_check() + list(problems(root))
    for problem in found:
        print(problem)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
