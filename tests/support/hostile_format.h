#ifndef KVX3D_TESTS_SUPPORT_HOSTILE_FORMAT_H
#define KVX3D_TESTS_SUPPORT_HOSTILE_FORMAT_H

#include <ios>
#include <locale>
#include <ostream>

/// Changes every format setting of a stream from its default during the lifetime of the object, as
/// a host might do with its streams: hexadecimal integers with base and sign, two
/// digits in scientific notation, words for booleans, left adjustment, a field width that is still
/// pending, a fill character, and a locale with thousands separators and a decimal comma.
class HostileFormat {
public:
    explicit HostileFormat(std::ostream& output);
    ~HostileFormat();
    HostileFormat(const HostileFormat&) = delete;
    HostileFormat& operator=(const HostileFormat&) = delete;

    /// True if the stream still has the settings that the constructor made.
    bool IsUnchanged() const;

private:
    std::ostream& stream;
    std::ios savedFormat;
    std::locale hostileLocale;
    std::locale bufferLocale;
};

#endif
