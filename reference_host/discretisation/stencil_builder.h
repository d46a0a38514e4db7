#ifndef KVX3D_REFERENCE_HOST_DISCRETISATION_STENCIL_BUILDER_H
#define KVX3D_REFERENCE_HOST_DISCRETISATION_STENCIL_BUILDER_H

#include <optional>

#include "reference_host/discretisation/donor_interpolation.h"
#include "reference_host/discretisation/gradient.h"
#include "reference_host/discretisation/stencil.h"
#include "reference_host/link/host_objects.h"
#include "reference_host/link/overset_link.h"
#include "reference_host/mesh/cell_faces.h"
#include "reference_host/mesh/mesh.h"

namespace host {

/// The scheme that reads the far-upstream stencils. The number multiplies the offset P - M between
/// the face center P and the middle M of the two cells, so that with the weight of the scheme for
/// the far point (-1/2 or -1/8) the face value contains grad . (P - M) once.
enum class FarPoint { LinearUpwind = 2, Quick = 8 };

/// Values one step further upstream than the first and the second cell of a face.
struct FarStencils {
    Stencil left, right;
};

/// The stencils of an inner face.
struct InnerStencils {
    Stencil face;     ///< value at the face center
    Stencil normal;   ///< gradient . area vector, from the first to the second cell
    Stencil left;     ///< value of the first cell, interpolated if that cell is cut
    Stencil right;    ///< value of the second cell, interpolated if that cell is cut
    FarStencils far;  ///< values one step further upstream
};

/// The stencils of a boundary face.
struct BoundaryStencils {
    Stencil normal;   ///< gradient . area vector, out of the domain
    Stencil left;     ///< value of the cell
    Stencil farLeft;  ///< such that 1.5 left - 0.5 farLeft is the value at the face center
};

/// What stands for the value on a face between two grids, with the active cell C, the face center P
/// and the mirrored point Q = 2P - C.
enum class InterfaceValue {
    /// The mean of C and Q and, with the far-upstream stencils, values extrapolated from C or Q:
    /// second-order accurate with the cell size of either grid. For scalars.
    Mirrored,
    /// I(P) + s (phi_C - I(C)), where I is the quadratic fit in the donor's grid: third-order
    /// accurate. The share s is 1 for flow out of the cell, 0 for flow into it and 1/2 where no
    /// direction is preferred. For a flow, whose balance of momentum between the grids depends on
    /// these values. Fluid that leaves through an inlet or a physical wall, where the velocity is
    /// given, takes the given value with it.
    Fitted
};

/// Builds the stencils of every face from one set of cell gradients.
///
/// The unknown of a ghost cell is the value at the center of its face. At a hole boundary, on
/// either grid, the cut cell is replaced by the mirrored point Q = 2P - C of the active cell C; the
/// value there is a quadratic interpolation in the donor's grid.
///
/// All stencils are exact for linear fields, on skewed and non-orthogonal cells as well. The
/// non-orthogonal part of `normal` is the over-relaxed correction, implicit and without a limiter,
/// because a limiter would destroy the exactness on tetrahedra.
class StencilBuilder {
public:
    /// Borrows its arguments.
    StencilBuilder(const Mesh& mesh, const HostObjects& objects, const OversetLink& link,
                   GradientSet set, InterfaceValue interfaceValue = InterfaceValue::Mirrored);

    /// The gradient of a cell; empty for a cut cell.
    const GradientStencil& Gradient(int cell) const { return gradients[cell]; }

    /// Stencils of an inner face with at least one active cell.
    InnerStencils Inner(int face, FarPoint farPoint) const;
    /// The far-upstream stencils alone, of an inner face with at least one active cell.
    FarStencils Far(int face, FarPoint farPoint) const;
    /// Whether nothing flows through a boundary face: a symmetry face or a face of a cut cell.
    bool IsSilent(Boundary kind, int face) const;
    /// Whether a boundary face adds something to the matrix: every face that is not silent, and
    /// symmetry faces of active cells under GradientSet::VectorAtSymmetry.
    bool HasStencils(Boundary kind, int face) const;
    /// Stencils of a boundary face that has some.
    BoundaryStencils AtBoundary(Boundary kind, int face) const;
    /// The value at the mirrored point of the cell beside a wall face on an overset boundary.
    Stencil Mirrored(int wallFace) const;
    /// The value at the center of a wall face on an overset boundary.
    /// @param cellShare  the share s of InterfaceValue::Fitted; with InterfaceValue::Mirrored the
    ///                   value is the mean of the cell and its mirrored point
    Stencil AtOversetFace(int wallFace, double cellShare) const;

    /// Number of interpolations so far that used value and gradient of the donor in place of the
    /// quadratic fit; 0 on a mesh with enough overlap.
    int FallbackCount() const { return fallbackCount; }

    const Mesh& mesh;
    const HostObjects& objects;
    const OversetLink& link;

private:
    /// The value on a face between two grids, I(P) + s (phi_C - I(C)).
    struct FittedValue {
        Stencil atFace;    // I(P)
        Stencil atActive;  // I(C)
        Stencil active;    // phi_C

        Stencil WithShare(double cellShare) const;
    };
    /// The two points that a face stencil connects: value, position and gradient of each side.
    struct Pair {
        Stencil a, b;
        Vec3 xLeft, xRight;
        const GradientStencil* gradLeft;
        const GradientStencil* gradRight;
        std::optional<FittedValue> fitted;  // on hole boundaries, if such values are wanted
        bool activeIsLeft = true;           // on hole boundaries
    };
    Pair PairOf(int face) const;
    std::optional<FittedValue> FittedAt(int cell, int donor, const Vec3& faceCentre) const;
    FarStencils FarOf(const Pair& pair, const Vec3& faceCentre, FarPoint farPoint) const;
    Stencil FaceOf(const Pair& pair, const InnerFace& face) const;
    Stencil NormalOf(const Pair& pair, const InnerFace& face, FaceSide side) const;
    Stencil ValueInDonorGrid(int donor, const Vec3& point) const;

    const GradientSet set;
    const InterfaceValue interfaceValue;
    const CellFaces cellFaces;
    const CellGradients gradients;
    const DonorInterpolation interpolation;
    mutable int fallbackCount = 0;
};

}  // namespace host

#endif
