#include "reference_host/cases/common_options.h"

#include <algorithm>
#include <filesystem>
#include <initializer_list>

namespace host {

namespace {

/// All schemes in the order in which an order study prints them.
constexpr std::initializer_list<Scheme> allSchemes = {
    Scheme::Laplace,        Scheme::Diffusion, Scheme::UpwindCells,  Scheme::Hybrid,
    Scheme::UpwindStencils, Scheme::Central,   Scheme::LinearUpwind, Scheme::Quick};

Choices<MatrixSolver> Solvers() {
    return {{Name(MatrixSolver::Bicgstab), MatrixSolver::Bicgstab},
            {Name(MatrixSolver::Samg), MatrixSolver::Samg}};
}

/// @param convecting  only the schemes with convection
Choices<Scheme> Schemes(bool convecting) {
    Choices<Scheme> choices;
    for (const Scheme scheme :
         {Scheme::Laplace, Scheme::Diffusion, Scheme::UpwindCells, Scheme::UpwindStencils,
          Scheme::Central, Scheme::LinearUpwind, Scheme::Quick, Scheme::Hybrid}) {
        if (!convecting || Convects(scheme)) {
            choices.emplace_back(Name(scheme), scheme);
        }
    }
    return choices;
}

}  // namespace

std::string ShippedMesh(const std::string& name) {
    return (std::filesystem::path(KVX3D_REFERENCE_HOST_MESH_DIR) / name).string();
}

Option OutputOption(std::string& field, const char* help) {
    return TextOption({"output.directory", "--output", help}, field);
}

Option CheckOption(bool& field) {
    return FlagOption({"check", "--check", "exit with 1 if a figure is outside its limits"}, field);
}

Option SolverOption(MatrixSolver& field) {
    return ChoiceOption<MatrixSolver>({"solver.matrix", "--solver",
                                       "matrix solver: that of the toolbox (bicgstab) or the "
                                       "external solver library (samg)"},
                                      field, Solvers(), Name(field));
}

Option PressureSolverOption(std::optional<MatrixSolver>& field) {
    return ChoiceOption<MatrixSolver>(
        {"solver.pressure_matrix", "--pressure-solver",
         "matrix solver of the pressure correction; by default solver.matrix"},
        field, Solvers(), field ? Name(*field) : "");
}

Option ConservationOption(Conservation& field) {
    const Choices<Conservation> choices = {{"none", Conservation::None},
                                           {"mass", Conservation::Mass},
                                           {"momentum", Conservation::MassAndMomentum}};
    const auto present = std::find_if(choices.begin(), choices.end(),
                                      [&](const auto& choice) { return choice.second == field; });
    return ChoiceOption<Conservation>(
        {"solver.conservation", "--conservation",
         "what is conserved where the background is cut: mass and momentum (momentum), mass alone "
         "(mass), or neither (none)"},
        field, choices, present->first);
}

Option SchemeOption(Scheme& field) {
    return ChoiceOption<Scheme>({"schemes.transport", "--scheme", "convection scheme"}, field,
                                Schemes(/*convecting=*/true), Name(field));
}

Option SchemesOption(std::vector<Scheme>& field) {
    const Choices<Scheme> choices = Schemes(/*convecting=*/false);
    std::vector<std::string> shown;
    for (const Scheme scheme : field) {
        shown.emplace_back(Name(scheme));
    }
    return {"schemes.transport",
            "--scheme",
            "schemes to run, one after the other",
            ValueKind::Texts,
            "all, or some of " + NamesOf(choices),
            fmt::format("{}", fmt::join(shown, ",")),
            [&field, choices](const std::vector<std::string>& names) {
                std::vector<Scheme> read;
                bool takesAll = false;
                for (const std::string& name : names) {
                    if (name == "all") {
                        takesAll = true;
                    } else {
                        read.push_back(ChoiceNamed(choices, name));
                    }
                }
                field = takesAll ? allSchemes : read;
            }};
}

}  // namespace host
