#ifndef KVX3D_REFERENCE_HOST_DISCRETISATION_DONOR_INTERPOLATION_H
#define KVX3D_REFERENCE_HOST_DISCRETISATION_DONOR_INTERPOLATION_H

#include <vector>

#include "reference_host/discretisation/stencil.h"
#include "reference_host/link/overset_link.h"
#include "reference_host/mesh/cell_faces.h"
#include "reference_host/mesh/mesh.h"

namespace host {

/// Value of a field at a point of the other grid: a quadratic least-squares fit about the point
/// over a cloud of cells around the donor.
///
/// Quadratic is what keeps the whole solution second order: the overlap is a fixed number of
/// cells, so an error e of the interpolated values grows to e / h in the solution.
class DonorInterpolation {
public:
    DonorInterpolation(const Mesh& mesh, const OversetLink& link, const CellFaces& cellFaces);

    /// The donor, its active face neighbours and theirs, across regular inner faces.
    std::vector<int> Cloud(int donor) const;

    /// The fit at `point`; its weights sum to 1.
    /// @return an empty stencil if the cloud has fewer than basis + 2 cells or is degenerate
    Stencil Fit(int donor, const Vec3& point) const;

private:
    Eigen::VectorXd Basis(const Vec3& offset) const;

    const Mesh& mesh;
    const OversetLink& link;
    const CellFaces& cellFaces;
    const bool quasi2d;  // basis of the six quadratic terms in x, y instead of all ten
};

}  // namespace host

#endif
