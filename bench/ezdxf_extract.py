"""ezdxf_extract.py IN.dxf TEMPLATE OUT.txt

Does with ezdxf what AttExt does for a comma-delimited file: a line for every reference in model space, in the order of
blocks and then of handles, with the columns of the template. Knows as much of templates as the bench needs.
"""

import sys

import ezdxf

PROPERTIES = {
    "BL:NAME": lambda reference: reference.dxf.name,
    "BL:HANDLE": lambda reference: reference.dxf.handle,
    "BL:X": lambda reference: reference.dxf.insert.x,
    "BL:Y": lambda reference: reference.dxf.insert.y,
}


def main():
    source, template, target = sys.argv[1:]
    columns = []
    with open(template, encoding="ascii") as file:
        for line in file:
            name, form = line.split()
            columns.append((name, form[0] == "N", int(form[1:4]), int(form[4:7])))
    drawing = ezdxf.readfile(source)
    order = {block.name: int(block.block_record_handle, 16) for block in drawing.blocks}
    references = sorted(drawing.modelspace().query("INSERT"),
                        key=lambda reference: (order[reference.dxf.name], int(reference.dxf.handle, 16)))
    with open(target, "w", encoding="cp1252", newline="") as file:
        for reference in references:
            values = {attribute.dxf.tag: attribute.dxf.text for attribute in reference.attribs}
            cells = []
            for i, (name, is_numeric, width, precision) in enumerate(columns):
                value = PROPERTIES[name](reference) if name in PROPERTIES else values.get(name, "")
                text = f"{value:{width}.{precision}f}" if isinstance(value, float) else value
                if not is_numeric:
                    text = f"'{text}'"
                if i + 1 < len(columns):
                    text += ","
                cells.append(text.rjust(width))
            file.write("".join(cells) + "\r\n")


main()
