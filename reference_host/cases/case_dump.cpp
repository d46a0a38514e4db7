#include "reference_host/cases/case_dump.h"

#include <stdexcept>

#include "host_checks/host_rules.h"
#include "host_link/art_gv.h"
#include "overset/overset_mesh.h"
#include "reference_host/link/host_objects.h"
#include "reference_host/link/overset_link.h"
#include "reference_host/mesh/messages.h"

namespace host {

CaseOptions OptionsOf(DumpCase& run) {
    return {run.meshFile, run.parameters, {}};
}

int RunDump(const DumpCase& run) {
    const Mesh mesh = ReadGrids(run.meshFile, run.parameters);
    HostObjects objects(mesh, ".");
    Refuse(kvx3d::checks::HostFaults(objects.gv, objects.fvm));
    CKVX_ACMT_GV gv;
    gv.getKvx3dGV(&objects.gv, &objects.fvm);
    if (gv.getKvx3dData() != 0) {
        throw std::runtime_error(run.meshFile + ": the toolbox could not link the host objects");
    }
    gv.debugMode();
    OversetLink link(mesh, objects);
    if (link.IsOverset()) {
        link.Toolbox()->OversetDebugMode();
    }
    return 0;
}

}  // namespace host
