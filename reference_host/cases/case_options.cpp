#include "reference_host/cases/case_options.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "reference_host/mesh/geo_parameters.h"

namespace host {

namespace {

/// True if the .geo defines the variable. A file that does not exist may define it: the reader
/// reports the missing file.
bool MayDefine(const std::string& meshFile, const std::string& parameter) {
    if (!std::filesystem::is_regular_file(meshFile)) {
        return true;
    }
    try {
        OnelabName(meshFile, parameter);
    } catch (const std::runtime_error&) {
        return false;
    }
    return true;
}

}  // namespace

std::string TableOf(const std::string& name) {
    const std::size_t dot = name.find('.');
    return dot == std::string::npos ? "" : name.substr(0, dot);
}

std::string KeyOf(const std::string& name) {
    const std::size_t dot = name.find('.');
    return dot == std::string::npos ? name : name.substr(dot + 1);
}

CaseOptions::CaseOptions(std::string& meshFile_, MeshParameters& parameters_,
                         std::vector<Option> list_)
    : meshFile(meshFile_), parameters(parameters_), list(std::move(list_)) {
    list.insert(list.begin(), TextOption({"mesh.file", "--mesh", "mesh, a .geo or .msh file"},
                                         meshFile, ValueKind::MeshFile));
}

const Option* CaseOptions::Find(const std::string& name) const {
    const auto found = std::find_if(list.begin(), list.end(),
                                    [&](const Option& option) { return option.name == name; });
    return found == list.end() ? nullptr : &*found;
}

const Option* CaseOptions::FindShortForm(const std::string& shortForm) const {
    const auto found = std::find_if(list.begin(), list.end(), [&](const Option& option) {
        return option.shortForm == shortForm;
    });
    return found == list.end() ? nullptr : &*found;
}

std::vector<std::string> CaseOptions::TableNames() const {
    std::vector<std::string> names;
    for (const Option& option : list) {
        const std::string table = TableOf(option.name);
        if (!table.empty() && std::find(names.begin(), names.end(), table) == names.end()) {
            names.push_back(table);
        }
    }
    names.insert(names.begin() + 1, "parameters");  // after "mesh"
    return names;
}

std::string CaseOptions::UnknownName(const std::string& name) const {
    const std::string table = TableOf(name);
    const std::vector<std::string> tables = TableNames();
    if (!table.empty() && std::find(tables.begin(), tables.end(), table) == tables.end()) {
        return fmt::format("unknown option {}: the tables of this case are {}", name,
                           fmt::join(tables, ", "));
    }
    std::vector<std::string> known;
    for (const Option& option : list) {
        if (TableOf(option.name) == table) {
            known.push_back(KeyOf(option.name));
        }
    }
    if (!table.empty()) {
        return fmt::format("unknown option {}: the table {} has {}", name, table,
                           fmt::join(known, ", "));
    }
    known.insert(known.begin(), "case");
    return fmt::format(
        "unknown option {}: without a table there is only {}; all others are "
        "written table.key, for example parameters.n",
        name, fmt::join(known, " and "));
}

void CaseOptions::Set(const std::string& name, const std::vector<std::string>& values,
                      const std::string& place) {
    const auto option = std::find_if(list.begin(), list.end(),
                                     [&](const Option& known) { return known.name == name; });
    if (option == list.end()) {
        throw std::logic_error(UnknownName(name));
    }
    if (values.empty()) {
        throw std::runtime_error(place + " must have at least one value");
    }
    try {
        option->assign(values);
    } catch (const std::invalid_argument& error) {
        throw std::runtime_error(place + " " + error.what());
    }
    option->shown = fmt::format("{}", fmt::join(values, ","));
    places[name] = place;
}

void CaseOptions::SetParameter(const std::string& name, double value, const std::string& place) {
    parameters[name] = value;
    places["parameters." + name] = place;
}

void CaseOptions::TakeMesh(const CaseOptions& other) {
    meshFile = other.meshFile;
    list.front().shown = meshFile;
    parameters = other.parameters;
    for (const auto& [name, place] : other.places) {
        if (TableOf(name) == "mesh" || TableOf(name) == "parameters") {
            places[name] = place;
        }
    }
}

void CaseOptions::RefuseParameter(const std::string& parameter, const std::string& setFrom) const {
    const auto given = places.find("parameters." + parameter);
    if (given != places.end()) {
        throw std::runtime_error(fmt::format("{}: this case sets the parameter {} from {} ({})",
                                             given->second, parameter, setFrom,
                                             Find(setFrom)->shortForm));
    }
}

void CaseOptions::Complete(const std::string& caseFile) {
    if (meshFile.empty()) {
        throw std::runtime_error(
            (caseFile.empty() ? "" : caseFile + ": ") +
            "a mesh is required: set mesh.file (--mesh) to a .geo or .msh file");
    }
    if (settle) {
        settle(*this);
    }
    RequireKnownParameters();
}

void CaseOptions::RequireKnownParameters() const {
    for (const auto& [name, place] : places) {
        if (TableOf(name) == "parameters" && !MayDefine(meshFile, KeyOf(name))) {
            throw std::runtime_error(
                fmt::format("{}: {} has no parameter {} with a Name in its DefineConstant", place,
                            std::filesystem::path(meshFile).filename().string(), KeyOf(name)));
        }
    }
}

}  // namespace host
