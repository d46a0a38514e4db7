#ifndef KVX3D_REFERENCE_HOST_CASES_COMMON_OPTIONS_H
#define KVX3D_REFERENCE_HOST_CASES_COMMON_OPTIONS_H

#include <optional>
#include <string>
#include <vector>

#include "reference_host/cases/case_options.h"
#include "reference_host/discretisation/scheme.h"
#include "reference_host/discretisation/solver_matrix.h"
#include "reference_host/physics/hole_balance.h"

namespace host {

/// Path of a mesh that comes with the program.
std::string ShippedMesh(const std::string& name);

// Options that several cases have, each for the field it sets.

/// output.directory
Option OutputOption(std::string& field, const char* help = "directory of the result files");
/// check
Option CheckOption(bool& field);
/// solver.matrix
Option SolverOption(MatrixSolver& field);
/// solver.pressure_matrix
Option PressureSolverOption(std::optional<MatrixSolver>& field);
/// solver.conservation
Option ConservationOption(Conservation& field);
/// schemes.transport: one scheme with convection
Option SchemeOption(Scheme& field);
/// schemes.transport: any number of schemes, "all" for every one of them
Option SchemesOption(std::vector<Scheme>& field);

}  // namespace host

#endif
