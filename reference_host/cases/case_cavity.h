#ifndef KVX3D_REFERENCE_HOST_CASES_CASE_CAVITY_H
#define KVX3D_REFERENCE_HOST_CASES_CASE_CAVITY_H

#include "reference_host/cases/case_options.h"
#include "reference_host/cases/flow_case.h"

namespace host {

/// Steady laminar flow in a lid-driven cavity (see benchmark_cavity.h): a closed domain, on one
/// grid or an overset pair, empty or with a body at rest.
///
///     reference_host cavity parameters.n=64 parameters.kind=1 physics.reynolds=1000
struct CavityCase : FlowCase {
    CavityCase();

    double reynolds = 100.0;  ///< from the side of the cavity and the velocity of the lid
};

CaseOptions OptionsOf(CavityCase& run);

/// Runs the case as RunFlow() describes, and writes the profiles u(y) at x = 1/2 and v(x) at y =
/// 1/2 to `profile_u.csv` and `profile_v.csv`. Without a body the table compares their extremes
/// with the published ones; with a body it has the force on it, in units of half the area of the
/// lid.
int RunCavity(const CavityCase& run);

}  // namespace host

#endif
