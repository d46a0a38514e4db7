#ifndef KVX3D_REFERENCE_HOST_DISCRETISATION_STENCIL_BUILDER_H
#define KVX3D_REFERENCE_HOST_DISCRETISATION_STENCIL_BUILDER_H

#include "reference_host/discretisation/donor_interpolation.h"
#include "reference_host/discretisation/gradient.h"
#include "reference_host/discretisation/stencil.h"
#include "reference_host/link/host_objects.h"
#include "reference_host/link/overset_link.h"
#include "reference_host/mesh/cell_faces.h"
#include "reference_host/mesh/mesh.h"

namespace host {

/// What the far-upstream stencils are made for: the factor that moves them off the cell line, so
/// that the scheme's point weights (-0.5 and -0.125) turn it into one grad . (P - M).
enum class FarPoint { LinearUpwind = 2, Quick = 8 };

struct FarStencils {
    Stencil left, right;
};

/// The stencils of an inner face. The upstream pairs are the two sides' own values.
struct InnerStencils {
    Stencil face;    ///< value at the face centre
    Stencil normal;  ///< gradient . area vector, from the first to the second cell
    Stencil left;    ///< value of the first cell, or its stand-in on a hole boundary
    Stencil right;   ///< value of the second cell, likewise
    FarStencils far;
};

struct BoundaryStencils {
    Stencil normal;   ///< gradient . area vector, out of the domain
    Stencil left;     ///< value of the cell
    Stencil farLeft;  ///< so that 1.5 left - 0.5 farLeft is the value at the face centre
};

/// Builds the stencils of every face from one set of cell gradients.
///
/// The ghost unknown is the value at the face centre. Faces of cells on both sides of the overset
/// interface follow the same rules: the cut side is replaced by the mirrored point Q = 2P - C of
/// the active cell C, with a quadratic interpolation in the donor's grid as its value.
///
/// All stencils are exact for linear fields, on skewed and non-orthogonal cells too. The
/// non-orthogonal part of `normal` is over-relaxed, implicit and not limited: a limiter costs that
/// exactness on tetrahedra.
class StencilBuilder {
public:
    /// Borrows its arguments.
    StencilBuilder(const Mesh& mesh, const HostObjects& objects, const OversetLink& link,
                   GradientSet set);

    /// Empty for a cut cell.
    const GradientStencil& Gradient(int cell) const { return gradients[cell]; }

    /// Stencils of a face with at least one live side.
    InnerStencils Inner(int face, FarPoint farPoint) const;
    FarStencils Far(int face, FarPoint farPoint) const;
    /// True on symmetry faces and beside cut cells: such a face adds nothing to the matrix.
    bool IsSilent(Boundary kind, int face) const;
    /// Stencils of a boundary face that is not silent.
    BoundaryStencils AtBoundary(Boundary kind, int face) const;
    /// Value at the mirrored point of the cell beside an overset wall face.
    Stencil Mirrored(int wallFace) const;

    /// Interpolations that fell back to the donor's value and gradient, so far; 0 on a sound mesh.
    int FallbackCount() const { return fallbackCount; }

    const Mesh& mesh;
    const HostObjects& objects;
    const OversetLink& link;

private:
    /// The two points a face stencil joins: value, position and gradient on each side.
    struct Pair {
        Stencil a, b;
        Vec3 xLeft, xRight;
        const GradientStencil* gradLeft;
        const GradientStencil* gradRight;
    };
    Pair PairOf(int face) const;
    FarStencils FarOf(const Pair& pair, const Vec3& faceCentre, FarPoint farPoint) const;
    Stencil FaceOf(const Pair& pair, const InnerFace& face) const;
    Stencil NormalOf(const Pair& pair, const InnerFace& face, FaceSide side) const;
    Stencil ValueInDonorGrid(int donor, const Vec3& point) const;

    const CellFaces cellFaces;
    const CellGradients gradients;
    const DonorInterpolation interpolation;
    mutable int fallbackCount = 0;
};

}  // namespace host

#endif
