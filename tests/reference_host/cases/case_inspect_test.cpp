#include "reference_host/cases/case_inspect.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

#include "tests/reference_host/mesh/mesh_files.h"
#include "tests/support/output_capture.h"
#include "tests/support/temp_directory.h"

namespace {

namespace fs = std::filesystem;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// An inspection of a shipped geometry into a directory of its own.
struct Inspection {
    explicit Inspection(const host::MeshParameters& parameters) {
        run.meshFile = ShippedGeo(boxGeo);
        run.parameters = parameters;
        run.outputDir = directory.Text();
        run.picture = false;
    }

    int Run() {
        OutputCapture capture;
        const int exitCode = host::RunInspect(run);
        text = capture.Out();
        return exitCode;
    }

    bool HasFiles() const {
        return fs::exists(directory.Path() / "cells.vtu") &&
               fs::exists(directory.Path() / "donors.vtu");
    }

    TempDirectory directory;
    host::InspectCase run;
    std::string text;
};

TEST(InspectCase, ReportsASoundMeshAndWhereItsFilesAre) {
    Inspection inspection({{"n", 5}, {"kind", 0}});

    EXPECT_EQ(inspection.Run(), 0);

    EXPECT_THAT(inspection.text, StartsWith("Before the setup\nthe mesh may be set up\n"));
    EXPECT_THAT(inspection.text, HasSubstr("\nSetup\nStep 1"));
    EXPECT_THAT(inspection.text, HasSubstr("\nAfter the setup\nbackground: 400 cells"));
    EXPECT_THAT(inspection.text,
                HasSubstr("\n" + inspection.directory.Text() + "/cells.vtu: all cells"));
    EXPECT_THAT(inspection.text, EndsWith("Open both in ParaView.\n"));
    EXPECT_TRUE(inspection.HasFiles());
}

TEST(InspectCase, DrawsAPictureOrSaysHowToDrawIt) {
    Inspection inspection({{"n", 5}, {"kind", 0}});
    inspection.run.picture = true;

    EXPECT_EQ(inspection.Run(), 0);

    const std::string picture = inspection.directory.Text() + "/inspection.png";
    if (fs::exists(picture)) {
        EXPECT_THAT(inspection.text, EndsWith("\nPicture: " + picture + "\n"));
    } else {
        EXPECT_THAT(inspection.text, HasSubstr("\nNo picture was drawn."));
        EXPECT_THAT(inspection.text, EndsWith("'" + picture + "'\n"));
    }
}

TEST(InspectCase, ExplainsTheCellsAndFacesThatItIsGiven) {
    Inspection inspection({{"n", 5}, {"kind", 0}});
    inspection.run.cells = {190, 1};
    inspection.run.faces = {7};

    EXPECT_EQ(inspection.Run(), 0);

    EXPECT_THAT(inspection.text, HasSubstr("\nExplanations\nCell 190 (grid 1, background) at"));
    EXPECT_THAT(inspection.text, HasSubstr("\nCell 1 (grid 1, background) at"));
    EXPECT_THAT(inspection.text, HasSubstr("\nInner face 7 at"));
}

TEST(InspectCase, RefusesToExplainACellThatDoesNotExist) {
    Inspection inspection({{"n", 5}, {"kind", 0}});
    inspection.run.cells = {561};

    EXPECT_EQ(ErrorOf([&] { inspection.Run(); }), "there is no cell 561: the mesh has 1 to 560");
}

TEST(InspectCase, WritesTheFilesOfAMeshThatBreaksTheMeshRules) {
    Inspection inspection({{"n", 5}, {"kind", 0}, {"ro", 0.8}});

    EXPECT_EQ(inspection.Run(), 1);

    EXPECT_THAT(inspection.text, StartsWith("Before the setup\nthickness: "));
    EXPECT_THAT(inspection.text, HasSubstr("\nAfter the setup\n"));
    EXPECT_TRUE(inspection.HasFiles());
}

TEST(InspectCase, InspectsASingleGrid) {
    Inspection inspection({{"n", 5}, {"kind", 1}});

    EXPECT_EQ(inspection.Run(), 0);

    EXPECT_THAT(inspection.text, HasSubstr("400 cells, 0 cut"));
    EXPECT_TRUE(inspection.HasFiles());
}

TEST(InspectCase, DoesNotSetUpAMeshOnWhichTheSetupIsNotSafe) {
    Inspection inspection({});
    MshText closedBox;
    for (double x : {0.0, 1.0}) {
        closedBox.Box("background", x);
        closedBox.BoxSide("wall", x, 'd');
    }
    closedBox.BoxSide("wall", 0.0, '-');
    closedBox.BoxSide("wall", 1.0, '+');
    inspection.run.meshFile = (inspection.directory.Path() / "closed_box.msh").string();
    WriteFile(inspection.run.meshFile, closedBox.Text());

    EXPECT_EQ(inspection.Run(), 1);

    EXPECT_THAT(inspection.text, StartsWith("Before the setup\nbackground inlet: "));
    EXPECT_THAT(inspection.text, EndsWith("the mesh is not set up and no inspection files are "
                                          "written.\n"));
    EXPECT_THAT(inspection.text, Not(HasSubstr("Step 1")));
    EXPECT_FALSE(inspection.HasFiles());
}

TEST(InspectCase, NamesAnOutputDirectoryThatCannotBeMade) {
    Inspection inspection({{"n", 5}, {"kind", 0}});
    WriteFile(inspection.directory.Path() / "file", "");
    inspection.run.outputDir += "/file/below";

    EXPECT_THAT(ErrorOf([&] { inspection.Run(); }), HasSubstr(inspection.run.outputDir));
}

}  // namespace
