#include "reference_host/link/donor_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>

#include "tests/reference_host/mesh/mesh_files.h"
#include "tests/support/output_capture.h"
#include "tests/support/temp_directory.h"

namespace {

using testing::HasSubstr;

int LinesWith(const std::string& text, const std::string& start) {
    std::istringstream lines(text);
    std::string line;
    int count = 0;
    while (std::getline(lines, line)) {
        count += line.rfind(start, 0) == 0 ? 1 : 0;
    }
    return count;
}

TEST(DonorTable, HasOneLineForEachFaceWithADonor) {
    OutputCapture quiet;
    const host::Mesh mesh = ReadShipped(channelGeo, {{"n", 5}});
    host::HostObjects objects(mesh, ".");
    const host::OversetLink link(mesh, objects);
    TempDirectory directory;

    const std::string path = host::WriteDonorTable(mesh, link, directory.Path());

    const std::string table = ReadFile(path);
    const auto& sides = link.Tables().side;
    const auto onHole = [](host::FaceSide side) {
        return side == host::FaceSide::DonorIsFirst || side == host::FaceSide::DonorIsSecond;
    };
    EXPECT_EQ(LinesWith(table, "hole,"), std::count_if(sides.begin() + 1, sides.end(), onHole));
    EXPECT_EQ(LinesWith(table, "overset,"), 40);
    EXPECT_EQ(LinesWith(table, "boundary,face_x"), 1);
}

TEST(DonorTable, IsNotWrittenForASingleGrid) {
    const host::Mesh mesh = ReadShipped(boxGeo, {{"n", 2}, {"kind", 1}});
    host::HostObjects objects(mesh, ".");
    const host::OversetLink link(mesh, objects);

    EXPECT_EQ(host::WriteDonorTable(mesh, link, "."), "");
}

TEST(DonorTable, ErrorNamesTheFileThatCannotBeWritten) {
    OutputCapture quiet;
    const host::Mesh mesh = ReadShipped(channelGeo, {{"n", 5}});
    host::HostObjects objects(mesh, ".");
    const host::OversetLink link(mesh, objects);

    EXPECT_THAT(ErrorOf([&] { host::WriteDonorTable(mesh, link, "/nowhere"); }),
                HasSubstr("/nowhere/donors.csv"));
}

}  // namespace
