#include "tests/vtk_output/tool_access.h"

#include "tests/support/private_access.h"

using PathOperation = bool (CKVX_ART_VTK_Tool::*)(std::string);
using TwoPathOperation = bool (CKVX_ART_VTK_Tool::*)(std::string, std::string);

KVX3D_EXPOSE(ToolOpenDir, &CKVX_ART_VTK_Tool::OpenDir, PathOperation);
KVX3D_EXPOSE(ToolCheckDir, &CKVX_ART_VTK_Tool::CheckDir, PathOperation);
KVX3D_EXPOSE(ToolDeleteDir, &CKVX_ART_VTK_Tool::DeleteDir, PathOperation);
KVX3D_EXPOSE(ToolMove, &CKVX_ART_VTK_Tool::FileCopyAndRemoveSource, TwoPathOperation);
KVX3D_EXPOSE(ToolMoveCollectionFile, &CKVX_ART_VTK_Tool::MPI_MoveCollectionFile, PathOperation);
KVX3D_EXPOSE(ToolMoveDataFolder, &CKVX_ART_VTK_Tool::MPI_MoveDataFolder, PathOperation);

namespace tool_access {

bool OpenDir(CKVX_ART_VTK_Tool& tool, const std::string& path) {
    return (tool.*MemberOf(ToolOpenDir()))(path);
}

bool CheckDir(CKVX_ART_VTK_Tool& tool, const std::string& path) {
    return (tool.*MemberOf(ToolCheckDir()))(path);
}

bool DeleteDir(CKVX_ART_VTK_Tool& tool, const std::string& path) {
    return (tool.*MemberOf(ToolDeleteDir()))(path);
}

bool Move(CKVX_ART_VTK_Tool& tool, const std::string& source, const std::string& target) {
    return (tool.*MemberOf(ToolMove()))(source, target);
}

bool MoveCollectionFile(CKVX_ART_VTK_Tool& tool, const std::string& targetDir) {
    return (tool.*MemberOf(ToolMoveCollectionFile()))(targetDir);
}

bool MoveDataFolder(CKVX_ART_VTK_Tool& tool, const std::string& targetDir) {
    return (tool.*MemberOf(ToolMoveDataFolder()))(targetDir);
}

}  // namespace tool_access
