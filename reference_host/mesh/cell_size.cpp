#include "reference_host/mesh/cell_size.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host_checks/mesh_view.h"

namespace host {

int CellsPerUnit(const Mesh& mesh) {
    double smallest = std::numeric_limits<double>::max();
    if (mesh.IsQuasi2d()) {
        const std::vector<BoundaryFace>& faces = mesh.Faces(Boundary::Symmetry);
        for (std::size_t i = 1; i < faces.size(); ++i) {
            if (mesh.cavity[faces[i].cell] == 1) {
                const int corners = static_cast<int>(faces[i].nodes.size());
                smallest = std::min(
                    smallest, kvx3d::checks::RegularEdgeInPlane(faces[i].area.norm(), corners));
            }
        }
    } else {
        for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
            if (mesh.cavity[cell] == 1) {
                const int nNodes = static_cast<int>(mesh.cellNodes[cell].size());
                smallest =
                    std::min(smallest, kvx3d::checks::RegularEdge(mesh.volume[cell], nNodes));
            }
        }
    }
    return static_cast<int>(std::lround(1.0 / smallest));
}

}  // namespace host
