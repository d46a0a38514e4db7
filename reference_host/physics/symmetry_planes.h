#ifndef KVX3D_REFERENCE_HOST_PHYSICS_SYMMETRY_PLANES_H
#define KVX3D_REFERENCE_HOST_PHYSICS_SYMMETRY_PLANES_H

#include <array>
#include <vector>

#include "reference_host/link/host_objects.h"
#include "reference_host/link/overset_link.h"
#include "reference_host/mesh/mesh.h"

namespace host {

/// The velocity at symmetry planes, which are also walls with free slip: the component normal to
/// the plane is zero there, and the tangential components have no normal gradient.
///
/// With the unit normal n and the velocity v of the cell, the ghost holds v - (v.n) n, the velocity
/// at the foot of the perpendicular from the center of the cell. Component i of this condition is
///
///     v_g,i - (1 - n_i^2) v_i = -n_i (sum over j != i of n_j v_j).
///
/// The left side is implicit. It differs between the components, which otherwise share one matrix,
/// by n_i^2 in one entry of each ghost row. The right side vanishes for planes across a coordinate
/// axis; for others it takes the velocity of the iteration before.
class SymmetryPlanes {
public:
    /// Collects the symmetry faces of active cells.
    SymmetryPlanes(const Mesh& mesh, const HostObjects& objects, const OversetLink& link);

    /// Sets the diffusion coefficient of the ghosts in the host's array `mu`.
    void SetGhostMu(HostObjects& objects, double mu) const;

    /// Adds `sign` times the difference between the condition of one component and a zero gradient
    /// to the ghost rows. A call with -1 takes back a call with +1.
    ///
    /// @param scale   factor of the ghost rows by cell, entries 1..Nc
    /// @param add     adds a value to the matrix at (row, column)
    template <class Add>
    void ChangeRows(int component, double sign, const std::vector<double>& scale, Add add) const {
        for (const Plane& plane : planes) {
            const double n = plane.normal[component];
            if (n != 0.0) {
                add(plane.ghost, plane.cell, sign * n * n * scale[plane.cell]);
            }
        }
    }

    /// Writes the right-hand sides of the ghost rows of one component.
    void FillRightHandSide(int component, const std::array<std::vector<double>, 3>& velocity,
                           const std::vector<double>& scale, std::vector<double>& rhs) const;

    /// Computes the ghosts from their cells.
    void FillGhosts(std::array<std::vector<double>, 3>& velocity) const;

private:
    struct Plane {
        int cell, ghost;
        Vec3 normal;  // components below the rounding error of a normal are exactly 0
    };
    std::vector<Plane> planes;
};

}  // namespace host

#endif
