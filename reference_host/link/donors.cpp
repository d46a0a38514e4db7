#include "reference_host/link/donors.h"

#include "reference_host/mesh/point_tree.h"

namespace host {
namespace {

/// Active cells of one cavity in ascending order.
std::vector<int> ActiveCells(const Mesh& mesh, const Donors& donors, int cavity) {
    std::vector<int> cells;
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        if (mesh.cavity[cell] == cavity && donors.active[cell] != 0) {
            cells.push_back(cell);
        }
    }
    return cells;
}

/// The retry loop of the toolbox: mirror the centre through the face, take the nearest cell, accept
/// it if it lies across; else look a tenth further. Same operations in the same order, so that the
/// same cell comes out in the last bit of a tie.
struct RetryLoop {
    const PointTree& tree;
    const Mesh& mesh;
    int maxTries;

    /// @param from     centre of the active cell
    /// @param face     centre of the face
    /// @param outward  area vector, away from the active cell
    /// @return donor, 0 if none was accepted
    int Search(const Vec3& from, const Vec3& face, const Vec3& outward, int& tries) const {
        double factor = 1.0;
        for (tries = 1; tries <= maxTries; ++tries) {
            const Vec3 query((face.x() - from.x()) * factor + face.x(),
                             (face.y() - from.y()) * factor + face.y(),
                             (face.z() - from.z()) * factor + face.z());
            const int donor = tree.Nearest(query);
            if (donor == 0) {
                break;
            }
            factor += 0.1;
            const Vec3& found = mesh.cellCentre[donor];
            const double across = (found.y() - face.y()) * outward.y() +
                                  (found.x() - face.x()) * outward.x() +
                                  (found.z() - face.z()) * outward.z();
            if (across > 1e-8) {
                return donor;
            }
        }
        tries = maxTries;
        return 0;
    }
};

}  // namespace

int ActiveCell(const Mesh& mesh, const Donors& donors, int face) {
    const InnerFace& inner = mesh.innerFaces[face];
    return donors.side[face] == FaceSide::DonorIsFirst ? inner.neighbor : inner.owner;
}

void FindDonors(const Mesh& mesh, Donors& donors, int maxTries) {
    const auto centre = [&](int cell) -> const Vec3& { return mesh.cellCentre[cell]; };
    const PointTree background(ActiveCells(mesh, donors, 1), centre);
    const PointTree component(ActiveCells(mesh, donors, 2), centre);

    donors.inner.assign(mesh.innerFaces.size(), 0);
    donors.tries.assign(mesh.innerFaces.size(), 0);
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        const FaceSide side = donors.side[face];
        if (side == FaceSide::Both || side == FaceSide::None) {
            continue;
        }
        const int cell = ActiveCell(mesh, donors, face);
        if (mesh.cavity[cell] > 2) {
            continue;
        }
        const InnerFace& inner = mesh.innerFaces[face];
        const Vec3 outward = side == FaceSide::DonorIsSecond ? inner.area : Vec3(-inner.area);
        const RetryLoop loop{mesh.cavity[cell] == 1 ? component : background, mesh, maxTries};
        donors.inner[face] =
            loop.Search(mesh.cellCentre[cell], inner.centre, outward, donors.tries[face]);
    }

    donors.wall.assign(mesh.Faces(Boundary::Wall).size(), 0);
    for (int i = 1; i <= mesh.FaceCount(Boundary::Wall); ++i) {
        const BoundaryFace& face = mesh.Faces(Boundary::Wall)[i];
        if (face.oversetGroup > 0) {
            donors.wall[i] = background.Nearest(2.0 * face.centre - mesh.cellCentre[face.cell]);
        }
    }
}

}  // namespace host
