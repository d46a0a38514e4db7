#include "reference_host/app/case_file.h"

#include <fmt/format.h>
#include <toml++/toml.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <vector>

#include "reference_host/cases/registry.h"

namespace host {

struct CaseFile::Content {
    toml::table root;
};

namespace {

/// A key of the file with its full name and its line.
struct Entry {
    std::string name;
    const toml::node* node;
    toml::source_index line;
};

std::string ReadText(const std::string& path) {
    std::ifstream file(path);
    if (!file || std::filesystem::is_directory(path)) {
        throw std::runtime_error(path + ": the case file cannot be read");
    }
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// A value for messages: itself, or its type if it is not a single value.
std::string Shown(const toml::node& node) {
    if (const auto* text = node.as_string()) {
        return Quoted(text->get());
    }
    if (const auto* integer = node.as_integer()) {
        return fmt::format("{}", integer->get());
    }
    if (const auto* number = node.as_floating_point()) {
        return fmt::format("{:#}", number->get());  // 10.0 is no integer
    }
    if (const auto* flag = node.as_boolean()) {
        return flag->get() ? "true" : "false";
    }
    return node.is_table() ? "a table" : node.is_array() ? "a list" : "a date or time";
}

bool IsNumber(const toml::node& node) {
    return node.is_integer() || node.is_floating_point();
}

/// True if a single value has the type of the kind, or that of its entries if it is a list.
bool Fits(const toml::node& node, ValueKind kind) {
    switch (kind) {
        case ValueKind::Flag:
            return node.is_boolean();
        case ValueKind::Integer:
        case ValueKind::Integers:
            return node.is_integer();
        case ValueKind::Number:
            return IsNumber(node);
        default:
            return node.is_string();
    }
}

/// A value as Option::assign() takes it.
std::string TextOf(const toml::node& node) {
    if (const auto* text = node.as_string()) {
        return text->get();
    }
    const auto* number = node.as_floating_point();
    return number ? fmt::format("{}", number->get()) : Shown(node);
}

std::vector<std::string> TextsOf(const toml::node& node, ValueKind kind) {
    const auto* list = IsList(kind) ? node.as_array() : nullptr;
    if (!list) {
        if (!Fits(node, kind)) {
            throw std::invalid_argument(
                fmt::format("must be {}, not {}", Description(kind), Shown(node)));
        }
        return {TextOf(node)};
    }
    std::vector<std::string> texts;
    for (const toml::node& entry : *list) {
        if (!Fits(entry, kind)) {
            throw std::invalid_argument(fmt::format("must be {}, but the list contains {}",
                                                    Description(kind), Shown(entry)));
        }
        texts.push_back(TextOf(entry));
    }
    return texts;
}

std::string MeshPath(const std::string& name, const std::string& caseFile) {
    if (name.empty()) {
        throw std::invalid_argument("must not be empty");
    }
    const std::filesystem::path mesh = std::filesystem::path(caseFile).parent_path() / name;
    if (!std::filesystem::exists(mesh)) {
        throw std::invalid_argument(fmt::format("names no file: {} does not exist", mesh.string()));
    }
    return mesh.string();
}

/// All keys in the order of the file, without `case`. The keys of a table are listed as table.key;
/// a key above all tables that has a dot in its name is listed with quotes, as it is written in
/// TOML. A table that the case does not have, or a plain value with the name of a table, is listed
/// under that name, so that it can be reported.
std::vector<Entry> EntriesOf(const toml::table& root, const std::vector<std::string>& tableNames) {
    std::vector<Entry> entries;
    for (const auto& [key, node] : root) {
        const std::string name(key.str());
        const auto* table = node.as_table();
        const bool isKnown =
            std::find(tableNames.begin(), tableNames.end(), name) != tableNames.end();
        if (table && isKnown) {
            for (const auto& [subKey, subNode] : *table) {
                entries.push_back(
                    {name + "." + std::string(subKey.str()), &subNode, subKey.source().begin.line});
            }
        } else if (name != "case") {
            const bool isQuoted = name.find('.') != std::string::npos;
            entries.push_back({isQuoted ? Quoted(name) : name, &node, key.source().begin.line});
        }
    }
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& a, const Entry& b) { return a.line < b.line; });
    return entries;
}

/// Sets the option or the parameter that an entry names.
/// @param caseFile  path of the case file
void SetEntry(const Entry& entry, const std::string& caseFile, CaseOptions& options) {
    const std::string line = fmt::format("{}:{}: ", caseFile, entry.line);
    const std::string place = line + entry.name;
    const std::vector<std::string> tables = options.TableNames();
    if (std::find(tables.begin(), tables.end(), entry.name) != tables.end()) {
        throw std::runtime_error(place + " must be a table, not " + Shown(*entry.node));
    }
    if (TableOf(entry.name) == "parameters") {
        if (!IsNumber(*entry.node) || !std::isfinite(*entry.node->value<double>())) {
            throw std::runtime_error(place + " must be a number, not " + Shown(*entry.node));
        }
        options.SetParameter(KeyOf(entry.name), *entry.node->value<double>(), place);
        return;
    }
    const Option* option = options.Find(entry.name);
    if (!option && entry.node->is_table()) {
        throw std::runtime_error(fmt::format("{}unknown table {}: the tables of this case are {}",
                                             line, entry.name, fmt::join(tables, ", ")));
    }
    if (!option) {
        throw std::runtime_error(line + options.UnknownName(entry.name));
    }
    try {
        std::vector<std::string> values = TextsOf(*entry.node, option->kind);
        if (option->kind == ValueKind::MeshFile) {
            values.at(0) = MeshPath(values.at(0), caseFile);
        }
        options.Set(entry.name, values, place);
    } catch (const std::invalid_argument& error) {
        throw std::runtime_error(place + " " + error.what());
    }
}

}  // namespace

CaseFile::CaseFile(const std::string& path_) : path(path_) {
    const std::string text = ReadText(path);
    try {
        content = std::make_unique<const Content>(Content{toml::parse(text, path)});
    } catch (const toml::parse_error& error) {
        throw std::runtime_error(fmt::format("{}:{}: {}", path, error.source().begin.line,
                                             OneLine(std::string(error.description()))));
    }
}

CaseFile::~CaseFile() = default;

std::string CaseFile::CaseName() const {
    const toml::node* node = content->root.get("case");
    if (!node) {
        throw std::runtime_error(
            fmt::format("{}:1: the key case is missing, it must be one of {}", path, CaseNames()));
    }
    const auto* name = node->as_string();
    if (!name || !FindCase(name->get())) {
        throw std::runtime_error(fmt::format("{}:{}: case must be one of {}, not {}", path,
                                             node->source().begin.line, CaseNames(), Shown(*node)));
    }
    return name->get();
}

void CaseFile::Apply(CaseOptions& options) const {
    for (const Entry& entry : EntriesOf(content->root, options.TableNames())) {
        SetEntry(entry, path, options);
    }
}

}  // namespace host
