"""ezdxf_sync.py IN.dxf OUT.dxf BLOCK...

Does with ezdxf what AttSync does: the attributes of every reference in model space are made anew from the block's
definitions; values stay by tag, and among equal tags by their order.
"""

import collections
import sys

import ezdxf


def sync(reference, definitions):
    values = collections.defaultdict(collections.deque)
    for attribute in reference.attribs:
        values[attribute.dxf.tag].append(attribute.dxf.text)
    reference.delete_all_attribs()
    placement = reference.matrix44()
    for definition in definitions:
        properties = definition.dxfattribs(drop={"prompt", "handle", "owner"})
        tag = properties.pop("tag").upper()
        text = properties.pop("text")
        if values[tag]:
            text = values[tag].popleft()
        attribute = reference.add_attrib(tag, text, properties.pop("insert"), properties)
        attribute.transform(placement)


def main():
    source, target, *names = sys.argv[1:]
    drawing = ezdxf.readfile(source)
    definitions = {name: [d for d in drawing.blocks.get(name).attdefs() if not d.is_const] for name in names}
    for reference in drawing.modelspace().query("INSERT"):
        if reference.dxf.name in definitions:
            sync(reference, definitions[reference.dxf.name])
    drawing.saveas(target)


main()
