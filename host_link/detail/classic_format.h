#ifndef KVX3D_HOST_LINK_DETAIL_CLASSIC_FORMAT_H
#define KVX3D_HOST_LINK_DETAIL_CLASSIC_FORMAT_H

#include <ios>
#include <locale>
#include <ostream>
#include <streambuf>

namespace kvx3d::detail {

/// Gives a stream of the host the default number format for as long as the object lives.
///
/// What the library prints is compared as text, so a number must look the same whatever the host
/// did to std::cout or std::cerr before: decimal integers, six significant digits, no field width,
/// and the classic locale (no thousands separators, a decimal point). The destructor restores
/// flags, precision, width, fill character and locale, also when an exception passes through. A
/// field width that the host has set and not yet used pads nothing printed meanwhile; it applies to
/// the next output after that.
///
///     const kvx3d::detail::ClassicFormat format(std::cout);
///     std::cout << "Nc = " << Nc << '\n';
///
/// The stream is borrowed and must keep its buffer while the object lives.
class ClassicFormat {
public:
    explicit ClassicFormat(std::ostream& output)
        : stream(output),
          flags(output.flags()),
          precision(output.precision()),
          width(output.width()),
          fill(output.fill()),
          locale(output.getloc()) {
        SetLocale(std::locale::classic());
        // Unit buffering is no matter of format: it decides when the text appears.
        stream.flags(std::ios_base::skipws | std::ios_base::dec | (flags & std::ios_base::unitbuf));
        stream.precision(6);
        stream.width(0);
        stream.fill(' ');
    }

    ~ClassicFormat() {
        SetLocale(locale);
        stream.flags(flags);
        stream.precision(precision);
        stream.width(width);
        stream.fill(fill);
    }

    ClassicFormat(const ClassicFormat&) = delete;
    ClassicFormat& operator=(const ClassicFormat&) = delete;

private:
    /// Changes the locale of the stream and keeps that of its buffer, which decides how the host
    /// encodes its text.
    void SetLocale(const std::locale& newLocale) {
        if (stream.getloc() == newLocale) {
            return;
        }
        std::streambuf* const buffer = stream.rdbuf();
        if (buffer == nullptr) {
            stream.imbue(newLocale);
            return;
        }
        const std::locale bufferLocale = buffer->getloc();
        stream.imbue(newLocale);
        buffer->pubimbue(bufferLocale);
    }

    std::ostream& stream;
    std::ios_base::fmtflags flags;
    std::streamsize precision;
    std::streamsize width;
    char fill;
    std::locale locale;
};

}  // namespace kvx3d::detail

#endif
