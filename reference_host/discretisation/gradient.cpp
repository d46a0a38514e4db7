#include "reference_host/discretisation/gradient.h"

#include <Eigen/Eigenvalues>
#include <algorithm>

namespace host {

namespace {

using Mat3 = Eigen::Matrix3d;

/// An unknown near a cell: its column and the vector from the cell to the point of its value.
struct Sample {
    int column;
    Vec3 offset;
};

struct SampleSet {
    std::vector<Sample> samples;
    Mat3 moments = Mat3::Zero();

    void AddMoment(const Vec3& d) { moments += d * d.transpose() / d.squaredNorm(); }
    void Add(int column, const Vec3& d) {
        samples.push_back({column, d});
        AddMoment(d);
    }
};

bool GhostTakesPart(GradientSet set, Boundary kind, const BoundaryFace& face) {
    switch (set) {
        case GradientSet::Pressure:
            return kind == Boundary::Outlet || face.oversetGroup > 0;
        case GradientSet::ClosedPressure:
            return face.oversetGroup > 0;
        default:
            return true;
    }
}

bool IsTetrahedron(const Mesh& mesh, int cell) {
    return mesh.cellNodes[cell].size() == 4;
}

/// Whether a cell is a prism with a face whose ghost has no part in its gradient.
bool IsOneSidedPrism(const Mesh& mesh, const CellFaces& cellFaces, int cell, GradientSet set) {
    if (mesh.cellNodes[cell].size() != 6) {
        return false;
    }
    const auto& faces = cellFaces.BoundaryFaces(cell);
    return std::any_of(faces.begin(), faces.end(), [&](const BoundaryFaceId& id) {
        return id.kind != Boundary::Symmetry &&
               !GhostTakesPart(set, id.kind, mesh.Faces(id.kind)[id.face]);
    });
}

/// Adds the neighbors of the neighbors, across faces with two active cells. The ghosts of the
/// neighbors' boundary faces are left out, because the pressure has no condition at some of them.
void AddSecondNeighbors(int cell, const Mesh& mesh, const OversetLink& link,
                        const CellFaces& cellFaces, SampleSet& around) {
    const auto neighbor = [&](int of, int face) {
        const InnerFace& pair = mesh.innerFaces[face];
        return pair.owner == of ? pair.neighbor : pair.owner;
    };
    std::vector<int> seen = {cell};
    for (const Sample& sample : around.samples) {
        seen.push_back(sample.column);
    }
    for (const int face : cellFaces.InnerFaces(cell)) {
        if (link.Side(face) != FaceSide::Both) {
            continue;
        }
        const int first = neighbor(cell, face);
        for (const int next : cellFaces.InnerFaces(first)) {
            const int second = neighbor(first, next);
            if (link.Side(next) == FaceSide::Both &&
                std::find(seen.begin(), seen.end(), second) == seen.end()) {
                seen.push_back(second);
                around.Add(second, mesh.cellCentre[second] - mesh.cellCentre[cell]);
            }
        }
    }
}

SampleSet SamplesAround(int cell, const Mesh& mesh, const HostObjects& objects,
                        const OversetLink& link, const CellFaces& cellFaces, GradientSet set) {
    const Vec3& centre = mesh.cellCentre[cell];
    SampleSet around;
    for (const int face : cellFaces.InnerFaces(cell)) {
        const int other =
            mesh.innerFaces[face].owner == cell ? link.Second(face) : link.First(face);
        around.Add(other, mesh.cellCentre[other] - centre);
    }
    if (IsTetrahedron(mesh, cell) || IsOneSidedPrism(mesh, cellFaces, cell, set)) {
        AddSecondNeighbors(cell, mesh, link, cellFaces, around);
    }
    for (const BoundaryFaceId& id : cellFaces.BoundaryFaces(cell)) {
        const BoundaryFace& face = mesh.Faces(id.kind)[id.face];
        const Vec3 toFace = face.centre - centre;
        if (id.kind == Boundary::Symmetry) {
            const Vec3 normal = face.area.normalized();
            const Vec3 toPlane = toFace.dot(normal) * normal;
            if (set == GradientSet::VectorAtSymmetry) {
                around.Add(objects.Ghost(id.kind, id.face), toPlane);
            } else {
                around.AddMoment(toPlane);
            }
        } else if (GhostTakesPart(set, id.kind, face)) {
            around.Add(objects.Ghost(id.kind, id.face), toFace);
        }
    }
    return around;
}

/// Inverse of the moments in the directions that the samples span, zero in all others. A
/// tetrahedron in a corner may have samples in fewer than three directions if ghosts are left out.
Mat3 PseudoInverse(const Mat3& moments) {
    const Eigen::SelfAdjointEigenSolver<Mat3> eigen(moments);
    const double smallest = 1e-10 * eigen.eigenvalues()[2];  // the moments have no unit
    Vec3 inverse = Vec3::Zero();
    for (int i = 0; i < 3; ++i) {
        if (eigen.eigenvalues()[i] > smallest) {
            inverse[i] = 1.0 / eigen.eigenvalues()[i];
        }
    }
    return eigen.eigenvectors() * inverse.asDiagonal() * eigen.eigenvectors().transpose();
}

/// Sets components that are rounding errors to zero. On Cartesian cells each component of the
/// gradient then depends on two unknowns instead of all.
Vec3 WithoutNoise(Vec3 weight, double distance) {
    for (double& component : weight) {
        if (std::abs(component) < 1e-14 / distance) {
            component = 0.0;
        }
    }
    return weight;
}

GradientStencil Fit(int cell, const SampleSet& around) {
    const Mat3 inverse = PseudoInverse(around.moments);
    GradientStencil gradient;
    for (const Sample& sample : around.samples) {
        const Vec3 weight = WithoutNoise(inverse * sample.offset / sample.offset.squaredNorm(),
                                         sample.offset.norm());
        if (!weight.isZero(0.0)) {
            gradient.Add(sample.column, weight);
            gradient.Add(cell, -weight);
        }
    }
    return gradient;
}

}  // namespace

CellGradients::CellGradients(const Mesh& mesh, const HostObjects& objects, const OversetLink& link,
                             const CellFaces& cellFaces, GradientSet set)
    : gradients(mesh.CellCount() + 1) {
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        if (link.IsActive(cell)) {
            gradients[cell] = Fit(cell, SamplesAround(cell, mesh, objects, link, cellFaces, set));
        }
    }
}

}  // namespace host
