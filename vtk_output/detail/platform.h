#ifndef KVX3D_VTK_OUTPUT_DETAIL_PLATFORM_H
#define KVX3D_VTK_OUTPUT_DETAIL_PLATFORM_H

#include "vtk_output/find_data.h"

/// Every call of the library into the operating system.
///
/// Directories are listed in the manner of the Windows find functions; on other systems the same
/// functions work on POSIX directories and give attribute bits of the same values.
namespace kvx3d::detail {

/// Separates the levels of a path.
#ifdef _WIN32
constexpr const char* pathSeparator = "\\";
#else
constexpr const char* pathSeparator = "/";
#endif

/// Starts to list a directory, "." and ".." included.
///
/// @param[in]  pattern  the directory, a backslash and a star
/// @param[out] data     the first entry
/// @return the handle of the listing, or vtk_platform::InvalidHandle()
vtk_platform::FindHandle FindFirst(const char* pattern, vtk_platform::FindData* data);

/// Steps to the next entry.
/// @return 0 at the end or after an error; LastError() distinguishes the two
int FindNext(vtk_platform::FindHandle handle, vtk_platform::FindData* data);

/// Ends a listing.
void FindEnd(vtk_platform::FindHandle handle);

/// The reason why FindNext() returned 0: 0 or 18 at the end of the directory. Call it directly
/// after FindNext().
int LastError();

/// Suspends the calling thread.
void SleepMilliseconds(int milliseconds);

/// 0 if the path exists, as a file or as a directory, else -1.
int Access(const char* path);

/// Creates the last level of the path. 0 on success.
int MakeDir(const char* path);

/// Removes an empty directory. 0 on success.
int RemoveDir(const char* path);

/// Deletes a file (on systems other than Windows also an empty directory). 0 on success.
int Remove(const char* path);

/// True if the path is a directory. POSIX streams open a directory as if it were a readable file.
bool IsDirectory(const char* path);

}  // namespace kvx3d::detail

#endif
