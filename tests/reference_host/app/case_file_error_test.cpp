#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <ostream>

#include "reference_host/app/case_file.h"
#include "tests/reference_host/app/case_file_text.h"

namespace {

using testing::StartsWith;

/// A case file with one mistake and the message for it.
struct Mistake {
    const char* name;
    const char* text;
    std::string message;
};

std::ostream& operator<<(std::ostream& out, const Mistake& mistake) {
    return out << mistake.name;
}

class CaseFileMistake : public CaseFileText, public testing::WithParamInterface<Mistake> {};

TEST_P(CaseFileMistake, IsReportedWithFileLineAndOption) {
    EXPECT_EQ(FileMessageOf(GetParam().text), GetParam().message);
}

std::string MistakeName(const testing::TestParamInfo<Mistake>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    Values, CaseFileMistake,
    testing::Values(
        Mistake{"TooSmall", "case = \"cylinder\"\n\n[solver]\niterations = 0\n",
                "a.toml:4: solver.iterations must be at least 1, not 0"},
        Mistake{"TooLarge", "case = \"cylinder\"\nsolver.relaxation = 1.5\n",
                "a.toml:2: solver.relaxation must be at most 0.999, not 1.5"},
        Mistake{"NotAboveZero", "case = \"cylinder\"\nphysics.reynolds = 0.0\n",
                "a.toml:2: physics.reynolds must be above 0, not 0"},
        Mistake{"Infinite", "case = \"heat\"\nsolver.first_step = inf\n",
                "a.toml:2: solver.first_step must be a number, not \"inf\""},
        Mistake{"BeyondInt", "case = \"heat\"\nsolver.steps = 3000000000\n",
                "a.toml:2: solver.steps must be an integer, not \"3000000000\""},
        Mistake{"StringForInteger", "case = \"heat\"\nsolver.steps = \"12\"\n",
                "a.toml:2: solver.steps must be an integer, not \"12\""},
        Mistake{"NumberForInteger", "case = \"heat\"\nsolver.steps = 2.5\n",
                "a.toml:2: solver.steps must be an integer, not 2.5"},
        Mistake{"WholeNumberForInteger", "case = \"heat\"\nsolver.steps = 10.0\n",
                "a.toml:2: solver.steps must be an integer, not 10.0"},
        Mistake{"FlagForNumber", "case = \"heat\"\nsolver.first_step = true\n",
                "a.toml:2: solver.first_step must be a number, not true"},
        Mistake{"NumberForString", "case = \"heat\"\noutput.directory = 3\n",
                "a.toml:2: output.directory must be a string in quotes, not 3"},
        Mistake{"EmptyString", "case = \"heat\"\noutput.directory = \"\"\n",
                "a.toml:2: output.directory must not be empty"},
        Mistake{"StringForFlag", "case = \"cylinder\"\ncheck = \"yes\"\n",
                "a.toml:2: check must be true or false, not \"yes\""},
        Mistake{"ListForInteger", "case = \"heat\"\nsolver.steps = [1, 2]\n",
                "a.toml:2: solver.steps must be an integer, not a list"},
        Mistake{"TableForString", "case = \"heat\"\n[output.directory]\nx = 1\n",
                "a.toml:2: output.directory must be a string in quotes, not a table"},
        Mistake{"DateForString", "case = \"heat\"\noutput.directory = 2024-01-01\n",
                "a.toml:2: output.directory must be a string in quotes, not a date or time"},
        Mistake{"StringInList", "case = \"mms\"\nstudy.n = [10, \"20\"]\n",
                "a.toml:2: study.n must be an integer or a list of integers, but the list contains "
                "\"20\""},
        Mistake{"TooSmallInList", "case = \"mms\"\nstudy.n = [10, 0]\n",
                "a.toml:2: study.n must be at least 1, not 0"},
        Mistake{"EmptyList", "case = \"mms\"\nstudy.n = []\n",
                "a.toml:2: study.n must have at least one value"},
        Mistake{"UnknownScheme", "case = \"cylinder\"\n[schemes]\ntransport = \"weno\"\n",
                "a.toml:3: schemes.transport must be one of upwind-cells, upwind, central, lud, "
                "quick, hybrid, not \"weno\""},
        Mistake{"UnknownSolver", "case = \"heat\"\nsolver.matrix = \"gmres\"\n",
                "a.toml:2: solver.matrix must be one of bicgstab, samg, not \"gmres\""},
        Mistake{"UnknownBlock", "case = \"nonmatching\"\nstudy.whole = \"block2\"\n",
                "a.toml:2: study.whole must be one of none, block0, block1, not \"block2\""},
        Mistake{"StringForParameter", "case = \"heat\"\n[parameters]\nn = \"ten\"\n",
                "a.toml:3: parameters.n must be a number, not \"ten\""},
        Mistake{"NanForParameter", "case = \"heat\"\n[parameters]\nn = nan\n",
                "a.toml:3: parameters.n must be a number, not nan"},
        Mistake{"InfinityForParameter", "case = \"heat\"\n[parameters]\nn = inf\n",
                "a.toml:3: parameters.n must be a number, not inf"},
        Mistake{"EmptyMesh", "case = \"heat\"\n[mesh]\nfile = \"\"\n",
                "a.toml:3: mesh.file must not be empty"},
        Mistake{"LineEndInAString", "case = \"heat\"\nsolver.matrix = \"a\\nb\"\n",
                "a.toml:2: solver.matrix must be one of bicgstab, samg, not \"a b\""},
        Mistake{"UnknownParameter",
                "case = \"heat\"\n[mesh]\nfile = \"box.geo\"\n[parameters]\nwings = 2\n",
                "a.toml:5: parameters.wings: box.geo has no parameter wings with a Name in its "
                "DefineConstant"},
        Mistake{"ParameterOfTheCase", "case = \"mms\"\n[parameters]\nn = 5\n",
                "a.toml:3: parameters.n: this case sets the parameter n from study.n (--n)"}),
    MistakeName);

INSTANTIATE_TEST_SUITE_P(
    Names, CaseFileMistake,
    testing::Values(
        Mistake{"UnknownKey", "case = \"heat\"\n[solver]\nsteps = 2\nstepps = 3\n",
                "a.toml:4: unknown option solver.stepps: the table solver has steps, first_step, "
                "matrix"},
        Mistake{"UnknownTopKey", "case = \"cylinder\"\nchek = true\n",
                "a.toml:2: unknown option chek: without a table there is only case and check; all "
                "others are written table.key, for example parameters.n"},
        Mistake{"ShortForm", "case = \"cylinder\"\n\"--check\" = true\n",
                "a.toml:2: unknown option --check: without a table there is only case and check; "
                "all others are written table.key, for example parameters.n"},
        Mistake{"QuotedName", "case = \"dump\"\n\"mesh.file\" = \"box.geo\"\n",
                "a.toml:2: unknown option \"mesh.file\": the tables of this case are mesh, "
                "parameters"},
        Mistake{"UnknownTable", "case = \"dump\"\n\n[wings]\nn = 1\n",
                "a.toml:3: unknown table wings: the tables of this case are mesh, parameters"},
        Mistake{"ValueForTable", "case = \"dump\"\nmesh = \"box.geo\"\n",
                "a.toml:2: mesh must be a table, not \"box.geo\""},
        Mistake{"ListOfTables", "case = \"dump\"\n[[mesh]]\nfile = \"box.geo\"\n",
                "a.toml:2: mesh must be a table, not a list"},
        Mistake{"NoCase", "[mesh]\nfile = \"box.geo\"\n",
                "a.toml:1: the key case is missing, it must be one of " + host::CaseNames()},
        Mistake{"EmptyFile", "",
                "a.toml:1: the key case is missing, it must be one of " + host::CaseNames()},
        Mistake{"UnknownCase", "\ncase = \"flight\"\n",
                "a.toml:2: case must be one of " + host::CaseNames() + ", not \"flight\""},
        Mistake{"NumberForCase", "case = 3\n",
                "a.toml:1: case must be one of " + host::CaseNames() + ", not 3"},
        Mistake{"FirstOfTwo", "case = \"heat\"\n[solver]\nsteps = -1\n[mesh]\nfil = 1\n",
                "a.toml:3: solver.steps must be at least 0, not -1"}),
    MistakeName);

TEST_F(CaseFileText, MissingMeshFileIsNamed) {
    EXPECT_EQ(
        FileMessageOf("case = \"heat\"\n[mesh]\nfile = \"sub/none.geo\"\n"),
        "a.toml:3: mesh.file names no file: " + directory.Text() + "/sub/none.geo does not exist");
}

TEST_F(CaseFileText, SyntaxErrorsAreReportedWithTheirLine) {
    EXPECT_THAT(FileMessageOf("case = \"heat\"\n[mesh\n"), StartsWith("a.toml:2: "));
    EXPECT_THAT(FileMessageOf("case = \"heat\"\ncase = \"mms\"\n"), StartsWith("a.toml:2: "));
    EXPECT_THAT(FileMessageOf("case =\n"), StartsWith("a.toml:1: "));
    EXPECT_THAT(FileMessageOf("case = \"heat\"\nsolver.steps = 12x\n"), StartsWith("a.toml:2: "));
}

TEST(CaseFileOnDisk, MustBeReadable) {
    const TempDirectory directory;
    const std::string folder = directory.Text() + "/folder.toml";
    std::filesystem::create_directory(folder);

    for (const std::string& path : {directory.Text() + "/none.toml", folder}) {
        EXPECT_EQ(MessageOf({"run", path}), path + ": the case file cannot be read");
        EXPECT_EQ(MessageOf({path}), path + ": the case file cannot be read");
    }
}

TEST(CaseFileOnDisk, MustFollowTheWordRun) {
    EXPECT_EQ(MessageOf({"run"}), "run needs a case file, for example run cases/cylinder.toml");
    EXPECT_EQ(MessageOf({"run", "cylinder"}), "cylinder: the case file cannot be read");
}

}  // namespace
