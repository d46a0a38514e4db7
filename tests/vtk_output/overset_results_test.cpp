#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "overset/overset_grid_data.h"
#include "overset/overset_mesh.h"
#include "overset/overset_mesh_impl.h"
#include "tests/support/box_host.h"
#include "tests/support/output_capture.h"
#include "tests/vtk_output/output_support.h"
#include "vtk_output/detail/number_text.h"

using kvx3d::detail::numberText;

namespace {

namespace fs = std::filesystem;

const std::string project = "VTK_Overset_Flow_Results";
constexpr int nonActive = 1;
constexpr int undefined = 0;

/// A background box with a component grid over its middle, set up like in a host.
class OversetResults : public testing::Test {
protected:
    OversetResults() : host(12, 12, 2) {
        host.WithComponentGrid(16, 16, 2, {2, 2, 0}, {8, 8, 2}, sideZMin | sideZMax)
            .WithBody(1, {{7, 7, 1}, {10, 10, 2}})
            .WithRootDir(dir.Text())
            .WithProcess(3);
        mesh.SetFVM(&host.gv, &host.fvm);
    }

    KVX_ART_OVERSET_GRID_DATA& Grid() { return *mesh.impl->gridData; }

    std::vector<int> PublishedCells() {
        std::vector<int> cells;
        for (int cell = 1; cell <= Grid().Nc; ++cell) {
            if (Grid().cellState[cell] != nonActive) {
                cells.push_back(cell);
            }
        }
        return cells;
    }

    fs::path StepFile(const std::string& iterationAndTime) {
        return dir.Path() / (project + "_3") / (project + iterationAndTime + "_P3_B1.vtu");
    }

    /// The lines of an array in a step file, with their tabs.
    std::string Array(const std::string& iterationAndTime, const std::string& name) {
        const std::string text = ReadFile(StepFile(iterationAndTime));
        const std::size_t begin = text.find('\n', text.find("Name=\"" + name + "\"")) + 1;
        return text.substr(begin, text.find("\t\t\t\t</DataArray>", begin) - begin);
    }

    OutputCapture capture;
    TempDirectory dir;
    BoxHost host;
    CKVXOversetMesh mesh;
};

TEST_F(OversetResults, ContainTheActiveCellsWithPressureAndVelocity) {
    const std::vector<int> published = PublishedCells();
    ASSERT_GT(published.size(), 0u);
    ASSERT_LT(published.size(), static_cast<std::size_t>(host.fvm.Nc));

    mesh.InitializeVTKTool();
    mesh.OutputVTKDataInEachTimeStep(0.5, 20);

    std::string connectivity;
    std::string pressure;
    std::string velocity;
    for (int cell : published) {
        const int* row = host.fvm.cellNodes[cell];
        std::string line;
        for (int i = 1; i <= row[0]; ++i) {
            line += (i > 1 ? " " : "") + std::to_string(row[i] - 1);
        }
        connectivity += "\t\t\t\t" + line + "\n";
        pressure += "\t\t\t\t" + numberText(host.gv.flowVariables[0][cell]) + "\n";
        velocity += "\t\t\t\t" + numberText(host.gv.flowVariables[1][cell]) + " " +
                    numberText(host.gv.flowVariables[2][cell]) + " " +
                    numberText(host.gv.flowVariables[3][cell]) + "\n";
    }
    EXPECT_EQ(Array("_Itr20_T0.5", "connectivity"), connectivity);
    EXPECT_EQ(Array("_Itr20_T0.5", "Pressure"), pressure);
    EXPECT_EQ(Array("_Itr20_T0.5", "Velocity"), velocity);
}

TEST_F(OversetResults, HaveCellDataInOrderAndNoPointData) {
    mesh.InitializeVTKTool();
    mesh.OutputVTKDataInEachTimeStep(0, 1);

    const std::string text = ReadFile(StepFile("_Itr1_T0"));
    EXPECT_EQ(text.find("PointData"), std::string::npos);
    EXPECT_NE(text.find("\t\t\t<CellData>\n\t\t\t\t<DataArray type=\"Float32\" Name=\"Pressure\" "
                        "NumberOfComponents=\"1\" format=\"ascii\">\n"),
              std::string::npos);
    EXPECT_NE(text.find("\t\t\t\t</DataArray>\n\t\t\t\t<DataArray type=\"Float32\" "
                        "Name=\"Velocity\" NumberOfComponents=\"3\" format=\"ascii\">\n"),
              std::string::npos);
    EXPECT_NE(text.find("NumberOfPoints=\"" + std::to_string(host.fvm.Nn) + "\""),
              std::string::npos);
}

TEST_F(OversetResults, CountTheActiveCellsAndCompressTheirValues) {
    const std::vector<int> published = PublishedCells();

    mesh.InitializeVTKTool();

    ASSERT_EQ(Grid().NActiveCell, static_cast<int>(published.size()));
    EXPECT_EQ(Grid().NActiveCell + Grid().NNonActiveCell, Grid().Nc);
    const double* active[] = {Grid().pActive, Grid().uActive, Grid().vActive, Grid().wActive};
    for (int variable = 0; variable < 4; ++variable) {
        EXPECT_EQ(active[variable][0], Grid().NActiveCell);
        for (std::size_t j = 0; j < published.size(); ++j) {
            EXPECT_EQ(active[variable][j + 1], host.gv.flowVariables[variable][published[j]]);
        }
    }
}

TEST_F(OversetResults, AreDescribedByTheRecordsOfTheImplementation) {
    mesh.InitializeVTKTool();

    const CKVXOversetMesh_Impl& impl = *mesh.impl;
    EXPECT_EQ(impl.vtkPoints->x, &host.fvm.xn[1]);
    EXPECT_EQ(impl.vtkPoints->y, &host.fvm.yn[1]);
    EXPECT_EQ(impl.vtkPoints->z, &host.fvm.zn[1]);
    EXPECT_EQ(impl.vtkPoints->count, host.fvm.Nn);
    ASSERT_EQ(impl.vtkCells->size(), PublishedCells().size());
    EXPECT_EQ(impl.vtkCells->front().nodes, &host.fvm.cellNodes[PublishedCells().front()][1]);
    EXPECT_FALSE(impl.vtkCells->front().isSurface);
    EXPECT_EQ(impl.vtkBlock->cellsData,
              (std::vector<VTK_Data*>{impl.pressureData, impl.velocityData}));
    EXPECT_EQ(impl.pressureData->components, std::vector<double*>{&Grid().pActive[1]});
    EXPECT_EQ(impl.velocityData->components,
              (std::vector<double*>{&Grid().uActive[1], &Grid().vActive[1], &Grid().wActive[1]}));
    EXPECT_EQ(impl.vtkTool->collectionWriter->blocks, std::vector<VTK_Block*>{impl.vtkBlock});
}

TEST_F(OversetResults, WithoutCutCellsContainAllCells) {
    std::fill_n(&Grid().cellState[1], Grid().Nc, 2);
    Grid().cellState[5] = undefined;

    mesh.InitializeVTKTool();

    EXPECT_EQ(Grid().NActiveCell, Grid().Nc);
    for (int cell = 1; cell <= Grid().Nc; ++cell) {
        EXPECT_EQ((*mesh.impl->vtkCells)[static_cast<std::size_t>(cell - 1)].nodes,
                  &host.fvm.cellNodes[cell][1]);
    }
}

TEST_F(OversetResults, OfAMeshWithoutCellsAreAFileWithoutCells) {
    Grid().Nc = 0;

    mesh.InitializeVTKTool();
    mesh.OutputVTKDataInEachTimeStep(0, 1);

    EXPECT_NE(ReadFile(StepFile("_Itr1_T0")).find("NumberOfCells=\"0\""), std::string::npos);
    EXPECT_EQ(Array("_Itr1_T0", "Pressure"), "");
}

TEST_F(OversetResults, SetTinyValuesToZeroInTheArraysOfTheHost) {
    const int cell = PublishedCells().front();
    double* const* fields = host.gv.flowVariables;
    fields[0][cell] = 5e-11;
    fields[1][cell] = -5e-11;
    fields[2][cell] = 1e-10;
    fields[3][cell] = -1e-10;

    mesh.InitializeVTKTool();
    EXPECT_EQ(fields[0][cell], 5e-11);
    EXPECT_EQ(Grid().pActive[1], 5e-11);
    mesh.OutputVTKDataInEachTimeStep(0, 1);

    EXPECT_EQ(fields[0][cell], 0.0);
    EXPECT_EQ(fields[1][cell], 0.0);
    EXPECT_FALSE(std::signbit(fields[1][cell]));
    EXPECT_EQ(fields[2][cell], 1e-10);
    EXPECT_EQ(fields[3][cell], -1e-10);
    EXPECT_EQ(Array("_Itr1_T0", "Pressure").substr(0, 6), "\t\t\t\t0\n");
    EXPECT_EQ(Array("_Itr1_T0", "Velocity").substr(0, 19), "\t\t\t\t0 1e-10 -1e-10\n");
}

TEST_F(OversetResults, DoNotChangeCutCellsGhostCellsAndNaN) {
    const int active = PublishedCells().front();
    int cut = 0;
    for (int cell = 1; cell <= Grid().Nc && cut == 0; ++cell) {
        cut = Grid().cellState[cell] == nonActive ? cell : 0;
    }
    ASSERT_NE(cut, 0);
    double* p = host.gv.flowVariables[0];
    p[active] = std::numeric_limits<double>::quiet_NaN();
    p[cut] = 1e-20;
    p[host.fvm.NcAll] = 1e-20;

    mesh.InitializeVTKTool();
    mesh.OutputVTKDataInEachTimeStep(0, 1);

    EXPECT_TRUE(std::isnan(p[active]));
    EXPECT_EQ(p[cut], 1e-20);
    EXPECT_EQ(p[host.fvm.NcAll], 1e-20);
}

TEST_F(OversetResults, ContainTheValuesOfEachStep) {
    const int cell = PublishedCells().front();
    mesh.InitializeVTKTool();

    host.gv.flowVariables[0][cell] = 7;
    mesh.OutputVTKDataInEachTimeStep(0, 1);
    host.gv.flowVariables[0][cell] = 8;
    mesh.OutputVTKDataInEachTimeStep(0.25, 2);

    EXPECT_EQ(Array("_Itr1_T0", "Pressure").substr(0, 6), "\t\t\t\t7\n");
    EXPECT_EQ(Array("_Itr2_T0.25", "Pressure").substr(0, 6), "\t\t\t\t8\n");
}

TEST_F(OversetResults, EndInASeriesWhateverTheProcessNumber) {
    mesh.InitializeVTKTool();
    mesh.OutputVTKDataInEachTimeStep(0.5, 20);
    mesh.OutputVTKDataInEachTimeStep(1, 40);
    EXPECT_EQ(Names(dir.Path()),
              (std::vector<std::string>{project + ".vtkcollection_3", project + "_3"}));
    const std::string before = capture.Out();

    mesh.PostRunVTKDataSMP();

    EXPECT_EQ(capture.Out(), before + dir.Text() + "/" + project + ".vtkcollection_3\n");
    EXPECT_EQ(Names(dir.Path()), (std::vector<std::string>{project + ".pvd", project + "_3"}));
    const std::string stepDir = project + "_3/" + project;
    EXPECT_EQ(ReadFile(dir.Path() / (project + ".pvd")),
              "<?xml version = \"1.0\"?>\n"
              "<VTKFile type = \"Collection\" version = \"0.1\" byte_order = \"LittleEndian\">\n"
              "<Collection>\n"
              "<DataSet timestep=\"0.5\" group=\"1\" part=\"3\" file=\"" +
                  stepDir +
                  "_Itr20_T0.5_P3_B1.vtu\"/>\n<DataSet timestep=\"1\" group=\"1\" part=\"3\" " +
                  "file=\"" + stepDir + "_Itr40_T1_P3_B1.vtu\"/>\n</Collection>\n</VTKFile>\n");
}

TEST_F(OversetResults, AreTheSameThroughTheImplementation) {
    mesh.impl->InitVTKTool();
    mesh.impl->OutputEachTimeStepVTKData(0.5, 20);
    mesh.impl->PostRunVTKData_SMP();

    EXPECT_TRUE(fs::exists(StepFile("_Itr20_T0.5")));
    EXPECT_TRUE(fs::exists(dir.Path() / (project + ".pvd")));
}

TEST_F(OversetResults, DoNotStopTheSolverWhenTheyFail) {
    host.WithRootDir(dir.Text() + "/missing");
    CKVXOversetMesh other;
    other.SetFVM(&host.gv, &host.fvm);
    const std::string before = capture.Out();

    other.InitializeVTKTool();
    other.OutputVTKDataInEachTimeStep(0, 1);
    other.PostRunVTKDataSMP();

    const std::string file =
        dir.Text() + "/missing/" + project + "_3/" + project + "_Itr1_T0_P3_B1.vtu";
    EXPECT_EQ(capture.Out(), before + "Opne File: " + file + " With Error\nFile: " + file +
                                 " Open Error\nPVD File Open Error\n");
}

TEST_F(OversetResults, AreNotMergedAtDestruction) {
    {
        CKVXOversetMesh other;
        other.SetFVM(&host.gv, &host.fvm);
        other.InitializeVTKTool();
        other.OutputVTKDataInEachTimeStep(0, 1);
    }

    EXPECT_EQ(Names(dir.Path()),
              (std::vector<std::string>{project + ".vtkcollection_3", project + "_3"}));
}

}  // namespace
