#!/usr/bin/env python3
"""Tests of the script that prints the tables of docs/studies.md."""

import contextlib
import importlib
import io
import math
import sys
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[3] / "reference_host" / "studies" / "run_studies.py"


sys.dont_write_bytecode = True  # the directory of the scripts is left as it is
sys.path.insert(0, str(SCRIPT.parent))
studies = importlib.import_module("run_studies")
reference = importlib.import_module("heat_reference")

OUTPUT = """cylinder 105: change 9.6e-08, mass 1.5e-07, Cd 5.55993, Cl 0.00989
Benchmark 2D-1, lud at 10 cells per diameter, 5423 cells:
                              computed       published    deviation
  Cd                      5.5599297287    5.5795352338     -0.351 %
  Cl                      0.0098935577    0.0106189481     -6.831 %
  pressure difference     0.1175253124    0.1175201670     +0.004 %
  mass defect                -2.71e-03
  outer iterations                 105
  a further figure              0.1234
  Cd, hole boundary       5.5599297210   from the body     -0.000 %
  pressure iterations             31.7  at most 69
  CPU seconds                      6.2
Results: directory/VTK_Overset_Flow_Results.pvd (time is the iteration), residuals: history.csv
"""


class ThreeGrids(unittest.TestCase):
    def test_second_order_error_is_found_and_removed(self):
        exact, error = 5.58, -0.02
        order, value, index = studies.three_grids(
            exact + 16.0 * error, exact + 4.0 * error, exact + error)
        self.assertAlmostEqual(order, 2.0, 10)
        self.assertAlmostEqual(value, exact, 10)
        self.assertAlmostEqual(index, 1.25 * 0.02 / 5.56, 10)

    def test_order_of_one_and_a_half_is_found(self):
        factor = 2.0**1.5
        order, value, _ = studies.three_grids(1.0 + factor**2, 1.0 + factor, 2.0)
        self.assertAlmostEqual(order, 1.5, 10)
        self.assertAlmostEqual(value, 1.0, 10)

    def test_values_that_swing_or_grow_apart_have_no_order(self):
        self.assertIsNone(studies.three_grids(1.0, 2.0, 1.5))
        self.assertIsNone(studies.three_grids(1.0, 1.1, 1.5))
        self.assertIsNone(studies.three_grids(1.0, 2.0, 2.0))


class Deviations(unittest.TestCase):
    def test_orders_follow_from_the_quotients_of_the_deviations(self):
        self.assertEqual(studies.deviation_orders([6.6, 5.4, 5.1], 5.0), "2.00, 2.00")

    def test_a_deviation_that_changes_its_sign_or_vanishes_has_no_order(self):
        self.assertEqual(studies.deviation_orders([4.9, 5.1, 5.05], 5.0), "change of sign, 1.00")
        self.assertEqual(studies.deviation_orders([5.1, 5.0], 5.0), "change of sign")

    def test_a_table_tells_values_that_swing_from_differences_that_grow(self):
        for drags, text in [((5.5, 5.6, 5.55), "not monotonic"),
                            ((5.5, 5.6, 5.8), "differences grow")]:
            report = studies.Report("host")
            for n, drag in zip((5, 10, 20), drags):
                report.flow.done[("--set", f"n={n}", "--scheme", "lud")] = {
                    "Cd": [str(drag), "5.58"], "pressure difference": ["0.1", "0.1175"]}
            printed = io.StringIO()
            with contextlib.redirect_stdout(printed):
                studies.gci_table(report, [5, 10, 20], "lud")
            self.assertIn(f"| {text} |  |  | 5.58 |", printed.getvalue())

    def test_three_grids_run_each_scheme_and_the_external_solver_on_fine_grids(self):
        chosen = studies.parse_arguments(
            ["--host", str(SCRIPT), "--gci", "10,20,40", "--gci-scheme", "quick"])
        report = studies.Report("host")
        for n, solver in [(10, ()), (20, ()), (40, ("--pressure-solver", "samg"))]:
            drag = 5.5795352338 - 1.6 / n**2
            report.flow.done[("--set", f"n={n}", "--scheme", "quick", *solver)] = {
                "Cd": [str(drag), "5.5795352338"], "pressure difference": ["0.1", "0.1175201670"]}
        printed = io.StringIO()
        with contextlib.redirect_stdout(printed):
            studies.study_gci(report, None, chosen)
        self.assertIn("| Cd | 5.563535 | 5.575535 | 5.578535 | 2.00 | 5.579535 | 0.0224 % | "
                      "5.5795352338 | 2.00, 2.00 |", printed.getvalue())
        self.assertIn("--scheme quick", printed.getvalue())


class Tables(unittest.TestCase):
    def table(self, results):
        """The lines of a flow table whose runs have the outputs or errors `results`."""
        report = studies.Report("host")
        for i, result in enumerate(results):
            report.flow.done[(str(i),)] = result
        printed = io.StringIO()
        with contextlib.redirect_stdout(printed):
            report.flow_table("run", [(f"run {i}", [str(i)]) for i in range(len(results))])
        return report, printed.getvalue().splitlines()

    def test_rows_are_read_from_the_output_of_the_host(self):
        rows = studies.parse_flow(OUTPUT)
        self.assertEqual(rows["cells"], ["5423"])
        self.assertEqual(rows["Cd"], ["5.5599297287", "5.5795352338", "-0.351 %"])
        self.assertEqual(rows["mass defect"], ["-2.71e-03"])

    def test_known_figures_and_further_ones_are_columns(self):
        report, lines = self.table([studies.parse_flow(OUTPUT)])
        self.assertTrue(lines[0].endswith(
            "| iterations | a further figure | Cd, hole boundary |"), lines[0])
        self.assertEqual(
            lines[2],
            "| run 0 | 5423 | 5.5599 | -0.351 % | -6.831 % | +0.004 % | -2.71e-03 | 105 | 0.1234 "
            "| -0.000 % |")
        self.assertEqual(report.failures, 0)

    def test_run_with_an_error_is_a_row_and_counts(self):
        report, lines = self.table([studies.RunFailed("no donor"), studies.parse_flow(OUTPUT)])
        self.assertTrue(lines[2].startswith("| run 0 | no donor |"), lines[2])
        self.assertTrue(all(line.count("|") == lines[0].count("|") for line in lines[:4]))
        self.assertEqual(report.failures, 1)


class HeatReference(unittest.TestCase):
    def test_heat_in_the_case_and_in_the_studies_is_that_of_the_collocation(self):
        value, error = reference.heat(
            lambda z: reference.np.cosh(math.pi * z / reference.HEIGHT), reference.CENTER, 24)
        header = (SCRIPT.parents[1] / "cases" / "case_heat.h").read_text()
        constant = float(header.split("heatOfTheCylinder = ")[1].split(";")[0])
        self.assertLess(error, 1e-7)
        self.assertAlmostEqual(value, constant, 9)
        self.assertEqual(studies.EXACT_HEAT, constant)

    def test_line_source_is_its_leading_order(self):
        value, _ = reference.heat(
            lambda z: reference.np.cosh(math.pi * z / reference.HEIGHT), reference.CENTER, 0)
        self.assertAlmostEqual(value, 4.0303, 3)


if __name__ == "__main__":
    unittest.main()
