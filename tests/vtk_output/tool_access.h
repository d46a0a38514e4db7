#ifndef KVX3D_TESTS_VTK_OUTPUT_TOOL_ACCESS_H
#define KVX3D_TESTS_VTK_OUTPUT_TOOL_ACCESS_H

#include <string>

#include "vtk_output/vtk_tool.h"

/// The private file operations of the tool.
namespace tool_access {

bool OpenDir(CKVX_ART_VTK_Tool& tool, const std::string& path);
bool CheckDir(CKVX_ART_VTK_Tool& tool, const std::string& path);
bool DeleteDir(CKVX_ART_VTK_Tool& tool, const std::string& path);
bool Move(CKVX_ART_VTK_Tool& tool, const std::string& source, const std::string& target);
bool MoveCollectionFile(CKVX_ART_VTK_Tool& tool, const std::string& targetDir);
bool MoveDataFolder(CKVX_ART_VTK_Tool& tool, const std::string& targetDir);

}  // namespace tool_access

#endif
