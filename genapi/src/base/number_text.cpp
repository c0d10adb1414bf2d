// Conversion between numbers and text.
#include "base/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

#include "base/limits.h"

namespace GenApiEngine {
namespace {

using namespace GENAPI_NAMESPACE;

bool isSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

std::string_view withoutLeadingBlanks(std::string_view text) {
  while (!text.empty() && isSpace(text.front()))
    text.remove_prefix(1);
  return text;
}
bool onlyBlanks(std::string_view text) {
  return std::ranges::all_of(text, isSpace);
}

// Takes a sign off the front.
bool takeSign(std::string_view& text) {
  if (text.empty() || (text.front() != '-' && text.front() != '+'))
    return false;
  const bool negative = text.front() == '-';
  text.remove_prefix(1);
  return negative;
}

bool takeHexMark(std::string_view& text) {
  constexpr std::string_view kHexDigitsOfBothCases = "0123456789abcdefABCDEF";
  if (text.size() < 3 || text[0] != '0' || (text[1] != 'x' && text[1] != 'X') ||
      kHexDigitsOfBothCases.find(text[2]) == std::string_view::npos)
    return false;
  text.remove_prefix(2);
  return true;
}

// A number at the front of a text, and what follows it.
template<class Number>
struct Parsed {
  Number value{};
  std::string_view rest;
};

// What a character is worth as a digit of a base up to 16; more than any base for what is no digit.
constexpr std::array<std::uint8_t, 256> kDigitValues = [] {
  std::array<std::uint8_t, 256> values{};
  values.fill(0xFF);
  for (std::uint8_t i = 0; i < 10; ++i)
    values[static_cast<std::size_t>('0' + i)] = i;
  for (std::uint8_t i = 0; i < 6; ++i)
    values[static_cast<std::size_t>('a' + i)] = values[static_cast<std::size_t>('A' + i)] = 10 + i;
  return values;
}();

// The digits of an integer, 64 bits of them at most.
struct Digits {
  std::uint64_t magnitude = 0;
  const char* end = nullptr;  // null when there is no number
  bool negative = false;
  bool hex = false;

  std::int64_t value() const { return static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude); }
};

Digits parseDigits(std::string_view text) {
  text = withoutLeadingBlanks(text);
  Digits digits;
  digits.negative = takeSign(text);
  digits.hex = takeHexMark(text);
  const unsigned base = digits.hex ? 16 : 10;
  const char* const begin = text.data();
  const char* const end = begin + text.size();
  const char* at = begin;
  for (; at != end && kDigitValues[static_cast<unsigned char>(*at)] < base; ++at)
    digits.magnitude = digits.magnitude * base + kDigitValues[static_cast<unsigned char>(*at)];
  constexpr std::ptrdiff_t kDigitsThatFit = 16;
  if (at - begin > kDigitsThatFit) {
    const auto [last, failure] = std::from_chars(begin, end, digits.magnitude, static_cast<int>(base));
    digits.end = failure == std::errc() ? last : nullptr;
  } else if (at != begin) {
    digits.end = at;
  }
  return digits;
}

std::string_view restOf(std::string_view text, const char* end) {
  return text.substr(static_cast<std::size_t>(end - text.data()));
}

// A decimal number must fit with its sign; hexadecimal digits are bits.
std::optional<Parsed<std::int64_t>> parseInteger(std::string_view text) {
  const Digits digits = parseDigits(text);
  constexpr auto kMostPositive = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  if (digits.end == nullptr || (!digits.hex && digits.magnitude > kMostPositive + (digits.negative ? 1 : 0)))
    return std::nullopt;
  return Parsed<std::int64_t>{digits.value(), restOf(text, digits.end)};
}

enum class TooLarge { IsNoNumber, IsInfinite };

std::optional<Parsed<double>> parseFloat(std::string_view text, TooLarge tooLarge = TooLarge::IsNoNumber) {
  text = withoutLeadingBlanks(text);
  std::string_view unsignedText = text;
  const bool negative = takeSign(unsignedText);
  if (std::string_view digits = unsignedText; takeHexMark(digits)) {
    const auto integer = parseInteger(text);
    if (!integer)
      return std::nullopt;
    return Parsed<double>{static_cast<double>(integer->value), integer->rest};
  }
  if (!unsignedText.empty() && (unsignedText.front() == '-' || unsignedText.front() == '+'))
    return std::nullopt;
  double magnitude = 0;
  const char* const begin = unsignedText.data();
  const auto [end, failure] = std::from_chars(begin, begin + unsignedText.size(), magnitude);
  if (failure == std::errc::invalid_argument)
    return std::nullopt;
  if (failure == std::errc::result_out_of_range) {
    // Too large or too small for a double; the latter is as good as 0.
    const std::string_view number(begin, static_cast<std::size_t>(end - begin));
    const std::size_t exponent = number.find_first_of("eE");
    const bool tiny = exponent != std::string_view::npos ? number.substr(exponent).find('-') != std::string_view::npos
                                                         : number.find_first_not_of("0.") > number.find('.');
    if (!tiny && tooLarge == TooLarge::IsNoNumber)
      return std::nullopt;
    magnitude = tiny ? 0 : std::numeric_limits<double>::infinity();
  }
  return Parsed<double>{negative ? -magnitude : magnitude, unsignedText.substr(static_cast<std::size_t>(end - begin))};
}

// Some descriptions group digits with underscores.
bool isGrouped(std::string_view text) {
  return text.find('_') != std::string_view::npos;
}
std::string withoutGroups(std::string_view text) {
  std::string plain(text);
  std::erase(plain, '_');
  return plain;
}

template<class Number>
std::optional<Number> prefix(const std::optional<Parsed<Number>>& parsed) {
  return parsed ? std::optional(parsed->value) : std::nullopt;
}
template<class Number>
std::optional<Number> whole(const std::optional<Parsed<Number>>& parsed) {
  return parsed && onlyBlanks(parsed->rest) ? std::optional(parsed->value) : std::nullopt;
}

// Addresses are shown as bytes, the most significant first.
struct AddressForm {
  ERepresentation representation;
  int bytes;
  int base;
  char separator;
};
constexpr AddressForm kAddressForms[] = {{IPV4Address, 4, 10, '.'}, {MACAddress, 6, 16, ':'}};

const AddressForm* addressForm(ERepresentation representation) {
  for (const AddressForm& form : kAddressForms) {
    if (form.representation == representation)
      return &form;
  }
  return nullptr;
}

constexpr char kHexDigits[] = "0123456789abcdef";
constexpr int kBitsPerByte = 8;

std::string addressText(std::uint64_t value, const AddressForm& form) {
  std::string text;
  for (int i = form.bytes - 1; i >= 0; --i) {
    const auto byte = static_cast<unsigned>((value >> (i * kBitsPerByte)) & 0xFFU);
    if (form.base == 16) {
      text += kHexDigits[byte >> 4U];
      text += kHexDigits[byte & 0xFU];
    } else {
      text += std::to_string(byte);
    }
    if (i > 0)
      text += form.separator;
  }
  return text;
}

std::optional<std::int64_t> addressFromText(std::string_view text, const AddressForm& form) {
  text = withoutLeadingBlanks(text);
  std::uint64_t value = 0;
  for (int i = 0; i < form.bytes; ++i) {
    if (i > 0) {
      if (text.empty() || (text.front() != form.separator && !(form.separator == ':' && text.front() == '-')))
        return std::nullopt;
      text.remove_prefix(1);
    }
    std::uint8_t byte = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), byte, form.base);
    if (failure != std::errc())
      return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    value = (value << kBitsPerByte) | byte;
  }
  return onlyBlanks(text) ? std::optional(static_cast<std::int64_t>(value)) : std::nullopt;
}

// Half a unit of the last digit of a printed number.
double halfLastDigit(std::string_view text) {
  const std::size_t exponentMark = text.find('e');
  int exponent = 0;
  if (exponentMark != std::string_view::npos)
    exponent = static_cast<int>(integerPrefix(text.substr(exponentMark + 1)).value_or(0));
  const std::string_view mantissa = text.substr(0, exponentMark);
  if (const std::size_t point = mantissa.find('.'); point != std::string_view::npos)
    exponent -= static_cast<int>(mantissa.size() - point - 1);
  return std::pow(10.0, exponent) / 2;
}

}  // namespace

std::optional<std::int64_t> integerPrefix(std::string_view text) {
  return prefix(parseInteger(text));
}
std::optional<std::int64_t> wholeInteger(std::string_view text) {
  return whole(parseInteger(text));
}
std::optional<double> floatPrefix(std::string_view text) {
  return prefix(parseFloat(text));
}
std::optional<double> wholeFloat(std::string_view text) {
  return whole(parseFloat(text));
}

std::optional<double> describedFloat(std::string_view text) {
  const auto number = whole(parseFloat(text, TooLarge::IsInfinite));
  return number || !isGrouped(text) ? number : describedFloat(withoutGroups(text));
}

std::optional<std::int64_t> describedInteger(std::string_view text) {
  if (const Digits digits = parseDigits(text); digits.end != nullptr && onlyBlanks(restOf(text, digits.end)))
    return digits.value();
  if (isGrouped(text))
    return describedInteger(withoutGroups(text));
  const auto number = describedFloat(text);
  if (!number || std::isnan(*number))
    return std::nullopt;
  return nearestInteger(*number);
}

std::int64_t nearestInteger(double value) {
  constexpr double kEdge = 9223372036854775808.0;  // 2^63
  if (!(value > -kEdge))
    return std::numeric_limits<std::int64_t>::min();
  return value >= kEdge ? std::numeric_limits<std::int64_t>::max() : std::llround(value);
}

std::string integerText(std::int64_t value, ERepresentation representation) {
  const auto unsignedValue = static_cast<std::uint64_t>(value);
  if (const AddressForm* form = addressForm(representation))
    return addressText(unsignedValue, *form);
  std::array<char, 24> digits;  // NOLINT(cppcoreguidelines-pro-type-member-init)
  char* const begin = digits.data();
  const bool hex = representation == HexNumber;
  const auto end = hex ? std::to_chars(begin, begin + digits.size(), unsignedValue, 16)
                       : std::to_chars(begin, begin + digits.size(), value);
  return (hex ? "0x" : "") + std::string(begin, end.ptr);
}

std::optional<std::int64_t> integerFromText(std::string_view text, ERepresentation representation) {
  if (const AddressForm* form = addressForm(representation)) {
    if (const auto address = addressFromText(text, *form))
      return address;
    // What looks like an address but is none must not pass as the number that it begins with.
    if (text.find(form->separator) != std::string_view::npos)
      return std::nullopt;
  }
  return integerPrefix(text);
}

std::string floatText(double value, EDisplayNotation notation, std::int64_t precision) {
  constexpr std::int64_t kDefaultPrecision = 6;
  const int digits = static_cast<int>(precision < 0 ? kDefaultPrecision : std::min(precision, kMaxDisplayPrecision));
  const auto format = notation == fnFixed        ? std::chars_format::fixed
                      : notation == fnScientific ? std::chars_format::scientific
                                                 : std::chars_format::general;
  std::array<char, 512> text;  // NOLINT(cppcoreguidelines-pro-type-member-init)
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value, format, digits);
  return {text.data(), end.ptr};
}

std::string floatTextWithin(double value, EDisplayNotation notation, std::int64_t precision, double minimum,
                            double maximum) {
  std::string text = floatText(value, notation, precision);
  const auto printed = wholeFloat(text);
  if (printed && *printed > maximum)
    return floatText(value - halfLastDigit(text), notation, precision);
  if (printed && *printed < minimum)
    return floatText(value + halfLastDigit(text), notation, precision);
  return text;
}

}  // namespace GenApiEngine
