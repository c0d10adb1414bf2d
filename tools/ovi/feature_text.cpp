// Features read and written as text, with explanations when that fails.
#include "feature_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

#include "feature_view.h"
#include "hex.h"
#include "platform/console.h"
#include "refusal.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

// What the library logged about the call that failed just now.
std::string loggedReason(const ModuleView& view) {
  const std::vector<std::string> messages = view.session().takeMessages();
  return messages.empty() ? std::string() : " (" + messages.back() + ")";
}

std::optional<double> floatFrom(const std::string& text) {
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(number))
    return std::nullopt;
  return number;
}

std::optional<std::int64_t> integerFrom(const std::string& text) {
  const std::size_t prefix = text.starts_with("0x") || text.starts_with("0X") ? 2 : 0;
  const char* const end = text.data() + text.size();
  std::int64_t number = 0;
  auto result = std::from_chars(text.data() + prefix, end, number, prefix == 0 ? 10 : 16);
  if (result.ec == std::errc::result_out_of_range && prefix != 0) {
    // All 64 bits of a mask or an address.
    std::uint64_t bits = 0;
    result = std::from_chars(text.data() + prefix, end, bits, 16);
    number = static_cast<std::int64_t>(bits);
  }
  if (result.ec != std::errc() || result.ptr != end)
    return std::nullopt;
  return number;
}

// The legal value that is nearest to a number.
std::int64_t nearestInteger(const ovi::FeatureParameter& p, std::int64_t value) {
  const std::int64_t clamped = std::clamp(value, p.intMin, std::max(p.intMin, p.intMax));
  if (p.intInc <= 1)
    return clamped;
  const auto step = static_cast<std::uint64_t>(p.intInc);
  const std::uint64_t above = static_cast<std::uint64_t>(clamped) - static_cast<std::uint64_t>(p.intMin);
  std::uint64_t steps = above / step;
  if (above % step > step / 2 && (steps + 1) * step <= static_cast<std::uint64_t>(p.intMax - p.intMin))
    ++steps;
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(p.intMin) + steps * step);
}

// Everything that is needed to say why a value does not suit a feature.
class Refusal {
 public:
  Refusal(const ModuleView& view, const ovi::FeatureParameter& parameter, const std::string& name,
          const std::string& value)
      : view_(view),
        parameter_(parameter),
        name_(name),
        value_(value) {}

  [[noreturn]] void access() const {
    const bool available = isReadable(parameter_) || isWritable(parameter_);
    refuse(view_, {Attempt::What::kWrite, name_},
           assignment() + ": the feature is " + (available ? "read-only" : "not available") + " now.", showCommand());
  }
  [[noreturn]] void notA(const std::string& kind, const std::string& legal) const {
    throw ToolError(assignment() + " is no " + kind + ": " + legal, showCommand(), ExitCode::kUsage);
  }
  [[noreturn]] void outside(Attempt::What what, const std::string& nearest) const {
    refuse(view_, {what, name_},
           assignment() + (what == Attempt::What::kOffStep ? " does not fit: " : " is out of range: ") +
               rangeText(view_, parameter_) + "; nearest " + nearest + ".",
           view_.command("set " + name_ + "=" + nearest), ExitCode::kUsage);
  }
  [[noreturn]] void noEntry() const {
    const std::string node = "EnumEntry_" + name_ + "_" + value_;
    const std::vector<std::string> children = view_.feature(name_).children();
    if (std::ranges::find(children, node) != children.end())
      refuse(view_, {Attempt::What::kEntry, node}, assignment() + ": the entry is not available now.", showCommand());
    const std::string nearest = nearestMatch(value_, entryNames(view_, name_));
    throw ToolError(name_ + " has no entry \"" + value_ + "\"." +
                        (nearest.empty() ? "" : " Did you mean " + nearest + "?") +
                        " Entries: " + rangeText(view_, parameter_),
                    nearest.empty() ? showCommand() : view_.command("set " + name_ + "=" + nearest), ExitCode::kUsage);
  }
  [[noreturn]] void tooLong() const {
    throw ToolError(assignment() + " is too long: " + range(), showCommand(), ExitCode::kUsage);
  }
  [[noreturn]] void failed(oviErr code) const {
    // First, because looking for what forbids it makes the library log as well.
    const std::string reason = loggedReason(view_);
    const std::string message = assignment() + ": " + ovi::makeErrorCode(code).message() + reason;
    if (code == OVI_ERR_NO_ACCESS)
      refuse(view_, {Attempt::What::kWrite, name_}, message, showCommand());
    throw ToolError(message, showCommand());
  }
  std::string range() const { return rangeText(view_, parameter_); }
  std::string number() const { return hasLimits(parameter_) ? range() : "digits are wanted"; }

 private:
  std::string assignment() const { return name_ + " = " + value_; }
  std::string showCommand() const { return view_.command("features " + name_); }

  const ModuleView& view_;
  const ovi::FeatureParameter& parameter_;
  const std::string& name_;
  const std::string& value_;
};

oviErr writeInteger(const ovi::Feature& feature, const ModuleView& view, const ovi::FeatureParameter& p,
                    const std::string& value, const Refusal& refusal) {
  const std::optional<std::int64_t> number = integerFrom(value);
  if (!number) {
    // A number that is too large for any integer feature, or has decimals, is a number all the same.
    const std::optional<double> wide = floatFrom(value);
    if (!wide || !hasLimits(p))
      refusal.notA("integer", refusal.number());
    if (*wide < static_cast<double>(p.intMin))
      refusal.outside(Attempt::What::kTooSmall, std::to_string(p.intMin));
    if (*wide > static_cast<double>(p.intMax))
      refusal.outside(Attempt::What::kTooLarge, std::to_string(nearestInteger(p, p.intMax)));
    refusal.outside(Attempt::What::kOffStep, std::to_string(nearestInteger(p, std::llround(*wide))));
  }
  if (hasLimits(p) && (*number < p.intMin || *number > p.intMax))
    refusal.outside(*number < p.intMin ? Attempt::What::kTooSmall : Attempt::What::kTooLarge,
                    std::to_string(nearestInteger(p, *number)));
  if (const std::int64_t nearest = nearestInteger(p, *number); hasLimits(p) && nearest != *number)
    refusal.outside(Attempt::What::kOffStep, std::to_string(nearest));
  return oviSetFeatureInt(view.handle(), feature.name().c_str(), *number, view.selector());
}

oviErr writeFloat(const ovi::Feature& feature, const ModuleView& view, const ovi::FeatureParameter& p,
                  const std::string& value, const Refusal& refusal) {
  const std::optional<double> number = floatFrom(value);
  if (!number)
    refusal.notA("number", refusal.number());
  if (hasLimits(p) && (*number < p.floatMin || *number > p.floatMax))
    refusal.outside(*number < p.floatMin ? Attempt::What::kTooSmall : Attempt::What::kTooLarge,
                    numberText(*number < p.floatMin ? p.floatMin : p.floatMax));
  return oviSetFeatureFloat(view.handle(), feature.name().c_str(), *number, view.selector());
}

oviErr writeText(const ModuleView& view, const ovi::FeatureParameter& p, const std::string& name,
                 const std::string& value) {
  const Refusal refusal(view, p, name, value);
  const ovi::Feature feature = view.feature(name);
  const char* const narrow = feature.name().c_str();
  switch (p.featureType) {
    case OVI_FEATURE_INTEGER:
      return writeInteger(feature, view, p, value, refusal);
    case OVI_FEATURE_FLOAT:
      return writeFloat(feature, view, p, value, refusal);
    case OVI_FEATURE_BOOLEAN: {
      const std::optional<bool> on = booleanFrom(value);
      if (!on)
        refusal.notA("boolean", "0 or 1 (false or true, off or on, no or yes)");
      return oviSetFeatureBool(view.handle(), narrow, *on, view.selector());
    }
    case OVI_FEATURE_ENUMERATION: {
      const std::vector<std::string> entries = entryNames(view, name);
      if (std::ranges::find(entries, value) == entries.end())
        refusal.noEntry();
      return oviSetFeatureEnum(view.handle(), narrow, toLibraryText(value).c_str(), view.selector());
    }
    case OVI_FEATURE_REGISTER: {
      const std::optional<std::vector<std::uint8_t>> bytes = bytesFromHex(value);
      if (!bytes || bytes->empty())
        refusal.notA("row of bytes", "two hexadecimal digits for each byte, " + refusal.range());
      if (hasLimits(p) && static_cast<std::int64_t>(bytes->size()) > p.registerLength)
        refusal.tooLong();
      return oviSetFeatureReg(view.handle(), narrow, bytes->data(), static_cast<std::int64_t>(bytes->size()),
                              view.selector());
    }
    case OVI_FEATURE_STRING: {
      const std::string text = toLibraryText(value);
      if (hasLimits(p) && static_cast<std::int64_t>(text.size()) > p.maxStringLength)
        refusal.tooLong();
      return oviSetFeatureString(view.handle(), narrow, text.c_str(), view.selector());
    }
    case OVI_FEATURE_COMMAND:
      return oviExecuteCommand(view.handle(), narrow, view.selector());
    default:
      throw ToolError(name + " is a " + kindText(p.featureType) + " and cannot be set", view.command("features"),
                      ExitCode::kUsage);
  }
}

}  // namespace

ovi::FeatureParameter requireParameter(const ModuleView& view, const std::string& name) {
  ovi::FeatureParameter record{};
  const ovi::Feature feature = view.feature(name);
  // Other failures than an unknown name leave what could be read in the record; kind and access are what is needed.
  if (oviGetFeatureParameter(view.handle(), feature.name().c_str(), &record, view.selector()) != OVI_ERR_NOT_FOUND)
    return record;
  std::vector<std::string> names;
  for (const FeatureNode& node : featureTree(view, false))
    names.push_back(node.name);
  const std::string nearest = nearestMatch(name, names);
  throw ToolError(
      view.noun() + " has no feature \"" + name + "\"." + (nearest.empty() ? "" : " Did you mean " + nearest + "?"),
      view.command(nearest.empty() ? "features" : "features " + nearest), ExitCode::kUsage);
}

std::string readFeature(const ModuleView& view, const std::string& name) {
  const ovi::FeatureParameter parameter = requireParameter(view, name);
  if (parameter.featureType == OVI_FEATURE_CATEGORY)
    throw ToolError(name + " is a category and has no value", view.command("features " + name), ExitCode::kUsage);
  if (!isReadable(parameter) && parameter.featureType != OVI_FEATURE_COMMAND)
    refuse(view, {Attempt::What::kRead, name},
           name + " cannot be read: it is " +
               (parameter.accessMode == OVI_ACCESS_WRITE_ONLY ? "write-only" : "not available now") + ".",
           view.command("features " + name));
  try {
    const ovi::Feature feature = view.feature(name);
    if (parameter.featureType == OVI_FEATURE_REGISTER)
      return hexFromBytes(feature.asRegister());
    return fromLibraryText(parameter.featureType == OVI_FEATURE_STRING ? feature.asString() : feature.text());
  } catch (const ovi::Error& error) {
    throw ToolError(name + " cannot be read: " + error.code().message() + loggedReason(view),
                    view.command("get " + name + " --verbose"));
  }
}

std::string readExactly(const ModuleView& view, const std::string& name) {
  double value = 0;
  const ovi::Feature feature = view.feature(name);
  if (oviGetFeatureFloat(view.handle(), feature.name().c_str(), &value, view.selector()) == OVI_SUCCESS)
    return numberText(value);
  std::int64_t number = 0;
  if (requireParameter(view, name).featureType == OVI_FEATURE_INTEGER &&
      oviGetFeatureInt(view.handle(), feature.name().c_str(), &number, view.selector()) == OVI_SUCCESS)
    return std::to_string(number);
  return readFeature(view, name);
}

std::string writeFeature(const ModuleView& view, const std::string& name, const std::string& value) {
  const ovi::FeatureParameter parameter = requireParameter(view, name);
  if (!isWritable(parameter) && parameter.featureType != OVI_FEATURE_CATEGORY)
    Refusal(view, parameter, name, value).access();
  view.session().takeMessages();
  if (const oviErr code = writeText(view, parameter, name, value); code != OVI_SUCCESS)
    Refusal(view, parameter, name, value).failed(code);
  return parameter.featureType == OVI_FEATURE_COMMAND || parameter.accessMode == OVI_ACCESS_WRITE_ONLY
             ? value
             : readFeature(view, name);
}

void assignFeature(const ModuleView& view, const std::string& assignment) {
  const std::size_t equals = assignment.find('=');
  if (equals == std::string::npos || equals == 0)
    throw ToolError("\"" + assignment + "\" is no assignment", view.command("get " + assignment), ExitCode::kUsage);
  writeFeature(view, assignment.substr(0, equals), assignment.substr(equals + 1));
}

}  // namespace tool
