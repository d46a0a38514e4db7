#include "reference_host/app/command_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

namespace {

using host::Command;
using host::Scheme;
using host::Task;

Command Read(std::vector<const char*> words) {
    words.insert(words.begin(), "reference_host");
    return host::ReadCommand(static_cast<int>(words.size()), words.data());
}

std::string MessageOf(const std::vector<const char*>& words) {
    try {
        Read(words);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "accepted";
}

TEST(CommandLine, HeatTakesMeshNumbersAndOutput) {
    const Command command =
        Read({"heat", "--mesh", "a.geo", "--set", "n=10", "--set", "ro=1.5", "--output", "out"});

    EXPECT_EQ(command.task, Task::Heat);
    EXPECT_EQ(command.heat.meshFile, "a.geo");
    EXPECT_EQ(command.heat.parameters, (host::MeshParameters{{"n", 10}, {"ro", 1.5}}));
    EXPECT_EQ(command.heat.outputDir, "out");
}

TEST(CommandLine, MmsTakesListsWithSizesSortedAndUnique) {
    const Command command =
        Read({"mms", "--kind", "0", "--n", "20,10,20", "--scheme", "lud,quick", "--check"});

    EXPECT_EQ(command.task, Task::Mms);
    EXPECT_EQ(command.mms.kinds, std::vector<int>{0});
    EXPECT_EQ(command.mms.sizes, (std::vector<int>{10, 20}));
    EXPECT_EQ(command.mms.schemes, (std::vector<Scheme>{Scheme::LinearUpwind, Scheme::Quick}));
    EXPECT_TRUE(command.mms.check);
    EXPECT_FALSE(command.mms.mu.has_value());
}

TEST(CommandLine, MmsDefaultsToDiffusionOnTheSingleBoxAndTheOversetPair) {
    const Command command = Read({"mms"});

    EXPECT_EQ(command.mms.kinds, (std::vector<int>{1, 0}));
    EXPECT_EQ(command.mms.sizes, (std::vector<int>{10, 20}));
    EXPECT_EQ(command.mms.schemes, std::vector<Scheme>{Scheme::Diffusion});
    EXPECT_NE(command.mms.meshFile.find("box_annulus_overset.geo"), std::string::npos);
}

TEST(CommandLine, MmsOnAnotherMeshSetsAKindOnlyIfAsked) {
    EXPECT_TRUE(Read({"mms", "--mesh", "a.geo"}).mms.kinds.empty());
    EXPECT_EQ(Read({"mms", "--mesh", "a.geo", "--kind", "3"}).mms.kinds, std::vector<int>{3});
}

TEST(CommandLine, MmsTakesADepth) {
    EXPECT_FALSE(Read({"mms"}).mms.depth.has_value());
    EXPECT_EQ(Read({"mms", "--depth", "0.4"}).mms.depth, 0.4);
}

TEST(CommandLine, AllSchemesAreEight) {
    EXPECT_EQ(Read({"mms", "--scheme", "all"}).mms.schemes.size(), 8u);
}

TEST(CommandLine, EveryScalarCaseTakesASolver) {
    using host::MatrixSolver;

    EXPECT_EQ(Read({"heat", "--mesh", "a.geo"}).heat.matrixSolver, MatrixSolver::Bicgstab);
    EXPECT_EQ(Read({"heat", "--mesh", "a.geo", "--solver", "samg"}).heat.matrixSolver,
              MatrixSolver::Samg);
    EXPECT_EQ(Read({"mms", "--solver", "samg"}).mms.matrixSolver, MatrixSolver::Samg);
    EXPECT_EQ(Read({"nonmatching", "--solver", "samg"}).nonmatching.matrixSolver,
              MatrixSolver::Samg);
}

TEST(CommandLine, FlowTakesASolverForEachEquation) {
    using host::MatrixSolver;

    const Command plain = Read({"sphere"});
    EXPECT_EQ(plain.sphere.matrixSolver, MatrixSolver::Bicgstab);
    EXPECT_FALSE(plain.sphere.pressureSolver.has_value());
    EXPECT_EQ(Read({"sphere", "--solver", "samg"}).sphere.matrixSolver, MatrixSolver::Samg);
    const Command both = Read({"cylinder", "--solver", "bicgstab", "--pressure-solver", "samg"});
    EXPECT_EQ(both.cylinder.matrixSolver, MatrixSolver::Bicgstab);
    EXPECT_EQ(both.cylinder.pressureSolver, MatrixSolver::Samg);
}

TEST(CommandLine, NonmatchingTakesPairsOfSizesInTheirOrder) {
    const Command command = Read({"nonmatching", "--n", "4,8", "--m", "9,18", "--whole", "block1",
                                  "--set", "lz=1", "--check"});

    EXPECT_EQ(command.task, Task::Nonmatching);
    EXPECT_EQ(command.nonmatching.n, (std::vector<int>{4, 8}));
    EXPECT_EQ(command.nonmatching.m, (std::vector<int>{9, 18}));
    EXPECT_EQ(command.nonmatching.whole, host::WholeFaces::Block1);
    EXPECT_EQ(command.nonmatching.parameters, (host::MeshParameters{{"lz", 1}}));
    EXPECT_TRUE(command.nonmatching.check);
}

TEST(CommandLine, NonmatchingDefaultsToTheShippedBlocksWithBothSidesCut) {
    const Command command = Read({"nonmatching"});

    EXPECT_NE(command.nonmatching.meshFile.find("nonmatching_blocks.geo"), std::string::npos);
    EXPECT_EQ(command.nonmatching.whole, host::WholeFaces::None);
    EXPECT_EQ(command.nonmatching.n.size(), command.nonmatching.m.size());
}

TEST(CommandLine, DumpTakesAMeshAndItsNumbers) {
    const Command command = Read({"dump", "--mesh", "a.geo", "--set", "n=5"});

    EXPECT_EQ(command.task, Task::Dump);
    EXPECT_EQ(command.dump.meshFile, "a.geo");
    EXPECT_EQ(command.dump.parameters, (host::MeshParameters{{"n", 5}}));
}

TEST(CommandLine, HelpIsNoError) {
    const Command command = Read({"--help"});

    EXPECT_EQ(command.task, Task::ShowHelp);
    EXPECT_NE(command.help.find("heat"), std::string::npos);
    EXPECT_NE(command.help.find("mms"), std::string::npos);
}

TEST(CommandLine, HelpOfACaseListsItsOptions) {
    EXPECT_NE(Read({"heat", "--help"}).help.find("--first-step"), std::string::npos);
}

TEST(CommandLine, BadNumbersAreNamed) {
    for (const char* bad : {"n", "n=", "=3", "n=ten", "n=10x", ""}) {
        const std::string message = MessageOf({"heat", "--mesh", "a.geo", "--set", bad});
        EXPECT_EQ(message,
                  std::string("--set takes name=number, for example n=10, not \"") + bad + "\"");
    }
}

TEST(CommandLine, UnknownSchemeListsTheKnownOnes) {
    const std::string message = MessageOf({"mms", "--scheme", "weno"});

    EXPECT_NE(message.find("upwind-cells"), std::string::npos) << message;
    EXPECT_NE(message.find("\"weno\""), std::string::npos) << message;
}

TEST(CommandLine, UnknownCaseListsTheKnownOnes) {
    const std::string known =
        "give one of cylinder, sphere, heat, mms, nonmatching, dump, or a case file that ends in "
        ".toml";
    EXPECT_EQ(MessageOf({}), "no case: " + known);
    EXPECT_EQ(MessageOf({"fly"}), "\"fly\" is no case: " + known);
}

TEST(CommandLine, HelpNamesTheSchemes) {
    EXPECT_THAT(Read({"cylinder", "--help"}).help, testing::HasSubstr("central, lud, quick"));
    EXPECT_THAT(Read({"mms", "--help"}).help, testing::HasSubstr("laplace, diffusion"));
}

TEST(CommandLine, StudiesDropNoParameter) {
    EXPECT_EQ(MessageOf({"mms", "--set", "n=5"}), "parameter \"n\": the study takes it from --n");
    EXPECT_EQ(MessageOf({"nonmatching", "--set", "m=5"}),
              "parameter \"m\": the study takes it from --m");
    EXPECT_EQ(MessageOf({"mms", "--set", "kind=1"}),
              "parameter \"kind\": the study takes it from --kind");
    EXPECT_EQ(MessageOf({"mms", "--depth", "1", "--set", "nz=2"}),
              "parameter \"nz\": the study takes it from --depth");
    EXPECT_EQ(Read({"mms", "--set", "nz=2"}).mms.parameters.size(), 1u);
    EXPECT_EQ(Read({"mms", "--mesh", "a.geo", "--set", "kind=1"}).mms.parameters.size(), 1u);
}

TEST(CommandLine, EveryMistakeIsOneLine) {
    const std::vector<std::vector<const char*>> mistakes = {
        {},
        {"fly"},
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

TEST(CommandLine, CylinderTakesSchemeRelaxationAndSteps) {
    const Command command =
        Read({"cylinder", "--mesh", "a.geo", "--set", "n=20", "--scheme", "quick", "--output",
              "out", "--relaxation", "0.8", "--steps-every", "7", "--iterations", "300",
              "--reynolds", "40", "--check"});

    EXPECT_EQ(command.task, Task::Cylinder);
    EXPECT_EQ(command.cylinder.meshFile, "a.geo");
    EXPECT_EQ(command.cylinder.parameters, (host::MeshParameters{{"n", 20}}));
    EXPECT_EQ(command.cylinder.scheme, Scheme::Quick);
    EXPECT_EQ(command.cylinder.outputDir, "out");
    EXPECT_EQ(command.cylinder.relaxation, 0.8);
    EXPECT_EQ(command.cylinder.stepsEvery, 7);
    EXPECT_EQ(command.cylinder.maxIterations, 300);
    EXPECT_EQ(command.cylinder.reynolds, 40.0);
    EXPECT_TRUE(command.cylinder.check);
}

TEST(CommandLine, CylinderDefaultsToTheShippedMeshLinearUpwindAndItsRelaxation) {
    const Command command = Read({"cylinder"});

    EXPECT_NE(command.cylinder.meshFile.find("channel_cylinder_overset.geo"), std::string::npos);
    EXPECT_EQ(command.cylinder.scheme, Scheme::LinearUpwind);
    EXPECT_FALSE(command.cylinder.relaxation.has_value());
    EXPECT_EQ(command.cylinder.reynolds, 20.0);
    EXPECT_FALSE(command.cylinder.check);
}

TEST(CommandLine, FlowNeedsASchemeThatCarries) {
    EXPECT_EQ(MessageOf({"cylinder", "--scheme", "diffusion"}),
              "--scheme must be one of upwind-cells, upwind, central, lud, quick, hybrid, not "
              "\"diffusion\"");
}

TEST(CommandLine, RelaxationStaysBelowOne) {
    EXPECT_NE(MessageOf({"cylinder", "--relaxation", "1"}).find("--relaxation"), std::string::npos);
}

}  // namespace
