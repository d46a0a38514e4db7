#include "reference_host/cases/case_options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace {

using host::CaseOptions;
using host::MeshParameters;
using testing::ElementsAre;
using testing::ThrowsMessage;

/// Options of a small case.
struct Example {
    std::string meshFile;
    MeshParameters parameters;
    int steps = 3;
    bool check = false;
    CaseOptions options{meshFile,
                        parameters,
                        {host::IntegerOption({"solver.steps", "--steps", "steps"}, steps,
                                             host::Range::Between(1, 9)),
                         host::FlagOption({"check", "--check", "check"}, check)}};
};

TEST(OptionName, HasATableBeforeTheDot) {
    EXPECT_EQ(host::TableOf("solver.steps"), "solver");
    EXPECT_EQ(host::KeyOf("solver.steps"), "steps");
    EXPECT_EQ(host::TableOf("check"), "");
    EXPECT_EQ(host::KeyOf("check"), "check");
}

TEST(CaseOptions, AlwaysHaveMeshAndParameters) {
    const Example example;

    EXPECT_EQ(example.options.List().front().name, "mesh.file");
    EXPECT_THAT(example.options.TableNames(), ElementsAre("mesh", "parameters", "solver"));
}

TEST(CaseOptions, AreFoundByNameAndByShortForm) {
    const Example example;

    ASSERT_NE(example.options.Find("solver.steps"), nullptr);
    EXPECT_EQ(example.options.FindShortForm("--steps"), example.options.Find("solver.steps"));
    EXPECT_EQ(example.options.Find("--steps"), nullptr);
    EXPECT_EQ(example.options.Find("steps"), nullptr);
}

TEST(CaseOptions, RememberWhatWasGiven) {
    Example example;
    EXPECT_FALSE(example.options.IsGiven("solver.steps"));

    example.options.Set("solver.steps", {"5"}, "--steps");
    example.options.SetParameter("n", 10, "--set n=10");

    EXPECT_EQ(example.steps, 5);
    EXPECT_EQ(example.options.Find("solver.steps")->shown, "5");
    EXPECT_EQ(example.parameters, (MeshParameters{{"n", 10}}));
    EXPECT_TRUE(example.options.IsGiven("solver.steps"));
    EXPECT_TRUE(example.options.IsGiven("parameters.n"));
    EXPECT_FALSE(example.options.IsGiven("parameters.m"));
}

TEST(CaseOptions, BeginMessagesWithThePlaceOfTheValue) {
    Example example;

    EXPECT_THAT([&] { example.options.Set("solver.steps", {"0"}, "a.toml:3: solver.steps"); },
                ThrowsMessage<std::runtime_error>("a.toml:3: solver.steps must be at least 1, "
                                                  "not 0"));
    EXPECT_THAT([&] { example.options.Set("solver.steps", {}, "--steps"); },
                ThrowsMessage<std::runtime_error>("--steps must have at least one value"));
    EXPECT_FALSE(example.options.IsGiven("solver.steps"));
}

TEST(CaseOptions, RefuseAParameterThatTheCaseSets) {
    Example example;
    EXPECT_NO_THROW(example.options.RefuseParameter("n", "solver.steps"));

    example.options.SetParameter("n", 10, "--set n=10");

    EXPECT_THAT([&] { example.options.RefuseParameter("n", "solver.steps"); },
                ThrowsMessage<std::runtime_error>(
                    "--set n=10: this case sets the parameter n from solver.steps (--steps)"));
}

TEST(CaseOptions, AreCompleteOnlyWithAMesh) {
    Example example;
    EXPECT_THAT([&] { example.options.Complete("a.toml"); },
                ThrowsMessage<std::runtime_error>(
                    "a.toml: a mesh is required: set mesh.file (--mesh) to a .geo or .msh file"));

    example.options.Set("mesh.file", {"none.geo"}, "--mesh");

    EXPECT_NO_THROW(example.options.Complete("a.toml"));
}

TEST(CaseOptions, SettleAfterTheLastValue) {
    Example example;
    example.options.settle = [&](const CaseOptions& given) {
        example.check = given.IsGiven("solver.steps");
    };
    example.options.Set("mesh.file", {"none.geo"}, "--mesh");
    example.options.Set("solver.steps", {"5"}, "--steps");

    example.options.Complete("");

    EXPECT_TRUE(example.check);
}

TEST(CaseOptions, TakeMeshAndParametersOfAnotherCase) {
    Example from;
    from.options.Set("mesh.file", {"b.geo"}, "--mesh");
    from.options.SetParameter("n", 10, "--set n=10");
    from.options.Set("solver.steps", {"5"}, "--steps");
    Example to;

    to.options.TakeMesh(from.options);

    EXPECT_EQ(to.meshFile, "b.geo");
    EXPECT_EQ(to.options.Find("mesh.file")->shown, "b.geo");
    EXPECT_EQ(to.parameters, (MeshParameters{{"n", 10}}));
    EXPECT_TRUE(to.options.IsGiven("parameters.n"));
    EXPECT_EQ(to.steps, 3);
    EXPECT_FALSE(to.options.IsGiven("solver.steps"));
}

}  // namespace
