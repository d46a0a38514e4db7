#include "reference_host/app/case_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "reference_host/cases/case_cylinder.h"
#include "reference_host/cases/case_dump.h"
#include "reference_host/cases/case_heat.h"
#include "reference_host/cases/case_inspect.h"
#include "reference_host/cases/case_mms.h"
#include "tests/reference_host/app/case_file_text.h"

namespace {

using host::CylinderCase;
using host::DumpCase;
using host::HeatCase;
using host::MeshParameters;
using host::MmsCase;
using host::Scheme;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

TEST_F(CaseFileText, SetsEveryFieldOfAFlow) {
    const auto run = ReadTextAs<CylinderCase>(R"(case = "cylinder"
check = true
parameters = {n = 5, ro = 1.25}
[mesh]
file = "box.geo"
[physics]
reynolds = 10
[schemes]
transport = "quick"
[solver]
relaxation = 0.7
iterations = 3
[output]
directory = "here"
steps_every = 2
)");

    EXPECT_EQ(run.meshFile, directory.Text() + "/box.geo");
    EXPECT_EQ(run.parameters, (MeshParameters{{"n", 5}, {"ro", 1.25}}));
    EXPECT_EQ(run.reynolds, 10.0);
    EXPECT_EQ(run.scheme, Scheme::Quick);
    EXPECT_EQ(run.relaxation, 0.7);
    EXPECT_EQ(run.maxIterations, 3);
    EXPECT_EQ(run.outputDir, "here");
    EXPECT_EQ(run.stepsEvery, 2);
    EXPECT_TRUE(run.check);
}

TEST_F(CaseFileText, SetsEveryFieldOfAStudy) {
    const auto run = ReadTextAs<MmsCase>(R"(case = "mms"
mesh.file = "box.geo"
study.kind = 3
study.n = [20, 10, 20]
study.depth = 0.4
schemes.transport = ["lud", "quick"]
physics.mu = 1e-3
solver.matrix = "samg"
)");

    EXPECT_THAT(run.kinds, ElementsAre(3));
    EXPECT_THAT(run.sizes, ElementsAre(10, 20));
    EXPECT_EQ(run.depth, 0.4);
    EXPECT_THAT(run.schemes, ElementsAre(Scheme::LinearUpwind, Scheme::Quick));
    EXPECT_EQ(run.mu, 1e-3);
    EXPECT_EQ(run.matrixSolver, host::MatrixSolver::Samg);
}

TEST_F(CaseFileText, CommandLineReplacesItsValues) {
    const std::string text =
        "case = \"cylinder\"\ncheck = true\n[mesh]\nfile = \"box.geo\"\n[parameters]\nn = 10\n"
        "ro = 1.5\n[schemes]\ntransport = \"lud\"\n[solver]\niterations = 7\n";
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{"--set", "n=20", "--scheme", "quick", "--check=false"},
          std::vector<std::string>{"parameters.n=20", "schemes.transport=quick", "check=false"}}) {
        const auto run = ReadTextAs<CylinderCase>(text, options);

        EXPECT_EQ(run.parameters, (MeshParameters{{"n", 20}, {"ro", 1.5}}));
        EXPECT_EQ(run.scheme, Scheme::Quick);
        EXPECT_EQ(run.maxIterations, 7);
        EXPECT_FALSE(run.check);
    }
}

TEST_F(CaseFileText, IsReadWithAndWithoutTheWordRunAndTheNameOfItsCase) {
    const std::string file = Write("case = \"heat\"\nmesh.file = \"box.geo\"\nsolver.steps = 3\n");

    EXPECT_EQ(ReadAs<HeatCase>({file}).steps, 3);
    EXPECT_EQ(ReadAs<HeatCase>({"run", file}).steps, 3);
    EXPECT_EQ(ReadAs<HeatCase>({"heat", file}).steps, 3);
    EXPECT_EQ(MessageOf({"cylinder", file}), file +
                                                 ": this is a file of the case heat, not of "
                                                 "cylinder");
}

TEST_F(CaseFileText, OfAnotherCaseGivesDumpItsMeshAndParameters) {
    const std::string file = Write(
        "case = \"cylinder\"\nmesh.file = \"box.geo\"\nparameters.n = 5\nsolver.iterations = 3\n");

    const auto run = ReadAs<DumpCase>({"dump", file, "--set", "ro=2"});

    EXPECT_EQ(run.meshFile, directory.Text() + "/box.geo");
    EXPECT_EQ(run.parameters, (MeshParameters{{"n", 5}, {"ro", 2}}));
}

TEST_F(CaseFileText, OfAnotherCaseGivesInspectItsMeshAndParameters) {
    const std::string file = Write("case = \"heat\"\nmesh.file = \"box.geo\"\nparameters.n = 5\n");

    const auto run = ReadAs<host::InspectCase>(
        {"inspect", file, "explain.cells=17,42", "--faces", "3", "--output", "here"});

    EXPECT_EQ(run.meshFile, directory.Text() + "/box.geo");
    EXPECT_EQ(run.parameters, (MeshParameters{{"n", 5}}));
    EXPECT_THAT(run.cells, ElementsAre(17, 42));
    EXPECT_THAT(run.faces, ElementsAre(3));
    EXPECT_EQ(run.outputDir, "here");
}

TEST_F(CaseFileText, OfAnotherCaseWithoutAMeshGivesDumpTheDefaultOfThatCase) {
    EXPECT_THAT(ReadAs<DumpCase>({"dump", Write("case = \"cylinder\"\n")}).meshFile,
                EndsWith("channel_cylinder_overset.geo"));
}

TEST_F(CaseFileText, OfAnotherCaseIsCheckedAsAWhole) {
    EXPECT_THAT(MessageOf({"dump", Write("case = \"cylinder\"\nsolver.iterations = 0\n")}),
                EndsWith("a.toml:2: solver.iterations must be at least 1, not 0"));
}

TEST_F(CaseFileText, LeavesOutTheKindOnAMeshOfItsOwn) {
    EXPECT_TRUE(ReadTextAs<MmsCase>("case = \"mms\"\nmesh.file = \"box.geo\"\n").kinds.empty());
    EXPECT_THAT(ReadTextAs<MmsCase>("case = \"mms\"\n").kinds, ElementsAre(1, 0));
}

TEST_F(CaseFileText, TakesAnAbsoluteMeshFile) {
    const std::string mesh = directory.Text() + "/box.geo";

    EXPECT_EQ(ReadTextAs<DumpCase>("case = \"dump\"\nmesh.file = \"" + mesh + "\"\n").meshFile,
              mesh);
}

TEST_F(CaseFileText, MayLeaveTheMeshToTheCommandLine) {
    EXPECT_EQ(ReadTextAs<HeatCase>("case = \"heat\"\n", {"--mesh", "b.geo"}).meshFile, "b.geo");
    EXPECT_EQ(FileMessageOf("case = \"heat\"\n"),
              "a.toml: a mesh is required: set mesh.file (--mesh) to a .geo or .msh file");
}

TEST_F(CaseFileText, ShowsItsValuesInTheHelp) {
    const std::string file = Write("case = \"cylinder\"\nsolver.iterations = 77\n");

    EXPECT_THAT(Read({file, "--help"}).help, HasSubstr("set to 77"));
}

}  // namespace
