#ifndef KVX3D_TESTS_SUPPORT_TEMP_DIRECTORY_H
#define KVX3D_TESTS_SUPPORT_TEMP_DIRECTORY_H

#include <filesystem>
#include <string>

/// A new empty directory, removed with everything in it at the end.
class TempDirectory {
public:
    TempDirectory();
    ~TempDirectory();
    TempDirectory(const TempDirectory&) = delete;
    TempDirectory& operator=(const TempDirectory&) = delete;

    const std::filesystem::path& Path() const { return path; }
    /// The path as text, without a separator at the end.
    std::string Text() const { return path.string(); }

private:
    std::filesystem::path path;
};

/// All bytes of a file; throws std::runtime_error if it cannot be opened.
std::string ReadFile(const std::filesystem::path& file);

/// Writes exactly these bytes to a file, replacing it.
void WriteFile(const std::filesystem::path& file, const std::string& bytes);

#endif
