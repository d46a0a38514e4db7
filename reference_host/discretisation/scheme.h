#ifndef KVX3D_REFERENCE_HOST_DISCRETISATION_SCHEME_H
#define KVX3D_REFERENCE_HOST_DISCRETISATION_SCHEME_H

#include <optional>
#include <string>

#include "fvm_operators/mat_operator.h"
#include "reference_host/discretisation/equation.h"
#include "reference_host/discretisation/stencil_builder.h"

namespace host {

/// What stands for the transport term; each is one operator of the toolbox.
enum class Scheme {
    Laplace,         ///< no convection; diffusion by the operator with unit coefficient
    Diffusion,       ///< no convection
    UpwindCells,     ///< first order, cell entries
    UpwindStencils,  ///< first order, from the records
    Central,
    LinearUpwind,
    Quick,
    Hybrid
};

/// Name on the command line and in tables: "diffusion", "lud", ...
const char* Name(Scheme scheme);
/// The scheme of that name, if there is one.
std::optional<Scheme> SchemeNamed(const std::string& name);
/// All names, comma-separated, for messages.
/// @param convecting  only those with convection
std::string SchemeNames(bool convecting = false);
/// False for the two pure diffusion schemes.
bool Convects(Scheme scheme);

/// Stencil pairs that the scheme's operator touches.
Reach ReachOf(Scheme scheme);
/// Far-upstream stencils that the scheme's point weights are made for.
FarPoint FarPointOf(Scheme scheme);

/// Adds div(F phi) of the scheme to the operators' matrix; nothing for pure diffusion.
void AddConvection(Scheme scheme, KVX_ART_FVM::CKVX_ART_MatOperator& operators,
                   CMAFVMFaceVariableAll& flux);

}  // namespace host

#endif
