#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <locale>

#include "tests/support/output_capture.h"
#include "tests/vtk_output/output_support.h"

namespace {

namespace fs = std::filesystem;

/// A run directory without records and a tool that merges there, with captured output.
class Merge : public testing::Test {
protected:
    Merge() {
        tool.settings->rootDir = dir.Text();
        tool.settings->project = "Run";
    }

    std::string In(const std::string& name) { return dir.Text() + "/" + name; }

    /// The `.pvd` lines that result from a record file with these bytes.
    std::string Merged(const std::string& records) {
        WriteFile(In("x.vtkcollection"), records);
        tool.pvdWriter->openPvd();
        EXPECT_TRUE(tool.pvdWriter->mergeCollectionFile("x.vtkcollection"));
        tool.pvdWriter->closePvd();
        const std::string text = ReadFile(In("Run.pvd"));
        return text.substr(pvdHead.size(), text.size() - pvdHead.size() - pvdEnd.size());
    }

    OutputCapture capture;
    TempDirectory dir;
    CKVX_ART_VTK_Tool tool;
};

std::string DataSet(const std::string& time, int group, int part, const std::string& file) {
    return "<DataSet timestep=\"" + time + "\" group=\"" + std::to_string(group) + "\" part=\"" +
           std::to_string(part) + "\" file=\"" + file + "\"/>\n";
}

TEST_F(Merge, IncludesNamesThatContainTheText) {
    for (const char* name :
         {".vtkcollection", ".vtkcollectio", "vtkcollection_12", "a.vtkcollection",
          "a.vtkcollection_0", "b.vtkcollection.bak", "c.VTKCollection_0"}) {
        WriteFile(In(name), "");
    }
    fs::create_directory(In("dir.vtkcollection_1"));

    std::vector<std::string> names = tool.pvdWriter->findCollectionFiles();

    std::sort(names.begin(), names.end());
    EXPECT_EQ(names,
              (std::vector<std::string>{".vtkcollection", "a.vtkcollection", "a.vtkcollection_0",
                                        "b.vtkcollection.bak", "dir.vtkcollection_1"}));
}

TEST_F(Merge, IgnoresANameThatIsTooLong) {
    const std::string longName = ".vtkcollection_" + std::string(230, '1');
    WriteFile(In(longName), "1 0 1 1 f\n");
    WriteFile(In("Run.vtkcollection_2"), "1 0 2 1 f\n");

    EXPECT_EQ(tool.pvdWriter->findCollectionFiles(),
              std::vector<std::string>{"Run.vtkcollection_2"});
    EXPECT_TRUE(tool.pvdWriter->mergeCollections());

    EXPECT_EQ(Names(dir.Path()), std::vector<std::string>{longName});
}

TEST_F(Merge, AMissingRootHasNoRecordFiles) {
    tool.settings->rootDir = In("missing");

    EXPECT_TRUE(tool.pvdWriter->findCollectionFiles().empty());
    EXPECT_TRUE(tool.pvdWriter->mergeCollections());
}

TEST_F(Merge, UsesTheOrderOfTheSystem) {
    for (int process = 0; process < 12; ++process) {
        WriteFile(In("Run.vtkcollection_" + std::to_string(process)),
                  "1 0 " + std::to_string(process) + " 1 f\n");
    }
    std::string expected;
    for (const std::string& name : tool.pvdWriter->findCollectionFiles()) {
        expected += DataSet("0", 1, std::stoi(name.substr(name.find('_') + 1)), "f");
    }

    tool.pvdWriter->openPvd();
    EXPECT_TRUE(tool.pvdWriter->mergeCollections());
    tool.pvdWriter->closePvd();

    EXPECT_EQ(ReadFile(In("Run.pvd")), pvdHead + expected + pvdEnd);
}

TEST_F(Merge, ReadsAnyWhitespaceAndIgnoresTheIteration) {
    EXPECT_EQ(Merged("1 0.5\n2   3\ta/b.vtu 7\t1e3\t0\t1\tc"),
              DataSet("0.5", 3, 2, "a/b.vtu") + DataSet("1000", 1, 0, "c"));
}

TEST_F(Merge, EndsAtTheFirstWordThatCannotBeParsed) {
    const std::string good = "1\t0.5\t0\t1\ta\n";

    EXPECT_EQ(Merged(good + "x\t0.5\t0\t1\tb\n" + good), DataSet("0.5", 1, 0, "a"));
    EXPECT_EQ(Merged(good + "2\tnan\t0\t1\tb\n"), DataSet("0.5", 1, 0, "a"));
    EXPECT_EQ(Merged(good + "2\t1\t0\t1"), DataSet("0.5", 1, 0, "a"));
    EXPECT_EQ(Merged(good + "99999999999\t1\t0\t1\tb"), DataSet("0.5", 1, 0, "a"));
    EXPECT_EQ(Merged(""), "");
}

TEST_F(Merge, ABlankInTheProjectNameEndsTheMergeOfTheFile) {
    const std::string record = "1\t0.5\t0\t1\tMy Run_0/My Run_Itr1_T0.5_P0_B1.vtu\n";

    EXPECT_EQ(Merged(record + record), DataSet("0.5", 1, 0, "My"));
}

TEST_F(Merge, SkipsTheSecondNewlineThatAMoveAdds) {
    EXPECT_EQ(Merged("1\t0.5\t0\t1\ta\n\n"), DataSet("0.5", 1, 0, "a"));
}

TEST_F(Merge, ReadsWithADecimalPointWhateverTheLocale) {
    class Comma : public std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\1"; }
    };
    const std::locale before = std::locale::global(std::locale(std::locale(), new Comma));
    const std::string lines = Merged("12345\t0.5\t1234\t1\ta\n");
    std::locale::global(before);

    EXPECT_EQ(lines, DataSet("0.5", 1, 1234, "a"));
}

TEST_F(Merge, PrintsThePathAndFailsForAMissingFile) {
    EXPECT_FALSE(tool.pvdWriter->mergeCollectionFile("gone.vtkcollection_1"));

    EXPECT_EQ(capture.FlushedOut(), In("gone.vtkcollection_1") + "\n");
}

TEST_F(Merge, StopsAtTheFirstFileThatCannotBeDeleted) {
    // A directory that is not empty can be opened, contains no records and cannot be deleted.
    fs::create_directory(In("full.vtkcollection_0"));
    WriteFile(In("full.vtkcollection_0/file"), "x");
    for (int process = 1; process <= 5; ++process) {
        WriteFile(In("Run.vtkcollection_" + std::to_string(process)), "1 0 0 1 f\n");
    }
    const std::vector<std::string> names = tool.pvdWriter->findCollectionFiles();
    const auto full = std::find(names.begin(), names.end(), "full.vtkcollection_0");

    EXPECT_FALSE(tool.pvdWriter->mergeCollections());

    for (auto name = names.begin(); name != names.end(); ++name) {
        EXPECT_EQ(fs::exists(In(*name)), name >= full) << *name;
    }
}

/// Changes the current directory during its lifetime.
class CurrentDirectory {
public:
    explicit CurrentDirectory(const fs::path& directory) : before(fs::current_path()) {
        fs::current_path(directory);
    }
    ~CurrentDirectory() { fs::current_path(before); }

private:
    fs::path before;
};

TEST(Listing, PrintsTheEntriesThatContainTheText) {
    TempDirectory dir;
    WriteFile(dir.Path() / "myACMTfile", "");
    WriteFile(dir.Path() / "acmt", "");
    WriteFile(dir.Path() / "ACM", "");
    const CurrentDirectory current(dir.Path());
    CKVX_ART_VTK_Tool tool;

    testing::internal::CaptureStdout();
    const bool listed = tool.test();
    const std::string out = testing::internal::GetCapturedStdout();

    EXPECT_TRUE(listed);
    EXPECT_EQ(out, "myACMTfile\n");
    EXPECT_EQ(tool.settings->rootDir, "");
}

TEST(Listing, MarksDirectories) {
    TempDirectory dir;
    fs::create_directory(dir.Path() / "ACMT");
    const CurrentDirectory current(dir.Path());
    CKVX_ART_VTK_Tool tool;

    testing::internal::CaptureStdout();
    tool.test();

    EXPECT_EQ(testing::internal::GetCapturedStdout(), "ACMT/\n");
}

}  // namespace
