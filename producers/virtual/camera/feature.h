// One feature of a camera: its declaration, from which register and description both follow, and its values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "formula.h"
#include "gentl_interface/GenTL.h"

namespace vcam {

/** What a feature's handlers answer when nothing is wrong. */
inline constexpr GC_ERROR kOk = GC_ERR_SUCCESS;

enum class FeatureKind : std::uint8_t { Integer, Float, Boolean, Enumeration, Command, String, Register };
enum class Access : std::uint8_t { ReadOnly, WriteOnly, ReadWrite };

struct EnumEntry {
  std::string name;
  std::int64_t value = 0;
  std::string toolTip;
  Formula availableIf;  // always, when empty
};

// Declarations chain: map.integer("Width", "ImageFormatControl", "...").unit("px").min("16").max("WidthMax").
// A feature that selectors select has one slot of storage for each combination of their values; slot 0 otherwise.
class Feature {
 public:
  Feature(FeatureKind kind, std::string name, std::string category, std::string toolTip)
      : kind_(kind),
        name_(std::move(name)),
        category_(std::move(category)),
        toolTip_(std::move(toolTip)) {}

  // ---- Declaration ----
  Feature& display(std::string text) {
    displayName_ = std::move(text);
    return *this;
  }
  Feature& describe(std::string text) {
    description_ = std::move(text);
    return *this;
  }
  Feature& unit(std::string text) {
    unit_ = std::move(text);
    return *this;
  }
  Feature& visibility(std::string text) {
    visibility_ = std::move(text);
    return *this;
  }
  Feature& representation(std::string text) {
    representation_ = std::move(text);
    return *this;
  }
  Feature& notation(std::string text, int precision) {
    notation_ = std::move(text);
    precision_ = precision;
    return *this;
  }
  Feature& vendorSpecific() {
    standard_ = false;
    return *this;
  }
  Feature& access(Access a) {
    access_ = a;
    return *this;
  }
  Feature& readOnly() { return access(Access::ReadOnly); }
  Feature& length(std::size_t bytes) {
    length_ = bytes;
    return *this;
  }
  Feature& isSigned() {
    signed_ = true;
    return *this;
  }
  Feature& min(Formula f) {
    min_ = std::move(f);
    return *this;
  }
  Feature& max(Formula f) {
    max_ = std::move(f);
    return *this;
  }
  Feature& inc(Formula f) {
    inc_ = std::move(f);
    return *this;
  }
  Feature& value(std::int64_t v) {
    initialInteger_ = v;
    return *this;
  }
  Feature& value(int v) { return value(std::int64_t{v}); }
  Feature& value(double v) {
    initialFloat_ = v;
    return *this;
  }
  Feature& value(std::string v) {
    initialText_ = std::move(v);
    return *this;
  }
  // A first value that differs from slot to slot.
  Feature& valueOf(std::function<std::int64_t(std::size_t slot)> f) {
    initialOf_ = std::move(f);
    return *this;
  }
  Feature& entry(std::string name, std::int64_t v, std::string toolTip = {}, Formula availableIf = {}) {
    entries_.push_back({std::move(name), v, std::move(toolTip), std::move(availableIf)});
    return *this;
  }
  // Outermost selector first; their values count from 0 and have no gaps.
  Feature& selectedBy(std::vector<std::string> selectors) {
    selectors_ = std::move(selectors);
    return *this;
  }
  // The selectors choose what the feature means, but it has one register for all.
  Feature& sharedBy(std::vector<std::string> selectors) {
    shared_ = true;
    return selectedBy(std::move(selectors));
  }
  Feature& implementedIf(Formula f) {
    implementedIf_ = std::move(f);
    return *this;
  }
  Feature& availableIf(Formula f) {
    availableIf_ = std::move(f);
    return *this;
  }
  Feature& lockedIf(Formula f) {
    lockedIf_ = std::move(f);
    return *this;
  }
  Feature& lockedWhileStreaming() { return lockedIf("TLParamsLocked"); }
  // Changes of these change this feature's value.
  Feature& dependsOn(std::vector<std::string> names) {
    invalidators_ = std::move(names);
    return *this;
  }
  Feature& polled(unsigned ms) {
    pollingMs_ = ms;
    return *this;
  }
  Feature& uncached() {
    cached_ = false;
    return *this;
  }
  // Kept in user sets and streamable by consumers.
  Feature& stored() {
    stored_ = true;
    return *this;
  }
  Feature& at(std::uint64_t address) {
    address_ = address;
    fixed_ = true;
    return *this;
  }
  // The register holds a whole number of steps; the description converts.
  Feature& scaled(double step) {
    step_ = step;
    length_ = 4;
    return *this;
  }
  // Lives on the port of an event or a chunk instead of the register map.
  Feature& onPort(std::string port, std::uint64_t address) {
    port_ = std::move(port);
    return at(address).readOnly();
  }

  // ---- Behaviour; everything is called with the camera's lock held ----
  Feature& computed(std::function<std::int64_t(std::size_t slot)> f) {
    computeInteger_ = std::move(f);
    return *this;
  }
  Feature& computedFloat(std::function<double(std::size_t slot)> f) {
    computeFloat_ = std::move(f);
    return *this;
  }
  Feature& computedText(std::function<std::string(std::size_t slot)> f) {
    computeText_ = std::move(f);
    return *this;
  }
  // After a write was accepted and stored; may still refuse it, then the old value comes back.
  Feature& onWrite(std::function<GC_ERROR(std::size_t slot)> f) {
    written_ = std::move(f);
    return *this;
  }

  // ---- Values ----
  const std::string& name() const { return name_; }
  FeatureKind kind() const { return kind_; }
  std::int64_t integer(std::size_t slot = 0) const { return computeInteger_ ? computeInteger_(slot) : integers_[slot]; }
  // What was set, where computing limits it on reading.
  std::int64_t setting(std::size_t slot = 0) const { return integers_[slot]; }
  double settingFloat(std::size_t slot = 0) const { return floats_[slot]; }
  double floating(std::size_t slot = 0) const { return computeFloat_ ? computeFloat_(slot) : floats_[slot]; }
  bool on(std::size_t slot = 0) const { return integer(slot) != 0; }
  std::string text(std::size_t slot = 0) const;
  void set(std::int64_t v, std::size_t slot = 0) { integers_[slot] = v; }
  void setFloat(double v, std::size_t slot = 0) { floats_[slot] = v; }
  void setText(const std::string& v);
  std::vector<std::byte>& bytes() { return bytes_; }
  const std::vector<std::byte>& bytes() const { return bytes_; }
  std::size_t slots() const { return slots_; }
  std::size_t registerLength() const { return length_; }
  std::uint64_t address() const { return address_; }

  bool isInteger() const {
    return kind_ == FeatureKind::Integer || kind_ == FeatureKind::Boolean || kind_ == FeatureKind::Enumeration ||
           kind_ == FeatureKind::Command;
  }

 private:
  friend class FeatureMap;
  friend class DescriptionWriter;

  FeatureKind kind_;
  std::string name_;
  std::string category_;
  std::string toolTip_;
  std::string displayName_;
  std::string description_;
  std::string unit_;
  std::string visibility_ = "Beginner";
  std::string representation_;
  std::string notation_;
  int precision_ = 6;
  bool standard_ = true;
  Access access_ = Access::ReadWrite;
  std::size_t length_ = 0;
  bool signed_ = false;
  Formula min_;
  Formula max_;
  Formula inc_;
  std::int64_t initialInteger_ = 0;
  double initialFloat_ = 0;
  std::string initialText_;
  std::function<std::int64_t(std::size_t)> initialOf_;
  std::vector<EnumEntry> entries_;
  std::vector<std::string> selectors_;
  bool shared_ = false;
  Formula implementedIf_;
  Formula availableIf_;
  Formula lockedIf_;
  std::vector<std::string> invalidators_;
  unsigned pollingMs_ = 0;
  bool cached_ = true;
  bool stored_ = false;
  bool fixed_ = false;
  double step_ = 0;
  std::string port_;
  std::uint64_t address_ = 0;

  std::function<std::int64_t(std::size_t)> computeInteger_;
  std::function<double(std::size_t)> computeFloat_;
  std::function<std::string(std::size_t)> computeText_;
  std::function<GC_ERROR(std::size_t)> written_;

  std::size_t slots_ = 1;
  std::vector<std::size_t> strides_;  // slots that a step of each selector skips
  std::vector<std::int64_t> integers_;
  std::vector<double> floats_;
  std::vector<std::byte> bytes_;
};

}  // namespace vcam
