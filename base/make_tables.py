#!/usr/bin/env python3
"""Writes case_tables.cpp and code_page_tables.cpp beside this file from Python's own Unicode data and codecs."""

import pathlib
import sys

HERE = pathlib.Path(__file__).parent


def simple_upper(c):
    # Where upper-casing gives several characters the title case is the one-character mapping, if there is any.
    for mapped in (c.upper(), c.title()):
        if len(mapped) == 1:
            return mapped
    return c


def simple_lower(c):
    return c.lower() if len(c.lower()) == 1 else {"\u0130": "i"}.get(c, c)


def simple_fold(c):
    if c == "\u0130":  # the dotted capital I folds to itself without a language
        return c
    return c.casefold() if len(c.casefold()) == 1 else simple_lower(c)


def ranges(mapping):
    """Runs of characters one or two apart that are mapped by the same distance."""
    runs = []
    for code in range(0x110000):
        if 0xD800 <= code <= 0xDFFF:
            continue
        delta = ord(mapping(chr(code))) - code
        if delta == 0:
            continue
        if runs:
            first, last, step, run_delta = runs[-1]
            gap = code - last
            if run_delta == delta and (gap == step or (first == last and gap in (1, 2))):
                runs[-1] = (first, code, gap, delta)
                continue
        runs.append((code, code, 1, delta))
    return runs


def write_case_tables(out):
    out.write("// Written by make_tables.py from Unicode's character data; do not edit.\n")
    out.write('#include "base/case_tables.h"\n\nnamespace base {\n\n// clang-format off\n')
    for name, mapping in (("kUpperCase", simple_upper), ("kLowerCase", simple_lower), ("kCaseFolding", simple_fold)):
        runs = ranges(mapping)
        out.write(f"static const CaseRange {name}Ranges[] = {{\n")
        line = "    "
        for first, last, step, delta in runs:
            item = f"{{0x{first:X}, 0x{last:X}, {step}, {delta}}}, "
            if len(line) + len(item) > 118:
                out.write(line.rstrip() + "\n")
                line = "    "
            line += item
        out.write(line.rstrip() + f"\n}};\nconst CaseTable {name}{{{name}Ranges}};\n\n")
    out.write("// clang-format on\n\n}  // namespace base\n")


SINGLE_BYTE = [("ANSI_874", "cp874")] + [(f"ANSI_{n}", f"cp{n}") for n in range(1250, 1259)]
DOS_PAGES = (437, 737, 775, 850, 852, 855, 857, 860, 861, 862, 863, 864, 865, 866, 869)
SINGLE_BYTE += [(f"dos{n}", f"cp{n}") for n in DOS_PAGES]
SINGLE_BYTE += [(f"ISO8859-{n}", f"iso8859_{n}") for n in (1, 2, 3, 4, 5, 6, 7, 8, 9)]
SINGLE_BYTE += [("mac-roman", "mac_roman")]


def write_code_page_tables(out):
    out.write("// Written by make_tables.py from Python's codecs; do not edit.\n")
    out.write('#include "base/code_page_tables.h"\n\nnamespace base {\n\n// clang-format off\n')
    out.write("const SingleBytePage kSingleBytePages[] = {\n")
    for name, codec in SINGLE_BYTE:
        out.write(f'    {{"{name}", {{\n')
        codes = []
        for byte in range(128, 256):
            try:
                codes.append(ord(bytes([byte]).decode(codec)))
            except UnicodeDecodeError:
                codes.append(byte)
        for start in range(0, 128, 16):
            out.write("      " + ",".join(f"0x{code:04X}" for code in codes[start:start + 16]) + ",\n")
        out.write("    }},\n")
    out.write(f"}};\nconst std::size_t kSingleBytePageCount = {len(SINGLE_BYTE)};\n\n")
    out.write("// clang-format on\n\n}  // namespace base\n")


def main():
    for name, write in (("case_tables.cpp", write_case_tables), ("code_page_tables.cpp", write_code_page_tables)):
        with open(HERE / name, "w", encoding="utf-8", newline="\n") as out:
            write(out)
    return 0


if __name__ == "__main__":
    sys.exit(main())
