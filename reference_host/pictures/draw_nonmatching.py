#!/usr/bin/python3
"""Draws the interface of two blocks before and after the preprocess, and the solution across it.

    draw_nonmatching.py RESULTS/n8_m12 PICTURE.png

RESULTS is the output directory of the case "nonmatching". Before the preprocess both blocks own
flagged faces; after it no face is flagged, and the lists of owners and neighbors are empty.
"""

import glob
import os
import sys

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
from matplotlib.collections import PolyCollection

import vtu_series

# Blocks of a picture in the order in which the toolbox writes them, from 1.
ALL, BLOCK1_OWNERS, BLOCK1_NEIGHBORS, BLOCK0_OWNERS, BLOCK0_NEIGHBORS = range(1, 6)
COLORS = {BLOCK0_OWNERS: "#3b6ea5", BLOCK1_OWNERS: "#c8553d"}


def picture(directory, moment, block):
    """One block of the toolbox's picture of the interface, as outlines in the x-y plane."""
    pattern = os.path.join(directory, f"Check_NonmatchingFaceData_{moment}Preprocess_1",
                           f"*_B{block}.vtu")
    paths = glob.glob(pattern)
    if len(paths) != 1:
        sys.exit(f"there must be one file {pattern}, but there are {len(paths)}: give the results of "
                 "one mesh, for example nonmatching_results/n8_m12")
    return vtu_series.flat_cells(vtu_series.read(paths[0]))


def show_mesh(axes, directory, moment, title):
    axes.add_collection(PolyCollection(picture(directory, moment, ALL), facecolors="none",
                                       edgecolors="0.6", linewidths=0.5))
    for block, color in COLORS.items():
        owners = picture(directory, moment, block)
        # The list has a cell once for each of its flagged faces, so cells with more faces are darker.
        axes.add_collection(PolyCollection(owners, facecolors=color, alpha=0.3,
                                           edgecolors="none"))
        axes.plot([], [], "s", color=color, alpha=0.7,
                  label=f"{len(owners)} flagged faces owned by "
                        f"{'block0' if block == BLOCK0_OWNERS else 'block1'}")
    axes.legend(loc="upper center", bbox_to_anchor=(0.5, -0.16), frameon=False, fontsize=9)
    finish(axes, title)


def finish(axes, title):
    axes.set_xlim(1.25, 2.75)
    axes.set_ylim(0, 1.5)
    axes.set_aspect("equal")
    axes.set_title(title, loc="left", fontsize=10)
    axes.set_xlabel("x")
    axes.set_ylabel("y")


def main(directory, png):
    figure, (before, after, field) = plt.subplots(1, 3, figsize=(12, 4.6), layout="constrained")
    show_mesh(before, directory, "Before", "Before the preprocess: the interface counts twice")
    show_mesh(after, directory, "After", "After: one side is ineffective, no flag left")
    _, path = vtu_series.steps(os.path.join(directory, "solution", "VTK_Flow_Results.pvd"))[-1]
    grid = vtu_series.read(path)
    shade = PolyCollection(vtu_series.flat_cells(grid), cmap="viridis", edgecolors=(1, 1, 1, 0.25),
                           array=vtu_series.cell_array(grid, "Solution"), linewidths=0.3)
    field.add_collection(shade)
    finish(field, "Manufactured solution across the interface")
    figure.colorbar(shade, ax=field, label="phi", shrink=0.7)
    vtu_series.save(figure, png)


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit("usage: draw_nonmatching.py RESULTS/n8_m12 PICTURE.png")
    main(sys.argv[1], sys.argv[2])
