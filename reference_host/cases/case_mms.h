#ifndef KVX3D_REFERENCE_HOST_CASES_CASE_MMS_H
#define KVX3D_REFERENCE_HOST_CASES_CASE_MMS_H

#include <optional>
#include <string>
#include <vector>

#include "reference_host/cases/common_options.h"
#include "reference_host/cases/flow_study.h"
#include "reference_host/cases/order_study.h"

namespace host {

/// Order study of each scheme on each kind of mesh, of a scalar (see order_study.h) or of a flow
/// (see flow_study.h).
///
///     reference_host mms study.kind=0 study.n=10,20 schemes.transport=all check=true
struct MmsCase {
    std::string meshFile = ShippedMesh("box_annulus_overset.geo");
    MeshParameters parameters;          ///< further variables of the .geo
    std::vector<int> kinds = {1, 0};    ///< values of its variable `kind`; empty: it has none
    std::vector<int> sizes = {10, 20};  ///< values of its variable `n`: cells per unit length
    bool flow = false;                  ///< velocity and pressure instead of a scalar
    std::vector<Scheme> schemes = {Scheme::Diffusion};
    /// Diffusion coefficient or viscosity; by default that of DefaultMu(), and of FlowLevelSolver.
    std::optional<double> mu;
    MatrixSolver matrixSolver = MatrixSolver::Bicgstab;
    std::optional<double> depth;  ///< thickness of the mesh: sets the variable `nz` to depth * n
    bool check = false;           ///< compare the figures with their limits
    std::string outputDir;        ///< a result series per mesh, one step per scheme; empty: none
};

CaseOptions OptionsOf(MmsCase& run);

/// Runs all schemes on one kind of mesh at all sizes; each mesh is read and cut once.
/// @param kind  value of the variable `kind` of the .geo; none: it has no such variable
std::vector<OrderStudy> RunKind(const MmsCase& run, std::optional<int> kind);

/// The same for the flow; all schemes have convection.
std::vector<FlowStudy> RunFlowKind(const MmsCase& run, std::optional<int> kind);

/// Runs the study and prints its table.
/// @return 0; 1 if a checked figure is outside its limits
/// @throws std::runtime_error  one line: bad mesh, no limits to check against, output directory not
///         writable, not converged
int RunMms(const MmsCase& run);

}  // namespace host

#endif
