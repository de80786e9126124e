#!/usr/bin/env python3
"""check_exports.py LIST LIBRARY NM OBJDUMP: the library exports the names of the list and no other."""
import re
import subprocess
import sys

# What the linker itself defines in every shared library.
LINKER_NAMES = {"_init", "_fini", "_edata", "_end", "__bss_start"}


def exported_by_dll(objdump, library):
    text = subprocess.run([objdump, "-p", library], check=True, capture_output=True, text=True).stdout
    table = text.partition("[Ordinal/Name Pointer] Table")[2].partition("\n\n")[0]
    return set(re.findall(r"^\s*\[\s*\d+\]\s+(?:\+base\[\s*\d+\]\s+)?(?:[0-9a-f]+\s+)?(\S+)$", table, re.MULTILINE))


def exported_by_shared_object(nm, library):
    text = subprocess.run([nm, "-D", "--defined-only", library], check=True, capture_output=True, text=True).stdout
    return {line.split()[-1].partition("@")[0] for line in text.splitlines()} - LINKER_NAMES


def main():
    list_file, library, nm, objdump = sys.argv[1:]
    with open(list_file, encoding="utf-8") as lines:
        wanted = {line.partition("#")[0].strip() for line in lines} - {""}
    exported = exported_by_dll(objdump, library) if library.endswith(".dll") else exported_by_shared_object(nm, library)
    for name in sorted(exported - wanted):
        print(f"{library}: exports {name}, which is not in {list_file}")
    for name in sorted(wanted - exported):
        print(f"{library}: does not export {name}")
    sys.exit(0 if exported == wanted else 1)


main()
