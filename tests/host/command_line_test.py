#!/usr/bin/env python3
"""The program as its users start it: exit statuses, what goes to which stream, what is saved, and the prompt on a terminal.

    command_line_test.py --program TORVELHOST [--emulator COMMAND;...]
"""

import argparse
import os
import pathlib
import re
import select
import subprocess
import sys
import tempfile
import time
import unittest

COMMAND = []
IS_NATIVE = True

# A block with two attributes, and a reference of it.
PLAN = "".join(f"{code}\n{value}\n" for code, value in [
    (0, "SECTION"), (2, "BLOCKS"),
    (0, "BLOCK"), (8, "0"), (2, "DOOR"), (70, 2), (10, 0.0), (20, 0.0), (30, 0.0), (3, "DOOR"),
    (0, "LINE"), (5, "20"), (8, "0"), (10, 0.0), (20, 0.0), (30, 0.0), (11, 4.0), (21, 0.0), (31, 0.0),
    (0, "ENDBLK"), (8, "0"), (0, "ENDSEC"),
    (0, "SECTION"), (2, "ENTITIES"),
    (0, "INSERT"), (5, "30"), (8, "0"), (2, "DOOR"), (10, 5.0), (20, 5.0), (30, 0.0),
    (0, "ENDSEC"), (0, "EOF")])


class Run:
    def __init__(self, folder, *arguments, text=b"", env=None):
        result = subprocess.run(COMMAND + ["--profile", "profile.ini", *arguments], cwd=folder, input=text,
                                capture_output=True, timeout=120, env=env)
        self.status = result.returncode
        self.output = result.stdout.decode("utf-8")
        self.errors = result.stderr.decode("utf-8").replace("\r\n", "\n")


class CommandLine(unittest.TestCase):
    def setUp(self):
        self.temporary = tempfile.TemporaryDirectory()
        self.folder = pathlib.Path(self.temporary.name)
        (self.folder / "plan.dxf").write_text(PLAN)

    def tearDown(self):
        self.temporary.cleanup()

    def run_program(self, *arguments, **options):
        return Run(self.folder, *arguments, **options)

    def test_help_and_version(self):
        run = self.run_program("--help")
        self.assertEqual(run.status, 0)
        self.assertIn("--command TEXT", run.output)
        lists = (pathlib.Path(__file__).parents[2] / "CMakeLists.txt").read_text(encoding="utf-8")
        version = re.search(r"project\(torvelcmd2 VERSION ([\d.]+)", lists)[1]
        self.assertEqual(self.run_program("--version").output, f"torvelhost {version}\n")

    def test_vslide_asks_by_a_dialog_unless_told_otherwise(self):
        # The dialog wants a file that is there, and an empty line closes it; the command line takes any name.
        run = self.run_program("plan.dxf", text=b"VSlide\nnowhere\n\n")
        self.assertIn('there is no file "nowhere"', run.errors)
        self.assertEqual(run.output, "")
        run = self.run_program("--set", "FILEDIA=0", "plan.dxf", text=b"VSlide\nnowhere\n\n")
        self.assertIn("'nowhere': Can't find file in search path:", run.output)

    def test_wrong_usage_is_2(self):
        for arguments in (["--nothing"], ["-c"], ["a.dxf", "b.dxf"], ["--set", "NOSUCH=1", "-c", ""],
                          ["--set", "LUPREC=many", "-c", ""], ["--size", "9", "-c", ""], ["-p", "plot.pdf", "-c", ""]):
            with self.subTest(arguments):
                run = self.run_program(*arguments)
                self.assertEqual(run.status, 2)
                self.assertEqual(run.output, "")
                self.assertTrue(run.errors.startswith("torvelhost: "))

    def test_files_that_cannot_be_read_or_written_are_3(self):
        for arguments in (["nowhere.dxf", "-c", "QUIT"], ["-s", "nowhere.scr"],
                          ["plan.dxf", "-c", "", "-o", "nowhere/out.dxf"]):
            with self.subTest(arguments):
                run = self.run_program(*arguments)
                self.assertEqual(run.status, 3)
                self.assertIn("nowhere", run.errors)
        (self.folder / "text.dxf").write_text("This is no drawing.\n")
        self.assertEqual(self.run_program("text.dxf", "-c", "QUIT").status, 3)

    def test_an_unchanged_drawing_is_saved_to_the_byte(self):
        run = self.run_program("plan.dxf", "-o", "out.dxf")
        self.assertEqual((run.status, run.output), (0, ""))
        self.assertEqual((self.folder / "out.dxf").read_text(), PLAN)
        # Onto itself, too.
        self.assertEqual(self.run_program("plan.dxf", "-c", "LAYER||UNDO", "-o", "plan.dxf").status, 0)
        self.assertEqual((self.folder / "plan.dxf").read_text(), PLAN)

    def test_a_cut_drawing_is_read_but_not_saved(self):
        (self.folder / "cut.dxf").write_text(PLAN[:-60])
        run = self.run_program("cut.dxf", "-c", "SETVAR|LUPREC|", "-o", "out.dxf")
        self.assertEqual(run.status, 3)
        self.assertIn("warning: ", run.errors)
        self.assertFalse((self.folder / "out.dxf").exists())
        self.assertNotIn("warning: ", self.run_program("-q", "cut.dxf", "-c", "").errors)

    def test_streams(self):
        run = self.run_program("-c", 'SETVAR|CMDACTIVE|ElxTest|"\u00e9 \U0001F600"')
        self.assertEqual(run.output, "CMDACTIVE = 4 (read only)\nInputed Text is \u00e9 \U0001F600.\n")
        self.assertIn("Command: SETVAR\n", run.errors)
        self.assertIn("Enter variable name or [?]: CMDACTIVE\n", run.errors)

    def test_scripts_are_taken_in_the_order_given(self):
        (self.folder / "a.scr").write_bytes(b"\xef\xbb\xbf; first\r\nElxTest\r\none\r\n\x1aElxTest\r\n")
        run = self.run_program("-c", "ElxTest|zero", "-s", "a.scr", "-s", "-", text=b"ElxTest\ntwo\n")
        self.assertEqual(run.output, "Inputed Text is zero.\nInputed Text is one.\nInputed Text is two.\n")
        self.assertEqual(run.status, 0)

    def test_a_script_that_does_not_fit_saves_nothing(self):
        for script, message in (("LAYOUT|Nowhere", 'the drawing has no layout "Nowhere", at the prompt'),
                                ("SETVAR", "--command:1: the script ends, at the prompt"),
                                ("LAYER|O", '"O" may mean more than one of'),
                                ("QUTI", "--command:1: unknown command"), ("#ABCDEF", "there is no object #ABCDEF"),
                                ("ElxTest", "the script ends, at the prompt")):
            with self.subTest(script):
                run = self.run_program("plan.dxf", "-c", script, "-o", "out.dxf")
                self.assertEqual(run.status, 2)
                self.assertIn(message, run.errors)
                self.assertFalse((self.folder / "out.dxf").exists())

    def test_a_cancelled_command_is_1_and_the_run_goes_on(self):
        run = self.run_program("plan.dxf", "-c", "ElxTest|^C|ElxTest|on", "-o", "out.dxf")
        self.assertEqual((run.status, run.output), (1, "Inputed Text is on.\n"))
        self.assertTrue((self.folder / "out.dxf").exists())

    def test_variables_are_set_first(self):
        run = self.run_program("--set", "DATE=2026-03-01 12:00:00", "--set", "luprec=2", "-c", "SETVAR|DATE||SETVAR|LUPREC|")
        self.assertIn("<2461101.0>", run.errors)
        self.assertIn("Enter new value for LUPREC <2>", run.errors)

    def test_insert_and_undo(self):
        run = self.run_program("plan.dxf", "-c", "INSERT|DOOR|1,2|2||90|SAVE|one.dxf|UNDO", "-o", "two.dxf")
        self.assertEqual(run.status, 0, run.errors)
        one = (self.folder / "one.dxf").read_text()
        self.assertEqual(one.count("INSERT"), 2)
        inserted = one[one.rindex("INSERT"):]
        for code, value in ((10, "1.0"), (20, "2.0"), (41, "2.0"), (42, "2.0"), (50, "90.0")):
            self.assertRegex(inserted, rf"\n *{code}\r?\n *{re.escape(value)}\r?\n")
        self.assertEqual((self.folder / "two.dxf").read_text(), PLAN)

    def test_replies_without_a_terminal(self):
        run = self.run_program("plan.dxf", text=b"ElxTest\nSETVAR\n")
        self.assertEqual((run.status, run.output), (0, "Inputed Text is SETVAR.\n"))
        run = self.run_program(text=b"nonsense\nZOOM\nx\nE\n")
        self.assertIn("unknown command", run.errors)
        self.assertIn('"x" is not a point or a scale factor', run.errors)
        self.assertEqual(run.status, 0)

    def test_output_that_cannot_be_written(self):
        if not pathlib.Path("/dev/full").exists() or not IS_NATIVE:
            self.skipTest("no full device")
        with open("/dev/full", "wb") as full:
            result = subprocess.run(COMMAND + ["-q", "--profile", "p.ini", "-c", "ElxTest|x"], cwd=self.folder, stdout=full,
                                    stderr=subprocess.PIPE, timeout=60)
        self.assertEqual(result.returncode, 3)

    def test_the_prompt_on_a_terminal(self):
        if not IS_NATIVE:
            self.skipTest("a terminal of this kind is not there")
        import pty
        program, terminal = pty.fork()
        if program == 0:
            os.chdir(self.folder)
            os.execv(COMMAND[0], [COMMAND[0], "--profile", "p.ini", "plan.dxf"])
        shown = ""

        def expect(text):
            nonlocal shown
            end = time.monotonic() + 60
            while text not in shown:
                self.assertTrue(select.select([terminal], [], [], max(0, end - time.monotonic()))[0], shown)
                shown += os.read(terminal, 4096).decode("utf-8", "replace")
            shown = shown[shown.index(text) + len(text):]

        def send(keys):
            os.write(terminal, keys.encode())

        expect("Command: ")
        send("ElxTesx\x7ft\r")
        expect("Enter text: ")
        send("\u00e4bc\x1b[D\x1b[D!\r")  # two to the left
        expect("Inputed Text is \u00e4!bc.")
        send("\x1b[A\x1b[A\r")  # the command of before
        expect("Enter text: ")
        send("\x03")
        expect("Command: ")
        send("LAYER\r")
        expect("[?/Make/Set/New/ON/OFF/Freeze/Thaw/LOck/Unlock/Color]: ")
        send("O\r")
        expect("more than one of")
        send("\r")
        expect("Command: ")
        send("\x04")
        _, status = os.waitpid(program, 0)
        os.close(terminal)
        self.assertEqual(os.waitstatus_to_exitcode(status), 1)  # one command was cancelled


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--emulator", default="")
    known, rest = parser.parse_known_args()
    emulator = [word for word in known.emulator.split(";") if word]
    IS_NATIVE = not emulator
    COMMAND = emulator + [known.program]
    unittest.main(argv=[sys.argv[0]] + rest)
