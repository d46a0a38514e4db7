/// Overset set-up and donor queries on the meshes of benchmarks/overset_shapes.h.
///
/// The argument is m; the mesh has about 240 m^3 cells. "Setup" is SetFVM(), from the host's arrays
/// to the donor trees; its size is the number of cells. "Donors" is one query for each inner face
/// on the hole boundary; its size is the number of those faces. The baseline of each is the plain
/// overset set-up, with one tree search for each cell. Both sides must agree on every cell and
/// every donor. From 400,000 cells on, plain is run once: it takes most of the time of this
/// program.
///
/// "SetupShuffled" is the set-up with cells numbered at random, which must cut the same cells.
/// "FirstSetup" is the first one in a new process, and "MovedSetup" the second one, of a new object
/// after the component has moved; see first_setup.cpp.
///
/// Memory in MB of 10^6 bytes, allocated by operator new during one set-up: `peak_MB` is the peak
/// beyond the host's arrays, `mesh_MB` the mesh arrays derived from those (areas, ghost tables,
/// cell lists and states), which both sides need, and `above_mesh_MB` the difference.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "benchmarks/allocation_count.h"
#include "benchmarks/overset_shapes.h"
#include "overset/overset_grid_data.h"
#include "overset/overset_mesh.h"
#include "overset/overset_mesh_impl.h"
#include "plain/plain_overset.h"

namespace {

/// The facade. Releases the grid data as well, because a benchmark runs many set-ups.
struct Ours {
    explicit Ours(SetupHost& host) {
        const QuietOutput quiet;
        mesh.SetFVM(&host.gv, &host.fvm);
    }
    ~Ours() { delete mesh.impl->gridData; }
    CKVXOversetMesh mesh;
};

struct Plain {
    explicit Plain(SetupHost& host) : overset(data) {
        data.getKvx3dGV(&host.gv, &host.fvm);
        data.getKvx3dData();
        data.OversetGridsInfoSetting();
        overset.Setup(2);
    }
    KVX_ART_OVERSET_GRID_DATA data;
    plain::Overset overset;
};

/// A set-up and what it took.
template <typename Side>
struct Measured {
    /// Replaces the set-up by a new one.
    void Run(SetupHost& host) {
        setup.reset();
        const AllocationCount count;
        const std::clock_t start = std::clock();
        setup = std::make_unique<Side>(host);
        seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
        peakMB = 1e-6 * static_cast<double>(count.PeakBytes());
    }

    std::unique_ptr<Side> setup;
    double seconds = 0.0;  ///< CPU time
    double peakMB = 0.0;
};

/// A host with the last set-up of each side. All rows share it, because one plain set-up of the
/// finest mesh takes most of a minute.
class Rig {
public:
    static Rig& Of(const std::string& shape, std::int64_t m) {
        static std::map<std::pair<std::string, std::int64_t>, std::unique_ptr<Rig>> rigs;
        std::unique_ptr<Rig>& rig = rigs[{shape, m}];
        if (!rig) {
            rig.reset(new Rig(MakeHost(shape, static_cast<int>(m))));
        }
        return *rig;
    }

    Ours& Toolbox() {
        if (!ours.setup) {
            ours.Run(host);
        }
        return *ours.setup;
    }
    Plain& Baseline() {
        if (!plain.setup) {
            plain.Run(host);
        }
        return *plain.setup;
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

    const std::unique_ptr<SetupHost> owned;
    SetupHost& host;
    Measured<Ours> ours;
    Measured<Plain> plain;

private:
    explicit Rig(std::unique_ptr<SetupHost> made) : owned(std::move(made)), host(*owned) {}
    std::vector<int> faces;
};

constexpr int bigMesh = 12;   // m from which plain is run once
constexpr int hugeMesh = 28;  // m from which it is not run at all

template <typename Side>
void Report(benchmark::State& state, Rig& rig, const Measured<Side>& last) {
    state.SetItemsProcessed(state.iterations() * rig.host.fvm.Nc);
    state.counters["size"] = rig.host.fvm.Nc;
    const double meshMB = rig.MeshMB();
    state.counters["peak_MB"] = last.peakMB;
    state.counters["mesh_MB"] = meshMB;
    state.counters["above_mesh_MB"] = last.peakMB - meshMB;
}

void BM_Setup(benchmark::State& state, const std::string& shape) {
    Rig& rig = Rig::Of(shape, state.range(0));
    for (auto _ : state) {
        rig.ours.Run(rig.host);
        state.SetIterationTime(rig.ours.seconds);
    }
    Report(state, rig, rig.ours);
    if (state.range(0) < hugeMesh && !rig.SameCells()) {
        state.SkipWithError("different cells are cut: the time has no meaning");
    }
}

void BM_SetupPlain(benchmark::State& state, const std::string& shape) {
    Rig& rig = Rig::Of(shape, state.range(0));
    for (auto _ : state) {
        if (state.range(0) < bigMesh) {
            rig.plain.Run(rig.host);
        }
        rig.Baseline();
        state.SetIterationTime(rig.plain.seconds);
    }
    Report(state, rig, rig.plain);
}

/// A mesh whose cells are numbered at random.
struct Shuffled {
    Shuffled(const std::string& shape, std::int64_t m)
        : host(MakeHost(shape, static_cast<int>(m))), number(host->NumberCellsAtRandom(1)) {}

    /// True if the same cells are cut as with the numbers of the mesh.
    bool SameCells(const KVX_ART_OVERSET_GRID_DATA& inMeshOrder) const {
        const int* states = setup.setup->mesh.impl->gridData->cellState;
        for (int cell = 1; cell <= inMeshOrder.Nc; ++cell) {
            if (states[number[static_cast<std::size_t>(cell)]] != inMeshOrder.cellState[cell]) {
                return false;
            }
        }
        return true;
    }

    std::unique_ptr<SetupHost> host;
    std::vector<int> number;
    Measured<Ours> setup;
};

void BM_SetupShuffled(benchmark::State& state, const std::string& shape) {
    static std::map<std::pair<std::string, std::int64_t>, std::unique_ptr<Shuffled>> meshes;
    std::unique_ptr<Shuffled>& mesh = meshes[{shape, state.range(0)}];
    if (!mesh) {
        mesh = std::make_unique<Shuffled>(shape, state.range(0));
    }
    for (auto _ : state) {
        mesh->setup.Run(*mesh->host);
        state.SetIterationTime(mesh->setup.seconds);
    }
    state.counters["size"] = mesh->host->fvm.Nc;
    if (!mesh->SameCells(*Rig::Of(shape, state.range(0)).Toolbox().mesh.impl->gridData)) {
        state.SkipWithError("different cells are cut: the time has no meaning");
    }
}

/// The times of one process: the first set-up, and the second one after a move.
struct NewProcess {
    /// Runs first_setup with the memory settings that a host starts with.
    /// @return false if it failed
    bool Run(const std::string& shape, std::int64_t m) {
        const std::string command =
            "env -u MALLOC_TRIM_THRESHOLD_ -u MALLOC_MMAP_THRESHOLD_ '" KVX3D_FIRST_SETUP "' " +
            shape + ' ' + std::to_string(m);
        FILE* output = popen(command.c_str(), "r");
        const bool isRead =
            output != nullptr && std::fscanf(output, "%lf %lf", &seconds[0], &seconds[1]) == 2;
        isNew[0] = isNew[1] = true;
        return output != nullptr && pclose(output) == 0 && isRead;
    }

    double seconds[2] = {};
    bool isNew[2] = {false, false};  ///< not reported yet
};

/// Reports one time of a process. The two rows share their processes, so that they compare times
/// taken shortly after one another.
void RunNewProcess(benchmark::State& state, const std::string& shape, int which) {
    static std::map<std::pair<std::string, std::int64_t>, NewProcess> processes;
    NewProcess& process = processes[{shape, state.range(0)}];
    for (auto _ : state) {
        if (!process.isNew[which] && !process.Run(shape, state.range(0))) {
            state.SkipWithError("first_setup failed");
            break;
        }
        process.isNew[which] = false;
        state.SetIterationTime(process.seconds[which]);
    }
    state.counters["size"] = Rig::Of(shape, state.range(0)).host.fvm.Nc;
}

void BM_FirstSetup(benchmark::State& state, const std::string& shape) {
    RunNewProcess(state, shape, 0);
}

void BM_MovedSetup(benchmark::State& state, const std::string& shape) {
    RunNewProcess(state, shape, 1);
}

void BM_Donors(benchmark::State& state) {
    Rig& rig = Rig::Of("Cylinder", state.range(0));
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
    Rig& rig = Rig::Of("Cylinder", state.range(0));
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

/// Registers a row that measures its own CPU time.
template <typename Row>
void Register(const std::string& name, Row row, const std::string& shape,
              const std::vector<int>& sizes) {
    for (int m : sizes) {
        auto* registered = benchmark::RegisterBenchmark(
            (name + '/' + shape).c_str(),
            [row, shape](benchmark::State& state) { row(state, shape); });
        registered->Arg(m)->UseManualTime()->Unit(benchmark::kMillisecond);
        if (name == "BM_SetupPlain" && m >= bigMesh) {
            registered->Iterations(1)->Repetitions(1);
        } else if (name == "BM_FirstSetup" || name == "BM_MovedSetup" || m >= hugeMesh) {
            registered->Iterations(1);
        }
    }
}

bool RegisterAll() {
    Register("BM_Setup", BM_Setup, "Cylinder", {6, 9, 12, 20, 28});
    Register("BM_Setup", BM_Setup, "Square", {6, 12, 20, 28});
    Register("BM_SetupPlain", BM_SetupPlain, "Cylinder", {6, 9, 12, 20});
    Register("BM_SetupPlain", BM_SetupPlain, "Square", {6, 12, 20});
    for (const char* shape : {"SquareRing", "SphereShell"}) {
        Register("BM_Setup", BM_Setup, shape, {20});
        Register("BM_SetupPlain", BM_SetupPlain, shape, {20});
    }
    Register("BM_SetupShuffled", BM_SetupShuffled, "Square", {20});
    for (const char* shape : {"Cylinder", "Square"}) {
        Register("BM_FirstSetup", BM_FirstSetup, shape, {20});
        Register("BM_MovedSetup", BM_MovedSetup, shape, {20});
    }
    return true;
}

const bool areRegistered = RegisterAll();

void DonorSizes(benchmark::internal::Benchmark* row) {
    for (int m : {6, 9, 12, 20}) {
        row->Arg(m);
    }
    row->Unit(benchmark::kMillisecond);
}

BENCHMARK(BM_Donors)->Apply(DonorSizes);
BENCHMARK(BM_DonorsPlain)->Apply(DonorSizes);

}  // namespace
