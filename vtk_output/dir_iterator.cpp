#include "vtk_output/dir_iterator.h"

#include <cerrno>
#include <cstring>

#include "vtk_output/detail/platform.h"

namespace {

constexpr std::size_t pathSize = sizeof VTK_DirEntry::path;
constexpr std::size_t nameSize = sizeof VTK_DirEntry::name;

// Plain numbers and not the names of <cerrno>, whose values differ between systems.
constexpr int errorNotFound = 2;
constexpr int errorRead = 5;
constexpr int errorArgument = 22;
constexpr int errorTooLong = 38;

constexpr int lastErrorNone = 0;
constexpr int lastErrorNoMoreFiles = 18;

// Attribute bits of an entry.
constexpr unsigned bitDirectory = 16;
constexpr unsigned bitNormal = 128;
/// Device, directory, encrypted, integrity stream, no scrub, offline, temporary: an entry with
/// none of these bits is a regular file even without the "normal" bit.
constexpr unsigned bitsNotPlain = 64 | 16 | 16384 | 32768 | 131072 | 4096 | 256;

/// Stores the error number and returns false.
bool Fail(int error) {
    errno = error;
    return false;
}

/// The text after the last dot of `name`, or the end of `name` if it has no dot.
char* Extension(char* name) {
    char* dot = std::strrchr(name, '.');
    return dot != nullptr ? dot + 1 : name + std::strlen(name);
}

}  // namespace

bool VTK_DirIterator::Open(const char* directory) {
    if (directory == nullptr || directory[0] == '\0') {
        return Fail(errorArgument);
    }
    const std::size_t length = std::strlen(directory);
    if (length + 2 >= pathSize) {
        return Fail(errorTooLong);
    }

    *this = VTK_DirIterator();
    std::memcpy(path, directory, length + 1);
    if (length > 1 && (path[length - 1] == '\\' || path[length - 1] == '/')) {
        path[length - 1] = '\0';
    }
    char pattern[pathSize];
    std::strcpy(pattern, path);
    std::strcat(pattern, "\\*");
    handle = kvx3d::detail::FindFirst(pattern, &findData);
    if (handle == vtk_platform::InvalidHandle()) {
        *this = VTK_DirIterator();
        return Fail(errorNotFound);
    }
    hasNext = 1;
    return true;
}

bool VTK_DirIterator::Read(VTK_DirEntry* entry) const {
    if (entry == nullptr) {
        return Fail(errorArgument);
    }
    if (handle == vtk_platform::InvalidHandle()) {
        return Fail(errorNotFound);
    }
    const std::size_t pathLength = std::strlen(path);
    const std::size_t nameLength = std::strlen(findData.cFileName);
    if (pathLength + nameLength + 3 >= pathSize || nameLength >= nameSize) {
        return Fail(errorTooLong);
    }

    std::memcpy(entry->path, path, pathLength);
    entry->path[pathLength] = '/';
    std::memcpy(entry->path + pathLength + 1, findData.cFileName, nameLength + 1);
    std::memcpy(entry->name, findData.cFileName, nameLength + 1);
    entry->extension = Extension(entry->name);
    const unsigned bits = findData.dwFileAttributes;
    entry->isDir = (bits & bitDirectory) != 0 ? 1 : 0;
    entry->isReg = (bits & bitNormal) != 0 || (bits & bitsNotPlain) == 0 ? 1 : 0;
    return true;
}

bool VTK_DirIterator::Next() {
    if (hasNext == 0) {
        return Fail(errorNotFound);
    }
    if (kvx3d::detail::FindNext(handle, &findData) != 0) {
        return true;
    }
    hasNext = 0;
    const int reason = kvx3d::detail::LastError();
    if (reason == lastErrorNone || reason == lastErrorNoMoreFiles) {
        return true;
    }
    Close();
    *this = VTK_DirIterator();
    return Fail(errorRead);
}

void VTK_DirIterator::Close() {
    std::memset(path, 0, sizeof path);
    hasNext = 0;
    if (handle != vtk_platform::InvalidHandle()) {
        kvx3d::detail::FindEnd(handle);
    }
    handle = vtk_platform::InvalidHandle();
}
