#ifndef KVX3D_TESTS_SUPPORT_HOSTILE_FORMAT_H
#define KVX3D_TESTS_SUPPORT_HOSTILE_FORMAT_H

#include <ios>
#include <locale>
#include <ostream>

/// Sets every format setting of a stream to something other than its default for the lifetime of
/// the object, as a host might leave its streams: hexadecimal integers with base and sign, two
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
