// Numbers as text and back: the one place where the engine converts between them, never under a locale.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "GenApi/Types.h"

namespace GenApiEngine {

/// The number that a text begins with, after blanks: "8", " -3", "+8abc", "0xFF"; of "8.0" and "1e1" what stands before
/// the point or exponent. Hexadecimal digits fill 64 bits, so that 0xFFFFFFFFFFFFFFFF is -1. Nothing if there is no
/// number or it does not fit.
std::optional<std::int64_t> integerPrefix(std::string_view text);
/// The same where the whole text must be the number; blanks around it are allowed.
std::optional<std::int64_t> wholeInteger(std::string_view text);

/// The floating number that a text begins with, after blanks: "1.5", "-2e3", "0x10", "INF", "-inf", "NaN".
std::optional<double> floatPrefix(std::string_view text);
std::optional<double> wholeFloat(std::string_view text);

/// The integer that a description gives: the whole text, decimal or hexadecimal, up to 64 bits (18446744073709551615 is
/// -1); a floating number is rounded.
std::optional<std::int64_t> describedInteger(std::string_view text);
/// The floating number that a description gives: as wholeFloat, but what is too large is infinite.
std::optional<double> describedFloat(std::string_view text);

/// The integer that is nearest to a value, halves away from zero; the outermost one for what is beyond, the least for
/// NaN.
std::int64_t nearestInteger(double value);

/// An integer as its representation shows it: decimal, 0x..., dotted quad, or six bytes with colons.
std::string integerText(std::int64_t value, GENAPI_NAMESPACE::ERepresentation representation);
/// The reverse; decimal and hexadecimal are taken for every representation, the dotted and colon forms for their own.
std::optional<std::int64_t> integerFromText(std::string_view text, GENAPI_NAMESPACE::ERepresentation representation);

/// A double as a stream prints it.
///
/// @param precision  as std::ios::precision; negative for its default of 6
std::string floatText(double value, GENAPI_NAMESPACE::EDisplayNotation notation, std::int64_t precision);
/// The same; where the printed number would be read back as more than the maximum or less than the minimum, half a unit
/// of its last digit is taken off or added before printing.
std::string floatTextWithin(double value, GENAPI_NAMESPACE::EDisplayNotation notation, std::int64_t precision,
                            double minimum, double maximum);

}  // namespace GenApiEngine
