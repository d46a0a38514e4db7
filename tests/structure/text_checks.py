"""Checks of what people read: length of files, spelling, wording, paths and links."""

import re
from pathlib import Path

WORD = re.compile(r"[A-Za-z]+")
CODE = re.compile(r"`[^`]*`|\]\([^)]*\)|https?://\S+|\S*[/_]\w*\S*|@param(\[\w+(,\w+)?\])?\s+\w+")
TEST_NAME = re.compile(r"^(?:TEST|TEST_F|TEST_P|TYPED_TEST)\((\w+),\s*(\w+)")
LINK = re.compile(r"\]\(([^)#\s]+)(#[^)\s]*)?\)")
# Titles and names in references keep the spelling they were published in.
REFERENCE = re.compile(r"doi[:.]|\b(19|20)\d\d\b.*\d+\s?-\s?\d+|pp?\. \d+")
OWN_WORDS = "tests/structure/"  # the lists of words themselves


def check_length(tree):
    """Source files stay short enough to read; documents and data may be longer."""
    most = tree.folders["length"]["most_lines"]
    for file in tree.files:
        if not file.endswith(".md"):
            count = len(tree.text(file).splitlines())
            if count > most:
                yield file, count, f"{count} lines, {most} at most"


def _readable(tree, file):
    """(line, text) of the prose, and of the messages where they are not part of an interface."""
    yield from tree.prose(file)
    first = file.split("/")[0]
    if Path(file).suffix in (".h", ".cpp") and first not in tree.folders["library"]:
        yield from tree.literals(file)


def _names_of_tests(tree, file):
    """(line, words) of the test names, which read as sentences without blanks."""
    for number, line in enumerate(tree.text(file).splitlines(), 1):
        match = TEST_NAME.match(line)
        if match:
            words = re.findall(r"[A-Z]?[a-z]+|[A-Z]+(?![a-z])", match[1] + match[2])
            yield number, " ".join(words)


def check_spelling(tree):
    """American English in comments, documents, messages and test names."""
    british = tree.words["spelling"]
    for file in tree.files:
        if file.startswith(OWN_WORDS):
            continue
        lines = [(number, text) for number, text in _readable(tree, file)
                 if not REFERENCE.search(text)]
        if file.endswith("_test.cpp"):
            lines += list(_names_of_tests(tree, file))
        for number, text in lines:
            for word in WORD.findall(CODE.sub(" ", text)):
                if word.lower() in british and word[1:].islower():
                    yield file, number, f'"{word}": write "{british[word.lower()]}"'


def check_wording(tree):
    """Expressions of the trade in place of private ones."""
    for file in tree.files:
        if file.startswith(OWN_WORDS):
            continue
        for number, text in _readable(tree, file):
            for pattern, instead in tree.words["wording"].items():
                match = re.search(pattern, text, re.IGNORECASE)
                if match:
                    yield file, number, f'"{match[0]}": write {instead}'


def check_paths(tree):
    """No file names a directory that exists on one machine only."""
    for file in tree.files:
        if file.startswith(OWN_WORDS):
            continue
        for number, line in enumerate(tree.text(file).splitlines(), 1):
            for pattern in tree.words["paths"]["patterns"]:
                match = re.search(pattern, line)
                if match:
                    yield file, number, f'"{match[0]}" is a directory of one machine'


def check_links(tree):
    """Relative links of the documents lead to files of the tree."""
    for file in tree.of_type(".md"):
        folder = (tree.root / file).parent
        for number, line in enumerate(tree.text(file).splitlines(), 1):
            for target, _ in LINK.findall(line):
                if not re.match(r"\w+:", target) and not (folder / target).exists():
                    yield file, number, f"there is no {target}"


ALL = {
    "length": check_length,
    "spelling": check_spelling,
    "wording": check_wording,
    "paths": check_paths,
    "links": check_links,
}
