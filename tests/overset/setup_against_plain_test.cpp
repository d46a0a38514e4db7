#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "overset/kd_tree.h"
#include "overset/overset_mesh.h"
#include "overset/overset_mesh_impl.h"
#include "plain/plain_overset.h"
#include "tests/overset/cutting.h"
#include "tests/overset/scatter_host.h"
#include "tests/support/output_capture.h"

namespace {

constexpr Scatter allScatters[] = {Scatter::Uniform, Scatter::Lattice, Scatter::Rows,
                                   Scatter::Diagonal, Scatter::NotFinite};

/// The plain set-up, and the lines that the set-up of the toolbox must print.
struct Expected {
    Expected(ScatterHost& host, int layer) : overset(data) {
        data.getKvx3dGV(&host.gv, &host.fvm);
        data.getKvx3dData();
        const OutputCapture silent;
        data.OversetGridsInfoSetting();
        overset.CutOutside(layer);
        nOutside = data.NNonActiveCell;
        overset.CutOverlap(layer);
        overset.BuildDonorTrees();
    }

    std::string Lines() {
        int nWallsWithoutGrid = 0;
        for (int w = 1; w <= data.NWall; ++w) {
            nWallsWithoutGrid += data.wallBCGroup[w] == 0 && HasNoGrid(data.CWall23[w]) ? 1 : 0;
        }
        int nCellsWithoutGrid = 0;
        for (int c = 1; c <= data.Nc; ++c) {
            nCellsWithoutGrid += HasNoGrid(c) ? 1 : 0;
        }
        std::ostringstream lines;
        lines << "Step 1: Link Kelvex FVM Mesh Data.\nStep 2: Overset Mesh Data Initial Setting.\n"
              << Warnings(2 * nWallsWithoutGrid) << "Step 3: Outside Domain Cutting.\n"
              << Warnings(nCellsWithoutGrid);
        if (nOutside == 0) {
            lines << "\t  No Compoenet Cell Ouside Domain.\n";
        } else {
            lines << "\t  Non Active Cell Number = " << nOutside << '\n';
        }
        lines << "Step 4: Overlap Region Cutting.\n"
              << Warnings(nCellsWithoutGrid)
              << "\t  Non Active Cell Number = " << data.NNonActiveCell
              << "\nStep 5: Build Tree for Search Neighbor.\n";
        return lines.str();
    }

    bool HasNoGrid(int cell) const { return data.cavityToGrid[data.cavityId[cell]] == 0; }

    static std::string Warnings(int n) {
        std::string lines;
        for (int i = 0; i < n; ++i) {
            lines += "Warning: Can not get the overset grid state.\n";
        }
        return lines;
    }

    KVX_ART_OVERSET_GRID_DATA data;
    plain::Overset overset;
    int nOutside = 0;
};

bool SameCells(const KVX_ART_OVERSET_GRID_DATA& a, const KVX_ART_OVERSET_GRID_DATA& b) {
    return a.NNonActiveCell == b.NNonActiveCell &&
           std::equal(a.cellState + 1, a.cellState + 1 + a.Nc, b.cellState + 1);
}

bool SameBits(double a, double b) {
    return a == b || (a != a && b != b);
}

/// True if the trees are equal node for node and in their boxes.
bool SameTree(const KVX_ART_KDtree& tree, const plain::KdTree& expected) {
    if ((tree.tree->root == nullptr) != (expected.root == nullptr)) {
        return false;
    }
    std::vector<std::pair<const KDtreeNode*, const plain::KdTree::Node*>> open;
    if (expected.root) {
        open.push_back({tree.tree->root, expected.root});
    }
    while (!open.empty()) {
        const auto [node, other] = open.back();
        open.pop_back();
        if (*node->data != other->id || node->dir != other->dir ||
            !std::equal(node->pos, node->pos + 3, other->pos, SameBits) ||
            (node->left == nullptr) != (other->left == nullptr) ||
            (node->right == nullptr) != (other->right == nullptr)) {
            return false;
        }
        if (node->left) {
            open.push_back({node->left, other->left});
        }
        if (node->right) {
            open.push_back({node->right, other->right});
        }
    }
    const KDtreeRect* rect = tree.tree->rect;
    return !expected.root || (std::equal(rect->min, rect->min + 3, expected.min, SameBits) &&
                              std::equal(rect->max, rect->max + 3, expected.max, SameBits));
}

/// Compares the donors of up to 200 inner faces and 200 wall faces whose search ends within 15
/// tries.
/// @return number of donors compared
int CompareDonors(CKVXOversetMesh& mesh, const Expected& expected) {
    int nCompared = 0;
    for (int face = 1; face <= std::min(expected.data.Ne, 200); ++face) {
        const int donor = expected.overset.InnerDonor(face, 15);
        if (donor > 0) {
            EXPECT_EQ(mesh.GetOversetInnerNeighbor(face), donor) << "face " << face;
            ++nCompared;
        }
    }
    for (int face = 1; face <= std::min(expected.data.NWall, 200); ++face) {
        const int donor = expected.overset.WallDonor(face, 15);
        if (donor > 0) {
            EXPECT_EQ(mesh.GetOversetWallNeighbor(face), donor) << "wall face " << face;
            ++nCompared;
        }
    }
    return nCompared;
}

struct Tally {
    int nCases = 0;
    int nOutside = 0;  ///< cases with cells cut at the domain's walls
    int nOverlap = 0;  ///< cases with cells cut under the component
    int nDonors = 0;
};

/// Compares one whole set-up with the plain one.
void CompareSetup(Scatter scatter, int nCells, unsigned seed, Tally& tally) {
    ScatterHost host(scatter, nCells, seed);
    Expected expected(host, 2);
    CKVXOversetMesh mesh;
    std::string printed;
    {
        const OutputCapture output;
        mesh.SetFVM(&host.gv, &host.fvm);
        printed = output.Out();
    }
    EXPECT_EQ(printed, expected.Lines());
    EXPECT_TRUE(SameCells(*mesh.impl->gridData, expected.data));
    EXPECT_TRUE(SameTree(*mesh.impl->backgroundTree, expected.overset.backgroundTree));
    EXPECT_TRUE(SameTree(*mesh.impl->componentTree, expected.overset.componentTree));
    tally.nDonors += CompareDonors(mesh, expected);
    ++tally.nCases;
    tally.nOutside += expected.nOutside > 0 ? 1 : 0;
    tally.nOverlap += expected.data.NNonActiveCell > expected.nOutside ? 1 : 0;
    delete mesh.impl->gridData;
}

class SetupAgainstPlain : public testing::TestWithParam<Scatter> {
protected:
    /// Expects that the cases differed enough for the comparison to have a meaning.
    static void ExpectVariety(const Tally& tally) {
        EXPECT_GT(tally.nOutside, tally.nCases / 10);
        EXPECT_LT(tally.nOutside, tally.nCases);
        EXPECT_GT(tally.nOverlap, tally.nCases / 10);
        EXPECT_GT(tally.nDonors, tally.nCases);
    }
};

TEST_P(SetupAgainstPlain, SmallHostsHaveTheSameCutsAndDonors) {
    Tally tally;
    for (unsigned seed = 1; seed <= 1000; ++seed) {
        CompareSetup(GetParam(), 4 + static_cast<int>(seed % 60), seed, tally);
        ASSERT_FALSE(HasFailure()) << "seed " << seed;
    }
    ExpectVariety(tally);
}

TEST_P(SetupAgainstPlain, LargerHostsHaveTheSameCutsAndDonors) {
    Tally tally;
    for (unsigned seed = 1; seed <= 12; ++seed) {
        CompareSetup(GetParam(), 1500 + 200 * static_cast<int>(seed), seed, tally);
        ASSERT_FALSE(HasFailure()) << "seed " << seed;
    }
}

TEST_P(SetupAgainstPlain, EveryMarginCutsTheSameCells) {
    for (unsigned seed = 1; seed <= 1000; ++seed) {
        const int layer = static_cast<int>(seed % 6) - 1;
        ScatterHost host(GetParam(), 4 + static_cast<int>(seed % 50), seed);
        Expected expected(host, layer);
        const OutputCapture silent;
        Cutting<ScatterHost> cutting(host);

        cutting.holes.OutsideDomainCutting(layer);
        cutting.holes.OverlapRegionCutting(layer);

        ASSERT_EQ(cutting.holes.outsideCellsCut, expected.nOutside > 0) << "seed " << seed;
        ASSERT_TRUE(SameCells(cutting.data, expected.data)) << "seed " << seed;
    }
}

TEST(SetupAgainstPlainMesh, ACellWithANaNCenterStaysBetweenNeighborsThatAreCutTogether) {
    BoxHost host = BoxHost(24, 24, 2).WithComponentGrid(18, 18, 2, {3, 3, 0}, {18, 18, 2},
                                                        sideZMin | sideZMax);
    const OutputCapture silent;
    const int lost = 24 * 5 + 12;  // in the middle of a row under the component
    Cutting<BoxHost> before(host);
    before.holes.OverlapRegionCutting(2);
    ASSERT_EQ(before.data.cellState[lost], 1);
    host.fvm.yc[lost] = std::nan("");

    Cutting<BoxHost> cutting(host);
    cutting.holes.OverlapRegionCutting(2);

    EXPECT_EQ(cutting.data.cellState[lost], 2);
    EXPECT_EQ(cutting.data.NNonActiveCell, before.data.NNonActiveCell - 1);
}

std::string NameOf(const testing::TestParamInfo<Scatter>& scatter) {
    const char* const names[] = {"Uniform", "Lattice", "Rows", "Diagonal", "NotFinite"};
    return names[static_cast<int>(scatter.param)];
}

INSTANTIATE_TEST_SUITE_P(Scatters, SetupAgainstPlain, testing::ValuesIn(allScatters), NameOf);

}  // namespace
