#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "overset/overset_mesh.h"
#include "overset/overset_mesh_impl.h"
#include "plain/plain_overset.h"
#include "plain/samples/cylinder_host.h"
#include "tests/support/output_capture.h"

namespace {

/// A sample mesh. The scattered hosts of the other comparison have no geometry; in these, nearly
/// all cells are judged many at once.
struct Shape {
    std::string name;
    std::function<std::unique_ptr<SetupHost>()> make;
};

std::vector<Shape> AllShapes() {
    std::vector<Shape> shapes = {
        {"Cylinder", [] { return std::make_unique<CylinderHost>(5); }},
        {"SphereShell", [] { return std::make_unique<SphereShellHost>(5); }}};
    for (int angle : {0, 20, 30, 45, 60, 77}) {
        const std::string at = "At" + std::to_string(angle);
        shapes.push_back(
            {"Square" + at, [angle] { return std::make_unique<TurnedSquareHost>(5, angle); }});
        shapes.push_back(
            {"SquareRing" + at, [angle] { return std::make_unique<SquareRingHost>(4, angle); }});
    }
    return shapes;
}

/// The set-up of the toolbox and the plain one on the same host.
class BothSetups {
public:
    explicit BothSetups(SetupHost& host) : expected(data) {
        const OutputCapture silent;
        data.getKvx3dGV(&host.gv, &host.fvm);
        data.getKvx3dData();
        data.OversetGridsInfoSetting();
        expected.Setup(2);
        mesh.SetFVM(&host.gv, &host.fvm);
    }
    ~BothSetups() { delete mesh.impl->gridData; }
    BothSetups(const BothSetups&) = delete;
    BothSetups& operator=(const BothSetups&) = delete;

    /// Compares the state of each cell and the donor of each inner face on the hole boundary.
    void ExpectSame() {
        const KVX_ART_OVERSET_GRID_DATA& ours = *mesh.impl->gridData;
        EXPECT_EQ(ours.NNonActiveCell, data.NNonActiveCell);
        for (int cell = 1; cell <= data.Nc; ++cell) {
            ASSERT_EQ(ours.cellState[cell], data.cellState[cell]) << "cell " << cell;
        }
        for (int face = 1; face <= data.Ne; ++face) {
            if (data.GetInnerFaceState(face) == OversetInnerFace_Overset) {
                const int donor = expected.InnerDonor(face, 15);
                ++nFaces;
                if (donor > 0) {
                    ASSERT_EQ(mesh.GetOversetInnerNeighbor(face), donor) << "face " << face;
                }
            }
        }
    }

    std::vector<int> States() const {
        const int* states = mesh.impl->gridData->cellState;
        return {states, states + mesh.impl->gridData->Nc + 1};
    }

    KVX_ART_OVERSET_GRID_DATA data;
    plain::Overset expected;
    CKVXOversetMesh mesh;
    int nFaces = 0;  ///< inner faces on the hole boundary
};

class ShapesAgainstPlain : public testing::TestWithParam<Shape> {
protected:
    std::unique_ptr<SetupHost> host = GetParam().make();
};

TEST_P(ShapesAgainstPlain, CellsInMeshOrderHaveTheSameCutsAndDonors) {
    BothSetups setups(*host);

    setups.ExpectSame();

    EXPECT_GT(setups.nFaces, 100);
}

TEST_P(ShapesAgainstPlain, CellsNumberedAtRandomHaveTheSameCutsAndDonors) {
    const std::vector<int> inMeshOrder = BothSetups(*host).States();
    const std::vector<int> number = host->NumberCellsAtRandom(3);

    BothSetups setups(*host);
    setups.ExpectSame();

    // The order of the faces decides between equally near ones, and it has not changed.
    const std::vector<int> states = setups.States();
    for (std::size_t cell = 1; cell < states.size(); ++cell) {
        ASSERT_EQ(states[static_cast<std::size_t>(number[cell])], inMeshOrder[cell]);
    }
}

TEST_P(ShapesAgainstPlain, ANewSetupOfAMovedComponentHasTheSameCutsAndDonors) {
    BothSetups before(*host);
    host->MoveComponent(0.31, -0.17, 0.0);

    BothSetups setups(*host);
    setups.ExpectSame();

    EXPECT_NE(setups.States(), before.States());
}

TEST_P(ShapesAgainstPlain, AComponentThroughAWallIsCutAsByPlain) {
    host->MoveComponent(0.0, 3.1, 0.0);

    BothSetups setups(*host);
    setups.ExpectSame();

    EXPECT_TRUE(setups.expected.outsideCellsCut);
}

INSTANTIATE_TEST_SUITE_P(Shapes, ShapesAgainstPlain, testing::ValuesIn(AllShapes()),
                         [](const auto& param) { return param.param.name; });

}  // namespace
