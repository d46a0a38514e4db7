#include "reference_host/link/nonmatching_interface.h"

#include <gtest/gtest.h>

#include <map>

#include "reference_host/mesh/mesh_geometry.h"
#include "tests/reference_host/mesh/mesh_files.h"

namespace {

using host::Fragment;
using host::Mesh;
using host::MeshParameters;
using host::Vec3;
using host::WholeFaces;

constexpr const char* blocksGeo = "nonmatching_blocks.geo";

/// Meshes with the number of fragments that follows from the positions of the edges.
struct Blocks {
    const char* name;
    MeshParameters parameters;
    std::size_t faces0, faces1, fragments;
};

class InterfaceOf : public testing::TestWithParam<Blocks> {};

TEST_P(InterfaceOf, FragmentsAddUpToEveryFaceOfBothSides) {
    const Mesh mesh = ReadShipped(blocksGeo, GetParam().parameters);

    const std::vector<Fragment> fragments = host::CutInterface(mesh);

    ASSERT_EQ(mesh.interfaceFaces[0].size(), GetParam().faces0 + 1);
    ASSERT_EQ(mesh.interfaceFaces[1].size(), GetParam().faces1 + 1);
    EXPECT_EQ(fragments.size(), GetParam().fragments);
    for (int block = 0; block < 2; ++block) {
        std::map<int, Vec3> sums;
        for (const Fragment& fragment : fragments) {
            const Vec3 area = host::GeometryOf(fragment.corners).area;
            ASSERT_GT(area.x(), 0.0) << "from block0 to block1";
            sums.emplace(fragment.face[block], Vec3::Zero()).first->second += area;
        }
        for (int face = 1; face < static_cast<int>(mesh.interfaceFaces[block].size()); ++face) {
            const Vec3 outward = (block == 0 ? 1 : -1) * mesh.interfaceFaces[block][face].area;
            ASSERT_LT((sums[face] - outward).norm(), 1e-13) << "block " << block << " " << face;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Shipped, InterfaceOf,
                         testing::Values(
                             // The interface is 2 high: 16 and 24 faces, whose edges meet 8 times:
                             // 16 + 24 - 8 fragments.
                             Blocks{"EightToTwelve", {{"n", 8}, {"m", 12}}, 16, 24, 32},
                             Blocks{"FiveToSeven", {{"n", 5}, {"m", 7}}, 10, 14, 22},
                             Blocks{"FineToCoarse", {{"n", 9}, {"m", 3}}, 18, 6, 18},
                             Blocks{"Matching", {{"n", 4}, {"m", 4}}, 8, 8, 8},
                             // 8 and 12 faces in y, 4 and 6 in z: 16 by 8 fragments.
                             Blocks{
                                 "ThreeDimensional", {{"n", 4}, {"m", 6}, {"lz", 1}}, 32, 72, 128}),
                         CaseName<Blocks>);

TEST(JoinedInterface, BothSidesBecomeFlaggedFacesWithBlock0First) {
    Mesh mesh = ReadShipped(blocksGeo, {{"n", 8}, {"m", 12}});
    const int before = mesh.InnerFaceCount();

    const std::array<int, 2> counts = host::JoinInterface(mesh, WholeFaces::None);

    EXPECT_EQ(counts, (std::array<int, 2>{32, 32}));
    ASSERT_EQ(mesh.InnerFaceCount(), before + 64);
    for (int i = 1; i <= mesh.InnerFaceCount(); ++i) {
        const host::InnerFace& face = mesh.innerFaces[i];
        ASSERT_EQ(face.nonmatching, i > before) << i;
        if (face.nonmatching) {
            const int block = i <= before + 32 ? 0 : 1;
            EXPECT_EQ(mesh.cavity[face.owner], block);
            EXPECT_EQ(mesh.cavity[face.neighbor], 1 - block);
            EXPECT_NEAR(face.centre.x(), 2.0, 1e-14);
        }
    }
    for (int i = 1; i <= 32; ++i) {
        const host::InnerFace& out = mesh.innerFaces[before + i];
        const host::InnerFace& back = mesh.innerFaces[before + 32 + i];
        EXPECT_EQ(out.area, -back.area);
        EXPECT_EQ(out.owner, back.neighbor);
        EXPECT_EQ(out.neighbor, back.owner);
    }
}

TEST(JoinedInterface, NeighborOfAnUncutFaceIsTheCellThatCoversMost) {
    Mesh mesh = ReadShipped(blocksGeo, {{"n", 4}, {"m", 6}});
    const std::vector<host::BoundaryFace> sides = mesh.interfaceFaces[0];
    const int before = mesh.InnerFaceCount();

    const std::array<int, 2> counts = host::JoinInterface(mesh, WholeFaces::Block0);

    EXPECT_EQ(counts, (std::array<int, 2>{8, 16}));
    for (int i = 1; i <= 8; ++i) {
        const host::InnerFace& face = mesh.innerFaces[before + i];
        EXPECT_EQ(face.owner, sides[i].cell);
        EXPECT_EQ(face.area, sides[i].area);
        // Faces are 1/4 high, cells across 1/6: one neighbor covers 1/6 of height, the other 1/12.
        const double distance =
            std::abs(mesh.cellCentre[face.neighbor].y() - mesh.cellCentre[face.owner].y());
        EXPECT_NEAR(distance, 1.0 / 24, 1e-12) << i;
    }
}

TEST(JoinedInterface, EitherSideMayStayUncut) {
    Mesh mesh = ReadShipped(blocksGeo, {{"n", 4}, {"m", 6}});

    EXPECT_EQ(host::JoinInterface(mesh, WholeFaces::Block1), (std::array<int, 2>{16, 12}));
}

TEST(InterfaceFaults, NamesAFaceThatIsNotCovered) {
    const Mesh shifted =
        ReadEdited(blocksGeo, {{"n", 4}, {"m", 4}}, {{"{b * l, 0, 0, l", "{b * l, 0.1 * b, 0, l"}});

    const std::string error = ErrorOf([&] { host::CutInterface(shifted); });

    EXPECT_NE(error.find("interface0 face at (2, 0.125, 0.125)"), std::string::npos) << error;
    EXPECT_NE(error.find("covered to 0.6 of its area by block1"), std::string::npos) << error;
}

TEST(InterfaceFaults, BlocksWithAGapDoNotCoverEachOther) {
    const Mesh apart = ReadEdited(blocksGeo, {{"n", 2}, {"m", 2}},
                                  {{"{b * l, 0, 0, l", "{b * (l + 0.1), 0, 0, l"}});

    EXPECT_NE(ErrorOf([&] { host::CutInterface(apart); }).find("covered to 0 of its area"),
              std::string::npos);
}

struct GroupFault {
    const char* name;
    const char* text;
    const char* replacement;
    const char* error;
};

class BlockGroups : public testing::TestWithParam<GroupFault> {};

TEST_P(BlockGroups, AreRefusedInOneLine) {
    const std::string error = ErrorOf([] {
        ReadEdited(blocksGeo, {{"n", 2}, {"m", 2}}, {{GetParam().text, GetParam().replacement}});
    });

    EXPECT_NE(error.find(GetParam().error), std::string::npos) << error;
    EXPECT_EQ(error.find('\n'), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(
    Faults, BlockGroups,
    testing::Values(GroupFault{"OneBlockIsABackground", "\"block1\"", "\"background\"",
                               "\"block0\" and \"block1\" and no other"},
                    GroupFault{"InterfaceOfOverset", "\"block0\"", "\"component1\"",
                               "\"block0\" and \"block1\" and no other"},
                    GroupFault{"InterfaceMissing", "Physical Surface(\"interface1\", 18) = {f[0]};",
                               "side[] += {f[0]};",
                               "group \"interface1\" is missing: put the surfaces of block1"},
                    GroupFault{"InterfaceOfTheOtherBlock",
                               "Physical Surface(\"interface1\", 18) = {f[0]};\n"
                               "    Physical Surface(\"outlet\", 12)     = {f[1]};",
                               "Physical Surface(\"interface0\", 17) += {f[0]};\n"
                               "    Physical Surface(\"interface1\", 18) = {f[1]};",
                               "lies beside block1"}),
    CaseName<GroupFault>);

}  // namespace
