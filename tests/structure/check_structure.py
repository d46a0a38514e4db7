#!/usr/bin/env python3
"""Checks the structure and the language of the source tree.

    check_structure.py [ROOT]

Prints one line per violation, "file:line: [check] message", and exits with 1 if there is one. The
checks: includes (folders use lower folders only), details (public headers include no internal
ones), packages (library folders use the standard library only), circles (no two units include each
other), length (no source file above the limit), spelling (American English), wording (no private
words), paths (no directory of one machine), links (documents point at files that exist).
Folders and limits are listed in folders.toml, words in words.toml, both in the same directory.
"""

import fnmatch
import sys
from pathlib import Path

import include_checks
import text_checks
from source_tree import SourceTree


def violations(root):
    """All violations of the tree at `root` as (check, file, line, message), sorted by file."""
    tree = SourceTree(root)
    found = []
    for checks in (include_checks.ALL, text_checks.ALL):
        for name, check in checks.items():
            found += [(name, file, line, message) for file, line, message in check(tree)]
    return sorted(found, key=lambda violation: (violation[1], violation[2], violation[0]))


def split_pending(found, pending):
    """Violations that count, and patterns of `pending` that hide none."""
    used = set()
    counted = []
    for violation in found:
        check, file = violation[:2]
        hiding = [(check, p) for p in pending.get(check, []) if fnmatch.fnmatch(file, p)]
        used.update(hiding)
        counted += [] if hiding else [violation]
    stale = [(check, p) for check, patterns in pending.items() for p in patterns]
    return counted, [entry for entry in stale if entry not in used]


def main(arguments):
    root = Path(arguments[0]) if arguments else Path(__file__).resolve().parents[2]
    tree = SourceTree(root)
    counted, stale = split_pending(violations(root), tree.folders.get("pending", {}))
    for check, file, line, message in counted:
        print(f"{file}:{line}: [{check}] {message}")
    for check, pattern in stale:
        print(f"note: {pattern} keeps the rule '{check}' now: remove it from [pending]")
    return 1 if counted else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
