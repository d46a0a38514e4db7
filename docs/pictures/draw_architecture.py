#!/usr/bin/python3
"""Draws the folders of the project and which of them uses which: docs/pictures/architecture.png.

    docs/pictures/draw_architecture.py [PICTURE.png]

The arrows between folders are those of tests/structure/folders.toml, which a test compares with the
includes of the source files. Needs python3-matplotlib.
"""

import sys
import tomllib
from pathlib import Path

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
from matplotlib.patches import FancyArrowPatch, FancyBboxPatch

HERE = Path(__file__).resolve().parent
FOLDERS = HERE.parents[1] / "tests/structure/folders.toml"

INK = "#22313f"
PANELS = {"programs": "#eef3f8", "checks": "#f7f0e4", "toolbox": "#e8f2ea", "solver": "#f3eaf3"}
EDGES = {"programs": "#5b7fa6", "checks": "#b58a3c", "toolbox": "#4f8a5b", "solver": "#8a5b8a"}

# Panels: lower left corner, width and height, heading. The picture is 14 wide and 9 high.
PANEL_BOXES = [
    ("programs", (0.2, 6.75, 9.9, 2.05), "reference_host: a small flow solver on Gmsh meshes"),
    ("programs", (10.4, 6.75, 3.4, 2.05), "other users"),
    ("checks", (0.2, 5.25, 13.6, 1.0), "KVX3DHostChecks"),
    ("toolbox", (0.2, 1.35, 13.6, 3.4), "KVX3DMeshlessToolbox"),
    ("solver", (0.2, 0.1, 13.6, 0.8), "KVX3DMatrixSolver"),
]

# Folders of the toolbox: center, width, and what they hold.
TOOLBOX = {
    "overset": ((2.3, 3.9), 2.1, "holes, donors"),
    "vtk_output": ((4.6, 2.85), 2.1, ".vtu, .pvd"),
    "nonmatching": ((6.9, 3.9), 2.1, "interfaces"),
    "fvm_operators": ((9.6, 3.9), 2.3, "diffusion, convection"),
    "linear_algebra": ((11.9, 2.85), 2.3, "CSR matrix, solvers"),
    "host_link": ((6.45, 1.85), 10.9, "host objects, the record of a mesh, 1-based arrays"),
}
ROOMS = {
    "app": "command line", "cases": "runs, checks", "run": "output", "physics": "flow, scalars",
    "discretisation": "stencils", "link": "host objects", "mesh": "Gmsh",
}
HEIGHT = 0.62


def box(axes, center, size, color, title, note=""):
    x, y = center[0] - size[0] / 2, center[1] - size[1] / 2
    axes.add_patch(FancyBboxPatch((x, y), *size, boxstyle="round,pad=0,rounding_size=0.08",
                                  facecolor="white", edgecolor=color, linewidth=1.2))
    shift = 0.13 if note else 0.0
    axes.text(center[0], center[1] + shift, title, ha="center", va="center", color=INK,
              fontsize=9.5, family="monospace")
    if note:
        axes.text(center[0], center[1] - 0.16, note, ha="center", va="center", color="#5d6d7e",
                  fontsize=8)


def arrow(axes, start, end):
    axes.add_patch(FancyArrowPatch(start, end, arrowstyle="-|>", mutation_scale=11, color=INK,
                                   linewidth=1.1, shrinkA=0, shrinkB=1))


def panels(axes):
    for kind, (x, y, width, height), heading in PANEL_BOXES:
        axes.add_patch(FancyBboxPatch((x, y), width, height, facecolor=PANELS[kind],
                                      boxstyle="round,pad=0,rounding_size=0.12",
                                      edgecolor=EDGES[kind], linewidth=0.8))
        axes.text(x + 0.15, y + height - 0.27, heading, ha="left", va="center", color=INK,
                  fontsize=10, weight="bold")


def reference_host(axes, rooms):
    """The rooms from the highest to the lowest, in a row."""
    step, size = 9.7 / len(rooms), (1.26, 0.72)
    centers = [(0.3 + step * (i + 0.5), 7.75) for i in range(len(rooms))]
    for center, room in zip(centers, reversed(rooms)):
        name = room if len(room) < 10 else room[:9] + "-\n" + room[9:]
        box(axes, center, size, EDGES["programs"], name, "" if "\n" in name else ROOMS[room])
    for left, right in zip(centers, centers[1:]):
        arrow(axes, (left[0] + size[0] / 2, left[1]), (right[0] - size[0] / 2, right[1]))
    axes.text(5.15, 7.08, "a room uses itself, the rooms to its right and the libraries below",
              ha="center", va="center", color="#5d6d7e", fontsize=8.5, style="italic")


def toolbox(axes, library):
    for folder, (center, width, note) in TOOLBOX.items():
        box(axes, center, (width, HEIGHT), EDGES["toolbox"], folder, note)
    for folder, used in library.items():
        for lower in used:
            if lower in TOOLBOX:
                arrow(axes, *connection(TOOLBOX[folder], TOOLBOX[lower]))


def connection(upper, lower):
    """From the lower edge of one box to the upper edge of another: straight down if it can."""
    (upper_x, upper_y), upper_width, _ = upper
    (lower_x, lower_y), lower_width, _ = lower
    reach = lower_width / 2 - 0.25
    end = max(lower_x - reach, min(lower_x + reach, upper_x))
    start = max(upper_x - upper_width / 4, min(upper_x + upper_width / 4, end))
    return (start, upper_y - HEIGHT / 2), (end, lower_y + HEIGHT / 2)


def main(picture):
    folders = tomllib.loads(FOLDERS.read_text())
    figure, axes = plt.subplots(figsize=(11.2, 7.2))
    axes.set_xlim(0, 14)
    axes.set_ylim(0, 9)
    axes.set_axis_off()
    figure.subplots_adjust(0, 0, 1, 1)

    panels(axes)
    reference_host(axes, folders["reference_host"]["rooms"])
    for center, name, note in [((11.3, 7.95), "docs/*_host", "examples"),
                               ((12.9, 7.95), "tests", "all folders"),
                               ((11.3, 7.2), "benchmarks", "speed"),
                               ((12.9, 7.2), "plain", "simplest form")]:
        box(axes, center, (1.45, HEIGHT), EDGES["programs"], name, note)
    box(axes, (8.0, 5.75), (9.6, HEIGHT), EDGES["checks"], "host_checks",
        "rules, bounded donor search, explanations, inspection files, safe solve")
    toolbox(axes, folders["library"])
    box(axes, (12.55, 0.5), (2.1, HEIGHT), EDGES["solver"], "matrix_solver", "exchangeable")
    arrow(axes, (12.55, 2.85 - HEIGHT / 2), (12.55, 0.5 + HEIGHT / 2))

    arrow(axes, (6.0, 6.75), (6.0, 6.25))
    arrow(axes, (11.6, 6.75), (11.6, 6.25))
    arrow(axes, (8.0, 5.25), (8.0, 4.75))
    for x in (2.6, 13.3):
        arrow(axes, (x, 6.75), (x, 4.75))
    figure.savefig(picture, dpi=130)


if __name__ == "__main__":
    main(sys.argv[1] if len(sys.argv) > 1 else HERE / "architecture.png")
