#ifndef KVX3D_VTK_OUTPUT_FIND_DATA_H
#define KVX3D_VTK_OUTPUT_FIND_DATA_H

#ifdef _WIN32
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#else
#include <cstdint>
#endif

/// The state of a directory listing, in the types of the Windows find functions. Other systems use
/// records with the same field names.
namespace vtk_platform {

#ifdef _WIN32
using FindHandle = HANDLE;
using FindData = WIN32_FIND_DATAA;
#else
/// An open directory.
using FindHandle = void*;

/// The current entry, in the field names of WIN32_FIND_DATAA.
struct FindData {
    std::uint32_t dwFileAttributes;  ///< attribute bits with the values of Windows
    char cFileName[260];             ///< name without the directory
};
#endif

/// The value of a handle without an open directory.
FindHandle InvalidHandle();

}  // namespace vtk_platform

#endif
