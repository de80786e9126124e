#!/usr/bin/env python3
"""Plots in PDF: pages, scale, what is on them, and what readers of PDF make of them.

    pdf_test.py --program TORVELHOST [--emulator COMMAND;...]
"""

import argparse
import math
import pathlib
import resource
import shutil
import subprocess
import sys
import tempfile
import unittest

import ezdxf

import compare_plots
import plots

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent))
import png_file  # noqa: E402

COMMAND = []
EMULATED = False
ALPHABETS = ["Größe Ø50", "Русский", "Ελληνικά", "日本語", "שלום עולם", "😀"]


class PdfTest(unittest.TestCase):
    def setUp(self):
        self.temporary = tempfile.TemporaryDirectory()
        self.folder = pathlib.Path(self.temporary.name)
        self.doc = ezdxf.new("R2018", setup=True)
        self.doc.header["$INSUNITS"] = 4  # millimetres
        self.msp = self.doc.modelspace()

    def tearDown(self):
        self.temporary.cleanup()

    def run_program(self, *arguments, **more):
        return subprocess.run(COMMAND + ["--profile", "profile.ini", "plan.dxf", *arguments], cwd=self.folder,
                              stdin=subprocess.DEVNULL, capture_output=True, timeout=300, **more)

    def plot(self, *arguments, unit=1.0):
        self.doc.saveas(self.folder / "plan.dxf")
        run = self.run_program("-p", "plan.pdf", *arguments)
        self.errors = run.stderr.decode("utf-8")
        self.assertEqual(run.returncode, 0, self.errors)
        return plots.read_pdf(self.folder / "plan.pdf", unit)

    def refuse(self, *arguments):
        self.doc.saveas(self.folder / "plan.dxf")
        run = self.run_program(*arguments)
        self.assertEqual(run.returncode, 2)
        return run.stderr.decode("utf-8")

    def size(self, *arguments):
        page, = self.plot(*arguments)
        return round(page.width, 2), round(page.height, 2)

    def text(self, *arguments):
        """As a reader finds it."""
        return subprocess.run(["pdftotext", *arguments, self.folder / "plan.pdf", "-"], capture_output=True,
                              check=True).stdout.decode("utf-8")

    def test_paper(self):
        self.msp.add_line((0, 0), (1000, 500))
        for name, size in {"A3": (420, 297), "a3-portrait": (297, 420), "A0 landscape": (1189, 841),
                           "ANSI-B": (431.8, 279.4), "ansi d portrait": (558.8, 863.6), "300x555.5": (300, 555.5)}.items():
            self.assertEqual(self.size("--paper", name), size, name)
        # As the drawing lies.
        self.msp.add_line((0, 0), (0, 2000))
        self.assertEqual(self.size("--paper", "A3"), (297, 420))

    def test_scale(self):
        self.doc.layers.add("WALLS", color=1, lineweight=100)
        self.msp.add_line((0, 0), (5, 0), dxfattribs={"layer": "WALLS"})
        for unit, arguments, length in ((6, ("--scale", "1:50"), 100), (0, ("--scale", "2:1"), 10), (4, ("--scale", "3:2"), 7.5),
                                        (1, ("--scale", "1:2"), 63.5), (2, ("--scale", "1:100"), 15.24), (6, (), 287),
                                        (6, ("--scale", "fit", "--paper", "A5"), 200)):
            self.doc.header["$INSUNITS"] = unit
            page, = self.plot("--paper", "A4", *arguments)
            (line, color, width), = page.lines()
            self.assertAlmostEqual(math.dist(*line), length, delta=0.011, msg=f"{unit} {arguments}")
            self.assertAlmostEqual(width, 1.0)
            # In the middle of the paper.
            self.assertAlmostEqual((line[0][0] + line[1][0]) / 2, page.width / 2, delta=0.011)
        self.assertEqual(self.errors, "")
        self.plot("--scale", "1:1", "--paper", "A4")
        self.assertIn("Model: cut off, for at this scale it is 5000 x 0 mm on paper of 297 x 210 mm", self.errors)
        # Where a command chose what is seen, the plot is about that.
        page, = self.plot("--scale", "1:50", "-c", "ZOOM|C|5,0|2")
        (line, color, width), = page.lines()
        self.assertAlmostEqual(max(x for x, y in line), page.width / 2, delta=0.011)

    def test_layouts_are_pages_as_they_are_set_up(self):
        self.msp.add_lwpolyline([(0, 0), (20, 0), (20, 10), (0, 10)], close=True)
        first = self.doc.layout("Layout1")
        first.page_setup(size=(420, 297), margins=(10, 20, 10, 5), units="mm")
        first.add_viewport(center=(150, 130), size=(200, 100), view_center_point=(10, 5), view_height=10)
        first.add_line((0, 0), (395, 0), dxfattribs={"color": 1})
        turned = self.doc.new_layout("План Б")
        turned.page_setup(size=(11, 8.5), margins=(1, 0.75, 0.5, 0.25), units="inch", rotation=1)
        turned.add_line((0, 0), (2, 0), dxfattribs={"color": 1})
        window = self.doc.new_layout("Window")
        window.page_setup(size=(297, 210), margins=(10, 10, 10, 10), units="mm", scale=(1, 2))
        window.add_line((100, 100), (200, 150), dxfattribs={"color": 1})
        window.dxf.plot_type = 4
        window.dxf.plot_layout_flags = 4  # centred
        for name, value in {"plot_window_x1": 100, "plot_window_y1": 100, "plot_window_x2": 200, "plot_window_y2": 150}.items():
            window.dxf.set(name, value)
        self.doc.new_layout("Empty")

        def red(page):
            (line, _, _), = page.lines("#ff0000")
            return [(round(x, 2), round(y, 2)) for x, y in line]

        pages = self.plot("--layout", "all")
        self.assertEqual([(round(page.width, 1), round(page.height, 1)) for page in pages], [(420, 297), (215.9, 279.4), (297, 210)])
        self.assertEqual(red(pages[0]), [(5, 287), (400, 287)])
        # Turned by a quarter to the left: what was the lower edge is the left one.
        self.assertEqual(red(pages[1]), [(12.7, 260.35), (63.5, 260.35)])
        self.assertEqual(red(pages[2]), [(123.5, 117.5), (173.5, 92.5)])
        black = [line for line, _, _ in pages[0].lines("#000000") if len(line) == 5]
        self.assertEqual(len(black), 2, "the frame and what is seen through it")
        page, = self.plot("--layout", "план б")
        self.assertEqual(red(page), red(pages[1]))
        # Half the size on another paper.
        page, = self.plot("--layout", "Layout1", "--paper", "210x148.5")
        self.assertEqual(red(page), [(2.5, 143.5), (200, 143.5)])
        self.assertIn('the drawing has no layout "Nope"; it has Model, Layout1, План Б, Window, Empty',
                      self.refuse("-p", "x.pdf", "--layout", "Nope", "-o", "saved.dxf"))
        self.assertFalse((self.folder / "saved.dxf").exists())

        # The same sheet in the other formats, four pixels a millimetre.
        page, = self.plot("--layout", "Layout1", unit=1 / 4)
        run = self.run_program("-p", "plan.svg", "--layout", "Layout1", "--size", "1680x1188")
        self.assertEqual(run.returncode, 0)
        self.assertEqual(list(compare_plots.differences(plots.read_plot(self.folder / "plan.svg"), page)), [])

    def everything(self):
        block = self.doc.blocks.new("PART")
        block.add_circle((0, 0), 10, dxfattribs={"color": 0})
        block.add_text("IN BLOCK", height=3)
        for i in range(6):
            self.msp.add_blockref("PART", (40 * i, 0), dxfattribs={"rotation": 90 * i, "xscale": 1 + i / 4, "color": i + 1})
        for i, text in enumerate(ALPHABETS):
            self.msp.add_text(text.replace("Ø", "%%c"), height=5).set_placement((0, 30 + 10 * i))
        self.msp.add_mtext("Two {\\C1;words}\\PDN\\S1/2;", dxfattribs={"char_height": 5, "insert": (100, 90)})
        self.msp.add_ellipse((180, 60), (40, 10), 0.4, dxfattribs={"linetype": "DASHED", "color": 3, "lineweight": 70})
        hatch = self.msp.add_hatch(color=5)
        hatch.paths.add_polyline_path([(140, 20), (160, 20), (150, 35)], is_closed=True)
        hatch.paths.add_polyline_path([(146, 22), (154, 22), (150, 30)], is_closed=True)
        half = [[(0, 0, 0, 255)] * 40 + [(0, 0, 0, 0)] * 40] * 15 + [[(255, 0, 0, 128)] * 80] * 15
        (self.folder / "half.png").write_bytes(png_file.written(half))
        picture = self.doc.add_image_def("half.png", (80, 30))
        self.msp.add_image(picture, (30, 85), (40, 15), 20).dxf.flags = 3 + 8
        cut = self.msp.add_image(picture, (140, 85), (40, 15))
        cut.set_boundary_path([(5, 5), (70, 5), (40, 28)])
        cut.dxf.clipping = 1
        self.msp.new_entity("TOLERANCE", {"insert": (200, 90), "content": "{\\Fgdt;j}%%v{\\Fgdt;n}0.5{\\Fgdt;m}%%vA", "dimstyle": "Standard"})
        self.doc.layers.add("OFF").off()
        self.msp.add_text("NOT SHOWN", height=5, dxfattribs={"layer": "OFF"})

    def test_shows_what_the_other_formats_do(self):
        self.everything()
        page, = self.plot("--paper", "300x200", "--scale", "1:1", "-c", "ZOOM|C|100,50|200", unit=1 / 4)
        run = self.run_program("-p", "plan.svg", "-c", "ZOOM|C|100,50|200", "--size", "1200x800")
        self.assertEqual(run.returncode, 0)
        self.assertEqual(list(compare_plots.differences(plots.read_plot(self.folder / "plan.svg"), page)), [])

    def test_texts_are_found(self):
        self.everything()
        page, = self.plot()
        found = self.text()
        for text in [*ALPHABETS, "IN BLOCK", "Two words", "DN1/2"]:
            self.assertIn(text, found.replace("\u202b", "").replace("\u202c", ""))
        self.assertEqual(found.count("BLOCK"), 6, "in every direction")
        self.assertIn("⌖ ⌀0.5Ⓜ", found)
        self.assertNotIn("NOT SHOWN", found)
        # Only what is on the paper, and where it stands there: 20 millimetres from the left and the upper edge.
        self.plot("--paper", "100x100", "--scale", "1:1", "-c", "ZOOM|C|30,0|50")
        self.assertNotIn("日本語", self.text())
        place = {"-x": 18, "-y": 12, "-W": 70, "-H": 10}
        self.assertEqual(self.text(*(word for name, value in place.items() for word in (name, str(round(value * 72 / 25.4))))).strip(),
                         ALPHABETS[0])
        # Through a viewport that shows a part.
        layout = self.doc.layout("Layout1")
        layout.page_setup(size=(200, 100), margins=(0, 0, 0, 0), units="mm")
        layout.add_viewport(center=(100, 50), size=(100, 10), view_center_point=(50, 42), view_height=10)
        self.plot("--layout", "Layout1")
        self.assertIn("Русский", self.text())
        self.assertNotIn("日本語", self.text())

    def test_looks_alike_in_a_reader(self):
        self.everything()
        self.plot("--paper", "300x200", "--scale", "1:1", "-c", "ZOOM|C|100,50|200")
        self.run_program("-p", "plan.png", "-c", "ZOOM|C|100,50|200", "--size", "1200x800")
        # Four pixels a millimetre.
        subprocess.run(["pdftoppm", "-r", "101.6", "-scale-to-x", "1200", "-scale-to-y", "800", "-singlefile", "plan.pdf", "plan"],
                       cwd=self.folder, check=True)
        png = subprocess.run(["pngtopnm", "plan.png"], cwd=self.folder, capture_output=True, check=True).stdout
        ours, theirs = (picture[-1200 * 800 * 3:] for picture in (png, (self.folder / "plan.ppm").read_bytes()))
        # Ink in squares of ten millimetres, which no other edge of a line changes much.
        for y in range(0, 800, 40):
            for x in range(0, 1200, 40):
                rows = [slice(3 * (1200 * (y + i) + x), 3 * (1200 * (y + i) + x + 40)) for i in range(40)]
                ink = [sum(255 * 120 - sum(picture[row]) for row in rows) / (255 * 120) for picture in (ours, theirs)]
                self.assertAlmostEqual(*ink, delta=0.25 + 0.15 * max(ink), msg=f"at {x},{y}")

    def test_colors(self):
        self.everything()
        for colors, ground, inks in (("mono", "#ffffff", {"#000000"}),
                                     ("dark", "#1e1e1e", {"#ff0000", "#ffff00", "#00ff00", "#00ffff", "#0000ff", "#ff00ff", "#ffffff"})):
            page, = self.plot("--colors", colors)
            self.assertEqual(self.run_program("-p", "plan.svg", "--colors", colors).returncode, 0)
            for plot in (page, plots.read_plot(self.folder / "plan.svg")):
                self.assertEqual((plot.background, {shape.color for shape in plot.shapes}), (ground, inks))

    def test_a_slide_fills_the_paper(self):
        self.doc.saveas(self.folder / "plan.dxf")
        shutil.copy(pathlib.Path(__file__).parent.parent / "slides" / "chair.sld", self.folder)
        self.assertEqual(self.run_program("-c", "VSlide|chair", "-p", "plan.pdf", "--size", "800x400").returncode, 0)
        self.run_program("-c", "VSlide|chair", "-p", "plan.svg", "--size", "800x400")
        page, = plots.read_pdf(self.folder / "plan.pdf", 297 / 800)
        slide = plots.read_plot(self.folder / "plan.svg")
        above, page.height = (page.height - 400) / 2, 400
        for shape in page.shapes:
            shape.contours = [[(x, y - above) for x, y in contour] for contour in shape.contours]
        self.assertEqual(list(compare_plots.differences(slide, page)), [])

    def test_files_are_sound_and_the_same_each_time(self):
        # More than a piece of a page.
        for i in range(30000):
            self.msp.add_line((i % 300, i // 300), (i % 300 + 1, i // 300 + i % 7), dxfattribs={"color": i % 7})
        self.everything()
        page, = self.plot()
        self.assertEqual(sum(len(line) == 2 for line, _, _ in page.lines()) // 1000, 30)
        before = (self.folder / "plan.pdf").read_bytes()
        run = subprocess.run(["qpdf", "--check", self.folder / "plan.pdf"], capture_output=True, text=True)
        self.assertEqual(run.returncode, 0, run.stdout + run.stderr)
        self.plot()
        self.assertEqual((self.folder / "plan.pdf").read_bytes(), before)
        if EMULATED:
            return
        # On a full disk the old file stays, and nothing beside it.
        names = sorted(path.name for path in self.folder.iterdir())
        run = self.run_program("-p", "plan.pdf", "--paper", "A0",
                               preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (20000, 20000)))
        self.assertEqual(run.returncode, 3)
        self.assertIn(b"plan.pdf: ", run.stderr)
        self.assertEqual((self.folder / "plan.pdf").read_bytes(), before)
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), names)

    def test_what_makes_no_sense_is_refused(self):
        for arguments, text in ((("--paper", "B3"), '"B3" is no paper; give A0 to A5'), (("--paper", "5x5"), "is no paper"),
                                (("--scale", "50"), '"50" is no scale; give PAPER:DRAWING'), (("--scale", "1:0"), "is no scale"),
                                (("--scale", "-1:2"), "is no scale"), (("--colors", "pink"), "neither color nor mono nor dark")):
            self.assertIn(text, self.refuse("-p", "x.pdf", *arguments))
        for arguments in (("--paper", "A3"), ("--scale", "1:2"), ("--layout", "all")):
            self.assertIn("give -p a name that ends in .pdf", self.refuse("-p", "x.svg", *arguments))
        self.assertEqual([path.name for path in self.folder.iterdir()], ["plan.dxf"])


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--emulator", default="")
    arguments, rest = parser.parse_known_args()
    global EMULATED
    EMULATED = bool(arguments.emulator)
    COMMAND[:] = [*filter(None, arguments.emulator.split(";")), arguments.program]
    unittest.main(argv=[sys.argv[0], *rest])


main()
