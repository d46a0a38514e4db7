#ifndef KVX3D_VTK_OUTPUT_DETAIL_NUMBER_TEXT_H
#define KVX3D_VTK_OUTPUT_DETAIL_NUMBER_TEXT_H

#include <string>

namespace kvx3d::detail {

/// Numbers as text, for files and file names: byte for byte what a stream with default format
/// prints in the classic locale (six significant digits for a double). The global locale of the
/// host has no influence, because readers would take "0,5" for 0 and "1.000" for 1.
std::string numberText(int value);
std::string numberText(double value);

/// Largest number of characters that one number needs: six digits, sign, point and exponent.
constexpr int maxNumberText = 16;

/// Writes the same text to `out`, which must have room for maxNumberText characters. No
/// terminating zero is written.
/// @return the end of the text
char* writeNumberText(char* out, int value);
char* writeNumberText(char* out, double value);

}  // namespace kvx3d::detail

#endif
