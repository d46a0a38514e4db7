#include "reference_host/cases/case_cavity.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "reference_host/cases/benchmark_cavity.h"
#include "tests/reference_host/mesh/mesh_files.h"
#include "tests/support/output_capture.h"
#include "tests/support/temp_directory.h"

namespace {

namespace cavity = host::benchmarkcavity;
using host::Vec3;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(CavityProfile, ExtremesLieOnTheParabolaThroughThreePoints) {
    cavity::Profiles profiles;
    for (int k = 0; k <= 10; ++k) {
        const double at = 0.1 * k;
        profiles.u.push_back({at, 2.0 * (at - 0.43) * (at - 0.43) - 0.2});
        profiles.v.push_back(
            {at, at < 0.5 ? 0.3 - (at - 0.22) * (at - 0.22) : (at - 0.81) * (at - 0.81) - 0.4});
    }

    const cavity::Extremes extremes = cavity::ExtremesOf(profiles);

    EXPECT_NEAR(extremes.lowestU.at, 0.43, 1e-12);
    EXPECT_NEAR(extremes.lowestU.velocity, -0.2, 1e-12);
    EXPECT_NEAR(extremes.lowestV.at, 0.81, 1e-12);
    EXPECT_NEAR(extremes.lowestV.velocity, -0.4, 1e-12);
    EXPECT_NEAR(extremes.highestV.at, 0.22, 1e-12);
    EXPECT_NEAR(extremes.highestV.velocity, 0.3, 1e-12);
}

TEST(CavityProfile, IsComparedWithPointsBetweenItsOwn) {
    const cavity::Profile profile = {{0.0, 0.0}, {0.5, 1.0}, {1.0, 0.0}};

    EXPECT_NEAR(cavity::LargestDifference(profile, {{0.25, 0.5}, {0.75, 0.4}}), 0.1, 1e-12);
}

TEST(CavityMesh, OnlyTheLidMoves) {
    EXPECT_EQ(cavity::WallVelocityAt({1.0, 4.0, 0.1}, 4.0), Vec3(1.0, 0.0, 0.0));
    EXPECT_EQ(cavity::WallVelocityAt({4.0, 3.9, 0.1}, 4.0), Vec3(0.0, 0.0, 0.0));
}

TEST(CavityMesh, IsASquareWithoutAnOutletAndOneCellThick) {
    const host::Mesh square = ReadShipped(cavityGeo, {{"n", 8}});
    EXPECT_DOUBLE_EQ(cavity::SideOf(square, "a.geo"), 4.0);
    EXPECT_EQ(cavity::CellsPerSide(square), 8);
    EXPECT_THAT(ErrorOf([] {
                    cavity::SideOf(ReadShipped(boxGeo, {{"n", 5}, {"kind", 1}}), "a");
                }),
                HasSubstr("a: a cavity has no faces in the group \"outlet\""));
    EXPECT_THAT(ErrorOf([] {
                    cavity::SideOf(ReadEdited(cavityGeo, {{"n", 8}},
                                              {{"{side, side, 0, h}", "{side, 5, 0, h}"},
                                               {"{0, side, 0, h}", "{0, 5, 0, h}"}}),
                                   "a");
                }),
                HasSubstr("a: the cavity must be a square with the corner (0, 0), but the mesh "
                          "reaches from (0, 0) to (4, 5)"));
}

TEST(CavityMesh, HasALidThatIsAWall) {
    EXPECT_EQ(ErrorOf([] {
                  const host::Mesh mesh = ReadEdited(
                      cavityGeo, {{"n", 8}},
                      {{"Physical Surface(\"wall\", 13) = {sides[]};",
                        "Physical Surface(\"wall\", 13) = {sides[0], sides[1], sides[3]};"
                        "Physical Surface(\"inlet\", 11) = {sides[2]};"}});
                  cavity::SideOf(mesh, "a");
              }),
              "a: the lid, the side y = 4 of the cavity, has no face in the group \"wall\", and "
              "nothing would move the fluid");
}

TEST(CavityMesh, IsEmptyWithoutACylinder) {
    const auto isEmpty = [](const host::MeshParameters& parameters) {
        return cavity::IsEmpty(ReadShipped(cavityGeo, parameters), 4.0);
    };
    EXPECT_TRUE(isEmpty({{"n", 16}}));
    EXPECT_TRUE(isEmpty({{"n", 16}, {"kind", 1}}));
    EXPECT_FALSE(isEmpty({{"n", 16}, {"b", 0.1}}));
    EXPECT_FALSE(isEmpty({{"n", 32}, {"kind", 1}, {"b", 0.1}}));
}

TEST(CavityLimits, ApplyToEachFigureAlone) {
    const cavity::Extremes good = cavity::PublishedAt(100.0)->extremes;
    const auto limits = cavity::LimitsOf(host::Scheme::LinearUpwind, 100.0, 32);
    ASSERT_TRUE(limits);
    EXPECT_TRUE(cavity::Misses(good, good, *limits).empty());

    cavity::Extremes u = good;
    u.lowestU.velocity *= 1.1;
    EXPECT_THAT(cavity::Misses(u, good, *limits), ElementsAre(HasSubstr("lowest u")));
    cavity::Extremes v = good;
    v.lowestV.velocity *= 0.9;
    EXPECT_THAT(cavity::Misses(v, good, *limits), ElementsAre(HasSubstr("lowest v")));
    cavity::Extremes high = good;
    high.highestV.velocity = std::nan("");
    EXPECT_THAT(cavity::Misses(high, good, *limits), ElementsAre(HasSubstr("highest v")));
}

TEST(CavityLimits, ExistForMeasuredMeshesOnly) {
    EXPECT_FALSE(cavity::LimitsOf(host::Scheme::LinearUpwind, 100.0, 31));
    EXPECT_FALSE(cavity::LimitsOf(host::Scheme::LinearUpwind, 400.0, 32));
    EXPECT_FALSE(cavity::LimitsOf(host::Scheme::Quick, 100.0, 32));
    EXPECT_FALSE(cavity::PublishedAt(400.0));
}

/// A run of the case with what it prints and writes.
class CavityRun {
public:
    explicit CavityRun(const host::MeshParameters& parameters, double reynolds = 100.0) {
        run.parameters = parameters;
        run.reynolds = reynolds;
        run.outputDir = results.Text();
    }

    /// @return the exit code
    int Run() {
        OutputCapture capture;
        const int code = host::RunCavity(run);
        out = capture.Out();
        return code;
    }

    double Figure(const std::string& name) const {
        const std::size_t at = out.rfind("\n  " + name + " ");
        EXPECT_NE(at, std::string::npos) << out;
        return std::stod(out.substr(at + 3 + name.size()));
    }
    std::string File(const std::string& name) const { return ReadFile(results.Path() / name); }

    const TempDirectory results;
    host::CavityCase run;
    std::string out;
};

TEST(CavityFlow, OnAPairIsThatOnOneGrid) {
    CavityRun one({{"n", 20}});
    CavityRun pair({{"n", 20}, {"kind", 1}});

    ASSERT_EQ(one.Run(), 0);
    ASSERT_EQ(pair.Run(), 0);

    // Regression limits; the figures of Ghia et al. are -0.2109, -0.2453 and 0.1753.
    EXPECT_NEAR(one.Figure("lowest u"), -0.2109, 0.01);
    EXPECT_NEAR(one.Figure("lowest v"), -0.2453, 0.01);
    EXPECT_NEAR(one.Figure("highest v"), 0.1753, 0.01);
    EXPECT_NEAR(pair.Figure("lowest u"), one.Figure("lowest u"), 1e-3);
    EXPECT_NEAR(pair.Figure("lowest v"), one.Figure("lowest v"), 1e-3);
    EXPECT_NEAR(pair.Figure("highest v"), one.Figure("highest v"), 1e-3);
    EXPECT_NEAR(pair.Figure("net hole flux"), 0.0, 1e-6);
}

TEST(CavityFlow, WithoutABodyHasProfilesAndNoForces) {
    CavityRun pair({{"n", 16}, {"kind", 1}});
    ASSERT_EQ(pair.Run(), 0);

    EXPECT_EQ(pair.out.find("Cd"), std::string::npos) << pair.out;
    EXPECT_THAT(pair.File("profile_u.csv"), testing::StartsWith("y,u\n0.0000,0\n"));
    EXPECT_THAT(pair.File("profile_u.csv"), testing::EndsWith("1.0000,1\n"));
    EXPECT_THAT(pair.File("profile_v.csv"), testing::StartsWith("x,v\n0.0000,0\n"));
    std::istringstream history(pair.File("history.csv"));
    std::string line;
    std::getline(history, line);
    std::getline(history, line);
    EXPECT_THAT(line, HasSubstr(",,,")) << "two empty coefficients after the mass residual";
    EXPECT_THAT(line, testing::EndsWith(",,,,"));
}

TEST(CavityFlow, WithACylinderHasItsForceOnAPairAndOnOneGrid) {
    // The component is thick enough for the overlap from n = 24 on.
    CavityRun one({{"n", 24}, {"b", 0.1}});
    CavityRun pair({{"n", 24}, {"b", 0.1}, {"kind", 1}});

    ASSERT_EQ(one.Run(), 0);
    ASSERT_EQ(pair.Run(), 0);

    const double cd = pair.Figure("Cd");
    EXPECT_NEAR(cd, one.Figure("Cd"), 0.05 * std::abs(cd));  // regression limit
    for (const char* surface :
         {"Cd, overset boundary", "Cd, hole boundary", "Cd, outer boundary"}) {
        EXPECT_NEAR(pair.Figure(surface), cd, 1e-4 * std::abs(cd)) << surface;
    }
}

TEST(CavityFlow, HasNoLimitsWithACylinder) {
    CavityRun tank({{"n", 32}, {"b", 0.1}});
    tank.run.check = true;

    EXPECT_THAT(ErrorOf([&] { tank.Run(); }), HasSubstr("with a body"));
}

TEST(FullCavityFlow, IsWithinItsLimitsOnOneGridAndOnAPair) {
    for (const double reynolds : {100.0, 1000.0}) {
        for (const double kind : {0.0, 1.0}) {
            CavityRun fine({{"n", 64}, {"kind", kind}}, reynolds);
            fine.run.check = true;
            EXPECT_EQ(fine.Run(), 0) << fine.out;
        }
    }
}

}  // namespace
