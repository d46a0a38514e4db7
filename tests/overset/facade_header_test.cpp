// Includes only the facade's header: every class that it names must be complete for a host that
// includes nothing else.
#include "overset/overset_mesh.h"

#include <gtest/gtest.h>

namespace {

TEST(OversetFacadeHeader, GivesAccessToTheImplementationItsTablesAndItsTrees) {
    CKVX3DFiniteVolumeMesh fvm;
    CKvx3dGV gv;
    CKVXOversetMesh mesh;
    KVX_ART_OVERSET_GRID_DATA data;
    KVX_ART_KDtree tree;
    int id = 7;
    int* found = nullptr;

    data.getKvx3dGV(&gv, &fvm);
    mesh.impl->LinkOversetGridData(&data);
    mesh.impl->backgroundTree = &tree;
    mesh.impl->backgroundTree->BuildTree(1.0, 2.0, 3.0, &id);
    mesh.impl->backgroundTree->SearchNearestPoints(0.0, 0.0, 0.0, found);

    EXPECT_EQ(mesh.impl->gridData->kvxFvm, &fvm);
    EXPECT_EQ(found[1], 7);
    mesh.impl->backgroundTree = nullptr;
    delete[] found;
}

}  // namespace
