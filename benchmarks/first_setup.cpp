/// Measures the first overset set-up of a process, and the second one after a move.
///
///     first_setup <shape> <m>
///
/// Prints two CPU times in seconds, system time included: SetFVM() on the mesh of
/// benchmarks/overset_shapes.h, and SetFVM() of a new object after the first one was destroyed and
/// the component has moved. overset_benchmark runs this program in a process of its own, because
/// memory that was in use before costs no page faults.

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <memory>

#include "benchmarks/overset_shapes.h"
#include "overset/overset_mesh.h"

namespace {

double SetupSeconds(SetupHost& host) {
    const QuietOutput quiet;
    CKVXOversetMesh mesh;
    const std::clock_t start = std::clock();
    mesh.SetFVM(&host.gv, &host.fvm);
    const std::clock_t end = std::clock();
    return static_cast<double>(end - start) / CLOCKS_PER_SEC;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3 || std::atoi(argv[2]) < 1) {
        std::fprintf(stderr, "usage: first_setup <shape> <m>, m at least 1\n");
        return 2;
    }
    try {
        const std::unique_ptr<SetupHost> host = MakeHost(argv[1], std::atoi(argv[2]));
        const double first = SetupSeconds(*host);
        host->MoveComponent(0.05, 0.02, 0.0);
        std::printf("%.6f %.6f\n", first, SetupSeconds(*host));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "first_setup: %s\n", error.what());
        return 1;
    }
    return 0;
}
