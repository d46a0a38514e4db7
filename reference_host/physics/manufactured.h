#ifndef KVX3D_REFERENCE_HOST_PHYSICS_MANUFACTURED_H
#define KVX3D_REFERENCE_HOST_PHYSICS_MANUFACTURED_H

#include <functional>
#include <string>
#include <vector>

#include "reference_host/link/overset_link.h"
#include "reference_host/mesh/mesh.h"

namespace host {

/// A field in closed form with the derivatives that its source term needs.
struct AnalyticField {
    std::function<double(const Vec3&)> value;
    std::function<Vec3(const Vec3&)> gradient;
    std::function<double(const Vec3&)> laplacian;
};

/// sin(1.3 x + 0.3) cos(1.3 y - 0.2) + 0.2 x.
AnalyticField WaveField();
/// The product in WaveField() times cos(pi z / thickness), plus 0.2 x. It has no normal gradient on
/// the planes z = 0 and z = thickness.
AnalyticField WaveField(double thickness);
/// offset + slope . x. On a mesh with symmetry faces the slope must be parallel to them.
AnalyticField LinearField(const Vec3& slope, double offset);

/// The wave for a mesh: the plane one if the mesh is one cell thick, else the three-dimensional
/// one.
AnalyticField WaveFor(const Mesh& mesh);

/// Norms of the difference between the cell values and the exact values at the cell centers.
struct ErrorNorms {
    double l2 = 0.0;   ///< volume-weighted root mean square
    double max = 0.0;  ///< largest magnitude
};

/// Norms over the active cells of one grid, or of all grids if `cavity` is 0.
/// @param errorOf  magnitude of the error of a cell
ErrorNorms Norms(const Mesh& mesh, const OversetLink& link,
                 const std::function<double(int cell)>& errorOf, int cavity = 0);

/// Errors over the active cells of one grid, or of all grids if `cavity` is 0.
/// @param phi  entries 1..NcAll
ErrorNorms Errors(const Mesh& mesh, const OversetLink& link, const std::vector<double>& phi,
                  const AnalyticField& exact, int cavity = 0);

}  // namespace host

#endif
