#!/usr/bin/python3
"""Makes one fault after another in a good .vtu file and expects the checker to report each:

    check_vtu_test.py <file of the shapes sample>
"""

import os
import subprocess
import sys
import tempfile

CHECKER = os.path.join(os.path.dirname(__file__), "..", "support", "check_vtu.py")
DAMAGES = {
    "value is missing": ("\t\t\t\t2\n", "\t\t\t\t\n"),
    "array is too long": ("0.5 0.5 2", "0.5 0.5 2 9"),
    "decimal comma": ("0.5 0.5 2", "0,5 0.5 2"),
    "not a number": ("0.5 0.5 2", "nan 0.5 2"),
    "infinite": ("0.5 0.5 2", "-inf 0.5 2"),
    "beyond Float32": ("0.5 0.5 2", "1e+300 0.5 2"),
    "node id above the number of points": ("4 5 6 7 8\n", "4 5 6 7 9\n"),
    "node id below zero": ("4 5 6 7 8\n", "4 5 6 7 -1\n"),
    "offsets decrease": ("8 14 19", "8 19 14"),
    "type does not fit the nodes": ("12 13 14", "12 12 14"),
    "no components": ('Name="Height" NumberOfComponents="1"', 'Name="Height" NumberOfComponents="0"'),
    "unescaped character": ('Name="Height"', 'Name="<Height"'),
    "truncated file": ("</VTKFile>", ""),
}


def check(text):
    with tempfile.TemporaryDirectory() as directory:
        path = os.path.join(directory, "file.vtu")
        with open(path, "w", encoding="ascii") as file:
            file.write(text)
        return subprocess.run([sys.executable, CHECKER, path], capture_output=True, text=True)


good = open(sys.argv[1], encoding="ascii").read()
failures = [] if check(good).returncode == 0 else ["the undamaged file"]
for name, (before, after) in DAMAGES.items():
    if before not in good:
        failures.append(f"{name}: nothing to damage")
        continue
    result = check(good.replace(before, after, 1))
    if result.returncode != 1 or "Traceback" in result.stderr:
        failures.append(name)
print("\n".join(failures) or "every fault found")
sys.exit(bool(failures))
