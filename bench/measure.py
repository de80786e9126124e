"""measure.py PROGRAMS [--references N] [--rounds N] [--plots | --slides | --scale [--largest N]]

Runs the programs in the folder PROGRAMS beside their peers and prints tables; bench/peers builds and calls it.

Each job is a process of its own, timed from start to end with what it costs to start. Jobs take turns, round after
round, so that whatever else the machine does meets them all; of each the best time counts, and its largest memory.
Processor time stands beside it for machines that are busy with other things.
"""

import argparse
import collections
import csv
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).resolve().parent
BLOCKS = ["DOOR", "WINDOW", "DESK", "VALVE"]
CDF, DXX = "Comma Delimeted File (CDF)", "DXF Format Extract File (DXX)"
BURST = "Burst|all|"
TEMPLATE = """BL:NAME C010000
BL:HANDLE C010000
BL:X N012003
BL:Y N012003
WIDTH C012000
NUMBER C012000
ROOM C020000
"""


class Job:
    def __init__(self, name, *command, rounds=None):
        self.name = name
        self.command = [str(part) for part in command]
        self.rounds = rounds
        self.seconds = float("inf")
        self.processor_seconds = float("inf")
        self.peak = 0

    def run(self):
        with tempfile.TemporaryFile() as messages:
            start = time.perf_counter()
            process = os.posix_spawn(self.command[0], self.command, os.environ, file_actions=[
                (os.POSIX_SPAWN_OPEN, 0, "/dev/null", os.O_RDONLY, 0),
                (os.POSIX_SPAWN_OPEN, 1, "/dev/null", os.O_WRONLY, 0),
                (os.POSIX_SPAWN_DUP2, messages.fileno(), 2)])
            _, status, usage = os.wait4(process, 0)
            seconds = time.perf_counter() - start
            if status != 0:
                messages.seek(0)
                print(messages.read().decode(errors="replace"), file=sys.stderr)
                sys.exit(f"{' '.join(self.command)} ended with {os.waitstatus_to_exitcode(status)}")
        self.seconds = min(self.seconds, seconds)
        self.processor_seconds = min(self.processor_seconds, usage.ru_utime + usage.ru_stime)
        self.peak = max(self.peak, usage.ru_maxrss * 1024)


def show_progress(text):
    if sys.stderr.isatty():
        print(f"\r\x1b[K{text}", end="", file=sys.stderr, flush=True)


def run_jobs(jobs, rounds):
    """A short job is run several times in a turn: machines that take idle memory back let the first one pay for it."""
    enough, most = 2.0, 5
    for number in range(rounds):
        for job in jobs:
            if job.rounds is not None and number >= job.rounds:
                continue
            show_progress(f"  round {number + 1} of {rounds}: {job.name} ...")
            end = time.perf_counter() + enough
            for _ in range(most):
                job.run()
                if time.perf_counter() > end:
                    break
    show_progress("")


def table(head, rows):
    rows = [head] + rows
    widths = [max(len(row[i]) for row in rows) for i in range(len(head))]
    lines = ["| " + " | ".join(cell.ljust(width) if i == 0 else cell.rjust(width)
                               for i, (cell, width) in enumerate(zip(row, widths))) + " |" for row in rows]
    rule = "|" + "|".join("-" * (width + 2) if i == 0 else "-" * (width + 1) + ":" for i, width in enumerate(widths)) + "|"
    print("\n".join([lines[0], rule] + lines[1:]))


def mega(size):
    return f"{size / 1e6:.1f} MB"


def attribute_values(path):
    """For each reference of the drawing its block and its attributes' tags and values, in order."""
    references = []
    with open(path, encoding="utf-8", newline=None) as file:
        kind, record = "", {}
        while True:
            code, value = file.readline(), file.readline()
            if not value or int(code) == 0:
                if kind == "INSERT":
                    references.append([record.get(2)])
                elif kind == "ATTRIB":
                    references[-1].append((record.get(2), record.get(1)))
                if not value:
                    return references
                kind, record = value.rstrip("\n"), {}
            else:
                record.setdefault(int(code), value.rstrip("\n"))


def burst_entities(path):
    """How many entities of each kind and with each text stand in the entities section."""
    found = collections.Counter()
    with open(path, encoding="utf-8", newline=None) as file:
        section, kind, text = "", "", ""
        while True:
            code, value = file.readline().strip(), file.readline().rstrip("\n")
            if code in ("0", ""):
                if section == "ENTITIES" and kind:
                    found[kind, text] += 1
                if not code:
                    return found
                kind, text = value, ""
            elif code == "2" and kind == "SECTION":
                section, kind = value, ""
            elif code == "1":
                text = value


def host(programs, drawing, *arguments):
    return programs / "torvelhost", "-q", drawing, *arguments


def sync_arguments(output):
    commands = [part for block in BLOCKS for part in ("-c", f"AttSync|Name|{block}")]
    return *commands, "-o", output


def regenerated_sync_arguments():
    return [part for block in BLOCKS for part in ("-c", f"AttSync|Name|{block}|REGEN")]


def apply_arguments(folder):
    """The same, and what the manager adds to it: a definition moved, restore points, the dialog."""
    settings = folder / "apply.ini"
    settings.write_text("[Dialogs\\\\BAttMan]\nApplyChanges=1\n")
    runs = [f"BAttMan|Block = {block}|press Move Down|press Apply|press OK" for block in BLOCKS]
    return "--profile", settings, *(part for run in runs for part in ("-c", run))


def extract_arguments(form, template, output):
    """AttExt for all references; its settings go nowhere else."""
    lines = ["AttExt", f"check {form}", "press Select Objects <", "all", "", f"Output File = {output}", "press OK"]
    if form != DXX:
        lines.insert(-2, f"Template File = {template}")
    return "--profile", output.with_suffix(".ini"), "-c", "|".join(lines)


def changed_values(programs, drawing, folder):
    """A list of the drawing's values, each of them another one."""
    listed, changed = folder / "listed.csv", folder / "changed.csv"
    subprocess.run([*host(programs, drawing, "-c", f"VALUESOUT|{listed}|Everywhere")], check=True, stdout=subprocess.DEVNULL)
    with listed.open(encoding="utf-8", newline="") as source, changed.open("w", encoding="utf-8", newline="") as target:
        rows = csv.reader(source)
        writer = csv.writer(target)
        writer.writerow(next(rows))
        writer.writerows(row[:3] + [value and value + "'" for value in row[3:]] for row in rows)
    return changed


def make_drawing(programs, references, path):
    Job("make_drawing", programs / "make_drawing", references, path).run()
    return path.stat().st_size


def compare_peers(programs, references, rounds, folder):
    drawing, ours, theirs = folder / "drawing.dxf", folder / "ours.dxf", folder / "theirs.dxf"
    our_burst, their_burst = folder / "our_burst.dxf", folder / "their_burst.dxf"
    size = make_drawing(programs, references, drawing)

    template, our_extract, their_extract = folder / "template.txt", folder / "ours.txt", folder / "theirs.txt"
    template.write_text(TEMPLATE)

    jobs = collections.OrderedDict()
    jobs["floor"] = Job("floor: every group passed over", programs / "group_floor", drawing)
    jobs["load"] = Job("torvelhost: load", *host(programs, drawing, "-c", ""))
    jobs["save"] = Job("torvelhost: load, save", *host(programs, drawing, "-o", ours))
    jobs["sync"] = Job("torvelhost: load, AttSync, save", *host(programs, drawing, *sync_arguments(ours)))
    jobs["regenerated"] = Job("torvelhost: load, AttSync and REGEN", *host(programs, drawing, *regenerated_sync_arguments()))
    jobs["applied"] = Job("torvelhost: load, BAttMan's Apply", *host(programs, drawing, *apply_arguments(folder)))
    jobs["burst"] = Job("torvelhost: load, Burst, save", *host(programs, drawing, "-c", BURST, "-o", our_burst))
    jobs["extract"] = Job("torvelhost: load, AttExt to CDF",
                          *host(programs, drawing, *extract_arguments(CDF, template, our_extract)))
    jobs["dxx"] = Job("torvelhost: load, AttExt to DXX",
                      *host(programs, drawing, *extract_arguments(DXX, template, folder / "ours.dxx")))
    jobs["listed"] = Job("torvelhost: load, VALUESOUT",
                         *host(programs, drawing, "-c", f"VALUESOUT|{folder / 'values.csv'}|Everywhere"))
    changed = changed_values(programs, drawing, folder)
    jobs["taken"] = Job("torvelhost: load, VALUESIN of all values, save",
                        *host(programs, drawing, "-c", f"VALUESIN|{changed}", "-o", folder / "taken.dxf"))
    reader = programs / "dxflib_read"
    if reader.exists():
        jobs["dxflib"] = Job("dxflib: read, keep nothing", reader, drawing)
    # Slow enough that few rounds tell all.
    jobs["ezdxf"] = Job("ezdxf: load, the same sync, save", "/usr/bin/python3", HERE / "ezdxf_sync.py", drawing, theirs,
                        *BLOCKS, rounds=2)
    jobs["ezdxf_burst"] = Job("ezdxf: load, the same burst, save", "/usr/bin/python3", HERE / "ezdxf_burst.py", drawing,
                              their_burst, rounds=2)
    jobs["ezdxf_extract"] = Job("ezdxf: load, the same lines", "/usr/bin/python3", HERE / "ezdxf_extract.py", drawing,
                                template, their_extract, rounds=2)
    if converter := shutil.which("ogr2ogr"):
        jobs["gdal"] = Job("GDAL: read, print as CSV", converter, "-q", "-f", "CSV", "/vsistdout/", drawing, rounds=2)
    run_jobs(jobs.values(), rounds)

    print(f"{references:,} references with five attributes each, {mega(size)}; best of {rounds} rounds\n")
    table(["", "seconds", "processor", "peak memory", "peak / file"],
          [[job.name, f"{job.seconds:.3f}", f"{job.processor_seconds:.3f}", mega(job.peak), f"{job.peak / size:.2f}"]
           for job in jobs.values()])

    def ratios(slow, fast, digits=1):
        if slow not in jobs:
            return ["not measured", ""]
        return [f"{jobs[slow].seconds / jobs[fast].seconds:.{digits}f}",
                f"{jobs[slow].processor_seconds / jobs[fast].processor_seconds:.{digits}f}"]

    print()
    table(["ratio", "seconds", "processor", "wanted"], [
        ["load: times the floor", *ratios("load", "floor"), "at most 3"],
        ["load: times faster than dxflib reads", *ratios("dxflib", "load"), "at least 15"],
        ["load, AttSync, save: times faster than ezdxf", *ratios("ezdxf", "sync"), "at least 80"],
        ["load, BAttMan's Apply: times AttSync and REGEN", *ratios("applied", "regenerated", 2), "at most 1.1"],
        ["load, VALUESIN of all values, save: times AttSync", *ratios("taken", "sync", 2), "about 1"],
        ["load, Burst, save: times faster than ezdxf", *ratios("ezdxf_burst", "burst"), "at least 80"],
        ["load, AttExt: times the floor", *ratios("extract", "floor"), "at most 4"],
        ["load, AttExt: times faster than ezdxf", *ratios("ezdxf_extract", "extract"), "at least 150"],
        ["load, AttExt: times faster than GDAL reads", *ratios("gdal", "extract"), "at least 25"]])
    print()
    table(["peak memory / file", "measured", "wanted"], [
        ["load", f"{jobs['load'].peak / size:.2f}", "below 1.5"],
        ["load, AttSync, save", f"{jobs['sync'].peak / size:.2f}", "below 6"],
        ["load, AttExt", f"{jobs['extract'].peak / size:.2f}", "below 2"]])

    # The times mean little unless both have done the same.
    our_values, their_values = attribute_values(ours), attribute_values(theirs)
    different = sum(a != b for a, b in zip(our_values, their_values)) + abs(len(our_values) - len(their_values))
    if different:
        sys.exit(f"\n{different} of {len(our_values)} references differ between the two results")
    print("\nBoth results have the same attributes with the same values, in the same order.")
    if burst_entities(our_burst) != burst_entities(their_burst):
        sys.exit("the two burst drawings have different entities or texts")
    print("Both burst drawings have the same entities with the same texts.")
    if our_extract.read_bytes() != their_extract.read_bytes():
        sys.exit("the two extracts differ")
    print("Both extracts are the same, byte for byte.")


def large_slide(path, megabytes):
    """Vectors of every kind, areas and colours, over and over."""
    sys.path.insert(0, str(HERE.parent / "tests" / "slides"))
    from slide_writer import SlideWriter
    slide = SlideWriter(1600, 1200)
    for i in range(500):
        x, y = 37 * i % 1500, 53 * i % 1100
        slide.color(1 + i % 7).vector((x, y), (x + 90, y + 60)).offset_vector((-9, 5), (20, 40)).common_endpoint(30, -20)
        slide.common_endpoint(-25, 35).fill((x, y), (x + 20, y + 3), (x + 25, y + 30), (x + 4, y + 22))
    repeats = int(megabytes * 1e6 / len(slide.records))
    slide.records *= repeats
    path.write_bytes(slide.end().bytes())
    return path.stat().st_size


def compare_slides(programs, rounds, folder):
    slide = folder / "large.sld"
    size = large_slide(slide, 10)
    jobs = collections.OrderedDict()
    jobs["decode"] = Job("decode, add up", programs / "slide_decode", slide)
    jobs["draw"] = Job("torvelhost: VSlide, draw as PNG", programs / "torvelhost", "-q", "-c", f"VSlide|{slide}", "-p",
                       folder / "ours.png", rounds=2)
    if converter := shutil.which("sldtoppm"):
        jobs["netpbm"] = Job("sldtoppm: decode, draw as PPM", converter, slide, rounds=2)
    run_jobs(jobs.values(), rounds)
    print(f"a slide of {mega(size)} for a screen of 1,600 x 1,200 dots; best of {rounds} rounds\n")
    table(["", "seconds", "processor", "MB / s"],
          [[job.name, f"{job.seconds:.3f}", f"{job.processor_seconds:.3f}", f"{size / 1e6 / job.seconds:.1f}"]
           for job in jobs.values()])


def compare_plots(programs, references, rounds, folder):
    """The whole drawing by this program, and a small one by both: ezdxf's add-on would need most of an hour for it."""
    few = max(1, references // 50)
    whole, small, svg, png, pdf = (folder / name for name in ("whole.dxf", "small.dxf", "plot.svg", "plot.png", "plot.pdf"))
    make_drawing(programs, references, whole)
    make_drawing(programs, few, small)
    ezdxf = "/usr/bin/python3", HERE / "ezdxf_plot.py", small
    jobs = {
        (few, "svg"): Job("torvelhost: load, plot SVG", *host(programs, small, "-p", svg)),
        (few, "png"): Job("torvelhost: load, plot PNG", *host(programs, small, "-p", png)),
        (few, "ezdxf svg"): Job("ezdxf with matplotlib: load, plot SVG", *ezdxf, svg, rounds=1),
        (few, "ezdxf png"): Job("ezdxf with matplotlib: load, plot PNG", *ezdxf, png, rounds=1),
        (references, "svg"): Job("torvelhost: load, plot SVG", *host(programs, whole, "-p", svg)),
        (references, "png"): Job("torvelhost: load, plot PNG", *host(programs, whole, "-p", png)),
        (references, "pdf"): Job("torvelhost: load, plot PDF", *host(programs, whole, "-p", pdf)),
    }
    run_jobs(jobs.values(), rounds)
    print(f"\nPlots of 1600 x 1200 pixels; best of {rounds} rounds, ezdxf one\n")
    table(["", "references", "seconds", "processor", "peak memory"],
          [[job.name, f"{number:,}", f"{job.seconds:.3f}", f"{job.processor_seconds:.3f}", mega(job.peak)]
           for (number, _), job in jobs.items()])
    print()
    table(["plot: times faster than ezdxf", "seconds", "processor"],
          [[kind.upper(), f"{jobs[few, 'ezdxf ' + kind].seconds / jobs[few, kind].seconds:.0f}",
            f"{jobs[few, 'ezdxf ' + kind].processor_seconds / jobs[few, kind].processor_seconds:.0f}"]
           for kind in ("svg", "png")])


def show_scale(programs, largest, rounds, folder):
    sizes = [n for n in (10_000, 30_000, 100_000, 300_000, 1_000_000) if n <= largest]
    rows = []
    template = folder / "template.txt"
    template.write_text(TEMPLATE)
    for references in sizes:
        drawing, output = folder / "drawing.dxf", folder / "synced.dxf"
        size = make_drawing(programs, references, drawing)
        jobs = [Job("load", *host(programs, drawing, "-c", "")),
                Job("load, save", *host(programs, drawing, "-o", output)),
                Job("load, AttSync, save", *host(programs, drawing, *sync_arguments(output))),
                Job("load, Burst, save", *host(programs, drawing, "-c", BURST, "-o", output)),
                Job("load, AttExt to CDF",
                    *host(programs, drawing, *extract_arguments(CDF, template, folder / "extract.txt")))]
        run_jobs(jobs, rounds)
        for job in jobs:
            rows.append([job.name, f"{references:,}", mega(size), f"{job.seconds:.3f}",
                         f"{job.seconds / references * 1e6:.2f}", f"{job.processor_seconds / references * 1e6:.2f}",
                         f"{job.peak / references:,.0f}"])
    rows.sort(key=lambda row: [job.name for job in jobs].index(row[0]))
    print(f"best of {rounds} rounds\n")
    table(["", "references", "file", "seconds", "µs / reference", "processor µs / reference",
           "peak bytes / reference"], rows)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("programs", type=pathlib.Path)
    parser.add_argument("--references", type=int, default=50_000)
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--slides", action="store_true")
    parser.add_argument("--scale", action="store_true")
    parser.add_argument("--plots", action="store_true")
    parser.add_argument("--largest", type=int, default=1_000_000)
    arguments = parser.parse_args()
    programs = arguments.programs.resolve()
    # Beside the programs: a million references take more room than a temporary folder may have.
    with tempfile.TemporaryDirectory(dir=programs.parent) as folder:
        if arguments.plots:
            compare_plots(programs, arguments.references, arguments.rounds, pathlib.Path(folder))
        elif arguments.scale:
            show_scale(programs, arguments.largest, arguments.rounds, pathlib.Path(folder))
        elif arguments.slides:
            compare_slides(programs, arguments.rounds, pathlib.Path(folder))
        else:
            compare_peers(programs, arguments.references, arguments.rounds, pathlib.Path(folder))


main()
