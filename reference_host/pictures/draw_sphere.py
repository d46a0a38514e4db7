#!/usr/bin/python3
"""Draws the flow around the sphere from the directory its run left behind.

    draw_sphere.py RESULT_DIRECTORY

reads VTK_Overset_Flow_Results.pvd and wake_axis.csv and writes sphere.png beside them: the cells
that the plane z = 0 cuts, coloured by the velocity along the stream, and that velocity on the axis
of the wake, up to where it changes sign and the flow runs back no more.
"""

import csv
import os
import sys

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy as np
import vtk
from matplotlib.collections import PolyCollection
from vtk.util.numpy_support import vtk_to_numpy

import vtu_series

WINDOW = (-1.6, 3.2, -1.6, 1.6)
REAR = 0.5


def slice_cells(grid):
    """Outlines of the cells in the plane z = 0, and their velocity along x."""
    # Off the plane by less than the output's digits: cells that only touch it give no polygon.
    plane = vtk.vtkPlane()
    plane.SetOrigin(0.0, 0.0, 1e-4)
    plane.SetNormal(0.0, 0.0, 1.0)
    cutter = vtk.vtkCutter()
    cutter.SetInputData(grid)
    cutter.SetCutFunction(plane)
    cutter.GenerateTrianglesOff()
    cutter.Update()
    cut = cutter.GetOutput()
    points = vtk_to_numpy(cut.GetPoints().GetData())
    outlines = []
    for polygon in range(cut.GetNumberOfCells()):
        ids = cut.GetCell(polygon).GetPointIds()
        corners = points[[ids.GetId(i) for i in range(ids.GetNumberOfIds())]][:, :2]
        around = corners - corners.mean(axis=0)
        outlines.append(corners[np.argsort(np.arctan2(around[:, 1], around[:, 0]))])
    return outlines, vtk_to_numpy(cut.GetCellData().GetArray("Velocity"))[:, 0]


def draw_plane(figure, axes, grid):
    outlines, u = slice_cells(grid)
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
    axes.plot(x - REAR, u, color=vtu_series.GRID_COLOURS[0])
    axes.axhline(0.0, color="0.5", linewidth=0.7)
    back = np.nonzero((u[:-1] < 0.0) & (u[1:] >= 0.0))[0]
    if back.size:
        k = back[0]
        length = x[k] - u[k] * (x[k + 1] - x[k]) / (u[k + 1] - u[k]) - REAR
        axes.plot([length], [0.0], "o", color=vtu_series.GRID_COLOURS[1],
                  label=f"end of the backflow: {length:.3f} D")
        axes.legend(loc="upper left", fontsize=9)
    axes.set_title("Velocity on the axis of the wake", loc="left", fontsize=10)
    axes.set_xlabel("distance from the rear / D")
    axes.set_ylabel("u / U")


def main():
    if len(sys.argv) != 2:
        sys.exit("draw_sphere.py takes the directory of a run's results")
    directory = sys.argv[1]
    last = vtu_series.steps(os.path.join(directory, "VTK_Overset_Flow_Results.pvd"))[-1][1]
    figure, (left, right) = plt.subplots(1, 2, figsize=(12, 4.6), layout="constrained",
                                         width_ratios=(1.6, 1.0))
    draw_plane(figure, left, vtu_series.read(last))
    draw_axis(right, os.path.join(directory, "wake_axis.csv"))
    png = os.path.join(directory, "sphere.png")
    figure.savefig(png, dpi=110, bbox_inches="tight")
    print("Picture:", png)


if __name__ == "__main__":
    main()
