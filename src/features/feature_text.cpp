// Any feature as text, whatever its type.
#include "features/feature_text.h"

#include <array>
#include <charconv>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <system_error>

#include "core/bounded_copy.h"
#include "features/enumerations.h"
#include "features/feature_parameter.h"
#include "features/typed_access.h"
#include "number_text.h"

namespace OVI {
namespace {

constexpr std::size_t kTextSize = 512;
constexpr std::uint32_t kHexNumber = 4;

struct Request {
  std::uint64_t handle;
  const char* name;
  std::uint32_t selector;
  const oviFeatureParameter& record;
};

oviErr getBool(const Request& request, char* text) {
  bool value = false;
  const oviErr code = OVI::oviGetFeatureBool(request.handle, request.name, &value, request.selector);
  boundedCopy(text, kTextSize, value ? "1" : "0");
  return code;
}

oviErr getInt(const Request& request, char* text) {
  std::int64_t value = 0;
  const oviErr code = OVI::oviGetFeatureInt(request.handle, request.name, &value, request.selector);
  const auto bits = static_cast<std::uint64_t>(value);
  if (request.record.representation != kHexNumber)
    std::snprintf(text, kTextSize, "%" PRId64, value);
  else
    std::snprintf(text, kTextSize, bits <= 0xFFFFFFFFU ? "0x%08" PRIx64 : "0x%016" PRIx64, bits);
  return code;
}

// What printf writes in the "C" locale: an application's decimal comma has no place in a feature's text.
oviErr getFloat(const Request& request, char* text) {
  constexpr std::array kFormats = {std::chars_format::general, std::chars_format::fixed, std::chars_format::scientific};
  constexpr int kPrecisionWhenNegative = 6;
  double value = 0;
  const oviErr code = OVI::oviGetFeatureFloat(request.handle, request.name, &value, request.selector);
  if (code != OVI_SUCCESS || request.record.displayNotation >= kFormats.size())
    return code;
  const auto precision = static_cast<std::int8_t>(request.record.displayPrecision);
  const auto [end, error] = std::to_chars(text, text + kTextSize - 1, value, kFormats[request.record.displayNotation],
                                          precision < 0 ? kPrecisionWhenNegative : precision);
  *(error == std::errc() ? end : text) = '\0';
  return code;
}

oviErr getString(const Request& request, char* text) {
  std::size_t size = kTextSize;
  return OVI::oviGetFeatureString(request.handle, request.name, text, &size, request.selector);
}

oviErr getEnum(const Request& request, char* text) {
  oviFeatureParameter entry{};
  const oviErr code = OVI::oviGetFeatureEnum(request.handle, request.name, &entry, request.selector);
  boundedCopy(text, kTextSize, entry.stringValue);
  return code;
}

oviErr getCommand(const Request& request, char* text) {
  bool active = false;
  const oviErr code = OVI::oviIsCommandActive(request.handle, request.name, &active, request.selector);
  boundedCopy(text, kTextSize, active ? "1" : "0");
  return code;
}

/** The register's bytes as they are, up to the first zero byte. */
oviErr getRegister(const Request& request, char* text) {
  std::int64_t length = 0;
  oviErr code = OVI::oviGetFeatureReg(request.handle, request.name, nullptr, &length, request.selector);
  if (code != OVI_SUCCESS)
    return code;
  if (length < 0 || length > static_cast<std::int64_t>(kTextSize))
    return OVI_ERR_INVALID_PARAMETER;
  std::array<char, kTextSize> bytes{};
  code = OVI::oviGetFeatureReg(request.handle, request.name, reinterpret_cast<std::uint8_t*>(bytes.data()), &length,
                               request.selector);
  boundedCopy(text, kTextSize, boundedText(bytes.data(), bytes.size()));
  return code;
}

oviErr setBool(const Request& request, const char* text) {
  const std::string_view value(text);
  if (value != "0" && value != "1")
    return OVI_ERR_INVALID_PARAMETER;
  return OVI::oviSetFeatureBool(request.handle, request.name, value == "1", request.selector);
}

oviErr setInt(const Request& request, const char* text) {
  const auto value = parseInteger(text, UINT64_MAX);
  if (!value)
    return OVI_ERR_INVALID_PARAMETER;
  return OVI::oviSetFeatureInt(request.handle, request.name, static_cast<std::int64_t>(*value), request.selector);
}

oviErr setFloat(const Request& request, const char* text) {
  const std::string_view digits(text);
  double value = 0;
  if (digits.find_first_not_of("0123456789-.") != std::string_view::npos ||
      std::from_chars(digits.data(), digits.data() + digits.size(), value).ec != std::errc())
    return OVI_ERR_INVALID_PARAMETER;
  return OVI::oviSetFeatureFloat(request.handle, request.name, value, request.selector);
}

oviErr setString(const Request& request, const char* text) {
  return OVI::oviSetFeatureString(request.handle, request.name, text, request.selector);
}

oviErr execute(const Request& request, const char* /*text*/) {
  constexpr int kAttempts = 5;
  oviErr code = OVI_ERR_UNKNOWN;
  for (int attempt = 0; attempt < kAttempts && code != OVI_SUCCESS; ++attempt)
    code = OVI::oviExecuteCommand(request.handle, request.name, request.selector);
  return code;
}

/** The caller's buffer is 512 bytes long, and all of them are written, whatever the text in it. */
oviErr setRegister(const Request& request, const char* text) {
  return OVI::oviSetFeatureReg(request.handle, request.name, reinterpret_cast<const std::uint8_t*>(text), kTextSize,
                               request.selector);
}

struct TextAccess {
  std::uint32_t featureType;
  oviErr (*get)(const Request& request, char* text);
  oviErr (*set)(const Request& request, const char* text);
};
constexpr std::array kTextAccess = {
    TextAccess{OVI_FEATURE_BOOLEAN, getBool, setBool},          TextAccess{OVI_FEATURE_INTEGER, getInt, setInt},
    TextAccess{OVI_FEATURE_FLOAT, getFloat, setFloat},          TextAccess{OVI_FEATURE_STRING, getString, setString},
    TextAccess{OVI_FEATURE_ENUMERATION, getEnum, setString},    TextAccess{OVI_FEATURE_COMMAND, getCommand, execute},
    TextAccess{OVI_FEATURE_REGISTER, getRegister, setRegister},
};

const TextAccess* textAccessOf(std::uint32_t featureType) {
  for (const TextAccess& access : kTextAccess) {
    if (access.featureType == featureType)
      return &access;
  }
  return nullptr;
}

}  // namespace

oviErr oviGetFeatureOnModule(std::uint64_t handle, const char* name, char* text, std::uint32_t selector) {
  if (text == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  oviFeatureParameter record;
  oviErr code = OVI::oviGetFeatureParameter(handle, name, &record, selector);
  if (code == OVI_SUCCESS) {
    const TextAccess* const access = textAccessOf(record.featureType);
    code = access != nullptr ? access->get({handle, name, selector, record}, text) : OVI_ERR_INVALID_PARAMETER;
  }
  if (code != OVI_SUCCESS)
    *text = '\0';
  return code;
}

oviErr oviSetFeatureOnModule(std::uint64_t handle, const char* name, const char* text, std::uint32_t selector) {
  if (text == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  oviFeatureParameter record;
  if (const oviErr code = OVI::oviGetFeatureParameter(handle, name, &record, selector); code != OVI_SUCCESS)
    return code;
  const TextAccess* const access = textAccessOf(record.featureType);
  return access != nullptr ? access->set({handle, name, selector, record}, text) : OVI_ERR_INVALID_PARAMETER;
}

oviErr oviGetFeature(std::uint64_t handle, const char* name, char* text) {
  return OVI::oviGetFeatureOnModule(handle, name, text, OVI_MODULE_REMOTE_DEVICE);
}

oviErr oviSetFeature(std::uint64_t handle, const char* name, const char* text) {
  return OVI::oviSetFeatureOnModule(handle, name, text, OVI_MODULE_REMOTE_DEVICE);
}

}  // namespace OVI
