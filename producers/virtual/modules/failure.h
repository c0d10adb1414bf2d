// How a GenTL call fails inside the producer: an exception with the code and a text that names what was wrong.
#pragma once

#include <gentl_interface/GenTL.h>

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace vcam {

class Failure : public std::exception {
 public:
  Failure(GC_ERROR code, std::string text) : code_(code), text_(std::move(text)) {}

  GC_ERROR code() const { return code_; }
  const std::string& text() const { return text_; }
  const char* what() const noexcept override { return text_.c_str(); }

 private:
  GC_ERROR code_;
  std::string text_;
};

namespace detail {
inline void append(std::string& to, std::string_view text) {
  to += text;
}
template<class Number>
requires std::is_arithmetic_v<Number>
void append(std::string& to, Number number) {
  to += std::to_string(number);
}
}  // namespace detail

// Texts and numbers, one after the other.
template<class... Pieces>
std::string join(const Pieces&... pieces) {
  std::string text;
  (detail::append(text, pieces), ...);
  return text;
}

// Hexadecimal digits, upper case, no prefix; at least `digits` of them.
std::string hexadecimal(std::uint64_t value, std::size_t digits = 1);

template<class... Pieces>
[[noreturn]] void fail(GC_ERROR code, const Pieces&... pieces) {
  throw Failure(code, join(pieces...));
}

// A pointer that no caller means: none, or all ones.
inline bool isBad(const void* pointer) {
  const auto address = reinterpret_cast<std::uintptr_t>(pointer);
  return address == 0 || address == ~std::uintptr_t{0};
}

// Refuses a pointer that may be left out but not be all ones.
template<class T>
void requireIfGiven(T* pointer, std::string_view name) {
  if (pointer != nullptr && isBad(static_cast<const void*>(pointer))) {
    fail(GC_ERR_INVALID_PARAMETER, name, " is not a valid pointer");
  }
}

// Refuses a pointer that must be given.
template<class T>
void require(T* pointer, std::string_view name) {
  if (isBad(static_cast<const void*>(pointer))) {
    fail(GC_ERR_INVALID_PARAMETER, name, " is not a valid pointer");
  }
}

}  // namespace vcam
