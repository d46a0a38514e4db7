"""Checks of the includes: which folder uses which, and with what it may be mixed."""

from pathlib import Path

from source_tree import folder_of

# The standard library of C++17, by header. C headers count in their C++ form only.
STANDARD = set("""
algorithm any array atomic bitset cassert cctype cerrno cfenv cfloat charconv chrono cinttypes
climits clocale cmath codecvt complex condition_variable csetjmp csignal cstdarg cstddef cstdint
cstdio cstdlib cstring ctime cuchar cwchar cwctype deque exception execution filesystem
forward_list fstream functional future initializer_list iomanip ios iosfwd iostream istream
iterator limits list locale map memory memory_resource mutex new numeric optional ostream queue
random ratio regex scoped_allocator set shared_mutex sstream stack stdexcept streambuf string
string_view system_error thread tuple type_traits typeindex typeinfo unordered_map unordered_set
utility valarray variant vector
""".split())


def allowed_folders(tree, folder):
    """Folders whose files a folder may include; None where no rule is given (tests)."""
    rules = tree.folders
    for part in ("library", "outside"):
        if folder in rules[part]:
            return {folder, *rules[part][folder]}
    rooms = rules["reference_host"]["rooms"]
    if folder.startswith("reference_host/"):
        room = folder.split("/")[1]
        below = rooms[:rooms.index(room) + 1] if room in rooms else []
        return {f"reference_host/{name}" for name in below} | set(
            rules["reference_host"]["libraries"])
    return None


def forbidden_folders(folder):
    """Folders that a folder without a list of its own must not include."""
    return {"tests": {"benchmarks"}, "benchmarks": {"tests"}}.get(folder, set())


def _own_includes(tree, file):
    """Includes in quotes that name a file of the tree by its path from the root."""
    for number, name, quoted in tree.includes(file):
        if quoted and (tree.root / name).is_file():
            yield number, name


def check_includes(tree):
    """A folder includes its own files and those of the folders listed for it."""
    for file in tree.of_type(".h", ".cpp"):
        folder = folder_of(file)
        allowed = allowed_folders(tree, folder)
        for number, name in _own_includes(tree, file):
            used = folder_of(name)
            if allowed is not None and used not in allowed:
                yield file, number, f"{folder} must not include {used} ({name})"
            elif used in forbidden_folders(folder):
                yield file, number, f"{folder} must not include {used} ({name})"


def check_unresolved(tree):
    """An include in quotes is the path of a file from the root, so that every rule sees it."""
    for file in tree.of_type(".h", ".cpp"):
        if file.startswith("docs/"):
            continue  # the examples are projects of their own
        for number, name, quoted in tree.includes(file):
            if quoted and not (tree.root / name).is_file():
                yield file, number, f"{name} is no file by its path from the root"


def _is_detail(file):
    return "/detail/" in file


def check_details(tree):
    """Internal headers stay within their library and its tests, out of public headers.

    The six folders of the toolbox are one library, so each may use the internals of the others.
    """
    toolbox = set(tree.folders["library"])
    for file in tree.of_type(".h", ".cpp"):
        folder = file.split("/")[0]
        for number, name in _own_includes(tree, file):
            if not _is_detail(name) or folder in ("tests", "benchmarks"):
                continue
            owner = name.split("/")[0]
            if folder != owner and not {folder, owner} <= toolbox:
                yield file, number, f"{folder} must not include the internal {name}"
            elif file.endswith(".h") and not _is_detail(file):
                yield file, number, f"a public header must not include the internal {name}"


def check_packages(tree):
    """The library folders use the standard library only, and their neighbors few packages."""
    packages = tree.folders["packages"]
    for file in tree.of_type(".h", ".cpp"):
        folder = folder_of(file)
        if folder not in tree.folders["library"] and folder not in packages:
            continue
        prefixes = packages.get(str(Path(file).with_suffix("")), packages.get(folder, []))
        for number, name, quoted in tree.includes(file):
            if not quoted and name not in STANDARD and not name.startswith(tuple(prefixes)):
                yield file, number, f"{folder} must not include <{name}>"


def _unit(file):
    return str(Path(file).with_suffix(""))


def check_circles(tree):
    """No unit (a header with its source file) includes another that includes it in turn.

    A unit in a detail folder is part of the public units beside that folder and may include them.
    """
    uses = {}
    for file in tree.of_type(".h", ".cpp"):
        public = str(Path(file).parents[1]) if Path(file).parent.name == "detail" else ""
        for number, name in _own_includes(tree, file):
            if _unit(name) != _unit(file) and str(Path(name).parent) != public:
                uses.setdefault(_unit(file), {}).setdefault(_unit(name), (file, number))
    allowed = [set(pair) for pair in tree.folders["circles"]["allowed"]]
    for first in sorted(uses):
        for second, (file, number) in sorted(uses[first].items()):
            if first < second and _reaches(uses, second, first) and {first, second} not in allowed:
                yield file, number, f"{first} and {second} include each other"


def _reaches(uses, start, goal):
    seen, waiting = set(), [start]
    while waiting:
        unit = waiting.pop()
        if unit == goal:
            return True
        if unit not in seen:
            seen.add(unit)
            waiting += uses.get(unit, {})
    return False


ALL = {
    "includes": check_includes,
    "unresolved": check_unresolved,
    "details": check_details,
    "packages": check_packages,
    "circles": check_circles,
}
