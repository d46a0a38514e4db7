#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <locale>
#include <random>
#include <sstream>

#include "plain/plain_vtu_writer.h"
#include "tests/support/output_capture.h"
#include "tests/support/temp_directory.h"
#include "tests/vtk_output/output_support.h"
#include "vtk_output/vtk_xml.h"

namespace {

std::string Written(VTK_Block& block) {
    TempDirectory dir;
    const std::string path = dir.Text() + "/file.vtu";
    EXPECT_TRUE(writeVTUFile(path, &block));
    return ReadFile(path);
}

/// The text between the line with `from` and the line with `to`, without these lines.
std::string LinesBetween(const std::string& text, const std::string& from, const std::string& to) {
    const std::size_t begin = text.find('\n', text.find(from)) + 1;
    return text.substr(begin, text.find(to, begin) - begin);
}

/// Compares texts line by line and reports the first line that differs.
void ExpectSameLines(const std::string& actual, const std::string& expected) {
    if (actual == expected) {
        return;
    }
    std::istringstream a(actual);
    std::istringstream b(expected);
    std::string lineA;
    std::string lineB;
    for (int line = 1; std::getline(a, lineA) && std::getline(b, lineB); ++line) {
        ASSERT_EQ(lineA, lineB) << "line " << line;
    }
    FAIL() << "one file is shorter, or the last newline differs";
}

TEST(VtuFile, HasTheExpectedBytes) {
    Tetrahedron one;
    VTK_Data velocity("Velocity");
    velocity.components = {one.cellValue, one.x, one.z};
    one.block.addPointsData(&one.pointData);
    one.block.addCellsData(&one.cellData);
    one.block.addCellsData(&velocity);

    ExpectSameLines(
        Written(one.block),
        "<?xml version=\"1.0\"?>\n"
        "<VTKFile type=\"UnstructuredGrid\" version=\"0.1\" byte_order=\"LittleEndian\">\n"
        "\t<UnstructuredGrid>\n"
        "\t\t<Piece NumberOfPoints=\"4\" NumberOfCells=\"1\">\n"
        "\t\t\t<Points>\n"
        "\t\t\t\t<DataArray type=\"Float32\" Name=\"Position\" NumberOfComponents=\"3\" "
        "format=\"ascii\">\n"
        "\t\t\t\t0 0 0\n"
        "\t\t\t\t1 0 0\n"
        "\t\t\t\t0 1 0\n"
        "\t\t\t\t0 0 0.25\n"
        "\t\t\t\t</DataArray>\n"
        "\t\t\t</Points>\n"
        "\t\t\t<Cells>\n"
        "\t\t\t\t<DataArray type=\"Int32\" Name=\"connectivity\" NumberOfComponents=\"1\" "
        "format=\"ascii\">\n"
        "\t\t\t\t0 1 2 3\n"
        "\t\t\t\t</DataArray>\n"
        "\t\t\t\t<DataArray type=\"Int32\" Name=\"offsets\" NumberOfComponents=\"1\" "
        "format=\"ascii\">\n"
        "\t\t\t\t4\n"
        "\t\t\t\t</DataArray>\n"
        "\t\t\t\t<DataArray type=\"UInt8\" Name=\"types\" NumberOfComponents=\"1\" "
        "format=\"ascii\">\n"
        "\t\t\t\t10\n"
        "\t\t\t\t</DataArray>\n"
        "\t\t\t</Cells>\n"
        "\t\t\t<PointData>\n"
        "\t\t\t\t<DataArray type=\"Float32\" Name=\"Temperature\" NumberOfComponents=\"1\" "
        "format=\"ascii\">\n"
        "\t\t\t\t1\n"
        "\t\t\t\t2.5\n"
        "\t\t\t\t-3\n"
        "\t\t\t\t1e-07\n"
        "\t\t\t\t</DataArray>\n"
        "\t\t\t</PointData>\n"
        "\t\t\t<CellData>\n"
        "\t\t\t\t<DataArray type=\"Float32\" Name=\"Pressure\" NumberOfComponents=\"1\" "
        "format=\"ascii\">\n"
        "\t\t\t\t42\n"
        "\t\t\t\t</DataArray>\n"
        "\t\t\t\t<DataArray type=\"Float32\" Name=\"Velocity\" NumberOfComponents=\"3\" "
        "format=\"ascii\">\n"
        "\t\t\t\t42 0 0\n"
        "\t\t\t\t</DataArray>\n"
        "\t\t\t</CellData>\n"
        "\t\t</Piece>\n"
        "\t</UnstructuredGrid>\n"
        "</VTKFile>\n");
}

TEST(VtuFile, HasNoDataSectionsWithoutArrays) {
    Tetrahedron one;

    const std::string text = Written(one.block);

    EXPECT_EQ(text.find("PointData"), std::string::npos);
    EXPECT_EQ(text.find("CellData"), std::string::npos);
    EXPECT_NE(text.find("\t\t\t</Cells>\n\t\t</Piece>\n"), std::string::npos);
}

TEST(VtuFile, WithoutCellsHasTabsButNoNewlineInOffsetsAndTypes) {
    Tetrahedron one;
    one.cells.clear();
    one.block.addCellsData(&one.cellData);

    const std::string text = Written(one.block);

    EXPECT_NE(text.find("NumberOfCells=\"0\""), std::string::npos);
    EXPECT_EQ(LinesBetween(text, "\"connectivity\"", "\t\t\t\t</DataArray>"), "");
    const std::string eightTabs = "format=\"ascii\">\n\t\t\t\t\t\t\t\t</DataArray>\n";
    EXPECT_NE(text.find("Name=\"offsets\" NumberOfComponents=\"1\" " + eightTabs),
              std::string::npos);
    EXPECT_NE(text.find("Name=\"types\" NumberOfComponents=\"1\" " + eightTabs), std::string::npos);
    EXPECT_NE(text.find("Name=\"Pressure\" NumberOfComponents=\"1\" format=\"ascii\">\n"
                        "\t\t\t\t</DataArray>\n"),
              std::string::npos);
}

TEST(VtuFile, WithoutPointsHasEmptyPointArrays) {
    Tetrahedron one;
    one.points.count = 0;
    one.block.addPointsData(&one.pointData);

    const std::string text = Written(one.block);

    EXPECT_EQ(LinesBetween(text, "\"Position\"", "\t\t\t\t</DataArray>"), "");
    EXPECT_EQ(LinesBetween(text, "\"Temperature\"", "\t\t\t\t</DataArray>"), "");
}

TEST(VtuFile, AnArrayWithoutComponentsHasLinesOfTabs) {
    Tetrahedron one;
    VTK_Data empty("Nothing");
    one.block.addPointsData(&empty);

    const std::string text = Written(one.block);

    EXPECT_EQ(LinesBetween(text, "Name=\"Nothing\" NumberOfComponents=\"0\"", "</DataArray>"),
              "\t\t\t\t\n\t\t\t\t\n\t\t\t\t\n\t\t\t\t\n\t\t\t\t");
}

TEST(VtuFile, ACellWithoutNodesKeepsTheRunningOffset) {
    Tetrahedron one;
    one.cells.push_back(MeshCell(one.nodes, 0));
    one.cells.push_back(MeshCell(one.nodes, 3, true));

    const std::string text = Written(one.block);

    EXPECT_EQ(LinesBetween(text, "\"connectivity\"", "</DataArray>"),
              "\t\t\t\t0 1 2 3\n\t\t\t\t\n\t\t\t\t0 1 2\n\t\t\t\t");
    EXPECT_EQ(LinesBetween(text, "\"offsets\"", "</DataArray>"), "\t\t\t\t4 4 7\n\t\t\t\t");
    EXPECT_EQ(LinesBetween(text, "\"types\"", "</DataArray>"), "\t\t\t\t10 0 5\n\t\t\t\t");
}

TEST(VtuFile, DoesNotEscapeNames) {
    Tetrahedron one;
    one.cellData.name = "p < \"q\" & r";
    one.block.addCellsData(&one.cellData);

    EXPECT_NE(Written(one.block).find("Name=\"p < \"q\" & r\" NumberOfComponents"),
              std::string::npos);
}

TEST(VtuFile, ContainsTheCurrentValuesOfTheArrays) {
    Tetrahedron one;
    one.block.addCellsData(&one.cellData);

    const std::string first = Written(one.block);
    one.cellValue[0] = -0.0;
    const std::string second = Written(one.block);

    EXPECT_EQ(LinesBetween(first, "\"Pressure\"", "</DataArray>"), "\t\t\t\t42\n\t\t\t\t");
    EXPECT_EQ(LinesBetween(second, "\"Pressure\"", "</DataArray>"), "\t\t\t\t-0\n\t\t\t\t");
}

TEST(VtuFile, ReplacesAnExistingFile) {
    Tetrahedron one;
    TempDirectory dir;
    const std::string path = dir.Text() + "/file.vtu";
    WriteFile(path, std::string(100000, 'x'));

    EXPECT_TRUE(writeVTUFile(path, &one.block));

    EXPECT_EQ(ReadFile(path), Written(one.block));
}

TEST(VtuFile, ReportsAPathThatCannotBeOpened) {
    Tetrahedron one;
    TempDirectory dir;
    const std::string path = dir.Text() + "/missing/file.vtu";
    OutputCapture capture;

    const bool written = writeVTUFile(path, &one.block);

    EXPECT_FALSE(written);
    EXPECT_EQ(capture.FlushedOut(), "Opne File: " + path + " With Error\n");
    EXPECT_EQ(capture.Err(), "");
    EXPECT_TRUE(Names(dir.Path()).empty());
}

TEST(VtuFile, ADirectoryInPlaceOfTheFileCannotBeOpened) {
    Tetrahedron one;
    TempDirectory dir;
    OutputCapture capture;

    EXPECT_FALSE(writeVTUFile(dir.Text(), &one.block));
}

#ifdef __linux__
TEST(VtuFile, IsReportedAsWrittenOnAFullDisk) {
    Tetrahedron one;
    OutputCapture capture;

    EXPECT_TRUE(writeVTUFile("/dev/full", &one.block));
    EXPECT_EQ(capture.Out(), "");
}
#endif

/// A locale with a decimal comma and grouped integers.
class Comma : public std::numpunct<char> {
protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\1"; }
};

TEST(VtuFile, IgnoresTheLocaleOfTheHost) {
    Tetrahedron one;
    one.block.addPointsData(&one.pointData);
    const std::string expected = Written(one.block);

    const std::locale before = std::locale::global(std::locale(std::locale(), new Comma));
    const std::string text = Written(one.block);
    std::locale::global(before);

    EXPECT_EQ(text, expected);
}

/// Doubles of every kind: random bits (with infinities and NaN), denormals, zeros of both signs,
/// ordinary sizes and ties of the sixth digit.
std::vector<double> MixedDoubles(std::size_t n, unsigned seed) {
    std::mt19937_64 random(seed);
    std::normal_distribution<double> everyday(0, 30);
    const double special[] = {0.0,
                              -0.0,
                              std::numeric_limits<double>::infinity(),
                              -std::numeric_limits<double>::infinity(),
                              std::numeric_limits<double>::quiet_NaN(),
                              -std::numeric_limits<double>::quiet_NaN(),
                              std::numeric_limits<double>::denorm_min(),
                              1e-310,
                              1e-10,
                              999999.5,
                              0.00009999995};
    std::vector<double> values(n);
    for (std::size_t i = 0; i < n; ++i) {
        const std::uint64_t bits = random();
        switch (i % 4) {
            case 0:
                std::memcpy(&values[i], &bits, sizeof bits);
                break;
            case 1:
                values[i] = everyday(random);
                break;
            case 2:
                values[i] = (static_cast<double>(bits % 2000000) + 0.5) / 1000;
                break;
            default:
                values[i] = special[bits % std::size(special)];
        }
    }
    return values;
}

TEST(VtuFileAgainstPlainWriter, HasTheSameBytesOnRandomBlocks) {
    std::mt19937 random(7);
    TempDirectory dir;
    for (unsigned run = 0; run < 20; ++run) {
        const int n = static_cast<int>(random() % 600);
        const std::size_t m = random() % 600;
        const std::size_t most = std::max<std::size_t>(static_cast<std::size_t>(n), m) + 1;
        std::vector<double> values[4];
        for (unsigned i = 0; i < 4; ++i) {
            values[i] = MixedDoubles(most, 10 * run + i);
        }
        VTK_Points points;
        points.x = values[0].data();
        points.y = values[1].data();
        points.z = values[2].data();
        points.count = n;
        std::vector<int> nodes(40);
        for (int& node : nodes) {
            node = static_cast<int>(random() % 2000000);
        }
        VTK_Cells cells;
        for (std::size_t c = 0; c < m; ++c) {
            cells.push_back(MeshCell(&nodes[random() % 20], static_cast<int>(random() % 20),
                                     random() % 2 == 0));
        }
        VTK_Data scalar("Scalar");
        scalar.components = {values[3].data()};
        VTK_Data wide("Wide");
        wide.components = {values[3].data(), values[0].data(), values[1].data(), values[2].data()};
        VTK_Block block(&points, &cells);
        block.addPointsData(&wide);
        block.addCellsData(&scalar);
        block.addCellsData(&wide);

        ASSERT_TRUE(writeVTUFile(dir.Text() + "/ours.vtu", &block));
        plain::VtuWriter(dir.Text() + "/plain.vtu").Write(block);

        ExpectSameLines(ReadFile(dir.Path() / "ours.vtu"), ReadFile(dir.Path() / "plain.vtu"));
        ASSERT_FALSE(HasFailure()) << "run " << run;
    }
}

TEST(VtuFileAgainstPlainWriter, HasTheSameBytesOnLinesLongerThanTheBuffer) {
    Tetrahedron one;
    std::vector<double*> components(3000, one.pointValue);
    one.pointData.components = components;
    one.block.addPointsData(&one.pointData);
    for (int i = 0; i < 5000; ++i) {
        one.cells.push_back(MeshCell(one.nodes, 4));
    }
    TempDirectory dir;

    plain::VtuWriter(dir.Text() + "/plain.vtu").Write(one.block);

    ExpectSameLines(Written(one.block), ReadFile(dir.Path() / "plain.vtu"));
}

}  // namespace
