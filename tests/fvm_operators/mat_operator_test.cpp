#include "fvm_operators/mat_operator.h"

#include "tests/fvm_operators/operator_host.h"
#include "tests/support/private_access.h"
#include "tests/support/undestroyed.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <stdexcept>
#include <string>
#include <type_traits>

using KVX_ART_FVM::CKVX_ART_MatOperator;

KVX3D_EXPOSE(ConstructorProcedure, &CKVX_ART_MatOperator::DefaultConstructorProcedure,
             void (CKVX_ART_MatOperator::*)(CKVX_ART_SparseMatrix*, CKVX_ACMT_GV*));

namespace {

constexpr const char* noMesh =
    ">> <ART> MatrixOperatorError: You must put valied Kelvex3D Flow global variable.";
constexpr const char* noMatrix =
    ">> <ART> MatrixOperatorError: You must put valied ART sparse matrix.";

std::string MessageOf(CKVX_ART_SparseMatrix* matrix, CKVX_ACMT_GV* gv) {
    try {
        CKVX_ART_MatOperator op(matrix, gv);
        return "no exception";
    } catch (const MatrixOperatorException& e) {
        return e.what();
    }
}

TEST(OperatorConstruction, NullMeshAndNullMatrixReportTheMesh) {
    EXPECT_EQ(MessageOf(nullptr, nullptr), noMesh);
}

TEST(OperatorConstruction, NullMeshIsReported) {
    CKVX_ART_SparseMatrix A(1);

    EXPECT_EQ(MessageOf(&A, nullptr), noMesh);
}

TEST(OperatorConstruction, NullMatrixIsReported) {
    CKVX_ACMT_GV gv;

    EXPECT_EQ(MessageOf(nullptr, &gv), noMatrix);
}

TEST(OperatorConstruction, TheExceptionIsARuntimeErrorUnderTwoNames) {
    EXPECT_TRUE((std::is_base_of_v<std::runtime_error, MatrixOperatorException>));
    EXPECT_TRUE((std::is_same_v<MatrixOperatorException, KVX_ART_FVM::MatrixOperatorException>));
    EXPECT_THROW(CKVX_ART_MatOperator(nullptr, nullptr), std::runtime_error);
}

TEST(OperatorConstruction, StoresBothLinksAndChangesNeitherObject) {
    CKVX_ACMT_GV gv;
    CKVX_ART_SparseMatrix A(2);

    CKVX_ART_MatOperator op(&A, &gv);

    EXPECT_EQ(op.artGv, &gv);
    EXPECT_EQ(op.sparseMatrix, &A);
    EXPECT_FALSE(A.compressed);
}

TEST(OperatorConstruction, MembersAreOneVirtualTablePointerThenMeshThenMatrix) {
    CKVX_ACMT_GV gv;
    CKVX_ART_SparseMatrix A(1);
    CKVX_ART_MatOperator op(&A, &gv);

    EXPECT_EQ(reinterpret_cast<char*>(&op.artGv) - reinterpret_cast<char*>(&op),
              static_cast<std::ptrdiff_t>(sizeof(void*)));
    EXPECT_EQ(reinterpret_cast<char*>(&op.sparseMatrix) - reinterpret_cast<char*>(&op.artGv),
              static_cast<std::ptrdiff_t>(sizeof(void*)));
    EXPECT_EQ(sizeof(op), 3 * sizeof(void*));
    EXPECT_TRUE(std::has_virtual_destructor_v<CKVX_ART_MatOperator>);
}

TEST(OperatorConstruction, CopiesWorkOnTheSameMatrixAndMesh) {
    CKVX_ACMT_GV gv;
    CKVX_ACMT_GV otherGv;
    CKVX_ART_SparseMatrix A(1);
    CKVX_ART_SparseMatrix otherA(1);
    CKVX_ART_MatOperator op(&A, &gv);
    CKVX_ART_MatOperator assigned(&otherA, &otherGv);

    CKVX_ART_MatOperator copy(op);
    assigned = op;

    EXPECT_EQ(copy.artGv, &gv);
    EXPECT_EQ(copy.sparseMatrix, &A);
    EXPECT_EQ(assigned.artGv, &gv);
    EXPECT_EQ(assigned.sparseMatrix, &A);
}

TEST(OperatorConstruction, DestructionReleasesNeitherMatrixNorMesh) {
    OperatorHost host(2, {{1, 2}});
    CKVX_ART_SparseMatrix A(2);
    A.AddElementValue(1, 1, 3.0);
    { const CKVX_ART_MatOperator op(&A, &host.gv); }

    EXPECT_EQ(ValueAt(A, 1, 1), 3.0);
    EXPECT_EQ(host.gv.Ce23[1][1], 2);
}

/// Makes the protected tests of the links callable.
class LinkProbe : public CKVX_ART_MatOperator {
public:
    using CKVX_ART_MatOperator::CKVX_ART_MatOperator;
    using CKVX_ART_MatOperator::isARTGv;
    using CKVX_ART_MatOperator::isARTSMat;
};

TEST(OperatorConstruction, ADestroyedOperatorHasNoLinks) {
    CKVX_ACMT_GV gv;
    CKVX_ART_SparseMatrix A(2);
    Undestroyed<CKVX_ART_MatOperator> op(&A, &gv);
    const void* links[2] = {};

    op->~CKVX_ART_MatOperator();

    std::memcpy(links, op.storage + sizeof(void*),
                sizeof(links));  // after the virtual table pointer
    EXPECT_EQ(links[0], nullptr);
    EXPECT_EQ(links[1], nullptr);
}

TEST(OperatorLinks, EachLinkIsTestedSeparately) {
    CKVX_ACMT_GV gv;
    CKVX_ART_SparseMatrix A(1);
    LinkProbe op(&A, &gv);
    EXPECT_TRUE(op.isARTGv());
    EXPECT_TRUE(op.isARTSMat());

    op.artGv = nullptr;
    EXPECT_FALSE(op.isARTGv());
    EXPECT_TRUE(op.isARTSMat());

    op.artGv = &gv;
    op.sparseMatrix = nullptr;
    EXPECT_TRUE(op.isARTGv());
    EXPECT_FALSE(op.isARTSMat());
}

TEST(OperatorLinks, BothAreStoredBeforeAMissingOneIsReported) {
    CKVX_ACMT_GV gv;
    CKVX_ART_SparseMatrix A(1);
    CKVX_ART_SparseMatrix other(1);
    CKVX_ART_MatOperator op(&A, &gv);

    EXPECT_THROW((op.*MemberOf(ConstructorProcedure()))(&other, nullptr), MatrixOperatorException);
    EXPECT_EQ(op.sparseMatrix, &other);
    EXPECT_EQ(op.artGv, nullptr);

    EXPECT_THROW((op.*MemberOf(ConstructorProcedure()))(nullptr, &gv), MatrixOperatorException);
    EXPECT_EQ(op.sparseMatrix, nullptr);
    EXPECT_EQ(op.artGv, &gv);
}

/// Every operator on one small mesh: two inner faces and one face of each boundary kind. Every
/// stencil has one term, on the cell of the row; all properties are 2, all fluxes 1.
class EveryOperator : public testing::TestWithParam<NamedOperator> {
protected:
    EveryOperator() : host(3, {{1, 2}, {2, 3}}, {{{1}, {3}, {2}, {2}}}) {
        for (int i = 1; i <= 2; ++i) {
            for (Pair pair : allPairs) {
                SetStencil(host.Left(i), pair, {{host.gv.Ce23[0][i], 0.5}});
                SetStencil(host.Right(i), pair, {{host.gv.Ce23[1][i], 0.25}});
            }
            host.SetFlux(i, 1.0);
            for (auto* property :
                 {host.gv.faceMu, host.gv.faceK, host.gv.faceCp, host.gv.faceRho}) {
                property->left[i] = property->right[i] = 2.0;
            }
        }
        for (Kind kind : allKinds) {
            for (Pair pair : {Pair::Normal, Pair::Left, Pair::FarLeft}) {
                SetStencil(host.Record(kind, 1), pair, {{host.Ghost(kind, 1), 0.125}});
            }
            host.Flux(kind, 1) = 1.0;
        }
        for (std::vector<double>* property : {&host.mu, &host.cp, &host.cellRho, &host.cellK}) {
            property->assign(property->size(), 2.0);
        }
    }

    bool Run(CKVX_ART_SparseMatrix& A) {
        CKVX_ART_MatOperator op = host.Operator(A);
        return GetParam().run(op, 1.0, &host.flux);
    }

    bool WalksBoundaries() const { return std::string(GetParam().name) != "Combined"; }

    OperatorHost host;
};

TEST_P(EveryOperator, ReturnsTrue) {
    CKVX_ART_SparseMatrix A(3, host.gv.NcAll);

    EXPECT_TRUE(Run(A));
}

TEST_P(EveryOperator, TwoCallsAddTwice) {
    CKVX_ART_SparseMatrix A(3, host.gv.NcAll);
    Run(A);
    const std::vector<double> once(A.Aa, A.Aa + A.Ia[4]);

    Run(A);

    ASSERT_EQ(A.Ia[4], static_cast<int>(once.size()));
    for (int k = 1; k < A.Ia[4]; ++k) {
        EXPECT_EQ(A.Aa[k], 2 * once[k]) << "position " << k;
    }
}

TEST_P(EveryOperator, AddsToTheValuesInTheMatrix) {
    CKVX_ART_SparseMatrix A(3, host.gv.NcAll);
    CKVX_ART_SparseMatrix B(3, host.gv.NcAll);
    Run(A);
    B.AddElementValue(1, 1, 64.0);

    Run(B);

    EXPECT_EQ(ValueAt(B, 1, 1), ValueAt(A, 1, 1) + 64.0);
}

TEST_P(EveryOperator, WithoutInnerFacesTheBoundaryLoopsStillRun) {
    CKVX_ART_SparseMatrix A(3, host.gv.NcAll);
    host.gv.Ne = 0;

    EXPECT_TRUE(Run(A));

    EXPECT_EQ(EntriesOf(A) > 0, WalksBoundaries());
}

TEST_P(EveryOperator, WithoutBoundaryFacesTheirArraysAreNotRead) {
    CKVX_ART_SparseMatrix A(3);
    CKVX_ACMT_GV& gv = host.gv;
    gv.useBoundaryFaces = false;
    for (int** table : {&gv.CInlet23, &gv.COutlet23, &gv.CWall23, &gv.CSymm23, &gv.idInlet,
                        &gv.idOutlet, &gv.idWall, &gv.idSymm}) {
        *table = nullptr;
    }
    gv.mu = gv.cp = nullptr;
    host.globals.cellK = host.globals.cellRho = nullptr;

    EXPECT_TRUE(Run(A));

    EXPECT_GT(EntriesOf(A), 0);
    for (int k = 1; k < A.Ia[4]; ++k) {
        EXPECT_LE(A.Ja[k], 3) << "is a ghost column";
    }
}

TEST_P(EveryOperator, PartitionAndExtraRecordsAreNotRead) {
    CKVX_ART_SparseMatrix A(3, host.gv.NcAll);
    CKVX_ART_SparseMatrix B(3, host.gv.NcAll);
    Run(A);
    host.gv.NPart = 5;

    EXPECT_TRUE(Run(B));

    EXPECT_EQ(EntriesOf(B), EntriesOf(A));
}

TEST_P(EveryOperator, AGhostColumnOutsideTheMatrixThrowsAndEarlierAdditionsRemain) {
    CKVX_ART_SparseMatrix A(3, 3);
    CKVX_ART_SparseMatrix inner(3, 3);
    host.Flux(Inlet, 1) = -1.0;  // inflow, so that every scheme uses the ghost cell

    if (WalksBoundaries()) {
        EXPECT_THROW(Run(A), InvalidDimensionsException);
    } else {
        EXPECT_TRUE(Run(A));
    }

    host.gv.useBoundaryFaces = false;
    Run(inner);
    ASSERT_EQ(EntriesOf(A), EntriesOf(inner));
    ASSERT_GT(EntriesOf(A), 0);
    for (int k = 1; k < A.Ia[4]; ++k) {
        EXPECT_EQ(A.Ja[k], inner.Ja[k]);
        EXPECT_EQ(A.Aa[k], inner.Aa[k]);
    }
}

TEST_P(EveryOperator, EmptyAndNegativeCountsAddNothing) {
    CKVX_ART_SparseMatrix A(3, host.gv.NcAll);
    for (int i = 1; i <= 2; ++i) {
        for (Pair pair : allPairs) {
            PairOf(host.Left(i), pair).id[0] = 0;
            PairOf(host.Right(i), pair).id[0] = -1;
        }
    }
    for (Kind kind : allKinds) {
        for (Pair pair : {Pair::Normal, Pair::Left, Pair::FarLeft}) {
            PairOf(host.Record(kind, 1), pair).id[0] = 0;
        }
    }

    EXPECT_TRUE(Run(A));

    // What remains are additions for cells: ghosts (CD), outflow diagonals (Hybrid), upstream
    // cells.
    const std::map<std::string, int> cellAdds = {
        {"SwitchedOff", 4}, {"CD", 4}, {"Hybrid", 3}, {"CellUpwind", 5}, {"Combined", 4}};
    const auto found = cellAdds.find(GetParam().name);
    EXPECT_EQ(EntriesOf(A), found == cellAdds.end() ? 0 : found->second);
}

TEST_P(EveryOperator, CompressesAStaleMatrixAtTheFirstAddition) {
    CKVX_ART_SparseMatrix A(3, host.gv.NcAll);
    A.AddElementValue(3, 1, 7.0);
    A.AddIndex(3, 1);

    Run(A);

    EXPECT_TRUE(A.compressed);
    EXPECT_EQ(ValueAt(A, 3, 1), 0.0);
}

INSTANTIATE_TEST_SUITE_P(Frame, EveryOperator, testing::ValuesIn(AllOperators()), NameOf);

}  // namespace
