#ifndef KVX3D_REFERENCE_HOST_CASES_CASE_CYLINDER_H
#define KVX3D_REFERENCE_HOST_CASES_CASE_CYLINDER_H

#include "reference_host/cases/benchmark_2d1.h"
#include "reference_host/cases/case_options.h"
#include "reference_host/cases/flow_case.h"

namespace host {

/// Steady laminar flow around a cylinder in a channel, benchmark 2D-1 (see benchmark_2d1.h).
///
///     reference_host cylinder parameters.n=10 output.directory=results
///
/// Expected there: Cd +0.04 %, Cl -3.8 %, pressure difference +0.1 % off the published values after
/// about 130 iterations.
struct CylinderCase : FlowCase {
    CylinderCase();

    double reynolds = benchmark2d1::reynolds;  ///< from diameter and mean inflow velocity
};

CaseOptions OptionsOf(CylinderCase& run);

/// Runs the case as RunFlow() describes. The table compares with the published values, at their
/// Reynolds number.
int RunCylinder(const CylinderCase& run);

}  // namespace host

#endif
