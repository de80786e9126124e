#!/usr/bin/env python3
"""A person at a screen: the program's dialogs as windows of an X server with a window manager, worked by its mouse and keys.

    screen_test.py --program TORVELHOST --plan examples/parts_list

The person makes the parts list of the examples by hand; a script makes it too, and both are the same file. Then the
field of a new attribute's default is picked: dialogs in each other give way to the command line and come back.
"""

import argparse
import os
import pathlib
import pty
import shutil
import subprocess
import sys
import tempfile
import threading
import time

PATIENCE = 60


class Screen:
    """An X server of the test's own with a window manager."""

    def __init__(self, folder):
        self.begun = folder / "window_manager_has_begun"

    def __enter__(self):
        read, write = os.pipe()
        self.server = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", "1024x768x24", "-noreset"], pass_fds=[write],
                                       stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(read) as numbers:
            display = ":" + numbers.readline().strip()
        kept = {name: value for name, value in os.environ.items() if not name.startswith(("QT_", "WAYLAND_"))}
        self.env = kept | {"DISPLAY": display}
        self.manager = subprocess.Popen(["openbox", "--startup", f"touch {self.begun}"], env=self.env, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL)
        # A window that comes while the manager begins does not get the focus.
        self.wait(self.begun.exists, "the window manager does not begin")
        return self

    def __exit__(self, *_):
        for process in self.manager, self.server:
            process.terminate()
            process.wait()

    def do(self, *words):
        return subprocess.run(["xdotool", *words], env=self.env, capture_output=True, text=True).stdout.split()

    @staticmethod
    def wait(ready, failure):
        deadline = time.time() + PATIENCE
        while not (result := ready()):
            if time.time() > deadline:
                raise AssertionError(failure)
            time.sleep(0.05)
        return result

    def wait_for_window(self, title, other_than=None):
        """Until one of that title has the focus; which one."""
        def focused():
            window = self.do("getwindowfocus")
            return window != other_than and " ".join(self.do("getwindowname", *window)) == title and window
        return self.wait(focused, f'no window "{title}" came up')

    def are_visible(self, windows):
        return set(windows) & set(self.do("search", "--onlyvisible", "--name", ""))

    def keys(self, *keys):
        for key in keys:
            self.do("key", key)
            time.sleep(0.05)

    def click(self, x, y, size):
        """At a place of a template of that size, in the window that has the focus."""
        geometry = dict(line.split("=") for line in self.do("getwindowfocus", "getwindowgeometry", "--shell") if "=" in line)
        place = [str(round(int(geometry["WIDTH"]) * x / size[0])), str(round(int(geometry["HEIGHT"]) * y / size[1]))]
        self.do("mousemove", "--window", geometry["WINDOW"], *place, "click", "1")
        time.sleep(0.1)


class Program:
    """The program at a terminal of its own."""

    def __init__(self, folder, env, *command):
        self.shown = b""
        self.process, self.terminal = pty.fork()
        if self.process == 0:
            os.chdir(folder)
            os.execvpe(command[0], command, env | {"TERM": "dumb"})
        threading.Thread(target=self.listen, daemon=True).start()

    def listen(self):
        try:
            while piece := os.read(self.terminal, 4096):
                self.shown += piece
        except OSError:
            pass  # it has ended

    def answer(self, prompt, line):
        self.ask(prompt)
        self.shown = b""
        os.write(self.terminal, line.encode() + b"\n")

    def ask(self, prompt):
        """Until the program asks so."""
        deadline = time.time() + PATIENCE
        while not self.shown.rstrip().endswith(prompt.encode()):
            if time.time() > deadline:
                raise AssertionError(f"no prompt {prompt!r}:\n{self.shown.decode()}")
            time.sleep(0.02)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--plan", required=True, type=pathlib.Path)
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        for file in arguments.plan.iterdir():
            shutil.copy(file, folder)
        subprocess.run([arguments.program, "-q", "--profile", "p.ini", "plan.dxf", "-s", "parts.scr"], cwd=folder, check=True,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        expected = (folder / "parts.csv").read_bytes()
        with Screen(folder) as screen:
            program = Program(folder, screen.env, arguments.program, "--windows", "--profile", "p.ini", "plan.dxf")
            program.answer("Command:", "AttExt")
            title, size = "Attribute Extraction", (260, 152)
            dialog = screen.wait_for_window(title)
            screen.click(30, 34, size)   # SDF, by the mouse
            screen.keys("Up", "Return")  # CDF, by a key; OK is refused: nothing is selected
            box = screen.wait_for_window(title, other_than=dialog)
            screen.keys("Return")
            screen.wait_for_window(title, other_than=box)
            screen.keys("alt+o")         # Select Objects, on the command line
            program.answer("Select objects:", "all")
            program.answer("Select objects:", "")
            screen.wait_for_window(title)
            screen.keys("Tab", "Tab", "Tab", *"doors", "period", *"txt")
            screen.keys("Tab", "Tab", "shift+End", *"by", "underscore", *"hand", "period", *"csv", "Return")
            program.answer("Command:", "ATTDEF")
            outer, size = screen.wait_for_window("Attribute Definition"), (330, 232)
            screen.click(307, 57, size)  # Insert Field
            field = screen.wait_for_window("Field")
            screen.keys("o", "alt+o")    # a property of an object; Select Object
            program.ask("Select object:")
            screen.wait(lambda: not screen.are_visible(outer + field), "the dialogs hide what is to be picked")
            program.answer("Select object:", "#49")
            screen.wait_for_window("Field")
            screen.keys(*"Layer", "Return")
            screen.wait_for_window("Attribute Definition")
            screen.click(250, 23, size)  # Tag
            screen.keys("T", "Return")
            program.answer("Specify start point:", "0,0")
            program.answer("Command:", "QUIT")
            status = os.waitstatus_to_exitcode(os.waitpid(program.process, 0)[1])
        if status != 0 or (folder / "by_hand.csv").read_bytes() != expected:
            sys.exit(f"status {status}; {sorted(file.name for file in folder.iterdir())}")


if __name__ == "__main__":
    main()
