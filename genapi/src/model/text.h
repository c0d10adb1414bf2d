// How texts of a description are read: blanks, numbers in every spelling found in the field, encodings.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace GenApiEngine {

std::string_view trim(std::string_view text);
bool equalsIgnoringCase(std::string_view a, std::string_view b);

/// Decimal or hexadecimal, up to 64 bits (0xFFFFFFFFFFFFFFFF is -1); a float text is rounded. The whole text must be a
/// number.
std::optional<std::int64_t> parseInteger(std::string_view text);

/// A float in any spelling, INF and NaN included, or a hexadecimal integer.
std::optional<double> parseNumber(std::string_view text);

/// Yes, true and 1, in any case.
bool parseYesNo(std::string_view text, bool otherwise);

/// Text as UTF-8: bytes that are no UTF-8 are taken for Latin-1.
std::string toUtf8(std::string_view text);

/// A description ready to be parsed in place: UTF-8, cut to its document, NUL at the end.
struct DocumentText {
  std::unique_ptr<char[]> data;  ///< one byte in front of the text is reserved, so that no text has the offset 0
  std::size_t size = 0;          ///< without the byte in front and the NUL at the end
};

/// Copies a description, converting UTF-16, UTF-32 and declared Latin-1, and cuts what follows the document: behind the
/// first end tag of its root, or, while that need not be, only when the text does not end with such a tag.
DocumentText prepareDocument(const void* data, std::size_t size, bool cutAtFirstEnd);

}  // namespace GenApiEngine
