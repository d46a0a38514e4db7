#!/usr/bin/python3
"""Tests the computation of the tables of benchmarks/README.md on small results made by hand."""

import contextlib
import copy
import io
import json
import os
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "benchmarks"))

import goal_table  # noqa: E402
from goal_rows import Memory, Row  # noqa: E402


def run(name, milliseconds, size=1000, **values):
    return {"run_name": name, "run_type": "iteration", "cpu_time": milliseconds, "real_time": 99.0,
            "time_unit": "ms", "size": size, **values}


def document(*runs, day="2026-11-20"):
    return {"context": {"date": day + "T12:00:00+00:00"}, "benchmarks": list(runs)}


def four_sizes(power=1.0, ours="BM_X", peer="BM_XPlain"):
    """Our time is 1 ms per thousand, growing with `power`; that of the yardstick 2 ms, linear."""
    runs = []
    for size in (1000, 2000, 4000, 8000):
        runs.append(run(f"{ours}/{size}", (size / 1000) ** power, size))
        runs.append(run(f"{peer}/{size}", 2 * size / 1000, size))
    return runs


class Tables(unittest.TestCase):
    def setUp(self):
        self.rows, self.memory = goal_table.ROWS, goal_table.MEMORY
        goal_table.ROWS = [Row("Kernel", "x_benchmark", "BM_X", "BM_XPlain", "plain", "cells",
                               {"8000": 0.5})]
        goal_table.MEMORY = []

    def tearDown(self):
        goal_table.ROWS, goal_table.MEMORY = self.rows, self.memory

    def lines(self, *runs):
        return goal_table.tables({"x_benchmark": goal_table.measurements(document(*runs))})

    def call(self, documents, *arguments, readme=None):
        """Exit status, standard output, standard error and the README after the call."""
        with tempfile.TemporaryDirectory() as folder:
            for name, content in documents.items():
                with open(os.path.join(folder, name + ".json"), "w", encoding="utf-8") as file:
                    file.write(content if isinstance(content, str) else json.dumps(content))
            given = [folder, *arguments]
            path = os.path.join(folder, "README.md")
            if readme is not None:
                with open(path, "w", encoding="utf-8") as file:
                    file.write(readme)
                given += ["--readme", path]
            out, err = io.StringIO(), io.StringIO()
            with contextlib.redirect_stdout(out), contextlib.redirect_stderr(err):
                try:
                    status = int(goal_table.main(given))
                except SystemExit as end:
                    status = end.code if isinstance(end.code, int) else 1
                    err.write("" if isinstance(end.code, int) else end.code)
            after = ""
            if readme is not None:
                with open(path, encoding="utf-8") as file:
                    after = file.read()
            return status, out.getvalue(), err.getvalue(), after

    def test_a_ratio_equal_to_the_goal_meets_it(self):
        self.assertIn("| Kernel | 8.00 k cells | 8.00 ms | plain: 16.0 ms | 0.500 | 0.50 | yes | 1.00 |",
                      self.lines(*four_sizes()))

    def test_a_ratio_above_the_goal_does_not_meet_it(self):
        runs = four_sizes()
        runs[-2]["cpu_time"] = 8.1
        self.assertIn("| **no** |", self.lines(*runs)[2])

    def test_a_ratio_just_above_the_goal_does_not_look_met(self):
        runs = four_sizes()
        runs[-2]["cpu_time"] = 8.01
        self.assertIn("| 0.501 | 0.50 | **no** |", self.lines(*runs)[2])

    def test_a_time_is_the_median_of_the_repetitions(self):
        runs = four_sizes()
        runs += [run("BM_X/8000/repeats:3", milliseconds, 8000) for milliseconds in (1.0, 99.0)]
        self.assertIn("| 8.00 ms | plain: 16.0 ms |", self.lines(*runs)[2])

    def test_aggregates_are_not_counted_as_repetitions(self):
        runs = four_sizes()
        runs.append({**run("BM_X/8000", 1.0, 8000), "run_type": "aggregate"})
        runs.append({**run("BM_X/8000", 1.0, 8000), "run_type": "aggregate"})
        self.assertIn("| 8.00 ms | plain: 16.0 ms |", self.lines(*runs)[2])

    def test_a_size_needs_both_sides(self):
        runs = four_sizes()
        del runs[-1]
        self.assertIn("| Kernel | 8000 | not measured |", self.lines(*runs)[2])

    def test_names_with_a_common_beginning_are_different_rows(self):
        runs = four_sizes() + four_sizes(ours="BM_XY", peer="BM_XYPlain")
        self.assertEqual(self.lines(*runs), self.lines(*four_sizes()))

    def test_growth_above_the_bound_is_flagged(self):
        steep = [line for line in self.lines(*four_sizes(power=1.2)) if "(steep)" in line]
        self.assertEqual(len(steep), 2)  # with the goal and with the sizes
        self.assertIn("| **1.20** (steep) | plain: 1.00 |", steep[1])
        self.assertFalse([line for line in self.lines(*four_sizes(1.09)) if "(steep)" in line])

    def test_growth_lists_all_sizes_in_ascending_order(self):
        runs = four_sizes()
        runs.reverse()
        self.assertIn("| Kernel | 1.00 k · 2.00 k · 4.00 k · 8.00 k cells | "
                      "1.00 ms · 2.00 ms · 4.00 ms · 8.00 ms | 0.500 · 0.500 · 0.500 · 0.500 | 1.00 | "
                      "plain: 1.00 |", self.lines(*runs))

    def test_growth_goes_beyond_the_sizes_of_the_yardstick(self):
        lines = self.lines(*four_sizes(), run("BM_X/16000", 64.0, 16000))
        growth = next(line for line in lines if "1.00 k · 2.00 k" in line)
        self.assertIn("8.00 k · 16.0 k cells", growth)
        self.assertIn("0.500 · 0.500 · –", growth)
        self.assertIn("plain: 1.00", growth)
        self.assertIn("**1.4", growth)
        self.assertTrue(any("| 0.500 | 0.50 | yes |" in line for line in lines))

    def test_memory_is_compared_with_its_limit_or_only_reported(self):
        goal_table.MEMORY = [Memory("Peak", "x_benchmark", "BM_X/8000", "peak_MB", "MB", 150),
                             Memory("Entry", "x_benchmark", "BM_X/8000", "bytes", "bytes")]
        runs = four_sizes()
        runs[-2].update(peak_MB=151.0, bytes=12.0)
        lines = self.lines(*runs)
        self.assertIn("| Peak | 151 MB | 150 MB | **no** |", lines)
        self.assertIn("| Entry | 12.0 bytes |  |  |", lines)

    def test_a_row_without_goal_is_listed_further_down_at_its_largest_size(self):
        goal_table.ROWS[0].goals = {}
        lines = self.lines(*four_sizes()[:4])
        self.assertEqual([line for line in lines if "Kernel" in line],
                         ["| Kernel | 2.00 k cells | 2.00 ms | plain: 4.00 ms | 0.500 |"])

    def test_the_readme_keeps_the_text_around_the_tables(self):
        readme = f"before\n{goal_table.BEGIN}\nold\n{goal_table.END}\nafter\n"
        status, _, err, after = self.call({"x_benchmark": document(*four_sizes())},
                                          "--machine", "A processor", readme=readme)
        self.assertEqual((status, err), (0, ""))
        self.assertTrue(after.startswith(f"before\n{goal_table.BEGIN}\n"))
        self.assertTrue(after.endswith(f"{goal_table.END}\nafter\n"))
        self.assertIn("A processor, 2026-11-20.", after)
        self.assertNotIn("old", after)
        again = self.call({"x_benchmark": document(*four_sizes())}, "--machine", "A processor",
                          readme=after)[3]
        self.assertEqual(again, after)

    def test_a_readme_without_markers_is_not_changed(self):
        status, _, err, after = self.call({"x_benchmark": document(*four_sizes())}, readme="text\n")
        self.assertEqual((status, after), (1, "text\n"))
        self.assertIn("needs the lines", err)

    def test_programs_measured_on_different_days_are_named(self):
        goal_table.ROWS.append(Row("Other", "y_benchmark", "BM_X", "BM_XPlain", "plain", "rows"))
        readme = f"{goal_table.BEGIN}\n{goal_table.END}\n"
        after = self.call({"x_benchmark": document(*four_sizes()),
                           "y_benchmark": document(*four_sizes(), day="2026-11-21")},
                          readme=readme)[3]
        self.assertIn("2026-11-20 (x_benchmark), 2026-11-21 (y_benchmark).", after)

    def test_a_wrong_result_fails(self):
        runs = four_sizes()
        runs[-2] = {**runs[-2], "error_occurred": True, "error_message": "other bits"}
        status, _, err, _ = self.call({"x_benchmark": document(*runs)})
        self.assertEqual(status, 1)
        self.assertIn("BM_X/8000: other bits", err)

    def test_the_check_of_a_single_file_finds_a_wrong_result(self):
        runs = four_sizes()
        good, bad = document(*copy.deepcopy(runs)), document(*runs)
        bad["benchmarks"][0]["error_occurred"] = True
        for content, expected in ((good, 0), (bad, 1)):
            with tempfile.NamedTemporaryFile("w", suffix=".json") as file:
                json.dump(content, file)
                file.flush()
                with contextlib.redirect_stderr(io.StringIO()):
                    self.assertEqual(goal_table.main(["--check", file.name]), expected)

    def test_a_goal_that_was_not_measured_fails(self):
        status, _, err, _ = self.call({"x_benchmark": document(*four_sizes()[:-2])})
        self.assertEqual(status, 1)
        self.assertIn("x_benchmark: no BM_X/8000", err)

    def test_a_memory_counter_that_is_missing_fails(self):
        goal_table.MEMORY = [Memory("Peak", "x_benchmark", "BM_X/8000", "peak_MB", "MB", 150)]
        status, _, err, _ = self.call({"x_benchmark": document(*four_sizes())})
        self.assertEqual(status, 1)
        self.assertIn("no counter peak_MB in BM_X/8000", err)

    def test_a_program_that_never_ran_is_reported_in_the_tables_only(self):
        goal_table.ROWS.append(Row("Other", "y_benchmark", "BM_Y", "BM_YPlain", "plain", "rows",
                                   {"10": 1.0}))
        status, out, _, _ = self.call({"x_benchmark": document(*four_sizes())})
        self.assertEqual(status, 0)
        self.assertIn("| Other | 10 | not measured |", out)

    def test_a_truncated_file_is_reported_in_one_line(self):
        status, _, err, _ = self.call({"x_benchmark": '{"context"'})
        self.assertEqual(status, 1)
        self.assertIn("not a complete JSON file", err)


class Numbers(unittest.TestCase):
    def test_three_digits(self):
        for value, text in ((0.0712, "0.0712"), (1.98, "1.98"), (31.14, "31.1"), (999.6, "1000"),
                            (12345.0, "12300"), (0.0, "0.00")):
            self.assertEqual(goal_table.three_digits(value), text)

    def test_times_are_given_in_the_largest_fitting_unit(self):
        for seconds, text in ((1.0, "1.00 s"), (0.0999, "99.9 ms"), (2.5e-6, "2.50 µs"),
                              (4e-10, "0.400 ns")):
            self.assertEqual(goal_table.time_text(seconds), text)

    def test_the_exponent_of_a_power_law(self):
        sizes = [1.0, 10.0, 100.0]
        self.assertAlmostEqual(goal_table.exponent(sizes, [5 * s**1.5 for s in sizes]), 1.5)
        self.assertIsNone(goal_table.exponent([7.0], [1.0]))

    def test_suffixes_of_the_library_are_removed_from_names(self):
        self.assertEqual(goal_table.plain_name("BM_X/A/64/iterations:3/repeats:5/real_time"),
                         "BM_X/A/64")


class RealRows(unittest.TestCase):
    def test_every_program_of_the_tables_has_a_source_file(self):
        here = os.path.dirname(goal_table.__file__)
        for program in goal_table.programs():
            self.assertTrue(os.path.exists(os.path.join(here, program + ".cpp")), program)


if __name__ == "__main__":
    unittest.main()
