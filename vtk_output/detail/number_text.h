#ifndef KVX3D_VTK_OUTPUT_DETAIL_NUMBER_TEXT_H
#define KVX3D_VTK_OUTPUT_DETAIL_NUMBER_TEXT_H

#include <string>

/// Numbers as text, in files and in file names: byte for byte what a default-formatted stream
/// prints in the classic locale (six significant digits for a double). The host's global locale
/// plays no part: a reader would take "0,5" for 0 and "1.000" for 1.
std::string numberText(int value);
std::string numberText(double value);

/// Room that one number needs at most, six digits, sign, point and exponent included.
constexpr int maxNumberText = 16;

/// The same text written to `out`, without a zero behind it.
/// @return the end of the text
char* writeNumberText(char* out, int value);
char* writeNumberText(char* out, double value);

#endif
