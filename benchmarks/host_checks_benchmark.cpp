/// The checks of host_checks on the geometry of plain/samples/cylinder_host.h, with nodes.
///
/// The argument is m, the mesh has 240 m^3 cells. The yardstick is SetFVM() of the toolbox on the
/// same host: the counter "to_setup" of each row is its CPU time in units of that of one setup,
/// measured right before the row.
///
/// - Setup: SetFVM()
/// - MaySetUp: the verdict before the setup
/// - Assess: the assessment after the setup
/// - ExplainCells: an Explainer and the explanation of every cell
/// - WriteInspection: both inspection files, written to the directory for temporary files
///
///     host_checks_benchmark

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>

#include "host_checks/explanation.h"
#include "host_checks/host_checks.h"
#include "host_checks/inspection.h"
#include "overset/overset_grid_data.h"
#include "overset/overset_mesh_impl.h"
#include "plain/samples/block_host.h"

namespace {

using kvx3d::checks::Point;

/// A channel [-4, 8] x [-4, 4] x [0, 2] with an annulus between the radii 0.5 and 1.5.
class CylinderInChannel : public BlockHost {
public:
    explicit CylinderInChannel(int m) {
        const double h = 1.0 / m;
        Block box;
        box.n = {12 * m, 8 * m, 2 * m};
        box.node = [h](int i, int j, int k) { return Point{-4.0 + i * h, -4.0 + j * h, k * h}; };
        box.sides = {inlet, outlet, wall, wall, symmetry, symmetry};
        Add(box);
        Block annulus;
        annulus.n = {12 * m, 2 * m, 2 * m};
        annulus.closed = true;
        annulus.group = 1;
        annulus.node = [h, m](int i, int j, int k) {
            const double r = 0.5 + (std::exp(0.75 * j / m) - 1.0) / (std::exp(1.5) - 1.0);
            const double angle = 2.0 * std::acos(-1.0) * i / (12 * m);
            return Point{0.0137 + r * std::cos(angle), 0.0071 + r * std::sin(angle), k * h};
        };
        annulus.sides = {wall, wall, wall, overset, symmetry, symmetry};
        Add(annulus);
    }
};

CylinderInChannel& HostOf(int m) {
    static std::map<int, std::unique_ptr<CylinderInChannel>> hosts;
    std::unique_ptr<CylinderInChannel>& host = hosts[m];
    if (!host) {
        host = std::make_unique<CylinderInChannel>(m);
    }
    return *host;
}

/// A set-up facade whose grid data is released with it: a benchmark makes many setups.
struct SetUpMesh {
    explicit SetUpMesh(BlockHost& host) {
        std::streambuf* const kept = std::cout.rdbuf(nullptr);
        overset.SetFVM(&host.gv, &host.fvm);
        std::cout.rdbuf(kept);
        std::cout.clear();
    }
    SetUpMesh(const SetUpMesh&) = delete;
    SetUpMesh& operator=(const SetUpMesh&) = delete;
    ~SetUpMesh() { delete overset.impl->gridData; }
    CKVXOversetMesh overset;
};

double CpuSeconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

/// CPU seconds of one setup: the shortest of five.
double SetupSeconds(BlockHost& host) {
    double shortest = 1e9;
    for (int run = 0; run < 5; ++run) {
        const double start = CpuSeconds();
        const SetUpMesh mesh(host);
        shortest = std::min(shortest, CpuSeconds() - start);
    }
    return shortest;
}

/// Runs `work` in the loop of a benchmark and relates its CPU time to that of the setup.
template <class Work>
void Measure(benchmark::State& state, BlockHost& host, Work work) {
    const double setup = SetupSeconds(host);
    double seconds = 0.0;
    for (auto _ : state) {
        const double start = CpuSeconds();
        work();
        seconds += CpuSeconds() - start;
    }
    state.SetItemsProcessed(state.iterations() * host.fvm.Nc);
    state.counters["cells"] = host.fvm.Nc;
    state.counters["to_setup"] = seconds / static_cast<double>(state.iterations()) / setup;
}

void BM_Setup(benchmark::State& state) {
    CylinderInChannel& host = HostOf(static_cast<int>(state.range(0)));
    Measure(state, host, [&] { const SetUpMesh mesh(host); });
}

void BM_MaySetUp(benchmark::State& state) {
    CylinderInChannel& host = HostOf(static_cast<int>(state.range(0)));
    Measure(state, host, [&] {
        const kvx3d::checks::Verdict verdict = kvx3d::checks::MaySetUp(host.gv, host.fvm);
        if (!verdict) {
            state.SkipWithError(Report(verdict).c_str());
        }
    });
}

void BM_Assess(benchmark::State& state) {
    CylinderInChannel& host = HostOf(static_cast<int>(state.range(0)));
    SetUpMesh mesh(host);
    Measure(state, host, [&] {
        const kvx3d::checks::Soundness soundness =
            kvx3d::checks::Assess(host.gv, host.fvm, mesh.overset);
        if (!soundness) {
            state.SkipWithError(Report(soundness).c_str());
        }
    });
}

void BM_ExplainCells(benchmark::State& state) {
    CylinderInChannel& host = HostOf(static_cast<int>(state.range(0)));
    SetUpMesh mesh(host);
    Measure(state, host, [&] {
        const kvx3d::checks::MeshView view(host.gv, host.fvm);
        const kvx3d::checks::Explainer explainer(view, mesh.overset);
        int cut = 0;
        for (int cell = 1; cell <= host.fvm.Nc; ++cell) {
            cut += explainer.ExplainCell(cell).isCut ? 1 : 0;
        }
        if (cut == 0) {
            state.SkipWithError("no explanation reports a cut cell");
        }
    });
}

void BM_WriteInspection(benchmark::State& state) {
    namespace fs = std::filesystem;
    CylinderInChannel& host = HostOf(static_cast<int>(state.range(0)));
    SetUpMesh mesh(host);
    const fs::path directory = fs::temp_directory_path() / "host_checks_benchmark";
    Measure(state, host, [&] {
        kvx3d::checks::WriteInspection(directory.string(), host.gv, host.fvm, mesh.overset);
    });
    state.counters["megabytes"] =
        1e-6 * static_cast<double>(fs::file_size(directory / "cells.vtu") +
                                   fs::file_size(directory / "donors.vtu"));
    fs::remove_all(directory);
}

BENCHMARK(BM_Setup)->Arg(12)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MaySetUp)->Arg(12)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Assess)->Arg(12)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ExplainCells)->Arg(12)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WriteInspection)->Arg(12)->Unit(benchmark::kMillisecond);

}  // namespace
