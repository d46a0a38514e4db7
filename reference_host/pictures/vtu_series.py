"""Reads a .pvd series of the toolbox with VTK's own reader and flattens quasi-2-D cells."""

import os
import sys
import xml.etree.ElementTree as ET

import numpy as np
import vtk
from vtk.util.numpy_support import vtk_to_numpy

GRID_COLOURS = ["#3b6ea5", "#c8553d", "#5a8f4e"]  # background, first and second component


def steps(pvd):
    """(time, path) of every data set of a collection, in its order; the program ends without any."""
    folder = os.path.dirname(pvd)
    try:
        found = list(ET.parse(pvd).getroot().iter("DataSet"))
    except (OSError, ET.ParseError) as error:
        sys.exit(f"{pvd} cannot be read: {error}")
    if not found:
        sys.exit(f"{pvd} lists no step")
    return [
        (float(data.get("timestep")), os.path.join(folder, data.get("file").replace("\\", "/")))
        for data in found
    ]


def read(path):
    """The unstructured grid of one .vtu file; the program ends if VTK cannot read it."""
    failures = []
    reader = vtk.vtkXMLUnstructuredGridReader()
    reader.AddObserver("ErrorEvent", lambda *_: failures.append(path))
    reader.SetFileName(path)
    reader.Update()
    if failures:
        sys.exit(f"VTK cannot read {path}")
    return reader.GetOutput()


def cell_array(grid, name):
    return vtk_to_numpy(grid.GetCellData().GetArray(name))


def regions(grid):
    """A number per cell, equal for cells that hang together: the grids of an overset mesh."""
    connectivity = vtk.vtkConnectivityFilter()
    connectivity.SetInputData(grid)
    connectivity.SetExtractionModeToAllRegions()
    connectivity.ColorRegionsOn()
    connectivity.Update()
    return vtk_to_numpy(connectivity.GetOutput().GetCellData().GetArray("RegionId"))


def flat_cells(grid):
    """The x-y outline of every cell of a one-cell-thick mesh, corners in order around the cell."""
    points = vtk_to_numpy(grid.GetPoints().GetData())
    middle = 0.5 * (points[:, 2].min() + points[:, 2].max())
    outlines = []
    for cell in range(grid.GetNumberOfCells()):
        ids = grid.GetCell(cell).GetPointIds()
        corners = np.array([points[ids.GetId(i)] for i in range(ids.GetNumberOfIds())])
        corners = corners[corners[:, 2] < middle][:, :2]
        around = corners - corners.mean(axis=0)
        outlines.append(corners[np.argsort(np.arctan2(around[:, 1], around[:, 0]))])
    return outlines
