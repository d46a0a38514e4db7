#!/usr/bin/python3
"""Runs the studies of mesh parameters for the flow around a cylinder, benchmark 2D-1.

    run_studies.py [--host PROGRAM] [--n 10] [--gci 5,10,20] [--gci-scheme lud,quick]
                   [--conservation momentum] [--studies radius,ratio,...]

Prints every table of docs/studies.md as Markdown, each with the command of one of its rows and the
time it took. --n gives the cells per diameter of all studies except the study of three grids, which
has its own (--gci, from coarse to fine, each twice as fine as the one before). That study prints a
table for each convection scheme of --gci-scheme. --conservation is passed on to all runs of the
flow; with "none" the hole boundary shows what the interpolation between the grids creates. A run
that ends with an error becomes a row with its message. Exits with 1 if there was one.
"""

import argparse
import math
import subprocess
import sys
import tempfile
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
FITTED = "reference_host/meshes/channel_cylinder_fitted.geo"
SQUARE = "reference_host/meshes/box_square_overset.geo"
CHANNEL = "reference_host/meshes/channel_cylinder_overset.geo"
EXACT_HEAT = 4.0350931034  # reference_host/studies/heat_reference.py
SAMG_FROM = 40  # cells per diameter from which the external solver is faster for the pressure
DEFAULT_HOST = "build/run/reference_host/reference_host"


class RunFailed(Exception):
    """A run of the host that ended with an error; the text is its message."""


def run_host(host, arguments):
    """Standard output of the host, started in the root of the repository."""
    run = subprocess.run([host, *arguments], cwd=ROOT, capture_output=True, text=True, check=False)
    if run.returncode != 0:
        lines = run.stderr.strip().splitlines()
        raise RunFailed(lines[0] if lines else f"exit code {run.returncode}")
    return run.stdout


def parse_flow(text):
    """Rows of the table that the case `cylinder` prints, as {name: [value, published, deviation]}.

    Names are separated from values by two spaces at least. Rows that later versions add are read
    like the others.
    """
    rows = {}
    inside = False
    for line in text.splitlines():
        if line.startswith("Benchmark 2D-1"):
            inside = True
            rows["cells"] = [line.split(", ")[-1].split()[0]]
        elif line.startswith("Results:"):
            inside = False
        elif inside and line.startswith("  "):
            cells = [cell.strip() for cell in line.strip().split("  ") if cell.strip()]
            if len(cells) > 1 and cells[0] != "computed":
                rows[cells[0]] = cells[1:]
    return rows


class Flow:
    """Runs of the case `cylinder`; the same run is made once."""

    def __init__(self, host, conservation=None):
        self.host = host
        self.further = ["--conservation", conservation] if conservation else []
        self.done = {}

    def rows(self, arguments):
        key = tuple(arguments)
        if key not in self.done:
            with tempfile.TemporaryDirectory() as output:
                try:
                    text = run_host(self.host, [
                        "cylinder", *arguments, *self.further, "--output", output])
                    self.done[key] = parse_flow(text)
                except RunFailed as failure:
                    self.done[key] = failure
        if isinstance(self.done[key], RunFailed):
            raise self.done[key]
        return self.done[key]


class Report:
    """Prints tables and counts the rows that failed."""

    def __init__(self, host, conservation=None):
        self.host = host
        self.flow = Flow(host, conservation)
        self.failures = 0

    def title(self, text):
        print(f"## {text}\n", flush=True)

    def flow_table(self, first_column, runs):
        """One row for each (label, arguments); further figures of the host become columns."""
        known = ["Cd", "Cl", "pressure difference", "mass defect", "outer iterations"]
        left_out = ["cells", "pressure iterations", "CPU seconds", *known]
        rows, further = [], []
        for label, arguments in runs:
            try:
                found = self.flow.rows(arguments)
                further += [name for name in found if name not in left_out + further]
                rows.append((label, found))
            except RunFailed as failure:
                self.failures += 1
                rows.append((label, failure))
        heads = [first_column, "cells", "Cd", "deviation", "Cl deviation",
                 "pressure difference deviation", "mass defect", "iterations", *further]
        table_head(heads)
        for label, found in rows:
            if isinstance(found, RunFailed):
                print(f"| {label} | {found} |" + " |" * (len(heads) - 2))
                continue
            cells = [label, found["cells"][0], f"{float(found['Cd'][0]):.4f}", found["Cd"][-1],
                     found["Cl"][-1], found["pressure difference"][-1], found["mass defect"][0],
                     found["outer iterations"][0]]
            # A force over a control surface ends with its difference from that on the body.
            cells += [found.get(name, [""])[-1] for name in further]
            print("| " + " | ".join(cells) + " |")
        command = " ".join(["cylinder", *runs[0][1], *self.flow.further])
        print(f"\n    reference_host {command} --output DIRECTORY\n", flush=True)


def table_head(heads):
    print("| " + " | ".join(heads) + " |")
    print("|" + "---|" * len(heads))


def three_grids(coarse, medium, fine, ratio=2.0):
    """Observed order, extrapolated value and grid convergence index of the finest grid.

    P. J. Roache, J. Fluids Eng. 116 (1994) 405-413; I. B. Celik et al., J. Fluids Eng. 130 (2008)
    078001, equations 2 to 7 for a constant ratio of refinement, with the safety factor 1.25.

    Returns None if the values swing, or if their differences do not become smaller.
    """
    first, second = medium - coarse, fine - medium
    if second == 0.0 or first / second <= 1.0:
        return None
    order = math.log(first / second) / math.log(ratio)
    factor = ratio**order - 1.0
    return order, fine + second / factor, 1.25 * abs(second / fine) / factor


def study_radius(report, n, _):
    report.title(f"Outer radius of the annulus, n = {n}")
    radii = [1.0, 1.1, 1.25, 1.4, 1.5, 1.65]
    report.flow_table("radius", [(f"{ro:g}", ["--set", f"n={n}", "--set", f"ro={ro:g}"])
                                 for ro in radii])


def study_ratio(report, n, _):
    report.title(f"Donor ratio: component cells per background cell, n = {n}")
    report.flow_table("ratio", [(f"{r:g}", ["--set", f"n={n}", "--set", f"ratio={r:g}"])
                                for r in [0.75, 1.0, 1.5, 2.0]])


def study_relaxation(report, n, _):
    report.title(f"Relaxation of the momentum equations, n = {n}")
    report.flow_table("relaxation", [(f"{a:g}", ["--set", f"n={n}", "--relaxation", f"{a:g}"])
                                     for a in [0.7, 0.8, 0.9, 0.95, 0.97]])


def study_single(report, n, _):
    report.title(f"Overset pair and one body-fitted grid, n = {n}")
    # The default relaxation follows the smallest cell, which on one grid is that at the cylinder.
    relaxation = ["--relaxation", "0.9" if n <= 10 else "0.95" if n <= 20 else "0.975"]
    size = ["--set", f"n={n}", *relaxation]
    report.flow_table("mesh", [("overset pair", size), ("one grid", ["--mesh", FITTED, *size])])


def study_gci(report, _, chosen):
    for scheme in chosen.gci_scheme:
        gci_table(report, chosen.gci, scheme)


def gci_table(report, grids, scheme):
    """Table of three grids for one convection scheme."""
    report.title("Three grids, n = " + ", ".join(str(n) for n in grids) + f", {scheme}")
    values = {}
    try:
        for n in grids:
            solver = ["--pressure-solver", "samg"] if n >= SAMG_FROM else []
            rows = report.flow.rows(["--set", f"n={n}", "--scheme", scheme, *solver])
            for name in ["Cd", "pressure difference"]:
                values.setdefault(name, []).append(float(rows[name][0]))
                values.setdefault(name + " published", rows[name][1])
    except RunFailed as failure:
        report.failures += 1
        print(f"{failure}\n")
        return
    table_head(["figure", *(f"n = {n}" for n in grids), "order", "extrapolated", "GCI", "published",
                "orders of the deviation"])
    for name in ["Cd", "pressure difference"]:
        published = values[name + " published"]
        found = three_grids(*values[name])
        cells = [f"{value:.6f}" for value in values[name]]
        if found is None:
            coarse, medium, fine = values[name]
            swings = (medium - coarse) * (fine - medium) <= 0.0
            cells += ["not monotonic" if swings else "differences grow", "", ""]
        else:
            cells += [f"{found[0]:.2f}", f"{found[1]:.6f}", f"{100.0 * found[2]:.4f} %"]
        cells += [published, deviation_orders(values[name], float(published))]
        print("| " + " | ".join([name, *cells]) + " |")
    samg = f", with --pressure-solver samg from n = {SAMG_FROM} on" * (grids[-1] >= SAMG_FROM)
    print(f"\n    reference_host cylinder --set n=N --scheme {scheme} --output DIRECTORY{samg}\n",
          flush=True)


def deviation_orders(values, published, ratio=2.0):
    """Orders of the deviation from the published value, from each grid to the next finer one.

    A deviation that changes its sign has no order; the text says so.
    """
    orders = []
    for coarse, fine in zip(values, values[1:]):
        quotient = (coarse - published) / (fine - published) if fine != published else 0.0
        orders.append(f"{math.log(quotient) / math.log(ratio):.2f}" if quotient > 0.0
                      else "change of sign")
    return ", ".join(orders)


def study_heat(report, n, _):
    report.title(f"Heat of the cylinder against the donor ratio, n = {n}")
    table_head(["ratio", "heat per depth", "deviation from 4.0351", "in - out, relative"])
    for ratio in [0.75, 1.0, 1.5, 2.0]:
        with tempfile.TemporaryDirectory() as output:
            try:
                text = run_host(report.host, [
                    "heat", "--mesh", CHANNEL, "--set", f"n={n}", "--set", f"ratio={ratio:g}",
                    "--steps", "0", "--output", output])
            except RunFailed as failure:
                report.failures += 1
                print(f"| {ratio:g} | {failure} | | |")
                continue
        last = {line.strip().rsplit("  ", 1)[0].strip(): line.split()[-1]
                for line in text.splitlines() if line.startswith("  in")}
        heat = float(last["in  through the body"])
        print(f"| {ratio:g} | {heat:.4f} | {100.0 * (heat / EXACT_HEAT - 1.0):+.3f} % | "
              f"{last['in - out, relative']} |")
    print(f"\n    reference_host heat --mesh {CHANNEL} --set n={n} --set ratio=2 --steps 0 "
          "--output DIRECTORY\n", flush=True)


def study_square(report, n, _):
    report.title(f"Scalars on a turned square against the donor ratio, n = {n} and {2 * n}")
    angles = [0, 15, 30, 45, 60]
    table_head(["scheme", "ratio", *(f"{angle} degrees" for angle in angles), "lowest order"])
    for scheme in ["diffusion", "lud"]:
        for ratio in [0.75, 0.8, 1.0, 1.5, 2.0, 4.0]:
            errors, orders = [], []
            for angle in angles:
                try:
                    text = run_host(report.host, [
                        "mms", "--mesh", SQUARE, "--set", f"angle={angle}", "--set",
                        f"ratio={ratio:g}", "--n", f"{n},{2 * n}", "--scheme", scheme])
                except RunFailed as failure:
                    report.failures += 1
                    errors.append(str(failure))
                    continue
                fine = [line.split(" all ")[1].split() for line in text.splitlines()
                        if " all " in line][1]
                errors.append(fine[0])
                orders.append(float(fine[1]))
            lowest = f"{min(orders):.2f}" if orders else ""
            print(f"| {scheme} | {ratio:g} | " + " | ".join(errors) + f" | {lowest} |", flush=True)
    print(f"\n    reference_host mms --mesh {SQUARE} --set angle=30 --set ratio=2 --n {n},{2 * n} "
          "--scheme lud\n", flush=True)


STUDIES = {"radius": study_radius, "ratio": study_ratio, "gci": study_gci,
           "relaxation": study_relaxation, "single": study_single, "heat": study_heat,
           "square": study_square}


def parse_arguments(arguments):
    parser = argparse.ArgumentParser(description="Prints the tables of docs/studies.md.")
    parser.add_argument("--host", default=str(ROOT / DEFAULT_HOST), help="the reference host")
    parser.add_argument("--n", default="10", help="cells per diameter, separated by commas")
    parser.add_argument("--gci", default="5,10,20", help="three sizes, each twice the one before")
    parser.add_argument("--gci-scheme", default="lud,quick", help="schemes of the three grids")
    parser.add_argument("--conservation", help="what is conserved where the background is cut")
    parser.add_argument("--studies", default=",".join(STUDIES), help="studies to run")
    chosen = parser.parse_args(arguments)
    try:
        chosen.n = [int(n) for n in chosen.n.split(",")]
        chosen.gci = [int(n) for n in chosen.gci.split(",")]
    except ValueError:
        parser.error("--n and --gci are integers, separated by commas")
    if len(chosen.gci) != 3 or any(2 * a != b for a, b in zip(chosen.gci, chosen.gci[1:])):
        parser.error("--gci gives three sizes, each twice the one before")
    chosen.gci_scheme = chosen.gci_scheme.split(",")
    chosen.studies = chosen.studies.split(",")
    unknown = [name for name in chosen.studies if name not in STUDIES]
    if unknown:
        parser.error(f"unknown study {unknown[0]}: the studies are {', '.join(STUDIES)}")
    chosen.host = str(Path(chosen.host).resolve())
    if not Path(chosen.host).is_file():
        parser.error(f"{chosen.host} does not exist: build the reference host")
    return chosen


def main(arguments):
    chosen = parse_arguments(arguments)
    report = Report(chosen.host, chosen.conservation)
    for name in chosen.studies:
        for n in chosen.n if name != "gci" else [None]:
            start = time.monotonic()
            STUDIES[name](report, n, chosen)
            print(f"*{time.monotonic() - start:.0f} s*\n", flush=True)
    return 1 if report.failures else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
