// A small dot-matrix font for what the cameras write into their pictures.
#pragma once

#include <string_view>

namespace vcam {

constexpr unsigned kGlyphWidth = 5;
constexpr unsigned kGlyphHeight = 7;
constexpr unsigned kGlyphAdvance = 6;  // width and gap

// Whether the dot at a column and row of a text's first line is set; text consists of digits, capital letters, blank
// and
// "-.#:", anything else is blank.
bool textDot(std::string_view text, unsigned column, unsigned row);

}  // namespace vcam
