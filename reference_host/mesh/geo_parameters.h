#ifndef KVX3D_REFERENCE_HOST_MESH_GEO_PARAMETERS_H
#define KVX3D_REFERENCE_HOST_MESH_GEO_PARAMETERS_H

#include <string>

namespace host {

/// ONELAB name of a variable of a .geo file, which is the Name in its DefineConstant. Gmsh knows
/// parameters by that name only and silently accepts an unknown one.
///
/// @throws std::runtime_error  one line: the file defines no such variable with a Name
std::string OnelabName(const std::string& file, const std::string& variable);

}  // namespace host

#endif
