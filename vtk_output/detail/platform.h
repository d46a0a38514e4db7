#ifndef KVX3D_VTK_OUTPUT_DETAIL_PLATFORM_H
#define KVX3D_VTK_OUTPUT_DETAIL_PLATFORM_H

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

/// Every call into the operating system that the library makes.
///
/// The shapes are those of the Windows find calls; on other systems the same names stand on POSIX
/// directories, with attribute bits of the same values.
namespace vtk_platform {

#ifdef _WIN32
using FindHandle = HANDLE;
using FindData = WIN32_FIND_DATAA;
constexpr const char* separator = "\\";
#else
using FindHandle = void*;

/// The entry at hand, in the field names of WIN32_FIND_DATAA.
struct FindData {
    std::uint32_t dwFileAttributes;
    char cFileName[260];
};
constexpr const char* separator = "/";
#endif

/// The handle of no enumeration.
FindHandle InvalidHandle();

/// Starts to list a directory; "." and ".." are listed too.
/// @param pattern  the directory, a backslash and a star
/// @return the handle of the enumeration, its first entry in `data`, or InvalidHandle()
FindHandle FindFirst(const char* pattern, FindData* data);

/// Steps to the next entry. 0 at the end or on an error: LastError() tells which.
int FindNext(FindHandle handle, FindData* data);

/// Ends an enumeration.
void FindEnd(FindHandle handle);

/// Why FindNext() answered 0, asked directly after it: 0 or 18 at the end of the directory.
int LastError();

void SleepMilliseconds(int milliseconds);

/// 0 if the path exists, as a file or as a directory, else -1.
int Access(const char* path);

/// Makes the last level of the path. 0 on success.
int MakeDir(const char* path);

/// Removes an empty directory. 0 on success.
int RemoveDir(const char* path);

/// Deletes a file (outside Windows an empty directory too). 0 on success.
int Remove(const char* path);

/// True if the path is a directory. POSIX streams open one as if it were a readable file.
bool IsDirectory(const char* path);

}  // namespace vtk_platform

#endif
