#include "reference_host/mesh/geo_parameters.h"

#include <fmt/format.h>

#include <cctype>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace host {
namespace {

/// The Name in a definition `variable = {value, ..., Name "..."}` that begins at position `at`, or
/// an empty text if none begins there.
std::string NameInDefinition(const std::string& text, std::size_t at, const std::string& variable) {
    constexpr char blanks[] = " \t\r\n";
    const bool isTail = at > 0 && (std::isalnum(static_cast<unsigned char>(text[at - 1])) != 0 ||
                                   text[at - 1] == '_');
    const std::size_t equals = text.find_first_not_of(blanks, at + variable.size());
    if (isTail || equals == std::string::npos || text[equals] != '=') {
        return "";
    }
    const std::size_t brace = text.find_first_not_of(blanks, equals + 1);
    if (brace == std::string::npos || text[brace] != '{') {
        return "";
    }
    const std::string options = text.substr(brace, text.find('}', brace) - brace);
    const std::size_t open = options.find('"', options.find("Name"));
    const std::size_t close = options.find('"', open + 1);
    return open == std::string::npos || close == std::string::npos
               ? ""
               : options.substr(open + 1, close - open - 1);
}

}  // namespace

std::string OnelabName(const std::string& file, const std::string& variable) {
    std::ifstream stream(file);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    std::size_t at = variable.empty() ? std::string::npos : text.find(variable);
    for (; at != std::string::npos; at = text.find(variable, at + 1)) {
        std::string name = NameInDefinition(text, at, variable);
        if (!name.empty()) {
            return name;
        }
    }
    throw std::runtime_error(
        fmt::format("there is no parameter \"{}\": see its DefineConstant for the variables that "
                    "have a Name",
                    variable));
}

}  // namespace host
