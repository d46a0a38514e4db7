#include "reference_host/discretisation/stencil_builder.h"

#include <gtest/gtest.h>

#include "tests/reference_host/discretisation/mesh_case.h"

namespace {

using host::Boundary;
using host::BoundaryStencils;
using host::FaceSide;
using host::FarPoint;
using host::GradientSet;
using host::InnerStencils;
using host::Stencil;
using host::StencilBuilder;
using host::Vec3;

class StencilsOnMesh : public testing::TestWithParam<MeshChoice> {
protected:
    StencilsOnMesh() : c(GetParam()), builder(c.mesh, c.objects, c.link, GradientSet::Velocity) {}

    bool IsLive(int face) const { return c.link.Side(face) != FaceSide::None; }

    const MeshCase c;
    const StencilBuilder builder;
};

TEST_P(StencilsOnMesh, InnerValuesSumToOneAndDerivativesToZero) {
    for (int face = 1; face <= c.mesh.InnerFaceCount(); ++face) {
        if (!IsLive(face)) {
            continue;
        }
        const InnerStencils at = builder.Inner(face, FarPoint::Quick);
        ASSERT_NEAR(at.face.Sum(), 1.0, 1e-10) << "face " << face;
        ASSERT_NEAR(at.left.Sum(), 1.0, 1e-10) << "face " << face;
        ASSERT_NEAR(at.right.Sum(), 1.0, 1e-10) << "face " << face;
        ASSERT_NEAR(at.far.left.Sum(), 1.0, 1e-10) << "face " << face;
        ASSERT_NEAR(at.far.right.Sum(), 1.0, 1e-10) << "face " << face;
        ASSERT_NEAR(at.normal.Sum(), 0.0, 1e-10) << "face " << face;
    }
}

TEST_P(StencilsOnMesh, BoundaryValuesSumToOneAndDerivativesToZero) {
    for (const Boundary kind : host::allBoundaries) {
        for (int face = 1; face <= c.mesh.FaceCount(kind); ++face) {
            if (builder.IsSilent(kind, face)) {
                continue;
            }
            const BoundaryStencils at = builder.AtBoundary(kind, face);
            ASSERT_NEAR(at.left.Sum(), 1.0, 1e-10) << "face " << face;
            ASSERT_NEAR(at.farLeft.Sum(), 1.0, 1e-10) << "face " << face;
            ASSERT_NEAR(at.normal.Sum(), 0.0, 1e-10) << "face " << face;
        }
    }
}

TEST_P(StencilsOnMesh, LinearFieldIsExactAtInnerFaces) {
    const host::AnalyticField linear = c.Linear();
    const std::vector<double> phi = c.Sample(linear);
    for (int face = 1; face <= c.mesh.InnerFaceCount(); ++face) {
        if (!IsLive(face)) {
            continue;
        }
        const host::InnerFace& at = c.mesh.innerFaces[face];
        const double value = linear.value(at.centre);
        const double normal = linear.gradient(at.centre).dot(at.area);
        for (const FarPoint farPoint : {FarPoint::LinearUpwind, FarPoint::Quick}) {
            const InnerStencils s = builder.Inner(face, farPoint);
            ASSERT_NEAR(s.face.Apply(phi), value, 1e-11) << "face " << face;
            ASSERT_NEAR(s.normal.Apply(phi), normal, 1e-11) << "face " << face;
            // The face value by linear upwind and by QUICK, for both directions of the flux.
            const double left = s.left.Apply(phi), right = s.right.Apply(phi);
            const double farLeft = s.far.left.Apply(phi), farRight = s.far.right.Apply(phi);
            if (farPoint == FarPoint::LinearUpwind) {
                ASSERT_NEAR(1.5 * left - 0.5 * farLeft, value, 1e-11) << "face " << face;
                ASSERT_NEAR(1.5 * right - 0.5 * farRight, value, 1e-11) << "face " << face;
            } else {
                ASSERT_NEAR(0.75 * left + 0.375 * right - 0.125 * farLeft, value, 1e-11);
                ASSERT_NEAR(0.75 * right + 0.375 * left - 0.125 * farRight, value, 1e-11);
            }
        }
    }
}

TEST_P(StencilsOnMesh, LinearFieldIsExactAtBoundaryFaces) {
    const host::AnalyticField linear = c.Linear();
    const std::vector<double> phi = c.Sample(linear);
    for (const Boundary kind : host::allBoundaries) {
        for (int face = 1; face <= c.mesh.FaceCount(kind); ++face) {
            if (builder.IsSilent(kind, face)) {
                continue;
            }
            const host::BoundaryFace& at = c.mesh.Faces(kind)[face];
            const BoundaryStencils s = builder.AtBoundary(kind, face);
            ASSERT_NEAR(s.normal.Apply(phi), linear.gradient(at.centre).dot(at.area), 1e-11);
            ASSERT_NEAR(1.5 * s.left.Apply(phi) - 0.5 * s.farLeft.Apply(phi),
                        linear.value(at.centre), 1e-11);
        }
    }
}

TEST_P(StencilsOnMesh, MirroredGhostIsExactForALinearField) {
    const host::AnalyticField linear = c.Linear();
    const std::vector<double> phi = c.Sample(linear);
    for (int face = 1; face <= c.mesh.FaceCount(Boundary::Wall); ++face) {
        const host::BoundaryFace& at = c.mesh.Faces(Boundary::Wall)[face];
        if (at.oversetGroup > 0) {
            const double ghost = 0.5 * (phi[at.cell] + builder.Mirrored(face).Apply(phi));
            ASSERT_NEAR(ghost, linear.value(at.centre), 1e-11) << "wall face " << face;
        }
    }
}

TEST_P(StencilsOnMesh, EveryInterpolationIsQuadratic) {
    for (int face = 1; face <= c.mesh.InnerFaceCount(); ++face) {
        if (IsLive(face)) {
            builder.Inner(face, FarPoint::Quick);
        }
    }
    for (int face = 1; face <= c.mesh.FaceCount(Boundary::Wall); ++face) {
        if (c.mesh.Faces(Boundary::Wall)[face].oversetGroup > 0) {
            builder.Mirrored(face);
        }
    }

    EXPECT_EQ(builder.FallbackCount(), 0);
}

TEST_P(StencilsOnMesh, SymmetryFacesAndFacesOfCutCellsAddNothing) {
    for (const Boundary kind : host::allBoundaries) {
        for (int face = 1; face <= c.mesh.FaceCount(kind); ++face) {
            const bool cut = !c.link.IsActive(c.mesh.Faces(kind)[face].cell);
            ASSERT_EQ(builder.IsSilent(kind, face), cut || kind == Boundary::Symmetry);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Meshes, StencilsOnMesh, testing::ValuesIn(AllMeshes()), MeshName);

/// The uniform box with cells of size 0.2, on which the stencils are known from textbooks. The
/// coordinates that Gmsh gives are exact to twelve digits.
class UniformStencils : public testing::Test {
protected:
    UniformStencils()
        : c(boxHexahedra), builder(c.mesh, c.objects, c.link, GradientSet::Velocity) {}

    /// The face on the line y = 2.1 whose two cells lie on both sides of `x`, or 0.
    int FaceAt(double x) const {
        for (int face = 1; face <= c.mesh.InnerFaceCount(); ++face) {
            if ((c.mesh.innerFaces[face].centre - Vec3(x, 2.1, 0.1)).norm() < 1e-9) {
                return face;
            }
        }
        return 0;
    }

    int CellAt(double x) const {
        for (int cell = 1; cell <= c.mesh.CellCount(); ++cell) {
            if ((c.mesh.cellCentre[cell] - Vec3(x, 2.1, 0.1)).norm() < 1e-9) {
                return cell;
            }
        }
        return 0;
    }

    const MeshCase c;
    const StencilBuilder builder;
};

TEST_F(UniformStencils, FaceValueAndNormalDerivativeUseTwoCells) {
    const int face = FaceAt(2.0);
    ASSERT_GT(face, 0);
    const InnerStencils at = builder.Inner(face, FarPoint::Quick);

    EXPECT_EQ(at.face.Terms().size(), 2u);
    EXPECT_NEAR(at.face.Weight(CellAt(1.9)), 0.5, 1e-10);
    EXPECT_NEAR(at.face.Weight(CellAt(2.1)), 0.5, 1e-10);
    EXPECT_EQ(at.normal.Terms().size(), 2u);
    // The area 0.2 * 0.2 divided by the distance 0.2.
    EXPECT_NEAR(std::abs(at.normal.Weight(CellAt(2.1))), 0.2, 1e-10);
}

TEST_F(UniformStencils, FarPointsAreTheNextCellsUpstream) {
    const int face = FaceAt(2.0);
    ASSERT_GT(face, 0);
    const bool forward = c.mesh.innerFaces[face].owner == CellAt(1.9);
    const int behindLeft = CellAt(forward ? 1.7 : 2.3);
    const int behindRight = CellAt(forward ? 2.3 : 1.7);

    const host::FarStencils far = builder.Far(face, FarPoint::LinearUpwind);

    EXPECT_NEAR(far.left.Weight(behindLeft), 1.0, 1e-10);
    EXPECT_NEAR(far.right.Weight(behindRight), 1.0, 1e-10);
    for (const Stencil::Term& term : far.left.Terms()) {
        EXPECT_NEAR(term.weight, term.column == behindLeft ? 1.0 : 0.0, 1e-10);
    }
}

TEST_F(UniformStencils, BoundaryDerivativeIsTheDifferenceOverHalfACell) {
    for (int face = 1; face <= c.mesh.FaceCount(Boundary::Wall); ++face) {
        const BoundaryStencils at = builder.AtBoundary(Boundary::Wall, face);
        ASSERT_EQ(at.normal.Terms().size(), 2u);
        // The area 0.2 * 0.2 divided by half a cell size.
        ASSERT_NEAR(at.normal.Weight(c.objects.Ghost(Boundary::Wall, face)), 0.4, 1e-10);
    }
}

TEST(StencilSides, HoleBoundaryUsesTheDonorsGridOnTheCutSideOnly) {
    const MeshCase c(oversetPair);
    const StencilBuilder builder(c.mesh, c.objects, c.link, GradientSet::Velocity);
    int checked = 0;
    for (int face = 1; face <= c.mesh.InnerFaceCount(); ++face) {
        if (c.link.Side(face) != FaceSide::DonorIsSecond) {
            continue;
        }
        const InnerStencils at = builder.Inner(face, FarPoint::Quick);
        const int active = c.link.First(face);
        ASSERT_EQ(at.left.Terms().size(), 1u);
        ASSERT_EQ(at.left.Weight(active), 1.0);
        for (const Stencil::Term& term : at.right.Terms()) {
            ASSERT_NE(c.mesh.cavity[term.column], c.mesh.cavity[active]);
        }
        ++checked;
    }
    EXPECT_GT(checked, 0);
}

}  // namespace
