#ifndef KVX3D_REFERENCE_HOST_DISCRETISATION_DONOR_INTERPOLATION_H
#define KVX3D_REFERENCE_HOST_DISCRETISATION_DONOR_INTERPOLATION_H

#include <vector>

#include "reference_host/discretisation/stencil.h"
#include "reference_host/link/overset_link.h"
#include "reference_host/mesh/cell_faces.h"
#include "reference_host/mesh/mesh.h"

namespace host {

/// Interpolates a field to a point of the other grid, by a quadratic least-squares fit about the
/// point over the cells around the donor.
///
/// A quadratic fit keeps the whole solution second-order accurate. The overlap is a fixed number of
/// cells wide, so that an error e of the interpolated values grows to e / h in the solution.
class DonorInterpolation {
public:
    DonorInterpolation(const Mesh& mesh, const OversetLink& link, const CellFaces& cellFaces);

    /// The donor, its neighbors across regular inner faces, and the neighbors of those; all active.
    std::vector<int> Cloud(int donor) const;

    /// The weights of the fit for the value at `point`; their sum is 1.
    /// @return an empty stencil if the cloud is degenerate, or has fewer cells than the basis has
    ///         functions plus 2
    Stencil Fit(int donor, const Vec3& point) const;
    /// The same with the fit about one point evaluated at another one, so that differences between
    /// the values at several points come from one polynomial.
    Stencil Fit(int donor, const Vec3& about, const Vec3& point) const;

private:
    Eigen::VectorXd Basis(const Vec3& offset) const;

    const Mesh& mesh;
    const OversetLink& link;
    const CellFaces& cellFaces;
    const bool quasi2d;  // six quadratic basis functions of x and y instead of all ten
};

}  // namespace host

#endif
