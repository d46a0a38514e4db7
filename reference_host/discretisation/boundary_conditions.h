#ifndef KVX3D_REFERENCE_HOST_DISCRETISATION_BOUNDARY_CONDITIONS_H
#define KVX3D_REFERENCE_HOST_DISCRETISATION_BOUNDARY_CONDITIONS_H

#include <array>
#include <functional>
#include <vector>

#include "reference_host/link/host_objects.h"
#include "reference_host/link/overset_link.h"

namespace host {

/// The equation of the unknown of a ghost cell, which is the value at the center of its face.
struct GhostCondition {
    enum class Kind {
        Value,         ///< phi_g = value
        ZeroGradient,  ///< phi_g = phi_C
        Mirror         ///< phi_g = (phi_C + phi_Q) / 2 with Q = 2P - C, on overset boundaries
    };
    Kind kind = Kind::ZeroGradient;
    double value = 0.0;
};

/// The conditions of all boundary faces of a mesh, for one transport equation.
///
/// Three of them are fixed: symmetry faces have a zero gradient, overset faces take the mean with
/// the mirrored point, and the ghosts of cut cells are 0. The case chooses all others.
class BoundaryConditions {
public:
    using Choice = std::function<GhostCondition(Boundary kind, int face)>;

    /// Calls `choose` for each inlet, outlet and physical wall face beside an active cell.
    BoundaryConditions(const Mesh& mesh, const OversetLink& link, const Choice& choose);

    const GhostCondition& At(Boundary kind, int face) const {
        return conditions[static_cast<int>(kind)][face];
    }

    /// Writes the diffusion coefficient of each ghost into the host's array `mu`: the one of the
    /// cell beside it, but 0 under a zero gradient, where the stencil of a skewed cell would let a
    /// small diffusive flux through.
    ///
    /// @param cellMu  diffusion coefficient by cell, entries 1..Nc
    void SetGhostMu(const Mesh& mesh, HostObjects& objects,
                    const std::vector<double>& cellMu) const;

private:
    std::array<std::vector<GhostCondition>, 4> conditions;  // by Boundary, then by face
};

}  // namespace host

#endif
