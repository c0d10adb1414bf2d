// Narrow text is UTF-8 here.
#include <cctype>
#include <cstdlib>
#include <string_view>

#include "platform/ascii.h"
#include "platform/platform.h"

namespace OVI::platform {

namespace {

bool startsWithIgnoringCase(std::string_view text, std::string_view prefix) {
  return equalsIgnoringCase(text.substr(0, prefix.size()), prefix);
}

std::string decodePercents(std::string_view text) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%' && i + 2 < text.size() && std::isxdigit(static_cast<unsigned char>(text[i + 1])) != 0 &&
        std::isxdigit(static_cast<unsigned char>(text[i + 2])) != 0) {
      decoded.push_back(static_cast<char>(std::strtol(std::string(text.substr(i + 1, 2)).c_str(), nullptr, 16)));
      i += 2;
    } else {
      decoded.push_back(text[i]);
    }
  }
  return decoded;
}

}  // namespace

std::string urlToPath(const std::string& url) {
  constexpr std::string_view kScheme = "file:";
  std::string_view rest = url;
  if (!startsWithIgnoringCase(rest, kScheme)) {
    return {};
  }
  rest.remove_prefix(kScheme.size());
  rest = rest.substr(0, rest.find('?'));
  if (rest.starts_with("//")) {
    rest.remove_prefix(2);
    constexpr std::string_view kThisMachine = "localhost/";
    if (startsWithIgnoringCase(rest, kThisMachine)) {
      rest.remove_prefix(kThisMachine.size() - 1);
    }
    if (!rest.starts_with('/')) {
      return {};  // A file of another machine.
    }
  }
  return decodePercents(rest);
}

std::string narrow(const std::wstring& text) {
  constexpr std::uint32_t kReplacement = 0xFFFD;
  constexpr std::uint32_t kLast = 0x10FFFF;
  std::string utf8;
  const auto append = [&utf8](std::uint32_t lead, std::uint32_t code, int following) {
    utf8.push_back(static_cast<char>(lead | (code >> (6 * following))));
    for (int shift = 6 * (following - 1); shift >= 0; shift -= 6) {
      utf8.push_back(static_cast<char>(0x80U | ((code >> shift) & 0x3FU)));
    }
  };
  for (const wchar_t character : text) {
    auto code = static_cast<std::uint32_t>(character);  // NOLINT(bugprone-signed-char-misuse): it is no char.
    if (code > kLast || (code >= 0xD800 && code <= 0xDFFF)) {
      code = kReplacement;
    }
    if (code < 0x80) {
      utf8.push_back(static_cast<char>(code));
    } else if (code < 0x800) {
      append(0xC0, code, 1);
    } else if (code < 0x10000) {
      append(0xE0, code, 2);
    } else {
      append(0xF0, code, 3);
    }
  }
  return utf8;
}

std::string toUtf8(std::string narrowText) {
  return narrowText;
}

std::string fromUtf8(std::string utf8Text) {
  return utf8Text;
}

void debugOutput(const std::string& /*text*/) noexcept {}

void debugOutput(const std::wstring& /*text*/) noexcept {}

}  // namespace OVI::platform
