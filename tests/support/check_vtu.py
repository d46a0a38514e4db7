#!/usr/bin/python3
"""Checks .vtu and .pvd files more strictly than readers do.

Readers are no check: VTK crashes on a short array or a number outside the range of its type, reads
a decimal comma as another number, and accepts a node id above the number of points. This script
reports every fault, needs only Python, and checks the parts of a .pvd file too:

    check_vtu.py Run.pvd Run_0/*.vtu

Exit code 0 and "ok", or exit code 1 and one line for each fault.
"""

import math
import os
import sys
import xml.etree.ElementTree as ET

FLOAT32_MAX = 3.4028234663852886e38
NODES_OF_TYPE = {1: 1, 3: 2, 5: 3, 9: 4, 10: 4, 12: 8, 13: 6, 14: 5}  # VTK cell type: node count


class Vtu:
    """One .vtu file and its faults."""

    def __init__(self, path):
        self.path = path
        self.faults = []

    def say(self, text):
        self.faults.append(f"{self.path}: {text}")

    def values(self, array, wanted, kind):
        """The numbers of an array; reports a wrong number of them and values of another type."""
        name = array.get("Name")
        words = (array.text or "").split()
        if array.get("format") != "ascii":
            self.say(f'{name}: format is {array.get("format")}')
        if len(words) != wanted:
            self.say(f"{name}: {len(words)} values, {wanted} expected")
        try:
            numbers = [kind(word) for word in words]
        except ValueError as error:
            self.say(f"{name}: {error}")
            return []
        if kind is float:
            top = FLOAT32_MAX if array.get("type") == "Float32" else math.inf
            wrong = sum(1 for x in numbers if not math.isfinite(x) or abs(x) > top)
            if wrong:
                self.say(f'{name}: {wrong} values not finite or beyond {array.get("type")}')
        return numbers

    def check_cells(self, piece, n_points, n_cells):
        arrays = {array.get("Name"): array for array in piece.find("Cells")}
        offsets = self.values(arrays["offsets"], n_cells, int)
        nodes = self.values(arrays["connectivity"], offsets[-1] if offsets else 0, int)
        types = self.values(arrays["types"], n_cells, int)
        counts = [b - a for a, b in zip([0] + offsets, offsets)]
        if any(count < 0 for count in counts):
            self.say("offsets decrease")
        if any(node < 0 or node >= n_points for node in nodes):
            self.say("node id out of range")
        for cell, (kind, count) in enumerate(zip(types, counts)):
            if kind != 0 and NODES_OF_TYPE.get(kind) != count:
                self.say(f"cell {cell}: type {kind} with {count} nodes")

    def check(self):
        try:
            root = ET.parse(self.path).getroot()
        except ET.ParseError as error:
            self.say(f"not XML: {error}")
            return self.faults
        piece = root.find("UnstructuredGrid/Piece")
        n_points = int(piece.get("NumberOfPoints"))
        n_cells = int(piece.get("NumberOfCells"))
        self.check_cells(piece, n_points, n_cells)
        self.values(piece.find("Points/DataArray"), 3 * n_points, float)
        for section, n in (("PointData", n_points), ("CellData", n_cells)):
            for array in piece.findall(f"{section}/DataArray"):
                components = int(array.get("NumberOfComponents", "1"))
                if components < 1:
                    self.say(f'{array.get("Name")}: no components')
                self.values(array, n * components, float)
        return self.faults


def check_pvd(path):
    """Faults of a series: its own and those of its parts."""
    faults = []
    try:
        root = ET.parse(path).getroot()
    except ET.ParseError as error:
        return [f"{path}: not XML: {error}"]
    for data_set in root.iter("DataSet"):
        float(data_set.get("timestep"))
        part = os.path.join(os.path.dirname(path), data_set.get("file").replace("\\", "/"))
        faults += Vtu(part).check() if os.path.isfile(part) else [f"{path}: missing {part}"]
    return faults


def main(paths):
    faults = []
    for path in paths:
        faults += check_pvd(path) if path.endswith(".pvd") else Vtu(path).check()
    print("\n".join(faults) or "ok")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
