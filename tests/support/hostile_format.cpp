#include "tests/support/hostile_format.h"

#include <streambuf>
#include <string>

namespace {

constexpr std::ios_base::fmtflags hostileFlags =
    std::ios_base::hex | std::ios_base::showbase | std::ios_base::showpos |
    std::ios_base::scientific | std::ios_base::uppercase | std::ios_base::boolalpha |
    std::ios_base::left | std::ios_base::unitbuf;
constexpr std::streamsize hostilePrecision = 2;
constexpr std::streamsize hostileWidth = 20;
constexpr char hostileFill = '*';

/// Writes 1234.5 as "1.234,5".
class GroupingPunctuation : public std::numpunct<char> {
protected:
    char do_thousands_sep() const override { return '.'; }
    char do_decimal_point() const override { return ','; }
    std::string do_grouping() const override { return "\3"; }
};

}  // namespace

HostileFormat::HostileFormat(std::ostream& output)
    : stream(output),
      savedFormat(nullptr),
      hostileLocale(std::locale::classic(), new GroupingPunctuation),
      bufferLocale(output.rdbuf()->getloc()) {
    savedFormat.copyfmt(stream);
    stream.imbue(hostileLocale);
    stream.flags(hostileFlags);
    stream.precision(hostilePrecision);
    stream.width(hostileWidth);
    stream.fill(hostileFill);
}

HostileFormat::~HostileFormat() {
    stream.copyfmt(savedFormat);
    stream.rdbuf()->pubimbue(bufferLocale);
}

bool HostileFormat::IsUnchanged() const {
    return stream.flags() == hostileFlags && stream.precision() == hostilePrecision &&
           stream.width() == hostileWidth && stream.fill() == hostileFill &&
           stream.getloc() == hostileLocale && stream.rdbuf()->getloc() == hostileLocale;
}
