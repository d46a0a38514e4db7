#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>

#include "tests/support/output_capture.h"
#include "tests/vtk_output/output_support.h"
#include "tests/vtk_output/tool_access.h"

namespace {

namespace fs = std::filesystem;

const std::string openError = ">> Error: Open File Error!\n";

/// One process with its own root directory, which has written one step of one block.
struct Process {
    explicit Process(int id) {
        tool.Initialize(Chars(root.Text()), Chars("Run"), id);
        tool.newBlockData(&one.block);
        tool.OutputRun(0.5, 1);
    }

    TempDirectory root;
    Tetrahedron one;
    CKVX_ART_VTK_Tool tool;
};

std::string DataSet(int process) {
    const std::string p = std::to_string(process);
    return "<DataSet timestep=\"0.5\" group=\"1\" part=\"" + p + "\" file=\"Run_" + p +
           "/Run_Itr1_T0.5_P" + p + "_B1.vtu\"/>\n";
}

TEST(DistributedPostRun, CollectsEveryProcessInTheTarget) {
    TempDirectory target;
    Process zero(0);
    Process one(1);
    OutputCapture capture;
    const std::string stepFile = ReadFile(one.root.Path() / "Run_1/Run_Itr1_T0.5_P1_B1.vtu");

    EXPECT_TRUE(one.tool.PostRun_DMP(1, Chars(target.Text())));
    EXPECT_TRUE(zero.tool.PostRun_DMP(0, Chars(target.Text())));

    EXPECT_EQ(Names(target.Path()), (std::vector<std::string>{"Run.pvd", "Run_0", "Run_1"}));
    const std::string pvd = ReadFile(target.Path() / "Run.pvd");
    EXPECT_TRUE(pvd == pvdHead + DataSet(0) + DataSet(1) + pvdEnd ||
                pvd == pvdHead + DataSet(1) + DataSet(0) + pvdEnd)
        << pvd;
    EXPECT_EQ(ReadFile(target.Path() / "Run_1/Run_Itr1_T0.5_P1_B1.vtu"), stepFile + "\n");
    EXPECT_TRUE(Names(zero.root.Path()).empty());
    EXPECT_TRUE(Names(one.root.Path()).empty());
    EXPECT_EQ(capture.Err(), "");
}

TEST(DistributedPostRun, OnlyRankZeroUsesTheTargetAsItsRoot) {
    TempDirectory target;
    Process zero(0);
    Process one(1);
    OutputCapture capture;
    const std::string stepDir = zero.tool.settings->stepDir;

    one.tool.PostRun_DMP(1, Chars(target.Text()));
    zero.tool.PostRun_DMP(0, Chars(target.Text()));

    EXPECT_EQ(one.tool.settings->rootDir, one.root.Text());
    EXPECT_EQ(zero.tool.settings->rootDir, target.Text());
    EXPECT_EQ(zero.tool.settings->stepDir, stepDir);
}

TEST(DistributedPostRun, TheRankMayDifferFromTheProcessNumber) {
    TempDirectory target;
    Process seven(7);
    OutputCapture capture;

    seven.tool.PostRun_DMP(0, Chars(target.Text()));

    EXPECT_EQ(ReadFile(target.Path() / "Run.pvd"), pvdHead + DataSet(7) + pvdEnd);
}

TEST(DistributedPostRun, OtherRanksNeitherWaitNorMerge) {
    TempDirectory target;
    Process one(1);
    OutputCapture capture;

    one.tool.PostRun_DMP(1, Chars(target.Text()));

    EXPECT_EQ(Names(target.Path()), (std::vector<std::string>{"Run.vtkcollection_1", "Run_1"}));
    EXPECT_EQ(ReadFile(target.Path() / "Run.vtkcollection_1"),
              "1\t0.5\t1\t1\tRun_1/Run_Itr1_T0.5_P1_B1.vtu\n\n");
    EXPECT_EQ(capture.Out(), "");
}

TEST(DistributedPostRun, RankZeroWaitsBeforeTheMerge) {
    TempDirectory target;
    Process zero(0);
    OutputCapture capture;
    const auto start = std::chrono::steady_clock::now();

    zero.tool.PostRun_DMP(0, Chars(target.Text()));

    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100));
}

TEST(DistributedPostRun, OverwritesDataOfAnEarlierRun) {
    TempDirectory target;
    Process zero(0);
    OutputCapture capture;
    fs::create_directory(target.Path() / "Run_0");
    WriteFile(target.Path() / "Run_0/Run_Itr1_T0.5_P0_B1.vtu", std::string(100000, 'x'));
    WriteFile(target.Path() / "Run_0/older.vtu", "stays");

    zero.tool.PostRun_DMP(0, Chars(target.Text()));

    EXPECT_LT(ReadFile(target.Path() / "Run_0/Run_Itr1_T0.5_P0_B1.vtu").size(), 5000u);
    EXPECT_EQ(ReadFile(target.Path() / "Run_0/older.vtu"), "stays");
}

TEST(DistributedPostRun, WithoutATargetNoFileIsMoved) {
    Process zero(0);
    Process one(1);
    TempDirectory dir;
    const std::string missing = dir.Text() + "/missing";

    {
        OutputCapture capture;
        EXPECT_TRUE(one.tool.PostRun_DMP(1, Chars(missing)));
        EXPECT_EQ(capture.FlushedOut(), openError + "Error\n");
    }
    {
        OutputCapture capture;
        EXPECT_TRUE(zero.tool.PostRun_DMP(0, Chars(missing)));
        EXPECT_EQ(capture.FlushedOut(), openError + "PVD File Open Error\nError\n");
    }

    EXPECT_EQ(Names(zero.root.Path()), (std::vector<std::string>{"Run.vtkcollection_0", "Run_0"}));
    EXPECT_EQ(Names(one.root.Path()), (std::vector<std::string>{"Run.vtkcollection_1", "Run_1"}));
    EXPECT_EQ(Names(one.root.Path() / "Run_1").size(), 1u);
}

TEST(DistributedPostRun, TheRootAsTargetTruncatesEveryFile) {
    Process zero(0);
    OutputCapture capture;

    EXPECT_TRUE(zero.tool.PostRun_DMP(0, Chars(zero.root.Text())));

    EXPECT_EQ(ReadFile(zero.root.Path() / "Run.pvd"), pvdHead + pvdEnd);
    EXPECT_FALSE(fs::exists(zero.root.Path() / "Run_0"));
    EXPECT_FALSE(fs::exists(zero.root.Path() / "Run.vtkcollection_0"));
}

TEST(MoveOfRecords, AlwaysReturnsTrue) {
    Process zero(0);
    zero.tool.collectionWriter->recordFile.close();
    OutputCapture capture;

    EXPECT_TRUE(tool_access::MoveCollectionFile(zero.tool, "/nowhere/at/all"));

    EXPECT_EQ(capture.Out(), openError);
    EXPECT_TRUE(fs::exists(zero.root.Path() / "Run.vtkcollection_0"));
}

class MoveOfData : public testing::Test {
protected:
    MoveOfData() : process(0) {}

    std::string Step(const std::string& name) { return process.root.Text() + "/Run_0/" + name; }

    TempDirectory target;
    Process process;
    OutputCapture capture;
};

TEST_F(MoveOfData, ASubdirectoryEndsTheMove) {
    fs::create_directory(Step("sub"));

    EXPECT_FALSE(tool_access::MoveDataFolder(process.tool, target.Text()));

    EXPECT_EQ(capture.Out(), openError);
    EXPECT_TRUE(fs::is_directory(Step("sub")));
    EXPECT_EQ(ReadFile(target.Path() / "Run_0/sub"), "");
}

TEST_F(MoveOfData, ANameThatIsTooLongEndsTheMove) {
    const std::string longName(250, 'n');
    WriteFile(Step(longName), "x");

    EXPECT_FALSE(tool_access::MoveDataFolder(process.tool, target.Text()));

    EXPECT_EQ(capture.Out(), openError);
    EXPECT_EQ(ReadFile(Step(longName)), "x");
}

TEST_F(MoveOfData, FilesMovedBeforeAFailureRemainMoved) {
    for (int file = 0; file < 20; ++file) {
        WriteFile(Step("f" + std::to_string(file)), "x");
    }
    fs::create_directory(Step("sub"));

    EXPECT_FALSE(tool_access::MoveDataFolder(process.tool, target.Text()));

    // 20 files, the step file and "sub": each is in one of the two places, and "sub" is in both.
    EXPECT_EQ(Names(Step("")).size() + Names(target.Path() / "Run_0").size(), 23u);
}

TEST(MoveOfDataBlocked, NoFileIsLostWhicheverFileEndsTheMove) {
    for (int blocked = 0; blocked < 6; ++blocked) {
        SCOPED_TRACE(blocked);
        Process process(0);
        TempDirectory target;
        OutputCapture capture;
        const fs::path from = process.root.Path() / "Run_0";
        for (int file = 0; file < 5; ++file) {
            WriteFile(from / ("f" + std::to_string(file)), "x");
        }
        const std::vector<std::string> names = Names(from);
        const fs::path obstacle =
            target.Path() / "Run_0" / names[static_cast<std::size_t>(blocked)];
        fs::create_directories(obstacle);

        EXPECT_FALSE(tool_access::MoveDataFolder(process.tool, target.Text()));

        EXPECT_TRUE(fs::is_regular_file(from / obstacle.filename()));
        for (const std::string& name : names) {
            EXPECT_NE(fs::is_regular_file(from / name),
                      fs::is_regular_file(target.Path() / "Run_0" / name));
        }

        fs::remove(obstacle);
        EXPECT_TRUE(tool_access::MoveDataFolder(process.tool, target.Text()));
        EXPECT_EQ(Names(target.Path() / "Run_0"), names);
        EXPECT_FALSE(fs::exists(from));
    }
}

TEST_F(MoveOfData, AFileInPlaceOfTheTargetDirectoryEndsTheMove) {
    WriteFile(target.Path() / "Run_0", "x");

    EXPECT_FALSE(tool_access::MoveDataFolder(process.tool, target.Text()));

    EXPECT_EQ(capture.Out(), openError);
    EXPECT_EQ(Names(Step("")).size(), 1u);
}

TEST_F(MoveOfData, WithoutADataDirectoryMovesNothing) {
    fs::remove_all(Step(""));

    EXPECT_TRUE(tool_access::MoveDataFolder(process.tool, target.Text()));

    EXPECT_TRUE(Names(target.Path() / "Run_0").empty());
}

TEST_F(MoveOfData, RemovesTheEmptiedDirectory) {
    EXPECT_TRUE(tool_access::MoveDataFolder(process.tool, target.Text()));

    EXPECT_FALSE(fs::exists(Step("")));
}

}  // namespace
