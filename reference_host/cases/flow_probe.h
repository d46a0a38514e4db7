#ifndef KVX3D_REFERENCE_HOST_CASES_FLOW_PROBE_H
#define KVX3D_REFERENCE_HOST_CASES_FLOW_PROBE_H

#include "host_checks/point_tree.h"
#include "reference_host/discretisation/donor_interpolation.h"
#include "reference_host/mesh/cell_faces.h"
#include "reference_host/physics/flow_solver.h"

namespace host {

/// Reads the velocity of a flow at any point of the domain.
///
/// The value is a quadratic least-squares fit over the cells around the active cell whose center is
/// nearest to the point, in the grid of that cell.
class FlowProbe {
public:
    /// Keeps a reference to the flow and reads its present fields.
    explicit FlowProbe(const FlowSolver& flow);

    Vec3 Velocity(const Vec3& point) const;

private:
    const FlowSolver& flow;
    const CellFaces cellFaces;
    const DonorInterpolation interpolation;
    const kvx3d::checks::PointTree activeCells;
};

}  // namespace host

#endif
