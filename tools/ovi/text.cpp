// Small text helpers: nearest match, shell patterns, numbers in words.
#include "text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <limits>
#include <system_error>

namespace tool {

namespace {

char lower(char c) {
  return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

// Edits (insert, delete, replace, swap of neighbours) that turn one text into the other.
std::size_t editDistance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> older(b.size() + 1);
  std::vector<std::size_t> previous(b.size() + 1);
  std::vector<std::size_t> current(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j)
    previous[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    current[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const bool same = lower(a[i - 1]) == lower(b[j - 1]);
      current[j] = std::min({previous[j] + 1, current[j - 1] + 1, previous[j - 1] + (same ? 0U : 1U)});
      if (i > 1 && j > 1 && lower(a[i - 1]) == lower(b[j - 2]) && lower(a[i - 2]) == lower(b[j - 1]))
        current[j] = std::min(current[j], older[j - 2] + 1);
    }
    std::swap(older, previous);
    std::swap(previous, current);
  }
  return previous[b.size()];
}

bool matchesGlob(std::string_view pattern, std::string_view text) {
  std::size_t p = 0;
  std::size_t t = 0;
  std::size_t star = std::string_view::npos;
  std::size_t restart = 0;
  while (t < text.size()) {
    if (p < pattern.size() && (pattern[p] == '?' || (pattern[p] != '*' && lower(pattern[p]) == lower(text[t])))) {
      ++p;
      ++t;
    } else if (p < pattern.size() && pattern[p] == '*') {
      star = p++;
      restart = t;
    } else if (star != std::string_view::npos) {
      p = star + 1;
      t = ++restart;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*')
    ++p;
  return p == pattern.size();
}

}  // namespace

std::string nearestMatch(std::string_view text, const std::vector<std::string>& candidates) {
  std::size_t best = std::numeric_limits<std::size_t>::max();
  const std::string* found = nullptr;
  for (const std::string& candidate : candidates) {
    const std::size_t distance = editDistance(text, candidate);
    if (distance < best) {
      best = distance;
      found = &candidate;
    }
  }
  constexpr std::size_t kShort = 4;  // Two edits make any word of fewer letters any other.
  const std::size_t tolerated = text.size() < kShort ? 1 : std::max<std::size_t>(2, text.size() / 3);
  return found != nullptr && best <= tolerated ? *found : std::string();
}

bool matchesPattern(std::string_view pattern, std::string_view text) {
  if (pattern.find_first_of("*?") != std::string_view::npos)
    return matchesGlob(pattern, text);
  const auto same = [](char a, char b) { return lower(a) == lower(b); };
  return pattern.empty() || !std::ranges::search(text, pattern, same).empty();
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, [](char x, char y) { return lower(x) == lower(y); });
}

std::size_t displayWidth(std::string_view utf8) {
  return static_cast<std::size_t>(
      std::count_if(utf8.begin(), utf8.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

std::string bytesText(std::uint64_t bytes) {
  static constexpr std::array<const char*, 5> kUnits = {"B", "KiB", "MiB", "GiB", "TiB"};
  auto value = static_cast<double>(bytes);
  std::size_t unit = 0;
  while (value >= 1024.0 && unit + 1 < kUnits.size()) {
    value /= 1024.0;
    ++unit;
  }
  return fixedText(value, unit == 0 ? 0 : 1) + " " + kUnits.at(unit);
}

std::string fixedText(double value, int decimals) {
  std::array<char, 400> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, decimals);
  return {text.data(), end.ptr};
}

std::string systemReason() {
  return errno == 0 ? "no reason is given" : std::generic_category().message(errno);
}

std::vector<std::string> split(std::string_view text, std::string_view separators) {
  std::vector<std::string> parts;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find_first_of(separators, start), text.size());
    if (end > start)
      parts.emplace_back(text.substr(start, end - start));
    start = end + 1;
  }
  return parts;
}

std::string join(const std::vector<std::string>& parts, std::string_view separator) {
  std::string text;
  for (const std::string& part : parts) {
    if (!text.empty())
      text += separator;
    text += part;
  }
  return text;
}

std::optional<bool> booleanFrom(const std::string& text) {
  for (const char* yes : {"1", "true", "on", "yes"})
    if (equalsIgnoringCase(text, yes))
      return true;
  for (const char* no : {"0", "false", "off", "no"})
    if (equalsIgnoringCase(text, no))
      return false;
  return std::nullopt;
}

}  // namespace tool
