#ifndef KVX3D_HOST_CHECKS_INSPECTION_H
#define KVX3D_HOST_CHECKS_INSPECTION_H

#include <string>

#include "host_checks/explanation.h"
#include "host_checks/export.h"

namespace kvx3d::checks {

/// Paths of the files that WriteInspection() wrote.
struct InspectionFiles {
    std::string cells;   ///< all cells with their states
    std::string donors;  ///< the donors as lines
};

/// Writes the result of the overset set-up as two files for ParaView or any other reader of VTK.
///
/// `cells.vtu` holds ALL cells, cut ones included, with these cell arrays:
/// - grid            1 background, 2 component 1, 3 component 2, 0 none
/// - state           2 active, 1 cut, 0 undefined (OversetCellType)
/// - step            step that judges the cell: 0 none, 1 outside domain, 2 overlap (CuttingStep)
/// - distance        from the plane of the nearest judging face, positive on the side to which its
///                   area vector points [length]; 0 where no step judges
/// - margin          2 cell sizes [length]; 0 where no step judges
/// - donor_count     number of faces that have this cell as donor
/// - missing_donors  number of faces of this active cell that need a donor and have none
///
/// `donors.vtu` holds two line cells for each face with a donor, from the center of the active cell
/// to the center of the face and on to the center of the donor, with these cell arrays:
/// - boundary        1 hole boundary, 2 outer boundary of a component
/// - face            number of the inner face (boundary 1) or wall face (boundary 2)
/// - tries           tree searches that the donor took
/// - distance        from the last query point to the center of the donor [length]
///
/// Donors of outer faces are the nearest active background cells to the mirrored centers. Call it
/// before donors are written into Ce23. Numbers have six digits; a number outside the range of
/// Float32 is replaced by the nearest one in it, NaN by 0. Existing files of these names are
/// replaced.
///
/// @param directory  is created if it does not exist
/// @param explainer  of the mesh
/// @throws std::runtime_error  one line with the path that cannot be written
KVX3D_CHECKS_API InspectionFiles WriteInspection(const std::string& directory,
                                                 const Explainer& explainer);

/// The same from the host objects.
///
/// @param gv,fvm   satisfy HostFaults()
/// @param overset  set up by SetFVM() with these objects
KVX3D_CHECKS_API InspectionFiles WriteInspection(const std::string& directory, const CKvx3dGV& gv,
                                                 const CKVX3DFiniteVolumeMesh& fvm,
                                                 CKVXOversetMesh& overset);

}  // namespace kvx3d::checks

#endif
