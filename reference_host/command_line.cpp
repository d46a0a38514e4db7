#include "reference_host/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <stdexcept>

namespace host {

namespace {

/// "n=10" as a number for the mesh file.
void AddParameter(const std::string& text, MeshParameters& parameters) {
    const std::size_t equals = text.find('=');
    std::size_t used = 0;
    double value = 0.0;
    try {
        value = std::stod(text.substr(equals == std::string::npos ? 0 : equals + 1), &used);
    } catch (const std::logic_error&) {
        used = 0;
    }
    if (equals == std::string::npos || equals == 0 || used == 0 ||
        equals + 1 + used != text.size()) {
        throw std::runtime_error("--set takes name=number, for example n=10, not \"" + text + "\"");
    }
    parameters[text.substr(0, equals)] = value;
}

MeshParameters ReadParameters(const std::vector<std::string>& sets) {
    MeshParameters parameters;
    for (const std::string& text : sets) {
        AddParameter(text, parameters);
    }
    return parameters;
}

Scheme ReadScheme(const std::string& name, bool convecting = false) {
    const auto scheme = SchemeNamed(name);
    if (scheme && (!convecting || Convects(*scheme))) {
        return *scheme;
    }
    throw std::runtime_error("--scheme takes " + SchemeNames(convecting) + ", not \"" + name +
                             "\"");
}

std::string ShippedMesh(const std::string& name) {
    return (std::filesystem::path(KVX3D_REFERENCE_HOST_MESH_DIR) / name).string();
}

/// Texts of options that need a look of their own after the parser.
struct RawOptions {
    std::vector<std::string> sets;
    std::vector<std::string> schemes;
    double mu = 0.0;
    double relaxation = 0.0;
    std::string matrixSolver = Name(MatrixSolver::Bicgstab);
    std::string whole = "none";
};

void AddSolver(CLI::App* sub, RawOptions& raw) {
    sub->add_option("--solver", raw.matrixSolver,
                    "matrix solver: bicgstab (the toolbox's) or samg (the external library's)")
        ->check(CLI::IsMember({Name(MatrixSolver::Bicgstab), Name(MatrixSolver::Samg)}))
        ->capture_default_str();
}

CLI::App* AddCylinder(CLI::App& app, CylinderCase& cylinder, RawOptions& raw) {
    CLI::App* sub = app.add_subcommand(
        "cylinder", "Laminar flow around a cylinder in a channel, compared with benchmark 2D-1");
    sub->add_option("--mesh", cylinder.meshFile, "mesh, .geo or .msh")->capture_default_str();
    sub->add_option("--set", raw.sets, "number in the .geo, name=value; may be repeated");
    sub->add_option("--scheme", raw.schemes, "one of: " + SchemeNames(true) + "; default lud")
        ->expected(1);
    sub->add_option("--reynolds", cylinder.reynolds,
                    "Reynolds number; the published values are for 20")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
    sub->add_option("--relaxation", raw.relaxation,
                    "of the momentum equations, between 0 and 1; default by the mesh: 0.9 up to "
                    "10 cells a diameter, 0.95 at 20, 0.975 at 40")
        ->check(CLI::Range(0.01, 0.999));
    sub->add_option("--output", cylinder.outputDir, "directory of the result files")
        ->capture_default_str();
    sub->add_option("--steps-every", cylinder.stepsEvery, "iterations between two result files")
        ->check(CLI::Range(1, 1000000))
        ->capture_default_str();
    sub->add_option("--iterations", cylinder.maxIterations, "most iterations")
        ->check(CLI::Range(1, 1000000))
        ->capture_default_str();
    sub->add_flag("--check", cylinder.check, "exit 1 if a figure misses its limit");
    return sub;
}

CLI::App* AddSphere(CLI::App& app, SphereCase& sphere, RawOptions& raw) {
    CLI::App* sub = app.add_subcommand(
        "sphere", "Laminar flow around a sphere at Reynolds number 100, in three dimensions");
    sub->add_option("--mesh", sphere.meshFile, "mesh, .geo or .msh")->capture_default_str();
    sub->add_option("--set", raw.sets, "number in the .geo, name=value; may be repeated");
    sub->add_option("--scheme", raw.schemes, "one of: " + SchemeNames(true) + "; default lud")
        ->expected(1);
    sub->add_option("--relaxation", raw.relaxation,
                    "of the momentum equations, between 0 and 1; default by the mesh: 0.9 up to "
                    "10 cells a diameter")
        ->check(CLI::Range(0.01, 0.999));
    sub->add_option("--output", sphere.outputDir, "directory of the result files")
        ->capture_default_str();
    sub->add_option("--steps-every", sphere.stepsEvery, "iterations between two result files")
        ->check(CLI::Range(1, 1000000))
        ->capture_default_str();
    sub->add_option("--iterations", sphere.maxIterations, "most iterations")
        ->check(CLI::Range(1, 1000000))
        ->capture_default_str();
    sub->add_flag("--check", sphere.check, "exit 1 if a figure misses its limit");
    return sub;
}

CLI::App* AddHeat(CLI::App& app, HeatCase& heat, RawOptions& raw) {
    CLI::App* sub = app.add_subcommand("heat",
                                       "Heat conduction around a hot body, with time steps "
                                       "up to the steady state and a heat balance");
    sub->add_option("--mesh", heat.meshFile, "mesh, .geo or .msh")->required();
    sub->add_option("--set", raw.sets, "number in the .geo, name=value; may be repeated");
    sub->add_option("--output", heat.outputDir, "directory of the result files")
        ->capture_default_str();
    sub->add_option("--steps", heat.steps, "time steps before the steady state")
        ->check(CLI::Range(0, 10000))
        ->capture_default_str();
    sub->add_option("--first-step", heat.firstStep, "size of the first time step")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
    AddSolver(sub, raw);
    return sub;
}

CLI::App* AddMms(CLI::App& app, MmsCase& mms, RawOptions& raw) {
    CLI::App* sub = app.add_subcommand(
        "mms", "Order study with a manufactured solution of convection and diffusion");
    sub->add_option("--mesh", mms.meshFile, "mesh with the number n (and kind), .geo")
        ->capture_default_str();
    sub->add_option("--set", raw.sets, "further number in the .geo, name=value; may be repeated");
    sub->add_option("--kind", mms.kinds,
                    "values of the .geo's kind; default 1,0, and none for a --mesh of your own")
        ->delimiter(',');
    sub->add_option("--n", mms.sizes, "values of the .geo's n, coarse to fine; default 10,20")
        ->delimiter(',')
        ->check(CLI::Range(1, 1000));
    sub->add_option("--depth", mms.depth,
                    "thickness of the mesh, sets the .geo's nz to depth * n; default: one cell")
        ->check(CLI::PositiveNumber);
    sub->add_option("--scheme", raw.schemes, "all, or of: " + SchemeNames())->delimiter(',');
    sub->add_option("--mu", raw.mu, "diffusion coefficient; default 1, with convection 0.01")
        ->check(CLI::PositiveNumber);
    sub->add_option("--output", mms.outputDir, "directory of result files; default: none written");
    sub->add_flag("--check", mms.check, "exit 1 if an order or error misses its limit");
    AddSolver(sub, raw);
    return sub;
}

CLI::App* AddNonmatching(CLI::App& app, NonmatchingCase& nonmatching, RawOptions& raw) {
    CLI::App* sub = app.add_subcommand(
        "nonmatching", "Order study across an interface of two blocks whose faces do not match");
    sub->add_option("--mesh", nonmatching.meshFile, "mesh with the numbers n and m, .geo")
        ->capture_default_str();
    sub->add_option("--set", raw.sets, "further number in the .geo, name=value; may be repeated");
    sub->add_option("--n", nonmatching.n, "values of the .geo's n, coarse to fine; default 8,16")
        ->delimiter(',')
        ->check(CLI::Range(1, 1000));
    sub->add_option("--m", nonmatching.m, "values of the .geo's m, one for each n; default 12,24")
        ->delimiter(',')
        ->check(CLI::Range(1, 1000));
    sub->add_option("--whole", raw.whole, "block whose interface faces are not cut")
        ->check(CLI::IsMember({"none", "block0", "block1"}))
        ->capture_default_str();
    sub->add_option("--scheme", raw.schemes, "all, or of: " + SchemeNames())->delimiter(',');
    sub->add_option("--output", nonmatching.outputDir, "directory of the result files")
        ->capture_default_str();
    sub->add_flag("--check", nonmatching.check, "exit 1 if an order misses its limit");
    AddSolver(sub, raw);
    return sub;
}

CLI::App* AddDump(CLI::App& app, DumpCase& dump, RawOptions& raw) {
    CLI::App* sub = app.add_subcommand(
        "dump", "Everything the toolbox linked, and its overset report, as text");
    sub->add_option("--mesh", dump.meshFile, "mesh, .geo or .msh")->required();
    sub->add_option("--set", raw.sets, "number in the .geo, name=value; may be repeated");
    return sub;
}

std::vector<Scheme> ReadSchemes(const std::vector<std::string>& names) {
    std::vector<Scheme> schemes;
    for (const std::string& name : names) {
        if (name == "all") {
            return {Scheme::Laplace,        Scheme::Diffusion, Scheme::UpwindCells,  Scheme::Hybrid,
                    Scheme::UpwindStencils, Scheme::Central,   Scheme::LinearUpwind, Scheme::Quick};
        }
        schemes.push_back(ReadScheme(name));
    }
    return schemes.empty() ? std::vector<Scheme>{Scheme::Diffusion} : schemes;
}

/// A flow case: cylinder or sphere.
template <class FlowCase>
void CompleteFlow(FlowCase& flow, const CLI::App& given, const RawOptions& raw) {
    flow.parameters = ReadParameters(raw.sets);
    if (!raw.schemes.empty()) {
        flow.scheme = ReadScheme(raw.schemes.front(), /*convecting=*/true);
    }
    if (given.count("--relaxation") > 0) {
        flow.relaxation = raw.relaxation;
    }
}

void Complete(MmsCase& mms, const CLI::App& given, const RawOptions& raw) {
    mms.parameters = ReadParameters(raw.sets);
    mms.matrixSolver = *MatrixSolverNamed(raw.matrixSolver);
    mms.schemes = ReadSchemes(raw.schemes);
    if (given.count("--mu") > 0) {
        mms.mu = raw.mu;
    }
    if (given.count("--mesh") > 0 && given.count("--kind") == 0) {
        mms.kinds.clear();
    }
    std::sort(mms.sizes.begin(), mms.sizes.end());
    mms.sizes.erase(std::unique(mms.sizes.begin(), mms.sizes.end()), mms.sizes.end());
}

void Complete(NonmatchingCase& nonmatching, const RawOptions& raw) {
    nonmatching.parameters = ReadParameters(raw.sets);
    nonmatching.matrixSolver = *MatrixSolverNamed(raw.matrixSolver);
    nonmatching.schemes = ReadSchemes(raw.schemes);
    if (raw.whole != "none") {
        nonmatching.whole = raw.whole == "block0" ? WholeFaces::Block0 : WholeFaces::Block1;
    }
}

}  // namespace

Command ReadCommand(int argc, const char* const* argv) {
    Command command;
    RawOptions raw;
    CLI::App app("A small flow solver that hosts KVX3DMeshlessToolbox", "reference_host");
    app.require_subcommand(1);
    command.cylinder.meshFile = ShippedMesh("channel_cylinder_overset.geo");
    command.sphere.meshFile = ShippedMesh("sphere_overset.geo");
    command.mms.meshFile = ShippedMesh("box_annulus_overset.geo");
    command.nonmatching.meshFile = ShippedMesh("nonmatching_blocks.geo");
    const CLI::App* cylinder = AddCylinder(app, command.cylinder, raw);
    const CLI::App* dump = AddDump(app, command.dump, raw);
    const CLI::App* heat = AddHeat(app, command.heat, raw);
    const CLI::App* mms = AddMms(app, command.mms, raw);
    const CLI::App* nonmatching = AddNonmatching(app, command.nonmatching, raw);
    const CLI::App* sphere = AddSphere(app, command.sphere, raw);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        command.help = app.help();
        return command;
    } catch (const CLI::ParseError& error) {
        throw std::runtime_error(error.what());
    }
    if (cylinder->parsed()) {
        command.task = Task::Cylinder;
        CompleteFlow(command.cylinder, *cylinder, raw);
    } else if (sphere->parsed()) {
        command.task = Task::Sphere;
        CompleteFlow(command.sphere, *sphere, raw);
    } else if (dump->parsed()) {
        command.task = Task::Dump;
        command.dump.parameters = ReadParameters(raw.sets);
    } else if (heat->parsed()) {
        command.task = Task::Heat;
        command.heat.parameters = ReadParameters(raw.sets);
        command.heat.matrixSolver = *MatrixSolverNamed(raw.matrixSolver);
    } else if (mms->parsed()) {
        command.task = Task::Mms;
        Complete(command.mms, *mms, raw);
    } else if (nonmatching->parsed()) {
        command.task = Task::Nonmatching;
        Complete(command.nonmatching, raw);
    }
    return command;
}

}  // namespace host
