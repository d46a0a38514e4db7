#include "reference_host/run/result_series.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/reference_host/discretisation/mesh_case.h"
#include "tests/support/output_capture.h"
#include "tests/support/temp_directory.h"

namespace {

using host::ResultSeries;

std::string MessageOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "";
}

TEST(OutputDirectory, IsCreatedWithItsParents) {
    TempDirectory root;
    const auto directory = root.Path() / "a" / "b";

    host::PrepareOutputDirectory(directory.string());

    EXPECT_TRUE(std::filesystem::is_directory(directory));
    EXPECT_TRUE(std::filesystem::is_empty(directory));
}

TEST(OutputDirectory, UnderAFileIsRefusedByName) {
    TempDirectory root;
    WriteFile(root.Path() / "file", "x");
    const std::string directory = (root.Path() / "file" / "results").string();

    const std::string message = MessageOf([&] { host::PrepareOutputDirectory(directory); });

    EXPECT_NE(message.find(directory), std::string::npos) << message;
    EXPECT_NE(message.find("cannot be created"), std::string::npos) << message;
}

TEST(OutputDirectory, ThatIsAFileIsRefused) {
    TempDirectory root;
    const std::string file = (root.Path() / "file").string();
    WriteFile(file, "x");

    EXPECT_NE(MessageOf([&] { host::PrepareOutputDirectory(file); }).find(file), std::string::npos);
}

/// A series of two steps of a small single grid into `directory`.
class SingleGridSeries : public testing::Test {
protected:
    SingleGridSeries()
        : mesh(host::ReadMesh(ShippedMesh(boxFile), {{"n", 5}, {"kind", 1}})),
          objects(mesh, directory.Text()),
          link(mesh, objects) {}

    TempDirectory directory;
    const host::Mesh mesh;
    host::HostObjects objects;
    host::OversetLink link;
    OutputCapture quiet;
};

TEST_F(SingleGridSeries, HasTheValuesOfTheArraysAtEachStep) {
    ResultSeries series(mesh, objects, link, directory.Text(), "Scalar", "Vector");
    objects.pressure[1] = 1.5;
    series.Write(0.0, 1);
    objects.pressure[1] = 2.5;
    series.Write(1.0, 2);
    const std::string pvd = series.Finish();

    EXPECT_NE(ReadFile(pvd).find("Itr2_T1_P0_B1.vtu"), std::string::npos);
    const auto steps = directory.Path() / "VTK_Flow_Results_0";
    const std::string head = "Name=\"Scalar\" NumberOfComponents=\"1\" format=\"ascii\">\n\t\t\t\t";
    const std::string first = ReadFile(steps / "VTK_Flow_Results_Itr1_T0_P0_B1.vtu");
    const std::string second = ReadFile(steps / "VTK_Flow_Results_Itr2_T1_P0_B1.vtu");
    EXPECT_EQ(first.substr(first.find(head) + head.size(), 4), "1.5\n");
    EXPECT_EQ(second.substr(second.find(head) + head.size(), 4), "2.5\n");
}

TEST_F(SingleGridSeries, StepThatCouldNotBeWrittenIsReported) {
    // A file in place of the directory of the step files, which the tool takes for the directory.
    WriteFile(directory.Path() / "VTK_Flow_Results_0", "x");
    ResultSeries series(mesh, objects, link, directory.Text());
    series.Write(0.0, 1);

    const std::string message = MessageOf([&] { series.Finish(); });

    EXPECT_NE(message.find("only 0 of 1 steps are complete"), std::string::npos) << message;
}

TEST_F(SingleGridSeries, StepThatWasCutShortIsReported) {
    ResultSeries series(mesh, objects, link, directory.Text());
    series.Write(0.0, 1);
    series.Write(1.0, 2);
    const auto second =
        directory.Path() / "VTK_Flow_Results_0" / "VTK_Flow_Results_Itr2_T1_P0_B1.vtu";
    std::filesystem::resize_file(second, std::filesystem::file_size(second) / 2);

    const std::string message = MessageOf([&] { series.Finish(); });

    EXPECT_NE(message.find("only 1 of 2 steps are complete"), std::string::npos) << message;
}

TEST_F(SingleGridSeries, SeriesOfAnEarlierRunIsRemoved) {
    WriteFile(directory.Path() / "VTK_Flow_Results.pvd", "<DataSet a\n<DataSet b\n");

    const ResultSeries series(mesh, objects, link, directory.Text());

    EXPECT_FALSE(std::filesystem::exists(directory.Path() / "VTK_Flow_Results.pvd"));
}

}  // namespace
