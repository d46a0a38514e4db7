#ifndef KVX3D_PLAIN_PLAIN_VTU_WRITER_H
#define KVX3D_PLAIN_PLAIN_VTU_WRITER_H

#include <fstream>
#include <string>
#include <vector>

#include "vtk_output/vtk_data.h"

namespace plain {

/// The file writer in its simplest form: the same file by formatted stream insertion, one value at
/// a time, with std::endl at the end of each line.
///
/// The tests require the writer to give the same bytes, the benchmark measures the ratio of the
/// times. So keep this simple and do not optimize it.
class VtuWriter {
public:
    explicit VtuWriter(const std::string& path) : out(path) {}

    void Write(const VTK_Block& block) {
        const int n = block.points->count;
        const std::size_t m = block.cells->size();
        out << "<?xml version=\"1.0\"?>" << std::endl;
        out << "<VTKFile type=\"UnstructuredGrid\" version=\"" << 0.1
            << "\" byte_order=\"LittleEndian\">" << std::endl;
        out << "\t<UnstructuredGrid>" << std::endl;
        out << "\t\t<Piece NumberOfPoints=\"" << n << "\" NumberOfCells=\"" << m << "\">"
            << std::endl;
        WritePoints(*block.points);
        WriteCells(*block.cells);
        WriteData("PointData", block.pointsData, static_cast<std::size_t>(n));
        WriteData("CellData", block.cellsData, m);
        out << "\t\t</Piece>" << std::endl;
        out << "\t</UnstructuredGrid>" << std::endl;
        out << "</VTKFile>" << std::endl;
    }

private:
    void OpenArray(const char* type, const std::string& name, std::size_t components) {
        out << "\t\t\t\t<DataArray type=\"" << type << "\" Name=\"" << name
            << "\" NumberOfComponents=\"" << components << "\" format=\"ascii\">" << std::endl;
    }

    void CloseArray() { out << "\t\t\t\t</DataArray>" << std::endl; }

    void WritePoints(const VTK_Points& points) {
        out << "\t\t\t<Points>" << std::endl;
        OpenArray("Float32", "Position", 3);
        for (int i = 0; i < points.count; ++i) {
            out << "\t\t\t\t" << points.x[i] << ' ' << points.y[i] << ' ' << points.z[i]
                << std::endl;
        }
        CloseArray();
        out << "\t\t\t</Points>" << std::endl;
    }

    void WriteCells(const VTK_Cells& cells) {
        out << "\t\t\t<Cells>" << std::endl;
        OpenArray("Int32", "connectivity", 1);
        for (const MeshCell& cell : cells) {
            out << "\t\t\t\t";
            for (int i = 0; i < cell.count; ++i) {
                out << (i > 0 ? " " : "") << cell.nodes[i] - 1;
            }
            out << std::endl;
        }
        CloseArray();
        OpenArray("Int32", "offsets", 1);
        out << "\t\t\t\t";
        int offset = 0;
        for (std::size_t c = 0; c < cells.size(); ++c) {
            offset += cells[c].count;
            out << (c > 0 ? " " : "") << offset;
        }
        if (!cells.empty()) {
            out << std::endl;
        }
        CloseArray();
        OpenArray("UInt8", "types", 1);
        out << "\t\t\t\t";
        for (std::size_t c = 0; c < cells.size(); ++c) {
            MeshCell cell = cells[c];
            out << (c > 0 ? " " : "") << cell.getVTK_3dMeshType();
        }
        if (!cells.empty()) {
            out << std::endl;
        }
        CloseArray();
        out << "\t\t\t</Cells>" << std::endl;
    }

    void WriteData(const char* section, const std::vector<VTK_Data*>& arrays, std::size_t n) {
        if (arrays.empty()) {
            return;
        }
        out << "\t\t\t<" << section << '>' << std::endl;
        for (const VTK_Data* data : arrays) {
            OpenArray("Float32", data->name, data->components.size());
            for (std::size_t i = 0; i < n; ++i) {
                out << "\t\t\t\t";
                for (std::size_t c = 0; c < data->components.size(); ++c) {
                    out << (c > 0 ? " " : "") << data->components[c][i];
                }
                out << std::endl;
            }
            CloseArray();
        }
        out << "\t\t\t</" << section << '>' << std::endl;
    }

    std::ofstream out;
};

}  // namespace plain

#endif
