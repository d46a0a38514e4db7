#include "reference_host/app/command_line.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <map>
#include <stdexcept>

#include "reference_host/app/case_file.h"
#include "reference_host/app/case_options.h"

namespace host {

namespace {

/// A case by its name on the command line and in case files.
struct NamedCase {
    const char* name;
    Task task;
    const char* help;
    CaseOptions (*options)(Command& command);
};

const NamedCase cases[] = {
    {"cylinder", Task::Cylinder,
     "Laminar flow around a cylinder in a channel, compared with benchmark 2D-1",
     [](Command& command) { return OptionsOf(command.cylinder); }},
    {"sphere", Task::Sphere,
     "Laminar flow around a sphere at Reynolds number 100, in three dimensions",
     [](Command& command) { return OptionsOf(command.sphere); }},
    {"heat", Task::Heat,
     "Heat conduction around a hot body, with time steps up to the steady state and a heat balance",
     [](Command& command) { return OptionsOf(command.heat); }},
    {"mms", Task::Mms, "Order study with a manufactured solution of convection and diffusion",
     [](Command& command) { return OptionsOf(command.mms); }},
    {"nonmatching", Task::Nonmatching,
     "Order study across an interface of two blocks whose faces do not match",
     [](Command& command) { return OptionsOf(command.nonmatching); }},
    {"dump", Task::Dump, "Everything the toolbox linked, and its overset report, as text",
     [](Command& command) { return OptionsOf(command.dump); }},
};

const NamedCase& CaseNamed(const std::string& name) {
    for (const NamedCase& known : cases) {
        if (name == known.name) {
            return known;
        }
    }
    throw std::logic_error("no case " + name);  // names come from the table above
}

std::string ShippedMesh(const std::string& name) {
    return (std::filesystem::path(KVX3D_REFERENCE_HOST_MESH_DIR) / name).string();
}

/// "n=10" as a number for the mesh file.
void AddParameter(const std::string& text, MeshParameters& parameters) {
    const std::size_t equals = text.find('=');
    try {
        if (equals == std::string::npos || equals == 0) {
            throw std::invalid_argument("no name");
        }
        parameters[text.substr(0, equals)] = ParseNumber(text.substr(equals + 1));
    } catch (const std::invalid_argument&) {
        throw std::runtime_error("--set takes name=number, for example n=10, not \"" + text + "\"");
    }
}

/// A case as a subcommand of the parser, with the texts it reads.
struct Subcommand {
    CLI::App* app = nullptr;
    CaseOptions options;
    std::vector<std::string> sets;
    std::vector<std::vector<std::string>> texts;  // by option
    std::vector<std::string> flags;               // by option
};

const char* TypeName(ValueKind kind) {
    switch (kind) {
        case ValueKind::Whole:
            return "INT";
        case ValueKind::Wholes:
            return "INT,...";
        case ValueKind::Number:
            return "FLOAT";
        case ValueKind::Texts:
            return "TEXT,...";
        case ValueKind::MeshFile:
            return "FILE";
        default:
            return "TEXT";
    }
}

void AddOption(CLI::App& app, const CaseOption& option, std::vector<std::string>& texts,
               std::string& flag) {
    if (option.kind == ValueKind::Flag) {
        app.add_flag(option.option, flag, option.help);
        return;
    }
    CLI::Option* added = app.add_option(option.option, texts, option.help);
    added->type_name(TypeName(option.kind))->default_str(option.shown);
    if (option.kind == ValueKind::Wholes || option.kind == ValueKind::Texts) {
        added->delimiter(',');
    } else {
        added->expected(1)->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    }
}

/// @param sub  its options are set; stays where it is until the parser is done
void AddSubcommand(CLI::App& app, const NamedCase& known, Subcommand& sub) {
    sub.app = app.add_subcommand(known.name, known.help);
    sub.app->add_option("--set", sub.sets, "number in the .geo, name=value; may be repeated")
        ->type_name("NAME=FLOAT")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    sub.texts.resize(sub.options.list.size());
    sub.flags.resize(sub.options.list.size());
    for (std::size_t k = 0; k < sub.options.list.size(); ++k) {
        AddOption(*sub.app, sub.options.list[k], sub.texts[k], sub.flags[k]);
    }
}

/// Sets what the command line gave.
void Apply(Subcommand& sub) {
    for (const std::string& text : sub.sets) {
        AddParameter(text, sub.options.parameters);
    }
    for (std::size_t k = 0; k < sub.options.list.size(); ++k) {
        CaseOption& option = sub.options.list[k];
        if (sub.app->count(option.option) == 0) {
            continue;
        }
        try {
            option.Set(option.kind == ValueKind::Flag ? std::vector<std::string>{sub.flags[k]}
                                                      : sub.texts[k]);
        } catch (const std::invalid_argument& error) {
            throw std::runtime_error(option.option + " " + error.what());
        }
    }
}

/// The words after the program's name, with a case file taken out.
struct Words {
    std::vector<std::string> words;
    std::string caseFile;  // empty: none
};

bool IsCaseFile(const std::string& word) {
    return std::filesystem::path(word).extension() == ".toml";
}

/// "run FILE options" and "FILE.toml options".
Words Split(int argc, const char* const* argv) {
    Words split{{argv + 1, argv + argc}, ""};
    std::vector<std::string>& words = split.words;
    if (words.empty()) {
        return split;
    }
    const bool isRun = words[0] == "run";
    if (isRun && words.size() == 1) {
        throw std::runtime_error("run needs a case file, for example run cases/cylinder.toml");
    }
    const bool isHelp = isRun && (words[1] == "--help" || words[1] == "-h");
    if ((isRun && !isHelp) || IsCaseFile(words[0])) {
        split.caseFile = words[isRun ? 1 : 0];
        words.erase(words.begin(), words.begin() + (isRun ? 2 : 1));
    }
    return split;
}

std::vector<std::string> CaseNames() {
    std::vector<std::string> names;
    for (const NamedCase& known : cases) {
        names.push_back(known.name);
    }
    return names;
}

/// The parser calls a case a subcommand and does not say which there are.
void RequireCase(const std::vector<std::string>& words) {
    const std::vector<std::string> names = CaseNames();
    const bool isOption = !words.empty() && words[0].rfind('-', 0) == 0;
    if (words.empty() || (!isOption && words[0] != "run" &&
                          std::find(names.begin(), names.end(), words[0]) == names.end())) {
        throw std::runtime_error(fmt::format(
            "{}: give one of {}, or a case file that ends in .toml",
            words.empty() ? "no case" : '"' + words[0] + "\" is no case", fmt::join(names, ", ")));
    }
}

void RequireMesh(const CaseOptions& options, const std::string& caseFile) {
    if (options.meshFile.empty()) {
        throw std::runtime_error(caseFile.empty()
                                     ? "--mesh is required"
                                     : caseFile + ": \"file\" in the table [mesh] is required");
    }
}

}  // namespace

Command ReadCommand(int argc, const char* const* argv) {
    Command command;
    command.cylinder.meshFile = ShippedMesh("channel_cylinder_overset.geo");
    command.sphere.meshFile = ShippedMesh("sphere_overset.geo");
    command.mms.meshFile = ShippedMesh("box_annulus_overset.geo");
    command.nonmatching.meshFile = ShippedMesh("nonmatching_blocks.geo");

    CLI::App app("A small flow solver that hosts KVX3DMeshlessToolbox", "reference_host");
    app.require_subcommand(1);
    app.add_subcommand("run",
                       "A case file with any of its options: run cases/cylinder.toml --set "
                       "n=20; \"run\" may be left out");
    Words split = Split(argc, argv);
    std::map<std::string, CaseOptions> options;
    for (const NamedCase& known : cases) {
        options.emplace(known.name, known.options(command));
    }
    if (!split.caseFile.empty()) {
        const CaseFile file(split.caseFile);
        const std::string name = file.CaseName(CaseNames());
        file.Apply(options.at(name));
        split.words.insert(split.words.begin(), name);
    }
    RequireCase(split.words);
    std::map<std::string, Subcommand> subcommands;
    for (const NamedCase& known : cases) {
        const auto added = subcommands.emplace(
            known.name, Subcommand{nullptr, options.at(known.name), {}, {}, {}});
        AddSubcommand(app, known, added.first->second);
    }
    try {
        app.parse(std::vector<std::string>(split.words.rbegin(), split.words.rend()));
    } catch (const CLI::CallForHelp&) {
        command.help = app.help();
        return command;
    } catch (const CLI::ParseError& error) {
        throw std::runtime_error(error.what());
    }
    for (auto& [name, sub] : subcommands) {
        if (sub.app->parsed()) {
            Apply(sub);
            RequireMesh(sub.options, split.caseFile);
            sub.options.complete(sub.options.list);
            command.task = CaseNamed(name).task;
        }
    }
    return command;
}

}  // namespace host
