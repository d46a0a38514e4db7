#include "reference_host/app/command_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "reference_host/cases/case_cylinder.h"
#include "reference_host/cases/case_dump.h"
#include "reference_host/cases/case_heat.h"
#include "reference_host/cases/case_mms.h"
#include "reference_host/cases/case_nonmatching.h"
#include "reference_host/cases/case_sphere.h"
#include "tests/reference_host/app/read_command.h"
#include "tests/support/temp_directory.h"

namespace {

using host::CylinderCase;
using host::DumpCase;
using host::HeatCase;
using host::MatrixSolver;
using host::MeshParameters;
using host::MmsCase;
using host::NonmatchingCase;
using host::Scheme;
using host::SphereCase;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

TEST(CommandLine, HeatTakesMeshParametersAndOutput) {
    const auto run = ReadAs<HeatCase>(
        {"heat", "--mesh", "a.geo", "--set", "n=10", "--set", "ro=1.5", "--output", "out"});

    EXPECT_EQ(run.meshFile, "a.geo");
    EXPECT_EQ(run.parameters, (MeshParameters{{"n", 10}, {"ro", 1.5}}));
    EXPECT_EQ(run.outputDir, "out");
}

/// The fields that the two tests below set, each to a value other than its default.
void ExpectEveryFieldSet(const CylinderCase& run) {
    EXPECT_EQ(run.meshFile, "a.geo");
    EXPECT_EQ(run.parameters, (MeshParameters{{"n", 20}}));
    EXPECT_EQ(run.scheme, Scheme::Quick);
    EXPECT_EQ(run.outputDir, "out");
    EXPECT_EQ(run.relaxation, 0.8);
    EXPECT_EQ(run.stepsEvery, 7);
    EXPECT_EQ(run.maxIterations, 300);
    EXPECT_EQ(run.reynolds, 40.0);
    EXPECT_TRUE(run.check);
}

TEST(CommandLine, FullNamesSetTheSameFieldsAsShortForms) {
    const auto run = ReadAs<CylinderCase>(
        {"cylinder", "mesh.file=a.geo", "parameters.n=20", "schemes.transport=quick",
         "output.directory=out", "solver.relaxation=0.8", "output.steps_every=7",
         "solver.iterations=300", "physics.reynolds=40", "check=true"});

    ExpectEveryFieldSet(run);
}

TEST(CommandLine, CylinderTakesShortForms) {
    const auto run =
        ReadAs<CylinderCase>({"cylinder", "--mesh", "a.geo", "--set", "n=20", "--scheme", "quick",
                              "--output", "out", "--relaxation", "0.8", "--steps-every", "7",
                              "--iterations", "300", "--reynolds", "40", "--check"});

    ExpectEveryFieldSet(run);
}

TEST(CommandLine, ShortFormTakesItsValueAfterAnEqualsSign) {
    const auto run = ReadAs<CylinderCase>(
        {"cylinder", "--relaxation=0.8", "--set=n=5", "--check=false", "--output=a=b"});

    EXPECT_EQ(run.relaxation, 0.8);
    EXPECT_EQ(run.parameters, (MeshParameters{{"n", 5}}));
    EXPECT_FALSE(run.check);
    EXPECT_EQ(run.outputDir, "a=b");
}

TEST(CommandLine, LastValueOfAnOptionCounts) {
    const auto run = ReadAs<MmsCase>({"mms", "--n", "5", "study.n=10,20", "--check", "check=false",
                                      "--scheme", "all", "--scheme", "lud"});

    EXPECT_THAT(run.sizes, ElementsAre(10, 20));
    EXPECT_FALSE(run.check);
    EXPECT_THAT(run.schemes, ElementsAre(Scheme::LinearUpwind));
}

TEST(CommandLine, CylinderDefaultsToTheShippedMeshAndLinearUpwind) {
    const auto run = ReadAs<CylinderCase>({"cylinder"});

    EXPECT_THAT(run.meshFile, EndsWith("channel_cylinder_overset.geo"));
    EXPECT_EQ(run.scheme, Scheme::LinearUpwind);
    EXPECT_FALSE(run.relaxation.has_value());
    EXPECT_EQ(run.reynolds, 20.0);
    EXPECT_EQ(run.maxIterations, 2000);
    EXPECT_FALSE(run.check);
}

TEST(CommandLine, SphereHasDefaultsOfItsOwn) {
    const auto run = ReadAs<SphereCase>({"sphere"});

    EXPECT_THAT(run.meshFile, EndsWith("sphere_overset.geo"));
    EXPECT_EQ(run.outputDir, "sphere_results");
    EXPECT_EQ(run.maxIterations, 1000);
}

TEST(CommandLine, MmsTakesListsWithSizesSortedAndUnique) {
    const auto run = ReadAs<MmsCase>(
        {"mms", "--kind", "0", "--n", "20,10,20", "--scheme", "lud,quick", "--check"});

    EXPECT_THAT(run.kinds, ElementsAre(0));
    EXPECT_THAT(run.sizes, ElementsAre(10, 20));
    EXPECT_THAT(run.schemes, ElementsAre(Scheme::LinearUpwind, Scheme::Quick));
    EXPECT_TRUE(run.check);
    EXPECT_FALSE(run.mu.has_value());
}

TEST(CommandLine, MmsDefaultsToDiffusionOnTheSingleBoxAndTheOversetPair) {
    const auto run = ReadAs<MmsCase>({"mms"});

    EXPECT_THAT(run.kinds, ElementsAre(1, 0));
    EXPECT_THAT(run.sizes, ElementsAre(10, 20));
    EXPECT_THAT(run.schemes, ElementsAre(Scheme::Diffusion));
    EXPECT_THAT(run.meshFile, EndsWith("box_annulus_overset.geo"));
}

TEST(CommandLine, MmsOnAnotherMeshSetsAKindOnlyIfItIsGiven) {
    EXPECT_TRUE(ReadAs<MmsCase>({"mms", "--mesh", "a.geo"}).kinds.empty());
    EXPECT_THAT(ReadAs<MmsCase>({"mms", "mesh.file=a.geo", "study.kind=3"}).kinds, ElementsAre(3));
}

TEST(CommandLine, MmsTakesADepth) {
    EXPECT_FALSE(ReadAs<MmsCase>({"mms"}).depth.has_value());
    EXPECT_EQ(ReadAs<MmsCase>({"mms", "--depth", "0.4"}).depth, 0.4);
}

TEST(CommandLine, FlowStudyUsesLinearUpwindUnlessASchemeIsGiven) {
    EXPECT_FALSE(ReadAs<MmsCase>({"mms"}).flow);
    EXPECT_THAT(ReadAs<MmsCase>({"mms", "--flow"}).schemes, ElementsAre(Scheme::LinearUpwind));
    EXPECT_THAT(ReadAs<MmsCase>({"mms", "--flow", "--scheme", "quick"}).schemes,
                ElementsAre(Scheme::Quick));
    EXPECT_EQ(MessageOf({"mms", "--flow", "--scheme", "lud,diffusion"}),
              "schemes.transport (--scheme): a flow has convection, and diffusion has none");
}

TEST(CommandLine, AllSchemesAreEight) {
    EXPECT_EQ(ReadAs<MmsCase>({"mms", "--scheme", "all"}).schemes.size(), 8u);
}

TEST(CommandLine, EveryScalarCaseTakesASolver) {
    EXPECT_EQ(ReadAs<HeatCase>({"heat", "--mesh", "a.geo"}).matrixSolver, MatrixSolver::Bicgstab);
    EXPECT_EQ(ReadAs<HeatCase>({"heat", "--mesh", "a.geo", "--solver", "samg"}).matrixSolver,
              MatrixSolver::Samg);
    EXPECT_EQ(ReadAs<MmsCase>({"mms", "--solver", "samg"}).matrixSolver, MatrixSolver::Samg);
    EXPECT_EQ(ReadAs<NonmatchingCase>({"nonmatching", "--solver", "samg"}).matrixSolver,
              MatrixSolver::Samg);
}

TEST(CommandLine, FlowTakesASolverForEachEquation) {
    const auto plain = ReadAs<SphereCase>({"sphere"});
    EXPECT_EQ(plain.matrixSolver, MatrixSolver::Bicgstab);
    EXPECT_FALSE(plain.pressureSolver.has_value());
    EXPECT_EQ(ReadAs<SphereCase>({"sphere", "--solver", "samg"}).matrixSolver, MatrixSolver::Samg);
    const auto both =
        ReadAs<CylinderCase>({"cylinder", "--solver", "bicgstab", "--pressure-solver", "samg"});
    EXPECT_EQ(both.matrixSolver, MatrixSolver::Bicgstab);
    EXPECT_EQ(both.pressureSolver, MatrixSolver::Samg);
}

TEST(CommandLine, NonmatchingTakesPairsOfSizesInTheirOrder) {
    const auto run = ReadAs<NonmatchingCase>({"nonmatching", "--n", "4,8", "--m", "9,18", "--whole",
                                              "block1", "--set", "lz=1", "--check"});

    EXPECT_THAT(run.n, ElementsAre(4, 8));
    EXPECT_THAT(run.m, ElementsAre(9, 18));
    EXPECT_EQ(run.whole, host::WholeFaces::Block1);
    EXPECT_EQ(run.parameters, (MeshParameters{{"lz", 1}}));
    EXPECT_TRUE(run.check);
}

TEST(CommandLine, NonmatchingDefaultsToTheShippedBlocksWithBothSidesCut) {
    const auto run = ReadAs<NonmatchingCase>({"nonmatching"});

    EXPECT_THAT(run.meshFile, EndsWith("nonmatching_blocks.geo"));
    EXPECT_EQ(run.whole, host::WholeFaces::None);
    EXPECT_EQ(run.n.size(), run.m.size());
}

TEST(CommandLine, DumpTakesAMeshAndItsParameters) {
    const auto run = ReadAs<DumpCase>({"dump", "--mesh", "a.geo", "--set", "n=5"});

    EXPECT_EQ(run.meshFile, "a.geo");
    EXPECT_EQ(run.parameters, (MeshParameters{{"n", 5}}));
}

TEST(CommandLine, ParametersMustExistInTheGeometry) {
    const TempDirectory directory;
    const std::string mesh = directory.Text() + "/box.geo";
    WriteFile(mesh, "DefineConstant[ n = {1, Name \"n\"} ];\n");

    EXPECT_EQ(MessageOf({"heat", "--mesh", mesh, "--set", "n=2"}), "accepted");
    EXPECT_EQ(MessageOf({"heat", "--mesh", mesh, "--set", "wings=2"}),
              "--set wings=2: box.geo has no parameter wings with a Name in its DefineConstant");
    EXPECT_EQ(MessageOf({"heat", "parameters.wings=2", "--mesh", mesh}),
              "parameters.wings: box.geo has no parameter wings with a Name in its DefineConstant");
}

TEST(CommandLine, SetNamesItsFormInTheMessage) {
    for (const char* bad : {"n", "n=", "=3", "n=ten", "n=10x", ""}) {
        EXPECT_EQ(MessageOf({"heat", "--mesh", "a.geo", "--set", bad}),
                  std::string("--set takes name=number, for example n=10, not \"") + bad + "\"");
    }
}

TEST(CommandLine, MessagesNameTheOptionAsItWasWritten) {
    EXPECT_EQ(MessageOf({"cylinder", "--relaxation", "1"}),
              "--relaxation must be at most 0.999, not 1");
    EXPECT_EQ(MessageOf({"cylinder", "solver.relaxation=1"}),
              "solver.relaxation must be at most 0.999, not 1");
    EXPECT_EQ(MessageOf({"cylinder", "parameters.n=ten"}),
              "parameters.n must be a number, not \"ten\"");
    EXPECT_EQ(MessageOf({"cylinder", "check=yes"}), "check must be true or false, not \"yes\"");
    EXPECT_EQ(MessageOf({"mms", "--n", "10,,20"}), "--n must be an integer, not \"\"");
    EXPECT_EQ(MessageOf({"heat", "--output="}), "--output must not be empty");
    EXPECT_EQ(MessageOf({"heat", "--mesh"}), "--mesh needs a value");
}

TEST(CommandLine, ShortFormDoesNotTakeTheNextOptionAsItsValue) {
    EXPECT_EQ(MessageOf({"cylinder", "--output", "--check"}), "--output needs a value");
    EXPECT_EQ(MessageOf({"cylinder", "--set", "--check"}), "--set needs a value");
    EXPECT_EQ(ReadAs<CylinderCase>({"cylinder", "--output=--check"}).outputDir, "--check");
    EXPECT_THAT(ReadAs<MmsCase>({"mms", "--kind", "-1"}).kinds, ElementsAre(-1));
}

TEST(CommandLine, CaseIsNotAnOption) {
    EXPECT_EQ(MessageOf({"cylinder", "case=heat"}),
              "the case is the first word or that of the case file, not case=heat");
}

TEST(CommandLine, UnknownOptionsAreNamed) {
    EXPECT_EQ(MessageOf({"heat", "--wings"}), "unknown option --wings: --help lists the options");
    EXPECT_EQ(MessageOf({"heat", "solver.stepps=3"}),
              "unknown option solver.stepps: the table solver has steps, first_step, matrix");
    EXPECT_EQ(
        MessageOf({"heat", "wings.n=3"}),
        "unknown option wings.n: the tables of this case are mesh, parameters, solver, output");
    EXPECT_EQ(MessageOf({"cylinder", "n=3"}),
              "unknown option n: without a table there is only case and check; all others are "
              "written table.key, for example parameters.n");
    EXPECT_THAT(MessageOf({"mms", "stray"}), HasSubstr("\"stray\" is not an option"));
    EXPECT_THAT(MessageOf({"heat", "parameters.=3"}),
                HasSubstr("\"parameters.\" is not an option"));
}

TEST(CommandLine, UnknownSchemeListsTheKnownOnes) {
    EXPECT_EQ(MessageOf({"mms", "--scheme", "weno"}),
              "--scheme must be one of laplace, diffusion, upwind-cells, upwind, central, lud, "
              "quick, hybrid, not \"weno\"");
}

TEST(CommandLine, FlowNeedsASchemeWithConvection) {
    EXPECT_EQ(MessageOf({"cylinder", "--scheme", "diffusion"}),
              "--scheme must be one of upwind-cells, upwind, central, lud, quick, hybrid, not "
              "\"diffusion\"");
}

TEST(CommandLine, UnknownCaseListsTheKnownOnes) {
    const std::string known =
        "give one of " + host::CaseNames() + ", or a case file that ends in .toml";
    EXPECT_EQ(MessageOf({}), "no case: " + known);
    EXPECT_EQ(MessageOf({"fly"}), "\"fly\" is no case: " + known);
}

TEST(CommandLine, CaseWithoutADefaultMeshNeedsOne) {
    const std::string message = "a mesh is required: set mesh.file (--mesh) to a .geo or .msh file";
    EXPECT_EQ(MessageOf({"heat"}), message);
    EXPECT_EQ(MessageOf({"dump"}), message);
}

TEST(CommandLine, StudiesRefuseParametersThatTheySetThemselves) {
    EXPECT_EQ(MessageOf({"mms", "--set", "n=5"}),
              "--set n=5: this case sets the parameter n from study.n (--n)");
    EXPECT_EQ(MessageOf({"nonmatching", "parameters.m=5"}),
              "parameters.m: this case sets the parameter m from study.m (--m)");
    EXPECT_EQ(MessageOf({"mms", "--set", "kind=1"}),
              "--set kind=1: this case sets the parameter kind from study.kind (--kind)");
    EXPECT_EQ(MessageOf({"mms", "--depth", "1", "--set", "nz=2"}),
              "--set nz=2: this case sets the parameter nz from study.depth (--depth)");
    EXPECT_EQ(ReadAs<MmsCase>({"mms", "--set", "nz=2"}).parameters.size(), 1u);
    EXPECT_EQ(ReadAs<MmsCase>({"mms", "--mesh", "a.geo", "--set", "kind=1"}).parameters.size(), 1u);
}

TEST(CommandLine, EveryMistakeIsOneLine) {
    const std::vector<std::vector<std::string>> mistakes = {
        {},
        {"fly"},
        {"f\nly"},
        {"heat"},
        {"heat", "--mesh"},
        {"heat", "--mesh", "a.geo", "--steps", "-1"},
        {"heat", "--mesh", "a.geo", "--steps", "many"},
        {"heat", "--mesh", "a.geo", "--first-step", "0"},
        {"heat", "--mesh", "a.geo", "--wings"},
        {"mms", "--n", "0"},
        {"mms", "--n", "10;20"},
        {"mms", "--mu", "-1"},
        {"mms", "--depth", "0"},
        {"mms", "stray"},
        {"mms", "--solver", "gauss"},
        {"nonmatching", "--m", "0"},
        {"nonmatching", "--whole", "block2"},
        {"dump"},
    };
    for (const auto& words : mistakes) {
        const std::string message = MessageOf(words);
        EXPECT_NE(message, "accepted") << (words.empty() ? "" : words.back());
        EXPECT_EQ(message.find('\n'), std::string::npos) << message;
        EXPECT_FALSE(message.empty());
    }
}

}  // namespace
