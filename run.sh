#!/usr/bin/env bash
# Builds the toolbox and its reference host, runs the heated cylinder on an overset mesh made by
# Gmsh, checks the files that came out and draws them. Installs missing Debian packages first.
#
#   ./run.sh             results and pictures under results/heat
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
mkdir -p build results/heat
cmake -S . -B build/run -G Ninja -DCMAKE_BUILD_TYPE=Release -DKVX3D_BUILD_TESTS=OFF \
    >build/run.configure.log 2>&1 || { cat build/run.configure.log >&2; exit 1; }
cmake --build build/run -j "$(nproc)"

build/run/reference_host/reference_host heat \
    --mesh reference_host/meshes/channel_cylinder_overset.geo --set "n=$cells_per_diameter" \
    --output results/heat

series=results/heat/VTK_Overset_Flow_Results.pvd
/usr/bin/python3 tests/support/check_vtu.py "$series"
/usr/bin/python3 reference_host/pictures/draw_heat.py "$series" results/heat/heat.png
echo "Results:  $series (open in ParaView)"
echo "Picture:  results/heat/heat.png"
