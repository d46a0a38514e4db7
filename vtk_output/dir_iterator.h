#ifndef KVX3D_VTK_OUTPUT_DIR_ITERATOR_H
#define KVX3D_VTK_OUTPUT_DIR_ITERATOR_H

#include "vtk_output/find_data.h"

/// One directory entry.
class VTK_DirEntry {
public:
    char path[260];   ///< directory, "/", name
    char name[256];   ///< the name alone
    char* extension;  ///< points into `name`: after its last dot, or its end without a dot
    int isDir;        ///< 1 for a directory, else 0
    int isReg;        ///< 1 for a regular file, else 0
};

/// Lists the names in one directory, "." and ".." included, in the order of the system:
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
/// A directory that cannot be opened looks like an empty one. Operations that fail return false and
/// store a number in errno that is the same on every system: 2 not found, 5 read error, 22 bad
/// argument, 38 name too long. There is no destructor: an iterator that is not closed keeps its
/// handle open.
class VTK_DirIterator {
public:
    /// Opens a directory and steps to its first entry. One separator at the end of `path` is
    /// removed.
    bool Open(const char* path);

    /// Fills `entry` with the current entry; if it returns false, `entry` is unchanged.
    bool Read(VTK_DirEntry* entry) const;

    /// Steps to the next entry; hasNext is 0 after the last one.
    bool Next();

    /// Ends the listing. Has no effect on a closed iterator.
    void Close();

    char path[260] = {};  ///< the directory, without one separator at its end
    int hasNext = 0;      ///< nonzero while there is a current entry
    vtk_platform::FindHandle handle = vtk_platform::InvalidHandle();
    vtk_platform::FindData findData = {};  ///< the current entry
};

#endif
