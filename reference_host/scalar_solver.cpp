#include "reference_host/scalar_solver.h"

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

Reach ReachOf(Scheme scheme) {
    const bool far = scheme == Scheme::LinearUpwind || scheme == Scheme::Quick ||
                     scheme == Scheme::Hybrid;  // hybrid stores the far entries as zeros
    return far ? Reach::Far : Reach::Near;
}

FarPoint FarPointOf(Scheme scheme) {
    return scheme == Scheme::Quick ? FarPoint::Quick : FarPoint::LinearUpwind;
}

double* FluxOf(CMAFVMFaceVariableAll& flux, Boundary kind) {
    switch (kind) {
        case Boundary::Inlet:
            return flux.inlet;
        case Boundary::Outlet:
            return flux.outlet;
        case Boundary::Wall:
            return flux.wall;
        default:
            return flux.symm;
    }
}

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

std::string SchemeNames() {
    std::string names;
    for (const auto& entry : schemeNames) {
        names += (names.empty() ? "" : ", ") + std::string(entry.second);
    }
    return names;
}

bool Convects(Scheme scheme) {
    return scheme != Scheme::Laplace && scheme != Scheme::Diffusion;
}

void FillConstantFlux(const StencilBuilder& builder, const Vec3& velocity,
                      CMAFVMFaceVariableAll& flux) {
    const Mesh& mesh = builder.mesh;
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        const double through = velocity.dot(mesh.innerFaces[face].area);
        const FaceSide side = builder.link.Side(face);
        const bool bothLive = side == FaceSide::Both;
        flux.left[face] = bothLive || side == FaceSide::DonorIsSecond ? through : 0.0;
        flux.right[face] = bothLive || side == FaceSide::DonorIsFirst ? through : 0.0;
    }
    for (const Boundary kind : allBoundaries) {
        for (int face = 1; face <= mesh.FaceCount(kind); ++face) {
            FluxOf(flux, kind)[face] =
                builder.IsSilent(kind, face) ? 0.0 : velocity.dot(mesh.Faces(kind)[face].area);
        }
    }
}

ScalarSolver::ScalarSolver(const Mesh& mesh, HostObjects& objects_, const OversetLink& link,
                           Scheme scheme_)
    : builder(mesh, objects_, link, GradientSet::Velocity),
      records(builder, objects_, FarPointOf(scheme_)),
      equation(builder, records, ReachOf(scheme_)),
      objects(objects_),
      scheme(scheme_) {
    equation.matrix.SetTolerance(1e-12);
    equation.matrix.SetTimes(2000);
}

void ScalarSolver::SetGhostMu(const BoundaryConditions& conditions, double mu) {
    for (const Boundary kind : allBoundaries) {
        for (int face = 1; face <= builder.mesh.FaceCount(kind); ++face) {
            // A face without gradient conducts nothing, though on a skewed cell its stencil would.
            const bool conducts =
                conditions.At(kind, face).kind != GhostCondition::Kind::ZeroGradient;
            objects.mu[objects.Ghost(kind, face)] = conducts ? mu : 0.0;
        }
    }
}

void ScalarSolver::AddDiffusion(double mu) {
    KVX_ART_FVM::CKVX_ART_MatOperator operators(&equation.matrix, &records.gv);
    if (scheme == Scheme::Laplace) {
        operators.PureLaplaceOperator(-mu);
        return;
    }
    records.SetFaceMu(mu);
    operators.DiffusionOperator(-1.0);
}

void ScalarSolver::AddConvection(const Vec3& velocity) {
    CMAFVMFaceVariableAll flux(&records.gv, /*shared=*/false);
    FillConstantFlux(builder, velocity, flux);
    KVX_ART_FVM::CKVX_ART_MatOperator operators(&equation.matrix, &records.gv);
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

void ScalarSolver::Assemble(const BoundaryConditions& conditions, double mu, const Vec3& velocity,
                            double storage) {
    SetGhostMu(conditions, mu);
    equation.Clear();
    AddConvection(velocity);
    AddDiffusion(mu);
    if (storage > 0.0) {
        for (int cell = 1; cell <= builder.mesh.CellCount(); ++cell) {
            if (builder.link.IsActive(cell)) {
                equation.matrix.AddElementValue(cell, cell, storage * builder.mesh.volume[cell]);
            }
        }
    }
    equation.CloseRows(conditions);
}

SolveReport ScalarSolver::Solve(const BoundaryConditions& conditions,
                                const std::vector<double>& source, std::vector<double>& phi,
                                double reduction) {
    std::vector<double> rhs(records.gv.NcAll + 1, 0.0);
    for (int cell = 1; cell <= records.gv.Nc; ++cell) {
        rhs[cell] = builder.link.IsActive(cell) ? source[cell] : 0.0;
    }
    equation.FillGhostRows(conditions, rhs);
    return equation.Solve(rhs, phi, reduction);
}

ManufacturedRun SolveManufactured(const Mesh& mesh, HostObjects& objects, const OversetLink& link,
                                  Scheme scheme, const AnalyticField& exact, double mu,
                                  const Vec3& velocity) {
    const BoundaryConditions conditions(mesh, link, [&](Boundary kind, int face) {
        return GhostCondition{GhostCondition::Kind::Value,
                              exact.value(mesh.Faces(kind)[face].centre)};
    });
    const Vec3 carrier = Convects(scheme) ? velocity : Vec3::Zero();
    std::vector<double> source(mesh.CellCount() + 1, 0.0);
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        const Vec3& at = mesh.cellCentre[cell];
        source[cell] =
            mesh.volume[cell] * (carrier.dot(exact.gradient(at)) - mu * exact.laplacian(at));
    }
    ScalarSolver solver(mesh, objects, link, scheme);
    const int declared = solver.equation.matrix.Ia[solver.records.gv.NcAll + 1];
    solver.Assemble(conditions, mu, velocity);
    ManufacturedRun run;
    run.storedEntriesGrown = solver.equation.matrix.Ia[solver.records.gv.NcAll + 1] - declared;
    run.phi.assign(solver.records.gv.NcAll + 1, 0.0);
    run.solve = solver.Solve(conditions, source, run.phi);
    run.fallbackCount = solver.builder.FallbackCount();
    return run;
}

}  // namespace host
