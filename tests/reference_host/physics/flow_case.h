#ifndef KVX3D_TESTS_REFERENCE_HOST_PHYSICS_FLOW_CASE_H
#define KVX3D_TESTS_REFERENCE_HOST_PHYSICS_FLOW_CASE_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "reference_host/cases/benchmark_2d1.h"
#include "reference_host/discretisation/face_flux.h"
#include "reference_host/physics/flow_solver.h"
#include "tests/reference_host/discretisation/mesh_case.h"
#include "tests/support/output_capture.h"

inline const MeshChoice channel5 = {"Channel5", "channel_cylinder_overset.geo", {{"n", 5}}};
inline const MeshChoice channel10 = {"Channel10", "channel_cylinder_overset.geo", {{"n", 10}}};

/// Settings of the channel cases: Reynolds number 20 and a parabolic inlet profile of mean 1.
inline host::FlowSettings FlowAtRe20(const host::Mesh& mesh,
                                     host::Scheme scheme = host::Scheme::LinearUpwind,
                                     double relaxation = 0.9) {
    host::FlowSettings settings;
    settings.inlet = host::benchmark2d1::Inflow(mesh);
    settings.mu = 1.0 / host::benchmark2d1::reynolds;
    settings.scheme = scheme;
    settings.relaxation = relaxation;
    return settings;
}

/// Iterates until the velocity changes by less than `change`, at most 1000 times.
/// @return number of iterations; 1000 if the flow has not converged
inline int Converge(host::FlowSolver& flow, double change = 1e-7) {
    int iterations = 0;
    while (iterations < 1000) {
        ++iterations;
        if (flow.Iterate().change < change) {
            break;
        }
    }
    return iterations;
}

/// Flows that several tests of one suite read. Each is computed once, when a test first needs it.
/// @tparam Run  can be constructed from a MeshChoice
template <class Run>
class FlowsSolvedOnce {
public:
    const Run& On(const MeshChoice& choice) {
        std::unique_ptr<Run>& run = runs[choice.name];
        if (!run) {
            const OutputCapture quiet;
            run = std::make_unique<Run>(choice);
        }
        return *run;
    }
    void Clear() { runs.clear(); }

private:
    std::map<std::string, std::unique_ptr<Run>> runs;
};

/// Largest net outflow of a cell.
inline double LargestImbalance(const host::Mesh& mesh, const host::OversetLink& link,
                               const CMAFVMFaceVariableAll& flux) {
    double largest = 0.0;
    for (const double net : host::NetOutflow(mesh, link, flux)) {
        largest = std::max(largest, std::abs(net));
    }
    return largest;
}

/// Largest magnitude of the difference between the velocity and a given one, over all cells.
inline double LargestVelocityError(const host::Mesh& mesh, const host::FlowFields& fields,
                                   const host::InletProfile& exact) {
    double largest = 0.0;
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        largest = std::max(largest, (fields.Velocity(cell) - exact(mesh.cellCentre[cell])).norm());
    }
    return largest;
}

#endif
