"""Reads result files of the toolbox with VTK's own reader, makes plane outlines of cells and writes
pictures."""

import os
import sys
import xml.etree.ElementTree as ET

import numpy as np
import vtk
from vtk.util.numpy_support import vtk_to_numpy

GRID_COLORS = ["#3b6ea5", "#c8553d", "#5a8f4e"]  # background, first and second component


def steps(pvd):
    """(time, path) of each data set of a collection. Ends the program if there is none."""
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
    """The unstructured grid of one .vtu file. Ends the program if VTK cannot read it."""
    if not os.path.isfile(path):
        sys.exit(f"{path} does not exist")
    failures = []
    reader = vtk.vtkXMLUnstructuredGridReader()
    reader.AddObserver("ErrorEvent", lambda *_: failures.append(path))
    reader.SetFileName(path)
    reader.Update()
    if failures:
        sys.exit(f"VTK cannot read {path}")
    return reader.GetOutput()


def save(figure, png, **options):
    """Writes a picture and prints its path. Ends the program if the file cannot be written."""
    try:
        figure.savefig(png, dpi=110, **options)
    except OSError as error:
        sys.exit(f"{png} cannot be written: {error.strerror}")
    print("Picture:", png)


def cell_array(grid, name):
    return vtk_to_numpy(grid.GetCellData().GetArray(name))


def regions(grid):
    """A number per cell, equal for cells that are connected: the grids of an overset mesh."""
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


def slice_cells(grid, axis=2, at=0.0):
    """Outlines of the cells in the plane perpendicular to an axis (0, 1, 2), corners in order.

    The second result reads a cell array of the sliced cells by name. A plane that cells only touch
    gives no outline, so `at` should lie within the cells.
    """
    plane = vtk.vtkPlane()
    plane.SetOrigin(*[at if i == axis else 0.0 for i in range(3)])
    plane.SetNormal(*[1.0 if i == axis else 0.0 for i in range(3)])
    cutter = vtk.vtkCutter()
    cutter.SetInputData(grid)
    cutter.SetCutFunction(plane)
    cutter.GenerateTrianglesOff()
    cutter.Update()
    cut = cutter.GetOutput()
    if cut.GetNumberOfCells() == 0:
        sys.exit(f"the plane {'xyz'[axis]} = {at:g} cuts no cell")
    points = vtk_to_numpy(cut.GetPoints().GetData())
    in_plane = [i for i in range(3) if i != axis]
    outlines = []
    for polygon in range(cut.GetNumberOfCells()):
        ids = cut.GetCell(polygon).GetPointIds()
        corners = points[[ids.GetId(i) for i in range(ids.GetNumberOfIds())]][:, in_plane]
        around = corners - corners.mean(axis=0)
        outlines.append(corners[np.argsort(np.arctan2(around[:, 1], around[:, 0]))])
    return outlines, lambda name: cell_array(cut, name)
