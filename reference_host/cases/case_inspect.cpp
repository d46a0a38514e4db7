#include "reference_host/cases/case_inspect.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <iostream>

#include "host_checks/explanation.h"
#include "host_checks/host_checks.h"
#include "host_checks/inspection.h"
#include "overset/overset_mesh.h"
#include "reference_host/cases/common_options.h"
#include "reference_host/link/host_objects.h"
#include "reference_host/run/picture.h"
#include "reference_host/run/result_series.h"

namespace host {
namespace {

/// The rules from InletGrid on are about the quality of the cut: with them broken the set-up still
/// reads nothing out of range. The rules before it are about the host objects themselves.
bool IsSetUpSafe(const kvx3d::checks::Verdict& verdict) {
    return std::all_of(verdict.faults.begin(), verdict.faults.end(),
                       [](const kvx3d::checks::Fault& fault) {
                           return fault.rule >= kvx3d::checks::Rule::InletGrid;
                       });
}

void PrintExplanations(const InspectCase& run, const kvx3d::checks::Explainer& explainer) {
    if (run.cells.empty() && run.faces.empty()) {
        return;
    }
    std::cout << "\nExplanations\n";
    for (int cell : run.cells) {
        std::cout << Text(explainer.ExplainCell(cell)) << '\n';
    }
    for (int face : run.faces) {
        std::cout << Text(explainer.ExplainInnerFace(face)) << '\n';
    }
}

void PrintFiles(const kvx3d::checks::InspectionFiles& files) {
    std::cout << fmt::format(
        "\nInspection files\n"
        "{}: all cells with grid, state, distance, margin and number of donors\n"
        "{}: the donors as lines\n"
        "Open both in ParaView.\n",
        files.cells, files.donors);
}

void DrawPicture(const std::string& directory) {
    const std::string picture = (std::filesystem::path(directory) / "inspection.png").string();
    const std::string command = DrawingCommand("draw_inspection.py", {directory, picture});
    if (Draw(command)) {
        std::cout << "Picture: " << picture << '\n';
    } else {
        std::cout << "No picture was drawn. This command draws it and says what is missing:\n    "
                  << command << '\n';
    }
}

}  // namespace

CaseOptions OptionsOf(InspectCase& run) {
    const Range ids = Range::AtLeast(1);
    return {run.meshFile,
            run.parameters,
            {
                OutputOption(run.outputDir, "directory of the inspection files"),
                IntegersOption({"explain.cells", "--cells", "numbers of cells to explain"},
                               run.cells, ids),
                IntegersOption({"explain.faces", "--faces", "numbers of inner faces to explain"},
                               run.faces, ids),
                FlagOption({"output.picture", "--picture", "draw a slice as inspection.png"},
                           run.picture),
            }};
}

int RunInspect(const InspectCase& run) {
    PrepareOutputDirectory(run.outputDir);
    const Mesh mesh = ReadGrids(run.meshFile, run.parameters);
    HostObjects objects(mesh, run.outputDir);

    const kvx3d::checks::Verdict verdict = kvx3d::checks::MaySetUp(objects.gv, objects.fvm);
    std::cout << "Before the setup\n" << Report(verdict);
    if (!IsSetUpSafe(verdict)) {
        std::cout << "With these faults the setup may read out of range, so the mesh is not set up "
                     "and no inspection files are written.\n";
        return 1;
    }

    std::cout << "\nSetup\n";
    CKVXOversetMesh overset;
    overset.SetFVM(&objects.gv, &objects.fvm);

    const kvx3d::checks::Soundness soundness =
        kvx3d::checks::Assess(objects.gv, objects.fvm, overset);
    std::cout << "\nAfter the setup\n" << Report(soundness);
    const kvx3d::checks::MeshView view(objects.gv, objects.fvm);
    const kvx3d::checks::Explainer explainer(view, overset);
    PrintFiles(WriteInspection(run.outputDir, explainer));
    if (run.picture) {
        DrawPicture(run.outputDir);
    }
    PrintExplanations(run, explainer);
    return verdict && soundness ? 0 : 1;
}

}  // namespace host
