#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "nonmatching/art_nonmatching_tools.h"
#include "tests/support/box_host.h"
#include "tests/support/output_capture.h"
#include "tests/support/temp_directory.h"

namespace {

namespace fs = std::filesystem;

const std::string nameBefore = "Check_NonmatchingFaceData_BeforePreprocess";
const std::string nameAfter = "Check_NonmatchingFaceData_AfterPreprocess";

class CheckOutput : public testing::Test {
protected:
    bool Check(BoxHost& host, bool beforePreprocess) {
        host.WithRootDir(dir.Text());
        return CheckAsItStands(host, beforePreprocess);
    }

    static bool CheckAsItStands(BoxHost& host, bool beforePreprocess) {
        art_nonmatching_tools tools;
        tools.SetFVM(&host.gv, &host.fvm);
        return tools.CheckNonmatchingFaceVTKData(beforePreprocess);
    }

    std::string BlockFile(const std::string& name, int block) {
        return ReadFile(dir.Path() / (name + "_1") /
                        (name + "_Itr0_T0_P1_B" + std::to_string(block) + ".vtu"));
    }

    /// The connectivity lines in the file of a block.
    std::string Cells(const std::string& name, int block) {
        const std::string text = BlockFile(name, block);
        const std::size_t begin = text.find('\n', text.find("\"connectivity\"")) + 1;
        return text.substr(begin, text.find("\t\t\t\t</DataArray>", begin) - begin);
    }

    TempDirectory dir;
};

/// The connectivity line of a cell: the ids of the host minus 1.
std::string Line(const BoxHost& host, int cell) {
    std::string line = "\t\t\t\t";
    const int* row = host.fvm.cellNodes[cell];
    for (int i = 1; i <= row[0]; ++i) {
        line += (i > 1 ? " " : "") + std::to_string(row[i] - 1);
    }
    return line + "\n";
}

TEST_F(CheckOutput, FailsWithoutAHost) {
    BoxHost host(2, 1, 1);
    host.WithRootDir(dir.Text());
    art_nonmatching_tools tools;
    OutputCapture capture;

    EXPECT_FALSE(tools.CheckNonmatchingFaceVTKData(true));
    tools.SetFVM(&host.gv, nullptr);
    EXPECT_FALSE(tools.CheckNonmatchingFaceVTKData(true));
    tools.SetFVM(nullptr, &host.fvm);
    EXPECT_FALSE(tools.CheckNonmatchingFaceVTKData(false));

    const std::string line = "<ERROR> Must SetFVM First!\n";
    EXPECT_EQ(capture.FlushedOut(), line + line + line);
    EXPECT_TRUE(fs::is_empty(dir.Path()));
}

TEST_F(CheckOutput, GroupsTheCellsOfFlaggedFacesByTheCavityOfTheOwner) {
    BoxHost host(5, 1, 1);
    host.WithNonmatchingFaces({1, 2, 4}).WithRootDir(dir.Text());
    host.arrays.cavity = {-7777, 1, 0, 1, -2, 1};
    OutputCapture capture;

    EXPECT_TRUE(CheckAsItStands(host, true));

    EXPECT_EQ(Cells(nameBefore, 1),
              Line(host, 1) + Line(host, 2) + Line(host, 3) + Line(host, 4) + Line(host, 5));
    EXPECT_EQ(Cells(nameBefore, 2), Line(host, 1));
    EXPECT_EQ(Cells(nameBefore, 3), Line(host, 2));
    EXPECT_EQ(Cells(nameBefore, 4), Line(host, 2) + Line(host, 4));
    EXPECT_EQ(Cells(nameBefore, 5), Line(host, 3) + Line(host, 5));
    EXPECT_EQ(capture.Out(), "");
}

TEST_F(CheckOutput, ListsAnOwnerOncePerFaceAndANeighborOnce) {
    BoxHost host(3, 3, 1);
    host.WithRootDir(dir.Text());
    // Two faces with owner 7 and neighbor 9; face 3 makes cell 7 a neighbor as well.
    for (int face : {1, 2}) {
        host.fvm.Ce23[0][face] = 7;
        host.fvm.Ce23[1][face] = 9;
        host.fvm.nonmatchingFace[face] = 1;
    }
    host.fvm.Ce23[0][3] = 2;
    host.fvm.Ce23[1][3] = 7;
    host.fvm.nonmatchingFace[3] = 1;

    CheckAsItStands(host, true);

    EXPECT_EQ(Cells(nameBefore, 2), Line(host, 7) + Line(host, 7) + Line(host, 2));
    EXPECT_EQ(Cells(nameBefore, 3), Line(host, 9) + Line(host, 7));
    EXPECT_EQ(Cells(nameBefore, 4), "");
    EXPECT_EQ(Cells(nameBefore, 5), "");
}

TEST_F(CheckOutput, EachOfTheTwoNeighborListsIsUniqueByItself) {
    BoxHost host(4, 1, 1);
    host.WithNonmatchingFaces({1, 2}).WithRootDir(dir.Text());
    host.arrays.cavity[2] = 0;
    host.fvm.Ce23[1][1] = 3;

    CheckAsItStands(host, true);

    EXPECT_EQ(Cells(nameBefore, 3), Line(host, 3));
    EXPECT_EQ(Cells(nameBefore, 5), Line(host, 3));
}

TEST_F(CheckOutput, OnlyTheValueOneIsAFlag) {
    BoxHost host(3, 1, 1);
    host.WithRootDir(dir.Text());
    host.arrays.nonmatching = {-7777, 2, -1};

    CheckAsItStands(host, true);

    for (int block = 2; block <= 5; ++block) {
        EXPECT_EQ(Cells(nameBefore, block), "");
    }
}

TEST_F(CheckOutput, AfterThePreprocessWritesTheMeshAndFourEmptyBlocks) {
    BoxHost host(3, 2, 2);
    host.WithNonmatchingFaces({1, 2, 3}).WithRootDir(dir.Text());
    art_nonmatching_tools tools;
    tools.SetFVM(&host.gv, &host.fvm);
    {
        OutputCapture quiet;
        tools.NonmatchingPreprocess();
    }

    EXPECT_TRUE(tools.CheckNonmatchingFaceVTKData(false));

    std::string all;
    for (int cell = 1; cell <= host.fvm.Nc; ++cell) {
        all += Line(host, cell);
    }
    EXPECT_EQ(Cells(nameAfter, 1), all);
    for (int block = 2; block <= 5; ++block) {
        EXPECT_EQ(Cells(nameAfter, block), "");
        EXPECT_NE(BlockFile(nameAfter, block).find("NumberOfCells=\"0\""), std::string::npos);
    }
}

TEST_F(CheckOutput, WritesTheRecordFileOfProcess1AndNoSeries) {
    BoxHost host(2, 1, 1);
    host.WithProcess(4);

    Check(host, true);

    EXPECT_FALSE(fs::exists(dir.Path() / (nameBefore + ".pvd")));
    std::string records;
    for (int block = 1; block <= 5; ++block) {
        const std::string b = std::to_string(block);
        records += "0\t0\t1\t" + b + "\t" + nameBefore + "_1/" + nameBefore + "_Itr0_T0_P1_B" + b +
                   ".vtu\n";
    }
    EXPECT_EQ(ReadFile(dir.Path() / (nameBefore + ".vtkcollection_1")), records);
}

TEST_F(CheckOutput, WritesAllNodesInEveryBlock) {
    BoxHost host(2, 1, 1);

    Check(host, false);

    for (int block = 1; block <= 5; ++block) {
        const std::string text = BlockFile(nameAfter, block);
        EXPECT_NE(text.find("NumberOfPoints=\"12\""), std::string::npos);
        EXPECT_NE(text.find("\t\t\t\t0 0 0\n\t\t\t\t1 0 0\n\t\t\t\t2 0 0\n"), std::string::npos);
        EXPECT_EQ(text.find("PointData"), std::string::npos);
        EXPECT_EQ(text.find("CellData"), std::string::npos);
    }
}

TEST_F(CheckOutput, DoesNotChangeTheHost) {
    BoxHost host(3, 2, 1);
    host.WithNonmatchingFaces({1, 4}).WithRootDir(dir.Text());
    const BoxHost before = host;

    CheckAsItStands(host, true);

    EXPECT_EQ(host.arrays.nonmatching, before.arrays.nonmatching);
    EXPECT_EQ(host.arrays.owner, before.arrays.owner);
    EXPECT_EQ(host.arrays.cellNodes, before.arrays.cellNodes);
    EXPECT_EQ(host.fvm.nxe[1], before.fvm.nxe[1]);
}

TEST_F(CheckOutput, ReturnsTrueEvenIfTheDirectoryDoesNotExist) {
    BoxHost host(2, 1, 1);
    host.WithRootDir(dir.Text() + "/missing");
    OutputCapture capture;

    EXPECT_TRUE(CheckAsItStands(host, true));

    const std::string file =
        dir.Text() + "/missing/" + nameBefore + "_1/" + nameBefore + "_Itr0_T0_P1_B1.vtu";
    EXPECT_EQ(capture.Out(), "Opne File: " + file + " With Error\nFile: " + file + " Open Error\n");
}

}  // namespace
