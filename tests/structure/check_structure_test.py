#!/usr/bin/env python3
"""Plants one violation after the other in a small tree and expects each check to find its own."""

import tempfile
import unittest
from pathlib import Path

import check_structure
import include_checks
import text_checks

# A tree that keeps every rule, by path.
CLEAN = {
    "host_link/art_gv.h": '#include <vector>\n/// The record of a mesh, with the center of a cell.\n',
    "host_link/faces.h": "#include <vector>\n",
    "host_link/faces.cpp": '#include "host_link/faces.h"\n#include "host_link/art_gv.h"\n',
    "overset/detail/tree.h": '#include "host_link/art_gv.h"\n',
    "overset/detail/tree.cpp": '#include "overset/facade.h"\n',
    "overset/detail/node.h": '#include "overset/detail/tree.h"\n',
    "overset/facade.h": '#include "host_link/art_gv.h"\n',
    "overset/facade.cpp": '#include "overset/facade.h"\n#include "overset/detail/tree.h"\n',
    "host_checks/rules.h": '#include "overset/facade.h"\n',
    "host_checks/rules.cpp": '#include "host_checks/detail/range.h"\n',
    "host_checks/detail/range.h": '#include "host_link/art_gv.h"\n',
    "reference_host/mesh/mesh.h": "#include <Eigen/Core>\n",
    "reference_host/physics/flow.h": '#include "reference_host/mesh/mesh.h"\n',
    "benchmarks/sizes.h": "// Sizes of the samples.\n",
    "tests/overset/tree_test.cpp": '#include "overset/detail/tree.h"\nTEST(Tree, IsEmpty) {}\n',
    "README.md": "[The record](host_link/art_gv.h) `neighbour` holds a mesh.\n",
}

# check: file and what is appended to it; several where a check has several ways to fail.
PLANTED = [
    ("includes", "host_link/art_gv.h", '#include "overset/facade.h"\n'),
    ("includes", "reference_host/mesh/mesh.h", '#include "reference_host/physics/flow.h"\n'),
    ("includes", "host_checks/rules.h", '#include "reference_host/mesh/mesh.h"\n'),
    ("includes", "tests/overset/tree_test.cpp", '#include "benchmarks/sizes.h"\n'),
    ("includes", "benchmarks/sizes.h", '#include "tests/overset/tree_test.cpp"\n'),
    ("unresolved", "overset/facade.cpp", '#include "facade.h"\n'),
    ("details", "overset/facade.h", '#include "overset/detail/tree.h"\n'),
    ("details", "host_checks/rules.h", '#include "overset/detail/tree.h"\n'),
    ("details", "host_checks/rules.h", '#include "host_checks/detail/range.h"\n'),
    ("details", "host_checks/detail/range.h", '#include "overset/detail/tree.h"\n'),
    ("details", "reference_host/mesh/mesh.h", '#include "overset/detail/tree.h"\n'),
    ("packages", "overset/facade.cpp", "#include <Eigen/Core>\n"),
    ("packages", "host_checks/rules.h", "#include <fmt/format.h>\n"),
    ("circles", "host_link/art_gv.h", '#include "host_link/faces.h"\n'),
    ("circles", "overset/detail/tree.h", '#include "overset/detail/node.h"\n'),
    ("length", "overset/facade.cpp", "int x;\n" * 400),
    ("length", "tests/structure.py", "x = 0\n" * 401),
    ("spelling", "overset/facade.h", "/// The neighbour of a cell.\n"),
    ("spelling", "overset/facade.h", "/* Two lines, the second\n with its Centre. */\n"),
    ("spelling", "reference_host/mesh/mesh.h", 'const char* text = "no centre";\n'),
    ("spelling", "tests/overset/tree_test.cpp", "TEST(Tree, NamesTheNeighbours) {}\n"),
    ("spelling", "README.md", "Its behaviour.\n"),
    ("wording", "overset/facade.h", "// Left behind by contract.\n"),
    ("paths", "overset/facade.h", "// See /home/someone/notes.\n"),
    ("links", "README.md", "[Nowhere](docs/missing.md)\n"),
]

# What looks like a violation and is none.
ALLOWED = [
    ("overset/facade.h", "int cellCentre;  // identifiers keep their names: cellCentre, x_centre\n"),
    ("overset/facade.cpp", 'const char* printed = "centre";\n'),
    ("overset/facade.h", "/// @param centre  of a cell\n"),
    ("overset/facade.h", "// See discretisation/equation.h, doi:10.1000/behaviour.1.\n"),
    ("tests/overset/tree_test.cpp", "TEST(Tree, KnowsTheCenter) {}\n"),
    ("README.md", "```sh\ncat neighbour.txt\n```\n"),
    ("README.md", "[Elsewhere](https://example.org/missing.md)\n"),
]


class Structure(unittest.TestCase):
    def found(self, file="", appended=""):
        """Violations of the clean tree with a text appended to one file."""
        with tempfile.TemporaryDirectory() as root:
            for name, text in {**CLEAN, file: CLEAN.get(file, "") + appended}.items():
                if name:
                    path = Path(root) / name
                    path.parent.mkdir(parents=True, exist_ok=True)
                    path.write_text(text, encoding="utf-8")
            return check_structure.violations(root)

    def test_a_clean_tree_has_no_violation(self):
        self.assertEqual(self.found(), [])

    def test_each_planted_violation_is_found_where_it_stands(self):
        for check, file, appended in PLANTED:
            with self.subTest(check=check, file=file):
                found = self.found(file, appended)
                self.assertTrue(found)
                self.assertIn(check, {violation[0] for violation in found})
                self.assertEqual({(v[0], v[1]) for v in found} - {(check, file)} - CIRCLES, set())

    def test_every_check_has_a_planted_violation(self):
        checks = set(include_checks.ALL) | set(text_checks.ALL)
        self.assertEqual({check for check, _, _ in PLANTED}, checks)

    def test_what_only_looks_like_a_violation_is_left_alone(self):
        for file, appended in ALLOWED:
            with self.subTest(appended=appended):
                self.assertEqual(self.found(file, appended), [])

    def test_a_pending_file_is_not_counted_and_one_without_violation_is_reported(self):
        found = [("length", "x/a.h", 401, ""), ("length", "b.h", 402, "")]
        counted, stale = check_structure.split_pending(found, {"length": ["x/*", "c.h"]})
        self.assertEqual(counted, [("length", "b.h", 402, "")])
        self.assertEqual(stale, [("length", "c.h")])


# An include that goes up closes a circle as well, reported at either of the two units.
CIRCLES = {("circles", file) for file in CLEAN}

if __name__ == "__main__":
    unittest.main()
