#include "host_checks/detail/donor_lines.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <locale>

namespace kvx3d::checks {
namespace {

constexpr int lineType = 3;       // VTK_LINE
constexpr int linesPerDonor = 2;  // cell to face, face to donor
constexpr int pointsPerDonor = 3;

/// Writes one array of an ASCII file: `n` values, one a line.
template <class ValueOf>
void WriteArray(std::ofstream& file, const char* type, const char* name, std::size_t n,
                ValueOf valueOf) {
    file << "<DataArray type=\"" << type << "\" Name=\"" << name << "\" format=\"ascii\">\n";
    for (std::size_t i = 0; i < n; ++i) {
        file << valueOf(i) << '\n';
    }
    file << "</DataArray>\n";
}

void WritePoint(std::ofstream& file, const Point& point) {
    file << Float32Value(point.x) << ' ' << Float32Value(point.y) << ' ' << Float32Value(point.z)
         << '\n';
}

void WritePoints(std::ofstream& file, const MeshView& mesh, const std::vector<DonorLine>& lines) {
    file << "<Points>\n<DataArray type=\"Float32\" Name=\"Position\" NumberOfComponents=\"3\" "
            "format=\"ascii\">\n";
    for (const DonorLine& line : lines) {
        WritePoint(file, mesh.CellCenter(line.search.cell));
        WritePoint(file, line.faceCenter);
        WritePoint(file, mesh.CellCenter(line.search.donor));
    }
    file << "</DataArray>\n</Points>\n";
}

void WriteCells(std::ofstream& file, std::size_t nCells) {
    const auto firstPoint = [](std::size_t cell) {
        return cell / linesPerDonor * pointsPerDonor + cell % linesPerDonor;
    };
    file << "<Cells>\n";
    WriteArray(file, "Int32", "connectivity", 2 * nCells,
               [&](std::size_t i) { return firstPoint(i / 2) + i % 2; });
    WriteArray(file, "Int32", "offsets", nCells, [](std::size_t i) { return 2 * (i + 1); });
    WriteArray(file, "UInt8", "types", nCells, [](std::size_t) { return lineType; });
    file << "</Cells>\n";
}

void WriteCellData(std::ofstream& file, const std::vector<DonorLine>& lines) {
    const std::size_t n = linesPerDonor * lines.size();
    const auto lineOf = [&](std::size_t i) -> const DonorLine& { return lines[i / linesPerDonor]; };
    file << "<CellData>\n";
    WriteArray(file, "Int32", "boundary", n,
               [&](std::size_t i) { return static_cast<int>(lineOf(i).boundary); });
    WriteArray(file, "Int32", "face", n, [&](std::size_t i) { return lineOf(i).face; });
    WriteArray(file, "Int32", "tries", n, [&](std::size_t i) { return lineOf(i).search.tries; });
    WriteArray(file, "Float32", "distance", n,
               [&](std::size_t i) { return Float32Value(lineOf(i).search.distance); });
    file << "</CellData>\n";
}

}  // namespace

double Float32Value(double value) {
    constexpr double largest = std::numeric_limits<float>::max();
    return std::isnan(value) ? 0.0 : std::clamp(value, -largest, largest);
}

std::vector<DonorLine> FacesThatNeedDonors(const MeshView& mesh, const BoundedDonorSearch& search) {
    std::vector<DonorLine> lines;
    for (int face = 1; face <= mesh.fvm.Ne; ++face) {
        const DonorRecord record = search.InnerDonor(face);
        if (record.verdict != DonorVerdict::NotAHoleBoundaryFace) {
            lines.push_back({DonorBoundary::Hole, face, mesh.InnerFaceCenter(face), record});
        }
    }
    for (int face = 1; face <= mesh.fvm.NWall; ++face) {
        const DonorRecord record = search.NearestWallDonor(face);
        if (record.verdict != DonorVerdict::NotAnOuterFace && search.IsActive(record.cell)) {
            lines.push_back({DonorBoundary::Outer, face, mesh.Walls().Center(face), record});
        }
    }
    return lines;
}

bool WriteDonorLines(const std::string& path, const MeshView& mesh,
                     const std::vector<DonorLine>& lines) {
    std::vector<DonorLine> found;
    std::copy_if(lines.begin(), lines.end(), std::back_inserter(found),
                 [](const DonorLine& line) { return line.search.donor > 0; });
    std::ofstream file(path);
    file.imbue(std::locale::classic());
    file << "<?xml version=\"1.0\"?>\n"
            "<VTKFile type=\"UnstructuredGrid\" version=\"0.1\" byte_order=\"LittleEndian\">\n"
            "<UnstructuredGrid>\n<Piece NumberOfPoints=\""
         << pointsPerDonor * found.size() << "\" NumberOfCells=\"" << linesPerDonor * found.size()
         << "\">\n";
    WritePoints(file, mesh, found);
    WriteCells(file, linesPerDonor * found.size());
    WriteCellData(file, found);
    file << "</Piece>\n</UnstructuredGrid>\n</VTKFile>\n";
    return static_cast<bool>(file.flush());
}

}  // namespace kvx3d::checks
