#ifndef KVX3D_REFERENCE_HOST_PHYSICS_MANUFACTURED_FLOW_H
#define KVX3D_REFERENCE_HOST_PHYSICS_MANUFACTURED_FLOW_H

#include <Eigen/Core>
#include <array>
#include <optional>
#include <vector>

#include "reference_host/mesh/mesh.h"

namespace host {

/// amplitude * sin(kx x + ax) sin(ky y + ay) sin(kz z + az). A factor with k = 0 and a = pi / 2 is
/// constant. Every derivative is again such a product, because a sine is differentiated by a phase
/// shift of pi / 2.
struct WaveProduct {
    double amplitude = 0.0;
    Vec3 wave = Vec3::Zero();   ///< kx, ky, kz [1 / length]
    Vec3 phase = Vec3::Zero();  ///< ax, ay, az

    double At(const Vec3& point) const;
    WaveProduct Derivative(int axis) const;
    WaveProduct Laplacian() const;
};

/// A velocity and a pressure in closed form that satisfy continuity exactly, and the momentum
/// equations of a steady flow of density 1 under the force Force().
///
/// The velocity is a mean velocity plus the curl of a vector potential (0, Py, Pz), so its
/// divergence is zero. In the plane Py is zero and Pz is the stream function. In three dimensions
/// the planes z = 0 and z = thickness are symmetry planes: w is zero there, and u, v and p have no
/// normal gradient. Wave numbers and phases differ between the directions and between velocity and
/// pressure, so that no symmetry of the solution cancels an error.
///
/// Source of the method: P. J. Roache, Code verification by the method of manufactured solutions,
/// J. Fluids Eng. 124 (2002) 4-10, doi:10.1115/1.1436090.
class ManufacturedFlow {
public:
    /// @param thickness  distance of the symmetry planes [length]; none: the plane flow
    explicit ManufacturedFlow(std::optional<double> thickness = std::nullopt);

    Vec3 Velocity(const Vec3& at) const;
    /// Entry (i, j) is the derivative of component i in the direction j.
    Eigen::Matrix3d VelocityGradient(const Vec3& at) const;
    double Pressure(const Vec3& at) const { return pressure.At(at); }
    /// Force per volume, (u . grad) u + grad p - mu lap u.
    Vec3 Force(const Vec3& at, double mu) const;
    /// Force per area that the fluid exerts through a surface, p n - mu du/dn.
    /// @param normal  unit normal out of the fluid
    Vec3 Traction(const Vec3& at, const Vec3& normal, double mu) const;

private:
    Vec3 mean;
    std::array<std::vector<WaveProduct>, 3> waves;  // by velocity component
    WaveProduct pressure;
};

/// The plane flow if the mesh is one cell thick, else the flow between its planes of symmetry.
ManufacturedFlow ManufacturedFlowFor(const Mesh& mesh);

}  // namespace host

#endif
