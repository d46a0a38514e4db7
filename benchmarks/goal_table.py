#!/usr/bin/env python3
"""Turns the JSON files of the benchmark programs into the tables of benchmarks/README.md.

    goal_table.py <folder of JSON files>                     prints the tables
    goal_table.py <folder> --readme FILE --machine TEXT      puts them between the marker lines of FILE
    goal_table.py --check FILE...                            tells which rows of a program failed

A time is the median CPU time of the repetitions of a row; rows are matched by name, ours and its
yardstick by equal text behind it. The folder holds one <program>.json for each program. Ends with 1
and a line for each fault if a row failed its own comparison of answers, or if a program ran without
a row that the tables need.
"""

import argparse
import json
import math
import os
import statistics
import sys
from dataclasses import dataclass, field

BEGIN = "<!-- tables begin: written by benchmarks/run.sh -->"
END = "<!-- tables end -->"
STEEP = 1.1  # an exponent of time against size above this needs a reason
SERIES = 4  # sizes from which a row shows how it grows


@dataclass
class Row:
    """One kernel against its yardstick at every size that the program measures."""

    what: str
    program: str
    ours: str  # name without the size, which follows it behind a slash
    yardstick: str
    peer: str  # the yardstick in words
    unit: str  # of the counter "size"
    goals: dict = field(default_factory=dict)  # text of the size -> largest ratio; none: no goal


@dataclass
class Memory:
    """A counter of one row and size of a program."""

    what: str
    program: str
    row: str  # name with the size
    counter: str
    unit: str
    limit: float | None = None


ROWS = [
    Row("Overset set-up", "overset_benchmark", "BM_Setup", "BM_SetupPlain", "plain", "cells",
        {"6": 0.5, "12": 0.17, "20": 0.11}),
    Row("Donor queries", "overset_benchmark", "BM_Donors", "BM_DonorsPlain", "plain", "faces",
        {"20": 0.5}),
    Row("32,768 searches among random points", "kd_tree_benchmark",
        "BM_Nearest/Uniform", "BM_NearestNanoflann/Uniform", "nanoflann", "points",
        {"1000000": 1.2}),
    Row("32,768 searches among lattice points", "kd_tree_benchmark",
        "BM_Nearest/Lattice", "BM_NearestNanoflann/Lattice", "nanoflann", "points"),
    Row("BiCGSTAB step, 7-point", "bicgstab_benchmark",
        "BM_Iteration/Box", "BM_IterationPlain/Box", "plain", "rows", {"64": 0.78, "100": 0.78}),
    Row("BiCGSTAB step, irregular", "bicgstab_benchmark",
        "BM_Iteration/Irregular", "BM_IterationPlain/Irregular", "plain", "rows", {"48": 0.85}),
    Row("BiCGSTAB step, irregular, rows shuffled", "bicgstab_benchmark",
        "BM_Iteration/Shuffled", "BM_IterationPlain/Shuffled", "plain", "rows", {"48": 0.60}),
    Row("Product with a vector, 7-point", "sparse_matrix_benchmark",
        "BM_Product", "BM_ProductEigen", "Eigen", "rows", {"100": 1.05}),
    Row("Pattern declared by face", "sparse_matrix_benchmark",
        "BM_Pattern", "BM_PatternPlain", "plain", "rows", {"100": 1.15}),
    Row("Diffusion operator", "operators_benchmark",
        "BM_Diffusion", "BM_DiffusionBare", "known positions", "faces", {"70": 1.3}),
    Row("LUD convection operator", "operators_benchmark",
        "BM_LUD", "BM_LUDBare", "known positions", "faces", {"70": 1.3}),
    Row("Step file", "vtk_benchmark",
        "BM_StepFile", "BM_StepFilePlain", "plain stream", "cells", {"58": 0.75}),
    Row("Solver library, Poisson", "matrix_solver_benchmark",
        "BM_Library/Poisson", "BM_LibraryToolbox/Poisson", "BiCGSTAB + DILU", "rows",
        {"100": 0.6}),

    Row("DILU factorisation, 7-point", "bicgstab_benchmark",
        "BM_Factorisation/Box", "BM_FactorisationPlain/Box", "plain", "rows"),
    Row("DILU factorisation, irregular", "bicgstab_benchmark",
        "BM_Factorisation/Irregular", "BM_FactorisationPlain/Irregular", "plain", "rows"),
    Row("BiCGSTAB + DILU, 7-point", "bicgstab_benchmark",
        "BM_Solve/Box", "BM_SolveEigenILUT/Box", "Eigen, ILUT", "rows"),
    Row("BiCGSTAB + DILU, irregular", "bicgstab_benchmark",
        "BM_Solve/Irregular", "BM_SolveEigenDiagonal/Irregular", "Eigen, diagonal", "rows"),
    Row("Tree of random points", "kd_tree_benchmark",
        "BM_Build/Uniform", "BM_BuildNanoflann/Uniform", "nanoflann", "points"),
    Row("Tree of lattice points", "kd_tree_benchmark",
        "BM_Build/Lattice", "BM_BuildNanoflann/Lattice", "nanoflann", "points"),
    Row("Tree of lattice points", "kd_tree_benchmark",
        "BM_Build/Lattice", "BM_BuildPlain/Lattice", "plain", "points"),
    Row("Tree and a search for every eight lattice points", "kd_tree_benchmark",
        "BM_FirstSearches/Lattice", "BM_FirstSearchesNanoflann/Lattice", "nanoflann", "points"),
    Row("Pattern declared by face", "sparse_matrix_benchmark",
        "BM_Pattern", "BM_PatternEigen", "Eigen, triplets", "rows"),
    Row("Assembly by coordinates", "sparse_matrix_benchmark",
        "BM_Assembly", "BM_AssemblyEigen", "Eigen, coeffRef", "rows"),
    Row("Diffusion operator", "operators_benchmark",
        "BM_Diffusion", "BM_DiffusionPlain", "plain", "faces"),
    Row("LUD convection operator", "operators_benchmark",
        "BM_LUD", "BM_LUDPlain", "plain", "faces"),
    Row("Diffusion operator", "operators_benchmark",
        "BM_Diffusion", "BM_DiffusionRead", "reading the records alone", "faces"),
    Row("Diffusion operator", "operators_benchmark",
        "BM_Diffusion", "BM_DiffusionKnown", "finished values", "faces"),
    Row("LUD convection operator", "operators_benchmark",
        "BM_LUD", "BM_LUDRead", "reading the records alone", "faces"),
    Row("LUD convection operator", "operators_benchmark",
        "BM_LUD", "BM_LUDKnown", "finished values", "faces"),
    Row("First-order upwind operator", "operators_benchmark",
        "BM_FU", "BM_FUBare", "known positions", "faces"),
    Row("QUICK operator", "operators_benchmark",
        "BM_QUICK", "BM_QUICKBare", "known positions", "faces"),
    Row("Step file", "vtk_benchmark",
        "BM_StepFile", "BM_StepFileLineWrites", "a write a line", "cells"),
    Row("Solver library through its matrix class, Poisson", "matrix_solver_benchmark",
        "BM_LibraryFront/Poisson", "BM_LibraryToolbox/Poisson", "BiCGSTAB + DILU", "rows"),
    Row("Solver library, cell Peclet number 10", "matrix_solver_benchmark",
        "BM_Library/Convection", "BM_LibraryToolbox/Convection", "BiCGSTAB + DILU", "rows"),
    Row("Solver library, cell Peclet number 10", "matrix_solver_benchmark",
        "BM_Library/Convection", "BM_LibraryEigen/Convection", "Eigen, ILUT", "rows"),
    Row("Solver library, 1:100 anisotropic", "matrix_solver_benchmark",
        "BM_Library/Anisotropic", "BM_LibraryToolbox/Anisotropic", "BiCGSTAB + DILU", "rows"),
    Row("Solver library, 1:100 anisotropic", "matrix_solver_benchmark",
        "BM_Library/Anisotropic", "BM_LibraryEigen/Anisotropic", "Eigen, ILUT", "rows"),
    Row("Solver library, cell Peclet number 0.1", "matrix_solver_benchmark",
        "BM_Library/WeakConvection", "BM_LibraryToolbox/WeakConvection", "BiCGSTAB + DILU",
        "rows"),
    Row("Solver library, pressure of an overset pair", "matrix_solver_benchmark",
        "BM_Library/Pressure", "BM_LibraryToolbox/Pressure", "BiCGSTAB + DILU", "rows"),
    Row("Solver library, momentum of an overset pair", "matrix_solver_benchmark",
        "BM_Library/Momentum", "BM_LibraryToolbox/Momentum", "BiCGSTAB + DILU", "rows"),
]

MEMORY = [
    Memory("Peak of the overset set-up above the mesh arrays, m = 20", "overset_benchmark",
           "BM_Setup/20", "above_mesh_MB", "MB", 150),
    Memory("Of these mesh arrays, derived from the host's", "overset_benchmark",
           "BM_Setup/20", "mesh_MB", "MB"),
    Memory("The peak of plain above the mesh arrays", "overset_benchmark",
           "BM_SetupPlain/20", "above_mesh_MB", "MB"),
    Memory("Pattern of 1 M rows x 7, a matrix entry", "sparse_matrix_benchmark",
           "BM_Pattern/100", "bytes_per_entry", "bytes"),
    Memory("Peak while it is declared, a matrix entry", "sparse_matrix_benchmark",
           "BM_Pattern/100", "peak_bytes_per_entry", "bytes"),
    Memory("The same of plain ordered sets", "sparse_matrix_benchmark",
           "BM_PatternPlain/100", "peak_bytes_per_entry", "bytes"),
]


def programs():
    """The programs in the order of the tables."""
    return list(dict.fromkeys(entry.program for entry in ROWS + MEMORY))


# --- Reading ---


def plain_name(run_name):
    """The name without what the library appends: "BM_X/64/iterations:3/real_time" is "BM_X/64"."""
    parts = run_name.split("/")
    added = ("real_time", "process_time", "manual_time")
    return "/".join(part for part in parts if ":" not in part and part not in added)


def failures(document):
    """One text for each name that failed, with its message."""
    failed = {}
    for run in document["benchmarks"]:
        if run.get("error_occurred"):
            failed[plain_name(run["run_name"])] = run.get("error_message", "failed")
    return [f"{name}: {message}" for name, message in failed.items()]


def measurements(document):
    """name -> medians over the repetitions: "seconds" and every counter."""
    seconds_in = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}
    samples = {}
    for run in document["benchmarks"]:
        if run["run_type"] != "iteration" or run.get("error_occurred"):
            continue
        values = {key: value for key, value in run.items() if isinstance(value, (int, float))}
        clock = "real_time" if "manual_time" in run["run_name"] else "cpu_time"
        values["seconds"] = run[clock] * seconds_in[run["time_unit"]]
        for key, value in values.items():
            samples.setdefault(plain_name(run["run_name"]), {}).setdefault(key, []).append(value)
    return {
        name: {key: statistics.median(values) for key, values in by_key.items()}
        for name, by_key in samples.items()
    }


@dataclass
class Point:
    """Ours and the yardstick at one size."""

    argument: str  # what follows the name
    size: float
    ours: float  # seconds
    yardstick: float

    @property
    def ratio(self):
        return self.ours / self.yardstick


def points_of(row, measured):
    """The sizes at which both sides of a row were measured, ascending."""
    points = []
    for name, values in measured.items():
        if not name.startswith(row.ours + "/"):
            continue
        argument = name[len(row.ours) + 1:]
        other = measured.get(f"{row.yardstick}/{argument}")
        if other is not None and "size" in values:
            points.append(Point(argument, values["size"], values["seconds"], other["seconds"]))
    return sorted(points, key=lambda point: point.size)


def exponent(sizes, times):
    """Slope of log time against log size by least squares; None below two different sizes."""
    if len(set(sizes)) < 2:
        return None
    x = [math.log(size) for size in sizes]
    y = [math.log(time) for time in times]
    x_mean, y_mean = statistics.fmean(x), statistics.fmean(y)
    above = sum((a - x_mean) * (b - y_mean) for a, b in zip(x, y))
    return above / sum((a - x_mean) ** 2 for a in x)


# --- Text ---


def three_digits(value):
    """Three significant digits, never in scientific notation: 0.0712, 1.98, 31.1, 12400."""
    decimals = 2 - math.floor(math.log10(abs(value))) if value else 2
    rounded = round(value, decimals)
    return f"{rounded:.{max(decimals, 0)}f}"


def scaled(value, steps):
    """The value in the first unit of `steps` (name, factor) that it reaches."""
    for name, factor in steps:
        if value >= factor:
            return f"{three_digits(value / factor)} {name}".rstrip()
    name, factor = steps[-1]
    return f"{three_digits(value / factor)} {name}".rstrip()


def time_text(seconds):
    return scaled(seconds, [("s", 1.0), ("ms", 1e-3), ("µs", 1e-6), ("ns", 1e-9)])


def size_text(size, unit=""):
    return f"{scaled(size, [('M', 1e6), ('k', 1e3), ('', 1.0)])} {unit}".rstrip()


def exponent_text(value):
    if value is None:
        return "–"
    return f"**{value:.2f}** (steep)" if value > STEEP else f"{value:.2f}"


def verdict(value, limit):
    return "yes" if value <= limit else "**no**"


def table(head, lines):
    """A Markdown table; nothing without lines."""
    if not lines:
        return []
    rule = ["---"] * len(head)
    return ["| " + " | ".join(cells) + " |" for cells in [head, rule] + lines] + [""]


# --- Tables ---


def goal_lines(series):
    lines = []
    for row, points in series:
        at = {point.argument: point for point in points}
        slope = exponent([p.size for p in points], [p.ours for p in points])
        for argument, limit in row.goals.items():
            point = at.get(argument)
            if point is None:
                lines.append([row.what, argument, "not measured", "", "", f"{limit:.2f}", "", ""])
                continue
            lines.append([
                row.what, size_text(point.size, row.unit), time_text(point.ours),
                f"{row.peer}: {time_text(point.yardstick)}", three_digits(point.ratio), f"{limit:.2f}",
                verdict(point.ratio, limit), exponent_text(slope)])
    return lines


def further_lines(series):
    """Rows without a goal, at their largest size."""
    lines = []
    for row, points in series:
        if points and not row.goals:
            point = points[-1]
            lines.append([
                row.what, size_text(point.size, row.unit), time_text(point.ours),
                f"{row.peer}: {time_text(point.yardstick)}", three_digits(point.ratio)])
    return lines


def growth_lines(series):
    lines = []
    listed = set()
    for row, points in series:
        if len(points) < SERIES or (row.program, row.ours) in listed:
            continue
        listed.add((row.program, row.ours))
        sizes = [point.size for point in points]
        lines.append([
            row.what,
            " · ".join(size_text(size) for size in sizes) + f" {row.unit}",
            " · ".join(time_text(point.ours) for point in points),
            " · ".join(three_digits(point.ratio) for point in points),
            exponent_text(exponent(sizes, [point.ours for point in points])),
            f"{row.peer}: {exponent(sizes, [point.yardstick for point in points]):.2f}"])
    return lines


def memory_lines(measured):
    lines = []
    for entry in MEMORY:
        value = measured.get(entry.program, {}).get(entry.row, {}).get(entry.counter)
        if value is None:
            lines.append([entry.what, "not measured", "", ""])
            continue
        limited = entry.limit is not None
        lines.append([
            entry.what, f"{three_digits(value)} {entry.unit}",
            f"{entry.limit:g} {entry.unit}" if limited else "",
            verdict(value, entry.limit) if limited else ""])
    return lines


def tables(measured):
    """All tables as lines; `measured` maps a program to its measurements."""
    series = [(row, points_of(row, measured.get(row.program, {}))) for row in ROWS]
    return (
        table(["goal", "size", "ours", "yardstick", "ratio", "at most", "met", "exponent"],
              goal_lines(series))
        + ["Exponent: of time against size, least squares over the sizes below.", ""]
        + table(["kernel", "sizes", "ours", "ratios", "exponent", "of the yardstick"],
                growth_lines(series))
        + table(["memory", "ours", "at most", "met"], memory_lines(measured))
        + table(["further kernel", "size", "ours", "yardstick", "ratio"], further_lines(series)))


def missing_rows(measured):
    """What the tables need and a program that did run has not measured."""
    missing = []
    for row in ROWS:
        if row.program not in measured:
            continue
        found = {point.argument for point in points_of(row, measured[row.program])}
        for argument in row.goals or ([] if found else ["<size>"]):
            if argument not in found:
                missing.append(f"{row.program}: no {row.ours}/{argument} with a counter \"size\" "
                               f"and {row.yardstick}/{argument}")
    for entry in MEMORY:
        counters = measured.get(entry.program, {entry.row: {entry.counter: 0}}).get(entry.row, {})
        if entry.counter not in counters:
            missing.append(f"{entry.program}: no counter {entry.counter} in {entry.row}")
    return missing


def measured_when(documents):
    """The day of each program, in one text if they share it."""
    days = {name: document["context"]["date"][:10] for name, document in documents.items()}
    if len(set(days.values())) == 1:
        return days.popitem()[1]
    return ", ".join(f"{day} ({name})" for name, day in days.items())


def replace_between_markers(text, lines):
    """The text with the lines between the marker lines replaced, which stay."""
    before, begin, rest = text.partition(BEGIN + "\n")
    _, end, after = rest.partition(END)
    if not begin or not end:
        raise ValueError(f"needs the lines '{BEGIN}' and '{END}'")
    return before + begin + "\n" + "\n".join(lines) + "\n" + end + after


def read(path):
    try:
        with open(path, encoding="utf-8") as file:
            return json.load(file)
    except ValueError:
        sys.exit(f"goal_table.py: {path}: not a complete JSON file; run the program again")


def check(paths):
    faults = [f"{path}: {text}" for path in paths for text in failures(read(path))]
    for fault in faults:
        print(f"goal_table.py: {fault}", file=sys.stderr)
    return bool(faults)


def main(arguments):
    parser = argparse.ArgumentParser(prog="goal_table.py", description=__doc__.partition("\n")[0])
    parser.add_argument("folder", nargs="?", help="with one <program>.json for each program")
    parser.add_argument("--readme", metavar="FILE", help="put the tables into this file")
    parser.add_argument("--machine", default="", help="machine and compiler, for the line above")
    parser.add_argument("--check", nargs="+", metavar="FILE", help="only look for failed rows")
    chosen = parser.parse_args(arguments)
    if chosen.check:
        return check(chosen.check)
    if chosen.folder is None:
        parser.error("a folder is missing")

    paths = {name: os.path.join(chosen.folder, name + ".json") for name in programs()}
    documents = {name: read(path) for name, path in paths.items() if os.path.exists(path)}
    if not documents:
        parser.error(f"no <program>.json in {chosen.folder}")
    measured = {name: measurements(document) for name, document in documents.items()}
    lines = tables(measured)
    if chosen.readme:
        about = ", ".join(filter(None, [chosen.machine, measured_when(documents)]))
        with open(chosen.readme, encoding="utf-8") as file:
            text = file.read()
        try:
            text = replace_between_markers(text, [about + ".", ""] + lines)
        except ValueError as error:
            sys.exit(f"goal_table.py: {chosen.readme}: {error}")
        with open(chosen.readme, "w", encoding="utf-8") as file:
            file.write(text)
    else:
        print("\n".join(lines))

    missing = missing_rows(measured)
    for text in missing:
        print(f"goal_table.py: {text}", file=sys.stderr)
    return check(path for path in paths.values() if os.path.exists(path)) or bool(missing)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
