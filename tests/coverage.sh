#!/usr/bin/env bash
# Line coverage of the six library folders by their own tests; fails below 95 %.
# Needs gcovr; writes build/coverage/lines.txt.
set -euo pipefail
cd "$(dirname "$0")/.."

command -v gcovr >/dev/null || { echo "coverage.sh: install gcovr first" >&2; exit 1; }
cmake -S . -B build/coverage -G Ninja -DCMAKE_BUILD_TYPE=Debug -DKVX3D_COVERAGE=ON \
    -DKVX3D_BUILD_REFERENCE_HOST=OFF >build/coverage.configure.log 2>&1 ||
    { cat build/coverage.configure.log >&2; exit 1; }
cmake --build build/coverage -j "$(nproc)"
find build/coverage -name '*.gcda' -delete
ctest --test-dir build/coverage -j "$(nproc)" -LE 'full|release' -E matrix_solver_tests \
    --output-on-failure --progress

folders=()
for folder in host_link linear_algebra fvm_operators overset vtk_output nonmatching; do
    folders+=(--filter "$folder/")
done
gcovr --root . "${folders[@]}" --exclude-throw-branches --fail-under-line 95 \
    build/coverage | tee build/coverage/lines.txt
