#include "reference_host/mesh/mesh_geometry.h"

#include <fmt/format.h>

#include <Eigen/Geometry>
#include <algorithm>
#include <stdexcept>

#include "reference_host/mesh/messages.h"

namespace host {
namespace {

constexpr double closedness =
    1e-12;  // relative to the surface of the cell; rounding gives about 1e-16

/// Calls visit(a, b) for each edge a-b of a face, in the order of its node list.
template <class Visit>
void ForEachEdge(const Mesh& mesh, const std::vector<int>& nodeIds, Visit visit) {
    for (std::size_t i = 0; i < nodeIds.size(); ++i) {
        visit(mesh.nodes[nodeIds[i]], mesh.nodes[nodeIds[(i + 1) % nodeIds.size()]]);
    }
}

template <class Face>
void ComputeFace(const Mesh& mesh, Face& face) {
    std::vector<Vec3> corners;
    for (int node : face.nodes) {
        corners.push_back(mesh.nodes[node]);
    }
    const PolygonGeometry polygon = GeometryOf(corners);
    face.area = polygon.area;
    face.centre = polygon.centre;
}

/// Sums over the faces of each cell; entry 0 unused.
struct CellSums {
    explicit CellSums(std::size_t n)
        : apex(n),
          volume(n, 0.0),
          moment(n, Vec3::Zero()),
          area(n, Vec3::Zero()),
          surface(n, 0.0) {}

    /// Adds the tetrahedra between the mean of the cell's nodes and the triangles of a face. `sign`
    /// is -1 where the area vector of the face points into the cell.
    void AddFace(const Mesh& mesh, int cell, const std::vector<int>& nodeIds, const Vec3& faceArea,
                 double sign) {
        const Vec3 middle = NodeMean(mesh, nodeIds) - apex[cell];
        ForEachEdge(mesh, nodeIds, [&](const Vec3& p, const Vec3& q) {
            const Vec3 a = p - apex[cell];
            const Vec3 b = q - apex[cell];
            const double tetrahedron = sign * middle.dot(a.cross(b)) / 6.0;
            volume[cell] += tetrahedron;
            moment[cell] += tetrahedron / 4.0 * (middle + a + b);
        });
        area[cell] += sign * faceArea;
        surface[cell] += faceArea.norm();
    }

    std::vector<Vec3> apex;
    std::vector<double> volume;
    std::vector<Vec3> moment;  // about the apex
    std::vector<Vec3> area;
    std::vector<double> surface;
};

void CheckCell(const Mesh& mesh, const CellSums& sums, int cell) {
    if (!(sums.volume[cell] > 0)) {
        throw std::runtime_error(
            fmt::format("{} has volume {:.3g}: give its nodes the other orientation, or untangle "
                        "the mesh there",
                        CellAt(mesh, cell), sums.volume[cell]));
    }
    const double gap = sums.area[cell].norm();
    if (!(gap <= closedness * sums.surface[cell])) {
        throw std::runtime_error(fmt::format(
            "{} is not closed: its area vectors add up to {:.3g} on a surface of {:.3g}; "
            "order its nodes and its neighbors' as VTK does",
            CellAt(mesh, cell), gap, sums.surface[cell]));
    }
}

}  // namespace

PolygonGeometry GeometryOf(const std::vector<Vec3>& corners) {
    const std::size_t n = corners.size();
    Vec3 middle = Vec3::Zero();
    for (const Vec3& corner : corners) {
        middle += corner;
    }
    middle /= static_cast<double>(n);
    PolygonGeometry polygon;
    const auto triangle = [&](std::size_t i) -> Vec3 {
        return 0.5 * (corners[i] - middle).cross(corners[(i + 1) % n] - middle);
    };
    for (std::size_t i = 0; i < n; ++i) {
        polygon.area += triangle(i);
    }
    // The weights are the areas of the triangles projected along the normal of the polygon. A
    // polygon without area keeps the mean of its corners; its cell is refused for its volume.
    Vec3 moment = Vec3::Zero();
    for (std::size_t i = 0; i < n; ++i) {
        moment += triangle(i).dot(polygon.area) / 3.0 *
                  ((corners[i] - middle) + (corners[(i + 1) % n] - middle));
    }
    const double areaSquared = polygon.area.squaredNorm();
    polygon.centre = areaSquared > 0 ? Vec3(middle + moment / areaSquared) : middle;
    return polygon;
}

void ComputeGeometry(Mesh& mesh) {
    const std::size_t n = mesh.cellNodes.size();
    CellSums sums(n);
    for (std::size_t cell = 1; cell < n; ++cell) {
        sums.apex[cell] = NodeMean(mesh, mesh.cellNodes[cell]);
    }
    for (int i = 1; i <= mesh.InnerFaceCount(); ++i) {
        InnerFace& face = mesh.innerFaces[i];
        ComputeFace(mesh, face);
        sums.AddFace(mesh, face.owner, face.nodes, face.area, 1.0);
        sums.AddFace(mesh, face.neighbor, face.nodes, face.area, -1.0);
    }
    for (Boundary kind : allBoundaries) {
        for (int i = 1; i <= mesh.FaceCount(kind); ++i) {
            BoundaryFace& face = mesh.boundaryFaces[static_cast<int>(kind)][i];
            ComputeFace(mesh, face);
            sums.AddFace(mesh, face.cell, face.nodes, face.area, 1.0);
        }
    }
    for (std::vector<BoundaryFace>& side : mesh.interfaceFaces) {
        for (std::size_t i = 1; i < side.size(); ++i) {
            ComputeFace(mesh, side[i]);
            sums.AddFace(mesh, side[i].cell, side[i].nodes, side[i].area, 1.0);
        }
    }

    mesh.volume = sums.volume;
    mesh.cellCentre.assign(n, Vec3::Zero());
    for (std::size_t cell = 1; cell < n; ++cell) {
        CheckCell(mesh, sums, static_cast<int>(cell));
        mesh.cellCentre[cell] = sums.apex[cell] + sums.moment[cell] / sums.volume[cell];
    }
}

double LargestGap(const Mesh& mesh) {
    std::vector<Vec3> area(mesh.cellCentre.size(), Vec3::Zero());
    std::vector<double> surface(area.size(), 0.0);
    const auto add = [&](int cell, const Vec3& outward) {
        area[cell] += outward;
        surface[cell] += outward.norm();
    };
    for (int i = 1; i <= mesh.InnerFaceCount(); ++i) {
        add(mesh.innerFaces[i].owner, mesh.innerFaces[i].area);
        add(mesh.innerFaces[i].neighbor, -mesh.innerFaces[i].area);
    }
    for (Boundary kind : allBoundaries) {
        for (int i = 1; i <= mesh.FaceCount(kind); ++i) {
            add(mesh.Faces(kind)[i].cell, mesh.Faces(kind)[i].area);
        }
    }
    double gap = 0.0;
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        gap = std::max(gap, area[cell].norm() / surface[cell]);
    }
    return gap;
}

}  // namespace host
