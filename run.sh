#!/usr/bin/env bash
# Builds the toolbox and its reference host, runs two cases on overset meshes that Gmsh makes, checks
# the result files and draws pictures of them. Installs missing Debian packages first.
#
#   ./run.sh             heated cylinder and flow benchmark 2D-1, results under results/
#   ./run.sh 20          the same with 20 background cells per cylinder diameter (default 10)
set -euo pipefail
cd "$(dirname "$0")"

cells_per_diameter=${1:-10}
case "$cells_per_diameter" in
    '' | *[!0-9]* | 0)
        echo "run.sh: cells per diameter must be a whole number above 0, not '$cells_per_diameter'" >&2
        exit 2 ;;
esac

bash cmake/install_packages.sh
mkdir -p build results
cmake -S . -B build/run -G Ninja -DCMAKE_BUILD_TYPE=Release -DKVX3D_BUILD_TESTS=OFF \
    >build/run.configure.log 2>&1 || { cat build/run.configure.log >&2; exit 1; }
cmake --build build/run -j "$(nproc)"

mesh=(--mesh reference_host/meshes/channel_cylinder_overset.geo --set "n=$cells_per_diameter")
series=VTK_Overset_Flow_Results.pvd
pictures=reference_host/pictures

echo "== Heated cylinder"
build/run/reference_host/reference_host heat "${mesh[@]}" --output results/heat
/usr/bin/python3 tests/support/check_vtu.py "results/heat/$series"
/usr/bin/python3 "$pictures/draw_heat.py" "results/heat/$series" results/heat/heat.png

echo "== Flow around a cylinder, benchmark 2D-1"
build/run/reference_host/reference_host cylinder "${mesh[@]}" --output results/cylinder
/usr/bin/python3 tests/support/check_vtu.py "results/cylinder/$series"
/usr/bin/python3 "$pictures/draw_cylinder.py" results/cylinder

echo "Series for ParaView:  results/heat/$series, results/cylinder/$series"
echo "Pictures:             results/heat/heat.png, results/cylinder/{grids,flow,history}.png"
