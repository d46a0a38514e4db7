#ifndef KVX3D_REFERENCE_HOST_CASES_CASE_SPHERE_H
#define KVX3D_REFERENCE_HOST_CASES_CASE_SPHERE_H

#include "reference_host/cases/case_options.h"
#include "reference_host/cases/flow_case.h"

namespace host {

/// Steady laminar flow around a sphere at Reynolds number 100, in three dimensions (see
/// benchmark_sphere.h): a shell around the sphere in a wide box of hexahedra, whose sides are
/// symmetry planes. The shell consists of hexahedra, or of prisms (shell = 1) or tetrahedra (shell
/// = 2).
///
///     reference_host sphere parameters.n=7 check=true
///     reference_host sphere parameters.n=7 parameters.shell=2 check=true
struct SphereCase : FlowCase {
    SphereCase();
};

CaseOptions OptionsOf(SphereCase& run);

/// Runs the case as RunFlow() describes, and writes the velocity on the axis of the wake to
/// `wake_axis.csv`.
int RunSphere(const SphereCase& run);

}  // namespace host

#endif
