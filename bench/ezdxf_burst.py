"""ezdxf_burst.py IN.dxf OUT.dxf

Does with ezdxf what Burst does: every reference in model space gives way to the entities of its block and to texts for
its attributes.
"""

import sys

import ezdxf


def main():
    source, target = sys.argv[1:]
    drawing = ezdxf.readfile(source)
    for reference in drawing.modelspace().query("INSERT"):
        reference.explode()
    drawing.saveas(target)


main()
