#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "tests/support/output_capture.h"
#include "tests/vtk_output/output_support.h"
#include "tests/vtk_output/tool_access.h"

namespace {

namespace fs = std::filesystem;

class Directories : public testing::Test {
protected:
    std::string In(const std::string& name) { return dir.Text() + "/" + name; }

    TempDirectory dir;
    CKVX_ART_VTK_Tool tool;
};

TEST_F(Directories, OpenDirCreatesTheLastLevelOnly) {
    EXPECT_TRUE(tool_access::OpenDir(tool, In("a")));
    EXPECT_TRUE(fs::is_directory(In("a")));
    EXPECT_FALSE(tool_access::OpenDir(tool, In("b/c")));
    EXPECT_FALSE(fs::exists(In("b")));
}

TEST_F(Directories, OpenDirAcceptsWhatExists) {
    WriteFile(In("file"), "x");

    EXPECT_TRUE(tool_access::OpenDir(tool, dir.Text()));
    EXPECT_TRUE(tool_access::OpenDir(tool, In("file")));
    EXPECT_TRUE(fs::is_regular_file(In("file")));
}

TEST_F(Directories, OpenDirFailsBelowAFile) {
    WriteFile(In("file"), "x");

    EXPECT_FALSE(tool_access::OpenDir(tool, In("file/a")));
}

TEST_F(Directories, CheckDirFindsFilesAndDirectories) {
    WriteFile(In("file"), "x");

    EXPECT_TRUE(tool_access::CheckDir(tool, dir.Text()));
    EXPECT_TRUE(tool_access::CheckDir(tool, In("file")));
    EXPECT_FALSE(tool_access::CheckDir(tool, In("missing")));
}

TEST_F(Directories, DeleteDirRemovesAnEmptyDirectory) {
    fs::create_directory(In("a"));

    EXPECT_TRUE(tool_access::DeleteDir(tool, In("a")));
    EXPECT_FALSE(fs::exists(In("a")));
}

TEST_F(Directories, DeleteDirSucceedsWithoutADirectory) {
    EXPECT_TRUE(tool_access::DeleteDir(tool, In("missing")));
}

TEST_F(Directories, DeleteDirRemovesNeitherAFullDirectoryNorAFile) {
    fs::create_directory(In("a"));
    WriteFile(In("a/file"), "x");

    EXPECT_FALSE(tool_access::DeleteDir(tool, In("a")));
    EXPECT_FALSE(tool_access::DeleteDir(tool, In("a/file")));
    EXPECT_TRUE(fs::exists(In("a/file")));
}

using FileMove = Directories;

TEST_F(FileMove, DoublesTheLastByte) {
    WriteFile(In("from"), "one\r\ntwo\n");
    OutputCapture capture;

    EXPECT_TRUE(tool_access::Move(tool, In("from"), In("to")));

    EXPECT_EQ(ReadFile(In("to")), "one\r\ntwo\n\n");
    EXPECT_FALSE(fs::exists(In("from")));
    EXPECT_EQ(capture.Out(), "");
}

TEST_F(FileMove, DoublesTheOnlyByte) {
    WriteFile(In("from"), std::string(1, '\0'));

    EXPECT_TRUE(tool_access::Move(tool, In("from"), In("to")));

    EXPECT_EQ(ReadFile(In("to")), std::string(2, '\0'));
}

TEST_F(FileMove, TurnsAnEmptyFileIntoOneByte) {
    WriteFile(In("from"), "");

    EXPECT_TRUE(tool_access::Move(tool, In("from"), In("to")));

    EXPECT_EQ(ReadFile(In("to")).size(), 1u);
    EXPECT_FALSE(fs::exists(In("from")));
}

class FileMoveOfSize : public testing::TestWithParam<std::size_t> {};

TEST_P(FileMoveOfSize, CopiesEveryByteValue) {
    std::mt19937 random(5);
    std::string bytes(GetParam(), '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(random());
    }
    TempDirectory dir;
    WriteFile(dir.Path() / "from", bytes);
    CKVX_ART_VTK_Tool tool;

    EXPECT_TRUE(tool_access::Move(tool, dir.Text() + "/from", dir.Text() + "/to"));

    EXPECT_TRUE(ReadFile(dir.Path() / "to") == bytes + bytes.back());
}

INSTANTIATE_TEST_SUITE_P(AroundTheBuffer, FileMoveOfSize,
                         testing::Values(65535, 65536, 65537, 131072, 200001));

TEST_F(FileMove, TruncatesAnExistingTarget) {
    WriteFile(In("from"), "new");
    WriteFile(In("to"), "something much longer");

    EXPECT_TRUE(tool_access::Move(tool, In("from"), In("to")));

    EXPECT_EQ(ReadFile(In("to")), "neww");
}

TEST_F(FileMove, AMissingSourceStillTruncatesTheTarget) {
    WriteFile(In("to"), "old");
    OutputCapture capture;

    EXPECT_FALSE(tool_access::Move(tool, In("from"), In("to")));

    EXPECT_EQ(ReadFile(In("to")), "");
    EXPECT_EQ(capture.FlushedOut(), ">> Error: Open File Error!\n");
}

TEST_F(FileMove, ADirectoryCountsAsASourceThatCannotBeOpened) {
    fs::create_directory(In("from"));
    OutputCapture capture;

    EXPECT_FALSE(tool_access::Move(tool, In("from"), In("to")));

    EXPECT_TRUE(fs::is_directory(In("from")));
    EXPECT_EQ(ReadFile(In("to")), "");
    EXPECT_EQ(capture.Out(), ">> Error: Open File Error!\n");
}

TEST_F(FileMove, KeepsTheSourceIfTheTargetCannotBeOpened) {
    WriteFile(In("from"), "bytes");
    OutputCapture capture;

    EXPECT_FALSE(tool_access::Move(tool, In("from"), In("missing/to")));
    EXPECT_FALSE(tool_access::Move(tool, In("from"), dir.Text()));

    EXPECT_EQ(ReadFile(In("from")), "bytes");
    EXPECT_EQ(capture.Out(), ">> Error: Open File Error!\n>> Error: Open File Error!\n");
}

TEST_F(FileMove, AMoveOntoItselfLosesTheFile) {
    WriteFile(In("same"), "bytes");
    OutputCapture capture;

    EXPECT_TRUE(tool_access::Move(tool, In("same"), In("same")));

    EXPECT_FALSE(fs::exists(In("same")));
    EXPECT_EQ(capture.Out(), "");
}

#ifdef __linux__
TEST_F(FileMove, ASourceThatCannotBeDeletedIsReportedAndCountsAsMoved) {
    OutputCapture capture;

    // Nobody can delete the files of the kernel, not even root.
    EXPECT_TRUE(tool_access::Move(tool, "/proc/sys/kernel/ostype", In("to")));

    EXPECT_EQ(ReadFile(In("to")), "Linux\n\n");
    EXPECT_EQ(capture.FlushedOut(), ">> Error: Delete File Error!\n");
}
#endif

}  // namespace
