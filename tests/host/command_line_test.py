#!/usr/bin/env python3
"""The program as its users start it: exit statuses, what goes to which stream, what is saved, and the prompt on a terminal.

    command_line_test.py --program TORVELHOST [--emulator COMMAND;...]
"""

import argparse
import json
import os
import pathlib
import re
import select
import signal
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

    def test_a_user_without_settings_sees_columns_in_the_manager(self):
        if not IS_NATIVE:
            self.skipTest("the user's folder is Wine's")
        doors = str(pathlib.Path(__file__).parents[1] / "battman" / "doors.dxf")
        env = {**os.environ, "XDG_CONFIG_HOME": str(self.folder / "config")}
        show = ["-c", "BAttMan|show|close"]
        fresh = subprocess.run(COMMAND + [doors, *show], cwd=self.folder, capture_output=True, env=env)
        self.assertIn(" Tag   Prompt Default   Modes\n", fresh.stderr.decode())
        self.assertNotIn(" Tag ", self.run_program(doors, *show, env=env).errors, "a file that was named")

    def test_windows_want_a_screen(self):
        if not IS_NATIVE:
            self.skipTest("there are always windows")
        has_qt = (pathlib.Path(COMMAND[0]).parent / "libtorvelqt.so").exists()
        names = ("DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM")
        without = {name: value for name, value in os.environ.items() if name not in names}
        for screen in {}, {"DISPLAY": ":4711"}:
            run = self.run_program("--windows", "-c", "Ray|0,0|1,1||", "-o", "out.dxf", env=without | screen)
            self.assertEqual(run.status, 2)
            self.assertIn("--windows: ", run.errors)
            self.assertIn(screen.get("DISPLAY", "DISPLAY") if has_qt else "Qt", run.errors)
            self.assertFalse((self.folder / "out.dxf").exists())

    def name_converter(self, *arguments):
        """The program is its own converter here: what it reads as DWG is a script for it."""
        words = " ".join(f'"{word}"' for word in (COMMAND[-1], "--profile", "none.ini", "-q", *arguments))
        (self.folder / "profile.ini").write_text("[Converters]\ndwg=" + words.replace("\\", "\\\\") + "\n")

    def test_drawings_in_dwg_come_from_a_converter(self):
        dwg = self.folder / "the plan.DWG"
        dwg.write_text("")
        self.name_converter("plan.dxf", "-s", "%in", "-o", "%out")  # a drawing without a table of layers
        self.assertEqual(self.run_program("the plan.DWG", "-c", "QUIT", "-o", "out.dxf").status, 0)
        self.assertIn("DOOR", (self.folder / "out.dxf").read_text())
        dwg.write_text("LAYER\nOFF\n*\n\nRay\n0,0\n1,1\n\n")
        self.name_converter("-s", "%in", "-o", "%out")
        run = self.run_program("the plan.DWG", "-c", "SETVAR|DWGNAME", "-o", "out.dxf")
        self.assertEqual(run.status, 0, run.errors)
        self.assertIn("the plan.DWG: the converter wrote 1 of 1 layers as off", run.errors)
        self.assertIn("DWGNAME = the plan.DWG", run.output + run.errors)
        self.assertIn("\nRAY\n", (self.folder / "out.dxf").read_text())
        self.assertEqual(json.loads(self.run_program("the plan.DWG", "--summary=json").output)["file"], "the plan.DWG")

        for arguments in ("-c", "", "-o", "new.dwg"), ("-c", "SAVE|"), ("-c", "SAVE|other.dwg"):
            run = self.run_program("the plan.DWG", *arguments)
            self.assertNotEqual(run.status, 0)
            self.assertIn("drawings are saved as DXF; give a name that ends in .dxf", run.errors)
        self.assertEqual(dwg.read_text()[:5], "LAYER")

        for arguments, words in ((("-s", "%in", "-c", "NOTHING", "-o", "%out"), "ended with status 2: "),
                                 (("-s", "%in", "-p", "%out.png"), "wrote no drawing and said nothing"),
                                 (("-s", "%in"), "is not told what to read and where to write")):
            self.name_converter(*arguments)
            run = self.run_program("the plan.DWG", "-c", "", "-o", "out.dxf")
            self.assertEqual(run.status, 3, arguments)
            self.assertIn(words, run.errors)
        (self.folder / "profile.ini").write_text("[Converters]\ndwg=no-such-program %in %out\n")
        self.assertIn("the converter no-such-program cannot be started: ", self.run_program("the plan.DWG", "-c", "").errors)
        for settings, words in (("seconds=soon\ndwg=any %in %out", "seconds=soon, is no number from 1 on in the settings, "),
                                ("seconds=0\ndwg=any %in %out", "seconds=0, is no number from 1 on in the settings, "),
                                ('dwg="any %in %out', 'the converter "any ')):
            (self.folder / "profile.ini").write_text("[Converters]\n" + settings + "\n")
            run = self.run_program("the plan.DWG", "-c", "")
            self.assertEqual(run.status, 3, settings)
            self.assertIn(words, run.errors)
        if IS_NATIVE:
            (self.folder / "profile.ini").write_text('[Converters]\ndwg=sh -c "printf \'a\\\\000b\' > $0" %out %in\n')
            self.assertIn('a group code is expected, found "a?b"; that is what the converter sh wrote',
                          self.run_program("the plan.DWG", "-c", "").errors)
            (self.folder / "profile.ini").write_text('[Converters]\nseconds=1\ndwg=sh -c "sleep 4711 & wait" %in %out\n')
            begun = time.monotonic()
            self.assertIn("was ended after 1 seconds", self.run_program("the plan.DWG", "-c", "").errors)
            self.assertLess(time.monotonic() - begun, 30)
            sleeping = lambda: subprocess.run(["pgrep", "-x", "sleep", "-a"], capture_output=True).stdout.count(b"sleep 4711")
            self.assertEqual(sleeping(), 0, "what the converter started")
            (self.folder / "profile.ini").write_text('[Converters]\ndwg=sh -c "sleep 4711 & wait" %in %out\n')
            run = subprocess.Popen(COMMAND + ["--profile", "profile.ini", "the plan.DWG", "-c", ""], cwd=self.folder)
            while not sleeping():
                time.sleep(0.05)
            run.send_signal(signal.SIGINT)
            self.assertEqual(run.wait(30), -signal.SIGINT)
            self.assertEqual(sleeping(), 0)

        # Some are called so and are none.
        (self.folder / "misnamed.dwg").write_text(PLAN)
        self.assertEqual(self.run_program("misnamed.dwg", "-c", "").status, 0)

    def test_help_and_version(self):
        run = self.run_program("--help")
        self.assertEqual(run.status, 0)
        self.assertIn("--command TEXT", run.output)
        lists = (pathlib.Path(__file__).parents[2] / "CMakeLists.txt").read_text(encoding="utf-8")
        version = re.search(r"project\(torvelcmd2 VERSION ([\d.]+)", lists)[1]
        self.assertEqual(self.run_program("--version").output, f"torvelhost {version}\n")

    def test_there_is_help_on_every_command(self):
        root = pathlib.Path(__file__).parents[2]
        readme = (root / "README.md").read_text(encoding="utf-8")
        names = re.findall(r"`(\w+)`", "".join(re.findall(r"^\| (`\w+`.*?) \|", readme, re.M)))
        self.assertIn("AttSync", names)
        source = (root / "torvelhost" / "commands" / "host_commands.cpp").read_text(encoding="utf-8")
        names += re.findall(r'^    \{L"(\w+)"', source, re.M) + ["DBLCLICK", "QUIT", "Dialogs"]
        run = self.run_program("-c", "|".join("help " + name for name in names))
        self.assertEqual(run.status, 0, run.errors)
        told = self.run_program("-c", "?").output
        for name in names[:-1]:
            self.assertRegex(told, rf"(?m)^(\w+, )?{name}\b")
        self.assertLessEqual(set(re.findall(r"(?m)^(\S+?)(?=[,:]|$)", told)), {*names, "Command"})
        # The text is that of the page, without the marks that only a reader of Markdown knows.
        section = self.run_program("--help=attsync")
        self.assertEqual((section.status, section.errors), (0, ""))
        self.assertRegex(section.output, r"(?s)^AttSync\n.*\n- \? lists the blocks.*\n    torvelhost plan.dxf -c 'AttSync")
        for mark in "`", "](", "**", "![":
            self.assertNotIn(mark, section.output)
        self.assertEqual(self.run_program("-c", "? attsync").output.split(), section.output.split())
        self.assertEqual(self.run_program("--help=nothing").status, 2)
        self.assertEqual(self.run_program("-c", "help nothing").status, 2)

    def test_a_summary_is_the_same_as_text_and_for_programs(self):
        drawing = str(pathlib.Path(__file__).parent / "find.dxf")
        found = json.loads(self.run_program(drawing, "--summary=json").output)
        blocks = {block["name"]: block for block in found["blocks"]}
        self.assertEqual(list(blocks), ["DOOR", 'Wide "window"'])
        self.assertEqual((blocks["DOOR"]["references"], blocks["DOOR"]["tags"]), (3, ["NO", "Größe"]))
        layers = {layer["name"]: (layer["entities"], layer["states"]) for layer in found["layers"]}
        self.assertEqual(layers["My layer"], (4, []))
        self.assertEqual(layers["Frozen"], (1, ["off", "frozen"]))
        kinds = {kind["name"]: kind["count"] for kind in found["kinds"] if kind["carried"]}
        self.assertEqual(kinds, {"FOO": 1, "XRECORD": 1})
        self.assertEqual((found["layouts"], found["textStyles"]),
                         (["Model", "Layout1"], [{"name": "Standard", "font": "txt"}]))
        self.assertEqual(len(found["damage"]), 1)
        text = self.run_program(drawing, "--summary")
        self.assertIn("  DOOR: 3 references; tags NO, Größe\n", text.output)
        self.assertIn("  " + found["damage"][0], text.output)
        self.assertEqual((text.status, text.errors), (0, ""))

        (self.folder / "cut.dxf").write_text(PLAN[:-60])
        cut = self.run_program("cut.dxf", "--summary=json")
        self.assertEqual(cut.status, 0)
        self.assertIn("cut.dxf:", json.loads(cut.output)["damage"][0])
        for wrong in ["--summary=xml"], ["--summary", "-o", "out.dxf"], ["--summary", "-c", ""]:
            self.assertEqual(self.run_program("plan.dxf", *wrong).status, 2, wrong)

    def test_a_damaged_drawing_is_recovered_into_another_file(self):
        damaged = PLAN[:-25].replace("70\n2\n", "70\ntwo\n")
        (self.folder / "cut.dxf").write_text(damaged)
        strict = self.run_program("cut.dxf", "-c", "", "-o", "other.dxf")
        self.assertEqual(strict.status, 3)
        self.assertIn("--recover", strict.errors)

        run = self.run_program("cut.dxf", "--recover", "-c", "", "-o", "other.dxf")
        self.assertEqual(run.status, 0, run.errors)
        self.assertRegex(run.errors, r'cut\.dxf:11: BLOCK DOOR: the value of group 70 is no number: "two"')
        self.assertRegex(run.errors, r"cut\.dxf:\d+: INSERT #30 was left out: the file ends in it")
        again = self.run_program("other.dxf", "-c", "", "-o", "other.dxf")
        self.assertEqual((again.status, again.errors), (0, "Command: \n"))
        listed = json.loads(self.run_program("cut.dxf", "--recover", "--summary=json").output)["damage"]
        self.assertIn("INSERT #30", "".join(listed))

        refusal = "not saved: .*save the drawing under another name"
        for arguments in (["-c", "", "-o", "cut.dxf"], ["-c", "", "-o", str(self.folder / "cut.dxf")],
                          ["-c", "SAVE|cut.dxf"], ["-c", "SAVE|"]):
            run = self.run_program("cut.dxf", "--recover", *arguments)
            self.assertEqual(run.status, 3, arguments)
            self.assertRegex(run.errors, refusal)
            self.assertEqual((self.folder / "cut.dxf").read_text(), damaged)
        # A sound drawing may be saved anywhere.
        run = self.run_program("plan.dxf", "--recover", "-c", "", "-o", "plan.dxf")
        self.assertEqual((run.status, run.errors), (0, "Command: \n"))
        self.assertEqual((self.folder / "plan.dxf").read_text(), PLAN)

    def test_a_name_that_is_no_utf8_opens(self):
        if not IS_NATIVE:
            self.skipTest("names are text on Windows")
        folder = os.fsencode(self.folder)
        os.rename(folder + b"/plan.dxf", folder + b"/gr\xfc\xdf.dxf")
        run = self.run_program(b"gr\xfc\xdf.dxf", "-c", "UNDO", "-o", b"n\xe4u.dxf")
        self.assertNotIn("cannot", run.errors)
        self.assertTrue(os.path.exists(folder + b"/n\xe4u.dxf"), run.errors)
        self.assertEqual((pathlib.Path(os.fsdecode(folder + b"/n\xe4u.dxf"))).read_text(), PLAN)

    def test_vslide_asks_by_a_dialog_unless_told_otherwise(self):
        # The dialog wants a file that is there, and an empty line closes it; the command line takes any name.
        run = self.run_program("plan.dxf", text=b"VSlide\nnowhere\n\n")
        self.assertIn('there is no file "nowhere"', run.errors)
        self.assertEqual(run.output, "")
        run = self.run_program("--set", "FILEDIA=0", "plan.dxf", text=b"VSlide\nnowhere\n\n")
        self.assertIn("'nowhere': Can't find file in search path:", run.output)

    def test_wrong_usage_is_2(self):
        for arguments in (["--nothing"], ["-c"], ["a.dxf", "b.dxf"], ["--set", "NOSUCH=1", "-c", ""],
                          ["--set", "LUPREC=many", "-c", ""], ["-c", "", "-o", "-"], ["--size", "9", "-c", ""], ["-p", "plot.bmp", "-c", ""]):
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

    def test_a_dwg_is_named_as_such(self):
        (self.folder / "plan.dwg").write_bytes(b"AC1032\0\0\0\0\x1b[31m" + bytes(range(256)))
        run = self.run_program("plan.dwg", "-c", "")
        self.assertEqual(run.status, 3)
        self.assertRegex(run.errors, r"plan\.dwg:.*DWG.*AC1032.*save it as DXF, or name a converter in the settings, "
                         r"profile.ini: below \[Converters\] a line dwg=COMMAND %in %out")

    def test_bytes_of_a_file_do_not_work_the_terminal(self):
        (self.folder / "evil.dxf").write_bytes(b"\x1b]0;title\x07\x9b31m\xc2\x9b31m\n")
        (self.folder / "evil.scr").write_bytes(b"; a comment\nElxTest\n\x1b[2Jtext\n\x1b[31m\n")
        for arguments in (["evil.dxf", "-c", ""], ["-s", "evil.scr"]):
            errors = self.run_program(*arguments).errors
            self.assertIn("^[", errors)
            self.assertEqual([c for c in errors if (ord(c) < 32 and c not in "\n\t") or 127 <= ord(c) < 160], [])

    def test_quiet(self):
        run = self.run_program("-q", "plan.dxf", "-c", "ElxTest|x|AttExt|press Select Objects <|all||show|"
                                                       "press Output File|plan.dxf|no|"
                                                       "|press Cancel|Wipeout|Frames|Nothing")
        self.assertEqual(run.output, "Inputed Text is x.\n")
        self.assertNotIn("Attribute Extraction> ", run.errors)
        self.assertTrue(run.errors.startswith("=== Attribute Extraction ==="), run.errors)  # no prompt, no count
        self.assertRegex(run.errors, r"\n\[question\] .*plan.dxf already exists")
        self.assertIn("torvelhost: --command:", run.errors)

    def test_settings_that_cannot_be_kept_fail_no_run(self):
        (self.folder / "file").write_text("")
        (self.folder / "names.txt").write_text("BL:NAME C008000\n")
        run = self.run_program("--profile", "file/profile.ini", "plan.dxf", "-c",
                               "AttExt|press Select Objects <|all||Template File = names.txt|Output File = x.txt|press OK")
        self.assertEqual(run.status, 0, run.errors)
        self.assertEqual(run.errors.count("warning: file/profile.ini: "), 1, run.errors)

    def test_memory_that_runs_out(self):
        """Whatever does not fit, the message names the file and what was being done, and nothing is saved."""
        if not IS_NATIVE or b"__asan" in pathlib.Path(COMMAND[0]).read_bytes():
            self.skipTest("memory cannot be limited here")
        lines = "".join(f"0\nLINE\n8\n0\n10\n{i}.0\n20\n0.0\n11\n{i}.0\n21\n1.0\n" for i in range(20000))
        (self.folder / "big.dxf").write_text(PLAN.replace("0\nENDSEC\n0\nEOF\n", lines + "0\nENDSEC\n0\nEOF\n"))
        seen = set()
        for limit in range(9000, 40000, 500):
            result = subprocess.run(["sh", "-c", f'ulimit -v {limit}; exec "$0" "$@"', *COMMAND, "--profile", "p.ini", "-q",
                                     "big.dxf", "-c", "Divide|#20|3", "-o", "out.dxf"], cwd=self.folder,
                                    capture_output=True, timeout=60)
            errors = result.stderr.decode()
            if "error while loading" in errors:
                continue
            seen.add(result.returncode)
            if result.returncode != 0:
                self.assertEqual(result.returncode, 3, (limit, errors))
                self.assertRegex(errors, r"^torvelhost: (.*(big|out)\.dxf.* memory|libtorvelcmd2\.so: |there is .* to start)", limit)
                self.assertFalse((self.folder / "out.dxf").exists())
        self.assertEqual(seen, {0, 3})

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

    def test_a_signal_ends_a_script(self):
        run = subprocess.Popen(COMMAND + ["--profile", "p.ini", "plan.dxf", "-s", "-", "-o", "out.dxf"], cwd=self.folder,
                               stdin=subprocess.PIPE, stderr=subprocess.PIPE)
        run.stdin.write(b"ElxTest\n")
        run.stdin.flush()
        while not run.stderr.readline().startswith(b"Command: ElxTest"):
            pass
        run.send_signal(signal.SIGINT)
        run.communicate()
        self.assertEqual(run.returncode, -signal.SIGINT if IS_NATIVE else run.returncode)
        self.assertFalse((self.folder / "out.dxf").exists())


class Terminal:
    """The program at a prompt, in a terminal of so many columns."""

    def __init__(self, folder, *arguments, columns=80):
        import fcntl, pty, struct, termios
        self.process, self.terminal = pty.fork()
        if self.process == 0:
            os.chdir(folder)
            os.environ.update(TERM="xterm", XDG_STATE_HOME=str(folder / "state"))
            fcntl.ioctl(0, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
            os.execv(COMMAND[0], [COMMAND[0], "--profile", "p.ini", *arguments])
        self.shown = ""

    def expect(self, text):
        """Waits for the text; gives what is shown before it."""
        end = time.monotonic() + 60
        while text not in self.shown:
            if not select.select([self.terminal], [], [], max(0, end - time.monotonic()))[0]:
                raise AssertionError(f"{text!r} is not in {self.shown!r}")
            self.shown += os.read(self.terminal, 4096).decode("utf-8", "replace")
        before, self.shown = self.shown.split(text, 1)
        return before

    def send(self, keys):
        os.write(self.terminal, keys.encode())

    def status(self):
        _, status = os.waitpid(self.process, 0)
        os.close(self.terminal)
        return os.waitstatus_to_exitcode(status)


class Prompt(unittest.TestCase):
    def setUp(self):
        if not IS_NATIVE:
            self.skipTest("a terminal of this kind is not there")
        self.temporary = tempfile.TemporaryDirectory()
        self.addCleanup(self.temporary.cleanup)
        self.folder = pathlib.Path(self.temporary.name)
        (self.folder / "plan.dxf").write_text(PLAN)

    def start(self, **options):
        terminal = Terminal(self.folder, "plan.dxf", **options)
        terminal.expect("Command: ")
        return terminal

    def test_a_command_tells_how_many_objects_it_has_changed(self):
        terminal = self.start()
        terminal.send("INSERT\rDOOR\r1,2\r\r\r\r")
        terminal.expect("INSERT: 1 object changed")
        terminal.send("block d*\rBurst\r")
        terminal.expect("Burst: 4 objects changed")  # two references go, their lines come
        terminal.send("SETVAR\rLUPREC\r2\r")
        self.assertNotIn("changed", terminal.expect("<4>: ") + terminal.expect("Command: "))
        terminal.send("\x04")

    def test_keys_and_history(self):
        terminal = self.start()
        terminal.send("ElxTesx\x7ft\r")
        terminal.expect("Enter text: ")
        terminal.send("\u00e4bc\x1b[D\x1b[D!\r")  # two to the left
        terminal.expect("Inputed Text is \u00e4!bc.")
        terminal.expect("Command: ")
        terminal.send("\x1b[A\x1b[A\r")  # the command of before
        terminal.expect("Enter text: ")
        terminal.send("one two\x1b[1;5D\x1b[3~\u65e5\U0001f600\x1b[15~\x1b[H>\r")  # F5 is nothing
        terminal.expect("Inputed Text is >one \u65e5\U0001f600wo.")
        terminal.expect("Command: ")
        terminal.send("LAYER\r")
        terminal.expect("[?/Make/Set/New/ON/OFF/Freeze/Thaw/LOck/Unlock/Color]: ")
        terminal.send("O\r")
        terminal.expect("more than one of")
        terminal.expect("]: ")
        terminal.send("\r")
        terminal.expect("Command: ")
        terminal.send("\x04")
        self.assertEqual(terminal.status(), 0)
        # The history outlives the run.
        terminal = self.start()
        terminal.send("\x1b[A\x1b[A\x1b[A\x1b[A\r")
        terminal.expect("Enter text: ")
        terminal.send("x\r")
        terminal.expect("Command: ")
        terminal.send("QUIT\r")
        self.assertEqual(terminal.status(), 0)

    def test_a_line_longer_than_the_terminal(self):
        terminal = self.start(columns=20)
        text = "0123456789" * 6
        for key in text:
            terminal.send(key)
            time.sleep(0.01)
        terminal.send("\r")
        self.assertNotIn("Command: ", terminal.expect("unknown command"))  # the prompt is not shown anew for a key
        terminal.expect("Command: ")
        terminal.send("\x04")
        self.assertEqual(terminal.status(), 0)

    def test_the_escape_key_swallows_no_other(self):
        terminal = self.start()
        terminal.send("nonsense\x1b")
        time.sleep(1)
        terminal.send("ElxTest\r")
        terminal.expect("Enter text: ")
        terminal.send("x\r")
        terminal.expect("Inputed Text is x.")
        terminal.expect("Command: ")
        terminal.send("\x04")
        self.assertEqual(terminal.status(), 0)

    def test_ctrl_c_cancels_and_asks(self):
        terminal = self.start()
        terminal.send("ElxTest\r")
        terminal.expect("Enter text: ")
        terminal.send("half\x03")
        terminal.expect("Command: ")
        terminal.send("ElxTest\r")
        terminal.expect("Enter text: ")
        os.kill(terminal.process, signal.SIGINT)  # from elsewhere it is the same
        terminal.expect("Command: ")
        terminal.send("half\x03")  # a line that was begun goes, nothing else
        terminal.expect("Command: ")
        terminal.send("INSERT\rDOOR\r1,2\r\r\r\r")
        terminal.expect("angle <0>: ")
        terminal.expect("Command: ")
        terminal.send("\x03")
        terminal.expect("Leave without them? [Yes/No] <No>: ")
        terminal.send("\r")
        terminal.expect("Command: ")
        terminal.send("\x03")
        terminal.expect("<No>: ")
        terminal.send("Y\r")
        self.assertEqual(terminal.status(), 1)  # commands were cancelled

    def test_ctrl_c_stops_work(self):
        # Seconds of it: references of two dozen doors each.
        head, tail = PLAN.split("0\nINSERT\n")
        line = "0\nLINE\n5\n20\n" + head.split("5\n20\n")[1].split("0\nENDBLK")[0]
        insert, end = "0\nINSERT\n8\n0\n2\nDOOR\n10\n5.0\n20\n5.0\n30\n0.0\n", tail[tail.index("0\nENDSEC"):]
        drawing = head.replace(line, line.replace("5\n20\n", "") * 24) + insert * 80000 + end
        (self.folder / "plan.dxf").write_text(drawing)
        (self.folder / "burst.scr").write_text("Burst\nall\n\n")
        terminal = self.start()
        terminal.send("Burst\rall\r\r")
        terminal.expect("Burst ... ")
        terminal.send("\x03")
        terminal.expect("Burst: stopped")
        terminal.expect("Command: ")
        terminal.send("\x04")  # what it had done is taken back: there is nothing to save
        self.assertEqual(terminal.status(), 1)
        # A script has nobody to go on with.
        terminal = Terminal(self.folder, "plan.dxf", "-s", "burst.scr", "-o", "out.dxf")
        terminal.expect("Burst ... ")
        terminal.send("\x03")
        self.assertEqual(terminal.status(), -signal.SIGINT)
        self.assertEqual(sorted(file.name for file in self.folder.glob("*.dxf")), ["plan.dxf"])

    def test_tab_completes(self):
        terminal = self.start()
        for typed, prompt in (("elx\t", "Enter text: "), ("x", "Command: "),
                              ("LAYER", "Color]: "), ("Fre\t", "eze"), ("", "Command: "),
                              ("AttExt", "> "), ("press Can\t", "Command: "), ("AttExt", "> "), ("Template File = pl\t", "> ")):
            terminal.send(typed + "\r")
            terminal.expect(prompt)
        terminal.send("show\r")
        terminal.expect("plan.dxf\"")
        terminal.send("pre\t\t")
        terminal.expect("press Cancel")
        terminal.expect("press OK")
        terminal.send("C\t\r")
        terminal.expect("Command: ")
        terminal.send("\x04")
        terminal.status()

    def test_a_signal_gives_the_terminal_back(self):
        import termios
        terminal = self.start()
        while termios.tcgetattr(terminal.terminal)[3] & termios.ICANON:
            time.sleep(0.01)
        os.kill(terminal.process, signal.SIGTERM)
        _, status = os.waitpid(terminal.process, 0)
        self.assertEqual(os.waitstatus_to_exitcode(status), -signal.SIGTERM)
        self.assertTrue(termios.tcgetattr(terminal.terminal)[3] & termios.ICANON)
        os.close(terminal.terminal)


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--emulator", default="")
    known, rest = parser.parse_known_args()
    emulator = [word for word in known.emulator.split(";") if word]
    IS_NATIVE = not emulator
    COMMAND = emulator + [known.program]
    unittest.main(argv=[sys.argv[0]] + rest)
