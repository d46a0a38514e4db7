#include <gtest/gtest.h>

#include <vector>

#include "overset/overset_mesh.h"
#include "tests/support/undestroyed.h"
#include "vtk_output/vtk_data.h"
#include "vtk_output/vtk_tool.h"

namespace {

enum Released { BackgroundTree = 1, ComponentTree, Tool };

std::vector<int> released;

class ToolThatReportsItsRelease : public CKVX_ART_VTK_Tool {
public:
    ~ToolThatReportsItsRelease() override { released.push_back(Tool); }
};

/// A tree with one point that reports the id of the point when it is cleared.
KVX_ART_KDtree* TreeThatReportsItsRelease(int* id) {
    auto* tree = new KVX_ART_KDtree;
    tree->BuildTree(0.0, 0.0, 0.0, id);
    tree->tree->destructor = [](int* cleared) { released.push_back(*cleared); };
    return tree;
}

TEST(OversetRelease, TreesAreReleasedFirstThenTheToolAndAllLinksAreNull) {
    released.clear();
    int background = BackgroundTree;
    int component = ComponentTree;
    double x[3] = {};
    Undestroyed<CKVXOversetMesh_Impl> impl;
    impl->backgroundTree = TreeThatReportsItsRelease(&background);
    impl->componentTree = TreeThatReportsItsRelease(&component);
    impl->vtkTool = new ToolThatReportsItsRelease;
    impl->vtkPoints = new VTK_Points;
    impl->vtkPoints->x = impl->vtkPoints->y = impl->vtkPoints->z = x;  // borrowed: not released
    impl->vtkPoints->count = 3;
    impl->vtkCells = new VTK_Cells;
    impl->vtkBlock = new VTK_Block(impl->vtkPoints, impl->vtkCells);
    impl->velocityData = new VTK_Data("Velocity");
    impl->pressureData = new VTK_Data("Pressure");

    impl->~CKVXOversetMesh_Impl();

    EXPECT_EQ(released, (std::vector<int>{BackgroundTree, ComponentTree, Tool}));
    EXPECT_EQ(impl->backgroundTree, nullptr);
    EXPECT_EQ(impl->componentTree, nullptr);
    EXPECT_EQ(impl->vtkTool, nullptr);
    EXPECT_EQ(impl->vtkPoints, nullptr);
    EXPECT_EQ(impl->vtkCells, nullptr);
    EXPECT_EQ(impl->vtkBlock, nullptr);
    EXPECT_EQ(impl->velocityData, nullptr);
    EXPECT_EQ(impl->pressureData, nullptr);
}

TEST(OversetRelease, GridDataIsNotReleased) {
    KVX_ART_OVERSET_GRID_DATA data;
    data.LinkARTGv(&data);
    Undestroyed<CKVXOversetMesh_Impl> impl;
    impl->gridData = &data;

    impl->~CKVXOversetMesh_Impl();

    EXPECT_EQ(impl->gridData, &data);
    EXPECT_EQ(data.linkedArtGv, &data);  // its destructor would have set this to null
}

TEST(OversetRelease, TheFacadeSetsItsImplementationToNull) {
    Undestroyed<CKVXOversetMesh> mesh;

    mesh->~CKVXOversetMesh();

    EXPECT_EQ(mesh->impl, nullptr);
}

TEST(OversetRelease, GridDataSetsItsLinksToTheHostToNull) {
    CKVX_ACMT_GV other;
    int counts[2] = {0, 1};
    int* rows[2] = {nullptr, counts};
    Undestroyed<KVX_ART_OVERSET_GRID_DATA> data;
    data->LinkARTGv(&other);
    data->oversetBCFaceCount = counts;
    data->oversetBCWallFace = rows;

    data->~KVX_ART_OVERSET_GRID_DATA();

    EXPECT_EQ(data->linkedArtGv, nullptr);
    EXPECT_EQ(data->oversetBCFaceCount, nullptr);
    EXPECT_EQ(data->oversetBCWallFace, nullptr);
}

}  // namespace
