#include "vtk_output/vtk_data.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <type_traits>

#include "tests/support/undestroyed.h"
#include "tests/vtk_output/output_support.h"

namespace {

static_assert(std::is_trivially_copyable_v<MeshCell>);
static_assert(std::is_base_of_v<std::vector<MeshCell>, VTK_Cells>);
static_assert(std::is_polymorphic_v<CKVX_ART_VTK_Tool>);

struct Shape {
    int count;
    bool isSurface;
    int type;
};

class CellType : public testing::TestWithParam<Shape> {};

TEST_P(CellType, FollowsNodeCountAndSurfaceFlag) {
    MeshCell cell(nullptr, GetParam().count, GetParam().isSurface);

    EXPECT_EQ(cell.getVTK_3dMeshType(), GetParam().type);
}

INSTANTIATE_TEST_SUITE_P(Shapes, CellType,
                         testing::Values(Shape{3, true, 5}, Shape{4, true, 9}, Shape{4, false, 10},
                                         Shape{8, true, 12}, Shape{8, false, 12},
                                         Shape{6, true, 13}, Shape{6, false, 13},
                                         Shape{5, true, 14}, Shape{5, false, 14}, Shape{1, true, 1},
                                         Shape{1, false, 1}, Shape{3, false, 0}, Shape{2, true, 0},
                                         Shape{2, false, 0}, Shape{0, false, 0}, Shape{7, false, 0},
                                         Shape{9, true, 0}, Shape{20, false, 0},
                                         Shape{-1, false, 0}));

TEST(MeshCellValue, TwoArgumentsGiveAVolumeCell) {
    int nodes[] = {1, 2, 3, 4};
    MeshCell cell(nodes, 4);

    EXPECT_EQ(cell.nodes, nodes);
    EXPECT_EQ(cell.count, 4);
    EXPECT_FALSE(cell.isSurface);
    EXPECT_EQ(cell.getVTK_3dMeshType(), 10);
}

TEST(MeshCellValue, AssignmentCopiesTheWholeRecord) {
    int nodes[] = {7, 8, 9};
    MeshCell flat(nodes, 3, true);
    MeshCell cell(nullptr, 0);

    cell = flat;

    EXPECT_EQ(cell.nodes, nodes);
    EXPECT_EQ(cell.count, 3);
    EXPECT_TRUE(cell.isSurface);
}

TEST(MeshCellValue, FieldsAreInTheirOrder) {
    EXPECT_EQ(offsetof(MeshCell, nodes), 0u);
    EXPECT_LT(offsetof(MeshCell, nodes), offsetof(MeshCell, count));
    EXPECT_LT(offsetof(MeshCell, count), offsetof(MeshCell, isSurface));
}

TEST(VtkData, StartsWithoutComponents) {
    VTK_Data data("Velocity");

    EXPECT_EQ(data.name, "Velocity");
    EXPECT_TRUE(data.components.empty());
}

TEST(VtkBlock, StartsAsAnUnstructuredGridWithoutArrays) {
    VTK_Points points;
    VTK_Cells cells;
    VTK_Block block(&points, &cells);

    EXPECT_EQ(block.blockType, 0);
    EXPECT_EQ(block.points, &points);
    EXPECT_EQ(block.cells, &cells);
    EXPECT_TRUE(block.pointsData.empty());
    EXPECT_TRUE(block.cellsData.empty());
}

TEST(VtkBlock, StoresArraysInOrderWithoutChecks) {
    Tetrahedron one;
    VTK_Data sameName("Pressure");

    one.block.addCellsData(&one.cellData);
    one.block.addCellsData(&sameName);
    one.block.addPointsData(&one.pointData);
    one.block.addPointsData(&one.pointData);

    EXPECT_EQ(one.block.cellsData, (std::vector<VTK_Data*>{&one.cellData, &sameName}));
    EXPECT_EQ(one.block.pointsData, (std::vector<VTK_Data*>{&one.pointData, &one.pointData}));
}

TEST(VtkBlock, CopiesShareTheRecords) {
    Tetrahedron one;
    one.block.blockType = 3;
    one.block.addCellsData(&one.cellData);
    one.block.addPointsData(&one.pointData);

    VTK_Block copy(one.block);
    VTK_Block assigned(nullptr, nullptr);
    assigned = one.block;

    for (const VTK_Block* other : {&copy, &assigned}) {
        EXPECT_EQ(other->blockType, 3);
        EXPECT_EQ(other->points, &one.points);
        EXPECT_EQ(other->cells, &one.cells);
        EXPECT_EQ(other->cellsData, one.block.cellsData);
        EXPECT_EQ(other->pointsData, one.block.pointsData);
    }
}

TEST(VtkBlock, DestructionDoesNotReleaseTheRecords) {
    Tetrahedron one;
    auto* block = new VTK_Block(&one.points, &one.cells);
    block->addCellsData(&one.cellData);

    delete block;

    EXPECT_EQ(one.cellData.name, "Pressure");
    EXPECT_EQ(one.cellData.components[0][0], 42);
    EXPECT_EQ(one.cells.size(), 1u);
    EXPECT_EQ(one.points.count, 4);
}

TEST(VtkBlock, ADestroyedBlockHasNoRecords) {
    Tetrahedron one;
    Undestroyed<VTK_Block> block(&one.points, &one.cells);
    const std::size_t at = offsetof(VTK_Block, points);
    const void* records[2] = {&one, &one};

    block->~VTK_Block();

    std::memcpy(records, block.storage + at, sizeof(records));
    EXPECT_EQ(records[0], nullptr);
    EXPECT_EQ(records[1], nullptr);
}

TEST(VtkTool, StartsEmptyWithTheSeparatorOfTheSystem) {
    CKVX_ART_VTK_Tool tool;

#ifdef _WIN32
    EXPECT_EQ(tool.settings->separator, "\\");
#else
    EXPECT_EQ(tool.settings->separator, "/");
#endif
    EXPECT_EQ(tool.settings->rootDir, "");
    EXPECT_EQ(tool.settings->stepDir, "");
    EXPECT_EQ(tool.settings->project, "");
    EXPECT_EQ(tool.settings->time, 0.0);
    EXPECT_EQ(tool.settings->iteration, 0);
    EXPECT_EQ(tool.settings->processId, 0);
    EXPECT_EQ(tool.collectionWriter->settings, tool.settings);
    EXPECT_TRUE(tool.collectionWriter->blocks.empty());
    EXPECT_FALSE(tool.collectionWriter->recordFile.is_open());
    EXPECT_EQ(tool.pvdWriter->settings, tool.settings);
    EXPECT_FALSE(tool.pvdWriter->pvdFile.is_open());
}

TEST(VtkTool, NumbersBlocksFromOneAndAcceptsABlockTwice) {
    Tetrahedron one;
    VTK_Block other(&one.points, &one.cells);
    CKVX_ART_VTK_Tool tool;

    EXPECT_EQ(tool.newBlockData(&one.block), 1);
    EXPECT_EQ(tool.newBlockData(&other), 2);
    EXPECT_EQ(tool.newBlockData(&one.block), 3);
    EXPECT_EQ(tool.collectionWriter->blocks,
              (std::vector<VTK_Block*>{&one.block, &other, &one.block}));
}

TEST(VtkTool, CopiesShareTheParts) {
    auto* tool = new CKVX_ART_VTK_Tool;
    // Never destroyed, because only one of the copies may be.
    alignas(CKVX_ART_VTK_Tool) unsigned char room[2][sizeof(CKVX_ART_VTK_Tool)];
    auto* copy = new (room[0]) CKVX_ART_VTK_Tool(*tool);
    auto* assigned = new (room[1]) CKVX_ART_VTK_Tool(*copy);
    *assigned = *tool;

    for (const CKVX_ART_VTK_Tool* other : {copy, assigned}) {
        EXPECT_EQ(other->settings, tool->settings);
        EXPECT_EQ(other->collectionWriter, tool->collectionWriter);
        EXPECT_EQ(other->pvdWriter, tool->pvdWriter);
    }

    delete tool;
}

TEST(VtkTool, ADestroyedToolHasNoParts) {
    Undestroyed<CKVX_ART_VTK_Tool> tool;
    const void* parts[3] = {&tool, &tool, &tool};

    tool->~CKVX_ART_VTK_Tool();

    std::memcpy(parts, tool.storage + sizeof(void*),
                sizeof(parts));  // after the virtual table pointer
    for (const void* part : parts) {
        EXPECT_EQ(part, nullptr);
    }
}

TEST(VtkTool, SkipsPartsThatAreNullAtDestruction) {
    auto* tool = new CKVX_ART_VTK_Tool;
    delete tool->pvdWriter;
    tool->pvdWriter = nullptr;
    delete tool->collectionWriter;
    tool->collectionWriter = nullptr;
    delete tool->settings;
    tool->settings = nullptr;

    delete tool;
}

}  // namespace
