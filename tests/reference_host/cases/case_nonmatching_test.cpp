#include "reference_host/cases/case_nonmatching.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "reference_host/mesh/mesh_geometry.h"
#include "reference_host/physics/scalar_solver.h"
#include "tests/reference_host/discretisation/mesh_case.h"
#include "tests/reference_host/mesh/mesh_files.h"
#include "tests/support/output_capture.h"
#include "tests/support/temp_directory.h"

namespace {

using host::BlockPair;
using host::MeshParameters;
using host::NonmatchingCase;
using host::Scheme;
using host::Vec3;
using host::WholeFaces;
using testing::HasSubstr;

constexpr const char* blocksFile = "nonmatching_blocks.geo";
const MeshParameters flat = {{"n", 8}, {"m", 12}};
const MeshParameters deep = {{"n", 3}, {"m", 4}, {"lz", 1}};

/// Which block is not cut, and what the flat mesh has then: 16 faces of block0 and 24 of block1
/// meet in 32 fragments.
struct Variant {
    const char* name;
    WholeFaces whole;
    int outside, cavity;  // interface faces owned by block0 and by block1
    bool outsideStays;    // block0 has the longer list; of equal lists that of block1 stays
};

std::ostream& operator<<(std::ostream& out, const Variant& variant) {
    return out << variant.name;
}

class BlockPairVariant : public testing::TestWithParam<Variant> {
protected:
    TempDirectory results;
};

TEST_P(BlockPairVariant, PreprocessCountsBothListsAndShrinksTheShorter) {
    BlockPair pair(ShippedMesh(blocksFile), flat, GetParam().whole, results.Text());
    const int outside = GetParam().outside;
    const int flagged = outside + GetParam().cavity;
    const int first = pair.mesh.InnerFaceCount() - flagged + 1;
    const std::vector<host::InnerFace> before = pair.mesh.innerFaces;
    EXPECT_EQ(pair.sideCounts, (std::array<int, 2>{outside, GetParam().cavity}));
    std::string out;
    {
        OutputCapture capture;
        pair.Settle();
        out = capture.Out();
    }

    const int ineffective = GetParam().outsideStays ? GetParam().cavity : outside;
    EXPECT_THAT(out,
                HasSubstr("Total Nun-matching Face Number = " + std::to_string(flagged) + "\n"));
    EXPECT_THAT(
        out,
        HasSubstr("Ineffective Non-matching Face Number = " + std::to_string(ineffective) + "\n"));
    for (int i = 1; i <= pair.mesh.InnerFaceCount(); ++i) {
        const bool isOutside = i >= first && i < first + outside;
        const bool shrinks = i >= first && isOutside != GetParam().outsideStays;
        const Vec3 expected = shrinks ? Vec3(before[i].area * 1e-10) : before[i].area;
        ASSERT_EQ(pair.mesh.innerFaces[i].area, expected) << i;
        ASSERT_EQ(pair.objects.fvm.nonmatchingFace[i], 0) << i;
    }
}

TEST_P(BlockPairVariant, CellsAreClosedOnlyAfterThePreprocess) {
    OutputCapture quiet;
    for (const MeshParameters& parameters : {flat, deep}) {
        BlockPair pair(ShippedMesh(blocksFile), parameters, GetParam().whole, results.Text());
        EXPECT_GT(host::LargestGap(pair.mesh), 0.1) << "both sides of the interface count";

        pair.Settle();

        EXPECT_LT(host::LargestGap(pair.mesh), 1e-10);  // remainder of the shrunk areas
    }
}

TEST_P(BlockPairVariant, LinearFieldIsReproducedAcrossTheInterface) {
    OutputCapture quiet;
    for (const MeshParameters& parameters : {flat, deep}) {
        BlockPair pair(ShippedMesh(blocksFile), parameters, GetParam().whole, results.Text());
        pair.Settle();
        const host::AnalyticField linear = host::LinearField({1.3, -0.7, 0.0}, 0.4);
        for (const Scheme scheme :
             {Scheme::Diffusion, Scheme::Central, Scheme::LinearUpwind, Scheme::Quick}) {
            const host::ManufacturedRun run =
                host::SolveManufactured(pair.mesh, pair.objects, pair.link, scheme, linear,
                                        host::Convects(scheme) ? 0.1 : 1.0, {1.0, 0.6, 0.0});
            EXPECT_TRUE(run.solve.Converged());
            EXPECT_EQ(run.storedEntriesGrown, 0);
            EXPECT_LT(host::Errors(pair.mesh, pair.link, run.phi, linear).max, 1e-8)
                << host::Name(scheme);
        }
    }
}

TEST_P(BlockPairVariant, OrderIsTwo) {
    NonmatchingCase run;
    run.meshFile = ShippedMesh(blocksFile);
    run.whole = GetParam().whole;
    run.check = true;
    run.outputDir = results.Text();
    int code = 1;
    std::string out;
    {
        OutputCapture capture;
        code = host::RunNonmatching(run);
        out = capture.Out();
    }

    EXPECT_EQ(code, 0) << out;
    EXPECT_THAT(out, HasSubstr("All figures are within their limits."));
}

INSTANTIATE_TEST_SUITE_P(
    Sides, BlockPairVariant,
    testing::Values(Variant{"BothCut", WholeFaces::None, 32, 32, /*outsideStays=*/false},
                    Variant{"Block0Whole", WholeFaces::Block0, 16, 32, /*outsideStays=*/false},
                    Variant{"Block1Whole", WholeFaces::Block1, 32, 24, /*outsideStays=*/true}),
    CaseName<Variant>);

/// NumberOfCells in block `block` of a picture of the interface.
int CellsOfBlock(const std::filesystem::path& directory, const std::string& moment, int block) {
    const std::string name = "Check_NonmatchingFaceData_" + moment + "Preprocess";
    const std::string text = ReadFile(directory / (name + "_1") /
                                      (name + "_Itr0_T0_P1_B" + std::to_string(block) + ".vtu"));
    const std::string key = "NumberOfCells=\"";
    return std::stoi(text.substr(text.find(key) + key.size()));
}

TEST(InterfacePictures, ShowBothSidesBeforeAndNoneAfter) {
    TempDirectory results;
    BlockPair pair(ShippedMesh(blocksFile), flat, WholeFaces::None, results.Text());
    {
        OutputCapture quiet;
        pair.Settle();
    }

    const int cells = pair.mesh.CellCount();
    // All cells; owners in block1, once per fragment, and their neighbors; the same for block0.
    const std::array<int, 5> before = {cells, 32, 16, 32, 24};
    const std::array<int, 5> after = {cells, 0, 0, 0, 0};
    for (int block = 1; block <= 5; ++block) {
        EXPECT_EQ(CellsOfBlock(results.Path(), "Before", block), before[block - 1]) << block;
        EXPECT_EQ(CellsOfBlock(results.Path(), "After", block), after[block - 1]) << block;
    }
}

TEST(NonmatchingRun, WritesTheSolutionBesideThePictures) {
    TempDirectory results;
    NonmatchingCase run;
    run.meshFile = ShippedMesh(blocksFile);
    run.n = {4};
    run.m = {6};
    run.schemes = {Scheme::Diffusion, Scheme::LinearUpwind};
    run.outputDir = results.Text();
    {
        OutputCapture quiet;
        EXPECT_EQ(host::RunNonmatching(run), 0);
    }

    const std::string pvd =
        ReadFile(results.Path() / "n4_m6" / "solution" / "VTK_Flow_Results.pvd");
    EXPECT_THAT(pvd, HasSubstr("Itr1_"));
    EXPECT_THAT(pvd, HasSubstr("Itr2_"));
    EXPECT_THAT(pvd, testing::Not(HasSubstr("Check_")));
}

TEST(NonmatchingRun, RefusesSizesWithoutAPartner) {
    NonmatchingCase run;
    run.n = {4, 8};
    run.m = {6};

    EXPECT_THAT([&] { host::RunNonmatching(run); },
                testing::ThrowsMessage<std::runtime_error>(
                    HasSubstr("study.n (--n) has 2 values and study.m (--m) has 1")));
}

}  // namespace
