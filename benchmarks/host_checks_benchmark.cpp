/// The checks of host_checks on the geometry of plain/samples/cylinder_host.h, with nodes.
///
/// The argument is m, the mesh has 240 m^3 cells. "MaySetUp" is the verdict before the setup,
/// "Assess" the one after it, "Setup" the yardstick: SetFVM() of the toolbox on the same host.
/// "ExplainCells" explains every cell, "WriteInspection" writes both inspection files.
///
///     host_checks_benchmark

#include <benchmark/benchmark.h>

#include <cmath>
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

void BM_Setup(benchmark::State& state) {
    CylinderInChannel& host = HostOf(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const SetUpMesh mesh(host);
    }
    state.SetItemsProcessed(state.iterations() * host.fvm.Nc);
}

void BM_MaySetUp(benchmark::State& state) {
    CylinderInChannel& host = HostOf(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const kvx3d::checks::Verdict verdict = kvx3d::checks::MaySetUp(host.gv, host.fvm);
        if (!verdict) {
            state.SkipWithError(Report(verdict).c_str());
        }
    }
    state.SetItemsProcessed(state.iterations() * host.fvm.Nc);
}

void BM_Assess(benchmark::State& state) {
    CylinderInChannel& host = HostOf(static_cast<int>(state.range(0)));
    SetUpMesh mesh(host);
    for (auto _ : state) {
        const kvx3d::checks::Soundness soundness =
            kvx3d::checks::Assess(host.gv, host.fvm, mesh.overset);
        if (!soundness) {
            state.SkipWithError(Report(soundness).c_str());
        }
    }
    state.SetItemsProcessed(state.iterations() * host.fvm.Nc);
}

void BM_ExplainCells(benchmark::State& state) {
    CylinderInChannel& host = HostOf(static_cast<int>(state.range(0)));
    SetUpMesh mesh(host);
    for (auto _ : state) {
        const kvx3d::checks::MeshView view(host.gv, host.fvm);
        const kvx3d::checks::Explainer explainer(view, mesh.overset);
        for (int cell = 1; cell <= host.fvm.Nc; ++cell) {
            const kvx3d::checks::CellExplanation why = explainer.ExplainCell(cell);
            if (why.isCut != (why.state == OversetCell_NonActive)) {
                state.SkipWithError(Text(why).c_str());
            }
        }
    }
    state.SetItemsProcessed(state.iterations() * host.fvm.Nc);
}

void BM_WriteInspection(benchmark::State& state) {
    CylinderInChannel& host = HostOf(static_cast<int>(state.range(0)));
    SetUpMesh mesh(host);
    namespace fs = std::filesystem;
    const fs::path directory = fs::temp_directory_path() / "kvx3d_inspection_benchmark";
    kvx3d::checks::InspectionFiles files;
    for (auto _ : state) {
        files = kvx3d::checks::WriteInspection(directory.string(), host.gv, host.fvm, mesh.overset);
    }
    state.counters["MB"] =
        static_cast<double>(fs::file_size(files.cells) + fs::file_size(files.donors)) / 1e6;
    fs::remove_all(directory);
    state.SetItemsProcessed(state.iterations() * host.fvm.Nc);
}

BENCHMARK(BM_Setup)->Arg(6)->Arg(12)->Arg(20)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MaySetUp)->Arg(6)->Arg(12)->Arg(20)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Assess)->Arg(6)->Arg(12)->Arg(20)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ExplainCells)->Arg(6)->Arg(12)->Arg(20)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WriteInspection)->Arg(6)->Arg(12)->Unit(benchmark::kMillisecond);

}  // namespace
