#ifndef KVX3D_REFERENCE_HOST_PHYSICS_HOLE_BALANCE_H
#define KVX3D_REFERENCE_HOST_PHYSICS_HOLE_BALANCE_H

#include <vector>

#include "host_link/face_data.h"
#include "reference_host/link/overset_link.h"
#include "reference_host/mesh/mesh.h"

namespace host {

/// What a flow solver conserves across the hole boundary of an overset pair.
enum class Conservation {
    None,            ///< nothing: the interpolated values are taken as they are
    Mass,            ///< the net volume flux through the hole boundary is zero
    MassAndMomentum  ///< also, the force on the hole boundary is that on the body
};

/// Makes the hole boundary of an overset pair conservative.
///
/// Values interpolated between two grids do not conserve mass or momentum: the sums of the fluxes
/// over the hole boundary of the background miss those of the component by an interpolation error.
/// Two constants per unit area remove it, a volume flux l and a momentum flux c, both out of the
/// background and the same at all hole-boundary faces. The background loses the momentum c, so c is
/// the force that its fluid exerts on the hole in addition. A constant changes the sum of the
/// fluxes with the least change of the single fluxes. Both constants are found along with the flow,
/// as sums of what each iteration of the flow solver finds missing. They are interpolation errors
/// themselves and vanish with the square of the cell size.
///
/// Source of the correction of mass: Y. Zang, R. L. Street, Int. J. Numer. Methods Fluids 20 (1995)
/// 341-361, doi:10.1002/fld.1650200502.
class HoleBalance {
public:
    /// Collects the hole-boundary faces; none on a single grid. Keeps references to mesh and link.
    HoleBalance(const Mesh& mesh, const OversetLink& link);

    /// A face of the hole boundary.
    struct Face {
        int face;           ///< inner face
        int cell;           ///< the active cell
        bool activeIsLeft;  ///< the area vector points out of the active cell
        double area;
    };
    const std::vector<Face>& Faces() const { return faces; }

    /// Net volume flux out of the background through the hole boundary.
    double NetFlux(const CMAFVMFaceVariableAll& flux) const;
    /// Adds the constant l to the fluxes of the hole boundary.
    void CorrectFluxes(CMAFVMFaceVariableAll& flux) const;
    /// Changes l, and the fluxes accordingly.
    /// @param perArea  out of the background
    void AddFlux(double perArea, CMAFVMFaceVariableAll& flux);

    /// Subtracts the part of the force c from the right-hand side of each active cell at the hole.
    /// @param rhs  of the momentum equation of one component, entries 1..NcAll
    void SubtractForce(int component, std::vector<double>& rhs) const;
    /// Changes c so that it takes up the difference that remains between two forces.
    /// @param onBody  force that the sum over the hole boundary must have
    /// @param onHole  sum of the momentum fluxes into the hole, without Force()
    void UpdateMomentum(const Vec3& onBody, const Vec3& onHole);

    /// The corrections of the whole hole boundary: the volume flux out of the background, and the
    /// force that is added to the momentum fluxes into the hole.
    double Flux() const { return fluxPerArea * area; }
    Vec3 Force() const { return forcePerArea * area; }
    /// Area of the hole boundary.
    double Area() const { return area; }

private:
    void Add(double perArea, CMAFVMFaceVariableAll& flux) const;

    std::vector<Face> faces;
    const OversetLink& link;
    double area = 0.0;
    double fluxPerArea = 0.0;
    Vec3 forcePerArea = Vec3::Zero();
};

}  // namespace host

#endif
