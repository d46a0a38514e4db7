#include "host_link/detail/classic_format.h"

#include <gtest/gtest.h>

#include <ios>
#include <locale>
#include <sstream>
#include <stdexcept>

#include "tests/support/hostile_format.h"

using kvx3d::detail::ClassicFormat;

namespace {

TEST(ClassicFormat, PrintsNumbersAsAnUntouchedStreamDoes) {
    std::ostringstream untouched;
    untouched << 1234567 << ' ' << -1.0 / 3.0 << ' ' << 1e10 << ' ' << true;
    std::ostringstream stream;
    const HostileFormat hostile(stream);

    const ClassicFormat format(stream);
    stream << 1234567 << ' ' << -1.0 / 3.0 << ' ' << 1e10 << ' ' << true;

    EXPECT_EQ(stream.str(), untouched.str());
}

TEST(ClassicFormat, RestoresEverySettingAtTheEnd) {
    std::ostringstream stream;
    const HostileFormat hostile(stream);

    {
        const ClassicFormat format(stream);
        stream << 1.5;
        EXPECT_FALSE(hostile.IsUnchanged());
    }

    EXPECT_TRUE(hostile.IsUnchanged());
}

TEST(ClassicFormat, RestoresEverySettingWhenAnExceptionPasses) {
    std::ostringstream stream;
    const HostileFormat hostile(stream);

    try {
        const ClassicFormat format(stream);
        throw std::runtime_error("a print fails");
    } catch (const std::runtime_error&) {
    }

    EXPECT_TRUE(hostile.IsUnchanged());
}

TEST(ClassicFormat, KeepsUnitBuffering) {
    std::ostringstream stream;
    stream.setf(std::ios_base::unitbuf);

    const ClassicFormat format(stream);

    EXPECT_NE(stream.flags() & std::ios_base::unitbuf, std::ios_base::fmtflags());
}

TEST(ClassicFormat, LeavesTheLocaleOfTheBufferAlone) {
    std::ostringstream stream;
    const HostileFormat hostile(stream);
    const std::locale bufferLocale = stream.rdbuf()->getloc();

    const ClassicFormat format(stream);

    EXPECT_EQ(stream.getloc(), std::locale::classic());
    EXPECT_EQ(stream.rdbuf()->getloc(), bufferLocale);
}

TEST(ClassicFormat, AcceptsAStreamWithoutABuffer) {
    std::ostream stream(nullptr);
    stream.imbue(std::locale(std::locale::classic(), new std::numpunct<char>));

    const ClassicFormat format(stream);

    EXPECT_EQ(stream.getloc(), std::locale::classic());
}

}  // namespace
