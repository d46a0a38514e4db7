#ifndef KVX3D_REFERENCE_HOST_DISCRETISATION_GRADIENT_H
#define KVX3D_REFERENCE_HOST_DISCRETISATION_GRADIENT_H

#include <vector>

#include "reference_host/discretisation/stencil.h"
#include "reference_host/link/host_objects.h"
#include "reference_host/link/overset_link.h"
#include "reference_host/mesh/cell_faces.h"

namespace host {

/// Which ghosts take part in a cell's gradient.
enum class GradientSet {
    Velocity,  ///< inlet, outlet, wall and overset ghosts: every scalar with values there
    Pressure   ///< outlet and overset ghosts only: one-sided at inlets and physical walls
};

/// Least-squares gradients of the active cells, exact for linear fields.
///
/// grad C = M^-1 sum w d (phi - phi_C), M = sum w d d^T, w = 1 / |d|^2, over the faces of C.
/// Regular faces give the neighbour, hole-boundary faces the donor at its own centre, boundary
/// faces their ghost at the face centre. A symmetry face enters M alone (zero difference to the
/// mirrored point), which also keeps M regular on one-cell-thick meshes.
///
/// Tetrahedra take the neighbours of their neighbours as well: from four of them alone, fewer at a
/// wall, the gradient is so sensitive that a flow diverges within ten iterations.
///
/// Sources: T. J. Barth, A 3-D upwind Euler solver for unstructured meshes, AIAA 91-1548; second
/// neighbours: F. Haider, J.-P. Croisille, B. Courbet, Numer. Math. 113 (2009) 555-600,
/// doi:10.1007/s00211-009-0228-z.
class CellGradients {
public:
    CellGradients(const Mesh& mesh, const HostObjects& objects, const OversetLink& link,
                  const CellFaces& cellFaces, GradientSet set);

    /// Empty for a cut cell.
    const GradientStencil& operator[](int cell) const { return gradients[cell]; }

private:
    std::vector<GradientStencil> gradients;  // by cell
};

}  // namespace host

#endif
