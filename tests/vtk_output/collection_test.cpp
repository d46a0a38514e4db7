#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include "tests/support/output_capture.h"
#include "tests/vtk_output/output_support.h"

namespace {

namespace fs = std::filesystem;

/// A run directory, a block and an initialized tool, with captured output.
class Collection : public testing::Test {
protected:
    explicit Collection(int processId = 0) {
        initialized = tool.Initialize(Chars(dir.Text()), Chars("Run"), processId);
    }

    std::string In(const std::string& name) { return dir.Text() + "/" + name; }

    OutputCapture capture;
    TempDirectory dir;
    Tetrahedron one;
    CKVX_ART_VTK_Tool tool;
    bool initialized;
};

class CollectionOfProcess5 : public Collection {
protected:
    CollectionOfProcess5() : Collection(5) {}
};

TEST_F(CollectionOfProcess5, InitializeNamesTheRunAndOpensTheRecordFile) {
    EXPECT_TRUE(initialized);
    EXPECT_EQ(tool.settings->rootDir, dir.Text());
    EXPECT_EQ(tool.settings->project, "Run");
    EXPECT_EQ(tool.settings->processId, 5);
    EXPECT_EQ(tool.settings->stepDir, In("Run_5"));
    EXPECT_TRUE(tool.collectionWriter->recordFile.is_open());
    EXPECT_EQ(Names(dir.Path()), (std::vector<std::string>{"Run.vtkcollection_5", "Run_5"}));
    EXPECT_TRUE(fs::is_directory(In("Run_5")));
}

TEST_F(Collection, ASecondInitializeDoublesThePath) {
    EXPECT_FALSE(tool.Initialize(Chars(dir.Text()), Chars("Run"), 0));

    EXPECT_EQ(tool.settings->stepDir, In("Run_0") + In("Run_0"));
}

TEST_F(Collection, InitializeTruncatesTheRecordsOfAnEarlierRun) {
    tool.newBlockData(&one.block);
    tool.OutputRun(0.5, 20);

    CKVX_ART_VTK_Tool next;
    EXPECT_TRUE(next.Initialize(Chars(dir.Text()), Chars("Run"), 0));

    EXPECT_EQ(ReadFile(In("Run.vtkcollection_0")), "");
    EXPECT_EQ(Names(In("Run_0")).size(), 1u);
}

TEST_F(Collection, AFileWithTheNameOfTheDataDirectoryIsAccepted) {
    WriteFile(In("Other_0"), "x");
    CKVX_ART_VTK_Tool other;

    EXPECT_TRUE(other.Initialize(Chars(dir.Text()), Chars("Other"), 0));
}

TEST_F(Collection, NamesStepFilesByIterationTimeProcessAndBlock) {
    tool.newBlockData(&one.block);

    EXPECT_TRUE(tool.OutputRun(0.5, 20));

    EXPECT_EQ(tool.settings->time, 0.5);
    EXPECT_EQ(tool.settings->iteration, 20);
    EXPECT_EQ(Names(In("Run_0")), std::vector<std::string>{"Run_Itr20_T0.5_P0_B1.vtu"});
    EXPECT_EQ(capture.Out(), "");
}

TEST_F(Collection, PrintsTimesWithSixDigits) {
    tool.newBlockData(&one.block);

    tool.OutputRun(1.0 / 3, 1);
    tool.OutputRun(1e-7, -2);
    tool.OutputRun(12345678.0, 3);

    EXPECT_EQ(Names(In("Run_0")), (std::vector<std::string>{"Run_Itr-2_T1e-07_P0_B1.vtu",
                                                            "Run_Itr1_T0.333333_P0_B1.vtu",
                                                            "Run_Itr3_T1.23457e+07_P0_B1.vtu"}));
}

TEST_F(Collection, TimesEqualToSixDigitsShareAFileAndHaveTwoRecords) {
    one.block.addCellsData(&one.cellData);
    tool.newBlockData(&one.block);

    tool.OutputRun(0.1234567, 1);
    one.cellValue[0] = 43;
    tool.OutputRun(0.1234568, 1);

    EXPECT_EQ(Names(In("Run_0")).size(), 1u);
    EXPECT_NE(ReadFile(In("Run_0/Run_Itr1_T0.123457_P0_B1.vtu")).find("\t43\n"), std::string::npos);
    const std::string record = "1\t0.123457\t0\t1\tRun_0/Run_Itr1_T0.123457_P0_B1.vtu\n";
    EXPECT_EQ(ReadFile(In("Run.vtkcollection_0")), record + record);
}

TEST_F(CollectionOfProcess5, RecordsAreFlushedLineByLine) {
    tool.newBlockData(&one.block);
    tool.newBlockData(&one.block);

    tool.OutputRun(0.5, 20);

    EXPECT_EQ(ReadFile(In("Run.vtkcollection_5")),
              "20\t0.5\t5\t1\tRun_5/Run_Itr20_T0.5_P5_B1.vtu\n"
              "20\t0.5\t5\t2\tRun_5/Run_Itr20_T0.5_P5_B2.vtu\n");
}

TEST_F(Collection, ABlockOfAnotherTypeHasARecordWithoutExtensionAndNoFile) {
    one.block.blockType = 2;
    tool.newBlockData(&one.block);

    EXPECT_TRUE(tool.OutputRun(0, 1));

    EXPECT_TRUE(Names(In("Run_0")).empty());
    EXPECT_EQ(ReadFile(In("Run.vtkcollection_0")), "1\t0\t0\t1\tRun_0/Run_Itr1_T0_P0_B1\n");
}

TEST_F(Collection, AStepFileThatCannotBeOpenedEndsTheStep) {
    tool.newBlockData(&one.block);
    tool.newBlockData(&one.block);
    tool.newBlockData(&one.block);
    const std::string blocked = In("Run_0/Run_Itr1_T0_P0_B2.vtu");
    fs::create_directory(blocked);

    EXPECT_FALSE(tool.OutputRun(0, 1));

    EXPECT_EQ(capture.FlushedOut(),
              "Opne File: " + blocked + " With Error\nFile: " + blocked + " Open Error\n");
    EXPECT_EQ(ReadFile(In("Run.vtkcollection_0")), "1\t0\t0\t1\tRun_0/Run_Itr1_T0_P0_B1.vtu\n");
    EXPECT_FALSE(fs::exists(In("Run_0/Run_Itr1_T0_P0_B3.vtu")));
}

TEST_F(Collection, AnyBlockOfAStepMayFail) {
    for (int block = 1; block <= 3; ++block) {
        tool.newBlockData(&one.block);
    }
    for (int failing = 1; failing <= 4; ++failing) {
        SCOPED_TRACE(failing);
        const std::string prefix = "Run_Itr" + std::to_string(failing) + "_T0_P0_B";
        fs::create_directory(In("Run_0/" + prefix + std::to_string(failing) + ".vtu"));
        tool.collectionWriter->openRecordFile();

        EXPECT_EQ(tool.OutputRun(0, failing), failing == 4);

        const std::string records = ReadFile(In("Run.vtkcollection_0"));
        EXPECT_EQ(std::count(records.begin(), records.end(), '\n'), failing - 1);
    }
}

class CollectionWithoutDirectory : public testing::Test {
protected:
    TempDirectory dir;
    Tetrahedron one;
    CKVX_ART_VTK_Tool tool;
};

TEST_F(CollectionWithoutDirectory, InitializeFailsWithoutAMessage) {
    OutputCapture capture;

    EXPECT_FALSE(tool.Initialize(Chars(dir.Text() + "/missing"), Chars("Run"), 0));

    EXPECT_FALSE(tool.collectionWriter->recordFile.is_open());
    EXPECT_EQ(capture.Out(), "");
    EXPECT_TRUE(Names(dir.Path()).empty());
}

TEST_F(CollectionWithoutDirectory, EachStepPrintsTheTwoOpenErrors) {
    OutputCapture capture;
    const std::string root = dir.Text() + "/missing";
    tool.Initialize(Chars(root), Chars("Run"), 3);
    tool.newBlockData(&one.block);

    EXPECT_FALSE(tool.OutputRun(0.25, 1));

    const std::string file = root + "/Run_3/Run_Itr1_T0.25_P3_B1.vtu";
    EXPECT_EQ(capture.Out(), "Opne File: " + file + " With Error\nFile: " + file + " Open Error\n");
}

TEST_F(CollectionWithoutDirectory, WithoutARecordFileOnlyTheRecordsAreLost) {
    OutputCapture capture;
    fs::create_directory(dir.Path() / "Run.vtkcollection_0");
    tool.newBlockData(&one.block);

    EXPECT_FALSE(tool.Initialize(Chars(dir.Text()), Chars("Run"), 0));
    EXPECT_TRUE(tool.OutputRun(0, 1));

    EXPECT_EQ(Names(dir.Path() / "Run_0").size(), 1u);
    EXPECT_EQ(capture.Out(), "");
}

TEST_F(CollectionWithoutDirectory, AStepBeforeInitializeWritesToTheRootOfTheFileSystem) {
    OutputCapture capture;
    tool.settings->project = "missing/Run";
    tool.newBlockData(&one.block);

    EXPECT_FALSE(tool.OutputRun(0.25, 1));

    const std::string file = tool.settings->separator + "missing/Run_Itr1_T0.25_P0_B1.vtu";
    EXPECT_EQ(capture.FlushedOut(),
              "Opne File: " + file + " With Error\nFile: " + file + " Open Error\n");
}

// --- post-run on a single machine ---

TEST_F(CollectionOfProcess5, PostRunWritesTheSeriesAndDeletesTheRecords) {
    tool.newBlockData(&one.block);
    tool.newBlockData(&one.block);
    tool.OutputRun(0.5, 20);
    tool.OutputRun(1, 40);

    EXPECT_TRUE(tool.PostRun_Single_SMP(0));

    EXPECT_EQ(ReadFile(In("Run.pvd")), pvdHead +
                                           "<DataSet timestep=\"0.5\" group=\"1\" part=\"5\" "
                                           "file=\"Run_5/Run_Itr20_T0.5_P5_B1.vtu\"/>\n"
                                           "<DataSet timestep=\"0.5\" group=\"2\" part=\"5\" "
                                           "file=\"Run_5/Run_Itr20_T0.5_P5_B2.vtu\"/>\n"
                                           "<DataSet timestep=\"1\" group=\"1\" part=\"5\" "
                                           "file=\"Run_5/Run_Itr40_T1_P5_B1.vtu\"/>\n"
                                           "<DataSet timestep=\"1\" group=\"2\" part=\"5\" "
                                           "file=\"Run_5/Run_Itr40_T1_P5_B2.vtu\"/>\n" +
                                           pvdEnd);
    EXPECT_EQ(Names(dir.Path()), (std::vector<std::string>{"Run.pvd", "Run_5"}));
    EXPECT_EQ(capture.FlushedOut(), In("Run.vtkcollection_5") + "\n");
    EXPECT_FALSE(tool.pvdWriter->pvdFile.is_open());
    EXPECT_FALSE(tool.collectionWriter->recordFile.is_open());
}

TEST_F(Collection, ARunWithoutBlocksHasAnEmptySeries) {
    EXPECT_TRUE(tool.OutputRun(0, 1));
    EXPECT_EQ(ReadFile(In("Run.vtkcollection_0")), "");

    tool.PostRun_Single_SMP(0);

    EXPECT_EQ(ReadFile(In("Run.pvd")), pvdHead + pvdEnd);
}

TEST_F(Collection, OtherRanksKeepTheirRecordsForRankZero) {
    tool.newBlockData(&one.block);
    tool.OutputRun(0, 1);

    EXPECT_TRUE(tool.PostRun_Single_SMP(1));

    EXPECT_EQ(Names(dir.Path()), (std::vector<std::string>{"Run.vtkcollection_0", "Run_0"}));
    EXPECT_FALSE(tool.collectionWriter->recordFile.is_open());
    EXPECT_EQ(capture.Out(), "");
}

TEST_F(Collection, RankZeroWaitsBeforeTheMerge) {
    const auto start = std::chrono::steady_clock::now();

    tool.PostRun_Single_SMP(0);

    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100));
}

TEST_F(Collection, StepsAfterThePostRunLoseTheirRecords) {
    tool.newBlockData(&one.block);
    tool.PostRun_Single_SMP(0);

    EXPECT_TRUE(tool.OutputRun(2, 2));

    EXPECT_EQ(Names(In("Run_0")).size(), 1u);
    EXPECT_EQ(Names(dir.Path()), (std::vector<std::string>{"Run.pvd", "Run_0"}));
}

TEST_F(Collection, ASecondToolInTheSameRootIsMergedToo) {
    WriteFile(In("Other.vtkcollection_7"), "3\t0.75\t7\t2\tOther_7/x.vtu\n");

    tool.PostRun_Single_SMP(0);

    EXPECT_EQ(ReadFile(In("Run.pvd")),
              pvdHead +
                  "<DataSet timestep=\"0.75\" group=\"2\" part=\"7\" file=\"Other_7/x.vtu\"/>\n" +
                  pvdEnd);
    EXPECT_FALSE(fs::exists(In("Other.vtkcollection_7")));
}

TEST_F(Collection, TheRecordsAreDeletedEvenIfThePvdCannotBeOpened) {
    tool.newBlockData(&one.block);
    tool.OutputRun(0, 1);
    fs::create_directory(In("Run.pvd"));

    EXPECT_TRUE(tool.PostRun_Single_SMP(0));

    EXPECT_EQ(capture.FlushedOut(), "PVD File Open Error\n" + In("Run.vtkcollection_0") + "\n");
    EXPECT_FALSE(fs::exists(In("Run.vtkcollection_0")));
}

TEST_F(Collection, ClosingAPvdThatIsNotOpenFails) {
    EXPECT_FALSE(tool.pvdWriter->closePvd());

    EXPECT_TRUE(tool.pvdWriter->openPvd());
    EXPECT_TRUE(tool.pvdWriter->openPvd());
    EXPECT_TRUE(tool.pvdWriter->closePvd());
    EXPECT_FALSE(tool.pvdWriter->closePvd());
    EXPECT_EQ(ReadFile(In("Run.pvd")), pvdHead + pvdEnd);
}

TEST_F(Collection, DestructionKeepsRecordsAndWritesNoSeries) {
    {
        CKVX_ART_VTK_Tool aborted;
        aborted.Initialize(Chars(dir.Text()), Chars("Aborted"), 0);
        aborted.newBlockData(&one.block);
        aborted.OutputRun(0, 1);
    }

    EXPECT_EQ(ReadFile(In("Aborted.vtkcollection_0")),
              "1\t0\t0\t1\tAborted_0/Aborted_Itr1_T0_P0_B1.vtu\n");
    EXPECT_FALSE(fs::exists(In("Aborted.pvd")));
}

}  // namespace
