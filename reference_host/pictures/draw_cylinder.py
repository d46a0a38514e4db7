#!/usr/bin/python3
"""Draws the cylinder benchmark from the result directory of its run.

    draw_cylinder.py RESULT_DIRECTORY

reads VTK_Overset_Flow_Results.pvd, donors.csv and history.csv and writes three pictures into the
same directory: grids.png (both grids, the hole and the donors), flow.png (speed with streamlines,
pressure) and history.png (residuals and drag over the iterations).
"""

import csv
import os
import sys

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy as np
from matplotlib.collections import LineCollection, PolyCollection
from matplotlib.tri import LinearTriInterpolator, Triangulation

import vtu_series

CYLINDER = (2.0, 2.0, 0.5)  # center and radius in diameters


def columns(path):
    """A .csv file as a dict of lists."""
    with open(path, newline="") as file:
        rows = list(csv.DictReader(file))
    return {key: [row[key] for row in rows] for key in rows[0]}


def frame(axes, window, title):
    axes.set_xlim(window[0], window[1])
    axes.set_ylim(window[2], window[3])
    axes.set_aspect("equal")
    axes.set_title(title, loc="left", fontsize=10)
    axes.set_xlabel("x / D")
    axes.set_ylabel("y / D")


def draw_grids(outlines, regions, donors, png):
    figure, (left, right) = plt.subplots(1, 2, figsize=(11, 5.6), layout="constrained")
    colors = [vtu_series.GRID_COLORS[region] for region in regions]
    for axes, window, title in (
        (left, (0.2, 3.8, 0.2, 3.8), "Background grid with its hole, component grid over it"),
        (right, (2.45, 3.45, 1.6, 2.6), "Donors across the grid boundaries"),
    ):
        axes.add_collection(PolyCollection(outlines, facecolors="none", edgecolors=colors,
                                           linewidths=0.5))
        frame(axes, window, title)
    boundary = np.array(donors["boundary"])
    cell, donor = (np.array([donors[f"{end}_x"], donors[f"{end}_y"]], float).T
                   for end in ("cell", "donor"))
    for kind, color, label in (
        ("hole", "#1b4f72", "cell on the hole boundary and its donor"),
        ("overset", "#7b241c", "cell on the component's edge and its donor"),
    ):
        chosen = boundary == kind
        right.add_collection(LineCollection(np.stack([cell[chosen], donor[chosen]], axis=1),
                                            colors=color, linewidths=1.2, label=label))
        right.plot(*cell[chosen].T, ".", color=color, markersize=5)
        right.plot(*donor[chosen].T, "o", color=color, markersize=5, fillstyle="none")
    right.legend(loc="lower right", fontsize=8, framealpha=1)
    vtu_series.save(figure, png)


def on_lattice(centers, values, window, step=0.05):
    """Cell values interpolated to a regular lattice; masked inside the cylinder."""
    x, y = np.meshgrid(np.arange(window[0], window[1] + step, step),
                       np.arange(window[2], window[3] + step, step))
    triangles = Triangulation(*centers.T)
    inside = (x - CYLINDER[0]) ** 2 + (y - CYLINDER[1]) ** 2 < CYLINDER[2] ** 2
    return x, y, [np.ma.array(LinearTriInterpolator(triangles, value)(x, y), mask=inside)
                  for value in values]


def draw_flow(outlines, velocity, pressure, png):
    window = (0.0, 8.0, 0.0, 4.1)
    centers = np.array([outline.mean(axis=0) for outline in outlines])
    x, y, (u, v) = on_lattice(centers, (velocity[:, 0], velocity[:, 1]), window)
    figure, panels = plt.subplots(2, 1, figsize=(9.5, 9.6), layout="constrained")
    for axes, values, colors, title, label in (
        (panels[0], np.hypot(velocity[:, 0], velocity[:, 1]), "viridis",
         "Speed and streamlines", "speed / mean inflow"),
        (panels[1], pressure, "coolwarm", "Pressure", "p / (density mean inflow$^2$)"),
    ):
        field = PolyCollection(outlines, array=values, cmap=colors, edgecolors="face",
                               linewidths=0.1)
        axes.add_collection(field)
        frame(axes, window, title)
        figure.colorbar(field, ax=axes, label=label, shrink=0.9)
    panels[0].streamplot(x, y, u, v, density=1.6, color="white", linewidth=0.5, arrowsize=0.6)
    vtu_series.save(figure, png)


def draw_history(history, png):
    iteration = np.array(history["iteration"], int)
    figure, (left, right) = plt.subplots(1, 2, figsize=(11, 4), layout="constrained")
    left.semilogy(iteration, np.array(history["velocity_change"], float), label="velocity change")
    left.semilogy(iteration, np.array(history["mass_residual"], float), label="mass residual")
    left.set_ylabel("relative residual")
    right.plot(iteration, np.array(history["cd"], float), label="computed")
    right.axhline(5.57953523384, color="black", linestyle=":", label="published, 5.5795")
    right.set_ylim(5.3, 5.9)
    right.set_ylabel("drag coefficient")
    for axes in (left, right):
        axes.set_xlabel("iteration")
        axes.grid(alpha=0.3)
        axes.legend()
    vtu_series.save(figure, png)


def main(directory):
    def inside(name):
        return os.path.join(directory, name)

    _, path = vtu_series.steps(inside("VTK_Overset_Flow_Results.pvd"))[-1]
    grid = vtu_series.read(path)
    outlines = vtu_series.flat_cells(grid)
    draw_grids(outlines, vtu_series.regions(grid), columns(inside("donors.csv")),
               inside("grids.png"))
    draw_flow(outlines, vtu_series.cell_array(grid, "Velocity"),
              vtu_series.cell_array(grid, "Pressure"), inside("flow.png"))
    draw_history(columns(inside("history.csv")), inside("history.png"))


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit("usage: draw_cylinder.py RESULT_DIRECTORY")
    main(sys.argv[1])
