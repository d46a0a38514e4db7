/// Overset set-up and donor queries on the cylinder meshes of plain/samples/cylinder_host.h.
///
/// The argument is m; the mesh has 240 m^3 cells. "Setup" is SetFVM(), from the host's arrays to
/// the donor trees; its size is the number of cells. "Donors" is one query for each inner face on
/// the hole boundary; its size is the number of those faces. The baseline of each is the plain
/// overset set-up, with one tree search for each cell. Both sides must agree on every cell and
/// every donor.
///
/// Memory in MB of 10^6 bytes, allocated by operator new during one set-up: `peak_MB` is the peak
/// beyond the host's arrays, `mesh_MB` the mesh arrays derived from those (areas, ghost tables,
/// cell lists and states), which both sides need, and `above_mesh_MB` the difference.

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

/// Suppresses the lines of the set-up steps, so that they do not appear in the table.
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

/// The facade. Releases the grid data as well, because a benchmark runs many set-ups.
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

/// A host with the last set-up of each side. All rows share it, because one plain set-up of the
/// finest mesh takes seconds.
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
    Plain& Baseline() {
        if (!plain) {
            plain = std::make_unique<Plain>(host);
        }
        return *plain;
    }

    /// The inner faces on the hole boundary.
    const std::vector<int>& HoleBoundary() {
        if (faces.empty()) {
            KVX_ART_OVERSET_GRID_DATA& data = Baseline().data;
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
        const KVX_ART_OVERSET_GRID_DATA& b = Baseline().data;
        return a.NNonActiveCell == b.NNonActiveCell &&
               std::equal(a.cellState + 1, a.cellState + 1 + a.Nc, b.cellState + 1);
    }

    bool SameDonors() {
        Ours& mine = Toolbox();
        const Plain& baseline = Baseline();
        return std::all_of(HoleBoundary().begin(), HoleBoundary().end(), [&](int face) {
            return mine.mesh.GetOversetInnerNeighbor(face) == baseline.overset.InnerDonor(face);
        });
    }

    /// Size of the arrays that linking and grid information derive from the host's arrays.
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

/// Times the set-up of one side and keeps the last one in the rig.
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
        state.SkipWithError("different cells are cut: the time has no meaning");
    }
}

void BM_SetupPlain(benchmark::State& state) {
    Rig& rig = Rig::Of(state.range(0));
    RunSetup(state, rig, rig.plain);
}

void BM_Donors(benchmark::State& state) {
    Rig& rig = Rig::Of(state.range(0));
    Ours& ours = rig.Toolbox();
    const std::vector<int>& faces = rig.HoleBoundary();  // not timed
    for (auto _ : state) {
        for (int face : faces) {
            benchmark::DoNotOptimize(ours.mesh.GetOversetInnerNeighbor(face));
        }
    }
    if (!rig.SameDonors()) {
        state.SkipWithError("different donors: the time has no meaning");
    }
    const auto nFaces = static_cast<std::int64_t>(faces.size());
    state.SetItemsProcessed(state.iterations() * nFaces);
    state.counters["size"] = static_cast<double>(nFaces);
}

void BM_DonorsPlain(benchmark::State& state) {
    Rig& rig = Rig::Of(state.range(0));
    const Plain& baseline = rig.Baseline();
    const std::vector<int>& faces = rig.HoleBoundary();
    for (auto _ : state) {
        for (int face : faces) {
            benchmark::DoNotOptimize(baseline.overset.InnerDonor(face));
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
