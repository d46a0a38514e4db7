#include "vtk_output/detail/number_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <locale>
#include <random>
#include <sstream>

using kvx3d::detail::numberText;

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// The text that a stream with default format prints.
template <class Number>
std::string StreamText(Number value) {
    std::ostringstream out;
    out.imbue(std::locale::classic());
    out << value;
    return out.str();
}

/// Compares a value and its negative with the text of the stream.
void CheckBothSigns(double value) {
    ASSERT_EQ(numberText(value), StreamText(value));
    ASSERT_EQ(numberText(-value), StreamText(-value));
}

TEST(NumberText, IsTheTextOfTheStream) {
    EXPECT_EQ(numberText(0), "0");
    EXPECT_EQ(numberText(-2147483647 - 1), "-2147483648");
    EXPECT_EQ(numberText(0.1), "0.1");
    EXPECT_EQ(numberText(1.0), "1");
    EXPECT_EQ(numberText(100000.0), "100000");
    EXPECT_EQ(numberText(1000000.0), "1e+06");
    EXPECT_EQ(numberText(1234567.0), "1.23457e+06");
    EXPECT_EQ(numberText(0.0001), "0.0001");
    EXPECT_EQ(numberText(0.00001), "1e-05");
    EXPECT_EQ(numberText(-1.0 / 3), "-0.333333");
    EXPECT_EQ(numberText(999999.5), "1e+06");
    EXPECT_EQ(numberText(1e300), "1e+300");
}

TEST(NumberText, KeepsTheSignOfZeroAndOfNaN) {
    EXPECT_EQ(numberText(0.0), "0");
    EXPECT_EQ(numberText(-0.0), "-0");
    EXPECT_EQ(numberText(inf), "inf");
    EXPECT_EQ(numberText(-inf), "-inf");
    EXPECT_EQ(numberText(std::copysign(nan, 1.0)), StreamText(std::copysign(nan, 1.0)));
    EXPECT_EQ(numberText(std::copysign(nan, -1.0)), StreamText(std::copysign(nan, -1.0)));
}

TEST(NumberText, RoundsTiesLikeTheStream) {
    for (const double tie : {100000.5, 100001.5, 1000.125, 1000.375, 0.5, 2.5, 123456.5, 999999.5,
                             12345.25, 1048576.5, 4503599627370497.5}) {
        CheckBothSigns(tie);
        CheckBothSigns(std::nextafter(tie, inf));
        CheckBothSigns(std::nextafter(tie, 0.0));
    }
}

TEST(NumberText, AgreesAroundEveryPowerOfTen) {
    for (int exponent = -323; exponent <= 308; ++exponent) {
        const double power = std::strtod(("1e" + std::to_string(exponent)).c_str(), nullptr);
        CheckBothSigns(power);
        CheckBothSigns(std::nextafter(power, inf));
        CheckBothSigns(std::nextafter(power, 0.0));
        CheckBothSigns(power * 0.9999995);
        CheckBothSigns(power * 9.999995);
        CheckBothSigns(power * 1.234565);
    }
}

TEST(NumberText, AgreesAtTheEndsOfTheRange) {
    using Limits = std::numeric_limits<double>;
    for (const double value :
         {Limits::max(), Limits::min(), Limits::denorm_min(), std::nextafter(Limits::min(), 0.0)}) {
        CheckBothSigns(value);
    }
}

TEST(NumberTextAgainstStream, AgreesOnNumbersWithRandomBits) {
    std::mt19937_64 random(101);
    for (int i = 0; i < 200000; ++i) {
        const std::uint64_t bits = random();
        double value;
        std::memcpy(&value, &bits, sizeof value);
        ASSERT_EQ(numberText(value), StreamText(value)) << std::hexfloat << value;
    }
}

TEST(NumberTextAgainstStream, AgreesOnNumbersOfOrdinarySize) {
    std::mt19937_64 random(102);
    std::uniform_real_distribution<double> mantissa(1, 10);
    for (int i = 0; i < 400000; ++i) {
        const double value = mantissa(random) * std::pow(10.0, i % 40 - 20);
        ASSERT_EQ(numberText(value), StreamText(value)) << std::hexfloat << value;
    }
}

TEST(NumberTextAgainstStream, AgreesOnTiesAndShortDecimals) {
    std::mt19937_64 random(103);
    for (int i = 0; i < 400000; ++i) {
        const double whole = static_cast<double>(random() % 20000000);
        for (const double value : {(whole + 0.5) / 1000, whole / 128, whole / 1e5, whole}) {
            ASSERT_EQ(numberText(value), StreamText(value)) << std::hexfloat << value;
        }
    }
}

TEST(NumberTextAgainstStream, AgreesOnIntegers) {
    std::mt19937 random(104);
    for (int i = 0; i < 100000; ++i) {
        const int value = static_cast<int>(random());
        ASSERT_EQ(numberText(value), StreamText(value));
    }
}

/// A locale with a decimal comma and grouped thousands.
class Comma : public std::numpunct<char> {
protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(NumberText, IgnoresTheGlobalLocale) {
    const std::locale before = std::locale::global(std::locale(std::locale(), new Comma));

    const std::string real = numberText(1.5);
    const std::string whole = numberText(1234567);
    std::locale::global(before);

    EXPECT_EQ(real, "1.5");
    EXPECT_EQ(whole, "1234567");
}

}  // namespace
