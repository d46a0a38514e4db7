#include "host_checks/inspection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <numeric>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/box_host.h"
#include "tests/support/output_capture.h"
#include "tests/support/temp_directory.h"

namespace {

namespace fs = std::filesystem;
using kvx3d::checks::CellExplanation;
using kvx3d::checks::Explainer;
using kvx3d::checks::InspectionFiles;
using kvx3d::checks::MeshView;
using kvx3d::checks::WriteInspection;

/// A host set up by the toolbox.
struct Inspected {
    explicit Inspected(BoxHost filled) : host(std::move(filled)) {
        const OutputCapture quiet;
        overset.SetFVM(&host.gv, &host.fvm);
    }

    InspectionFiles Write(const std::string& directory) {
        const OutputCapture quiet;
        return WriteInspection(directory, host.gv, host.fvm, overset);
    }

    BoxHost host;
    CKVXOversetMesh overset;
};

BoxHost Pair() {
    return BoxHost(20, 20, 3).WithComponentGrid(10, 10, 3, {5.25, 5.25, 0}, {10, 10, 3},
                                                sideZMin | sideZMax);
}

/// The component ends half a cell before a wall. Cells are cut there, so the hole has the oblique
/// boundary of the fixed vector, and many faces on it find no donor.
BoxHost ComponentAtTheWall() {
    return BoxHost(20, 20, 3).WithComponentGrid(10, 10, 3, {5.25, 0.5, 0}, {10, 10, 3},
                                                sideZMin | sideZMax);
}

/// The numbers of an array of an ASCII .vtu file.
std::vector<double> ArrayOf(const std::string& path, const std::string& name) {
    const std::string text = ReadFile(path);
    const std::size_t at = text.find("Name=\"" + name + "\"");
    if (at == std::string::npos) {
        ADD_FAILURE() << path << " has no array " << name;
        return {};
    }
    const std::size_t begin = text.find('>', at) + 1;
    std::istringstream words(text.substr(begin, text.find('<', begin) - begin));
    std::vector<double> values;
    for (double value = 0.0; words >> value;) {
        values.push_back(value);
    }
    return values;
}

double SumOf(const std::vector<double>& values) {
    return std::accumulate(values.begin(), values.end(), 0.0);
}

void ExpectValid(const InspectionFiles& files) {
    const std::string command = "/usr/bin/python3 " KVX3D_CHECK_VTU " '" + files.cells + "' '" +
                                files.donors + "' > /dev/null";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
}

/// The message of the exception, empty without one.
std::string MessageOf(Inspected& mesh, const std::string& directory) {
    try {
        mesh.Write(directory);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "";
}

TEST(InspectionFiles, AreValidAndNothingElseIsLeftInTheDirectory) {
    const TempDirectory directory;
    Inspected mesh(Pair());
    const std::string target = (directory.Path() / "new directory" / "inspection").string();

    const InspectionFiles files = mesh.Write(target);

    EXPECT_EQ(files.cells, target + "/cells.vtu");
    EXPECT_EQ(files.donors, target + "/donors.vtu");
    ExpectValid(files);
    int nEntries = 0;
    for (const auto& entry : fs::directory_iterator(target)) {
        ++nEntries;
        EXPECT_TRUE(entry.path() == files.cells || entry.path() == files.donors) << entry.path();
    }
    EXPECT_EQ(nEntries, 2);
}

TEST(InspectionFiles, HoldWhatTheExplainerSaysOfEveryCell) {
    const TempDirectory directory;
    Inspected mesh(Pair());
    const MeshView view(mesh.host.gv, mesh.host.fvm);
    const Explainer explainer(view, mesh.overset);

    const InspectionFiles files = mesh.Write(directory.Text());

    const std::vector<double> grid = ArrayOf(files.cells, "grid");
    const std::vector<double> state = ArrayOf(files.cells, "state");
    const std::vector<double> step = ArrayOf(files.cells, "step");
    const std::vector<double> distance = ArrayOf(files.cells, "distance");
    const std::vector<double> margin = ArrayOf(files.cells, "margin");
    ASSERT_EQ(static_cast<int>(grid.size()), mesh.host.fvm.Nc);
    for (const auto* array : {&state, &step, &distance, &margin}) {
        ASSERT_EQ(array->size(), grid.size());
    }
    for (int cell = 1; cell <= mesh.host.fvm.Nc; ++cell) {
        const CellExplanation why = explainer.ExplainCell(cell);
        ASSERT_EQ(grid[cell - 1], why.grid);
        ASSERT_EQ(state[cell - 1], why.state);
        ASSERT_EQ(step[cell - 1], static_cast<int>(why.step));
        ASSERT_EQ(distance[cell - 1], why.distance);  // quarters: exact with six digits
        ASSERT_EQ(margin[cell - 1], why.marginLength);
    }
}

TEST(InspectionFiles, CountTheDonorsOfEveryCell) {
    const TempDirectory directory;
    Inspected mesh(Pair());
    const MeshView view(mesh.host.gv, mesh.host.fvm);
    const Explainer explainer(view, mesh.overset);
    std::vector<double> expected(mesh.host.fvm.Nc, 0.0);
    int nHole = 0;
    for (int face = 1; face <= mesh.host.fvm.Ne; ++face) {
        if (const int donor = explainer.ExplainInnerFace(face).donor.donor) {
            expected[donor - 1] += 1.0;
            ++nHole;
        }
    }
    int nOuter = 0;
    for (int face = 1; face <= mesh.host.fvm.NWall; ++face) {
        if (const int donor = explainer.ExplainWallFace(face).donor.donor) {
            expected[donor - 1] += 1.0;
            ++nOuter;
        }
    }
    ASSERT_GT(nHole, 0);
    ASSERT_EQ(nOuter, 4 * 10 * 3);

    const InspectionFiles files = mesh.Write(directory.Text());

    EXPECT_EQ(ArrayOf(files.cells, "donor_count"), expected);
    EXPECT_EQ(SumOf(ArrayOf(files.cells, "missing_donors")), 0.0);
    const std::vector<double> boundary = ArrayOf(files.donors, "boundary");
    EXPECT_EQ(SumOf(boundary), 2.0 * (nHole + 2 * nOuter));
}

TEST(InspectionFiles, DrawEachDonorFromItsActiveCellOverItsFace) {
    const TempDirectory directory;
    Inspected mesh(Pair());
    const MeshView view(mesh.host.gv, mesh.host.fvm);
    const Explainer explainer(view, mesh.overset);

    const InspectionFiles files = mesh.Write(directory.Text());

    const std::vector<double> points = ArrayOf(files.donors, "Position");
    const std::vector<double> faces = ArrayOf(files.donors, "face");
    const auto why = explainer.ExplainInnerFace(static_cast<int>(faces[0]));
    const auto cell = view.CellCenter(why.donor.cell);
    const auto donor = view.CellCenter(why.donor.donor);
    EXPECT_EQ(std::vector<double>(points.begin(), points.begin() + 9),
              (std::vector<double>{cell.x, cell.y, cell.z, why.center.x, why.center.y, why.center.z,
                                   donor.x, donor.y, donor.z}));
    const std::vector<double> ends = ArrayOf(files.donors, "connectivity");
    EXPECT_EQ(std::vector<double>(ends.begin(), ends.begin() + 8),
              (std::vector<double>{0, 1, 1, 2, 3, 4, 4, 5}));
    EXPECT_EQ(ArrayOf(files.donors, "tries")[0], why.donor.tries);
    EXPECT_NEAR(ArrayOf(files.donors, "distance")[0], why.donor.distance, 1e-6);
}

TEST(InspectionFiles, CountTheMissingDonorsAndLeaveThemOutOfTheLines) {
    const TempDirectory directory;
    Inspected mesh(ComponentAtTheWall());
    const MeshView view(mesh.host.gv, mesh.host.fvm);
    const Explainer explainer(view, mesh.overset);
    std::vector<double> missing(mesh.host.fvm.Nc, 0.0);
    int nFound = 0;
    for (int face = 1; face <= mesh.host.fvm.Ne; ++face) {
        const auto why = explainer.ExplainInnerFace(face);
        if (why.donor.donor > 0) {
            ++nFound;
        } else if (why.type == OversetInnerFace_Overset) {
            missing[why.donor.cell - 1] += 1.0;
        }
    }
    int nOuter = 0;  // a cut cell needs no donor at its outer face
    for (int face = 1; face <= mesh.host.fvm.NWall; ++face) {
        const auto why = explainer.ExplainWallFace(face);
        nOuter += why.group > 0 && explainer.Donors().IsActive(why.cell) ? 1 : 0;
    }
    ASSERT_LT(nOuter, 4 * 10 * 3);
    ASSERT_GE(*std::max_element(missing.begin(), missing.end()), 2.0);

    const InspectionFiles files = mesh.Write(directory.Text());

    ExpectValid(files);
    EXPECT_EQ(ArrayOf(files.cells, "missing_donors"), missing);
    const std::vector<double> boundary = ArrayOf(files.donors, "boundary");
    EXPECT_EQ(std::count(boundary.begin(), boundary.end(), 1.0), 2 * nFound);
    EXPECT_EQ(std::count(boundary.begin(), boundary.end(), 2.0), 2 * nOuter);
}

TEST(InspectionFiles, HoldNoNumberThatAFloat32CannotHold) {
    const TempDirectory directory;
    Inspected mesh(Pair());
    mesh.host.arrays.node[0][1] = 1e300;
    mesh.host.arrays.node[1][1] = -std::numeric_limits<double>::infinity();
    mesh.host.arrays.node[2][1] = std::numeric_limits<double>::quiet_NaN();
    mesh.host.arrays.volume[1] = std::numeric_limits<double>::infinity();
    mesh.host.arrays.cellCentre[0][2] = 1e300;

    const InspectionFiles files = mesh.Write(directory.Text());

    ExpectValid(files);
    const std::vector<double> nodes = ArrayOf(files.cells, "Position");
    EXPECT_EQ(std::vector<double>(nodes.begin(), nodes.begin() + 3),
              (std::vector<double>{3.40282e+38, -3.40282e+38, 0}));
    EXPECT_EQ(ArrayOf(files.cells, "margin")[0], 3.40282e+38);
}

TEST(InspectionFiles, ReplaceEarlierOnes) {
    const TempDirectory directory;
    Inspected mesh(Pair());
    WriteFile(directory.Path() / "cells.vtu", std::string(1 << 20, 'x'));
    WriteFile(directory.Path() / "donors.vtu", std::string(1 << 20, 'x'));

    ExpectValid(mesh.Write(directory.Text()));
}

TEST(InspectionFailure, NamesTheDirectoryThatCannotBeMade) {
    const TempDirectory directory;
    Inspected mesh(Pair());
    WriteFile(directory.Path() / "occupied", "a file\n");

    const std::string message = MessageOf(mesh, directory.Text() + "/occupied");

    EXPECT_EQ(message, "the inspection file " + directory.Text() +
                           "/occupied/cells.vtu cannot be written: check that the directory "
                           "exists, is writable and is not full");
}

TEST(InspectionFailure, LeavesNothingBesideADirectoryInTheWay) {
    const TempDirectory directory;
    Inspected mesh(Pair());
    fs::create_directories(directory.Path() / "cells.vtu" / "kept");

    EXPECT_NE(MessageOf(mesh, directory.Text()).find("cells.vtu cannot be written"),
              std::string::npos);

    EXPECT_TRUE(fs::exists(directory.Path() / "cells.vtu" / "kept"));
    EXPECT_EQ(std::distance(fs::directory_iterator(directory.Path()), fs::directory_iterator()), 1);
}

TEST(InspectionFailure, NoticesAFullDiskInTheFileOfCells) {
    const TempDirectory directory;
    Inspected mesh(Pair());
    fs::create_directory(directory.Path() / "inspection_cells_0");
    fs::create_symlink("/dev/full", directory.Path() / "inspection_cells_0" /
                                        "inspection_cells_Itr0_T0_P0_B1.vtu");

    EXPECT_NE(MessageOf(mesh, directory.Text()).find("cells.vtu cannot be written"),
              std::string::npos);
}

TEST(InspectionFailure, NoticesAFullDiskInTheFileOfDonors) {
    const TempDirectory directory;
    Inspected mesh(Pair());
    fs::create_symlink("/dev/full", directory.Path() / "donors.vtu");

    EXPECT_NE(MessageOf(mesh, directory.Text()).find("donors.vtu cannot be written"),
              std::string::npos);
}

}  // namespace
