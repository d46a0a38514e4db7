#!/usr/bin/python3
"""Reads every part of a .pvd file with the reader of VTK and prints one line for each part:

    <file> <points> <cells> <type of cell 0, - for none> <array>:<components>:<min>:<max> ...

If the reader reports an error for a part, the script ends with exit code 1.
"""

import os
import sys
import xml.etree.ElementTree as ET

import vtk


def read(path):
    errors = []
    reader = vtk.vtkXMLUnstructuredGridReader()
    reader.AddObserver("ErrorEvent", lambda *_: errors.append(path))
    reader.SetFileName(path)
    reader.Update()
    if errors:
        sys.exit(f"VTK reports an error in {path}")
    return reader.GetOutput()


def describe(grid):
    first = grid.GetCellType(0) if grid.GetNumberOfCells() else "-"
    words = [str(grid.GetNumberOfPoints()), str(grid.GetNumberOfCells()), str(first)]
    for data in (grid.GetPointData(), grid.GetCellData()):
        for i in range(data.GetNumberOfArrays()):
            array = data.GetArray(i)
            low, high = array.GetRange(0)
            words.append(f"{array.GetName()}:{array.GetNumberOfComponents()}:{low:g}:{high:g}")
    return " ".join(words)


for series in sys.argv[1:]:
    for data_set in ET.parse(series).getroot().iter("DataSet"):
        part = data_set.get("file")
        print(part, describe(read(os.path.join(os.path.dirname(series), part))))
