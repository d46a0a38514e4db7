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

Scheme ReadScheme(const std::string& name) {
    if (const auto scheme = SchemeNamed(name)) {
        return *scheme;
    }
    throw std::runtime_error("--scheme takes " + SchemeNames() + ", not \"" + name + "\"");
}

std::string ShippedMesh(const std::string& name) {
    return (std::filesystem::path(KVX3D_REFERENCE_HOST_MESH_DIR) / name).string();
}

/// Texts of options that need a look of their own after the parser.
struct RawOptions {
    std::vector<std::string> sets;
    std::vector<std::string> schemes;
    double mu = 0.0;
};

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
    sub->add_option("--scheme", raw.schemes, "all, or of: " + SchemeNames())->delimiter(',');
    sub->add_option("--mu", raw.mu, "diffusion coefficient; default 1, with convection 0.01")
        ->check(CLI::PositiveNumber);
    sub->add_option("--output", mms.outputDir, "directory of result files; default: none written");
    sub->add_flag("--check", mms.check, "exit 1 if an order or error misses its limit");
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

}  // namespace

Command ReadCommand(int argc, const char* const* argv) {
    Command command;
    RawOptions raw;
    CLI::App app("A small flow solver that hosts KVX3DMeshlessToolbox", "reference_host");
    app.require_subcommand(1);
    command.mms.meshFile = ShippedMesh("box_annulus_overset.geo");
    const CLI::App* heat = AddHeat(app, command.heat, raw);
    const CLI::App* mms = AddMms(app, command.mms, raw);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        command.help = app.help();
        return command;
    } catch (const CLI::ParseError& error) {
        throw std::runtime_error(error.what());
    }
    if (heat->parsed()) {
        command.task = Task::Heat;
    }
    for (const std::string& text : raw.sets) {
        AddParameter(text, heat->parsed() ? command.heat.parameters : command.mms.parameters);
    }
    if (mms->parsed()) {
        command.task = Task::Mms;
        command.mms.schemes = ReadSchemes(raw.schemes);
        if (mms->count("--mu") > 0) {
            command.mms.mu = raw.mu;
        }
        if (mms->count("--mesh") > 0 && mms->count("--kind") == 0) {
            command.mms.kinds.clear();
        }
        std::vector<int>& sizes = command.mms.sizes;
        std::sort(sizes.begin(), sizes.end());
        sizes.erase(std::unique(sizes.begin(), sizes.end()), sizes.end());
    }
    return command;
}

}  // namespace host
