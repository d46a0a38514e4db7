#include "reference_host/discretisation/scheme.h"

#include <algorithm>
#include <array>
#include <utility>

namespace host {

namespace {

constexpr std::array<std::pair<Scheme, const char*>, 8> schemeNames = {
    {{Scheme::Laplace, "laplace"},
     {Scheme::Diffusion, "diffusion"},
     {Scheme::UpwindCells, "upwind-cells"},
     {Scheme::UpwindStencils, "upwind"},
     {Scheme::Central, "central"},
     {Scheme::LinearUpwind, "lud"},
     {Scheme::Quick, "quick"},
     {Scheme::Hybrid, "hybrid"}}};

}  // namespace

const char* Name(Scheme scheme) {
    return std::find_if(schemeNames.begin(), schemeNames.end(),
                        [scheme](const auto& entry) { return entry.first == scheme; })
        ->second;
}

std::optional<Scheme> SchemeNamed(const std::string& name) {
    for (const auto& [scheme, schemeName] : schemeNames) {
        if (name == schemeName) {
            return scheme;
        }
    }
    return std::nullopt;
}

std::string SchemeNames(bool convecting) {
    std::string names;
    for (const auto& [scheme, schemeName] : schemeNames) {
        if (!convecting || Convects(scheme)) {
            names += (names.empty() ? "" : ", ") + std::string(schemeName);
        }
    }
    return names;
}

bool Convects(Scheme scheme) {
    return scheme != Scheme::Laplace && scheme != Scheme::Diffusion;
}

Reach ReachOf(Scheme scheme) {
    const bool far = scheme == Scheme::LinearUpwind || scheme == Scheme::Quick ||
                     scheme == Scheme::Hybrid;  // hybrid stores the far entries as zeros
    return far ? Reach::Far : Reach::Near;
}

FarPoint FarPointOf(Scheme scheme) {
    return scheme == Scheme::Quick ? FarPoint::Quick : FarPoint::LinearUpwind;
}

void AddConvection(Scheme scheme, KVX_ART_FVM::CKVX_ART_MatOperator& operators,
                   CMAFVMFaceVariableAll& flux) {
    switch (scheme) {
        case Scheme::UpwindCells:
            operators.ConvectionOperator(/*upwind=*/true, 1.0, &flux);
            break;
        case Scheme::UpwindStencils:
            operators.ConvectionOperatorFU(1.0, &flux);
            break;
        case Scheme::Central:
            operators.ConvectionOperatorCD(1.0, &flux);
            break;
        case Scheme::LinearUpwind:
            operators.ConvectionOperatorLUD(1.0, &flux);
            break;
        case Scheme::Quick:
            operators.ConvectionOperatorQUICK(1.0, &flux);
            break;
        case Scheme::Hybrid:
            operators.ConvectionOperatorHybrid(1.0, &flux);
            break;
        default:
            break;
    }
}

}  // namespace host
