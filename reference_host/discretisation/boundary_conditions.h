#ifndef KVX3D_REFERENCE_HOST_DISCRETISATION_BOUNDARY_CONDITIONS_H
#define KVX3D_REFERENCE_HOST_DISCRETISATION_BOUNDARY_CONDITIONS_H

#include <array>
#include <functional>
#include <vector>

#include "reference_host/link/host_objects.h"
#include "reference_host/link/overset_link.h"

namespace host {

/// What a boundary face says about its ghost unknown, the value at the face centre.
struct GhostCondition {
    enum class Kind {
        Value,         ///< phi_g = value
        ZeroGradient,  ///< phi_g = phi_C
        Mirror         ///< phi_g = (phi_C + phi_Q) / 2, Q the mirrored cell centre (overset faces)
    };
    Kind kind = Kind::ZeroGradient;
    double value = 0.0;
};

/// The condition of every boundary face of a mesh, for one equation.
///
/// The scheme fixes three of them: symmetry faces have zero gradient, overset faces mirror, and the
/// ghosts of cut cells are set to 0. The rest is the case's choice.
class BoundaryConditions {
public:
    using Choice = std::function<GhostCondition(Boundary kind, int face)>;

    /// Asks `choose` for each inlet, outlet and physical wall face beside an active cell.
    BoundaryConditions(const Mesh& mesh, const OversetLink& link, const Choice& choose);

    const GhostCondition& At(Boundary kind, int face) const {
        return conditions[static_cast<int>(kind)][face];
    }

    /// Writes the diffusion coefficient of each ghost into the host's `mu`: that of the cell beside
    /// it, but 0 under zero gradient, where the stencil of a skewed cell would conduct something.
    ///
    /// @param cellMu  by cell, entries 1..Nc
    void SetGhostMu(const Mesh& mesh, HostObjects& objects,
                    const std::vector<double>& cellMu) const;

private:
    std::array<std::vector<GhostCondition>, 4> conditions;  // by Boundary, then by face
};

}  // namespace host

#endif
