#include "reference_host/discretisation/donor_interpolation.h"

#include <Eigen/LU>
#include <algorithm>

namespace host {

namespace {

/// Adds the neighbors of `cell` across regular faces that the cloud does not hold yet.
void AddNeighbors(int cell, const Mesh& mesh, const OversetLink& link, const CellFaces& cellFaces,
                  std::vector<int>& cloud) {
    for (const int face : cellFaces.InnerFaces(cell)) {
        if (link.Side(face) != FaceSide::Both) {
            continue;
        }
        const InnerFace& pair = mesh.innerFaces[face];
        const int other = pair.owner == cell ? pair.neighbor : pair.owner;
        if (std::find(cloud.begin(), cloud.end(), other) == cloud.end()) {
            cloud.push_back(other);
        }
    }
}

}  // namespace

DonorInterpolation::DonorInterpolation(const Mesh& mesh_, const OversetLink& link_,
                                       const CellFaces& cellFaces_)
    : mesh(mesh_), link(link_), cellFaces(cellFaces_), quasi2d(mesh_.IsQuasi2d()) {}

std::vector<int> DonorInterpolation::Cloud(int donor) const {
    std::vector<int> cloud = {donor};
    AddNeighbors(donor, mesh, link, cellFaces, cloud);
    const std::size_t firstRing = cloud.size();
    for (std::size_t k = 1; k < firstRing; ++k) {
        AddNeighbors(cloud[k], mesh, link, cellFaces, cloud);
    }
    return cloud;
}

Eigen::VectorXd DonorInterpolation::Basis(const Vec3& offset) const {
    const double x = offset[0], y = offset[1], z = offset[2];
    if (quasi2d) {
        return (Eigen::VectorXd(6) << 1.0, x, y, x * x, x * y, y * y).finished();
    }
    return (Eigen::VectorXd(10) << 1.0, x, y, z, x * x, y * y, z * z, x * y, y * z, z * x)
        .finished();
}

Stencil DonorInterpolation::Fit(int donor, const Vec3& point) const {
    return Fit(donor, point, point);
}

Stencil DonorInterpolation::Fit(int donor, const Vec3& about, const Vec3& point) const {
    const std::vector<int> cloud = Cloud(donor);
    const int basisSize = quasi2d ? 6 : 10;
    if (static_cast<int>(cloud.size()) < basisSize + 2) {
        return {};
    }
    double reach = 0.0;
    for (const int cell : cloud) {
        reach = std::max(reach, (mesh.cellCentre[cell] - about).norm());
    }
    Eigen::MatrixXd normal = Eigen::MatrixXd::Zero(basisSize, basisSize);
    std::vector<Eigen::VectorXd> weightedBasis;
    weightedBasis.reserve(cloud.size());
    for (const int cell : cloud) {
        const Vec3 offset = (mesh.cellCentre[cell] - about) / reach;
        const Eigen::VectorXd basis = Basis(offset);
        const double weight = 1.0 / (offset.squaredNorm() + 0.02);  // 0.02: finite at the donor
        weightedBasis.push_back(weight * basis);
        normal += weight * basis * basis.transpose();
    }
    Eigen::FullPivLU<Eigen::MatrixXd> factors(normal);
    factors.setThreshold(1e-10);  // relative to the largest pivot, which regular clouds keep > 1e-5
    if (!factors.isInvertible()) {
        return {};
    }
    const Eigen::VectorXd atPoint = factors.solve(Basis((point - about) / reach));
    Stencil value;
    for (std::size_t k = 0; k < cloud.size(); ++k) {
        value.Add(cloud[k], atPoint.dot(weightedBasis[k]));
    }
    return value;
}

}  // namespace host
