// Features read and written as text, with explanations when that fails.
#include "feature_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <functional>
#include <optional>
#include <set>

#include "feature_view.h"
#include "hex.h"
#include "platform/console.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

// The lock that a running acquisition puts on the camera's geometry.
constexpr const char* kLock = "TLParamsLocked";

/// What a text about dependencies is for.
enum class Why { kWrongValue, kForbidden };

// Features that the description refers to from this one, directly or through nodes that are none, with their values:
// one of them is why it cannot be had, or not with this value. Something is forbidden by a mere register or formula
// as well; then it is among the nodes that the description names directly. Empty when there is none.
std::string dependencyText(const ModuleView& view, const std::string& name, Why why) {
  constexpr unsigned kMaxDepth = 4;
  std::set<std::string> features;
  for (const FeatureNode& node : featureTree(view, false))
    features.insert(node.name);
  std::set<std::string> visited{name};
  std::vector<std::string> found;
  std::vector<std::string> others;
  const auto take = [&view](const std::string& node, std::vector<std::string>& into) {
    char value[512] = {};
    if (oviGetFeatureOnModule(view.handle(), node.c_str(), value, view.selector()) == OVI_SUCCESS)
      into.push_back(node + " = " + fromLibraryText(value));
  };
  const std::function<void(const std::string&, unsigned)> visit = [&](const std::string& parent, unsigned depth) {
    for (const std::string& child : view.feature(parent).children()) {
      if (!visited.insert(child).second)
        continue;
      if (features.contains(child)) {
        if (child != kLock)
          take(child, found);
        continue;
      }
      if (depth == 0 && why == Why::kForbidden)
        take(child, others);
      if (depth < kMaxDepth)
        visit(child, depth + 1);
    }
  };
  visit(name, 0);
  if (found.empty())
    found = std::move(others);
  view.session().takeMessages();
  return found.empty() ? std::string() : " It depends on " + join(found, ", ") + ".";
}

// Why it cannot be written: the lock when it is set, else what it depends on.
std::string forbidderText(const ModuleView& view, const std::string& name) {
  std::int64_t locked = 0;
  const std::vector<std::string> children = view.feature(name).children();
  if (oviGetFeatureInt(view.handle(), kLock, &locked, view.selector()) == OVI_SUCCESS && locked != 0 &&
      std::ranges::find(children, kLock) != children.end())
    return std::string(" ") + kLock + " = " + std::to_string(locked) + " locks it: stop the acquisition first.";
  view.session().takeMessages();
  return dependencyText(view, name, Why::kForbidden);
}

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
    throw ToolError(assignment() + ": the feature is " + (available ? "read-only" : "not available") + " now." +
                        forbidderText(view_, name_),
                    showCommand());
  }
  [[noreturn]] void notA(const std::string& kind, const std::string& legal) const {
    throw ToolError(assignment() + " is no " + kind + ": " + legal, showCommand(), ExitCode::kUsage);
  }
  [[noreturn]] void outside(const std::string& problem, const std::string& nearest) const {
    throw ToolError(assignment() + problem + rangeText(view_, parameter_) + "; nearest " + nearest + "." +
                        dependencyText(view_, name_, Why::kWrongValue),
                    view_.command("set " + name_ + "=" + nearest), ExitCode::kUsage);
  }
  [[noreturn]] void noEntry() const {
    const std::string node = "EnumEntry_" + name_ + "_" + value_;
    const std::vector<std::string> children = view_.feature(name_).children();
    if (std::ranges::find(children, node) != children.end())
      throw ToolError(assignment() + ": the entry is not available now." + forbidderText(view_, node), showCommand());
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
    throw ToolError(assignment() + ": " + ovi::makeErrorCode(code).message() + reason +
                        (code == OVI_ERR_NO_ACCESS ? forbidderText(view_, name_) : std::string()),
                    showCommand());
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
    if (*wide < static_cast<double>(p.intMin) || *wide > static_cast<double>(p.intMax))
      refusal.outside(" is out of range: ", std::to_string(*wide < 0 ? p.intMin : nearestInteger(p, p.intMax)));
    refusal.outside(" does not fit: ", std::to_string(nearestInteger(p, std::llround(*wide))));
  }
  if (hasLimits(p) && (*number < p.intMin || *number > p.intMax))
    refusal.outside(" is out of range: ", std::to_string(nearestInteger(p, *number)));
  if (const std::int64_t nearest = nearestInteger(p, *number); hasLimits(p) && nearest != *number)
    refusal.outside(" does not fit: ", std::to_string(nearest));
  return oviSetFeatureInt(view.handle(), feature.name().c_str(), *number, view.selector());
}

oviErr writeFloat(const ovi::Feature& feature, const ModuleView& view, const ovi::FeatureParameter& p,
                  const std::string& value, const Refusal& refusal) {
  const std::optional<double> number = floatFrom(value);
  if (!number)
    refusal.notA("number", refusal.number());
  if (hasLimits(p) && (*number < p.floatMin || *number > p.floatMax))
    refusal.outside(" is out of range: ", numberText(*number < p.floatMin ? p.floatMin : p.floatMax));
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
    case OVI_FEATURE_STRING:
      return oviSetFeatureString(view.handle(), narrow, toLibraryText(value).c_str(), view.selector());
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
    throw ToolError(name + " cannot be read: it is " +
                        (parameter.accessMode == OVI_ACCESS_WRITE_ONLY ? "write-only" : "not available now") + "." +
                        dependencyText(view, name, Why::kForbidden),
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
