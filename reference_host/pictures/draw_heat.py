#!/usr/bin/python3
"""Draws the heated cylinder: the two grids with the hole, and the temperature.

    draw_heat.py SERIES.pvd PICTURE.png

The temperature is in the array "Pressure" because the overset output has no other scalar.
"""

import sys

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
from matplotlib.collections import PolyCollection

import vtu_series


def show(axes, collection, window, title):
    axes.add_collection(collection)
    axes.set_xlim(window[0], window[1])
    axes.set_ylim(window[2], window[3])
    axes.set_aspect("equal")
    axes.set_title(title, loc="left", fontsize=10)
    axes.set_xlabel("x / D")
    axes.set_ylabel("y / D")


def main(pvd, png):
    _, path = vtu_series.steps(pvd)[-1]
    grid = vtu_series.read(path)
    outlines = vtu_series.flat_cells(grid)
    temperature = vtu_series.cell_array(grid, "Pressure")
    colors = [vtu_series.GRID_COLORS[i] for i in vtu_series.regions(grid)]
    near = (0.2, 3.8, 0.2, 3.8)
    bounds = grid.GetBounds()

    figure = plt.figure(figsize=(11, 8), layout="constrained")
    panels = figure.subplot_mosaic([["channel", "channel"], ["grids", "field"]],
                                   gridspec_kw={"height_ratios": [1, 1.7]})
    channel, left, right = panels["channel"], panels["grids"], panels["field"]

    field = dict(array=temperature, cmap="inferno", edgecolors="face", linewidths=0.1)
    show(channel, PolyCollection(outlines, **field), bounds[:4], "Temperature in the channel")
    show(left, PolyCollection(outlines, facecolors="none", edgecolors=colors, linewidths=0.5),
         near, "Background grid with its hole, component grid over it")
    field["edgecolors"], field["linewidths"] = (1, 1, 1, 0.25), 0.3
    shade = PolyCollection(outlines, **field)
    show(right, shade, near, "Temperature across the grid boundary")
    figure.colorbar(shade, ax=[channel, left, right], label="temperature (wall 0, cylinder 1)",
                    shrink=0.8)
    vtu_series.save(figure, png)


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit("usage: draw_heat.py SERIES.pvd PICTURE.png")
    main(sys.argv[1], sys.argv[2])
