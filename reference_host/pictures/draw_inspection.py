#!/usr/bin/python3
"""Draws a slice of the inspection files of a mesh: grids, cut cells, donors and distances.

    draw_inspection.py DIRECTORY PICTURE.png [--axis x|y|z] [--at POSITION] [--window X0 X1 Y0 Y1]

DIRECTORY holds cells.vtu and donors.vtu as written by the case "inspect" or by WriteInspection().
The slice is perpendicular to the axis (default z) through the middle of component 1; the window
encloses component 1. The left panel shows both grids, the cut cells and a line from each active
cell over its face to its donor; faces without a donor are marked at their active cell. The right
panel shows how deep each background cell lies under the component, in its own cell sizes: cells
deeper than two are cut.
"""

import argparse
import os

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy as np
from matplotlib.collections import LineCollection, PolyCollection
from matplotlib.patches import Patch
from vtk.util.numpy_support import vtk_to_numpy

import vtu_series

BACKGROUND, COMPONENT = 1, 2
CUT = 1
HOLE, OUTER = 1, 2
GRID_NAMES = {1: "background", 2: "component 1", 3: "component 2"}
DONOR_COLORS = {HOLE: "#1b1b1b", OUTER: "#e0a100"}
DONOR_NAMES = {HOLE: "donors of the hole boundary", OUTER: "donors of the outer boundary"}
MARGIN = 2.0  # cell sizes


def arguments():
    parser = argparse.ArgumentParser(description="Draws a slice of the inspection files of a mesh.")
    parser.add_argument("directory", help="holds cells.vtu and donors.vtu")
    parser.add_argument("picture", help="the .png file to write")
    parser.add_argument("--axis", choices="xyz", default="z", help="normal of the slice")
    parser.add_argument("--at", type=float, help="position of the slice on that axis")
    parser.add_argument("--window", type=float, nargs=4, metavar=("X0", "X1", "Y0", "Y1"),
                        help="limits of the two axes in the plane")
    return parser.parse_args()


def bounds_of(grid, chosen):
    """Lower and upper corner of the cells with chosen[cell]; of all cells if none is chosen."""
    cells = np.nonzero(chosen)[0] if chosen.any() else range(grid.GetNumberOfCells())
    boxes = np.array([grid.GetCell(int(cell)).GetBounds() for cell in cells]).reshape(-1, 3, 2)
    return boxes[:, :, 0].min(axis=0), boxes[:, :, 1].max(axis=0)


def donor_lines(path, axis, at, thickness):
    """Polylines (cell, face, donor) of the donors whose face is near the plane, by boundary."""
    grid = vtu_series.read(path)
    if grid.GetNumberOfCells() == 0:
        return {HOLE: np.empty((0, 3, 2)), OUTER: np.empty((0, 3, 2))}
    points = vtk_to_numpy(grid.GetPoints().GetData()).reshape(-1, 3, 3)
    boundary = vtu_series.cell_array(grid, "boundary")[::2]
    near = np.abs(points[:, 1, axis] - at) <= 0.5 * thickness
    in_plane = [i for i in range(3) if i != axis]
    return {kind: points[near & (boundary == kind)][:, :, in_plane] for kind in (HOLE, OUTER)}


def draw_grids(axes, outlines, array, donors):
    grid, state, missing = array("grid"), array("state"), array("missing_donors")
    is_cut = state == CUT
    outlines = np.array(outlines, dtype=object)
    axes.add_collection(PolyCollection(outlines[is_cut], facecolors="0.85", edgecolors="none"))
    entries = []
    for number in np.unique(grid[grid > 0]).astype(int):
        color = vtu_series.GRID_COLORS[number - 1]
        axes.add_collection(PolyCollection(outlines[(grid == number) & ~is_cut], facecolors="none",
                                           edgecolors=color, linewidths=0.5, alpha=0.8))
        axes.add_collection(PolyCollection(outlines[(grid == number) & is_cut], facecolors="none",
                                           edgecolors="0.7", linewidths=0.4))
        entries.append(Patch(facecolor="none", edgecolor=color, label=GRID_NAMES[number]))
    if is_cut.any():
        entries.append(Patch(facecolor="0.85", edgecolor="0.7", label="cut cells"))
    for kind, lines in donors.items():
        if len(lines) == 0:
            continue
        axes.add_collection(LineCollection(lines, colors=DONOR_COLORS[kind], linewidths=1.1,
                                           zorder=3))
        entries += axes.plot(lines[:, 2, 0], lines[:, 2, 1], ".", markersize=4, zorder=4,
                             color=DONOR_COLORS[kind], label=DONOR_NAMES[kind])
    lost = np.array([outline.mean(axis=0) for outline in outlines[missing > 0]]).reshape(-1, 2)
    if len(lost):
        entries += axes.plot(lost[:, 0], lost[:, 1], "x", color="red", zorder=5,
                             label="no donor found")
    axes.set_title("Grids, cut cells and donors", loc="left", fontsize=10)
    axes.legend(handles=entries, loc="upper center", bbox_to_anchor=(0.5, -0.12), ncols=3,
                frameon=False, fontsize=8)


def draw_distance(figure, axes, outlines, array):
    grid, state, margin = array("grid"), array("state"), array("margin")
    chosen = (grid == BACKGROUND) & (margin > 0)
    axes.set_title("Depth of background cells under the component", loc="left", fontsize=10)
    if not chosen.any():
        axes.text(0.5, 0.5, "no background cell is judged", transform=axes.transAxes, ha="center")
        return
    outlines = np.array(outlines, dtype=object)
    depth = -MARGIN * array("distance")[chosen] / margin[chosen]
    # The color changes sign at the margin, so the cut shows in the colors.
    cells = PolyCollection(outlines[chosen], array=depth, cmap="RdBu_r", edgecolors="0.6",
                           linewidths=0.2, clim=(MARGIN - 6, MARGIN + 6))
    axes.add_collection(cells)
    is_cut = chosen & (state == CUT)
    axes.add_collection(PolyCollection(outlines[is_cut], facecolors="none", edgecolors="black",
                                       linewidths=0.6))
    figure.colorbar(cells, ax=axes, label="depth / cell size (cut above 2, outlined in black)",
                    shrink=0.8, extend="both")


def main():
    options = arguments()
    axis = "xyz".index(options.axis)
    grid = vtu_series.read(os.path.join(options.directory, "cells.vtu"))
    is_component = vtu_series.cell_array(grid, "grid") == COMPONENT
    low, high = bounds_of(grid, is_component)
    # Beside the middle by a little: there are often faces in the middle.
    at = options.at if options.at is not None else 0.503 * high[axis] + 0.497 * low[axis]
    outlines, array = vtu_series.slice_cells(grid, axis, at)

    in_plane = [i for i in range(3) if i != axis]
    room = 0.25 * max(high[in_plane] - low[in_plane]) if is_component.any() else 0.0
    window = options.window or [low[in_plane[0]] - room, high[in_plane[0]] + room,
                                low[in_plane[1]] - room, high[in_plane[1]] + room]
    cell_size = 0.5 * array("margin")[array("grid") == BACKGROUND].mean()
    flat = high[axis] - low[axis] < 2.5 * cell_size
    thickness = high[axis] - low[axis] if flat else cell_size
    donors = donor_lines(os.path.join(options.directory, "donors.vtu"), axis, at, thickness)

    figure, (left, right) = plt.subplots(1, 2, figsize=(13, 6.4), layout="constrained")
    draw_grids(left, outlines, array, donors)
    draw_distance(figure, right, outlines, array)
    for axes in (left, right):
        axes.set_xlim(window[:2])
        axes.set_ylim(window[2:])
        axes.set_aspect("equal")
        axes.set_xlabel("xyz"[in_plane[0]])
        axes.set_ylabel("xyz"[in_plane[1]])
    figure.suptitle(f"{options.directory}, plane {options.axis} = {at:.4g}", fontsize=9,
                    color="0.4")
    vtu_series.save(figure, options.picture)


if __name__ == "__main__":
    main()
