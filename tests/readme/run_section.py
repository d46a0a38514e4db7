#!/usr/bin/env python3
"""Runs the shell blocks of one section of README.md and checks what else it quotes.

    run_section.py SOURCE SECTION SCRATCH BUILD

SCRATCH becomes a directory with links to everything in SOURCE except the results of builds and runs,
and with a link build/run to BUILD. The blocks run in it as one script that stops at the
first failure. Blocks of C++ and CMake are quotations: each of their lines must occur in a file under
docs/example_host or docs/overset_host.
"""

import re
import shutil
import subprocess
import sys
from pathlib import Path

LEFT_BY_RUNS = re.compile(r"build.*|results|install|\..*|.*_results")
QUOTED_FROM = ("docs/example_host", "docs/overset_host")


def blocks_of(text, section):
    """(language, content) of the fenced blocks under a heading of level two."""
    parts = re.split(r"^## +(.*)$", text, flags=re.MULTILINE)
    sections = dict(zip(parts[1::2], parts[2::2]))
    if section not in sections:
        sys.exit(f'run_section.py: README.md has no section "{section}"')
    return re.findall(r"^```(\w+)\n(.*?)^```", sections[section], re.MULTILINE | re.DOTALL)


def missing_lines(source, content):
    """Lines of a quotation that do not occur in any example; lines with "..." are ignored."""
    known = {line.strip() for folder in QUOTED_FROM for path in (source / folder).glob("*.*")
             for line in path.read_text().splitlines()}
    lines = [line.strip() for line in content.splitlines()]
    return [line for line in lines if line and line != "..." and line not in known]


def make_scratch(source, scratch, build):
    """An empty scratch directory with links to the source tree and to the build."""
    if scratch.exists():
        shutil.rmtree(scratch)
    (scratch / "build").mkdir(parents=True)
    (scratch / "build/run").symlink_to(build)
    for path in source.iterdir():
        if not LEFT_BY_RUNS.fullmatch(path.name):
            (scratch / path.name).symlink_to(path)


def main():
    source, section, scratch, build = sys.argv[1:]
    blocks = blocks_of((Path(source) / "README.md").read_text(), section)
    for language, content in blocks:
        if language in ("cpp", "cmake"):
            for line in missing_lines(Path(source), content):
                sys.exit(f"run_section.py: no example has the line {line!r}")
    commands = "\n".join(content for language, content in blocks if language == "sh")
    if not commands:
        sys.exit(f'run_section.py: the section "{section}" has no shell block')
    make_scratch(Path(source), Path(scratch), Path(build))
    return subprocess.run(["bash", "-euo", "pipefail", "-c", commands], cwd=scratch).returncode


if __name__ == "__main__":
    sys.exit(main())
