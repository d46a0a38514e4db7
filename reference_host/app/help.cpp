#include "reference_host/app/help.h"

#include <fmt/format.h>

namespace host {

namespace {

/// The type of an option's value on the command line.
const char* TypeOf(ValueKind kind) {
    switch (kind) {
        case ValueKind::Flag:
            return "true or false";
        case ValueKind::Integer:
            return "integer";
        case ValueKind::Number:
            return "number";
        case ValueKind::MeshFile:
            return "file";
        case ValueKind::Integers:
            return "integers, separated by commas";
        case ValueKind::Texts:
            return "names, separated by commas";
        case ValueKind::Text:
            return "text";
    }
    return "";
}

/// The values that an option takes; names speak for themselves.
std::string ValuesOf(const Option& option) {
    const bool isNamed = option.kind == ValueKind::Text || option.kind == ValueKind::Texts;
    if (isNamed && !option.limits.empty()) {
        return option.limits;
    }
    return TypeOf(option.kind) + (option.limits.empty() ? "" : ", " + option.limits);
}

/// The present value for the help; empty if there is none.
std::string ShownValue(const Option& option, bool isGiven) {
    if (option.shown.empty()) {
        return "";
    }
    return (isGiven ? "; set to " : "; default ") + option.shown;
}

std::string OptionHelp(const Option& option, bool isGiven) {
    return fmt::format("  {} ({})\n      {}\n      {}{}\n", option.name, option.shortForm,
                       option.help, ValuesOf(option), ShownValue(option, isGiven));
}

std::string ParameterHelp(const MeshParameters& parameters) {
    std::string text =
        "  parameters.NAME (--set NAME=VALUE)\n"
        "      value of the variable NAME of a .geo file\n"
        "      number";
    std::string separator = "; set to ";
    for (const auto& [name, value] : parameters) {
        text += fmt::format("{}{} = {:g}", separator, name, value);
        separator = ", ";
    }
    return text + '\n';
}

}  // namespace

std::string ProgramHelp() {
    std::string text =
        "A small flow solver that hosts KVX3DMeshlessToolbox.\n"
        "\n"
        "  reference_host CASE [option ...]       a case with its default settings\n"
        "  reference_host FILE.toml [option ...]  a case file; \"run FILE.toml\" is the same\n"
        "  reference_host CASE --help             the options of a case\n"
        "\n"
        "An option is written name=value, for example parameters.n=20. It replaces the value that "
        "the case\nfile gives.\n"
        "\n"
        "Cases:\n";
    for (const CaseEntry& entry : AllCases()) {
        text += fmt::format("  {:<12} {}\n", entry.name, entry.summary);
    }
    return text;
}

std::string CaseHelp(const CaseEntry& entry, const CaseOptions& options) {
    std::string text =
        fmt::format("{0}: {1}\n\n  reference_host {0} [option ...]\n", entry.name, entry.summary);
    if (entry.files == CaseFiles::Any) {
        text += fmt::format(
            "  reference_host {} FILE.toml [option ...]  with the mesh of any case file\n",
            entry.name);
    }
    text +=
        "\n"
        "An option is written TABLE.KEY=VALUE, or in the short form in parentheses, for example\n"
        "--mesh FILE. In a case file it is the key KEY of the table [TABLE].\n"
        "\n";
    for (const Option& option : options.List()) {
        text += OptionHelp(option, options.IsGiven(option.name));
        if (option.name == "mesh.file") {
            text += ParameterHelp(options.Parameters());
        }
    }
    return text;
}

}  // namespace host
