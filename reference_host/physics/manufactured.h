#ifndef KVX3D_REFERENCE_HOST_PHYSICS_MANUFACTURED_H
#define KVX3D_REFERENCE_HOST_PHYSICS_MANUFACTURED_H

#include <functional>
#include <string>
#include <vector>

#include "reference_host/link/overset_link.h"
#include "reference_host/mesh/mesh.h"

namespace host {

/// A field known in closed form, with the derivatives its source needs.
struct AnalyticField {
    std::function<double(const Vec3&)> value;
    std::function<Vec3(const Vec3&)> gradient;
    std::function<double(const Vec3&)> laplacian;
};

/// sin(1.3 x + 0.3) cos(1.3 y - 0.2) + 0.2 x.
AnalyticField WaveField();
/// The product part of WaveField() times cos(pi z / thickness), plus 0.2 x: no gradient across the
/// planes z = 0 and z = thickness.
AnalyticField WaveField(double thickness);
/// offset + slope . x. On a mesh with symmetry faces the slope must lie in their planes.
AnalyticField LinearField(const Vec3& slope, double offset);

/// The wave that suits a mesh: plane on a one-cell-thick mesh, else three-dimensional.
AnalyticField WaveFor(const Mesh& mesh);

/// Errors of cell values against the exact values at the cell centres.
struct ErrorNorms {
    double l2 = 0.0;   ///< volume-weighted root mean square
    double max = 0.0;  ///< largest magnitude
};

/// Errors over the active cells of one grid, or of all if `cavity` is 0.
ErrorNorms Errors(const Mesh& mesh, const OversetLink& link, const std::vector<double>& phi,
                  const AnalyticField& exact, int cavity = 0);

}  // namespace host

#endif
