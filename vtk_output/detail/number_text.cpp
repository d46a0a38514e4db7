#include "vtk_output/detail/number_text.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>

// A double is written in these steps, here for 0.00123456789:
//
//     ExponentGuess    -3                the decimal exponent, from the binary exponent
//     Scaled           123456.789        six digits before the point, rounded once
//     SixDigits        123457            rounded to an integer; a tie goes to the standard library
//     DigitText        "123457"          as characters, without zeros at the end
//     WriteGeneral     "0.00123457"      with the point, and with an exponent if necessary
//
// The plain form is the formatted insertion into a stream, as in plain/plain_vtu_writer.h.

namespace kvx3d::detail {

namespace {

constexpr int digitsN = 6;

/// All powers of ten that a double holds exactly; the standard library handles larger ones.
constexpr double powerOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                 1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

/// Decimal exponent of a normal positive `a`, or that exponent minus 1.
int ExponentGuess(double a) {
    std::uint64_t bits;
    std::memcpy(&bits, &a, sizeof bits);
    const int binary = static_cast<int>(bits >> 52) - 1023;
    constexpr int scale = 1 << 18;
    constexpr int log10Of2 = 78913;  // 0.30103 * scale
    const int product = binary * log10Of2;
    return product >= 0 ? product / scale : -((scale - 1 - product) / scale);
}

/// a / 10^(exponent - 5), rounded once: six digits before the point if `exponent` is that of `a`.
double Scaled(double a, int exponent) {
    const int shift = digitsN - 1 - exponent;
    return shift >= 0 ? a * powerOfTen[shift] : a / powerOfTen[-shift];
}

/// Decimal exponent and the six rounded digits of `a`, which lies between 1e-12 and 1e15.
///
/// Returns false if the result of Scaled() is exactly halfway between two integers: its own
/// rounding may then hide on which side of the tie `a` lies. Everywhere else the side is correct,
/// because Scaled() is monotonic and a tie is itself a double.
bool SixDigits(double a, int& exponent, int& digits) {
    exponent = ExponentGuess(a);
    double scaled = Scaled(a, exponent);
    if (scaled >= 1e6) {
        scaled = Scaled(a, ++exponent);
    }
    digits = static_cast<int>(scaled);
    const double rest = scaled - digits;
    if (rest == 0.5 || scaled < 1e5) {
        return false;
    }
    digits += rest > 0.5;
    if (digits == 1000000) {
        digits = 100000;
        ++exponent;
    }
    return true;
}

/// Writes the six digits as text and returns their number without the zeros at the end.
int DigitText(int digits, char* text) {
    for (int i = digitsN - 1; i >= 0; --i, digits /= 10) {
        text[i] = static_cast<char>('0' + digits % 10);
    }
    int n = digitsN;
    while (n > 1 && text[n - 1] == '0') {
        --n;
    }
    return n;
}

/// Writes the first `n` of six digits with a point after the first `before` and returns the end of
/// the text. Always copies the same number of bytes, which is faster than copying `n`.
char* WriteWithPoint(char* out, const char* text, int n, int before) {
    std::memcpy(out, text, digitsN);
    if (n <= before) {
        return out + before;
    }
    out[before] = '.';
    std::memcpy(out + before + 1, text + before, digitsN);
    return out + n + 1;
}

/// Writes in general notation: fixed for exponents -4 to 5, otherwise scientific.
char* WriteGeneral(char* out, int digits, int exponent) {
    char text[2 * digitsN] = {};
    const int n = DigitText(digits, text);
    if (exponent < -4 || exponent >= digitsN) {
        out = WriteWithPoint(out, text, n, 1);
        const int size = exponent < 0 ? -exponent : exponent;
        *out++ = 'e';
        *out++ = exponent < 0 ? '-' : '+';
        *out++ = static_cast<char>('0' + size / 10);
        *out++ = static_cast<char>('0' + size % 10);
        return out;
    }
    if (exponent < 0) {
        std::memcpy(out, "0.000", 5);
        std::memcpy(out + 1 - exponent, text, digitsN);
        return out + 1 - exponent + n;
    }
    return WriteWithPoint(out, text, n, exponent + 1);
}

}  // namespace

std::string numberText(int value) {
    char text[maxNumberText];
    return std::string(text, writeNumberText(text, value));
}

std::string numberText(double value) {
    char text[maxNumberText];
    return std::string(text, writeNumberText(text, value));
}

char* writeNumberText(char* out, int value) {
    return std::to_chars(out, out + maxNumberText, value).ptr;
}

// For numbers of ordinary size the method above gives the digits of std::to_chars in a fraction of
// the time. std::to_chars handles all other numbers, and those whose last digit is not certain.
char* writeNumberText(char* out, double value) {
    const double a = std::fabs(value);
    int exponent;
    int digits;
    if (a >= 1e-12 && a < 1e15 && SixDigits(a, exponent, digits)) {
        *out = '-';
        return WriteGeneral(out + (value < 0), digits, exponent);
    }
    if (value == 0 && !std::signbit(value)) {
        *out = '0';
        return out + 1;
    }
    return std::to_chars(out, out + maxNumberText, value, std::chars_format::general, digitsN).ptr;
}

}  // namespace kvx3d::detail
