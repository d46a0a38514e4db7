#include "reference_host/app/case_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <stdexcept>

#include "reference_host/app/command_line.h"
#include "tests/support/temp_directory.h"

namespace {

using host::Command;
using host::Scheme;
using host::Task;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

Command Read(const std::vector<std::string>& words) {
    std::vector<const char*> argv = {"reference_host"};
    for (const std::string& word : words) {
        argv.push_back(word.c_str());
    }
    return host::ReadCommand(static_cast<int>(argv.size()), argv.data());
}

std::string Shipped(const std::string& name) {
    return (std::filesystem::path(KVX3D_TEST_CASE_DIR) / name).string();
}

/// A case file of a test's own, beside a mesh file box.geo that has parameters and no mesh.
class CaseFileText : public testing::Test {
protected:
    CaseFileText() {
        Write("box.geo", "DefineConstant[ n = {1, Name \"n\"}, ro = {1, Name \"ro\"} ];\n");
    }

    std::string Write(const std::string& name, const std::string& text) const {
        const std::filesystem::path file = directory.Path() / name;
        std::ofstream(file) << text;
        return file.string();
    }

    Command ReadText(const std::string& text, std::vector<std::string> options = {}) const {
        options.insert(options.begin(), {"run", Write("a.toml", text)});
        return Read(options);
    }

    /// The message, the directory in front taken off: "a.toml:2: ...".
    std::string MessageOf(const std::string& text) const {
        try {
            ReadText(text);
        } catch (const std::runtime_error& error) {
            const std::string message = error.what();
            const std::string prefix = directory.Text() + "/";
            EXPECT_THAT(message, StartsWith(prefix));
            EXPECT_EQ(message.find('\n'), std::string::npos) << message;
            return message.substr(prefix.size());
        }
        return "accepted";
    }

    TempDirectory directory;
};

TEST(ShippedCases, AreReadAsTheyStand) {
    const Command heat = Read({Shipped("heat.toml")});
    EXPECT_EQ(heat.task, Task::Heat);
    EXPECT_EQ(heat.heat.steps, 12);

    const Command cylinder = Read({Shipped("cylinder.toml")});
    EXPECT_EQ(cylinder.task, Task::Cylinder);
    EXPECT_EQ(cylinder.cylinder.parameters, (host::MeshParameters{{"n", 10}}));
    EXPECT_TRUE(cylinder.cylinder.check);

    const Command fine = Read({Shipped("cylinder_fine.toml")});
    EXPECT_EQ(fine.cylinder.parameters, (host::MeshParameters{{"n", 20}}));
    EXPECT_EQ(fine.cylinder.relaxation, 0.95);

    const Command sphere = Read({Shipped("sphere.toml")});
    EXPECT_EQ(sphere.task, Task::Sphere);
    EXPECT_EQ(sphere.sphere.scheme, Scheme::LinearUpwind);

    const Command mms = Read({Shipped("mms.toml")});
    EXPECT_EQ(mms.task, Task::Mms);
    EXPECT_THAT(mms.mms.kinds, ElementsAre(1, 0));
    EXPECT_THAT(mms.mms.schemes,
                ElementsAre(Scheme::Diffusion, Scheme::Central, Scheme::LinearUpwind));

    const Command nonmatching = Read({Shipped("nonmatching.toml")});
    EXPECT_EQ(nonmatching.task, Task::Nonmatching);
    EXPECT_THAT(nonmatching.nonmatching.m, ElementsAre(12, 24));

    EXPECT_EQ(Read({Shipped("dump.toml")}).task, Task::Dump);
}

TEST(ShippedCases, OpenWithWhatTheyShowAndTheRunLine) {
    for (const auto& entry : std::filesystem::directory_iterator(KVX3D_TEST_CASE_DIR)) {
        if (entry.path().extension() != ".toml") {
            continue;
        }
        std::ifstream file(entry.path());
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        EXPECT_THAT(text, StartsWith("# ")) << entry.path();
        EXPECT_THAT(text, HasSubstr("#   reference_host cases/" + entry.path().filename().string()))
            << entry.path();
        EXPECT_THAT(text, HasSubstr("# Expected: ")) << entry.path();
    }
}

/// Options of all cases, each with the name of its case.
std::vector<std::pair<std::string, host::CaseOptions>> AllOptions(Command& command) {
    return {{"cylinder", OptionsOf(command.cylinder)},
            {"sphere", OptionsOf(command.sphere)},
            {"heat", OptionsOf(command.heat)},
            {"mms", OptionsOf(command.mms)},
            {"nonmatching", OptionsOf(command.nonmatching)},
            {"dump", OptionsOf(command.dump)}};
}

TEST(CaseOptions, HaveOneNameEachInBothNotations) {
    Command command;
    for (const auto& [name, options] : AllOptions(command)) {
        std::set<std::string> keys;
        std::set<std::string> words;
        for (const host::CaseOption& option : options.list) {
            EXPECT_TRUE(keys.insert(option.table + "." + option.key).second) << option.key;
            EXPECT_TRUE(words.insert(option.option).second) << option.option;
            EXPECT_THAT(option.option, StartsWith("--"));
            EXPECT_FALSE(option.help.empty());
        }
    }
}

TEST(CaseOptions, AreAllOnTheCommandLine) {
    Command command;
    for (const auto& [name, options] : AllOptions(command)) {
        const std::string help = Read({name, "--help"}).help;
        for (const host::CaseOption& option : options.list) {
            EXPECT_THAT(help, HasSubstr(option.option + " ")) << name;
        }
    }
}

TEST_F(CaseFileText, SetsEveryFieldOfAFlow) {
    const host::CylinderCase run = ReadText(R"(case = "cylinder"
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
)")
                                       .cylinder;

    EXPECT_EQ(run.meshFile, directory.Text() + "/box.geo");
    EXPECT_EQ(run.parameters, (host::MeshParameters{{"n", 5}, {"ro", 1.25}}));
    EXPECT_EQ(run.reynolds, 10.0);
    EXPECT_EQ(run.scheme, Scheme::Quick);
    EXPECT_EQ(run.relaxation, 0.7);
    EXPECT_EQ(run.maxIterations, 3);
    EXPECT_EQ(run.outputDir, "here");
    EXPECT_EQ(run.stepsEvery, 2);
    EXPECT_TRUE(run.check);
}

TEST_F(CaseFileText, SetsEveryFieldOfAStudy) {
    const host::MmsCase run = ReadText(R"(case = "mms"
mesh.file = "box.geo"
study.kind = 3
study.n = [20, 10, 20]
study.depth = 0.4
schemes.transport = ["lud", "quick"]
physics.mu = 1e-3
solver.matrix = "samg"
)")
                                  .mms;

    EXPECT_THAT(run.kinds, ElementsAre(3));
    EXPECT_THAT(run.sizes, ElementsAre(10, 20));
    EXPECT_EQ(run.depth, 0.4);
    EXPECT_THAT(run.schemes, ElementsAre(Scheme::LinearUpwind, Scheme::Quick));
    EXPECT_EQ(run.mu, 1e-3);
    EXPECT_EQ(run.matrixSolver, host::MatrixSolver::Samg);
}

TEST_F(CaseFileText, GivesWayToTheCommandLine) {
    const host::CylinderCase run =
        ReadText(
            "case = \"cylinder\"\ncheck = true\n[parameters]\nn = 10\nro = 1.5\n"
            "[schemes]\ntransport = \"lud\"\n[solver]\niterations = 7\n",
            {"--set", "n=20", "--scheme", "quick", "--check=false"})
            .cylinder;

    EXPECT_EQ(run.parameters, (host::MeshParameters{{"n", 20}, {"ro", 1.5}}));
    EXPECT_EQ(run.scheme, Scheme::Quick);
    EXPECT_EQ(run.maxIterations, 7);
    EXPECT_FALSE(run.check);
}

TEST_F(CaseFileText, LeavesOutTheKindOnAMeshOfItsOwn) {
    EXPECT_TRUE(ReadText("case = \"mms\"\nmesh.file = \"box.geo\"\n").mms.kinds.empty());
    EXPECT_THAT(ReadText("case = \"mms\"\n").mms.kinds, ElementsAre(1, 0));
}

TEST_F(CaseFileText, TakesAnAbsoluteMeshFile) {
    const std::string mesh = directory.Text() + "/box.geo";

    EXPECT_EQ(ReadText("case = \"dump\"\nmesh.file = \"" + mesh + "\"\n").dump.meshFile, mesh);
}

TEST_F(CaseFileText, MayTakeItsMeshFromTheCommandLine) {
    EXPECT_EQ(ReadText("case = \"heat\"\n", {"--mesh", "b.geo"}).heat.meshFile, "b.geo");
    EXPECT_EQ(MessageOf("case = \"heat\"\n"), "a.toml: \"file\" in the table [mesh] is required");
}

TEST_F(CaseFileText, ShowsItsValuesInTheHelp) {
    EXPECT_THAT(ReadText("case = \"cylinder\"\nsolver.iterations = 77\n", {"--help"}).help,
                HasSubstr("77"));
}

// ---- errors, one by one

struct Mistake {
    const char* name;
    const char* text;
    const char* message;
};

std::ostream& operator<<(std::ostream& out, const Mistake& mistake) {
    return out << mistake.name;
}

class CaseFileMistake : public CaseFileText, public testing::WithParamInterface<Mistake> {};

TEST_P(CaseFileMistake, IsToldWithFileLineAndKey) {
    EXPECT_EQ(MessageOf(GetParam().text), GetParam().message);
}

std::string MistakeName(const testing::TestParamInfo<Mistake>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    All, CaseFileMistake,
    testing::Values(
        Mistake{"TooSmall", "case = \"cylinder\"\n\n[solver]\niterations = 0\n",
                "a.toml:4: \"iterations\" must be at least 1, not 0"},
        Mistake{"TooLarge", "case = \"cylinder\"\nsolver.relaxation = 1.5\n",
                "a.toml:2: \"relaxation\" must be at most 0.999, not 1.5"},
        Mistake{"NotAboveZero", "case = \"cylinder\"\nphysics.reynolds = 0.0\n",
                "a.toml:2: \"reynolds\" must be above 0, not 0"},
        Mistake{"Infinite", "case = \"heat\"\nsolver.first_step = inf\n",
                "a.toml:2: \"first_step\" must be a number, not \"inf\""},
        Mistake{"BeyondInt", "case = \"heat\"\nsolver.steps = 3000000000\n",
                "a.toml:2: \"steps\" must be a whole number, not \"3000000000\""},
        Mistake{"TextForWhole", "case = \"heat\"\nsolver.steps = \"12\"\n",
                "a.toml:2: \"steps\" must be a whole number, not \"12\""},
        Mistake{"NumberForWhole", "case = \"heat\"\nsolver.steps = 2.5\n",
                "a.toml:2: \"steps\" must be a whole number, not 2.5"},
        Mistake{"FlagForNumber", "case = \"heat\"\nsolver.first_step = true\n",
                "a.toml:2: \"first_step\" must be a number, not true"},
        Mistake{"NumberForText", "case = \"heat\"\noutput.directory = 3\n",
                "a.toml:2: \"directory\" must be a text in quotes, not 3"},
        Mistake{"EmptyText", "case = \"heat\"\noutput.directory = \"\"\n",
                "a.toml:2: \"directory\" must not be empty"},
        Mistake{"TextForFlag", "case = \"cylinder\"\ncheck = \"yes\"\n",
                "a.toml:2: \"check\" must be true or false, not \"yes\""},
        Mistake{"ListForWhole", "case = \"heat\"\nsolver.steps = [1, 2]\n",
                "a.toml:2: \"steps\" must be a whole number, not a list"},
        Mistake{"TableForText", "case = \"heat\"\n[output.directory]\nx = 1\n",
                "a.toml:2: \"directory\" must be a text in quotes, not a table"},
        Mistake{"DateForText", "case = \"heat\"\noutput.directory = 2024-01-01\n",
                "a.toml:2: \"directory\" must be a text in quotes, not a date or time"},
        Mistake{"TextInList", "case = \"mms\"\nstudy.n = [10, \"20\"]\n",
                "a.toml:2: \"n\" must be a whole number or a list of them, \"20\" does not fit in"},
        Mistake{"SmallInList", "case = \"mms\"\nstudy.n = [10, 0]\n",
                "a.toml:2: \"n\" must be at least 1, not 0"},
        Mistake{"EmptyList", "case = \"mms\"\nstudy.n = []\n",
                "a.toml:2: \"n\" must name one value at least"},
        Mistake{"UnknownScheme", "case = \"cylinder\"\n[schemes]\ntransport = \"weno\"\n",
                "a.toml:3: \"transport\" must be one of upwind-cells, upwind, central, lud, quick, "
                "hybrid, not \"weno\""},
        Mistake{"UnknownSolver", "case = \"heat\"\nsolver.matrix = \"gmres\"\n",
                "a.toml:2: \"matrix\" must be one of bicgstab, samg, not \"gmres\""},
        Mistake{"UnknownBlock", "case = \"nonmatching\"\nstudy.whole = \"block2\"\n",
                "a.toml:2: \"whole\" must be one of none, block0, block1, not \"block2\""},
        Mistake{"UnknownKey", "case = \"heat\"\n[solver]\nsteps = 2\nstepps = 3\n",
                "a.toml:4: unknown key \"stepps\", [solver] has steps, first_step, matrix"},
        Mistake{"UnknownTopKey", "case = \"cylinder\"\nchek = true\n",
                "a.toml:2: unknown key \"chek\", above all tables has case, check"},
        Mistake{"UnknownTable", "case = \"dump\"\n\n[wings]\nn = 1\n",
                "a.toml:3: unknown table \"wings\", this case has parameters, mesh"},
        Mistake{"NoTable", "case = \"dump\"\nmesh = \"box.geo\"\n",
                "a.toml:2: \"mesh\" must be a table, not \"box.geo\""},
        Mistake{"ListOfTables", "case = \"dump\"\n[[mesh]]\nfile = \"box.geo\"\n",
                "a.toml:2: \"mesh\" must be a table, not a list"},
        Mistake{"TextForParameter", "case = \"heat\"\n[parameters]\nn = \"ten\"\n",
                "a.toml:3: \"n\" must be a number, not \"ten\""},
        Mistake{"UnknownParameter",
                "case = \"heat\"\n[mesh]\nfile = \"box.geo\"\n[parameters]\nwings = 2\n",
                "a.toml:5: \"wings\" is no parameter of box.geo"},
        Mistake{"NoCase", "[mesh]\nfile = \"box.geo\"\n",
                "a.toml:1: \"case\" is missing, one of cylinder, sphere, heat, mms, nonmatching, "
                "dump"},
        Mistake{"Empty", "",
                "a.toml:1: \"case\" is missing, one of cylinder, sphere, heat, mms, nonmatching, "
                "dump"},
        Mistake{"UnknownCase", "\ncase = \"flight\"\n",
                "a.toml:2: \"case\" must be one of cylinder, sphere, heat, mms, nonmatching, dump, "
                "not \"flight\""},
        Mistake{"CaseIsNoText", "case = 3\n",
                "a.toml:1: \"case\" must be one of cylinder, sphere, heat, mms, nonmatching, dump, "
                "not 3"},
        Mistake{"FirstOfTwo", "case = \"heat\"\n[solver]\nsteps = -1\n[mesh]\nfil = 1\n",
                "a.toml:3: \"steps\" must be at least 0, not -1"}),
    MistakeName);

TEST_F(CaseFileText, SaysWhichMeshFileIsMissing) {
    EXPECT_EQ(
        MessageOf("case = \"heat\"\n[mesh]\nfile = \"sub/none.geo\"\n"),
        "a.toml:3: \"file\" names no file: there is no " + directory.Text() + "/sub/none.geo");
}

TEST_F(CaseFileText, SaysWhereItIsNoToml) {
    EXPECT_THAT(MessageOf("case = \"heat\"\n[mesh\n"), StartsWith("a.toml:2: "));
    EXPECT_THAT(MessageOf("case = \"heat\"\ncase = \"mms\"\n"), StartsWith("a.toml:2: "));
    EXPECT_THAT(MessageOf("case =\n"), StartsWith("a.toml:1: "));
    EXPECT_THAT(MessageOf("case = \"heat\"\nsolver.steps = 12x\n"), StartsWith("a.toml:2: "));
}

TEST(CaseFileOnDisk, MustBeAFileThatCanBeRead) {
    TempDirectory directory;
    const std::string folder = directory.Text() + "/folder.toml";
    std::filesystem::create_directory(folder);
    for (const std::string& path : {directory.Text() + "/none.toml", folder}) {
        try {
            Read({"run", path});
            FAIL() << path;
        } catch (const std::runtime_error& error) {
            EXPECT_EQ(error.what(), path + ": no case file that can be read");
        }
    }
}

TEST(CaseFileOnDisk, IsWhatRunNeeds) {
    try {
        Read({"run"});
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_THAT(error.what(), StartsWith("run needs a case file"));
    }
    EXPECT_EQ(Read({"run", "--help"}).task, Task::ShowHelp);
}

}  // namespace
