#include "vtk_output/detail/platform.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <thread>

#ifdef _WIN32
#include <direct.h>
#include <io.h>
#else
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

using vtk_platform::FindData;
using vtk_platform::FindHandle;
using vtk_platform::InvalidHandle;

FindHandle vtk_platform::InvalidHandle() {
#ifdef _WIN32
    return INVALID_HANDLE_VALUE;
#else
    return nullptr;
#endif
}

namespace kvx3d::detail {

int Remove(const char* path) {
    return std::remove(path);
}

#ifdef _WIN32

FindHandle FindFirst(const char* pattern, FindData* data) {
    return FindFirstFileA(pattern, data);
}

int FindNext(FindHandle handle, FindData* data) {
    return FindNextFileA(handle, data);
}

void FindEnd(FindHandle handle) {
    FindClose(handle);
}

int LastError() {
    return static_cast<int>(GetLastError());
}

void SleepMilliseconds(int milliseconds) {
    Sleep(static_cast<DWORD>(milliseconds));
}

int Access(const char* path) {
    return _access(path, 0);
}

int MakeDir(const char* path) {
    return _mkdir(path);
}

int RemoveDir(const char* path) {
    return _rmdir(path);
}

bool IsDirectory(const char* path) {
    const DWORD attributes = GetFileAttributesA(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

#else

namespace {

constexpr std::uint32_t attributeDirectory = 16;
constexpr std::uint32_t attributeDevice = 64;  // neither a directory nor a regular file
constexpr std::uint32_t attributeNormal = 128;

/// Attribute bits of an entry, with the values that Windows gives them.
std::uint32_t Attributes(DIR* dir, const char* name) {
    struct stat status;
    if (fstatat(dirfd(dir), name, &status, 0) != 0) {
        return attributeDevice;
    }
    if (S_ISDIR(status.st_mode)) {
        return attributeDirectory;
    }
    return S_ISREG(status.st_mode) ? attributeNormal : attributeDevice;
}

}  // namespace

FindHandle FindFirst(const char* pattern, FindData* data) {
    char path[260];
    const std::size_t length = std::strlen(pattern) - 2;  // without the backslash and the star
    if (length >= sizeof path) {
        return InvalidHandle();
    }
    std::memcpy(path, pattern, length);
    path[length] = '\0';

    DIR* dir = opendir(path);
    if (dir == nullptr) {
        return InvalidHandle();
    }
    if (FindNext(dir, data) == 0) {
        closedir(dir);
        return InvalidHandle();
    }
    return dir;
}

int FindNext(FindHandle handle, FindData* data) {
    DIR* dir = static_cast<DIR*>(handle);
    const int before = errno;
    errno = 0;  // the only difference between the end and an error
    const dirent* entry = readdir(dir);
    if (entry == nullptr) {
        return 0;
    }
    data->dwFileAttributes = Attributes(dir, entry->d_name);
    std::snprintf(data->cFileName, sizeof data->cFileName, "%s", entry->d_name);
    errno = before;
    return 1;
}

void FindEnd(FindHandle handle) {
    closedir(static_cast<DIR*>(handle));
}

int LastError() {
    return errno;
}

void SleepMilliseconds(int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

int Access(const char* path) {
    return access(path, F_OK);
}

int MakeDir(const char* path) {
    return mkdir(path, 0777);
}

int RemoveDir(const char* path) {
    return rmdir(path);
}

bool IsDirectory(const char* path) {
    struct stat status;
    return stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

#endif

}  // namespace kvx3d::detail
