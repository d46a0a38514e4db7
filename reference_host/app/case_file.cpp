#include "reference_host/app/case_file.h"

#include <fmt/format.h>
#include <toml++/toml.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "reference_host/mesh/geo_parameters.h"

namespace host {

struct CaseFile::Content {
    toml::table root;
};

namespace {

using Line = toml::source_index;

/// What is wrong and in which line.
struct Fault {
    Line line = 0;
    std::string what;
};

std::string ReadText(const std::string& path) {
    std::ifstream file(path);
    if (!file || std::filesystem::is_directory(path)) {
        throw std::runtime_error(path + ": no case file that can be read");
    }
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The messages of the parser quote line ends as they stand.
std::string OneLine(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

/// A value for messages: as it stands, or what it is.
std::string Shown(const toml::node& node) {
    if (const auto* text = node.as_string()) {
        return fmt::format("\"{}\"", OneLine(text->get()));
    }
    if (const auto* whole = node.as_integer()) {
        return fmt::format("{}", whole->get());
    }
    if (const auto* number = node.as_floating_point()) {
        return fmt::format("{}", number->get());
    }
    if (const auto* flag = node.as_boolean()) {
        return flag->get() ? "true" : "false";
    }
    return node.is_table() ? "a table" : node.is_array() ? "a list" : "a date or time";
}

bool IsNumber(const toml::node& node) {
    return node.is_integer() || node.is_floating_point();
}

/// Whether a single value is of the kind, or may stand in a list of it.
bool Fits(const toml::node& node, ValueKind kind) {
    switch (kind) {
        case ValueKind::Flag:
            return node.is_boolean();
        case ValueKind::Whole:
        case ValueKind::Wholes:
            return node.is_integer();
        case ValueKind::Number:
            return IsNumber(node);
        default:
            return node.is_string();
    }
}

/// The text that CaseOption::Set() takes.
std::string TextOf(const toml::node& node) {
    const auto* text = node.as_string();
    return text ? text->get() : Shown(node);
}

std::vector<std::string> TextsOf(const toml::node& node, ValueKind kind) {
    const bool isList = kind == ValueKind::Wholes || kind == ValueKind::Texts;
    const auto* list = node.as_array();
    if (!isList || !list) {
        if (!Fits(node, kind)) {
            throw std::invalid_argument(
                fmt::format("must be {}, not {}", Description(kind), Shown(node)));
        }
        return {TextOf(node)};
    }
    std::vector<std::string> texts;
    for (const toml::node& entry : *list) {
        if (!Fits(entry, kind)) {
            throw std::invalid_argument(
                fmt::format("must be {}, {} does not fit in", Description(kind), Shown(entry)));
        }
        texts.push_back(TextOf(entry));
    }
    return texts;
}

std::string MeshPath(const std::string& name, const std::string& caseFile) {
    const std::filesystem::path mesh = std::filesystem::path(caseFile).parent_path() / name;
    if (!std::filesystem::exists(mesh)) {
        throw std::invalid_argument("names no file: there is no " + mesh.string());
    }
    return mesh.string();
}

/// Goes over a file and sets options. Collects what is wrong, since the parser's tables are in
/// alphabetical order and the first fault in the file is the one to tell.
class Application {
public:
    Application(CaseOptions& options_, std::string path_)
        : options(options_), path(std::move(path_)) {}

    void Root(const toml::table& root) {
        const toml::table* parameters = nullptr;
        for (const auto& [key, node] : root) {
            const std::string name(key.str());
            const bool isTable = IsTableName(name);
            if (isTable && !node.is_table()) {
                Add(key, "must be a table, not " + Shown(node));
            } else if (isTable && name == "parameters") {
                parameters = node.as_table();
            } else if (isTable) {
                Table(name, *node.as_table());
            } else if (node.is_table()) {
                faults.push_back(
                    {key.source().begin.line, fmt::format("unknown table \"{}\", this case has {}",
                                                          name, fmt::join(TableNames(), ", "))});
            } else if (name != "case") {
                Key("", key, node);
            }
        }
        if (parameters) {
            Parameters(*parameters);  // the mesh that has them is known by now
        }
    }

    /// The first fault in the order of the file, if there is any.
    const Fault* First() const {
        const auto first =
            std::min_element(faults.begin(), faults.end(),
                             [](const Fault& a, const Fault& b) { return a.line < b.line; });
        return first == faults.end() ? nullptr : &*first;
    }

private:
    std::vector<std::string> TableNames() const {
        std::vector<std::string> names = {"parameters"};
        for (const CaseOption& option : options.list) {
            if (!option.table.empty() &&
                std::find(names.begin(), names.end(), option.table) == names.end()) {
                names.push_back(option.table);
            }
        }
        return names;
    }
    bool IsTableName(const std::string& name) const {
        const std::vector<std::string> names = TableNames();
        return std::find(names.begin(), names.end(), name) != names.end();
    }

    void Add(const toml::key& key, const std::string& what) {
        faults.push_back({key.source().begin.line, fmt::format("\"{}\" {}", key.str(), what)});
    }

    void Parameters(const toml::table& table) {
        for (const auto& [key, node] : table) {
            if (!IsNumber(node)) {
                Add(key, "must be a number, not " + Shown(node));
            } else if (!HasParameter(std::string(key.str()))) {
                Add(key, "is no parameter of " +
                             std::filesystem::path(options.meshFile).filename().string());
            } else {
                options.parameters[std::string(key.str())] = *node.value<double>();
            }
        }
    }

    /// Whether the mesh defines it; a mesh that is still to be named may.
    bool HasParameter(const std::string& name) const {
        if (!std::filesystem::is_regular_file(options.meshFile)) {
            return true;
        }
        try {
            OnelabName(options.meshFile, name);
        } catch (const std::runtime_error&) {
            return false;
        }
        return true;
    }

    void Table(const std::string& name, const toml::table& table) {
        for (const auto& [key, node] : table) {
            Key(name, key, node);
        }
    }

    void Key(const std::string& table, const toml::key& key, const toml::node& node) {
        const auto option = std::find_if(
            options.list.begin(), options.list.end(),
            [&](const CaseOption& o) { return o.table == table && o.key == key.str(); });
        if (option == options.list.end()) {
            AddUnknown(table, key);
            return;
        }
        try {
            std::vector<std::string> texts = TextsOf(node, option->kind);
            if (option->kind == ValueKind::MeshFile) {
                texts.at(0) = MeshPath(texts.at(0), path);
            }
            option->Set(texts);
        } catch (const std::invalid_argument& error) {
            Add(key, error.what());
        }
    }

    void AddUnknown(const std::string& table, const toml::key& key) {
        std::vector<std::string> known;
        if (table.empty()) {
            known.push_back("case");
        }
        for (const CaseOption& option : options.list) {
            if (option.table == table) {
                known.push_back(option.key);
            }
        }
        const std::string place = table.empty() ? "above all tables" : "[" + table + "]";
        faults.push_back(
            {key.source().begin.line, fmt::format("unknown key \"{}\", {} has {}", key.str(), place,
                                                  fmt::join(known, ", "))});
    }

    CaseOptions& options;
    const std::string path;
    std::vector<Fault> faults;
};

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

std::string CaseFile::CaseName(const std::vector<std::string>& names) const {
    const toml::node* node = content->root.get("case");
    const std::string known = fmt::format("{}", fmt::join(names, ", "));
    if (!node) {
        throw std::runtime_error(fmt::format("{}:1: \"case\" is missing, one of {}", path, known));
    }
    const auto* name = node->as_string();
    if (!name || std::find(names.begin(), names.end(), name->get()) == names.end()) {
        throw std::runtime_error(fmt::format("{}:{}: \"case\" must be one of {}, not {}", path,
                                             node->source().begin.line, known, Shown(*node)));
    }
    return name->get();
}

void CaseFile::Apply(CaseOptions& options) const {
    Application application(options, path);
    application.Root(content->root);
    if (const Fault* fault = application.First()) {
        throw std::runtime_error(fmt::format("{}:{}: {}", path, fault->line, fault->what));
    }
}

}  // namespace host
