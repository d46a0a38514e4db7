#ifndef KVX3D_REFERENCE_HOST_CASES_OPTION_H
#define KVX3D_REFERENCE_HOST_CASES_OPTION_H

#include <fmt/format.h>

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace host {

/// Type of an option's value.
enum class ValueKind { Flag, Integer, Number, Text, MeshFile, Integers, Texts };

/// True for the kinds that take several values.
bool IsList(ValueKind kind);

/// "an integer", "a string in quotes or a list of them", ...: the kind in a case file, for
/// messages.
const char* Description(ValueKind kind);

/// One field of a case, with everything a user can know about it. Each field is declared once.
///
/// The name is the same wherever the field is set: `solver.relaxation` is the key `relaxation` of
/// the table `[solver]` in a case file and the word `solver.relaxation=0.9` on the command line.
struct Option {
    std::string name;       ///< "table.key", or "key" for a key above all tables
    std::string shortForm;  ///< second name on the command line, with its dashes: "--relaxation"
    std::string help;
    ValueKind kind = ValueKind::Text;
    std::string limits;  ///< "at least 1", "one of bicgstab, samg", ...; empty if there are none
    std::string shown;   ///< the present value, for the help; empty if there is none

    /// Sets the field. Lists take any number of values, all other kinds one. Numbers are decimal
    /// texts, flags "true" or "false".
    ///
    /// @throws std::invalid_argument  what the value must be, without the name: "must be at least
    ///         1, not 0"
    std::function<void(const std::vector<std::string>& values)> assign;
};

/// The texts of an option.
struct OptionNames {
    const char* name;
    const char* shortForm;
    std::string help;
};

/// The interval that a number must lie in.
class Range {
public:
    static Range Any();
    static Range AboveZero();
    static Range AtLeast(double least);
    /// Both ends included.
    static Range Between(double least, double most);

    /// "above 0", "1 to 1000"; empty if any number will do.
    std::string Text() const;
    /// @param text  the value as it was written
    /// @throws std::invalid_argument  "must be at least 1, not 0"
    void Require(double value, const std::string& text) const;

private:
    std::optional<double> least, most;
    bool aboveZero = false;
};

/// Options for fields of each type. They keep a reference to the field, which has its default.
Option FlagOption(const OptionNames& names, bool& field);
Option IntegerOption(const OptionNames& names, int& field, const Range& range);
Option IntegersOption(const OptionNames& names, std::vector<int>& field, const Range& range);
Option NumberOption(const OptionNames& names, double& field, const Range& range);
Option NumberOption(const OptionNames& names, std::optional<double>& field, const Range& range);
/// Refuses the empty text.
Option TextOption(const OptionNames& names, std::string& field, ValueKind kind = ValueKind::Text);

/// The text for a message of one line: line ends become blanks.
std::string OneLine(std::string text);
/// The same in quotes.
std::string Quoted(const std::string& text);

/// The values that an option chooses from, by name.
template <class Value>
using Choices = std::vector<std::pair<std::string, Value>>;

/// The names of the choices, separated by commas.
template <class Value>
std::string NamesOf(const Choices<Value>& choices) {
    std::vector<std::string> names;
    for (const auto& choice : choices) {
        names.push_back(choice.first);
    }
    return fmt::format("{}", fmt::join(names, ", "));
}

/// @throws std::invalid_argument  "must be one of a, b, not "c""
template <class Value>
Value ChoiceNamed(const Choices<Value>& choices, const std::string& name) {
    for (const auto& [known, value] : choices) {
        if (known == name) {
            return value;
        }
    }
    throw std::invalid_argument(
        fmt::format("must be one of {}, not {}", NamesOf(choices), Quoted(name)));
}

/// An option that names one of the choices.
/// @param field  takes a Value: itself or a std::optional of it
/// @param shown  name of the default; empty if there is none
template <class Value, class Field>
Option ChoiceOption(const OptionNames& names, Field& field, const Choices<Value>& choices,
                    const std::string& shown) {
    return {names.name,
            names.shortForm,
            names.help,
            ValueKind::Text,
            "one of " + NamesOf(choices),
            shown,
            [&field, choices](const std::vector<std::string>& values) {
                field = ChoiceNamed(choices, values.at(0));
            }};
}

/// A finite number from the whole of a text.
/// @throws std::invalid_argument  "must be a number, not "ten""
double ParseNumber(const std::string& text);

}  // namespace host

#endif
