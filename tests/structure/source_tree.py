"""Reads a source tree: its files, their includes, and their comments apart from their code."""

import functools
import re
import tomllib
from pathlib import Path

HERE = Path(__file__).resolve().parent
SKIPPED = {".git", "build", "install", "results", ".cache", "__pycache__"}
CPP = {".h", ".cpp"}
SOURCES = CPP | {".py", ".sh", ".cmake", ".geo", ".toml"}

INCLUDE = re.compile(r'^\s*#\s*include\s+(?:"([^"]+)"|<([^>]+)>)')
# A comment, a text or a character of C++, whichever begins first. Group 1: the comment.
CPP_TOKEN = re.compile(
    r'(//[^\n]*|/\*.*?\*/)|R"(\w*)\(.*?\)\2"|"(?:\\.|[^"\\\n])*"|(?<!\d)\'(?:\\.|[^\'\\\n])+\'',
    re.DOTALL)


class SourceTree:
    """The files of one tree, by their path from the root."""

    def __init__(self, root):
        self.root = Path(root)
        self.folders = tomllib.loads((HERE / "folders.toml").read_text())
        self.words = tomllib.loads((HERE / "words.toml").read_text())
        self.files = sorted(self._walk(self.root))

    def _walk(self, folder):
        for path in folder.iterdir():
            if path.is_dir():
                if path.name not in SKIPPED and not path.name.startswith("build"):
                    yield from self._walk(path)
            elif path.suffix in SOURCES | {".md"} or path.name == "CMakeLists.txt":
                yield path.relative_to(self.root).as_posix()

    @functools.cache
    def text(self, file):
        return (self.root / file).read_text(encoding="utf-8")

    def of_type(self, *suffixes):
        return [file for file in self.files if Path(file).suffix in suffixes]

    @functools.cache
    def includes(self, file):
        """(line number, name, whether in quotes) of every include of a C++ file."""
        found = []
        for number, line in enumerate(self.text(file).splitlines(), 1):
            match = INCLUDE.match(line)
            if match:
                found.append((number, match[1] or match[2], match[1] is not None))
        return found

    @functools.cache
    def prose(self, file):
        """(line number, text) of what people read: comments, and in documents everything."""
        if Path(file).suffix == ".md":
            return list(enumerate(self._without_code_blocks(file), 1))
        if Path(file).suffix in CPP | {".geo"}:
            return self._pieces(file, lambda match: match[1])
        return [(number, line[line.find("#"):])
                for number, line in enumerate(self.text(file).splitlines(), 1) if "#" in line]

    @functools.cache
    def literals(self, file):
        """(line number, text) of every text literal of a C++ file."""
        literals = self._pieces(file, lambda match: None if match[1] else match[0])
        includes = {number for number, _, _ in self.includes(file)}
        return [(number, text) for number, text in literals if number not in includes]

    def _pieces(self, file, select):
        found = []
        text = self.text(file)
        for match in CPP_TOKEN.finditer(text):
            piece = select(match)
            if piece:
                first = text.count("\n", 0, match.start()) + 1
                found += list(enumerate(piece.split("\n"), first))
        return found

    def _without_code_blocks(self, file):
        inside = False
        for line in self.text(file).splitlines():
            fence = line.lstrip().startswith("```")
            yield "" if inside or fence else line
            inside = inside != fence


def folder_of(file):
    """The folder that rules speak of: the first part, or room of the reference host."""
    parts = file.split("/")
    if parts[0] == "reference_host" and len(parts) > 2:
        return "/".join(parts[:2])
    return parts[0]
