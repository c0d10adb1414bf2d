// A camera's settings read from it, written to it, compared with it.
#include "settings.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <map>
#include <optional>
#include <ranges>
#include <set>

#include "description/feature_facts.h"
#include "feature_text.h"
#include "feature_view.h"
#include "hex.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

// Without a description: features that say who the camera is, or make it work, instead of setting it.
constexpr std::array kNotSettings = {
    "DeviceUserID",   "TLParamsLocked",  "GevPersistent*", "GevCurrentIPConfig*", "FileAccess*", "FileOperation*",
    "FileOpenMode",   "UserSetDefault*", "GevCCP",         "MaintenanceMode",     "Indirect*",   "DeviceRegisters*",
    "GevSCPHostPort", "GevSCDA",         "CounterValue",   "TimerValue",          "EncoderValue"};
// Selectors that lead to work or to data of another kind.
constexpr std::array kNotSelectors = {"FileSelector", "UserSetSelector", "FileOperationSelector"};
constexpr std::size_t kMaxPositions = 4096;

template<std::size_t N>
bool isOneOf(const std::array<const char*, N>& patterns, const std::string& name) {
  return std::any_of(patterns.begin(), patterns.end(), [&](const char* pattern) {
    return std::string_view(pattern).find('*') != std::string_view::npos ? matchesPattern(pattern, name)
                                                                         : name == pattern;
  });
}

// Sets selectors only when they stand elsewhere, and puts them back in the end.
class Selectors {
 public:
  explicit Selectors(const ModuleView& view) : view_(view) {}
  ~Selectors() {
    for (const auto& [name, position] : moved_ | std::views::reverse)
      trySet(name, position);
  }
  Selectors(const Selectors&) = delete;
  Selectors& operator=(const Selectors&) = delete;

  // Throws ToolError when a selector does not take its value.
  void select(const std::vector<std::pair<std::string, std::string>>& positions) {
    for (const auto& [name, position] : positions) {
      const std::string before = readExactly(view_, name);
      if (before == position)
        continue;
      if (known_.insert(name).second)
        moved_.emplace_back(name, before);
      writeFeature(view_, name, position);
    }
  }

 private:
  void trySet(const std::string& name, const std::string& value) const {
    try {
      writeFeature(view_, name, value);
    } catch (const std::exception&) {
      // Nothing can be done about it, and the settings themselves are as they should be.
    }
  }

  const ModuleView& view_;
  std::set<std::string> known_;
  std::vector<std::pair<std::string, std::string>> moved_;
};

// A feature that may be a setting, with what selects it, outermost first.
struct PossibleSetting {
  std::string feature;
  std::vector<std::string> selectors;
};

// Beside what a node selects, its children are what it is made of and depends on; only its name tells a selector.
bool isSelector(const FeatureNode& node) {
  return (node.parameter.featureType == OVI_FEATURE_INTEGER || node.parameter.featureType == OVI_FEATURE_ENUMERATION) &&
         (matchesPattern("*Selector", node.name) || matchesPattern("*Index", node.name));
}

// Where the description does not tell: all that have a value, by their names.
std::vector<PossibleSetting> possibleByName(const ModuleView& view) {
  const std::vector<FeatureNode> tree = featureTree(view, false);
  std::map<std::string, std::vector<std::string>> selectorsOf;
  std::set<std::string> selectors;
  for (const FeatureNode& node : tree) {
    if (!isSelector(node))
      continue;
    for (const std::string& child : view.feature(node.name).children()) {
      selectorsOf[child].push_back(node.name);
      selectors.insert(node.name);
    }
  }
  std::vector<PossibleSetting> candidates;
  for (const FeatureNode& node : tree) {
    const std::uint32_t type = node.parameter.featureType;
    const std::vector<std::string>& own = selectorsOf[node.name];
    if (type >= OVI_FEATURE_BOOLEAN && type <= OVI_FEATURE_ENUMERATION && !isOneOf(kNotSettings, node.name) &&
        !selectors.contains(node.name) &&
        std::ranges::none_of(own, [](const std::string& name) { return isOneOf(kNotSelectors, name); }))
      candidates.push_back({node.name, own});
  }
  return candidates;
}

std::vector<PossibleSetting> possibleSettings(const ModuleView& view, std::vector<std::string>& notes) {
  std::vector<PossibleSetting> candidates;
  std::vector<StreamableFeature> streamable;
  if (view.facts() != nullptr)
    streamable = view.facts()->streamable();
  for (StreamableFeature& feature : streamable)
    candidates.push_back({std::move(feature.name), std::move(feature.selectors)});
  if (!candidates.empty())
    return candidates;
  if (view.facts() != nullptr)
    notes.emplace_back(
        "the camera's description marks no feature as streamable: everything that can be read and written is here");
  return possibleByName(view);
}

std::vector<std::string> positionsOf(const ModuleView& view, const std::string& selector) {
  const ovi::FeatureParameter parameter = requireParameter(view, selector);
  if (!isWritable(parameter))
    return isReadable(parameter) ? std::vector<std::string>{readExactly(view, selector)} : std::vector<std::string>{};
  if (parameter.featureType == OVI_FEATURE_ENUMERATION)
    return entryNames(view, selector);
  std::vector<std::string> positions;
  const std::int64_t step = std::max<std::int64_t>(1, parameter.intInc);
  for (std::int64_t value = parameter.intMin; value <= parameter.intMax && positions.size() <= kMaxPositions;
       value += step) {
    positions.push_back(std::to_string(value));
    if (static_cast<std::uint64_t>(parameter.intMax) - static_cast<std::uint64_t>(value) <
        static_cast<std::uint64_t>(step))
      break;  // Another step might leave the range of numbers.
  }
  return positions;
}

using Positions = std::vector<std::pair<std::string, std::string>>;

// Calls visit for every combination of the selectors' values that the camera takes.
template<class Visit>
void forEachPosition(const ModuleView& view, Selectors& selectors, const std::vector<std::string>& names,
                     Positions& chosen, std::size_t& count, const Visit& visit) {
  if (chosen.size() == names.size()) {
    if (++count <= kMaxPositions)
      visit(chosen);
    return;
  }
  const std::string& name = names[chosen.size()];
  for (const std::string& position : positionsOf(view, name)) {
    if (count > kMaxPositions)
      return;
    chosen.emplace_back(name, position);
    try {
      selectors.select({chosen.back()});
      forEachPosition(view, selectors, names, chosen, count, visit);
    } catch (const ToolError&) {
      // A combination that the camera does not have.
    }
    chosen.pop_back();
  }
}

std::optional<double> numberOf(const std::string& text) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

// Whether two texts are the same value of a feature of that type.
bool sameValue(std::uint32_t featureType, const std::string& a, const std::string& b) {
  if (a == b)
    return true;
  if (featureType == OVI_FEATURE_REGISTER) {
    const auto x = bytesFromHex(a);
    return x.has_value() && x == bytesFromHex(b);
  }
  if (featureType != OVI_FEATURE_INTEGER && featureType != OVI_FEATURE_FLOAT)
    return false;
  const std::optional<double> x = numberOf(a);
  const std::optional<double> y = numberOf(b);
  return x && y && std::abs(*x - *y) <= 1e-9 * std::max(std::abs(*x), std::abs(*y));
}

// Brings one setting into the camera. Returns whether anything had to be written.
bool apply(const ModuleView& view, Selectors& selectors, const Setting& setting) {
  selectors.select(setting.selectors);
  const ovi::FeatureParameter parameter = requireParameter(view, setting.feature);
  if (isReadable(parameter) && sameValue(parameter.featureType, readExactly(view, setting.feature), setting.value))
    return false;
  writeFeature(view, setting.feature, setting.value);
  const std::string now = readExactly(view, setting.feature);
  if (!sameValue(parameter.featureType, now, setting.value))
    throw ToolError("reads " + now + " after it was set to " + setting.value);
  return true;
}

// Sets them again and again while that gets further. Returns what could not be set.
std::vector<SettingProblem> applyAll(const ModuleView& view, const std::vector<const Setting*>& settings) {
  // Each pass that changes something may make room for others, or undo what an earlier line set.
  constexpr int kMaxPasses = 10;
  Selectors selectors(view);
  std::vector<SettingProblem> problems;
  for (int pass = 0; pass < kMaxPasses; ++pass) {
    problems.clear();
    bool changed = false;
    for (const Setting* setting : settings) {
      try {
        changed = apply(view, selectors, *setting) || changed;
      } catch (const ToolError& error) {
        problems.push_back({*setting, error.what()});
      }
    }
    if (!changed)
      break;
  }
  return problems;
}

}  // namespace

std::vector<Setting> readSettings(const ModuleView& view, std::vector<std::string>& notes) {
  const std::vector<PossibleSetting> candidates = possibleSettings(view, notes);
  std::vector<Setting> settings;
  std::set<std::string> unreadable;
  // One that cannot be read must not cost the others.
  const auto skip = [&](const std::string& feature, const std::string& reason) {
    if (unreadable.insert(feature).second)
      notes.push_back(feature + " is missing: " + reason);
  };
  const auto take = [&](const std::string& feature, const Positions& positions) {
    try {
      const ovi::FeatureParameter parameter = requireParameter(view, feature);
      if (parameter.accessMode == OVI_ACCESS_READ_WRITE)
        settings.push_back({feature, positions, readExactly(view, feature)});
    } catch (const ToolError& error) {
      skip(feature, error.what());
    }
  };
  for (const PossibleSetting& candidate : candidates) {
    // Each leaves its selectors as they were, because a selector may be a setting as well.
    Selectors selectors(view);
    Positions chosen;
    std::size_t count = 0;
    try {
      forEachPosition(view, selectors, candidate.selectors, chosen, count,
                      [&](const Positions& positions) { take(candidate.feature, positions); });
    } catch (const ToolError& error) {
      skip(candidate.feature, error.what());
    }
    if (count > kMaxPositions)
      notes.push_back(candidate.feature + ": only the first " + std::to_string(kMaxPositions) +
                      " of its values under " + join(candidate.selectors, ", ") + " are here");
  }
  return settings;
}

std::vector<SettingProblem> writeSettings(const ModuleView& view, const std::vector<Setting>& settings) {
  std::set<std::string> selectors;
  for (const Setting& setting : settings)
    for (const auto& [selector, position] : setting.selectors)
      selectors.insert(selector);
  // A selector that is a setting itself comes last: the others move it.
  std::vector<const Setting*> first;
  std::vector<const Setting*> last;
  for (const Setting& setting : settings)
    (selectors.contains(setting.feature) ? last : first).push_back(&setting);
  std::vector<SettingProblem> problems = applyAll(view, first);
  const std::vector<SettingProblem> further = applyAll(view, last);
  problems.insert(problems.end(), further.begin(), further.end());
  return problems;
}

std::vector<SettingProblem> compareSettings(const ModuleView& view, const std::vector<Setting>& settings) {
  Selectors selectors(view);
  std::map<std::size_t, SettingProblem> differences;  // by the place of the setting
  const auto compare = [&](std::size_t place) {
    const Setting& setting = settings[place];
    try {
      selectors.select(setting.selectors);
      const std::string now = readExactly(view, setting.feature);
      if (!sameValue(requireParameter(view, setting.feature).featureType, now, setting.value))
        differences.try_emplace(place, SettingProblem{setting, now});
    } catch (const ToolError& error) {
      differences.try_emplace(place, SettingProblem{setting, "(" + std::string(error.what()) + ")"});
    }
  };
  // One without selectors may be a selector itself, which the others move.
  for (const bool selected : {false, true})
    for (std::size_t place = 0; place < settings.size(); ++place)
      if (settings[place].selectors.empty() != selected)
        compare(place);
  std::vector<SettingProblem> inOrder;
  for (auto& [place, difference] : differences)
    inOrder.push_back(std::move(difference));
  return inOrder;
}

}  // namespace tool
