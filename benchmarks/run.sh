#!/usr/bin/env bash
# Measures every goal on one thread, with our code and its yardstick interleaved in one run, and writes
# the tables of benchmarks/README.md. Installs missing Debian packages first.
#
#   benchmarks/run.sh                       all programs, about a quarter of an hour
#   benchmarks/run.sh --only vtk_benchmark  one program; the other rows come from their last run
#   benchmarks/run.sh --quick               one short repetition; prints the tables only
#
# KVX3D_BENCHMARK_PREFIX is the command under which each program runs, "taskset -c 0" by default.
set -euo pipefail
cd "$(dirname "$0")/.."

build=build/benchmarks-release
results=$build/results
repetitions=3
least_seconds=0.2
quick=no
programs=(overset_benchmark kd_tree_benchmark bicgstab_benchmark sparse_matrix_benchmark
    operators_benchmark vtk_benchmark matrix_solver_benchmark)
only=()

usage() {
    echo "run.sh: $1 (known: --quick, --only <program>)" >&2
    exit 2
}
while [ $# -gt 0 ]; do
    case "$1" in
        --quick) quick=yes ;;
        --only)
            [ $# -ge 2 ] || usage "--only needs a program"
            [[ " ${programs[*]} " == *" $2 "* ]] ||
                usage "no program '$2', only ${programs[*]}"
            only+=("$2")
            shift ;;
        *) usage "unknown argument '$1'" ;;
    esac
    shift
done
if [ "$quick" = yes ]; then
    results=$build/quick
    repetitions=1
    least_seconds=0.01
fi
[ ${#only[@]} -eq 0 ] || programs=("${only[@]}")

bash cmake/install_packages.sh benchmark
mkdir -p "$results"
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DKVX3D_BUILD_BENCHMARKS=ON \
    -DKVX3D_BUILD_TESTS=OFF -DKVX3D_BUILD_REFERENCE_HOST=OFF >"$build/configure.log" 2>&1 ||
    { cat "$build/configure.log" >&2; exit 1; }
cmake --build "$build" -j "$(nproc)" --target "${programs[@]}"

under=()
if [ -n "${KVX3D_BENCHMARK_PREFIX:-}" ]; then
    read -ra under <<<"$KVX3D_BENCHMARK_PREFIX"
elif taskset -c 0 true 2>/dev/null; then
    under=(taskset -c 0)
fi

# Freed memory stays with the process. Otherwise the first row after one with a large matrix pays for
# new pages of the system, which take as long as the work on them.
export MALLOC_TRIM_THRESHOLD_=17179869184 MALLOC_MMAP_THRESHOLD_=33554432

# A result file replaces the old one only if its program ran to the end with correct results.
for program in "${programs[@]}"; do
    echo "== $program"
    fresh=$results/$program.json.new
    "${under[@]}" "$build/benchmarks/$program" \
        --benchmark_repetitions=$repetitions --benchmark_min_time=$least_seconds \
        --benchmark_enable_random_interleaving=true --benchmark_display_aggregates_only=true \
        --benchmark_out="$fresh" --benchmark_out_format=json >"$results/$program.log" 2>&1 ||
        { cat "$results/$program.log" >&2; echo "run.sh: $program failed" >&2; exit 1; }
    python3 benchmarks/goal_table.py --check "$fresh" ||
        { echo "run.sh: $program: wrong results, its figures are meaningless" >&2; exit 1; }
    mv "$fresh" "$results/$program.json"
done

if [ "$quick" = yes ]; then
    python3 benchmarks/goal_table.py "$results"
    exit
fi
compiler=$(sed -n 's/^CMAKE_CXX_COMPILER:[A-Z]*=//p' "$build/CMakeCache.txt")
machine=$(sed -n 's/^model name[[:space:]]*: //p' /proc/cpuinfo | head -n 1)
machine="${machine:-$(uname -m)}, $("$compiler" --version | head -n 1), Linux $(uname -r | cut -d- -f1)"
python3 benchmarks/goal_table.py "$results" --readme benchmarks/README.md --machine "$machine"
echo "Tables written to benchmarks/README.md"
