/// Overset setup and donors on the cylinder family of tests/overset/cylinder_host.h.
///
/// The argument is m, the mesh has 240 m^3 cells. "Setup" is SetFVM() from the host's arrays to
/// the donor trees, items are cells; "Donors" is one query for each inner face on the hole
/// boundary, items are faces. The yardstick of each does the same with insertion trees, one search
/// a cell. Both must agree on every cell and every donor.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <iostream>
#include <memory>
#include <vector>

#include "benchmarks/plain/plain_overset.h"
#include "overset/overset_grid_data.h"
#include "overset/overset_mesh.h"
#include "overset/overset_mesh_impl.h"
#include "tests/overset/cylinder_host.h"

namespace {

/// Keeps the step lines out of the table.
class QuietOutput {
public:
    QuietOutput() : kept(std::cout.rdbuf(nullptr)) {}
    ~QuietOutput() {
        std::cout.rdbuf(kept);
        std::cout.clear();
    }
    QuietOutput(const QuietOutput&) = delete;
    QuietOutput& operator=(const QuietOutput&) = delete;

private:
    std::streambuf* kept;
};

/// The facade, its grid data released with it: a benchmark runs many setups.
struct Ours {
    explicit Ours(CylinderHost& host) {
        const QuietOutput quiet;
        mesh.SetFVM(&host.gv, &host.fvm);
    }
    ~Ours() { delete mesh.impl->gridData; }
    CKVXOversetMesh mesh;
};

struct Plain {
    explicit Plain(CylinderHost& host) : overset(data) {
        data.getKvx3dGV(&host.gv, &host.fvm);
        data.getKvx3dData();
        data.OversetGridsInfoSetting();
        overset.Setup(2);
    }
    KVX_ART_OVERSET_GRID_DATA data;
    plain::Overset overset;
};

bool SameCells(const Ours& ours, const Plain& yardstick) {
    for (int c = 1; c <= yardstick.data.Nc; ++c) {
        if (ours.mesh.impl->gridData->cellState[c] != yardstick.data.cellState[c]) {
            return false;
        }
    }
    return true;
}

std::vector<int> HoleBoundary(Plain& yardstick) {
    std::vector<int> faces;
    for (int face = 1; face <= yardstick.data.Ne; ++face) {
        if (yardstick.data.GetInnerFaceState(face) == OversetInnerFace_Overset) {
            faces.push_back(face);
        }
    }
    return faces;
}

void BM_Setup(benchmark::State& state) {
    CylinderHost host(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const auto ours = std::make_unique<Ours>(host);
        benchmark::DoNotOptimize(ours->mesh.impl);
    }
    if (!SameCells(Ours(host), Plain(host))) {
        state.SkipWithError("other cells cut: the time means nothing");
    }
    state.SetItemsProcessed(state.iterations() * host.fvm.Nc);
}

void BM_SetupPlain(benchmark::State& state) {
    CylinderHost host(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const auto yardstick = std::make_unique<Plain>(host);
        benchmark::DoNotOptimize(yardstick->data.NNonActiveCell);
    }
    state.SetItemsProcessed(state.iterations() * host.fvm.Nc);
}

void BM_Donors(benchmark::State& state) {
    CylinderHost host(static_cast<int>(state.range(0)));
    Ours ours(host);
    Plain yardstick(host);
    const std::vector<int> faces = HoleBoundary(yardstick);
    for (auto _ : state) {
        for (int face : faces) {
            benchmark::DoNotOptimize(ours.mesh.GetOversetInnerNeighbor(face));
        }
    }
    for (int face : faces) {
        if (ours.mesh.GetOversetInnerNeighbor(face) != yardstick.overset.InnerDonor(face)) {
            state.SkipWithError("other donors: the time means nothing");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(faces.size()));
}

void BM_DonorsPlain(benchmark::State& state) {
    CylinderHost host(static_cast<int>(state.range(0)));
    Plain yardstick(host);
    const std::vector<int> faces = HoleBoundary(yardstick);
    for (auto _ : state) {
        for (int face : faces) {
            benchmark::DoNotOptimize(yardstick.overset.InnerDonor(face));
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(faces.size()));
}

BENCHMARK(BM_Setup)->Arg(6)->Arg(12)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SetupPlain)->Arg(6)->Arg(12)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Donors)->Arg(6)->Arg(12)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DonorsPlain)->Arg(6)->Arg(12)->Unit(benchmark::kMillisecond);

}  // namespace
