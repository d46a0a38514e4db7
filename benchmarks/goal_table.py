#!/usr/bin/env python3
"""Turns the JSON files of the benchmark programs into the tables of benchmarks/README.md.

    goal_table.py <folder of JSON files>                 prints the tables
    goal_table.py <folder> --readme FILE --machine TEXT  writes them between the marker lines of FILE
    goal_table.py --check FILE...                        reports the rows of a program that failed

A time is the median CPU time of the repetitions of a row. goal_rows.py lists the rows by name; our
code and its yardstick are paired if the text after the name, the size, is the same. The folder
holds one <program>.json for each program. The exit status is 1, with a line for each fault, if a
row failed its own comparison of results, or if a program that ran has not measured a row that the
tables need.
"""

import argparse
import json
import math
import os
import statistics
import sys
from dataclasses import dataclass

from goal_rows import MEMORY, ROWS

BEGIN = "<!-- tables begin: written by benchmarks/run.sh -->"
END = "<!-- tables end -->"
STEEP = 1.1  # a larger exponent of time against size is explained in the README
SERIES = 4  # smallest number of sizes for which a row shows its growth


def programs():
    """The programs in the order of the tables."""
    return list(dict.fromkeys(entry.program for entry in ROWS + MEMORY))


# --- Reading ---


def plain_name(run_name):
    """Removes what the library appends: "BM_X/64/iterations:3/real_time" becomes "BM_X/64"."""
    parts = run_name.split("/")
    added = ("real_time", "process_time", "manual_time")
    return "/".join(part for part in parts if ":" not in part and part not in added)


def failures(document):
    """One line for each name that failed, with its message."""
    failed = {}
    for run in document["benchmarks"]:
        if run.get("error_occurred"):
            failed[plain_name(run["run_name"])] = run.get("error_message", "failed")
    return [f"{name}: {message}" for name, message in failed.items()]


def measurements(document):
    """Maps each name to the medians over its repetitions: "seconds" and every counter."""
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
    """The times of our code and of the yardstick at one size."""

    argument: str  # the text after the name
    size: float
    ours: float  # seconds
    yardstick: float | None  # None at a size that is too large for the yardstick

    @property
    def ratio(self):
        return self.ours / self.yardstick if self.yardstick is not None else None


def points_of(row, measured):
    """The points at which our code was measured, in ascending order of size.

    There are none unless the yardstick was measured at some size as well.
    """
    points = []
    for name, values in measured.items():
        if not name.startswith(row.ours + "/"):
            continue
        argument = name[len(row.ours) + 1:]
        other = measured.get(f"{row.yardstick}/{argument}")
        if "size" in values:
            points.append(Point(argument, values["size"], values["seconds"],
                                other["seconds"] if other is not None else None))
    if not compared(points):
        return []
    return sorted(points, key=lambda point: point.size)


def compared(points):
    """The points at which the yardstick was measured as well."""
    return [point for point in points if point.yardstick is not None]


def exponent(sizes, times):
    """Slope of log time against log size by least squares; None with fewer than two sizes."""
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
    """The value in the first unit of `steps` (name, factor) in which it is at least 1."""
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
    """A Markdown table, or nothing if there are no lines."""
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
            if point is None or point.yardstick is None:
                lines.append([row.what, argument, "not measured", "", "", f"{limit:.2f}", "", ""])
                continue
            lines.append([
                row.what, size_text(point.size, row.unit), time_text(point.ours),
                f"{row.peer}: {time_text(point.yardstick)}", three_digits(point.ratio), f"{limit:.2f}",
                verdict(point.ratio, limit), exponent_text(slope)])
    return lines


def further_lines(series):
    """The rows without a goal, each at its largest size."""
    lines = []
    for row, points in series:
        if points and not row.goals:
            point = compared(points)[-1]
            lines.append([
                row.what, size_text(point.size, row.unit), time_text(point.ours),
                f"{row.peer}: {time_text(point.yardstick)}", three_digits(point.ratio)])
    return lines


def yardstick_growth(row, points):
    slope = exponent([point.size for point in points], [point.yardstick for point in points])
    return f"{row.peer}: {slope:.2f}" if slope is not None else row.peer


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
            " · ".join(three_digits(point.ratio) if point.ratio is not None else "–"
                       for point in points),
            exponent_text(exponent(sizes, [point.ours for point in points])),
            yardstick_growth(row, compared(points))])
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
    """All tables as lines of text; `measured` maps a program to its measurements."""
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
    """What the tables need but a program that ran has not measured, one text each."""
    missing = []
    for row in ROWS:
        if row.program not in measured:
            continue
        found = {point.argument for point in compared(points_of(row, measured[row.program]))}
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
    """The day on which each program ran, given once if it is the same for all."""
    days = {name: document["context"]["date"][:10] for name, document in documents.items()}
    if len(set(days.values())) == 1:
        return days.popitem()[1]
    return ", ".join(f"{day} ({name})" for name, day in days.items())


def replace_between_markers(text, lines):
    """Replaces the lines between the marker lines of a text and keeps the markers."""
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
    parser.add_argument("folder", nargs="?", help="folder with one <program>.json for each program")
    parser.add_argument("--readme", metavar="FILE", help="write the tables into this file")
    parser.add_argument("--machine", default="", help="machine and compiler, for the line above the tables")
    parser.add_argument("--check", nargs="+", metavar="FILE", help="only report failed rows")
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
