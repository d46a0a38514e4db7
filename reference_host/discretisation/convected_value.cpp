#include "reference_host/discretisation/convected_value.h"

#include "reference_host/discretisation/stencil_records.h"

namespace host {

namespace {

/// The operators take fluxes up to this magnitude as near zero. With another limit the value at
/// such a face would differ from the one in the matrix.
constexpr double nearZeroFlux = 1e-8;

/// The values that an upwind scheme combines, in the direction of the flux.
struct Upstream {
    double near = 0.0;        ///< upstream
    double far = 0.0;         ///< one step further upstream
    double downstream = 0.0;  ///< on the other side of the face
    double cell = 0.0;        ///< of the upstream cell itself
};

Upstream UpstreamOf(const CMAFVMFaceData& record, int first, int second, double flux,
                    const std::vector<double>& phi) {
    const double left = Apply(record.idLeft, record.coefLeft, phi);
    const double right = Apply(record.idRight, record.coefRight, phi);
    if (flux > 0.0) {
        return {left, Apply(record.idFarLeft, record.coefFarLeft, phi), right, phi[first]};
    }
    return {right, Apply(record.idFarRight, record.coefFarRight, phi), left, phi[second]};
}

}  // namespace

double ConvectedValue(Scheme scheme, const CMAFVMFaceData& record, int first, int second,
                      double flux, const std::vector<double>& phi) {
    if (!Convects(scheme)) {
        return 0.0;
    }
    const bool nearZero = !(flux > nearZeroFlux || flux < -nearZeroFlux);
    if (nearZero || scheme == Scheme::Central) {
        return Apply(record.idFace, record.coefFace, phi);
    }
    const Upstream at = UpstreamOf(record, first, second, flux, phi);
    switch (scheme) {
        case Scheme::UpwindCells:
            return at.cell;
        case Scheme::LinearUpwind:
            return 1.5 * at.near - 0.5 * at.far;
        case Scheme::Quick:
            return 0.75 * at.near - 0.125 * at.far + 0.375 * at.downstream;
        default:
            return at.near;
    }
}

double ConvectedBoundaryValue(Scheme scheme, const CMAFVMFaceData& record, int cell, int ghost,
                              double flux, const std::vector<double>& phi) {
    if (!Convects(scheme)) {
        return 0.0;
    }
    if (!(flux > nearZeroFlux) || scheme == Scheme::Central) {
        return phi[ghost];
    }
    const double left = Apply(record.idLeft, record.coefLeft, phi);
    switch (scheme) {
        case Scheme::UpwindStencils:
            return left;
        case Scheme::LinearUpwind:
        case Scheme::Quick:
            return 1.5 * left - 0.5 * Apply(record.idFarLeft, record.coefFarLeft, phi);
        default:
            return phi[cell];
    }
}

}  // namespace host
