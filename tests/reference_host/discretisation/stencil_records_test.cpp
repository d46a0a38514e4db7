#include "reference_host/discretisation/stencil_records.h"

#include <gtest/gtest.h>

#include "tests/reference_host/discretisation/mesh_case.h"

namespace {

using host::Boundary;
using host::FaceSide;
using host::FarPoint;
using host::GradientSet;
using host::StencilBuilder;
using host::StencilRecords;

/// Whether all nine stencils exist and none has a term.
bool IsEmpty(const CMAFVMFaceData& record) {
    for (const int* ids :
         {record.idFace, record.idNormal, record.idAux1, record.idAux2, record.idAux3,
          record.idLeft, record.idRight, record.idFarLeft, record.idFarRight}) {
        if (ids == nullptr || ids[0] != 0) {
            return false;
        }
    }
    return true;
}

class RecordsOnMesh : public testing::TestWithParam<MeshChoice> {
protected:
    RecordsOnMesh()
        : c(GetParam()),
          builder(c.mesh, c.objects, c.link, GradientSet::Velocity),
          records(builder, c.objects, FarPoint::LinearUpwind) {}

    MeshCase c;
    const StencilBuilder builder;
    StencilRecords records;
};

TEST_P(RecordsOnMesh, OnlySidesOfActiveCellsHaveStencils) {
    for (int face = 1; face <= c.mesh.InnerFaceCount(); ++face) {
        const FaceSide side = c.link.Side(face);
        const bool leftLive = side == FaceSide::Both || side == FaceSide::DonorIsSecond;
        const bool rightLive = side == FaceSide::Both || side == FaceSide::DonorIsFirst;
        ASSERT_EQ(IsEmpty(records.gv.faceDataLeft[face]), !leftLive) << "face " << face;
        ASSERT_EQ(IsEmpty(records.gv.faceDataRight[face]), !rightLive) << "face " << face;
    }
}

TEST_P(RecordsOnMesh, BothSidesOfARegularFaceShareTheirArrays) {
    for (int face = 1; face <= c.mesh.InnerFaceCount(); ++face) {
        if (c.link.Side(face) == FaceSide::Both) {
            ASSERT_EQ(records.gv.faceDataLeft[face].idNormal,
                      records.gv.faceDataRight[face].idNormal);
            ASSERT_TRUE(records.gv.faceDataRight[face].linked);
        }
    }
}

TEST_P(RecordsOnMesh, SymmetryRecordsAreEmpty) {
    for (int face = 1; face <= c.mesh.FaceCount(Boundary::Symmetry); ++face) {
        ASSERT_TRUE(IsEmpty(records.gv.faceDataSymm[face]));
    }
}

TEST_P(RecordsOnMesh, CellPairsOfTheToolboxHoldTheDonors) {
    for (int face = 1; face <= c.mesh.InnerFaceCount(); ++face) {
        ASSERT_EQ(records.gv.Ce23[0][face], c.link.First(face));
        ASSERT_EQ(records.gv.Ce23[1][face], c.link.Second(face));
    }
}

TEST_P(RecordsOnMesh, ReplacedFarPointsEqualNewOnes) {
    records.SetFarPoint(FarPoint::Quick);
    const StencilRecords fresh(builder, c.objects, FarPoint::Quick);

    for (int face = 1; face <= c.mesh.InnerFaceCount(); ++face) {
        for (const auto& [changed, made] :
             {std::pair(&records.gv.faceDataLeft[face], &fresh.gv.faceDataLeft[face]),
              std::pair(&records.gv.faceDataRight[face], &fresh.gv.faceDataRight[face])}) {
            ASSERT_EQ(changed->idFarLeft[0], made->idFarLeft[0]);
            for (int j = 1; j <= made->idFarLeft[0]; ++j) {
                ASSERT_EQ(changed->idFarLeft[j], made->idFarLeft[j]);
                ASSERT_EQ(changed->coefFarLeft[j], made->coefFarLeft[j]);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Meshes, RecordsOnMesh, testing::Values(boxPrisms, oversetPair), MeshName);

}  // namespace
