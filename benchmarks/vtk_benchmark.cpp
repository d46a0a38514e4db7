// Writing one step file: a block of n x n x n hexahedra with a scalar and a vector over the cells,
// into the temporary directory of the system. Rates are MB of the file per second.
//
// BM_StepFile is ours. The yardsticks write the same bytes: BM_StepFilePlain by formatted stream
// insertion with std::endl, BM_StepFileLineWrites from memory with one write per line (the time
// without formatting), BM_StepFileOneWrite from memory with a single write.

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "plain/plain_vtu_writer.h"
#include "vtk_output/vtk_data.h"
#include "vtk_output/vtk_xml.h"

namespace {

/// The block with the arrays it points to. Coordinates and values are irregular numbers of ordinary
/// size.
class Box {
public:
    explicit Box(int n) : block(&points, &cells) {
        const int nodesN = n + 1;
        std::mt19937 random(31);
        std::uniform_real_distribution<double> jitter(0, 1e-2);
        for (int k = 0; k < nodesN; ++k) {
            for (int j = 0; j < nodesN; ++j) {
                for (int i = 0; i < nodesN; ++i) {
                    coordinates[0].push_back(0.05 * i + jitter(random));
                    coordinates[1].push_back(0.05 * j + jitter(random));
                    coordinates[2].push_back(0.05 * k + jitter(random));
                }
            }
        }
        points.x = coordinates[0].data();
        points.y = coordinates[1].data();
        points.z = coordinates[2].data();
        points.count = static_cast<int>(coordinates[0].size());
        AddCells(n);

        std::normal_distribution<double> field(0, 3);
        for (std::vector<double>& values : fields) {
            for (std::size_t cell = 0; cell < cells.size(); ++cell) {
                values.push_back(field(random));
            }
        }
        pressure.components = {fields[0].data()};
        velocity.components = {fields[1].data(), fields[2].data(), fields[3].data()};
        block.addCellsData(&pressure);
        block.addCellsData(&velocity);
    }
    Box(const Box&) = delete;
    Box& operator=(const Box&) = delete;

    VTK_Points points;
    VTK_Cells cells;
    VTK_Data pressure{"Pressure"};
    VTK_Data velocity{"Velocity"};
    VTK_Block block;

private:
    void AddCells(int n) {
        const auto node = [n](int i, int j, int k) { return 1 + i + (n + 1) * (j + (n + 1) * k); };
        nodes.reserve(8u * static_cast<std::size_t>(n * n * n));
        for (int k = 0; k < n; ++k) {
            for (int j = 0; j < n; ++j) {
                for (int i = 0; i < n; ++i) {
                    const int corners[] = {node(i, j, k),
                                           node(i + 1, j, k),
                                           node(i + 1, j + 1, k),
                                           node(i, j + 1, k),
                                           node(i, j, k + 1),
                                           node(i + 1, j, k + 1),
                                           node(i + 1, j + 1, k + 1),
                                           node(i, j + 1, k + 1)};
                    nodes.insert(nodes.end(), std::begin(corners), std::end(corners));
                    cells.push_back(MeshCell(&nodes[nodes.size() - 8], 8));
                }
            }
        }
    }

    std::vector<double> coordinates[3];
    std::vector<int> nodes;
    std::vector<double> fields[4];
};

/// A file of the benchmark, deleted at the end.
class ScratchFile {
public:
    ScratchFile()
        : path((std::filesystem::temp_directory_path() /
                ("kvx3d_benchmark_" + std::to_string(std::random_device()()) + ".vtu"))
                   .string()) {}
    ~ScratchFile() { std::filesystem::remove(path); }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    std::string Bytes() const {
        std::ifstream in(path, std::ios::binary);
        std::ostringstream bytes;
        bytes << in.rdbuf();
        return bytes.str();
    }

    const std::string path;
};

/// The bytes that every writer must write.
std::string Expected(const Box& box) {
    const ScratchFile file;
    plain::VtuWriter(file.path).Write(box.block);
    return file.Bytes();
}

/// Measures `write` on new files and compares their contents.
template <class Write>
void Run(benchmark::State& state, const std::string& expected, Write write) {
    const ScratchFile file;
    for (auto _ : state) {
        write(file.path);
    }
    if (expected.empty() || file.Bytes() != expected) {
        state.SkipWithError("other bytes: the time is meaningless");
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(expected.size()));
    const auto n = static_cast<double>(state.range(0));
    state.counters["size"] = n * n * n;
}

void BM_StepFile(benchmark::State& state) {
    Box box(static_cast<int>(state.range(0)));
    Run(state, Expected(box), [&](const std::string& path) { writeVTUFile(path, &box.block); });
}

void BM_StepFilePlain(benchmark::State& state) {
    Box box(static_cast<int>(state.range(0)));
    Run(state, Expected(box),
        [&](const std::string& path) { plain::VtuWriter(path).Write(box.block); });
}

void BM_StepFileLineWrites(benchmark::State& state) {
    const std::string bytes = Expected(Box(static_cast<int>(state.range(0))));
    Run(state, bytes, [&](const std::string& path) {
        std::ofstream out(path);
        for (std::size_t begin = 0; begin < bytes.size();) {
            const std::size_t end = bytes.find('\n', begin) + 1;
            out.write(&bytes[begin], static_cast<std::streamsize>(end - begin));
            out.flush();
            begin = end;
        }
    });
}

void BM_StepFileOneWrite(benchmark::State& state) {
    const std::string bytes = Expected(Box(static_cast<int>(state.range(0))));
    Run(state, bytes, [&](const std::string& path) {
        std::ofstream out(path);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    });
}

#define KVX3D_STEP_FILE_ROWS(writer) \
    BENCHMARK(writer)->Arg(20)->Arg(28)->Arg(41)->Arg(58)->Unit(benchmark::kMillisecond)

KVX3D_STEP_FILE_ROWS(BM_StepFile);
KVX3D_STEP_FILE_ROWS(BM_StepFilePlain);
KVX3D_STEP_FILE_ROWS(BM_StepFileLineWrites);
KVX3D_STEP_FILE_ROWS(BM_StepFileOneWrite);

}  // namespace
