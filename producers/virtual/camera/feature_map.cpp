// Registers of declared features: layout, coding, and the checks that a camera makes before it takes a value.
#include "feature_map.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <locale>
#include <sstream>
#include <stdexcept>

namespace vcam {
namespace {

constexpr std::uint64_t kFirstAddress = 0x10000;
constexpr std::string_view kUserSetMagic = "UserSet\n";

std::size_t selectorRange(const Feature& selector, const std::vector<EnumEntry>& entries, const Formula& max) {
  if (selector.kind() == FeatureKind::Enumeration) {
    std::int64_t last = 0;
    for (const EnumEntry& entry : entries) {
      last = std::max(last, entry.value);
    }
    return static_cast<std::size_t>(last) + 1;
  }
  return static_cast<std::size_t>(max.integer([](const std::string&) { return 0.0; })) + 1;
}

}  // namespace

std::string Feature::text(std::size_t slot) const {
  if (computeText_) {
    return computeText_(slot);
  }
  const auto begin = bytes_.begin() + static_cast<std::ptrdiff_t>(slot * length_);
  const auto end = std::find(begin, begin + static_cast<std::ptrdiff_t>(length_), std::byte{0});
  std::string result;
  std::transform(begin, end, std::back_inserter(result), [](std::byte b) { return static_cast<char>(b); });
  return result;
}

void Feature::setText(const std::string& v) {
  std::ranges::fill(bytes_, std::byte{0});
  std::memcpy(bytes_.data(), v.data(), std::min(v.size(), bytes_.size()));
}

void FeatureMap::category(std::string name, std::string toolTip, std::string parent) {
  categories_.push_back({std::move(name), std::move(toolTip), std::move(parent)});
}

Feature& FeatureMap::add(FeatureKind kind, std::string name, std::string category, std::string toolTip,
                         std::size_t length) {
  Feature& feature = features_.emplace_back(kind, std::move(name), std::move(category), std::move(toolTip));
  if (!byName_.emplace(feature.name(), &feature).second) {
    throw std::logic_error("declared twice: " + feature.name());
  }
  return feature.length(length);
}

Feature& FeatureMap::integer(std::string name, std::string category, std::string toolTip) {
  return add(FeatureKind::Integer, std::move(name), std::move(category), std::move(toolTip), 4);
}
Feature& FeatureMap::floating(std::string name, std::string category, std::string toolTip) {
  return add(FeatureKind::Float, std::move(name), std::move(category), std::move(toolTip), 8);
}
Feature& FeatureMap::boolean(std::string name, std::string category, std::string toolTip) {
  return add(FeatureKind::Boolean, std::move(name), std::move(category), std::move(toolTip), 4);
}
Feature& FeatureMap::enumeration(std::string name, std::string category, std::string toolTip) {
  return add(FeatureKind::Enumeration, std::move(name), std::move(category), std::move(toolTip), 4);
}
Feature& FeatureMap::command(std::string name, std::string category, std::string toolTip) {
  return add(FeatureKind::Command, std::move(name), std::move(category), std::move(toolTip), 4).uncached();
}
Feature& FeatureMap::string(std::string name, std::string category, std::string toolTip, std::size_t length) {
  return add(FeatureKind::String, std::move(name), std::move(category), std::move(toolTip), length);
}
Feature& FeatureMap::bytes(std::string name, std::string category, std::string toolTip, std::size_t length) {
  return add(FeatureKind::Register, std::move(name), std::move(category), std::move(toolTip), length);
}

void FeatureMap::extraNodes(std::string_view xml,
                            const std::vector<std::pair<std::string, std::string>>& categoryAndFeature) {
  extraXml_ += xml;
  extraFeatures_.insert(extraFeatures_.end(), categoryAndFeature.begin(), categoryAndFeature.end());
}

void FeatureMap::seal() {
  endAddress_ = kFirstAddress;
  for (Feature& feature : features_) {
    layOut(feature);
    initialise(feature);
  }
  for (const Feature& feature : features_) {
    for (const std::string& name : feature.invalidators_) {
      if (find(name) == nullptr) {
        throw std::logic_error(feature.name() + " depends on " + name + ", which is not declared");
      }
    }
    for (const Formula* formula : {&feature.min_, &feature.max_, &feature.inc_, &feature.implementedIf_,
                                   &feature.availableIf_, &feature.lockedIf_}) {
      for (const std::string& name : formula->names()) {
        if (find(name) == nullptr) {
          throw std::logic_error(feature.name() + " refers to " + name + ", which is not declared");
        }
      }
    }
  }
}

void FeatureMap::layOut(Feature& feature) {
  feature.strides_.assign(feature.selectors_.size(), 0);
  feature.slots_ = 1;
  for (std::size_t i = feature.selectors_.size(); i-- > 0;) {
    const Feature* const selector = find(feature.selectors_[i]);
    if (selector == nullptr) {
      throw std::logic_error(feature.name() + " is selected by " + feature.selectors_[i] + ", which is not declared");
    }
    if (!feature.shared_) {
      feature.strides_[i] = feature.slots_;
      feature.slots_ *= selectorRange(*selector, selector->entries_, selector->max_);
    }
  }
  if (!feature.port_.empty()) {
    return;
  }
  if (!feature.fixed_) {
    endAddress_ = (endAddress_ + 7) & ~std::uint64_t{7};
    feature.address_ = endAddress_;
    endAddress_ += feature.length_ * feature.slots_;
  }
  byAddress_.emplace(feature.address_, &feature);
}

void FeatureMap::initialise(Feature& feature) {
  if (feature.isInteger()) {
    feature.integers_.assign(feature.slots_, feature.initialInteger_);
    for (std::size_t slot = 0; feature.initialOf_ && slot < feature.slots_; ++slot) {
      feature.integers_[slot] = feature.initialOf_(slot);
    }
  } else if (feature.kind() == FeatureKind::Float) {
    feature.floats_.assign(feature.slots_, feature.initialFloat_);
  } else {
    feature.bytes_.assign(feature.length_ * feature.slots_, std::byte{0});
    for (std::size_t slot = 0; slot < feature.slots_; ++slot) {
      std::memcpy(feature.bytes_.data() + slot * feature.length_, feature.initialText_.data(),
                  std::min(feature.initialText_.size(), feature.length_));
    }
  }
}

Feature* FeatureMap::find(const std::string& name) {
  const auto found = byName_.find(name);
  return found == byName_.end() ? nullptr : found->second;
}

const Feature* FeatureMap::find(const std::string& name) const {
  const auto found = byName_.find(name);
  return found == byName_.end() ? nullptr : found->second;
}

Feature* FeatureMap::featureAt(std::uint64_t address) {
  auto next = byAddress_.upper_bound(address);
  if (next == byAddress_.begin()) {
    return nullptr;
  }
  Feature* const feature = std::prev(next)->second;
  return address - feature->address_ < feature->length_ * feature->slots_ ? feature : nullptr;
}

GC_ERROR FeatureMap::read(std::uint64_t address, std::span<std::byte> out) {
  std::vector<std::byte> slotBytes;
  while (!out.empty()) {
    Feature* const feature = featureAt(address);
    if (feature == nullptr) {
      return GC_ERR_INVALID_ADDRESS;
    }
    if (feature->access_ == Access::WriteOnly || !holds(feature->implementedIf_, *feature, 0, true)) {
      return GC_ERR_ACCESS_DENIED;
    }
    const std::size_t inside = address - feature->address_;
    const std::size_t slot = inside / feature->length_;
    const std::size_t skip = inside % feature->length_;
    const std::size_t count = std::min(out.size(), feature->length_ - skip);
    slotBytes.assign(feature->length_, std::byte{0});
    encode(*feature, slot, slotBytes);
    if (const auto polls = busy_.find(feature); polls != busy_.end()) {
      putInteger(slotBytes, 1);
      if (--polls->second == 0) {
        busy_.erase(polls);
      }
    }
    std::memcpy(out.data(), slotBytes.data() + skip, count);
    address += count;
    out = out.subspan(count);
  }
  return GC_ERR_SUCCESS;
}

GC_ERROR FeatureMap::write(std::uint64_t address, std::span<const std::byte> in, std::size_t& moved) {
  moved = 0;
  std::vector<std::byte> slotBytes;
  while (!in.empty()) {
    Feature* const feature = featureAt(address);
    if (feature == nullptr) {
      return GC_ERR_INVALID_ADDRESS;
    }
    const std::size_t inside = address - feature->address_;
    const std::size_t slot = inside / feature->length_;
    const std::size_t skip = inside % feature->length_;
    const std::size_t count = std::min(in.size(), feature->length_ - skip);
    slotBytes.assign(feature->length_, std::byte{0});
    // A text that is written from its start replaces the old one; everything else keeps the bytes around the write.
    if (feature->kind() != FeatureKind::String || skip != 0) {
      encode(*feature, slot, slotBytes);
    }
    std::memcpy(slotBytes.data() + skip, in.data(), count);
    if (const GC_ERROR error = writeSlot(*feature, slot, slotBytes); error != GC_ERR_SUCCESS) {
      return error;
    }
    if (busyPolls_ != 0 && feature->kind() == FeatureKind::Command) {
      busy_[feature] = busyPolls_;
    }
    moved += count;
    address += count;
    in = in.subspan(count);
  }
  return GC_ERR_SUCCESS;
}

void FeatureMap::setBusyPolls(std::uint32_t polls) {
  busyPolls_ = polls;
  busy_.clear();
}

void FeatureMap::putInteger(std::span<std::byte> to, std::uint64_t value) const {
  for (std::size_t i = 0; i < to.size(); ++i, value >>= 8U) {
    to[bigEndian_ ? to.size() - 1 - i : i] = static_cast<std::byte>(value);
  }
}

std::uint64_t FeatureMap::getInteger(std::span<const std::byte> from) const {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < from.size(); ++i) {
    value = value << 8U | std::to_integer<std::uint64_t>(from[bigEndian_ ? i : from.size() - 1 - i]);
  }
  return value;
}

void FeatureMap::encode(const Feature& feature, std::size_t slot, std::span<std::byte> to) const {
  if (feature.isInteger()) {
    putInteger(to, static_cast<std::uint64_t>(feature.integer(slot)));
  } else if (feature.kind() == FeatureKind::Float) {
    const double value = feature.floating(slot);
    if (feature.step_ != 0) {
      putInteger(to, static_cast<std::uint64_t>(std::llround(value / feature.step_)));
    } else if (to.size() == 4) {
      putInteger(to, std::bit_cast<std::uint32_t>(static_cast<float>(value)));
    } else {
      putInteger(to, std::bit_cast<std::uint64_t>(value));
    }
  } else if (feature.computeText_) {
    const std::string text = feature.computeText_(slot);
    std::memcpy(to.data(), text.data(), std::min(text.size(), to.size()));
  } else {
    std::memcpy(to.data(), feature.bytes_.data() + slot * feature.length_, to.size());
  }
}

GC_ERROR FeatureMap::writeSlot(Feature& feature, std::size_t slot, std::span<const std::byte> in) {
  if (feature.access_ == Access::ReadOnly || !holds(feature.implementedIf_, feature, slot, true) ||
      !holds(feature.availableIf_, feature, slot, true) || holds(feature.lockedIf_, feature, slot, false)) {
    return GC_ERR_ACCESS_DENIED;
  }
  if (feature.isInteger() || feature.kind() == FeatureKind::Float) {
    return storeNumber(feature, slot, in);
  }
  const auto place = feature.bytes_.begin() + static_cast<std::ptrdiff_t>(slot * feature.length_);
  const std::vector<std::byte> old(place, place + static_cast<std::ptrdiff_t>(feature.length_));
  std::ranges::copy(in, place);
  const GC_ERROR error = feature.written_ ? feature.written_(slot) : GC_ERR_SUCCESS;
  if (error != GC_ERR_SUCCESS) {
    std::ranges::copy(old, place);
  }
  return error;
}

GC_ERROR FeatureMap::storeNumber(Feature& feature, std::size_t slot, std::span<const std::byte> in) {
  const std::uint64_t bits = getInteger(in);
  GC_ERROR error = GC_ERR_SUCCESS;
  if (feature.isInteger()) {
    const std::int64_t value = feature.length_ == 8 ? static_cast<std::int64_t>(bits)
                               : feature.signed_    ? std::int64_t{static_cast<std::int32_t>(bits)}
                                                    : static_cast<std::int64_t>(bits);
    error = checkInteger(feature, slot, value);
    if (error == GC_ERR_SUCCESS) {
      const std::int64_t old = std::exchange(feature.integers_[slot], value);
      error = feature.written_ ? feature.written_(slot) : GC_ERR_SUCCESS;
      if (error != GC_ERR_SUCCESS) {
        feature.integers_[slot] = old;
      }
    }
    return error;
  }
  const double value = feature.step_ != 0     ? static_cast<double>(static_cast<std::int32_t>(bits)) * feature.step_
                       : feature.length_ == 4 ? double{std::bit_cast<float>(static_cast<std::uint32_t>(bits))}
                                              : std::bit_cast<double>(bits);
  error = checkFloat(feature, slot, value);
  if (error == GC_ERR_SUCCESS) {
    const double old = std::exchange(feature.floats_[slot], value);
    error = feature.written_ ? feature.written_(slot) : GC_ERR_SUCCESS;
    if (error != GC_ERR_SUCCESS) {
      feature.floats_[slot] = old;
    }
  }
  return error;
}

GC_ERROR FeatureMap::checkInteger(const Feature& feature, std::size_t slot, std::int64_t value) const {
  if (feature.kind() == FeatureKind::Boolean) {
    return value == 0 || value == 1 ? GC_ERR_SUCCESS : GC_ERR_INVALID_VALUE;
  }
  if (feature.kind() == FeatureKind::Enumeration) {
    const auto entry =
        std::ranges::find_if(feature.entries_, [&](const EnumEntry& candidate) { return candidate.value == value; });
    const bool legal = entry != feature.entries_.end() && holds(entry->availableIf, feature, slot, true);
    return legal ? GC_ERR_SUCCESS : GC_ERR_INVALID_VALUE;
  }
  const Formula::Lookup lookup = lookupFor(feature, slot);
  const std::int64_t low =
      feature.min_.empty() ? std::numeric_limits<std::int64_t>::min() : feature.min_.integer(lookup);
  const std::int64_t high =
      feature.max_.empty() ? std::numeric_limits<std::int64_t>::max() : feature.max_.integer(lookup);
  const std::int64_t inc = feature.inc_.empty() ? 1 : std::max<std::int64_t>(1, feature.inc_.integer(lookup));
  if (value < low || value > high || (inc > 1 && (value - (feature.min_.empty() ? 0 : low)) % inc != 0)) {
    return GC_ERR_INVALID_VALUE;
  }
  return GC_ERR_SUCCESS;
}

GC_ERROR FeatureMap::checkFloat(const Feature& feature, std::size_t slot, double value) const {
  const Formula::Lookup lookup = lookupFor(feature, slot);
  // Converted and shortened registers may miss a limit by a rounding.
  const double slack = feature.step_ != 0 ? feature.step_ / 2 : feature.length_ == 4 ? std::abs(value) * 1e-6 : 0;
  const bool legal = std::isfinite(value) && (feature.min_.empty() || value >= feature.min_.floating(lookup) - slack) &&
                     (feature.max_.empty() || value <= feature.max_.floating(lookup) + slack);
  return legal ? GC_ERR_SUCCESS : GC_ERR_INVALID_VALUE;
}

bool FeatureMap::holds(const Formula& formula, const Feature& feature, std::size_t slot, bool otherwise) const {
  return formula.empty() ? otherwise : formula.floating(lookupFor(feature, slot)) != 0;
}

Formula::Lookup FeatureMap::lookupFor(const Feature& feature, std::size_t slot) const {
  return [this, &feature, slot](const std::string& name) { return variable(*byName_.at(name), feature, slot); };
}

double FeatureMap::variable(const Feature& target, const Feature& user, std::size_t slot) const {
  const std::size_t from =
      target.selectors_ == user.selectors_ ? std::min(slot, target.slots_ - 1) : currentSlot(target);
  return target.kind() == FeatureKind::Float ? target.floating(from) : static_cast<double>(target.integer(from));
}

std::size_t FeatureMap::currentSlot(const Feature& feature) const {
  std::size_t slot = 0;
  for (std::size_t i = 0; i < feature.selectors_.size() && !feature.shared_; ++i) {
    const Feature& selector = *byName_.at(feature.selectors_[i]);
    slot += static_cast<std::size_t>(selector.integer(currentSlot(selector))) * feature.strides_[i];
  }
  return slot < feature.slots_ ? slot : 0;
}

std::int64_t FeatureMap::limitInteger(const Feature& feature, const Formula& limit) const {
  return limit.integer(lookupFor(feature, 0));
}

std::string FeatureMap::saveUserSet() const {
  std::ostringstream out;
  out.imbue(std::locale::classic());  // The application's locale may write commas and group digits.
  out << kUserSetMagic;
  out.precision(17);
  for (const Feature& feature : features_) {
    for (std::size_t slot = 0; feature.stored_ && slot < feature.slots_; ++slot) {
      out << feature.name() << '[' << slot << "]=";
      if (feature.kind() == FeatureKind::Float) {
        out << feature.floats_[slot];
      } else {
        out << feature.integers_[slot];
      }
      out << '\n';
    }
  }
  return out.str();
}

bool FeatureMap::loadUserSet(const std::string& text) {
  if (!text.starts_with(kUserSetMagic)) {
    return false;
  }
  std::istringstream lines(text.substr(kUserSetMagic.size()));
  for (std::string line; std::getline(lines, line);) {
    const std::size_t open = line.find('[');
    const std::size_t equals = line.find("]=");
    if (open == std::string::npos || equals == std::string::npos || equals < open) {
      continue;
    }
    Feature* const feature = find(line.substr(0, open));
    std::size_t slot = 0;
    const char* const slotEnd = line.data() + equals;
    if (feature == nullptr || !feature->stored_ ||
        std::from_chars(line.data() + open + 1, slotEnd, slot).ptr != slotEnd || slot >= feature->slots_) {
      continue;
    }
    std::istringstream value(line.substr(equals + 2));
    value.imbue(std::locale::classic());
    if (feature->kind() == FeatureKind::Float) {
      if (double number = 0; value >> number && checkFloat(*feature, slot, number) == GC_ERR_SUCCESS) {
        feature->floats_[slot] = number;
      }
    } else if (std::int64_t number = 0; value >> number && checkInteger(*feature, slot, number) == GC_ERR_SUCCESS) {
      feature->integers_[slot] = number;
    }
  }
  return true;
}

void FeatureMap::loadDefaults() {
  for (Feature& feature : features_) {
    if (feature.stored_) {
      initialise(feature);
    }
  }
}

}  // namespace vcam
