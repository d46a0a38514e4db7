#include "reference_host/discretisation/stencil_builder.h"

namespace host {

namespace {

constexpr double negligible = 1e-10;  // relative to a length or an area

/// The non-orthogonal part of the area vector in the over-relaxed decomposition, where `d` connects
/// the two points of the face.
Vec3 Tangential(const Vec3& area, const Vec3& d) {
    return area - d * (area.squaredNorm() / area.dot(d));
}

bool IsNegligible(const Vec3& part, const Vec3& whole) {
    return part.norm() <= negligible * whole.norm();
}

}  // namespace

StencilBuilder::StencilBuilder(const Mesh& mesh_, const HostObjects& objects_,
                               const OversetLink& link_, GradientSet set_)
    : mesh(mesh_),
      objects(objects_),
      link(link_),
      set(set_),
      cellFaces(mesh_),
      gradients(mesh_, objects_, link_, cellFaces, set),
      interpolation(mesh_, link_, cellFaces) {}

Stencil StencilBuilder::ValueInDonorGrid(int donor, const Vec3& point) const {
    Stencil value = interpolation.Fit(donor, point);
    if (value.Terms().empty()) {
        ++fallbackCount;
        value.Add(donor, 1.0);
        value.Add(gradients[donor].Along(point - mesh.cellCentre[donor]));
    }
    return value;
}

StencilBuilder::Pair StencilBuilder::PairOf(int face) const {
    const int first = link.First(face);
    const int second = link.Second(face);
    const Vec3& faceCentre = mesh.innerFaces[face].centre;
    Pair pair;
    pair.xLeft = mesh.cellCentre[first];
    pair.xRight = mesh.cellCentre[second];
    pair.gradLeft = &gradients[first];
    pair.gradRight = &gradients[second];
    switch (link.Side(face)) {
        case FaceSide::DonorIsSecond:
            pair.xRight = 2.0 * faceCentre - pair.xLeft;
            pair.a = Stencil(first);
            pair.b = ValueInDonorGrid(second, pair.xRight);
            break;
        case FaceSide::DonorIsFirst:
            pair.xLeft = 2.0 * faceCentre - pair.xRight;
            pair.a = ValueInDonorGrid(first, pair.xLeft);
            pair.b = Stencil(second);
            break;
        default:
            pair.a = Stencil(first);
            pair.b = Stencil(second);
    }
    return pair;
}

Stencil StencilBuilder::FaceOf(const Pair& pair, const InnerFace& face) const {
    const Vec3 d = pair.xRight - pair.xLeft;
    const double w = (pair.xRight - face.centre).dot(face.area) / d.dot(face.area);
    Stencil value;
    value.Add(pair.a, w);
    value.Add(pair.b, 1.0 - w);
    const Vec3 offLine = face.centre - (w * pair.xLeft + (1.0 - w) * pair.xRight);
    if (!IsNegligible(offLine, d)) {
        value.Add(pair.gradLeft->Along(offLine), w);
        value.Add(pair.gradRight->Along(offLine), 1.0 - w);
    }
    return value;
}

Stencil StencilBuilder::NormalOf(const Pair& pair, const InnerFace& face, FaceSide side) const {
    const Vec3 d = pair.xRight - pair.xLeft;
    const double alongLine = face.area.squaredNorm() / face.area.dot(d);
    Stencil derivative;
    derivative.Add(pair.b, alongLine);
    derivative.Add(pair.a, -alongLine);
    const Vec3 tangential = Tangential(face.area, d);
    if (IsNegligible(tangential, face.area)) {
        return derivative;
    }
    double w = (pair.xRight - face.centre).dot(face.area) / d.dot(face.area);
    if (side == FaceSide::DonorIsSecond) {
        w = 1.0;
    } else if (side == FaceSide::DonorIsFirst) {
        w = 0.0;
    }
    if (w != 0.0) {
        derivative.Add(pair.gradLeft->Along(tangential), w);
    }
    if (w != 1.0) {
        derivative.Add(pair.gradRight->Along(tangential), 1.0 - w);
    }
    return derivative;
}

FarStencils StencilBuilder::FarOf(const Pair& pair, const Vec3& faceCentre,
                                  FarPoint farPoint) const {
    const Vec3 d = pair.xRight - pair.xLeft;
    Vec3 offMiddle = faceCentre - 0.5 * (pair.xLeft + pair.xRight);
    if (IsNegligible(offMiddle, d)) {
        offMiddle.setZero();
    }
    const double c = static_cast<double>(farPoint);
    FarStencils far{pair.b, pair.a};
    far.left.Add(pair.gradLeft->Along(-2.0 * d - c * offMiddle));
    far.right.Add(pair.gradRight->Along(2.0 * d - c * offMiddle));
    return far;
}

InnerStencils StencilBuilder::Inner(int face, FarPoint farPoint) const {
    const InnerFace& geometry = mesh.innerFaces[face];
    const Pair pair = PairOf(face);
    return {FaceOf(pair, geometry), NormalOf(pair, geometry, link.Side(face)), pair.a, pair.b,
            FarOf(pair, geometry.centre, farPoint)};
}

FarStencils StencilBuilder::Far(int face, FarPoint farPoint) const {
    return FarOf(PairOf(face), mesh.innerFaces[face].centre, farPoint);
}

bool StencilBuilder::IsSilent(Boundary kind, int face) const {
    return kind == Boundary::Symmetry || !link.IsActive(mesh.Faces(kind)[face].cell);
}

bool StencilBuilder::HasStencils(Boundary kind, int face) const {
    return !IsSilent(kind, face) ||
           (set == GradientSet::VectorAtSymmetry && link.IsActive(mesh.Faces(kind)[face].cell));
}

BoundaryStencils StencilBuilder::AtBoundary(Boundary kind, int face) const {
    const BoundaryFace& geometry = mesh.Faces(kind)[face];
    Vec3 d = geometry.centre - mesh.cellCentre[geometry.cell];
    if (kind == Boundary::Symmetry) {
        const Vec3 normal = geometry.area.normalized();
        d = d.dot(normal) * normal;  // the ghost belongs to the foot of the perpendicular
    }
    const GradientStencil& gradient = gradients[geometry.cell];
    const double alongLine = geometry.area.squaredNorm() / geometry.area.dot(d);
    BoundaryStencils at;
    at.normal.Add(objects.Ghost(kind, face), alongLine);
    at.normal.Add(geometry.cell, -alongLine);
    const Vec3 tangential = Tangential(geometry.area, d);
    if (!IsNegligible(tangential, geometry.area)) {
        at.normal.Add(gradient.Along(tangential));
    }
    at.left.Add(geometry.cell, 1.0);
    at.farLeft.Add(geometry.cell, 1.0);
    at.farLeft.Add(gradient.Along(-2.0 * d));
    return at;
}

Stencil StencilBuilder::Mirrored(int wallFace) const {
    const BoundaryFace& geometry = mesh.Faces(Boundary::Wall)[wallFace];
    return ValueInDonorGrid(link.WallDonor(wallFace),
                            2.0 * geometry.centre - mesh.cellCentre[geometry.cell]);
}

}  // namespace host
