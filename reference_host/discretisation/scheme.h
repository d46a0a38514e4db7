#ifndef KVX3D_REFERENCE_HOST_DISCRETISATION_SCHEME_H
#define KVX3D_REFERENCE_HOST_DISCRETISATION_SCHEME_H

#include <optional>
#include <string>

#include "fvm_operators/mat_operator.h"
#include "reference_host/discretisation/equation.h"
#include "reference_host/discretisation/stencil_builder.h"

namespace host {

/// The discretization of the transport term. Each scheme is one operator of the toolbox.
enum class Scheme {
    Laplace,         ///< no convection; diffusion by the operator with a constant coefficient
    Diffusion,       ///< no convection
    UpwindCells,     ///< first order, from the cell values
    UpwindStencils,  ///< first order, from the stencils of the face records
    Central,
    LinearUpwind,
    Quick,
    Hybrid
};

/// Name of a scheme on the command line and in tables: "diffusion", "lud", ...
const char* Name(Scheme scheme);
/// The scheme with this name, if there is one.
std::optional<Scheme> SchemeNamed(const std::string& name);
/// The names of all schemes, separated by commas, for messages.
/// @param convecting  whether to leave out the schemes without convection
std::string SchemeNames(bool convecting = false);
/// False for the two pure diffusion schemes.
bool Convects(Scheme scheme);

/// The stencils that the operator of the scheme reads.
Reach ReachOf(Scheme scheme);
/// The far-upstream stencils that belong to the weights of the scheme.
FarPoint FarPointOf(Scheme scheme);

/// Adds div(F phi) by the scheme to the matrix of the operators; nothing for pure diffusion.
void AddConvection(Scheme scheme, KVX_ART_FVM::CKVX_ART_MatOperator& operators,
                   CMAFVMFaceVariableAll& flux);

}  // namespace host

#endif
