// Small text helpers: nearest match, shell patterns, numbers in words.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// The candidate that is most like the text, without regard to case; empty when none is like it.
std::string nearestMatch(std::string_view text, const std::vector<std::string>& candidates);

/// Shell pattern with * and ?, without regard to case. A pattern without either matches any text that contains it.
bool matchesPattern(std::string_view pattern, std::string_view text);

bool equalsIgnoringCase(std::string_view a, std::string_view b);

/// Columns that the UTF-8 text takes in a terminal, counted as code points.
std::size_t displayWidth(std::string_view utf8);

/// 1536 as "1.5 KiB".
std::string bytesText(std::uint64_t bytes);

/// A fixed number of decimals, with a point whatever the locale.
std::string fixedText(double value, int decimals);

/// What the system says about the failure of the call before, by errno.
std::string systemReason();

/// The parts between any of the separators, without empty ones.
std::vector<std::string> split(std::string_view text, std::string_view separators);

std::string join(const std::vector<std::string>& parts, std::string_view separator);

/// True for 1, true, on and yes, false for 0, false, off and no, in whatever letters; nothing for anything else.
std::optional<bool> booleanFrom(const std::string& text);

}  // namespace tool
