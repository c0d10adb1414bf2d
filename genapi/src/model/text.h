// How texts of a description are read: blanks, words, encodings.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace GenApiEngine {

constexpr bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

inline std::string_view trim(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) {
    text.remove_prefix(1);
  }
  while (!text.empty() && isBlank(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}

/// So many bytes can be read behind the NUL of every text of a description, which lets texts be read in words.
inline constexpr std::size_t kTextSlack = 3 * sizeof(std::uint64_t) - 1;

/// A word of a text's bytes, wherever it lies.
template<class Word>
std::uint64_t wordAt(const char* text) {
  Word word;
  std::memcpy(&word, text, sizeof word);
  return word;
}

/// The high bits of a word's bytes that are zero; the lowest of the bits is exact.
constexpr std::uint64_t zerosIn(std::uint64_t word) {
  return (word - 0x0101010101010101U) & ~word & 0x8080808080808080U;
}

/// The length of a text that ends with a NUL, behind which kTextSlack bytes can be read; most are short.
inline std::size_t textLength(const char* text) {
  for (std::size_t at = 0; at < kTextSlack + 1; at += sizeof(std::uint64_t)) {
    if (const std::uint64_t zeros = zerosIn(wordAt<std::uint64_t>(text + at)); zeros != 0) {
      return at + static_cast<std::size_t>(std::countr_zero(zeros)) / 8;
    }
  }
  return kTextSlack + 1 + std::strlen(text + kTextSlack + 1);
}

/// A fast hash of a short text. Its last word overlaps the one before, so that no byte is left over.
inline std::uint32_t hashText(std::string_view text) {
  constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15ULL;
  const char* at = text.data();
  const std::size_t size = text.size();
  std::uint64_t hash = size * kMultiplier;
  const auto mix = [&hash](std::uint64_t word) {
    hash = (hash ^ word) * kMultiplier;
    hash ^= hash >> 32;
  };
  if (size >= 8) {
    const char* const last = at + size - 8;
    for (; at < last; at += 8) {
      mix(wordAt<std::uint64_t>(at));
    }
    mix(wordAt<std::uint64_t>(last));
  } else if (size >= 4) {
    mix(wordAt<std::uint32_t>(at) | (wordAt<std::uint32_t>(at + size - 4) << 32));
  } else if (size > 0) {
    mix(wordAt<std::uint8_t>(at) | (wordAt<std::uint8_t>(at + size / 2) << 8) |
        (wordAt<std::uint8_t>(at + size - 1) << 16));
  }
  return static_cast<std::uint32_t>((hash * kMultiplier) >> 32);
}

/// Whether the bytes at `text` are those of the other text; in words, as hashText does.
inline bool sameText(const char* text, std::string_view other) {
  const char* at = other.data();
  const std::size_t size = other.size();
  if (size >= 8) {
    const char* const last = at + size - 8;
    for (; at < last; at += 8, text += 8) {
      if (wordAt<std::uint64_t>(at) != wordAt<std::uint64_t>(text)) {
        return false;
      }
    }
    return wordAt<std::uint64_t>(last) == wordAt<std::uint64_t>(text + (last - at));
  }
  if (size >= 4) {
    return wordAt<std::uint32_t>(at) == wordAt<std::uint32_t>(text) &&
           wordAt<std::uint32_t>(at + size - 4) == wordAt<std::uint32_t>(text + size - 4);
  }
  return size == 0 || (at[0] == text[0] && at[size / 2] == text[size / 2] && at[size - 1] == text[size - 1]);
}

bool equalsIgnoringCase(std::string_view a, std::string_view b);

/// Yes, true and 1, in any case.
bool parseYesNo(std::string_view text, bool otherwise);

/// Text as UTF-8: bytes that are no UTF-8 are taken for Latin-1.
std::string toUtf8(std::string_view text);

/// A description ready to be parsed in place: UTF-8, cut to its document, NUL and kTextSlack bytes at the end.
struct DocumentText {
  std::unique_ptr<char[]> data;  ///< one byte in front of the text is reserved, so that no text has the offset 0
  std::size_t size = 0;          ///< of the text alone
  bool isPreceded = false;       ///< text that is no XML stands before it
  std::size_t firstNoUtf8 = std::string_view::npos;  ///< the first byte that is taken for Latin-1
  bool isFollowed = false;                           ///< something that is no comment was cut off behind it
};

/// What prepareDocument copies of a description that it need not convert.
std::optional<std::string_view> plainText(const void* data, std::size_t size, bool cutAtFirstEnd);

/// Copies a description, converting UTF-16, UTF-32 and declared Latin-1, and cuts what follows the document: behind the
/// first end tag of its root, or, while that need not be, only when the text does not end with such a tag.
DocumentText prepareDocument(const void* data, std::size_t size, bool cutAtFirstEnd);

}  // namespace GenApiEngine
