#include "reference_host/app/case_options.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace host {

namespace {

/// Where an option stands in both notations.
struct Place {
    const char* table;
    const char* key;
    const char* option;
    std::string help;
};

/// What a number must be, as "at least 1"; empty if it is.
using Limit = std::function<std::string(double)>;

Limit Within(double least, double most) {
    return [=](double value) -> std::string {
        if (value < least) {
            return fmt::format("at least {:g}", least);
        }
        return value > most ? fmt::format("at most {:g}", most) : std::string();
    };
}

Limit AboveZero() {
    return [](double value) -> std::string { return value > 0.0 ? "" : "above 0"; };
}

Limit Any() {
    return [](double) { return std::string(); };
}

void Keep(const Limit& limit, double value, const std::string& text) {
    const std::string wanted = limit(value);
    if (!wanted.empty()) {
        throw std::invalid_argument(fmt::format("must be {}, not {}", wanted, text));
    }
}

/// The text as a T from its first to its last character.
template <class T>
bool Parse(const std::string& text, T& value) {
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end;
}

int ParseWhole(const std::string& text, const Limit& limit) {
    int value = 0;
    if (!Parse(text, value)) {
        throw std::invalid_argument(fmt::format("must be a whole number, not \"{}\"", text));
    }
    Keep(limit, value, text);
    return value;
}

double ParseNumberWithin(const std::string& text, const Limit& limit) {
    const double value = ParseNumber(text);
    Keep(limit, value, text);
    return value;
}

using Assign = std::function<void(const std::vector<std::string>&)>;

CaseOption Option(const Place& place, ValueKind kind, std::string shown, Assign assign) {
    CaseOption option;
    option.table = place.table;
    option.key = place.key;
    option.option = place.option;
    option.help = place.help;
    option.kind = kind;
    option.shown = std::move(shown);
    option.assign = std::move(assign);
    return option;
}

CaseOption Flag(const Place& place, bool& field) {
    return Option(place, ValueKind::Flag, "",
                  [&field](const auto& values) { field = values.at(0) == "true"; });
}

CaseOption Whole(const Place& place, int& field, const Limit& limit) {
    return Option(place, ValueKind::Whole, std::to_string(field),
                  [&field, limit](const auto& values) { field = ParseWhole(values.at(0), limit); });
}

CaseOption Wholes(const Place& place, std::vector<int>& field, const Limit& limit) {
    return Option(place, ValueKind::Wholes, fmt::format("{}", fmt::join(field, ",")),
                  [&field, limit](const auto& values) {
                      std::vector<int> read;
                      for (const std::string& value : values) {
                          read.push_back(ParseWhole(value, limit));
                      }
                      field = read;
                  });
}

CaseOption Number(const Place& place, double& field, const Limit& limit) {
    return Option(
        place, ValueKind::Number, fmt::format("{:g}", field),
        [&field, limit](const auto& values) { field = ParseNumberWithin(values.at(0), limit); });
}

CaseOption Number(const Place& place, std::optional<double>& field, const Limit& limit) {
    return Option(
        place, ValueKind::Number, field ? fmt::format("{:g}", *field) : "",
        [&field, limit](const auto& values) { field = ParseNumberWithin(values.at(0), limit); });
}

CaseOption Text(const Place& place, ValueKind kind, std::string& field) {
    return Option(place, kind, field, [&field](const auto& values) {
        if (values.at(0).empty()) {
            throw std::invalid_argument("must not be empty");
        }
        field = values.at(0);
    });
}

[[noreturn]] void RefuseName(const std::string& names, const std::string& name) {
    throw std::invalid_argument(fmt::format("must be one of {}, not \"{}\"", names, name));
}

Scheme ReadScheme(const std::string& name, bool convecting) {
    const auto scheme = SchemeNamed(name);
    if (!scheme || (convecting && !Convects(*scheme))) {
        RefuseName(SchemeNames(convecting), name);
    }
    return *scheme;
}

/// A number of schemes, or all of them.
std::vector<Scheme> ReadSchemes(const std::vector<std::string>& names) {
    std::vector<Scheme> schemes;
    for (const std::string& name : names) {
        if (name == "all") {
            return {Scheme::Laplace,        Scheme::Diffusion, Scheme::UpwindCells,  Scheme::Hybrid,
                    Scheme::UpwindStencils, Scheme::Central,   Scheme::LinearUpwind, Scheme::Quick};
        }
        schemes.push_back(ReadScheme(name, /*convecting=*/false));
    }
    return schemes;
}

// ---- options that several cases have

CaseOption MeshOption(std::string& field) {
    return Text({"mesh", "file", "--mesh", "mesh, .geo or .msh"}, ValueKind::MeshFile, field);
}

CaseOption OutputOption(std::string& field, const char* help = "directory of the result files") {
    return Text({"output", "directory", "--output", help}, ValueKind::Text, field);
}

CaseOption CheckOption(bool& field) {
    return Flag({"", "check", "--check", "exit 1 if a figure misses its limit"}, field);
}

MatrixSolver ReadMatrixSolver(const std::string& name) {
    const auto solver = MatrixSolverNamed(name);
    if (!solver) {
        RefuseName("bicgstab, samg", name);
    }
    return *solver;
}

CaseOption SolverOption(MatrixSolver& field) {
    return Option({"solver", "matrix", "--solver",
                   "matrix solver: bicgstab (the toolbox's) or samg (the external library's)"},
                  ValueKind::Text, Name(field),
                  [&field](const auto& values) { field = ReadMatrixSolver(values.at(0)); });
}

CaseOption PressureSolverOption(std::optional<MatrixSolver>& field) {
    return Option({"solver", "pressure_matrix", "--pressure-solver",
                   "matrix solver of the pressure alone; default that of --solver"},
                  ValueKind::Text, "",
                  [&field](const auto& values) { field = ReadMatrixSolver(values.at(0)); });
}

CaseOption SchemesOption(std::vector<Scheme>& field) {
    return Option({"schemes", "transport", "--scheme", "all, or some of " + SchemeNames()},
                  ValueKind::Texts, Name(field.at(0)),
                  [&field](const auto& values) { field = ReadSchemes(values); });
}

CaseOption WholeFacesOption(WholeFaces& field) {
    return Option({"study", "whole", "--whole",
                   "block whose interface faces are not cut: none, block0 or block1"},
                  ValueKind::Text, "none", [&field](const auto& values) {
                      const std::vector<std::pair<std::string, WholeFaces>> choices = {
                          {"none", WholeFaces::None},
                          {"block0", WholeFaces::Block0},
                          {"block1", WholeFaces::Block1}};
                      for (const auto& [name, choice] : choices) {
                          if (name == values.at(0)) {
                              field = choice;
                              return;
                          }
                      }
                      RefuseName("none, block0, block1", values.at(0));
                  });
}

/// What the flow cases have in common.
template <class FlowCase>
std::vector<CaseOption> FlowOptions(FlowCase& run) {
    const Limit count = Within(1, 1000000);
    const CaseOption scheme = Option(
        {"schemes", "transport", "--scheme", "one of " + SchemeNames(/*convecting=*/true)},
        ValueKind::Text, Name(run.scheme),
        [&run](const auto& values) { run.scheme = ReadScheme(values.at(0), /*convecting=*/true); });
    return {
        MeshOption(run.meshFile),
        scheme,
        Number({"solver", "relaxation", "--relaxation",
                "of the momentum equations; default by the mesh: 0.9 up to 10 cells a diameter, "
                "0.95 at 20, 0.975 at 40"},
               run.relaxation, Within(0.01, 0.999)),
        SolverOption(run.matrixSolver),
        PressureSolverOption(run.pressureSolver),
        Whole({"solver", "iterations", "--iterations", "most iterations"}, run.maxIterations,
              count),
        OutputOption(run.outputDir),
        Whole({"output", "steps_every", "--steps-every", "iterations between two result files"},
              run.stepsEvery, count),
        CheckOption(run.check),
    };
}

void NothingToComplete(const std::vector<CaseOption>&) {}

/// A study that sets numbers of the .geo itself would drop what was given for them.
void RefuseParameter(const MeshParameters& parameters, const char* name, const char* option) {
    if (parameters.count(name) > 0) {
        throw std::runtime_error(
            fmt::format("parameter \"{}\": the study takes it from {}", name, option));
    }
}

bool IsGiven(const std::vector<CaseOption>& options, const std::string& option) {
    return std::any_of(options.begin(), options.end(),
                       [&](const CaseOption& o) { return o.option == option && o.given; });
}

}  // namespace

const char* Description(ValueKind kind) {
    switch (kind) {
        case ValueKind::Flag:
            return "true or false";
        case ValueKind::Whole:
            return "a whole number";
        case ValueKind::Number:
            return "a number";
        case ValueKind::Text:
        case ValueKind::MeshFile:
            return "a text in quotes";
        case ValueKind::Wholes:
            return "a whole number or a list of them";
        case ValueKind::Texts:
            return "a text in quotes or a list of them";
    }
    return "";
}

double ParseNumber(const std::string& text) {
    double value = 0.0;
    if (!Parse(text, value) || !std::isfinite(value)) {
        throw std::invalid_argument(fmt::format("must be a number, not \"{}\"", text));
    }
    return value;
}

void CaseOption::Set(const std::vector<std::string>& values) {
    if (values.empty()) {
        throw std::invalid_argument("must name one value at least");
    }
    assign(values);
    shown = fmt::format("{}", fmt::join(values, ","));
    given = true;
}

CaseOptions OptionsOf(CylinderCase& run) {
    std::vector<CaseOption> list = FlowOptions(run);
    list.push_back(Number(
        {"physics", "reynolds", "--reynolds", "Reynolds number; the published values are for 20"},
        run.reynolds, AboveZero()));
    return {run.parameters, run.meshFile, std::move(list), NothingToComplete};
}

CaseOptions OptionsOf(SphereCase& run) {
    return {run.parameters, run.meshFile, FlowOptions(run), NothingToComplete};
}

CaseOptions OptionsOf(HeatCase& run) {
    std::vector<CaseOption> list = {
        MeshOption(run.meshFile),
        Whole({"solver", "steps", "--steps", "time steps before the steady state"}, run.steps,
              Within(0, 10000)),
        Number({"solver", "first_step", "--first-step", "size of the first time step"},
               run.firstStep, Within(1e-9, 1e3)),
        SolverOption(run.matrixSolver),
        OutputOption(run.outputDir),
    };
    return {run.parameters, run.meshFile, std::move(list), NothingToComplete};
}

CaseOptions OptionsOf(MmsCase& run) {
    std::vector<CaseOption> list = {
        MeshOption(run.meshFile),
        Wholes({"study", "kind", "--kind",
                "values of the .geo's kind; none for a mesh of your own unless given"},
               run.kinds, Any()),
        Wholes({"study", "n", "--n", "values of the .geo's n, coarse to fine"}, run.sizes,
               Within(1, 1000)),
        Number({"study", "depth", "--depth", "thickness of the mesh, refined like the plane"},
               run.depth, AboveZero()),
        SchemesOption(run.schemes),
        Number({"physics", "mu", "--mu", "diffusion coefficient; default 1, with convection 0.01"},
               run.mu, AboveZero()),
        SolverOption(run.matrixSolver),
        OutputOption(run.outputDir, "directory of result files; none written unless given"),
        CheckOption(run.check),
    };
    return {run.parameters, run.meshFile, std::move(list),
            [&run](const std::vector<CaseOption>& options) {
                if (IsGiven(options, "--mesh") && !IsGiven(options, "--kind")) {
                    run.kinds.clear();
                }
                RefuseParameter(run.parameters, "n", "--n");
                if (!run.kinds.empty()) {
                    RefuseParameter(run.parameters, "kind", "--kind");
                }
                if (run.depth) {
                    RefuseParameter(run.parameters, "nz", "--depth");
                }
                std::sort(run.sizes.begin(), run.sizes.end());
                run.sizes.erase(std::unique(run.sizes.begin(), run.sizes.end()), run.sizes.end());
            }};
}

CaseOptions OptionsOf(NonmatchingCase& run) {
    std::vector<CaseOption> list = {
        MeshOption(run.meshFile),
        Wholes({"study", "n", "--n", "values of the .geo's n, coarse to fine"}, run.n,
               Within(1, 1000)),
        Wholes({"study", "m", "--m", "values of the .geo's m, one for each n"}, run.m,
               Within(1, 1000)),
        WholeFacesOption(run.whole),
        SchemesOption(run.schemes),
        SolverOption(run.matrixSolver),
        OutputOption(run.outputDir),
        CheckOption(run.check),
    };
    return {run.parameters, run.meshFile, std::move(list), [&run](const std::vector<CaseOption>&) {
                RefuseParameter(run.parameters, "n", "--n");
                RefuseParameter(run.parameters, "m", "--m");
            }};
}

CaseOptions OptionsOf(DumpCase& run) {
    return {run.parameters, run.meshFile, {MeshOption(run.meshFile)}, NothingToComplete};
}

}  // namespace host
