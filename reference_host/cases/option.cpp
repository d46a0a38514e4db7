#include "reference_host/cases/option.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace host {

namespace {

/// Reads the text as a T, from its first to its last character.
/// @return false if it is none
template <class T>
bool Parse(const std::string& text, T& value) {
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end;
}

int ParseInteger(const std::string& text, const Range& range) {
    int value = 0;
    if (!Parse(text, value)) {
        throw std::invalid_argument("must be an integer, not " + Quoted(text));
    }
    range.Require(value, text);
    return value;
}

double ParseNumberIn(const std::string& text, const Range& range) {
    const double value = ParseNumber(text);
    range.Require(value, text);
    return value;
}

/// An option for a number that may have a default or none.
template <class Field>
Option NumberOptionFor(const OptionNames& names, Field& field, const Range& range,
                       const std::string& shown) {
    return {names.name,
            names.shortForm,
            names.help,
            ValueKind::Number,
            range.Text(),
            shown,
            [&field, range](const auto& values) { field = ParseNumberIn(values.at(0), range); }};
}

bool ParseFlag(const std::string& text) {
    if (text != "true" && text != "false") {
        throw std::invalid_argument("must be true or false, not " + Quoted(text));
    }
    return text == "true";
}

}  // namespace

std::string OneLine(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

std::string Quoted(const std::string& text) {
    return '"' + OneLine(text) + '"';
}

bool IsList(ValueKind kind) {
    return kind == ValueKind::Integers || kind == ValueKind::Texts;
}

const char* Description(ValueKind kind) {
    switch (kind) {
        case ValueKind::Flag:
            return "true or false";
        case ValueKind::Integer:
            return "an integer";
        case ValueKind::Number:
            return "a number";
        case ValueKind::Text:
        case ValueKind::MeshFile:
            return "a string in quotes";
        case ValueKind::Integers:
            return "an integer or a list of integers";
        case ValueKind::Texts:
            return "a string in quotes or a list of strings";
    }
    return "";
}

Range Range::Any() {
    return {};
}

Range Range::AboveZero() {
    Range range;
    range.aboveZero = true;
    return range;
}

Range Range::AtLeast(double least) {
    Range range;
    range.least = least;
    return range;
}

Range Range::Between(double least, double most) {
    Range range;
    range.least = least;
    range.most = most;
    return range;
}

std::string Range::Text() const {
    if (aboveZero) {
        return "above 0";
    }
    if (least && most) {
        return fmt::format("{:.12g} to {:.12g}", *least, *most);
    }
    return least ? fmt::format("at least {:.12g}", *least) : "";
}

void Range::Require(double value, const std::string& text) const {
    if (aboveZero && !(value > 0.0)) {
        throw std::invalid_argument("must be above 0, not " + text);
    }
    if (least && value < *least) {
        throw std::invalid_argument(fmt::format("must be at least {:.12g}, not {}", *least, text));
    }
    if (most && value > *most) {
        throw std::invalid_argument(fmt::format("must be at most {:.12g}, not {}", *most, text));
    }
}

Option FlagOption(const OptionNames& names, bool& field) {
    return {names.name,
            names.shortForm,
            names.help,
            ValueKind::Flag,
            "",
            field ? "true" : "false",
            [&field](const auto& values) { field = ParseFlag(values.at(0)); }};
}

Option IntegerOption(const OptionNames& names, int& field, const Range& range) {
    return {names.name,
            names.shortForm,
            names.help,
            ValueKind::Integer,
            range.Text(),
            std::to_string(field),
            [&field, range](const auto& values) { field = ParseInteger(values.at(0), range); }};
}

Option IntegersOption(const OptionNames& names, std::vector<int>& field, const Range& range) {
    return {names.name,
            names.shortForm,
            names.help,
            ValueKind::Integers,
            range.Text(),
            fmt::format("{}", fmt::join(field, ",")),
            [&field, range](const auto& values) {
                std::vector<int> read;
                for (const std::string& value : values) {
                    read.push_back(ParseInteger(value, range));
                }
                field = read;
            }};
}

Option NumberOption(const OptionNames& names, double& field, const Range& range) {
    return NumberOptionFor(names, field, range, fmt::format("{:g}", field));
}

Option NumberOption(const OptionNames& names, std::optional<double>& field, const Range& range) {
    return NumberOptionFor(names, field, range, field ? fmt::format("{:g}", *field) : "");
}

Option TextOption(const OptionNames& names, std::string& field, ValueKind kind) {
    return {names.name, names.shortForm, names.help, kind, "", field, [&field](const auto& values) {
                if (values.at(0).empty()) {
                    throw std::invalid_argument("must not be empty");
                }
                field = values.at(0);
            }};
}

double ParseNumber(const std::string& text) {
    double value = 0.0;
    if (!Parse(text, value) || !std::isfinite(value)) {
        throw std::invalid_argument("must be a number, not " + Quoted(text));
    }
    return value;
}

}  // namespace host
