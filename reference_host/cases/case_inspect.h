#ifndef KVX3D_REFERENCE_HOST_CASES_CASE_INSPECT_H
#define KVX3D_REFERENCE_HOST_CASES_CASE_INSPECT_H

#include <string>
#include <vector>

#include "reference_host/cases/case_options.h"

namespace host {

/// The settings of `reference_host inspect`: it shows what the toolbox makes of a mesh, and why.
///
/// It prints the verdict before the overset set-up and the assessment after it, writes inspection
/// files for ParaView, and explains single cells and faces. Meshes that break the mesh rules are
/// inspected as well, because the pictures show what is wrong with them.
///
///     reference_host inspect mesh.file=channel_cylinder_overset.geo parameters.n=5
///     reference_host inspect cases/cylinder.toml explain.cells=17,42
struct InspectCase {
    std::string meshFile;
    MeshParameters parameters;  ///< values of variables of a .geo
    std::string outputDir = "inspection_results";
    std::vector<int> cells;  ///< numbers of cells to explain
    std::vector<int> faces;  ///< numbers of inner faces to explain
    bool picture = true;     ///< draw a slice, which needs Python with VTK and Matplotlib
};

CaseOptions OptionsOf(InspectCase& run);

/// Prints everything on standard output, writes `cells.vtu` and `donors.vtu` and draws them as
/// `inspection.png`. A picture that cannot be drawn is reported in a line with the command.
///
/// @return 0 if the mesh is sound before and after the set-up, otherwise 1. With faults that make
///         the set-up itself unsafe nothing is set up and no file is written.
/// @throws std::runtime_error  one line: bad mesh, or a file that cannot be written
/// @throws std::out_of_range   one line: a cell or face to explain does not exist
int RunInspect(const InspectCase& run);

}  // namespace host

#endif
