#!/usr/bin/env bash
# Line coverage of the six library folders by their own tests; fails below 95 %.
# Needs gcovr; writes build/coverage/lines.txt.
set -euo pipefail
cd "$(dirname "$0")/.."

command -v gcovr >/dev/null || { echo "coverage.sh: install gcovr first" >&2; exit 1; }
mkdir -p build
cmake --preset coverage >build/coverage.configure.log 2>&1 ||
    { cat build/coverage.configure.log >&2; exit 1; }
cmake --build --preset coverage -j "$(nproc)"
find build/coverage -name '*.gcda' -delete
ctest --preset coverage -j "$(nproc)" --progress

folders=()
for folder in host_link linear_algebra fvm_operators overset vtk_output nonmatching; do
    folders+=(--filter "$folder/")
done
gcovr --root . "${folders[@]}" --exclude-throw-branches --fail-under-line 95 \
    build/coverage | tee build/coverage/lines.txt
