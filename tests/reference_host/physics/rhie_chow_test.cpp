#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "reference_host/physics/momentum.h"
#include "reference_host/physics/pressure_correction.h"
#include "tests/reference_host/physics/flow_case.h"

namespace {

using host::FlowFields;
using host::Vec3;

/// Fluid at rest with a pressure that no linear function describes, and cells of different a*.
struct RestWithPressure {
    RestWithPressure(const MeshChoice& choice, double relaxation)
        : c(choice),
          conditions(c.mesh, c.link, {[](const Vec3&) { return Vec3(Vec3::Zero()); }, {}, {}}),
          momentum(c.mesh, c.objects, c.link, conditions, host::Scheme::LinearUpwind, 0.05,
                   relaxation),
          pressure(c.mesh, c.objects, c.link, conditions, relaxation),
          fields(c.objects.CellAndGhostCount()),
          scale(c.mesh.CellCount() + 1, 1.0),
          flux(&momentum.records.gv, /*shared=*/false) {
        for (int cell = 1; cell <= c.mesh.CellCount(); ++cell) {
            if (c.link.IsActive(cell)) {
                const Vec3& at = c.mesh.cellCentre[cell];
                fields.pressure[cell] = std::sin(2.1 * at.x()) * std::cos(1.7 * at.y());
                scale[cell] = 1.0 + cell % 7;
            }
        }
        pressure.SetCoefficients(scale);
        pressure.UpdatePressure(fields);
        pressure.PredictFluxes(fields, momentum.records, flux);
    }

    MeshCase c;
    host::FlowConditions conditions;
    host::Momentum momentum;
    host::PressureCorrection pressure;
    FlowFields fields;
    std::vector<double> scale;
    CMAFVMFaceVariableAll flux;
};

/// The flux that a pressure causes in fluid at rest.
class RhieChowTerm : public testing::TestWithParam<double> {
protected:
    static constexpr double smallest = 1e-4;  // below it a term is no evidence
};

TEST_P(RhieChowTerm, OpposesTheFaceGradientBeyondTheMeanOfTheCellsForAnyRelaxation) {
    const OutputCapture quiet;
    const RestWithPressure rest(oversetTetrahedra, /*relaxation=*/GetParam());
    const host::Mesh& mesh = rest.c.mesh;
    const std::vector<Vec3>& gradient = rest.pressure.Gradient();
    int checked = 0;
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        if (rest.c.link.Side(face) != host::FaceSide::Both) {
            continue;
        }
        const host::InnerFace& between = mesh.innerFaces[face];
        const int first = rest.c.link.First(face);
        const int second = rest.c.link.Second(face);
        const Vec3 d = mesh.cellCentre[second] - mesh.cellCentre[first];
        const double share =
            (between.centre - mesh.cellCentre[first]).dot(between.area) / d.dot(between.area);
        const auto atFace = [share](const auto& a, const auto& b) {
            return (1.0 - share) * a + share * b;
        };
        const CMAFVMFaceData& record = rest.pressure.records.Inner(face);
        const double normal = host::Apply(record.idNormal, record.coefNormal, rest.fields.pressure);
        const Vec3 mean = atFace(gradient[first], gradient[second]);
        const double E = atFace(mesh.volume[first] / rest.scale[first],
                                mesh.volume[second] / rest.scale[second]);

        const double expected = -E * (normal - between.area.dot(mean));

        ASSERT_NEAR(rest.flux.left[face], expected, 1e-13) << "face " << face;
        checked += std::abs(expected) > smallest ? 1 : 0;
    }
    EXPECT_GT(checked, 100);
}

INSTANTIATE_TEST_SUITE_P(Relaxation, RhieChowTerm, testing::Values(0.8, 0.95));

}  // namespace
