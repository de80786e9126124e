"""ezdxf_plot.py IN.dxf OUT.svg

Plots model space with ezdxf's drawing add-on on white, in the format that the name ends in.
"""

import sys

import ezdxf
import matplotlib

matplotlib.use("agg")
import matplotlib.pyplot as plt  # noqa: E402
from ezdxf.addons.drawing import Frontend, RenderContext  # noqa: E402
from ezdxf.addons.drawing.matplotlib import MatplotlibBackend  # noqa: E402


def main():
    source, target = sys.argv[1:]
    drawing = ezdxf.readfile(source)
    # A font that matplotlib has: it looks for one that is missing at every text.
    for style in drawing.styles:
        style.dxf.font = "DejaVuSans.ttf"
    figure = plt.figure(figsize=(16, 12), dpi=100)
    axes = figure.add_axes([0, 0, 1, 1])
    Frontend(RenderContext(drawing), MatplotlibBackend(axes)).draw_layout(drawing.modelspace(), finalize=True)
    figure.savefig(target, dpi=100)


main()
