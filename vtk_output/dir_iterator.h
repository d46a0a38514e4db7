#ifndef KVX3D_VTK_OUTPUT_DIR_ITERATOR_H
#define KVX3D_VTK_OUTPUT_DIR_ITERATOR_H

#include "vtk_output/detail/platform.h"

/// One directory entry.
class VTK_DirEntry {
public:
    char path[260];   ///< directory, "/", name
    char name[256];   ///< the name alone
    char* extension;  ///< into `name`: behind its last dot, or its end if it has none
    int isDir;        ///< 1 for a directory, else 0
    int isReg;        ///< 1 for a plain file, else 0
};

/// Walks the names of one directory, "." and ".." included, in the system's order:
///
///     VTK_DirIterator dir;
///     dir.Open(path);
///     while (dir.hasNext) {
///         dir.Read(&entry);
///         ...
///         dir.Next();
///     }
///     dir.Close();
///
/// A directory that cannot be opened reads as an empty one. Failing operations answer false and
/// leave a number in errno, the same on every system: 2 nothing there, 5 read error, 22 bad
/// argument, 38 name too long. There is no destructor: an iterator that is not closed keeps its
/// handle.
class VTK_DirIterator {
public:
    /// Opens a directory and steps to its first entry. One separator at the end of `path` is cut.
    bool Open(const char* path);

    /// Fills `entry` with the entry at hand; on false `entry` is as it was.
    bool Read(VTK_DirEntry* entry) const;

    /// Steps to the next entry; hasNext is 0 behind the last one.
    bool Next();

    /// Ends the walk. Harmless on a closed iterator.
    void Close();

    char path[260] = {};  ///< the directory, less one separator at its end
    int hasNext = 0;      ///< nonzero while an entry is at hand
    vtk_platform::FindHandle handle = vtk_platform::InvalidHandle();
    vtk_platform::FindData findData = {};  ///< the entry at hand
};

#endif
