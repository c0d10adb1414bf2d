// Texts of cameras, producers and files as a terminal can show them: they may hold anything, and a terminal obeys some
// of it.
#pragma once

#include <string>
#include <string_view>

namespace tool {

/// The text in one line of UTF-8. Control characters, and characters that turn the direction of writing or take no
/// room, become \n, \t, \r or \u001B; bytes that are no UTF-8 become \xE4. Within a JSON text this keeps the JSON
/// valid.
std::string printable(std::string_view text);

/// The same, but line ends and tabs stay as they are.
std::string printableLines(std::string_view text);

}  // namespace tool
