#!/usr/bin/python3
"""Draws the flow around the sphere from the result directory of its run.

    draw_sphere.py RESULT_DIRECTORY

reads VTK_Overset_Flow_Results.pvd and wake_axis.csv and writes sphere.png into the same directory:
the cells that the plane z = 0 cuts, colored by the velocity along the stream, and that velocity on
the axis of the wake, with the point where it changes sign and the backflow ends.
"""

import csv
import os
import sys

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy as np
from matplotlib.collections import PolyCollection

import vtu_series

WINDOW = (-1.6, 3.2, -1.6, 1.6)
REAR = 0.5


def draw_plane(figure, axes, grid):
    # Off the plane by less than the output's digits: cells that only touch it give no outline.
    outlines, array = vtu_series.slice_cells(grid, axis=2, at=1e-4)
    u = array("Velocity")[:, 0]
    cells = PolyCollection(outlines, array=u, cmap="RdBu_r", clim=(-1.2, 1.2), edgecolors="0.35",
                           linewidths=0.15)
    axes.add_collection(cells)
    axes.set_xlim(WINDOW[:2])
    axes.set_ylim(WINDOW[2:])
    axes.set_aspect("equal")
    axes.set_title("Velocity along the stream, plane z = 0", loc="left", fontsize=10)
    axes.set_xlabel("x / D")
    axes.set_ylabel("y / D")
    figure.colorbar(cells, ax=axes, label="u / U", shrink=0.7)


def draw_axis(axes, path):
    with open(path, newline="") as file:
        rows = list(csv.DictReader(file))
    x = np.array([float(row["x"]) for row in rows])
    u = np.array([float(row["u"]) for row in rows])
    axes.plot(x - REAR, u, color=vtu_series.GRID_COLORS[0])
    axes.axhline(0.0, color="0.5", linewidth=0.7)
    back = np.nonzero((u[:-1] < 0.0) & (u[1:] >= 0.0))[0]
    if back.size:
        k = back[0]
        length = x[k] - u[k] * (x[k + 1] - x[k]) / (u[k + 1] - u[k]) - REAR
        axes.plot([length], [0.0], "o", color=vtu_series.GRID_COLORS[1],
                  label=f"end of the backflow: {length:.3f} D")
        axes.legend(loc="upper left", fontsize=9)
    axes.set_title("Velocity on the axis of the wake", loc="left", fontsize=10)
    axes.set_xlabel("distance from the rear / D")
    axes.set_ylabel("u / U")


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: draw_sphere.py RESULT_DIRECTORY")
    directory = sys.argv[1]
    last = vtu_series.steps(os.path.join(directory, "VTK_Overset_Flow_Results.pvd"))[-1][1]
    figure, (left, right) = plt.subplots(1, 2, figsize=(12, 4.6), layout="constrained",
                                         width_ratios=(1.6, 1.0))
    draw_plane(figure, left, vtu_series.read(last))
    draw_axis(right, os.path.join(directory, "wake_axis.csv"))
    png = os.path.join(directory, "sphere.png")
    vtu_series.save(figure, png, bbox_inches="tight")


if __name__ == "__main__":
    main()
