// Text between the ANSI code page, UTF-8 and wide characters, and the debugger's channel.
#include "windows/text.h"

#include <algorithm>
#include <utility>

#include "platform/platform.h"

namespace OVI::platform {

namespace {

bool isAscii(const std::string& text) {
  return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace

std::wstring widen(const std::string& text, unsigned codePage) {
  if (text.empty())
    return {};
  const int size = MultiByteToWideChar(codePage, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(size), L'\0');
  MultiByteToWideChar(codePage, 0, text.data(), static_cast<int>(text.size()), wide.data(), size);
  return wide;
}

std::string narrowTo(const std::wstring& text, unsigned codePage) {
  if (text.empty())
    return {};
  const int length = static_cast<int>(text.size());
  const int size = WideCharToMultiByte(codePage, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string result(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(codePage, 0, text.data(), length, result.data(), size, nullptr, nullptr);
  return result;
}

std::string narrow(const std::wstring& text) {
  return narrowTo(text, CP_ACP);
}

std::string toUtf8(std::string narrowText) {
  return isAscii(narrowText) ? std::move(narrowText) : narrowTo(widen(narrowText, CP_ACP), CP_UTF8);
}

std::string fromUtf8(std::string utf8Text) {
  if (isAscii(utf8Text) || MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8Text.data(),
                                               static_cast<int>(utf8Text.size()), nullptr, 0) == 0)
    return utf8Text;
  return narrowTo(widen(utf8Text, CP_UTF8), CP_ACP);
}

void debugOutput(const std::wstring& text) noexcept {
  OutputDebugStringW(text.c_str());
}

void debugOutput(const std::string& text) noexcept {
  OutputDebugStringA(text.c_str());
}

}  // namespace OVI::platform
