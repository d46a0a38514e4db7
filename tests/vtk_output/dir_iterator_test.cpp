#include "vtk_output/dir_iterator.h"

#include <gtest/gtest.h>

#ifndef _WIN32
#include <dirent.h>
#include <unistd.h>
#endif

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <filesystem>

#include "tests/vtk_output/output_support.h"

namespace {

static_assert(offsetof(VTK_DirIterator, path) == 0);
static_assert(offsetof(VTK_DirIterator, hasNext) == 260);
static_assert(offsetof(VTK_DirIterator, handle) > offsetof(VTK_DirIterator, hasNext));
static_assert(offsetof(VTK_DirIterator, findData) > offsetof(VTK_DirIterator, handle));
static_assert(sizeof VTK_DirEntry::path == 260 && sizeof VTK_DirEntry::name == 256);

/// All entries of a directory, read with the usual loop and sorted by name.
std::vector<VTK_DirEntry> Walk(const char* path) {
    std::vector<VTK_DirEntry> entries;
    VTK_DirIterator dir;
    dir.Open(path);
    while (dir.hasNext) {
        VTK_DirEntry entry;
        EXPECT_TRUE(dir.Read(&entry));
        entries.push_back(entry);
        dir.Next();
    }
    dir.Close();
    std::sort(entries.begin(), entries.end(), [](const VTK_DirEntry& a, const VTK_DirEntry& b) {
        return std::strcmp(a.name, b.name) < 0;
    });
    for (VTK_DirEntry& entry : entries) {
        // The extension of a copied entry points into the source of the copy.
        const char* dot = std::strrchr(entry.name, '.');
        entry.extension = entry.name + (dot ? dot + 1 - entry.name : std::strlen(entry.name));
    }
    return entries;
}

TEST(DirIterator, ListsEveryNameWithDotAndDotDot) {
    TempDirectory dir;
    WriteFile(dir.Path() / "a.vtu", "x");
    std::filesystem::create_directory(dir.Path() / "sub");

    const std::vector<VTK_DirEntry> entries = Walk(dir.Text().c_str());

    ASSERT_EQ(entries.size(), 4u);
    EXPECT_STREQ(entries[0].name, ".");
    EXPECT_STREQ(entries[1].name, "..");
    EXPECT_STREQ(entries[2].name, "a.vtu");
    EXPECT_STREQ(entries[3].name, "sub");
}

TEST(DirIterator, DistinguishesDirectoriesFromRegularFiles) {
    TempDirectory dir;
    WriteFile(dir.Path() / "a", "x");
    std::filesystem::create_directory(dir.Path() / "sub");

    const std::vector<VTK_DirEntry> entries = Walk(dir.Text().c_str());

    for (const VTK_DirEntry& entry : entries) {
        const bool isFile = std::strcmp(entry.name, "a") == 0;
        EXPECT_EQ(entry.isDir, isFile ? 0 : 1) << entry.name;
        EXPECT_EQ(entry.isReg, isFile ? 1 : 0) << entry.name;
    }
}

TEST(DirIterator, FollowsLinksAndDevicesAreNotRegularFiles) {
    TempDirectory dir;
    std::filesystem::create_directory(dir.Path() / "sub");
    std::filesystem::create_directory_symlink("sub", dir.Path() / "toDirectory");
    std::filesystem::create_symlink("nowhere", dir.Path() / "toNothing");
    std::filesystem::create_symlink("/dev/null", dir.Path() / "toDevice");

    for (const VTK_DirEntry& entry : Walk(dir.Text().c_str())) {
        const std::string name = entry.name;
        EXPECT_EQ(entry.isDir, name != "toNothing" && name != "toDevice") << name;
        EXPECT_EQ(entry.isReg, 0) << name;
    }
}

TEST(DirIterator, JoinsPathAndNameWithASlash) {
    TempDirectory dir;
    WriteFile(dir.Path() / "a.vtu", "x");

    const std::vector<VTK_DirEntry> entries = Walk(dir.Text().c_str());

    EXPECT_EQ(entries[2].path, dir.Text() + "/a.vtu");
}

TEST(DirIterator, ExtensionIsTheTextAfterTheLastDot) {
    TempDirectory dir;
    WriteFile(dir.Path() / "a.b.vtu", "");
    WriteFile(dir.Path() / "b.", "");
    WriteFile(dir.Path() / "c", "");

    VTK_DirIterator walk;
    ASSERT_TRUE(walk.Open(dir.Text().c_str()));
    for (; walk.hasNext; walk.Next()) {
        VTK_DirEntry entry;
        ASSERT_TRUE(walk.Read(&entry));
        const std::string name = entry.name;
        if (name == "a.b.vtu") {
            EXPECT_STREQ(entry.extension, "vtu");
            EXPECT_EQ(entry.extension, entry.name + 4);
        } else if (name == "c") {
            EXPECT_EQ(entry.extension, entry.name + 1);
        } else {
            EXPECT_STREQ(entry.extension, "") << name;
        }
    }
    walk.Close();
}

class TrailingSeparator : public testing::TestWithParam<const char*> {};

TEST_P(TrailingSeparator, IsRemovedOnce) {
    TempDirectory dir;
    WriteFile(dir.Path() / "a", "");
    const std::string path = dir.Text() + GetParam();
    VTK_DirIterator walk;

    ASSERT_TRUE(walk.Open(path.c_str()));

    EXPECT_EQ(walk.path, path.substr(0, path.size() - 1));
    walk.Close();
}

INSTANTIATE_TEST_SUITE_P(Kinds, TrailingSeparator, testing::Values("/", "\\", "//"));

TEST(DirIterator, KeepsASingleSeparator) {
    VTK_DirIterator walk;

    ASSERT_TRUE(walk.Open("/"));

    EXPECT_STREQ(walk.path, "/");
    EXPECT_NE(walk.hasNext, 0);
    walk.Close();
}

TEST(DirIterator, RejectsAnEmptyPath) {
    VTK_DirIterator walk;

    for (const char* path : {static_cast<const char*>(nullptr), ""}) {
        errno = 0;
        EXPECT_FALSE(walk.Open(path));
        EXPECT_EQ(errno, 22);
        EXPECT_EQ(walk.hasNext, 0);
    }
}

TEST(DirIterator, RejectsALongPath) {
    VTK_DirIterator walk;

    errno = 0;
    EXPECT_FALSE(walk.Open(std::string(258, 'x').c_str()));
    EXPECT_EQ(errno, 38);
    EXPECT_EQ(walk.hasNext, 0);

    errno = 0;
    EXPECT_FALSE(walk.Open(std::string(257, '/').replace(256, 1, "x").c_str()));
    EXPECT_EQ(errno, 2);
}

TEST(DirIterator, OpensTheLongestPath) {
    std::string path = "/";
    while (path.size() < 257) {
        path += path.size() % 2 ? "." : "/";
    }
    VTK_DirIterator walk;

    EXPECT_TRUE(walk.Open(path.c_str()));
    walk.Close();
}

TEST(DirIterator, AMissingDirectoryLooksEmpty) {
    TempDirectory dir;
    VTK_DirIterator walk;

    errno = 0;
    EXPECT_FALSE(walk.Open((dir.Text() + "/missing").c_str()));

    EXPECT_EQ(errno, 2);
    EXPECT_EQ(walk.hasNext, 0);
    EXPECT_STREQ(walk.path, "");
    EXPECT_TRUE(walk.handle == vtk_platform::InvalidHandle());
}

TEST(DirIterator, ReadingNeedsATargetAndAnOpenDirectory) {
    TempDirectory dir;
    VTK_DirIterator walk;
    VTK_DirEntry entry;

    errno = 0;
    EXPECT_FALSE(walk.Read(nullptr));
    EXPECT_EQ(errno, 22);
    errno = 0;
    EXPECT_FALSE(walk.Read(&entry));
    EXPECT_EQ(errno, 2);
}

TEST(DirIterator, ReadingRejectsAPathThatIsTooLong) {
    VTK_DirIterator walk;
    ASSERT_TRUE(walk.Open("/"));
    std::memset(walk.path, 'p', 200);
    walk.path[200] = '\0';
    VTK_DirEntry entry;

    std::memset(walk.findData.cFileName, 'n', 57);
    walk.findData.cFileName[57] = '\0';
    errno = 0;
    EXPECT_FALSE(walk.Read(&entry));
    EXPECT_EQ(errno, 38);

    walk.findData.cFileName[56] = '\0';
    EXPECT_TRUE(walk.Read(&entry));
    EXPECT_EQ(std::strlen(entry.path), 257u);
    walk.Close();
}

TEST(DirIterator, ReadingRejectsANameThatIsTooLong) {
    VTK_DirIterator walk;
    ASSERT_TRUE(walk.Open("/"));
    walk.path[0] = '\0';
    std::memset(walk.findData.cFileName, 'n', 256);
    walk.findData.cFileName[256] = '\0';
    VTK_DirEntry entry;

    errno = 0;
    EXPECT_FALSE(walk.Read(&entry));
    EXPECT_EQ(errno, 38);

    walk.findData.cFileName[255] = '\0';
    EXPECT_TRUE(walk.Read(&entry));
    walk.Close();
}

class RegularFileBits : public testing::TestWithParam<std::pair<unsigned, int>> {};

TEST_P(RegularFileBits, DecideIsReg) {
    VTK_DirIterator walk;
    ASSERT_TRUE(walk.Open("/"));
    walk.findData.dwFileAttributes = GetParam().first;
    VTK_DirEntry entry;

    ASSERT_TRUE(walk.Read(&entry));

    EXPECT_EQ(entry.isReg, GetParam().second);
    EXPECT_EQ(entry.isDir, GetParam().first & 16 ? 1 : 0);
    walk.Close();
}

INSTANTIATE_TEST_SUITE_P(Attributes, RegularFileBits,
                         testing::Values(std::pair(0u, 1), std::pair(32u, 1), std::pair(1u, 1),
                                         std::pair(128u, 1), std::pair(128u | 16u, 1),
                                         std::pair(64u, 0), std::pair(16u, 0), std::pair(16384u, 0),
                                         std::pair(32768u, 0), std::pair(131072u, 0),
                                         std::pair(4096u, 0), std::pair(256u, 0),
                                         std::pair(256u | 32u, 0)));

TEST(DirIterator, SteppingAfterTheEndFails) {
    TempDirectory dir;
    VTK_DirIterator walk;
    ASSERT_TRUE(walk.Open(dir.Text().c_str()));
    while (walk.hasNext) {
        EXPECT_TRUE(walk.Next());
    }

    errno = 0;
    EXPECT_FALSE(walk.Next());

    EXPECT_EQ(errno, 2);
    EXPECT_FALSE(walk.handle == vtk_platform::InvalidHandle());
    walk.Close();
}

#ifndef _WIN32
TEST(DirIterator, AReadErrorResetsTheIterator) {
    TempDirectory dir;
    VTK_DirIterator walk;
    ASSERT_TRUE(walk.Open(dir.Text().c_str()));
    // Entries that were already read from the directory are still returned; the next read fails.
    ASSERT_EQ(close(dirfd(static_cast<DIR*>(walk.handle))), 0);

    bool stepped = true;
    for (int step = 0; step < 3 && stepped; ++step) {
        errno = 0;
        stepped = walk.Next();
    }

    EXPECT_FALSE(stepped);
    EXPECT_EQ(errno, 5);
    EXPECT_EQ(walk.hasNext, 0);
    EXPECT_STREQ(walk.path, "");
    EXPECT_STREQ(walk.findData.cFileName, "");
    EXPECT_TRUE(walk.handle == vtk_platform::InvalidHandle());
}
#endif

TEST(DirIterator, ClosingTwiceHasNoEffect) {
    TempDirectory dir;
    VTK_DirIterator walk;
    ASSERT_TRUE(walk.Open(dir.Text().c_str()));

    walk.Close();
    walk.Close();

    EXPECT_STREQ(walk.path, "");
    EXPECT_EQ(walk.hasNext, 0);
    EXPECT_TRUE(walk.handle == vtk_platform::InvalidHandle());
}

}  // namespace
