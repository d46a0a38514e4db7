#include "reference_host/app/command_line.h"

#include <fmt/format.h>

#include <deque>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <vector>

#include "reference_host/app/case_file.h"
#include "reference_host/app/help.h"

namespace host {

namespace {

/// The words of the command line that are not read yet.
using Words = std::deque<std::string>;

std::string TakeFirst(Words& words) {
    std::string word = words.front();
    words.pop_front();
    return word;
}

bool IsHelp(const std::string& word) {
    return word == "--help" || word == "-h";
}

bool IsCaseFile(const std::string& word) {
    return word.rfind('-', 0) != 0 && word.find('=') == std::string::npos &&
           std::filesystem::path(word).extension() == ".toml";
}

/// A word in its parts before and after the first "=".
struct Assignment {
    std::string name;
    std::optional<std::string> value;
};

Assignment Split(const std::string& word) {
    const std::size_t equals = word.find('=');
    if (equals == std::string::npos) {
        return {word, std::nullopt};
    }
    return {word.substr(0, equals), word.substr(equals + 1)};
}

std::vector<std::string> SplitAtCommas(const std::string& text) {
    std::vector<std::string> parts;
    std::size_t begin = 0;
    for (std::size_t comma = text.find(','); comma != std::string::npos;
         comma = text.find(',', begin)) {
        parts.push_back(text.substr(begin, comma - begin));
        begin = comma + 1;
    }
    parts.push_back(text.substr(begin));
    return parts;
}

/// "n=10", the value of --set.
void SetByShortForm(const std::string& text, CaseOptions& options) {
    const Assignment parameter = Split(text);
    try {
        if (parameter.name.empty() || !parameter.value) {
            throw std::invalid_argument("incomplete");
        }
        options.SetParameter(parameter.name, ParseNumber(*parameter.value), "--set " + text);
    } catch (const std::invalid_argument&) {
        throw std::runtime_error("--set takes name=number, for example n=10, not " + Quoted(text));
    }
}

void SetParameter(const Assignment& word, CaseOptions& options) {
    try {
        options.SetParameter(KeyOf(word.name), ParseNumber(*word.value), word.name);
    } catch (const std::invalid_argument& error) {
        throw std::runtime_error(word.name + " " + error.what());
    }
}

/// Takes the next word as the value of a short form. A word that begins with two dashes is the next
/// option, so the value is missing: "--output --check". "--output=--check" names such a value.
std::string TakeValue(const std::string& shortForm, Words& words) {
    if (words.empty() || words.front().rfind("--", 0) == 0) {
        throw std::runtime_error(shortForm + " needs a value");
    }
    return TakeFirst(words);
}

/// Reads an option that begins with dashes; its value may be the next word.
void ReadShortForm(const Assignment& word, Words& words, CaseOptions& options) {
    const Option* option = options.FindShortForm(word.name);
    const bool isSet = word.name == "--set";
    if (!isSet && !option) {
        throw std::runtime_error("unknown option " + word.name + ": --help lists the options");
    }
    std::optional<std::string> value = word.value;
    if (!value && option && option->kind == ValueKind::Flag) {
        value = "true";
    }
    if (!value) {
        value = TakeValue(word.name, words);
    }
    if (isSet) {
        SetByShortForm(*value, options);
        return;
    }
    options.Set(option->name,
                IsList(option->kind) ? SplitAtCommas(*value) : std::vector<std::string>{*value},
                word.name);
}

/// Reads an option in the notation of case files: table.key=value.
void ReadFullName(const Assignment& word, CaseOptions& options) {
    if (!word.value || KeyOf(word.name).empty()) {
        throw std::runtime_error(Quoted(word.name) +
                                 " is not an option: write name=value, for example "
                                 "parameters.n=10; --help lists the names");
    }
    if (word.name == "case") {
        throw std::runtime_error("the case is the first word or that of the case file, not case=" +
                                 *word.value);
    }
    if (TableOf(word.name) == "parameters") {
        SetParameter(word, options);
        return;
    }
    const Option* option = options.Find(word.name);
    if (!option) {
        throw std::runtime_error(options.UnknownName(word.name));
    }
    options.Set(
        option->name,
        IsList(option->kind) ? SplitAtCommas(*word.value) : std::vector<std::string>{*word.value},
        word.name);
}

/// The case that the command line names, and the case file if there is one.
struct Choice {
    const CaseEntry* entry;
    std::unique_ptr<CaseFile> file;
};

/// Reads "run FILE", "FILE.toml", "CASE" or "CASE FILE.toml".
Choice ReadChoice(Words& words) {
    const bool isRun = words[0] == "run";
    if (isRun) {
        words.pop_front();
        if (words.empty()) {
            throw std::runtime_error("run needs a case file, for example run cases/cylinder.toml");
        }
    }
    const CaseEntry* named = isRun ? nullptr : FindCase(words[0]);
    if (named) {
        words.pop_front();
    }
    std::unique_ptr<CaseFile> file;
    if (!words.empty() && (isRun || IsCaseFile(words[0]))) {
        file = std::make_unique<CaseFile>(TakeFirst(words));
    }
    if (!named && !file) {
        throw std::runtime_error(
            fmt::format("{} is no case: give one of {}, or a case file that ends in .toml",
                        Quoted(words[0]), CaseNames()));
    }
    return {named ? named : FindCase(file->CaseName()), std::move(file)};
}

/// Sets what the case file gives: everything if it is a file of this case, else the mesh.
void Apply(const CaseFile& file, const CaseEntry& entry, CaseOptions& options) {
    const std::string fileCase = file.CaseName();
    if (fileCase == entry.name) {
        file.Apply(options);
        return;
    }
    if (entry.files != CaseFiles::Any) {
        throw std::runtime_error(fmt::format("{}: this is a file of the case {}, not of {}",
                                             file.path, fileCase, entry.name));
    }
    const std::unique_ptr<Case> other = FindCase(fileCase)->make();
    CaseOptions otherOptions = other->Options();
    file.Apply(otherOptions);
    options.TakeMesh(otherOptions);
}

}  // namespace

Command ReadCommand(int argc, const char* const* argv) {
    Words words(argv + 1, argv + argc);
    if (words.empty()) {
        throw std::runtime_error(
            fmt::format("no case: give one of {}, or a case file that ends in .toml", CaseNames()));
    }
    if (IsHelp(words[0]) || (words[0] == "run" && words.size() > 1 && IsHelp(words[1]))) {
        return {nullptr, ProgramHelp()};
    }
    const Choice choice = ReadChoice(words);
    Command command{choice.entry->make(), ""};
    CaseOptions options = command.chosen->Options();
    if (choice.file) {
        Apply(*choice.file, *choice.entry, options);
    }
    while (!words.empty()) {
        const std::string word = TakeFirst(words);
        if (IsHelp(word)) {
            return {nullptr, CaseHelp(*choice.entry, options)};
        }
        if (word.rfind('-', 0) == 0) {
            ReadShortForm(Split(word), words, options);
        } else {
            ReadFullName(Split(word), options);
        }
    }
    options.Complete(choice.file ? choice.file->path : "");
    return command;
}

}  // namespace host
