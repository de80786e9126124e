#!/usr/bin/env python3
"""What a plot shows of a drawing, by the shapes in the SVG file.

    plot_test.py --program TORVELHOST [--emulator COMMAND;...]

Unless a test says otherwise a drawing unit is a pixel, and the point x,y of the drawing is at x,600-y of the plot.
"""

import argparse
import math
import os
import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import time
import unittest

import ezdxf
import ezdxf.enums
import ezdxf.math
import ezdxf.render

import compare_plots
import plots

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent))
import png_file  # noqa: E402

COMMAND = []
RED, YELLOW, GREEN, BLUE, BLACK, WHITE = "#ff0000", "#ffff00", "#00ff00", "#0000ff", "#000000", "#ffffff"
SEED_FONTS = pathlib.Path(__file__).resolve().parent.parent.parent / "fuzz" / "seeds" / "font"
UNIT_IS_PIXEL = "ZOOM|C|400,300|600"


def box(points):
    xs, ys = zip(*points)
    return min(xs), min(ys), max(xs), max(ys)


def shapes():
    """Whether the program has the library that joins letters."""
    return (pathlib.Path(COMMAND[-1]).parent / "libtorvelshaping.so").exists()


class PlotTest(unittest.TestCase):
    fonts = None  # a folder; those that are installed

    def setUp(self):
        self.temporary = tempfile.TemporaryDirectory()
        self.folder = pathlib.Path(self.temporary.name)
        self.doc = ezdxf.new("R2018", setup=False)
        self.msp = self.doc.modelspace()

    def tearDown(self):
        self.temporary.cleanup()

    def run_program(self, *arguments):
        environment = {**os.environ, "TORVEL_FONTS": str(self.fonts)} if self.fonts else None
        return subprocess.run(COMMAND + ["--profile", "profile.ini", "--size", "800x600", *arguments], cwd=self.folder,
                              capture_output=True, timeout=120, env=environment)

    has_clips = False  # ezdxf has no class for them: they are written as extension records

    def plot(self, *commands, zoom=UNIT_IS_PIXEL):
        self.doc.saveas(self.folder / "plan.dxf")
        if self.has_clips:
            text = (self.folder / "plan.dxf").read_text()
            (self.folder / "plan.dxf").write_text(text.replace("\nXRECORD\n", "\nSPATIAL_FILTER\n"))
        arguments = [part for command in [*commands, zoom] if command for part in ("-c", command)]
        run = self.run_program("plan.dxf", "-p", "plot.svg", *arguments)
        self.errors = run.stderr.decode("utf-8")
        self.assertEqual(run.returncode, 0, self.errors)
        return plots.read_plot(self.folder / "plot.svg")

    def block(self, name, *lines, **attributes):
        block = self.doc.blocks.new(name)
        for start, end in lines:
            block.add_line(start, end, dxfattribs=attributes)
        return block

    def assertLines(self, plot, expected, color=None, tolerance=0.02):
        """The polylines in that colour are these, in any order and direction. Points are those of the drawing."""
        found = [points for points, _, _ in plot.lines(color)]
        wanted = [[(x, 600 - y) for x, y in points] for points in expected]
        for points in wanted:
            match = next((line for line in found if len(line) == len(points) and any(
                all(math.dist(a, b) <= tolerance for a, b in zip(line, ends)) for ends in (points, points[::-1]))), None)
            self.assertIsNotNone(match, f"{points} is not among {found}")
            found.remove(match)
        self.assertEqual(found, [])

    def assertBox(self, points, expected, tolerance=0.1):
        """The box around points of the plot, in units of the drawing."""
        x1, y1, x2, y2 = box(points)
        for a, b in zip((x1, 600 - y2, x2, 600 - y1), expected):
            self.assertAlmostEqual(a, b, delta=tolerance)

    # ---- the view

    def test_shows_what_there_is_or_what_zoom_left(self):
        self.msp.add_line((1000, 1000), (1400, 1300))
        plot = self.plot(zoom=None)  # all of it, a hundredth away from the border
        (points, _, _), = plot.lines()
        self.assertEqual([round(value) for value in box(points)], [8, 6, 792, 594])
        plot = self.plot("ZOOM|W|1000,1000|1200,1150")
        self.assertLines(self.plot("ZOOM|C|1200,1150|300", zoom=None), [[(0, 0), (800, 600)]])

    def test_layers_that_are_not_seen_do_not_count_for_what_there_is(self):
        self.doc.layers.add("OFF").off()
        self.msp.add_line((0, 0), (400, 300))
        self.msp.add_line((0, 0), (9000, 9000), dxfattribs={"layer": "OFF"})
        self.msp.add_xline((5000, 5000), (0, 1))
        (points, _, _), = self.plot(zoom=None).lines()
        self.assertEqual([round(value) for value in box(points)], [8, 6, 792, 594])

    def test_pictures_are_files_of_the_size_asked_for(self):
        self.msp.add_line((0, 0), (800, 600))
        self.plot()
        run = self.run_program("plan.dxf", "-p", "plot.png", "--size", "320x200")
        self.assertEqual(run.returncode, 0)
        png = (self.folder / "plot.png").read_bytes()
        self.assertEqual(png[:8], b"\x89PNG\r\n\x1a\n")
        self.assertEqual(struct.unpack(">II", png[16:24]), (320, 200))
        self.assertEqual(self.run_program("plan.dxf", "-p", "nowhere/plot.svg").returncode, 3)

    def test_a_picture_is_whole_or_the_old_one_stays(self):
        """However much memory there is."""
        if not hasattr(os, "posix_spawn") or COMMAND[1:]:
            self.skipTest("memory cannot be limited here")
        import resource
        slide = pathlib.Path(__file__).resolve().parent.parent / "slides" / "chair"
        picture = self.folder / "plot.png"

        def plot_within(kilobytes):
            picture.write_bytes(b"the old one")
            limit = kilobytes * 1024
            run = subprocess.run(COMMAND + ["--profile", "profile.ini", "-c", f"VSlide|{slide}", "-p", "plot.png"],
                                 cwd=self.folder, capture_output=True, timeout=120,
                                 preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (limit, limit)))
            if run.returncode == 0:
                return picture.read_bytes(), 0
            self.assertEqual(picture.read_bytes(), b"the old one", f"{kilobytes} kB: {run.stderr}")
            return run.stderr.decode("utf-8"), run.returncode

        enough = 1 << 17
        whole, status = plot_within(enough)
        if status != 0:
            self.skipTest("the program's own checks need more memory than can be limited")
        self.assertTrue(whole.endswith(b"IEND\xaeB`\x82"))
        too_little = 1 << 12
        while enough - too_little > 100:
            middle = (enough + too_little) // 2
            if plot_within(middle) == (whole, 0):
                enough = middle
            else:
                too_little = middle
        messages = []
        for kilobytes in range(enough - 4000, enough, 200):
            result, status = plot_within(kilobytes)
            if status == 0:
                self.assertEqual(result, whole, f"{kilobytes} kB")
            elif status == 3:
                messages.append(result)
        self.assertTrue(any("plot.png: not written, for there is not enough memory" in text for text in messages), messages)

    # ---- curves

    def test_infinite_lines_end_at_the_border(self):
        self.msp.add_xline((400, 100), (1, 0), dxfattribs={"color": 1})
        self.msp.add_xline((-5000, 300), (0, 1), dxfattribs={"color": 1})  # never seen
        self.msp.add_ray((400, 300), (1, 1), dxfattribs={"color": 3})
        self.msp.add_ray((900, 300), (1, 0), dxfattribs={"color": 3})  # runs away
        self.msp.add_ray((900, 200), (-1, 0), dxfattribs={"color": 3})
        plot = self.plot()
        self.assertLines(plot, [[(0, 100), (800, 100)]], RED, tolerance=1.1)
        self.assertLines(plot, [[(400, 300), (700, 600)], [(800, 200), (0, 200)]], GREEN, tolerance=1.1)

    def test_curves_are_round_with_few_points(self):
        self.msp.add_circle((200, 300), 100, dxfattribs={"color": 1})
        self.msp.add_arc((500, 300), 100, 90, 180, dxfattribs={"color": 3})
        self.msp.add_ellipse((400, 100), (100, 0), 0.5, 0, math.pi, dxfattribs={"color": 5})
        self.msp.add_lwpolyline([(600, 100, 1), (700, 100, 0), (700, 200, 0)], format="xyb", dxfattribs={"color": 2})
        self.msp.add_polyline2d([(600, 400, 1), (700, 400, 0)], format="xyb", dxfattribs={"color": 4})
        plot = self.plot()
        for color, center, radius, expected in (
                (RED, (200, 300), 100, (100, 200, 300, 400)), (GREEN, (500, 300), 100, (400, 300, 500, 400)),
                ("#00ffff", (650, 400), 50, (600, 350, 700, 400))):
            (points, _, _), = plot.lines(color)
            self.assertBox(points, expected, tolerance=0.2)
            self.assertLess(len(points), 80)
            for x, y in points:
                self.assertAlmostEqual(math.dist((x, 600 - y), center), radius, delta=0.02)
        (points, _, _), = plot.lines(BLUE)
        self.assertBox(points, (300, 100, 500, 150))
        (points, _, _), = plot.lines(YELLOW)
        self.assertBox(points, (600, 50, 700, 200), tolerance=0.2)

    def test_wide_polylines_are_areas(self):
        self.msp.add_lwpolyline([(100, 100), (300, 100), (300, 300)], dxfattribs={"const_width": 20, "color": 1})
        self.msp.add_lwpolyline([(500, 100, 0, 40), (700, 100, 0, 0)], format="xyse", dxfattribs={"color": 3})
        plot = self.plot()
        (area,) = plot.areas(RED)
        self.assertBox(sum(area.contours, []), (100, 90, 310, 300))
        (area,) = plot.areas(GREEN)
        self.assertBox(area.contours[0], (500, 80, 700, 120))
        # Where widths differ neither is drawn out to a spike, and the gap outside is filled.
        self.msp.add_lwpolyline([(400, 400, 40, 40), (600, 400, 4, 4), (600, 500, 4, 4)], format="xyse",
                                dxfattribs={"color": 5})
        (area,) = self.plot().areas(BLUE)
        self.assertEqual(sorted(len(contour) for contour in area.contours), [3, 4, 4])
        first, = (contour for contour in area.contours if len(contour) == 4 and min(contour)[0] < 401)
        self.assertBox(first, (400, 380, 600, 420))
        # The width counts for how far the drawing reaches, and for what reaches into the view.
        shown = self.plot(zoom=None)
        self.assertTrue(all(0 <= x <= 800 and 0 <= y <= 600 for area in shown.areas() for x, y in area.contours[0]))
        self.assertTrue(self.plot("ZOOM|C|200,95|2", zoom=None).areas(RED))

    def test_dashes(self):
        self.doc.linetypes.add("DASHED", [30.0, 20.0, -10.0])
        self.doc.header["$LTSCALE"] = 2
        self.msp.add_line((100, 100), (400, 100), dxfattribs={"linetype": "DASHED", "color": 1})
        self.msp.add_line((100, 200), (150, 200), dxfattribs={"linetype": "DASHED", "color": 3})  # too short for it
        self.msp.add_line((-1e7, 300), (1e7, 300), dxfattribs={"linetype": "DASHED", "color": 5})
        self.msp.add_lwpolyline([(500, 100), (640, 100), (640, 240)], dxfattribs={"linetype": "DASHED", "color": 2})
        plot = self.plot()
        self.assertLines(plot, [[(100 + 60 * i - (20 if i else 0), 100), (min(100 + 60 * i + 20, 400), 100)]
                                for i in range(6)]  # what is left over lies at both ends
                        , RED)
        self.assertLines(plot, [[(100, 200), (150, 200)]], GREEN)
        blue = [box(points) for points, _, _ in plot.lines(BLUE)]
        self.assertIn(len(blue), range(13, 16))
        self.assertTrue(all(end - start < 61 for start, _, end, _ in blue))
        # Each side of a polyline begins with a dash.
        self.assertTrue(any(math.dist(points[-1], (640, 500)) < 0.1 for points, _, _ in plot.lines(YELLOW)))
        self.assertEqual(len(plot.lines(YELLOW)), 6)

    def test_dashes_run_round_bends_and_begin_anew_at_corners(self):
        self.doc.linetypes.add("DASHED", [30.0, 20.0, -10.0])
        bent = [(100, 100, 1), (300, 100, 0), (300, 200, 0)]
        for shift, color, flags in ((0, 1, 0), (200, 3, 128)):
            polyline = self.msp.add_lwpolyline([(x, y + shift, bulge) for x, y, bulge in bent], format="xyb",
                                               dxfattribs={"linetype": "DASHED", "color": color})
            polyline.dxf.flags = flags
        plot = self.plot()
        arc = math.pi * 100
        self.assertEqual(len(plot.lines(RED)), int(arc // 30) + 1 + 100 // 30 + 1)
        self.assertEqual(len(plot.lines(GREEN)), int((arc + 100) // 30) + 1)

    def test_points_as_the_drawing_wants_them(self):
        self.msp.add_point((100, 100), dxfattribs={"color": 1})
        (area,) = self.plot().areas(RED)
        self.assertBox(area.contours[0], (99, 99, 101, 101))
        self.doc.header["$PDMODE"], self.doc.header["$PDSIZE"] = 34, 20
        plot = self.plot()
        self.assertLines(plot, [[(80, 100), (120, 100)], [(100, 80), (100, 120)]] +
                         [[(100 + 10 * math.cos(math.tau * i / 48), 100 - 10 * math.sin(math.tau * i / 48))
                           for i in range(49)]], RED)
        # As large in a block, however that is scaled.
        alone = plot
        self.msp.delete_all_entities()
        self.doc.blocks.new("MARKED").add_point((10, 50), dxfattribs={"color": 1})
        self.msp.add_blockref("MARKED", (80, 0), dxfattribs={"xscale": 2, "yscale": 2})
        self.assertLines(self.plot(), [[(x, 600 - y) for x, y in points] for points, _, _ in alone.lines(RED)], RED)
        self.doc.header["$PDSIZE"] = -10  # of the height
        self.assertBox(sum((points for points, _, _ in self.plot().lines(RED)), []), (40, 40, 160, 160))

    # ---- looks

    def test_colours_and_weights(self):
        layer = self.doc.layers.add("PIPES", color=5)
        layer.dxf.lineweight = 100
        self.msp.add_line((0, 10), (10, 10))
        self.msp.add_line((0, 20), (10, 20), dxfattribs={"layer": "PIPES"})
        self.msp.add_line((0, 30), (10, 30), dxfattribs={"layer": "PIPES", "color": 1, "lineweight": 50})
        self.msp.add_line((0, 40), (10, 40), dxfattribs={"true_color": 0x123456, "lineweight": 13})
        self.msp.add_line((0, 50), (10, 50), dxfattribs={"layer": "NOWHERE"})
        looks = {round(600 - points[0][1]): (color, width) for points, color, width in self.plot().lines()}
        self.assertEqual(looks, {10: (BLACK, 1), 20: (BLUE, 4), 30: (RED, 2), 40: ("#123456", 1), 50: (BLACK, 1)})

    def test_layers_hide(self):
        self.doc.layers.add("OFF").off()
        self.doc.layers.add("FROZEN").freeze()
        self.doc.layers.add("SEEN", color=1)
        self.block("PART", ((0, 0), (10, 0)))
        self.block("OTHER", ((0, 5), (10, 5)), layer="SEEN")
        for y, layer in enumerate(["OFF", "FROZEN", "SEEN"]):
            self.msp.add_line((0, y * 10), (10, y * 10), dxfattribs={"layer": layer})
            self.msp.add_blockref("PART", (100, y * 10), dxfattribs={"layer": layer})
            self.msp.add_blockref("OTHER", (200, y * 10), dxfattribs={"layer": layer})
        self.msp.add_line((0, 90), (10, 90), dxfattribs={"invisible": 1})
        self.doc.layers.add("UNPLOTTED").dxf.plot = 0
        self.msp.add_line((0, 95), (10, 95), dxfattribs={"layer": "UNPLOTTED"})
        # A layer that is off hides what is on it; one that is frozen, also what a reference on it shows of others.
        self.assertLines(self.plot(), [[(0, 20), (10, 20)], [(100, 20), (110, 20)], [(200, 5), (210, 5)],
                                       [(200, 25), (210, 25)]], RED)

    def test_blocks_take_from_their_references_what_they_leave_open(self):
        self.doc.layers.add("BLUE", color=5)
        inner = self.block("INNER", ((0, 0), (10, 0)), color=0)           # by block
        inner.add_line((0, 1), (10, 1))                                    # by layer, on layer 0
        inner.add_line((0, 2), (10, 2), dxfattribs={"layer": "BLUE"})
        outer = self.block("OUTER")
        outer.block.dxf.base_point = (5, 0, 0)
        outer.add_blockref("INNER", (25, 5), dxfattribs={"color": 0, "xscale": -1})
        self.msp.add_blockref("OUTER", (100, 100), dxfattribs={"color": 1, "rotation": 90, "xscale": 2, "yscale": 2})
        plot = self.plot()
        self.assertLines(plot, [[(90, 140), (90, 120)]], RED)
        self.assertLines(plot, [[(88, 140), (88, 120)]], BLACK)
        self.assertLines(plot, [[(86, 140), (86, 120)]], BLUE)

    def test_a_reference_seen_from_behind_is_mirrored(self):
        self.block("PART", ((0, 0), (10, 5)))
        self.msp.add_blockref("PART", (-100, 100), dxfattribs={"extrusion": (0, 0, -1)})
        self.assertLines(self.plot(), [[(100, 100), (90, 105)]])

    def test_arrays_repeat_their_attributes_too(self):
        block = self.block("PART", ((0, 0), (10, 0)), color=1)
        block.add_attdef("TAG", (0, 20), height=10)
        reference = self.msp.add_blockref("PART", (300, 100), dxfattribs={
            "column_count": 3, "row_count": 2, "column_spacing": 50, "row_spacing": 100, "rotation": 90, "color": 3})
        reference.add_auto_attribs({"TAG": "I"})
        plot = self.plot()
        cells = [(300 - 100 * row, 100 + 50 * column) for row in range(2) for column in range(3)]
        self.assertLines(plot, [[(x, y), (x, y + 10)] for x, y in cells], RED)
        for x, y in cells:
            self.assertTrue(any(x - 31 < points[0][0] < x - 19 and 600 - y - 11 < points[0][1] < 600 - y + 1
                                for points, _, _ in plot.lines(BLACK)), (x, y))

    def test_draw_order_and_wipeouts(self):
        self.msp.add_line((0, 100), (200, 100), dxfattribs={"color": 1})
        wipeout = self.msp.add_wipeout([(50, 50), (150, 50), (150, 150), (50, 150)])
        wipeout.dxf.color = 3
        self.doc.set_wipeout_variables(frame=1)
        late = self.msp.add_line((0, 110), (200, 110), dxfattribs={"color": 5})
        plot = self.plot()
        looks = [(shape.color, bool(shape.width)) for shape in plot.shapes]
        self.assertEqual(looks, [(RED, True), (WHITE, False), (GREEN, True), (BLUE, True)])
        self.assertBox(plot.areas(WHITE)[0].contours[0], (50, 50, 150, 150))
        self.assertBox(plot.lines(GREEN)[0][0], (50, 50, 150, 150))
        self.doc.set_wipeout_variables(frame=0)
        self.msp.set_redraw_order([(late.dxf.handle, "1")])
        looks = [(shape.color, bool(shape.width)) for shape in self.plot().shapes]
        self.assertEqual(looks, [(BLUE, True), (RED, True), (WHITE, False)])

    # ---- text

    def test_text_hangs_where_it_is_justified(self):
        def text(y, align, **attributes):
            entity = self.msp.add_text("HIH", dxfattribs={"height": 20, "color": y, **attributes})
            entity.set_placement((400, 100 * y), align=ezdxf.enums.TextEntityAlignment[align])
        text(1, "LEFT")
        text(2, "TOP_RIGHT")
        text(3, "MIDDLE_CENTER", width=2)
        text(4, "BOTTOM_CENTER", rotation=90)
        text(5, "LEFT", text_generation_flag=2)
        plot = self.plot()
        boxes = {}
        for points, color, _ in plot.lines():
            boxes.setdefault(color, []).extend(points)
        self.assertBox(boxes[RED], (402, 100, 445, 120), tolerance=8)
        self.assertBox(boxes[YELLOW], (355, 180, 398, 200), tolerance=8)
        x1, y1, x2, y2 = box(boxes[GREEN])
        self.assertAlmostEqual((x1 + x2) / 2, 400, delta=2)
        self.assertAlmostEqual(600 - (y1 + y2) / 2, 300, delta=1)
        self.assertGreater(x2 - x1, 60)
        x1, y1, x2, y2 = box(boxes["#00ffff"])
        self.assertLess(x2 - x1, 21)
        self.assertGreater(y2 - y1, 35)
        self.assertLessEqual(box(boxes[BLUE])[2], 400)

    def test_attributes_show_unless_they_are_invisible(self):
        block = self.block("PART")
        block.add_attdef("SEEN", (0, 0), dxfattribs={"height": 20, "color": 1})
        block.add_attdef("HIDDEN", (0, 50), dxfattribs={"height": 20, "color": 3, "flags": 1})
        block.add_attdef("CONSTANT", (0, 100), text="C", dxfattribs={"height": 20, "color": 5, "flags": 2})
        reference = self.msp.add_blockref("PART", (100, 100))
        reference.add_auto_attribs({"SEEN": "A", "HIDDEN": "B"})
        self.msp.add_attdef("LOOSE", (400, 100), dxfattribs={"height": 20, "color": 4})
        plot = self.plot()
        colors = {color for _, color, _ in plot.lines()}
        self.assertEqual(colors, {RED, BLUE, "#00ffff"})
        self.doc.header["$ATTMODE"] = 2
        self.assertIn(GREEN, {color for _, color, _ in self.plot().lines()})

    def test_multi_line_text(self):
        self.msp.add_mtext(r"{\C1;I}I\P\C3;I", dxfattribs={"char_height": 20, "insert": (100, 300),
                                                           "attachment_point": 1})
        plot = self.plot()
        self.assertEqual(len(plot.lines(RED)), 1)
        self.assertBox(plot.lines(RED)[0][0], (104, 280, 104, 300), tolerance=6)
        self.assertAlmostEqual(box(plot.lines(BLACK)[0][0])[0], box(plot.lines(RED)[0][0])[0] + 5, delta=2)
        self.assertBox(plot.lines(GREEN)[0][0], (104, 246.7, 104, 266.7), tolerance=6)

    def outlines(self, plot, color):
        """The corners of what is filled in that colour."""
        return [point for shape in plot.areas(color) for contour in shape.contours for point in contour]

    def test_text_in_outlines_hangs_by_the_widths_of_its_font(self):
        """Of the seed fonts A is 600 wide, of 700, B from 100 to 500, of 600; capitals are 700 high."""
        self.fonts = SEED_FONTS
        self.doc.styles.add("FILE", font="C:\\fonts\\SEED.TTF")
        self.doc.styles.add("FAMILY", font="").set_extended_font_data("Seed Compact")
        align = ezdxf.enums.TextEntityAlignment

        def text(color, style, **attributes):
            return self.msp.add_text("AB", height=70, dxfattribs={"style": style, "color": color, **attributes})
        text(1, "FILE").set_placement((100, 100))
        text(2, "FAMILY").set_placement((500, 100), align=align.RIGHT)
        text(3, "FILE", width=0.5).set_placement((400, 200), align=align.CENTER)
        text(4, "FILE").set_placement((100, 300), (360, 300), align.FIT)
        text(5, "FILE", rotation=90, text_generation_flag=2).set_placement((700, 300))
        plot = self.plot()
        self.assertBox(self.outlines(plot, RED), (100, 100, 220, 170))
        self.assertEqual([len(shape.contours) for shape in plot.areas(RED)], [3], "one is a hole")
        self.assertBox(self.outlines(plot, YELLOW), (370, 100, 490, 170))
        self.assertBox(self.outlines(plot, GREEN), (367.5, 200, 427.5, 270))
        self.assertBox(self.outlines(plot, "#00ffff"), (100, 300, 340, 370))
        self.assertBox(self.outlines(plot, BLUE), (630, 180, 700, 300))
        plain = self.plot("SETVAR|PLOTFONTS|0")
        self.assertEqual(plain.areas(), [])
        self.assertGreater(len(plain.lines()), 10)

    def test_characters_that_the_strokes_lack_are_taken_from_a_font(self):
        self.fonts = SEED_FONTS
        self.msp.add_text("I\u0416I", height=70, dxfattribs={"color": 1}).set_placement((100, 100))
        self.msp.add_mtext(r"I{\fSeed;AA}\P\fSeed|b1|i1;C\U+4E00\U+4E01", dxfattribs={
            "color": 3, "char_height": 70, "insert": (100, 500), "attachment_point": 1})
        plot = self.plot()
        self.assertEqual(len(plot.lines(RED)), 2, "both I")
        x1, y1, x2, y2 = box(self.outlines(plot, RED))
        self.assertAlmostEqual(x2 - x1, 70, delta=0.2)
        self.assertAlmostEqual(600 - y2, 100, delta=0.2)
        self.assertEqual([len(shape.contours) for shape in plot.areas(GREEN)], [4, 3])
        self.assertIn("no font that is installed has 2 of the characters, drawn as boxes: U+4E00 U+4E01", self.errors)
        self.plot("SETVAR|PLOTFONTS|0")
        self.assertNotIn("warning", self.errors)

    def test_every_alphabet_is_seen(self):
        self.fonts = pathlib.Path("/usr/share/fonts/truetype/dejavu")
        if not (self.fonts / "DejaVuSans.ttf").exists():
            self.skipTest("DejaVu Sans is not installed")
        self.doc.styles.add("SANS", font="dejavusans.ttf")
        self.msp.add_text("HxH", height=100, dxfattribs={"style": "SANS", "color": 1}).set_placement((100, 100))
        self.msp.add_text("\u041F\u0440\u03A9\u0627", height=50, dxfattribs={"color": 3}).set_placement((100, 300))
        plot = self.plot()
        # Capitals are 1493 high, of 2048 the em; H is 1540 wide and 201 from its left edge, x 1212.
        self.assertBox(self.outlines(plot, RED), (100 + 20100 / 1493, 100, 100 + (2 * 1540 + 1212 - 201) * 100 / 1493, 200),
                       tolerance=0.5)
        self.assertEqual(plot.lines(GREEN), [])
        self.assertGreater(len(self.outlines(plot, GREEN)), 30)
        told = "1 character of scripts whose letters join"
        (self.assertNotIn if shapes() else self.assertIn)(told, self.errors)

    def test_letters_join_and_run_to_the_left(self):
        self.fonts = pathlib.Path("/usr/share/fonts/truetype/dejavu")
        if not shapes() or not (self.fonts / "DejaVuSans.ttf").exists():
            self.skipTest("DejaVu Sans, or what shapes, is not there")
        self.doc.styles.add("SANS", font="dejavusans.ttf")
        right = ezdxf.enums.TextEntityAlignment.RIGHT

        def text(characters, y, color=1, **placement):
            entity = self.msp.add_text(characters, height=40, dxfattribs={"style": "SANS", "color": color})
            entity.set_placement((400, y), **placement)

        def mtext(contents, y, color=1, width=0):
            self.msp.add_mtext(contents, dxfattribs={"style": "SANS", "color": color, "char_height": 40,
                                                     "insert": (400, y + 40), "attachment_point": 1, "width": width})

        def same(up, these, those):
            """What is drawn in those colours is what is drawn in these, that much higher."""
            plot = self.plot()
            self.assertNotIn("warning", self.errors)
            low, high = ([p for color in colors for p in self.outlines(plot, color)] for colors in (these, those))
            self.assertEqual(len(low), len(high))
            x1, y1, x2, y2 = box(low)
            self.assertBox(high, (x1, 600 - y2 + up, x2, 600 - y1 + up), tolerance=0.3)
            self.msp.delete_all_entities()
            return plot

        alef, bet, beh, lam = "\u05D0", "\u05D1", "\u0628", "\u0644"
        # Letters have a form at the start of a word, within it and at its end, and some become one.
        for letters, forms in ((beh * 3, "\uFE91\uFE92\uFE90"), (lam + "\u0627", "\uFEFB")):
            text(letters, 100)
            text(forms, 200, color=3)
            same(100, [RED], [GREEN])
        # Also those of two colours.
        mtext(rf"{{\C1;{beh}}}{{\C3;{beh}}}", 100)
        text("\uFE91\uFE90", 200, color=5)
        same(100, [RED, GREEN], [BLUE])
        # A paragraph runs the way of its first letter; what runs the other way within it does so.
        mtext(rf"{{\C1;{alef}{bet}}} {{\C3;HI}}", 100)
        text(f"{alef}{bet} HI", 200, color=5)
        plot = same(100, [RED, GREEN], [BLUE])
        self.assertLess(box(self.outlines(plot, GREEN))[2], box(self.outlines(plot, RED))[0])
        mtext(rf"{{\C3;HI}} {{\C1;{alef}{bet}}}", 100)
        mtext(rf"{{\C5;{alef}{bet} HI}}", 200)
        same(100, [RED, GREEN], [BLUE])
        # Blanks where a line breaks have no room.
        mtext(rf"\pxqr;{alef * 4} {bet * 4}", 400, width=200)
        mtext(rf"\pxqr;{alef * 4}\P{bet * 4}", 100, color=3, width=200)
        same(-300, [RED], [GREEN])
        # Justified and underlined it ends where it hangs.
        text(f"{alef}{beh}", 100, align=right)
        text(f"%%u{alef}{beh}%%u", 200, color=3, align=right)
        (rule, _, _), = same(100, [RED], [GREEN]).lines(GREEN)
        self.assertAlmostEqual(box(rule)[2], 400, delta=0.5)

    def test_no_font_is_asked_for_what_stands_for_a_stack(self):
        light = pathlib.Path("/usr/share/fonts/truetype/dejavu/DejaVuSans-ExtraLight.ttf")
        if not shapes() or not light.exists():
            self.skipTest("DejaVu Sans ExtraLight, or what shapes, is not there")
        self.fonts = self.folder / "fonts"
        self.fonts.mkdir()
        shutil.copy(light, self.fonts)
        self.doc.styles.add("SANS", font="dejavusans.ttf")
        self.msp.add_mtext(r"\U+0E3F^I\S3/4;", dxfattribs={"style": "SANS", "char_height": 40, "insert": (100, 300)})
        self.plot()
        self.assertNotIn("warning", self.errors)

    def test_text_that_nobody_could_read_is_a_line(self):
        self.msp.add_text("NOTES", dxfattribs={"height": 1, "insert": (100, 100)})
        (points, _, _), = self.plot().lines()
        self.assertEqual(len(points), 2)
        self.assertBox(points, (100, 100.5, 104.5, 100.5), tolerance=1)

    # ---- areas and kinds without a class

    def test_hatches(self):
        solid = self.msp.add_hatch(color=1)
        solid.paths.add_polyline_path([(100, 100), (200, 100), (200, 200), (100, 200)])
        edges = solid.paths.add_edge_path()
        edges.add_arc((150, 150), 20, 0, 360)
        lines = self.msp.add_hatch(color=3)
        lines.set_pattern_fill("LINES", color=3, definition=[(0, (0, 0), (0, 10), [])])
        lines.paths.add_polyline_path([(300, 105), (400, 105), (400, 205), (300, 205)])
        edges = lines.paths.add_edge_path()
        edges.add_line((340, 145), (360, 145))
        edges.add_line((360, 145), (360, 165))
        edges.add_line((360, 165), (340, 165))
        edges.add_line((340, 165), (340, 145))
        plot = self.plot()
        (area,) = plot.areas(RED)
        self.assertBox(area.contours[0], (100, 100, 200, 200))
        self.assertBox(area.contours[1], (130, 130, 170, 170))
        expected = [[(300, y), (400, y)] for y in range(110, 210, 10) if y not in (150, 160)]
        expected += [[(x, y), (x + 40, y)] for y in (150, 160) for x in (300, 360)]
        self.assertLines(plot, expected, GREEN)

    def pattern(self, corners, *families, color=1):
        hatch = self.msp.add_hatch(color=color)
        hatch.set_pattern_fill("LINES", color=color, definition=families)
        hatch.paths.add_polyline_path(corners)
        return hatch

    def test_patterns_that_nobody_could_tell_apart_are_as_dark_as_their_ink(self):
        square = [(100, 100), (200, 100), (200, 200), (100, 200)]
        self.pattern(square, (0, (0, 0), (0, 1.25), []))
        self.pattern(square, (0, (0, 0), (0, 1.6), [0.3, -0.3]), (90, (0, 0), (1.25, 0), []), color=3)
        self.pattern(square, (0, (0, 0), (0, 20), []), (0, (0, 0), (0, 1e-6), []), color=5)
        plot = self.plot()
        self.assertEqual([area.opacity for area in plot.areas(RED)], [0.8])
        self.assertEqual([area.opacity for area in plot.areas(GREEN)], [0.31, 0.8])
        self.assertEqual([area.opacity for area in plot.areas(BLUE)], [1])
        self.assertEqual(len(plot.lines(BLUE)), 5)
        self.assertBox(plot.areas(RED)[0].contours[0], (100, 100, 200, 200))
        # The lines are thick where the picture is small, and are told apart where it is large.
        self.assertEqual([area.opacity for area in self.plot(zoom="ZOOM|C|400,300|1200").areas(RED)], [1])
        near = self.plot(zoom="ZOOM|C|150,150|60")
        self.assertEqual([area.color for area in near.areas()], [BLUE])
        self.assertEqual(len(near.lines(RED)), 49)

    def test_patterns_end_whatever_their_numbers_are(self):
        square = [(100, 100), (200, 100), (200, 200), (100, 200)]
        # Far from where it begins a pattern has no place, but it has its spacing.
        self.pattern(square, (0, (0, 1e20), (0, 10), []))
        self.pattern(square, (0, (1e20, 0), (0, 10), [5, -5]), color=3)
        self.pattern(square, (0, (0, 2e16), (2e16, 10), []), color=5)
        self.pattern(square, (0, (0, 0), (0, 1e20), []), (0, (0, 0), (0, 1e-300), []), color=2)
        # Of what is much larger than the picture only that is drawn which it shows.
        self.pattern([(-1e6, -1e6), (1e6, -1e6), (1e6, 1e6), (-1e6, 1e6)], (0, (0, 0), (0, 10), [0, -4]), color=4)
        started = time.monotonic()
        plot = self.plot()
        self.assertLess(time.monotonic() - started, 20)
        for color in RED, BLUE:
            self.assertIn(len(plot.lines(color)), (10, 11))
        self.assertGreater(len(plot.lines(GREEN)), 90)
        self.assertLess(len(plot.areas("#00ffff")), 20000)
        self.assertGreater(len(plot.areas("#00ffff")), 11000)

    def test_styles_of_hatches_choose_their_paths(self):
        for style, size in (0, 3), (1, 2), (2, 1):
            hatch = self.msp.add_hatch(color=1, dxfattribs={"hatch_style": style})
            for depth, flags in enumerate((1, 16, 0)):
                low, high = 100 + 10 * depth, 200 - 10 * depth
                hatch.paths.add_polyline_path([(low, low), (high, low), (high, high), (low, high)], flags=flags)
        self.assertEqual([len(area.contours) for area in self.plot().areas(RED)], [3, 2, 1])

    def test_solids_faces_dimensions_leaders(self):
        self.msp.add_solid([(0, 0), (10, 0), (0, 10), (10, 10)], dxfattribs={"color": 1})
        face = self.msp.add_3dface([(100, 0), (110, 0), (110, 10), (100, 10)], dxfattribs={"color": 3})
        face.set_edge_visibility(0, False)
        dimension = self.msp.add_linear_dim(base=(300, 50), p1=(300, 10), p2=(400, 10), dxfattribs={"color": 5})
        dimension.render()
        self.msp.add_leader([(500, 100), (560, 160), (600, 160)], override={}, dxfattribs={"color": 2})
        plot = self.plot()
        (area,) = plot.areas(RED)
        self.assertEqual([(round(x), round(600 - y)) for x, y in area.contours[0]], [(0, 0), (10, 0), (10, 10), (0, 10)])
        self.assertLines(plot, [[(110, 0), (110, 10)], [(110, 10), (100, 10)], [(100, 10), (100, 0)]], GREEN)
        self.assertBox(sum((points for points, _, _ in plot.lines(BLUE)), []), (300, 10, 400, 50), tolerance=3)
        self.assertBox(plot.lines(YELLOW)[0][0], (500, 100, 600, 160), tolerance=3)
        self.assertEqual(len(plot.areas(YELLOW)), 1)
        self.assertNotIn("not drawn", self.errors)

    def test_leaders_along_splines(self):
        corners = [(100, 100), (150, 200), (220, 120), (300, 160)]
        self.doc.dimstyles.get("Standard").dxf.dimasz = 20
        self.msp.add_leader(corners, dxfattribs={"color": 1, "path_type": 1})
        builder = self.msp.add_multileader_mtext("Standard")
        builder.set_content("", char_height=10)
        builder.set_leader_properties(color=5, leader_type=2)
        builder.add_leader_line(ezdxf.render.ConnectionSide.left, [(400, 100), (450, 200)])
        builder.build(insert=ezdxf.math.Vec2(500, 150))
        self.msp.add_leader([(0, 0)] * 3, dxfattribs={"path_type": 1})  # nowhere
        plot = self.plot()
        self.assertNotIn("not drawn", self.errors)
        ((line, _, _),), (head,) = plot.lines(RED), plot.areas(RED)
        line = [(x, 600 - y) for x, y in line]
        for corner in corners:
            self.assertLess(min(math.dist(corner, point) for point in line), 0.1, "through all corners")
        directions = [math.atan2(y2 - y1, x2 - x1) for (x1, y1), (x2, y2) in zip(line, line[1:])]
        self.assertLess(max(abs(a - b) for a, b in zip(directions, directions[1:])), 0.2, "and without a bend")
        tip, *base = [(x, 600 - y) for x, y in head.contours[0]]
        middle = [sum(values) / 2 for values in zip(*base)]
        self.assertEqual((tip, round(math.dist(tip, middle), 1)), ((100, 100), 20))
        self.assertAlmostEqual(math.atan2(middle[1] - 100, middle[0] - 100), directions[0], delta=0.02)
        self.assertNotAlmostEqual(directions[0], math.atan2(100, 50), delta=0.05)
        (curve,) = [points for points, _, _ in plot.lines(BLACK) if len(points) > 10]
        self.assertEqual([(x, 600 - y) for x, y in curve[:1]], [(400, 100)])

    def test_meshes_and_multiple_lines(self):
        grid = self.msp.add_polymesh((2, 3), dxfattribs={"color": 1})
        for m in range(2):
            for n in range(3):
                grid.set_mesh_vertex((m, n), (100 + 10 * m, 100 + 10 * n, 5))
        faces = self.msp.add_polyface(dxfattribs={"color": 3})
        faces.append_faces([[(200, 100), (220, 100), (220, 120)], [(200, 100), (220, 120), (200, 120)]])
        self.msp.add_mline([(300, 100), (400, 100)], dxfattribs={"color": 5, "scale_factor": 10})
        plot = self.plot()
        self.assertLines(plot, [[(100, 100), (100, 110), (100, 120)], [(110, 100), (110, 110), (110, 120)],
                                [(100, 100), (110, 100)], [(100, 110), (110, 110)], [(100, 120), (110, 120)]], RED)
        diagonal = [(200, 100), (220, 120)]
        self.assertLines(plot, [[(200, 100), (220, 100)], [(220, 100), (220, 120)], diagonal, diagonal,
                                [(220, 120), (200, 120)], [(200, 120), (200, 100)]], GREEN)
        self.assertLines(plot, [[(300, y), (400, y)] for y in (100, 90)], BLUE)

    def test_meshes_that_can_be_subdivided_show_each_edge_once(self):
        cube = [(x, y, z) for z in (0, 50) for x, y in ((100, 100), (150, 100), (150, 150), (100, 150))]
        faces = [(0, 1, 2, 3), (4, 5, 6, 7), (0, 1, 5, 4), (1, 2, 6, 5), (2, 3, 7, 6), (3, 0, 4, 7)]

        def add(faces, color, smooth=0):
            mesh = self.msp.add_mesh({"color": color, "subdivision_levels": smooth})
            with mesh.edit_data() as data:
                data.vertices, data.faces = cube, faces
                data.add_edge_crease(0, 1, 2.0)

        add(faces, 1, smooth=2)
        add([(0, 1, 2), (0, 2, 99), (4, 5, 6)], 5)
        plot = self.plot()
        self.assertIn("not drawn: 1 MESH", self.errors)
        self.assertEqual((len(plot.lines(RED)), len(plot.areas(RED))), (8, 4))  # four are seen from their end
        self.assertLines(plot, [[(100, 100), (150, 100)], [(150, 100), (150, 150)], [(150, 150), (100, 100)]], BLUE)

    def test_tolerances_are_cells_in_rows(self):
        style = self.doc.dimstyles.get("Standard")
        style.dxf.update({"dimtxt": 10, "dimgap": 2.5, "dimscale": 2, "dimclrd": 1, "dimclrt": 5})

        def add(place, content, **attributes):
            return self.msp.new_entity("TOLERANCE", {"insert": place, "content": content, "dimstyle": "Standard", **attributes})

        def cells(color=RED):
            boxes = [box(points) for points, _, _ in self.plot().lines(color) if len(points) == 5]
            return [tuple(round(edge, 1) for edge in (x1, 600 - y2, x2, 600 - y1)) for x1, y1, x2, y2 in boxes]

        add((100, 300), "{\\Fgdt;j}%%v{\\Fgdt;n}0.5%%v%%vA^J{\\Fgdt;j}%%v{\\Fgdt;n}0.1^J%%vD")
        sign, first, datum, second, third = cells()
        # Text and a gap on both sides; the sign of both rows stands once.
        self.assertEqual((sign[:2], sign[3]), ((100, 255), 315))
        for left, right in ((sign, first), (first, datum), (sign, second)):
            self.assertEqual(left[2], right[0], "side by side, and nothing for an empty cell")
        self.assertEqual([(cell[1], cell[3]) for cell in (first, datum, second, third)], [(285, 315), (285, 315), (255, 285), (225, 255)])
        self.assertEqual(third[0], 100)
        ink = self.plot().lines(BLUE)
        for x1, y1, x2, y2 in (sign, first, datum, second, third):
            inside = [(x, 600 - y) for points, _, _ in ink for x, y in points if x1 < x < x2 and y1 < 600 - y < y2]
            low, high = (limit(y for _, y in inside) for limit in (min, max))
            self.assertAlmostEqual((low + high) / 2, (y1 + y2) / 2, delta=1.5, msg="in the middle")
            self.assertAlmostEqual(sum(limit(x for x, _ in inside) for limit in (min, max)) / 2, (x1 + x2) / 2, delta=1)
            self.assertLessEqual(high - low, 20.1)
        # Turned, and with sizes of its own: its extended data override the style.
        self.msp.delete_all_entities()
        turned = add((100, 100), "0.1", x_axis_vector=(0, 1, 0))
        turned.set_xdata("ACAD", [(1000, "DSTYLE"), (1002, "{"), (1070, 40), (1040, 1.0), (1070, 176), (1070, 3), (1002, "}")])
        (cell,) = cells(GREEN)
        self.assertEqual((cell[0], cell[1], cell[2]), (92.5, 100, 107.5))
        # No text, and texts that are none.
        self.msp.delete_all_entities()
        for content in ("", "%%v%%v", "^J^J", "{\\Fgdt", "{\\Fgdt;", "}}{{"):
            add((100, 100), content)
        self.plot()
        self.assertNotIn("not drawn", self.errors)

    def test_kinds_that_nobody_knows_look_as_their_graphics_say(self):
        def record(kind, *values):
            parts = [struct.pack("<I", value) if isinstance(value, int) else value if isinstance(value, bytes) else
                     struct.pack(f"<{len(value)}d", *value) for value in values]
            content = b"".join(parts)
            return struct.pack("<II", len(content) + 8, kind) + content

        def add(kind, *records):
            content = b"".join(records)
            entity = self.msp.new_entity(kind, {"color": 3})
            entity.proxy_graphic = struct.pack("<II", len(content) + 8, len(records)) + content
            return content

        up, corners = (0.0, 0.0, 1.0), [(0.0, 0.0, 0.0), (10.0, 0.0, 0.0), (10.0, 10.0, 5.0), (0.0, 10.0, 5.0)]
        square = sum(corners, ())
        color = record(14, 1)
        add("REGION", record(1, (0.0,) * 6), record(6, 2, (100.0, 100.0, 0.0, 150.0, 120.0, 0.0)), color, record(18, 5),
            record(32, 2, (100.0, 200.0, 0.0, 150.0, 220.0, 0.0), up), record(22, 0xC20000FF), record(7, 4, square))
        add("BODY", color, record(2, (300.0, 300.0, 0.0), (50.0,), up),
            record(4, (300.0, 300.0, 0.0), (20.0,), up, (0.0, 1.0, 0.0), (math.pi / 2,), 0))
        add("3DSOLID", record(14, 5), record(9, 4, square, 9, 3, 0, 1, 2, 4, 0, 1, 2, 3))
        wide = "Ø 5\0".encode("utf-16-le")
        add("SURFACE", record(14, 6), record(36, (400.0, 100.0, 0.0), up, (0.0, 1.0, 0.0), (12.0, 1.0, 0.0), wide),
            record(20, 1), record(14, 2), record(7, 4, square))
        plot = self.plot()
        self.assertNotIn("not drawn", self.errors)
        square = [(0, 0), (10, 0), (10, 10), (0, 10), (0, 0)]
        self.assertLines(plot, [[(100, 100), (150, 120)]], GREEN)
        reds = [points for points, _, _ in plot.lines(RED)]
        self.assertEqual([(x, 600 - y) for x, y in reds[0]], [(100, 200), (150, 220)])
        self.assertBox(reds[1], (250, 250, 350, 350), tolerance=0.2)
        self.assertBox(reds[2], (280, 300, 300, 320), tolerance=0.2)
        blue = [sorted((round(x), round(600 - y)) for x, y in points) for points, _, _ in plot.lines(BLUE)]
        triangle = square[:3] + square[:1]
        self.assertEqual(blue, [sorted(line) for line in (square, triangle, square)])
        letters = sum((points for points, _, _ in plot.lines("#ff00ff")), [])
        self.assertBox(letters, (387, 100, 401, 128), tolerance=3)
        self.assertEqual(len(plot.areas(YELLOW)), 1)
        # What is not known, or cut off, counts as not drawn; the rest is.
        self.msp.delete_all_entities()
        whole = record(6, 2, (100.0, 100.0, 0.0, 150.0, 120.0, 0.0))
        damaged = [record(99), whole[:-10], record(6, 4000000000, (0.0,)), record(8, 4000000000, 0), record(9, 1, (0.0,) * 3, 2, 1, 7),
                   record(9, 0, 2, 0x80000000, 0), record(36), b"\1\0\0\0\6", record(2, (math.nan,) * 7), record(29, (1.0,) * 16)]
        for part in damaged:
            add("BODY", whole, part)
        plot = self.plot()
        self.assertIn(f"not drawn: {len(damaged)} BODY", self.errors)
        self.assertLines(plot, [[(100, 100), (150, 120)]] * len(damaged), GREEN)

    def test_what_cannot_be_drawn_is_counted_once(self):
        block = self.block("PART")
        block.add_body()
        for x in range(3):
            self.msp.add_blockref("PART", (x, 0))
            self.msp.add_region()
        self.doc.add_xref_def("other.dxf", "OTHER")
        self.msp.add_blockref("OTHER", (0, 0))
        # What they show is not there.
        self.msp.add_blockref("GONE", (0, 0))
        self.msp.add_linear_dim(base=(0, 50), p1=(0, 10), p2=(40, 10)).dimension.dxf.geometry = "GONE"
        self.msp.add_hatch()
        clipped = self.msp.add_blockref("PART", (0, 0)).new_extension_dict()
        clipped.dictionary.add_new_dict("ACAD_FILTER").add_xrecord("SPATIAL")
        self.plot()
        self.assertEqual(self.errors.count("not drawn"), 1)
        self.assertIn("not drawn: 1 BODY, 1 DIMENSION, 1 HATCH, 1 INSERT, 3 REGION, 1 clip of INSERT, 1 external reference", self.errors)

    # ---- layouts

    def test_layouts_show_the_model_through_their_viewports(self):
        self.doc.layers.add("NOTES", color=1)
        self.msp.add_line((-1000, 0), (1000, 0), dxfattribs={"color": 3})
        self.msp.add_line((0, 0), (0, 40), dxfattribs={"layer": "NOTES"})
        self.msp.add_line((100, 100), (120, 120), dxfattribs={"color": 4})  # beside what both viewports show
        layout = self.doc.layout("Layout1")
        layout.add_viewport(center=(200, 300), size=(200, 100), view_center_point=(0, 0), view_height=50)
        turned = layout.add_viewport(center=(600, 300), size=(100, 100), view_center_point=(0, 0), view_height=100)
        turned.dxf.view_twist_angle = 90
        turned.frozen_layers = ["NOTES"]
        layout.add_line((0, 0), (10, 0), dxfattribs={"color": 5})
        plot = self.plot("LAYOUT|Layout1")
        self.assertLines(plot, [[(0, 0), (10, 0)]], BLUE)
        self.assertLines(plot, [[(100, 300), (300, 300)], [(600, 250), (600, 350)]], GREEN, tolerance=0.6)
        self.assertLines(plot, [[(200, 300), (200, 350)]], RED, tolerance=0.6)
        self.assertEqual(len(plot.areas()), 0)
        frames = [sorted(points[:4]) for points, _, _ in plot.lines() if len(points) == 5]
        self.assertIn(sorted([(100, 250), (100, 350), (300, 250), (300, 350)]), frames)
        self.assertEqual(plot.lines("#00ffff"), [])

    def clip(self, reference, corners, scale=1, place=(0, 0), in_force=1):
        """Clips it as if this were done where the block stands at `place`, in the world's coordinates."""
        self.has_clips = True
        back = [1 / scale, 0, 0, -place[0] / scale, 0, 1 / scale, 0, -place[1] / scale, 0, 0, 1 / scale, 0]
        plane = [1, 0, 0, -5, 0, 1, 0, -7, 0, 0, 1, 0]  # the corners are written 5 to the left and 7 further down
        filters = reference.new_extension_dict().dictionary.add_new_dict("ACAD_FILTER")
        filters.add_xrecord("SPATIAL").reset(
            [(70, len(corners))] + [(10, (x - 5, y - 7)) for x, y in corners] +
            [(210, (0, 0, 1)), (11, (0, 0, 0)), (71, in_force), (72, 1), (40, 3.5), (73, 0)] + [(40, value) for value in back + plane])

    def test_references_show_what_their_clip_leaves(self):
        self.block("LINE", ((-100, 0), (100, 0)))
        u = [(110, 0), (190, 0), (190, 600), (170, 600), (170, 20), (130, 20), (130, 600), (110, 600)]
        scaled = {"xscale": 2, "yscale": 2}
        self.clip(self.msp.add_blockref("LINE", (200, 500), scaled), [(150, 450), (260, 550)], 2, (200, 500))
        # Moved since: the clip moves along.
        self.clip(self.msp.add_blockref("LINE", (230, 400), scaled), [(150, 450), (260, 550)], 2, (200, 500))
        self.clip(self.msp.add_blockref("LINE", (150, 300)), u, 1, (150, 300))
        self.clip(self.msp.add_blockref("LINE", (150, 250)), u, 1, (150, 250), in_force=0)
        # One within the other, both with a gap.
        outer = self.doc.blocks.new("OUTER")
        self.clip(outer.add_blockref("LINE", (150, 30)), u, 1, (150, 30))
        outer.add_line((0, 5), (300, 5))
        comb = [(115, 150), (185, 150), (185, 250), (155, 250), (155, 160), (145, 160), (145, 250), (115, 250)]
        self.clip(self.msp.add_blockref("OUTER", (0, 200)), comb, 1, (0, 200))
        plot = self.plot()
        self.assertNotIn("not drawn", self.errors)
        self.assertLines(plot, [
            [(150, 500), (260, 500)], [(180, 400), (290, 400)], [(110, 300), (130, 300)], [(170, 300), (190, 300)],
            [(50, 250), (250, 250)], [(115, 205), (145, 205)], [(155, 205), (185, 205)],
            [(115, 230), (130, 230)], [(170, 230), (185, 230)]], tolerance=0.6)  # half a pen reaches over a clip
        # And only there they are picked.
        for x, y, is_there in [(120, 300, True), (150, 300, False), (180, 300, True), (60, 250, True), (170, 500, True),
                               (100, 500, False), (120, 230, True), (150, 230, False), (120, 205, True), (150, 205, False)]:
            run = self.run_program("plan.dxf", "-c", UNIT_IS_PIXEL, "-c", f"WHATIS|{x},{y}")
            self.assertEqual(b"INSERT" in run.stdout, is_there, (x, y, run.stdout))

    def test_what_is_drawn_can_be_picked(self):
        self.msp.add_solid([(100, 100), (150, 100), (100, 150), (150, 150)])
        self.msp.add_3dface([(200, 100), (250, 100), (250, 150), (200, 150)])
        self.msp.add_hatch().paths.add_polyline_path([(300, 100), (350, 100), (350, 150), (300, 150)])
        dense = self.msp.add_hatch()  # its lines cannot be told apart; it has a hole
        dense.set_pattern_fill("ANSI31", scale=0.001)
        dense.paths.add_polyline_path([(300, 200), (350, 200), (350, 250), (300, 250)], flags=1)
        dense.paths.add_polyline_path([(310, 210), (340, 210), (340, 240), (310, 240)], flags=16)
        self.msp.add_leader([(400, 100), (450, 150)])
        self.msp.add_linear_dim(base=(500, 150), p1=(500, 100), p2=(560, 100), override={"dimtxt": 10}).render()
        self.image("gone.png", (100, 200))
        block = self.doc.blocks.new("BLOCK")
        block.add_solid([(0, 0), (10, 0), (0, 10), (10, 10)])
        self.msp.add_blockref("BLOCK", (300, 300), {"xscale": 5, "yscale": 5, "rotation": 45})
        self.plot()  # writes the drawing
        for x, y, kind in [(125, 125, "SOLID"), (225, 100, "3DFACE"), (225, 125, None), (325, 125, "HATCH"),
                           (305, 225, "HATCH"), (325, 225, None), (425, 125, "LEADER"),
                           (500, 125, "DIMENSION"), (530, 110, None), (100, 220, "IMAGE"), (120, 220, None),
                           (300, 335, "INSERT"), (330, 305, None)]:
            run = self.run_program("plan.dxf", "-c", UNIT_IS_PIXEL, "-c", f"WHATIS|{x},{y}")
            self.assertIn(f"kind: {kind}\n".encode() if kind else b"", run.stdout.replace(b"\r\n", b"\n"))
            self.assertEqual(b"kind: " in run.stdout, kind is not None, (x, y, run.stdout))

    def write(self, name, content):
        (self.folder / name).write_bytes(content)

    def image(self, name, place, space=None, size=(80, 40), pixels=(40, 20), **attributes):
        definition = self.doc.add_image_def(name, pixels)
        image = (self.msp if space is None else space).add_image(definition, place, size, attributes.pop("rotation", 0))
        image.dxf.update(attributes)
        return image

    def colors(self, *places, commands=()):
        """The pixels of the PNG plot at these points of the drawing."""
        run = self.run_program("plan.dxf", "-p", "plot.png", *commands, "-c", UNIT_IS_PIXEL)
        self.assertEqual(run.returncode, 0, run.stderr)
        rows = png_file.read(self.folder / "plot.png")
        return [rows[600 - y][x] for x, y in places]

    FOUR = [[(255, 0, 0)] * 20 + [(0, 255, 0)] * 20] * 10 + [[(0, 0, 255)] * 20 + [(255, 255, 0)] * 20] * 10

    def test_images_show_their_pictures_as_they_lie(self):
        red, green, blue, yellow = ((255, 0, 0), (0, 255, 0), (0, 0, 255), (255, 255, 0))
        self.write("four.png", png_file.written(self.FOUR))
        self.image("four.png", (100, 100))
        self.image("C:\\elsewhere\\four.png", (300, 100), rotation=90)
        # Seen from behind, and small: drawn from a copy of another size.
        block = self.doc.blocks.new("MIRRORED")
        self.image("four.png", (0, 0), block)
        self.msp.add_blockref("MIRRORED", (500, 100), {"xscale": -1})
        self.msp.add_blockref("MIRRORED", (600, 100), {"xscale": -0.2, "yscale": 0.2})
        large = [[color for color in row for _ in range(20)] for row in self.FOUR for _ in range(20)]
        self.write("large.bmp", b"BM" + struct.pack("<IIIIiiHHIIiiII", 54 + 800 * 400 * 3, 0, 54, 40, 800, 400, 1, 24, 0, 0, 0, 0, 0, 0) +
                   bytes(part for row in reversed(large) for color in row for part in reversed(color)))
        self.image("large.bmp", (100, 300), pixels=(800, 400))
        plot = self.plot()
        self.assertEqual(self.errors.count("warning"), 0, self.errors)
        self.assertEqual(plot.lines(), [], "frames that the drawing does not want")

        def around(x, y, width, height):
            return [(x - width, y + height), (x + width, y + height), (x - width, y - height), (x + width, y - height)]

        for x, y, width, height, expected in [(140, 120, 30, 15, [red, green, blue, yellow]), (280, 140, 15, 30, [green, yellow, red, blue]),
                                              (460, 120, 30, 15, [green, red, yellow, blue]), (592, 104, 4, 2, [green, red, yellow, blue]),
                                              (140, 320, 30, 15, [red, green, blue, yellow])]:
            self.assertEqual(self.colors(*around(x, y, width, height)), expected, (x, y))
        self.assertEqual([(image.corner, image.right, image.low) for image in plot.images[:3]], [
            ((100, 460), (180, 460), (100, 500)), ((260, 500), (260, 420), (300, 500)), ((500, 460), (420, 460), (500, 500))])
        # Only where a viewport shows it.
        self.doc.layout("Layout1").add_viewport(center=(400, 300), size=(40, 80), view_center_point=(120, 120), view_height=80)
        self.doc.saveas(self.folder / "plan.dxf")
        self.assertEqual(self.colors((400, 305), (385, 305), (415, 305), (425, 305), commands=("-c", "LAYOUT|Layout1")),
                         [red, red, red, (255, 255, 255)])

    def test_images_are_cut_and_look_as_they_want(self):
        self.write("gray.png", png_file.written([[(100, 100, 100, 255)] * 20 + [(100, 100, 100, 0)] * 20] * 20))
        self.msp.add_line((0, 112), (800, 112), dxfattribs={"color": 1, "lineweight": 50})
        cut = [(9.5, 4.5), (19.5, 14.5)]  # in pixels, from its upper left corner
        for x, clip_mode in ((0, 0), (100, 1)):
            self.image("gray.png", (x, 100), clipping=1, clip_mode=clip_mode).set_boundary_path(cut)
        # The left half, the right half, and one pixel of the line.
        gray, white, red = ((level,) * 3 for level in (100, 255, 0))
        red = (255, 0, 0)
        looks = [({}, gray, white), ({"flags": 3 + 8}, gray, red), ({"brightness": 60}, (151,) * 3, white),
                 ({"contrast": 25}, (114,) * 3, (191,) * 3), ({"fade": 50}, (178,) * 3, white), ({"flags": 2}, red, red)]
        for i, (look, _, _) in enumerate(looks):
            self.image("gray.png", (200 + 100 * i, 100), **look)
        self.doc.set_raster_variables(frame=1)
        plot = self.plot()
        self.assertEqual(self.errors.count("warning"), 0, self.errors)
        self.assertEqual(self.colors((10, 112), (30, 112), (50, 112), (110, 112), (130, 112), (130, 105), (150, 112)),
                         [red, gray, red, gray, red, gray, white])
        for i, (look, left, right) in enumerate(looks):
            self.assertEqual(self.colors((210 + 100 * i, 112), (270 + 100 * i, 112)), [left, right], look)
        self.assertEqual(plot.images[0].clip, [[(20, 470), (40, 470), (40, 490), (20, 490)]])
        frame = [(x, y) for x, y in ((20, 130), (40, 130), (40, 110), (20, 110), (20, 130))]
        self.assertIn(frame, [[(x, 600 - y) for x, y in points] for points, _, _ in plot.lines()])
        self.assertEqual(len(plot.lines()), 2 + 7 + 1, "a frame around each, and inside where the clip leaves the outside")

    @staticmethod
    def jpeg(names, values, codes=1):
        """A square of eight pixels in one colour; `values` are how much its components are above the middle, 32 to 63."""
        def segment(marker, content):
            return bytes((0xFF, marker)) + struct.pack(">H", len(content) + 2) + content
        def table(which, symbol):
            return segment(0xC4, bytes((which, codes)) + bytes(15) + bytes((symbol,)) * codes)
        components = b"".join(bytes((name, 0x11, 0)) for name in names)
        bits = "".join(f"0{value:06b}0" for value in values)
        return (b"\xFF\xD8" + segment(0xDB, b"\0" + b"\x08" * 64) + segment(0xC0, struct.pack(">BHHB", 8, 8, 8, len(names)) + components) +
                table(0, 6) + table(0x10, 0) +
                segment(0xDA, bytes((len(names),)) + b"".join(bytes((name, 0)) for name in names) + b"\0\x3F\0") +
                bytes(int(bits[i:i + 8], 2) for i in range(0, len(bits), 8)) + b"\xFF\xD9")

    def test_jpeg_files_go_into_pdf_as_they_are_where_readers_show_them_alike(self):
        for names, values, is_kept, color in ((b"\1", [40], True, (168, 168, 168)), (b"\1\2\3", [40, 35, 33], True, (214, 132, 230)),
                                              (b"RGB", [40, 50, 60], False, (168, 178, 188)), (b"\1\2\3\4", [40, 40, 40, 40], False, None)):
            content = self.jpeg(names, values)
            self.write("square.jpg", content)
            self.msp.delete_all_entities()
            self.image("square.jpg", (100, 100), size=(80, 80), pixels=(8, 8))
            self.plot()
            self.assertNotIn("warning", self.errors)
            if color:
                for got, wanted in zip(self.colors((140, 140))[0], color):
                    self.assertAlmostEqual(got, wanted, delta=2, msg=names)
            self.assertEqual(self.run_program("plan.dxf", "-p", "plot.pdf", "-c", UNIT_IS_PIXEL).returncode, 0)
            pdf = (self.folder / "plot.pdf").read_bytes()
            self.assertEqual((content in pdf, b"DCTDecode" in pdf), (is_kept, is_kept), names)
            self.assertEqual(b"DeviceGray" in pdf, len(names) == 1)

    def test_of_images_that_cannot_be_read_the_frames_are_drawn(self):
        whole = png_file.written(self.FOUR)
        faults = {
            "gone.png": (None, "is not there"),
            "text.png": (b"no picture", "is no PNG, JPEG or BMP file"),
            "cut.png": (whole[:-40], "is damaged"),
            "empty.png": (b"", "is no PNG"),
            "huge.png": (png_file.written(self.FOUR, (10000, 10000)), "is too large: the pictures of a drawing have 64 million pixels"),
            "more.png": (png_file.written(self.FOUR, (50000, 50000)), "is no PNG, JPEG or BMP file, is damaged, or is far too large"),
            "codes.jpg": (self.jpeg(b"\1", [40], codes=255)[:-60].replace(b"\x10\xFF" + bytes(15), b"\x10" + b"\xFF" * 16), "is a damaged JPEG file"),
            "folder.png": ("folder", "is not there"),
        }
        for i, (name, (content, _)) in enumerate(faults.items()):
            if content == "folder":
                (self.folder / name).mkdir()
            elif content is not None:
                self.write(name, content)
            for y in (100, 200):
                self.image(name, (100 * i, y))
        unloaded = self.image("unloaded.png", (0, 300))
        unloaded.image_def.dxf.loaded = 0
        plot = self.plot()
        self.assertIn(f"not drawn: {2 * len(faults)} IMAGE", self.errors)
        for name, (_, message) in faults.items():
            (told,) = [line for line in self.errors.splitlines() if name in line]
            self.assertIn(f"the picture {name} {message}", told)
            self.assertIn("its frame is drawn", told)
        self.assertEqual((len(plot.images), len(plot.lines())), (0, 2 * len(faults) + 1))
        self.assertNotIn("unloaded", self.errors)

    def test_viewports_may_have_any_outline(self):
        self.msp.add_line((-100, 0), (100, 0), dxfattribs={"color": 3})
        hatch = self.msp.add_hatch(color=1)
        hatch.paths.add_polyline_path([(-100, 10), (100, 10), (100, 20), (-100, 20)])
        layout = self.doc.layout("Layout1")
        outline = layout.add_lwpolyline([(300, 200), (500, 200), (400, 400)], close=True, dxfattribs={"color": 5})
        viewport = layout.add_viewport(center=(400, 300), size=(200, 200), view_center_point=(0, 0), view_height=200)
        viewport.dxf.flags = viewport.dxf.flags | 0x10000
        viewport.dxf.clipping_boundary_handle = outline.dxf.handle
        plot = self.plot("LAYOUT|Layout1")
        self.assertLines(plot, [[(350, 300), (450, 300)]], GREEN, tolerance=0.6)
        self.assertBox(plot.areas(RED)[0].contours[0], (355, 310, 445, 320), tolerance=0.6)
        self.assertEqual(len(plot.lines()), 2)  # the outline shows by itself

    def test_layouts_that_nobody_visited_yet_show_what_is_not_off(self):
        self.msp.add_line((-10, 0), (10, 0), dxfattribs={"color": 3})
        layout = self.doc.layout("Layout1")
        layout.reset_main_viewport()
        shown = layout.add_viewport(center=(200, 300), size=(100, 100), view_center_point=(0, 0), view_height=100)
        off = layout.add_viewport(center=(400, 300), size=(100, 100), view_center_point=(0, 0), view_height=100)
        off.dxf.flags |= 0x20000
        for viewport in layout.viewports():
            viewport.dxf.status = viewport.dxf.id = 0
        # The exporter gives numbers; here it must not.
        self.doc.saveas(self.folder / "plan.dxf")
        text = (self.folder / "plan.dxf").read_text()
        text = re.sub(r"(\n 68\n)\d+(\n 69\n)\d+\n", r"\g<1>0\g<2>0\n", text)
        (self.folder / "plan.dxf").write_text(text)
        run = self.run_program("plan.dxf", "-p", "plot.svg", "-c", "LAYOUT|Layout1", "-c", UNIT_IS_PIXEL)
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertLines(plots.read_plot(self.folder / "plot.svg"), [[(190, 300), (210, 300)]], GREEN)
        run = self.run_program("plan.dxf", "-c", f"LAYOUT|Layout1|MSPACE|#{shown.dxf.handle}|Ray|0,0|5,5|", "-o",
                               "out.dxf")
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(len(ezdxf.readfile(self.folder / "out.dxf").modelspace().query("RAY")), 1)

    # ---- faults and sizes

    def test_nesting_without_end_ends(self):
        block = self.block("LOOP", ((0, 0), (10, 0)), color=1)
        for x in range(8):
            block.add_blockref("LOOP", (x, 0))
        for i in range(200):  # deep, but not without end
            self.block(f"DEEP{i}", ((0, 0), (5, 5)), color=4).add_blockref(f"DEEP{i + 1}", (5, 0))
        self.msp.add_blockref("DEEP0", (0, 300))
        self.block("GRID", ((0, 0), (1, 0)), color=3)
        self.msp.add_blockref("LOOP", (0, 100))
        self.msp.add_blockref("GRID", (0, 0), dxfattribs={"column_count": 32767, "row_count": 32767,
                                                          "column_spacing": 200, "row_spacing": 200})
        start = time.monotonic()
        plot = self.plot()
        self.assertLess(time.monotonic() - start, 60)
        self.assertLines(plot, [[(0, 100), (10, 100)]], RED)
        self.assertEqual(len(plot.lines("#00ffff")), 64)
        self.assertEqual(len(plot.lines(GREEN)), 5 * 4)

    def test_the_comparer_tells_plots_apart(self):
        self.block("PART", ((0, 0), (100, 50)), ((100, 50), (100, 100)))
        self.msp.add_blockref("PART", (100, 100), dxfattribs={"rotation": 30})
        reference = self.plot()
        self.msp.query("INSERT").first.explode()
        self.assertEqual(list(compare_plots.differences(reference, self.plot())), [])
        line = self.msp.query("LINE").first
        line.dxf.color = 1
        self.assertEqual(len(list(compare_plots.differences(reference, self.plot()))), 2)
        line.dxf.color, line.dxf.end = 256, line.dxf.end + ezdxf.math.Vec3(2, 0, 0)
        self.assertTrue(list(compare_plots.differences(reference, self.plot())))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--emulator", default="")
    arguments, rest = parser.parse_known_args()
    COMMAND[:] = [*filter(None, arguments.emulator.split(";")), arguments.program]
    unittest.main(argv=[sys.argv[0], *rest])


main()
