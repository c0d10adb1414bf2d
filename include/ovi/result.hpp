/// @file
/// Results in C++: codes as std::error_code, failures as exceptions; and time-outs.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>

#include "ovi/ovi.h"

namespace ovi {

/// The category of the library's codes, for std::error_code.
inline const std::error_category& category() {
  class Category final : public std::error_category {
    const char* name() const noexcept override { return "ovi"; }
    std::string message(int code) const override {
      char text[512] = {};
      oviGetErrorDescription(code, text, sizeof(text));
      constexpr std::string_view noName = "ErrorNumber not yet defined";
      if (text != noName)
        return text;
      constexpr std::size_t prefixLength = 5;  // Of "NOK: IO-Error"; these codes have a sentence, but no name.
      if (get_error_string(code, text) == 0)
        return text + prefixLength;
      oviGetKitharaErrDescription(code, text, sizeof(text));
      return text != noName ? text : "error " + std::to_string(code);
    }
  };
  static const Category instance;
  return instance;
}

/// A result of the C interface as a std::error_code.
inline std::error_code makeErrorCode(oviErr code) {
  return {code, category()};
}

/// The codes that programs decide by; a std::error_code compares with them.
enum class Errc : oviErr {
  kNotFound = OVI_ERR_NOT_FOUND,
  kInvalidParameter = OVI_ERR_INVALID_PARAMETER,
  kTimeout = OVI_ERR_TIMEOUT,
  kAborted = OVI_ERR_ABORTED,
  kNoAccess = OVI_ERR_NO_ACCESS,
  kInvalidBuffer = OVI_ERR_INVALID_BUFFER,
  kResourceInUse = OVI_ERR_RESOURCE_IN_USE,
  kNotImplemented = OVI_ERR_NOT_IMPLEMENTED,
  kIo = OVI_ERR_IO,
  kBusy = OVI_ERR_BUSY
};
/// What makes `error == ovi::Errc::kTimeout` work.
inline std::error_code make_error_code(Errc code) {
  return makeErrorCode(static_cast<oviErr>(code));
}

}  // namespace ovi

/// @cond
template<>
struct std::is_error_code_enum<ovi::Errc> : std::true_type {};
/// @endcond

namespace ovi {

/// A function of the library failed; code() says how, what() names the function and the thing.
class Error : public std::system_error {
 public:
  /// The result, and the function with its subject.
  Error(oviErr code, const std::string& what) : std::system_error(makeErrorCode(code), what), result_(code) {}
  /// The result as the C interface gave it.
  oviErr result() const noexcept { return result_; }

 private:
  oviErr result_;
};

/// Throws Error unless the code is success. Also for calls of ovi.h that have no counterpart here.
inline void check(oviErr code, const char* function, std::string_view subject = {}) {
  if (code == OVI_SUCCESS)
    return;
  std::string text = function;
  if (!subject.empty())
    text.append("(").append(subject).append(")");
  throw Error(code, text);
}

/// Time-outs.
using Milliseconds = std::chrono::milliseconds;

/// A time-out that never passes.
inline constexpr Milliseconds kForever = Milliseconds::max();

/// @cond
namespace detail {

inline std::uint64_t timeoutValue(Milliseconds timeout) {
  if (timeout == kForever)
    return OVI_INFINITE_TIMEOUT;
  return timeout.count() < 0 ? 0U : static_cast<std::uint64_t>(timeout.count());
}

}  // namespace detail
/// @endcond

}  // namespace ovi
