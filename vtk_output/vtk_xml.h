#ifndef KVX3D_VTK_OUTPUT_VTK_XML_H
#define KVX3D_VTK_OUTPUT_VTK_XML_H

#include "vtk_output/vtk_data.h"

#include <iosfwd>
#include <string>
#include <vector>

/// One attribute of an element.
class VTK_XmlAttribute {
public:
    std::string key;
    std::string value;  ///< as text; numbers are converted when they are added
};

/// Name, attributes and depth of one XML element. It renders tags and nothing else: it holds no
/// children and no text, and the tree exists only in the order in which a writer prints.
///
/// Values are not escaped: `<`, `&` and `"` pass through as they are.
class VTK_XmlNode {
public:
    VTK_XmlNode(const std::string& name, int level);

    /// Append, without a look for an equal key.
    void addAttribute(const std::string& key, const std::string& value);
    void addAttribute(const std::string& key, int value);
    void addAttribute(const std::string& key, double value);

    /// Replace the value of the first attribute with exactly this key, which keeps its place, or
    /// append one.
    void setAttribute(const std::string& key, int value);
    void setAttribute(const std::string& key, const std::string& value);

    /// `level` tabs and the opening tag. There is no empty-element form.
    std::string openTag();

    /// `level` tabs and the closing tag.
    std::string closeTag();

    /// Writes `level` tabs.
    void writeIndent(std::ostream& out);

    std::string name;
    std::vector<VTK_XmlAttribute> attributes;  ///< in the order added, which is that of output
    int level;                                 ///< tabs before the tags and the data lines
};

/// Writes one block as a VTK XML UnstructuredGrid file in ASCII, truncating what was there. Every
/// line is flushed as it ends.
///
/// @param block  points and cells set, each component one entry per point or cell: nothing is
///               checked
/// @return false (and one line on standard output) if the file cannot be opened; errors after that
///         are not looked at
bool writeVTUFile(std::string path, VTK_Block* block);

/// ".vtu" for block type 0, empty for any other.
std::string fileExtension(int blockType);

#endif
