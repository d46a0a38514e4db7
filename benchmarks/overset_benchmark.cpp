/// Overset setup and donors on the cylinder family of plain/samples/cylinder_host.h.
///
/// The argument is m, the mesh has 240 m^3 cells. "Setup" is SetFVM() from the host's arrays to
/// the donor trees, its size is the number of cells; "Donors" is one query for each inner face on
/// the hole boundary, its size is the number of those faces. The yardstick of each does the same
/// with insertion trees, one search a cell. Both must agree on every cell and every donor.
///
/// Memory, in MB of 10^6 bytes asked of operator new during one setup: `peak_MB` above the host's
/// arrays, `mesh_MB` in the mesh arrays derived from them (areas, ghost tables, cell lists and
/// states), which both sides share, and `above_mesh_MB`, the difference.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <map>
#include <memory>
#include <vector>

#include "benchmarks/allocation_count.h"
#include "overset/overset_grid_data.h"
#include "overset/overset_mesh.h"
#include "overset/overset_mesh_impl.h"
#include "plain/plain_overset.h"
#include "plain/samples/cylinder_host.h"

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

/// A host of the family with the last setup of either side. Rows share it: the yardstick alone
/// takes seconds on the finest mesh.
class Rig {
public:
    static Rig& Of(std::int64_t m) {
        static std::map<std::int64_t, std::unique_ptr<Rig>> rigs;
        std::unique_ptr<Rig>& rig = rigs[m];
        if (!rig) {
            rig.reset(new Rig(static_cast<int>(m)));
        }
        return *rig;
    }

    Ours& Toolbox() {
        if (!ours) {
            ours = std::make_unique<Ours>(host);
        }
        return *ours;
    }
    Plain& Yardstick() {
        if (!plain) {
            plain = std::make_unique<Plain>(host);
        }
        return *plain;
    }

    /// The inner faces on the hole boundary.
    const std::vector<int>& HoleBoundary() {
        if (faces.empty()) {
            KVX_ART_OVERSET_GRID_DATA& data = Yardstick().data;
            for (int face = 1; face <= data.Ne; ++face) {
                if (data.GetInnerFaceState(face) == OversetInnerFace_Overset) {
                    faces.push_back(face);
                }
            }
        }
        return faces;
    }

    bool SameCells() {
        const KVX_ART_OVERSET_GRID_DATA& a = *Toolbox().mesh.impl->gridData;
        const KVX_ART_OVERSET_GRID_DATA& b = Yardstick().data;
        return a.NNonActiveCell == b.NNonActiveCell &&
               std::equal(a.cellState + 1, a.cellState + 1 + a.Nc, b.cellState + 1);
    }

    bool SameDonors() {
        Ours& mine = Toolbox();
        const Plain& yardstick = Yardstick();
        return std::all_of(HoleBoundary().begin(), HoleBoundary().end(), [&](int face) {
            return mine.mesh.GetOversetInnerNeighbor(face) == yardstick.overset.InnerDonor(face);
        });
    }

    /// Bytes of the arrays that the linking and the grid information derive from the host's.
    double MeshMB() {
        const AllocationCount count;
        KVX_ART_OVERSET_GRID_DATA data;
        data.getKvx3dGV(&host.gv, &host.fvm);
        data.getKvx3dData();
        data.OversetGridsInfoSetting();
        return 1e-6 * static_cast<double>(count.Bytes());
    }

    CylinderHost host;
    std::unique_ptr<Ours> ours;
    std::unique_ptr<Plain> plain;

private:
    explicit Rig(int m) : host(m) {}
    std::vector<int> faces;
};

/// Times one side's setup and leaves the last one in the rig.
template <typename Side>
void RunSetup(benchmark::State& state, Rig& rig, std::unique_ptr<Side>& last) {
    double peakMB = 0.0;
    for (auto _ : state) {
        state.PauseTiming();
        last.reset();
        const AllocationCount count;
        state.ResumeTiming();
        last = std::make_unique<Side>(rig.host);
        state.PauseTiming();
        peakMB = 1e-6 * static_cast<double>(count.PeakBytes());
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * rig.host.fvm.Nc);
    state.counters["size"] = rig.host.fvm.Nc;
    state.counters["peak_MB"] = peakMB;
    const double meshMB = rig.MeshMB();
    state.counters["mesh_MB"] = meshMB;
    state.counters["above_mesh_MB"] = peakMB - meshMB;
}

void BM_Setup(benchmark::State& state) {
    Rig& rig = Rig::Of(state.range(0));
    RunSetup(state, rig, rig.ours);
    if (!rig.SameCells()) {
        state.SkipWithError("other cells cut: the time means nothing");
    }
}

void BM_SetupPlain(benchmark::State& state) {
    Rig& rig = Rig::Of(state.range(0));
    RunSetup(state, rig, rig.plain);
}

void BM_Donors(benchmark::State& state) {
    Rig& rig = Rig::Of(state.range(0));
    Ours& ours = rig.Toolbox();
    const std::vector<int>& faces = rig.HoleBoundary();  // found before the clock runs
    for (auto _ : state) {
        for (int face : faces) {
            benchmark::DoNotOptimize(ours.mesh.GetOversetInnerNeighbor(face));
        }
    }
    if (!rig.SameDonors()) {
        state.SkipWithError("other donors: the time means nothing");
    }
    const auto nFaces = static_cast<std::int64_t>(faces.size());
    state.SetItemsProcessed(state.iterations() * nFaces);
    state.counters["size"] = static_cast<double>(nFaces);
}

void BM_DonorsPlain(benchmark::State& state) {
    Rig& rig = Rig::Of(state.range(0));
    const Plain& yardstick = rig.Yardstick();
    const std::vector<int>& faces = rig.HoleBoundary();
    for (auto _ : state) {
        for (int face : faces) {
            benchmark::DoNotOptimize(yardstick.overset.InnerDonor(face));
        }
    }
    const auto nFaces = static_cast<std::int64_t>(faces.size());
    state.SetItemsProcessed(state.iterations() * nFaces);
    state.counters["size"] = static_cast<double>(nFaces);
}

void Sizes(benchmark::internal::Benchmark* row) {
    for (int m : {6, 9, 12, 20}) {
        row->Arg(m);
    }
    row->Unit(benchmark::kMillisecond);
}

BENCHMARK(BM_Setup)->Apply(Sizes);
BENCHMARK(BM_SetupPlain)->Apply(Sizes);
BENCHMARK(BM_Donors)->Apply(Sizes);
BENCHMARK(BM_DonorsPlain)->Apply(Sizes);

}  // namespace
