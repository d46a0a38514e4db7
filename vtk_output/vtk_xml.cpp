#include "vtk_output/vtk_xml.h"

#include <fstream>
#include <iostream>

#include "vtk_output/detail/number_text.h"

// The formatting of numbers is in detail/number_text.cpp; the transcription with formatted streams
// is plain/plain_vtu_writer.h.

namespace {

using kvx3d::detail::maxNumberText;
using kvx3d::detail::numberText;
using kvx3d::detail::writeNumberText;

/// A text file that is written line by line. A line is collected in a small buffer and passed to
/// the system at its end, so that a killed run leaves whole lines:
///
///     Put, PutTabs, PutNumber  -->  buffer[0 .. used - 1]  --EndLine-->  file, flushed
///
/// A full buffer is passed on too, since the lines of offsets and types grow with the mesh.
class LineFile {
public:
    explicit LineFile(const std::string& path) : file(path) {}

    bool IsOpen() const { return file.is_open(); }

    void Put(char character) {
        Reserve(1);
        buffer[used++] = character;
    }

    void PutTabs(int n) {
        for (int i = 0; i < n; ++i) {
            Put('\t');
        }
    }

    void PutNumber(int value) {
        Reserve(maxNumberText);
        used = static_cast<int>(writeNumberText(buffer + used, value) - buffer);
    }

    void PutNumber(double value) {
        Reserve(maxNumberText);
        used = static_cast<int>(writeNumberText(buffer + used, value) - buffer);
    }

    void EndLine() {
        Put('\n');
        PassOn();
        file.flush();
    }

    void PutLine(const std::string& text) {
        file << text;
        EndLine();
    }

    /// Passes on the buffer without ending the line.
    void PassOn() {
        file.write(buffer, used);
        used = 0;
    }

private:
    /// Makes room for n characters in the buffer.
    void Reserve(int n) {
        if (used + n > bufferSize) {
            PassOn();
        }
    }

    static constexpr int bufferSize = 4096;
    char buffer[bufferSize];
    int used = 0;
    std::ofstream file;
};

/// The element of an array with its four attributes in the order of output. One node is used for
/// all arrays of a file, because setAttribute() keeps the order.
VTK_XmlNode ArrayNode() {
    VTK_XmlNode node("DataArray", 4);
    node.addAttribute("type", "Float32");
    node.addAttribute("Name", "Position");
    node.addAttribute("NumberOfComponents", 3);
    node.addAttribute("format", "ascii");
    return node;
}

void WritePoints(LineFile& file, VTK_XmlNode& array, const VTK_Points& points) {
    VTK_XmlNode section("Points", 3);
    file.PutLine(section.openTag());
    file.PutLine(array.openTag());
    for (int i = 0; i < points.count; ++i) {
        file.PutTabs(array.level);
        file.PutNumber(points.x[i]);
        file.Put(' ');
        file.PutNumber(points.y[i]);
        file.Put(' ');
        file.PutNumber(points.z[i]);
        file.EndLine();
    }
    file.PutLine(array.closeTag());
    file.PutLine(section.closeTag());
}

void WriteConnectivity(LineFile& file, int level, const VTK_Cells& cells) {
    for (const MeshCell& cell : cells) {
        file.PutTabs(level);
        for (int i = 0; i < cell.count; ++i) {
            if (i > 0) {
                file.Put(' ');
            }
            file.PutNumber(cell.nodes[i] - 1);  // ids are 1-based here and 0-based in the file
        }
        file.EndLine();
    }
}

/// Ends the single line of offsets or types. Without cells the tabs are written but no newline, and
/// the closing tag follows on the same line; readers skip the blanks of an empty element.
void EndCellLine(LineFile& file, const VTK_Cells& cells) {
    if (cells.empty()) {
        file.PassOn();
    } else {
        file.EndLine();
    }
}

void WriteOffsets(LineFile& file, int level, const VTK_Cells& cells) {
    file.PutTabs(level);
    int offset = 0;
    for (std::size_t c = 0; c < cells.size(); ++c) {
        if (c > 0) {
            file.Put(' ');
        }
        offset += cells[c].count;
        file.PutNumber(offset);
    }
    EndCellLine(file, cells);
}

void WriteTypes(LineFile& file, int level, VTK_Cells& cells) {
    file.PutTabs(level);
    for (std::size_t c = 0; c < cells.size(); ++c) {
        if (c > 0) {
            file.Put(' ');
        }
        file.PutNumber(cells[c].getVTK_3dMeshType());
    }
    EndCellLine(file, cells);
}

void WriteCells(LineFile& file, VTK_XmlNode& array, VTK_Cells& cells) {
    VTK_XmlNode section("Cells", 3);
    file.PutLine(section.openTag());

    array.setAttribute("type", "Int32");
    array.setAttribute("Name", "connectivity");
    array.setAttribute("NumberOfComponents", 1);
    file.PutLine(array.openTag());
    WriteConnectivity(file, array.level, cells);
    file.PutLine(array.closeTag());

    array.setAttribute("Name", "offsets");
    file.PutLine(array.openTag());
    WriteOffsets(file, array.level, cells);
    file.PutLine(array.closeTag());

    array.setAttribute("type", "UInt8");
    array.setAttribute("Name", "types");
    file.PutLine(array.openTag());
    WriteTypes(file, array.level, cells);
    file.PutLine(array.closeTag());

    file.PutLine(section.closeTag());
}

/// Writes the arrays over points or cells, `n` lines each. The files declare Float32, since six
/// digits carry no more precision.
void WriteData(LineFile& file, VTK_XmlNode& array, const char* sectionName,
               const std::vector<VTK_Data*>& arrays, int n) {
    if (arrays.empty()) {
        return;
    }
    VTK_XmlNode section(sectionName, 3);
    file.PutLine(section.openTag());
    for (const VTK_Data* data : arrays) {
        array.setAttribute("type", "Float32");
        array.setAttribute("Name", data->name);
        array.setAttribute("NumberOfComponents", static_cast<int>(data->components.size()));
        file.PutLine(array.openTag());
        for (int i = 0; i < n; ++i) {
            file.PutTabs(array.level);
            for (std::size_t c = 0; c < data->components.size(); ++c) {
                if (c > 0) {
                    file.Put(' ');
                }
                file.PutNumber(data->components[c][i]);
            }
            file.EndLine();
        }
        file.PutLine(array.closeTag());
    }
    file.PutLine(section.closeTag());
}

}  // namespace

VTK_XmlNode::VTK_XmlNode(const std::string& nodeName, int nodeLevel)
    : name(nodeName), level(nodeLevel) {}

void VTK_XmlNode::addAttribute(const std::string& key, const std::string& value) {
    attributes.push_back({key, value});
}

void VTK_XmlNode::addAttribute(const std::string& key, int value) {
    addAttribute(key, numberText(value));
}

void VTK_XmlNode::addAttribute(const std::string& key, double value) {
    addAttribute(key, numberText(value));
}

void VTK_XmlNode::setAttribute(const std::string& key, int value) {
    setAttribute(key, numberText(value));
}

void VTK_XmlNode::setAttribute(const std::string& key, const std::string& value) {
    for (VTK_XmlAttribute& attribute : attributes) {
        if (attribute.key == key) {
            attribute.value = value;
            return;
        }
    }
    addAttribute(key, value);
}

std::string VTK_XmlNode::openTag() {
    std::string tag(static_cast<std::size_t>(level), '\t');
    tag += '<' + name;
    for (const VTK_XmlAttribute& attribute : attributes) {
        tag += ' ' + attribute.key + "=\"" + attribute.value + '"';
    }
    return tag + '>';
}

std::string VTK_XmlNode::closeTag() {
    return std::string(static_cast<std::size_t>(level), '\t') + "</" + name + '>';
}

void VTK_XmlNode::writeIndent(std::ostream& out) {
    for (int i = 0; i < level; ++i) {
        out.put('\t');
    }
}

bool writeVTUFile(std::string path, VTK_Block* block) {
    LineFile file(path);
    if (!file.IsOpen()) {
        // [sic] "Opne": the wording is part of the interface and compared as text.
        std::cout << "Opne File: " << path << " With Error" << std::endl;
        return false;
    }

    const int pointsN = block->points->count;
    const int cellsN = static_cast<int>(block->cells->size());
    VTK_XmlNode root("VTKFile", 0);
    root.addAttribute("type", "UnstructuredGrid");
    root.addAttribute("version", 0.1);
    root.addAttribute("byte_order", "LittleEndian");
    VTK_XmlNode grid("UnstructuredGrid", 1);
    VTK_XmlNode piece("Piece", 2);
    piece.addAttribute("NumberOfPoints", pointsN);
    piece.addAttribute("NumberOfCells", cellsN);
    VTK_XmlNode array = ArrayNode();

    file.PutLine("<?xml version=\"1.0\"?>");
    file.PutLine(root.openTag());
    file.PutLine(grid.openTag());
    file.PutLine(piece.openTag());
    WritePoints(file, array, *block->points);
    WriteCells(file, array, *block->cells);
    WriteData(file, array, "PointData", block->pointsData, pointsN);
    WriteData(file, array, "CellData", block->cellsData, cellsN);
    file.PutLine(piece.closeTag());
    file.PutLine(grid.closeTag());
    file.PutLine(root.closeTag());
    return true;  // also on a full disk: a lost result file must not stop the solver
}

std::string fileExtension(int blockType) {
    return blockType == 0 ? ".vtu" : "";
}
