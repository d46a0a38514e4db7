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

/// The far-upstream value with which a scheme gives `value` at the face: linear upwind takes
/// 1.5 near - 0.5 far there, QUICK 0.375 beyond + 0.75 near - 0.125 far.
Stencil FarValue(FarPoint farPoint, const Stencil& near, const Stencil& beyond,
                 const Stencil& value) {
    Stencil far;
    if (farPoint == FarPoint::LinearUpwind) {
        far.Add(near, 3.0);
        far.Add(value, -2.0);
    } else {
        far.Add(beyond, 3.0);
        far.Add(near, 6.0);
        far.Add(value, -8.0);
    }
    return far;
}

}  // namespace

StencilBuilder::StencilBuilder(const Mesh& mesh_, const HostObjects& objects_,
                               const OversetLink& link_, GradientSet set_,
                               InterfaceValue interfaceValue_)
    : mesh(mesh_),
      objects(objects_),
      link(link_),
      set(set_),
      interfaceValue(interfaceValue_),
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

Stencil StencilBuilder::FittedValue::WithShare(double cellShare) const {
    Stencil value = atFace;
    value.Add(active, cellShare);
    value.Add(atActive, -cellShare);
    return value;
}

/// None if such values are not wanted, or if the donor's cloud is too small for the fit.
std::optional<StencilBuilder::FittedValue> StencilBuilder::FittedAt(int cell, int donor,
                                                                    const Vec3& faceCentre) const {
    const Vec3& inside = mesh.cellCentre[cell];
    const Vec3 mirroredPoint = 2.0 * faceCentre - inside;
    if (interfaceValue == InterfaceValue::Mirrored) {
        return std::nullopt;
    }
    FittedValue fitted{interpolation.Fit(donor, mirroredPoint, faceCentre),
                       interpolation.Fit(donor, mirroredPoint, inside), Stencil(cell)};
    if (fitted.atFace.Terms().empty()) {
        return std::nullopt;
    }
    return fitted;
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
            pair.fitted = FittedAt(first, second, faceCentre);
            break;
        case FaceSide::DonorIsFirst:
            pair.xLeft = 2.0 * faceCentre - pair.xRight;
            pair.a = ValueInDonorGrid(first, pair.xLeft);
            pair.b = Stencil(second);
            pair.fitted = FittedAt(second, first, faceCentre);
            pair.activeIsLeft = false;
            break;
        default:
            pair.a = Stencil(first);
            pair.b = Stencil(second);
    }
    return pair;
}

Stencil StencilBuilder::FaceOf(const Pair& pair, const InnerFace& face) const {
    if (pair.fitted) {
        return pair.fitted->WithShare(0.5);
    }
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
    if (pair.fitted) {
        const double leftShare = pair.activeIsLeft ? 1.0 : 0.0;
        return {
            FarValue(farPoint, pair.a, pair.b, pair.fitted->WithShare(leftShare)),
            FarValue(farPoint, pair.b, pair.a, pair.fitted->WithShare(1.0 - leftShare)),
        };
    }
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
    if (geometry.oversetGroup > 0 && interfaceValue == InterfaceValue::Fitted) {
        at.farLeft.Add(geometry.cell, 3.0);
        at.farLeft.Add(AtOversetFace(face, /*cellShare=*/1.0), -2.0);
        return at;
    }
    const bool isGiven = kind == Boundary::Inlet || kind == Boundary::Wall;
    if (interfaceValue == InterfaceValue::Fitted && isGiven) {
        // The boundary has a given value, which linear upwind then takes for outflow as well. With
        // an extrapolated value the flow through the wall of a body of prisms does not converge.
        at.farLeft.Add(geometry.cell, 3.0);
        at.farLeft.Add(objects.Ghost(kind, face), -2.0);
        return at;
    }
    at.farLeft.Add(geometry.cell, 1.0);
    at.farLeft.Add(gradient.Along(-2.0 * d));
    return at;
}

Stencil StencilBuilder::AtOversetFace(int wallFace, double cellShare) const {
    const BoundaryFace& geometry = mesh.Faces(Boundary::Wall)[wallFace];
    const auto fitted = FittedAt(geometry.cell, link.WallDonor(wallFace), geometry.centre);
    if (fitted) {
        return fitted->WithShare(cellShare);
    }
    Stencil mean(geometry.cell, 0.5);
    mean.Add(Mirrored(wallFace), 0.5);
    return mean;
}

Stencil StencilBuilder::Mirrored(int wallFace) const {
    const BoundaryFace& geometry = mesh.Faces(Boundary::Wall)[wallFace];
    return ValueInDonorGrid(link.WallDonor(wallFace),
                            2.0 * geometry.centre - mesh.cellCentre[geometry.cell]);
}

}  // namespace host
