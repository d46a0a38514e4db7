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

/// Name, attributes and depth of one XML element. It only formats tags: it has no children and no
/// text, and the tree exists only in the order in which a writer prints the tags.
///
/// Values are not escaped: `<`, `&` and `"` are written as they are.
class VTK_XmlNode {
public:
    VTK_XmlNode(const std::string& name, int level);

    /// Append an attribute, without checking for an equal key.
    void addAttribute(const std::string& key, const std::string& value);
    void addAttribute(const std::string& key, int value);
    void addAttribute(const std::string& key, double value);

    /// Replace the value of the first attribute with exactly this key, which keeps its place. If
    /// there is none, append one.
    void setAttribute(const std::string& key, int value);
    void setAttribute(const std::string& key, const std::string& value);

    /// `level` tabs and the opening tag, never in the empty-element form `<.../>`.
    std::string openTag();

    /// `level` tabs and the closing tag.
    std::string closeTag();

    /// Writes `level` tabs.
    void writeIndent(std::ostream& out);

    std::string name;
    std::vector<VTK_XmlAttribute> attributes;  ///< in the order added, which is that of output
    int level;                                 ///< tabs before the tags and the data lines
};

/// Writes one block as a VTK XML UnstructuredGrid file in ASCII and replaces an existing file.
/// Every line is flushed at its end.
///
/// @param block  with points and cells set, and one entry per point or cell in each component;
///               neither is checked
/// @return false (and one line on standard output) if the file cannot be opened; later errors are
///         not detected
bool writeVTUFile(std::string path, VTK_Block* block);

/// ".vtu" for block type 0, empty for any other.
std::string fileExtension(int blockType);

#endif
