#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "reference_host/cases/case_cavity.h"
#include "reference_host/cases/case_cylinder.h"
#include "reference_host/cases/case_dump.h"
#include "reference_host/cases/case_heat.h"
#include "reference_host/cases/case_mms.h"
#include "reference_host/cases/case_nonmatching.h"
#include "reference_host/cases/case_sphere.h"
#include "tests/reference_host/app/read_command.h"
#include "tests/support/temp_directory.h"

namespace {

using host::Scheme;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

std::string Shipped(const std::string& name) {
    return (std::filesystem::path(KVX3D_TEST_CASE_DIR) / name).string();
}

TEST(ShippedCases, GiveTheValuesThatTheyState) {
    EXPECT_EQ(ReadAs<host::HeatCase>({Shipped("heat.toml")}).steps, 12);

    const auto cylinder = ReadAs<host::CylinderCase>({Shipped("cylinder.toml")});
    EXPECT_EQ(cylinder.parameters, (host::MeshParameters{{"n", 10}}));
    EXPECT_TRUE(cylinder.check);

    const auto fine = ReadAs<host::CylinderCase>({Shipped("cylinder_fine.toml")});
    EXPECT_EQ(fine.parameters, (host::MeshParameters{{"n", 20}}));
    EXPECT_EQ(fine.relaxation, 0.95);

    EXPECT_EQ(ReadAs<host::SphereCase>({Shipped("sphere.toml")}).scheme, Scheme::LinearUpwind);

    const auto cavity = ReadAs<host::CavityCase>({Shipped("cavity.toml")});
    EXPECT_EQ(cavity.parameters, (host::MeshParameters{{"n", 32}, {"kind", 1}, {"b", 0}}));
    EXPECT_EQ(cavity.reynolds, 100.0);
    EXPECT_TRUE(cavity.check);

    const auto mms = ReadAs<host::MmsCase>({Shipped("mms.toml")});
    EXPECT_THAT(mms.kinds, ElementsAre(1, 0));
    EXPECT_THAT(mms.schemes, ElementsAre(Scheme::Diffusion, Scheme::Central, Scheme::LinearUpwind));

    EXPECT_THAT(ReadAs<host::NonmatchingCase>({Shipped("nonmatching.toml")}).m,
                ElementsAre(12, 24));

    EXPECT_THAT(ReadAs<host::DumpCase>({Shipped("dump.toml")}).meshFile,
                EndsWith("channel_cylinder_overset.geo"));
}

TEST(ShippedCases, GiveTheirMeshToDump) {
    const auto run = ReadAs<host::DumpCase>({"dump", Shipped("cylinder_fine.toml")});

    EXPECT_THAT(run.meshFile, EndsWith("channel_cylinder_overset.geo"));
    EXPECT_EQ(run.parameters, (host::MeshParameters{{"n", 20}}));
}

TEST(ShippedCases, BeginWithTheirPurposeTheCommandAndTheExpectedFigure) {
    for (const auto& entry : std::filesystem::directory_iterator(KVX3D_TEST_CASE_DIR)) {
        if (entry.path().extension() != ".toml") {
            continue;
        }
        const std::string text = ReadFile(entry.path());
        EXPECT_THAT(text, StartsWith("# ")) << entry.path();
        EXPECT_THAT(text, HasSubstr("#   reference_host cases/" + entry.path().filename().string()))
            << entry.path();
        EXPECT_THAT(text, HasSubstr("# Expected: ")) << entry.path();
    }
}

}  // namespace
