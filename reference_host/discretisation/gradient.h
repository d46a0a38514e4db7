#ifndef KVX3D_REFERENCE_HOST_DISCRETISATION_GRADIENT_H
#define KVX3D_REFERENCE_HOST_DISCRETISATION_GRADIENT_H

#include <vector>

#include "reference_host/discretisation/stencil.h"
#include "reference_host/link/host_objects.h"
#include "reference_host/link/overset_link.h"
#include "reference_host/mesh/cell_faces.h"

namespace host {

/// The ghost cells whose values enter the gradient of a cell.
enum class GradientSet {
    Velocity,  ///< inlet, outlet, wall and overset ghosts, for scalars with values there
    Pressure,  ///< outlet and overset ghosts; one-sided at inlets and physical walls
    /// Overset ghosts only: of a pressure without a given value at outlets, where it is
    /// extrapolated as at inlets and walls.
    ClosedPressure,
    /// As Velocity, and also symmetry ghosts, for a vector whose component normal to the plane is 0
    /// there. Their value belongs to the foot of the perpendicular from the center of the cell.
    VectorAtSymmetry
};

/// Least-squares gradients of the active cells, exact for linear fields.
///
/// grad C = M^-1 sum w d (phi - phi_C), M = sum w d d^T, w = 1 / |d|^2, over the faces of C.
/// A regular face contributes the neighbor, a hole-boundary face the donor at its own center, and a
/// boundary face its ghost at the face center. A symmetry face contributes to M only, since the
/// value at the mirrored point equals that of the cell; this also keeps M regular on meshes that
/// are one cell thick. Under VectorAtSymmetry it contributes its ghost as well.
///
/// For tetrahedra the neighbors of the neighbors contribute as well. With the four face neighbors
/// only, or three at a wall, the gradient is so sensitive that a flow diverges within ten
/// iterations. They also contribute for prisms whose gradient is one-sided at a boundary. On a mesh
/// that is one cell thick such a prism has only two neighbors, and the pressure that is
/// extrapolated to a wall with their gradient alternates from face to face.
///
/// Sources: T. J. Barth, A 3-D upwind Euler solver for unstructured meshes, AIAA 91-1548; second
/// neighbors: F. Haider, J.-P. Croisille, B. Courbet, Numer. Math. 113 (2009) 555-600,
/// doi:10.1007/s00211-009-0228-z.
class CellGradients {
public:
    CellGradients(const Mesh& mesh, const HostObjects& objects, const OversetLink& link,
                  const CellFaces& cellFaces, GradientSet set);

    /// The gradient of a cell; empty for a cut cell.
    const GradientStencil& operator[](int cell) const { return gradients[cell]; }

private:
    std::vector<GradientStencil> gradients;  // by cell
};

}  // namespace host

#endif
