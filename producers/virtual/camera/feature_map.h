// The features of one camera as a register space: declared once, sealed, then read and written by address.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "feature.h"

namespace vcam {

// A port of the description whose contents arrive with an event or in a chunk.
struct DataPort {
  enum class Kind : std::uint8_t { Event, Chunk };
  std::string name;
  Kind kind = Kind::Event;
  std::uint64_t id = 0;
};

struct Category {
  std::string name;
  std::string toolTip;
  std::string parent;  // empty below the root
};

// Not thread-safe: the camera locks around it.
class FeatureMap {
 public:
  explicit FeatureMap(bool bigEndian) : bigEndian_(bigEndian) {}

  // ---- Declaration ----
  void category(std::string name, std::string toolTip, std::string parent = {});
  void port(DataPort port) { ports_.push_back(std::move(port)); }
  Feature& integer(std::string name, std::string category, std::string toolTip);
  Feature& floating(std::string name, std::string category, std::string toolTip);
  Feature& boolean(std::string name, std::string category, std::string toolTip);
  Feature& enumeration(std::string name, std::string category, std::string toolTip);
  Feature& command(std::string name, std::string category, std::string toolTip);
  Feature& string(std::string name, std::string category, std::string toolTip, std::size_t length = 64);
  Feature& bytes(std::string name, std::string category, std::string toolTip, std::size_t length);
  // Nodes of the description that no declaration above can express; they refer to declared registers.
  void extraNodes(std::string_view xml, const std::vector<std::pair<std::string, std::string>>& categoryAndFeature);

  // Ends the declaration: gives every feature its address and its first value. A declaration that contradicts itself
  // throws std::logic_error.
  void seal();

  // ---- Use ----
  bool isBigEndian() const { return bigEndian_; }
  Feature* find(const std::string& name);
  const Feature* find(const std::string& name) const;
  const std::deque<Feature>& features() const { return features_; }
  const std::vector<Category>& categories() const { return categories_; }
  const std::vector<DataPort>& ports() const { return ports_; }
  const std::string& extraXml() const { return extraXml_; }
  const std::vector<std::pair<std::string, std::string>>& extraFeatures() const { return extraFeatures_; }
  std::uint64_t endAddress() const { return endAddress_; }

  GC_ERROR read(std::uint64_t address, std::span<std::byte> out);
  GC_ERROR write(std::uint64_t address, std::span<const std::byte> in) {
    std::size_t moved = 0;
    return write(address, in, moved);
  }
  // `moved` is set to the bytes of the registers that took their part, also when a later one does not.
  GC_ERROR write(std::uint64_t address, std::span<const std::byte> in, std::size_t& moved);

  // From now on a command reads as under way for this many polls after each execution; 0 withdraws it.
  void setBusyPolls(std::uint32_t polls);

  // The slot that the selectors choose now.
  std::size_t currentSlot(const Feature& feature) const;
  std::int64_t limitInteger(const Feature& feature, const Formula& limit) const;

  // The text of a user set: a line "Name[slot]=value" for each stored value. Loading sets what it knows and can, in an
  // order in which limits allow it, and leaves the rest; false when the text is no user set at all.
  std::string saveUserSet() const;
  bool loadUserSet(const std::string& text);
  // The first values of all stored features.
  void loadDefaults();

  // A number in the camera's byte order.
  void putInteger(std::span<std::byte> to, std::uint64_t value) const;
  std::uint64_t getInteger(std::span<const std::byte> from) const;

 private:
  Feature& add(FeatureKind kind, std::string name, std::string category, std::string toolTip, std::size_t length);
  void layOut(Feature& feature);
  void initialise(Feature& feature);
  Feature* featureAt(std::uint64_t address);
  void encode(const Feature& feature, std::size_t slot, std::span<std::byte> to) const;
  GC_ERROR writeSlot(Feature& feature, std::size_t slot, std::span<const std::byte> in);
  GC_ERROR storeNumber(Feature& feature, std::size_t slot, std::span<const std::byte> in);
  GC_ERROR checkInteger(const Feature& feature, std::size_t slot, std::int64_t value) const;
  GC_ERROR checkFloat(const Feature& feature, std::size_t slot, double value) const;
  bool holds(const Formula& formula, const Feature& feature, std::size_t slot, bool otherwise) const;
  Formula::Lookup lookupFor(const Feature& feature, std::size_t slot) const;
  double variable(const Feature& target, const Feature& user, std::size_t slot) const;

  bool bigEndian_;
  std::deque<Feature> features_;
  std::vector<Category> categories_;
  std::vector<DataPort> ports_;
  std::string extraXml_;
  std::vector<std::pair<std::string, std::string>> extraFeatures_;
  std::unordered_map<std::string, Feature*> byName_;
  std::map<std::uint64_t, Feature*> byAddress_;
  std::uint64_t endAddress_ = 0;
  std::uint32_t busyPolls_ = 0;
  std::unordered_map<const Feature*, std::uint32_t> busy_;  // commands and the polls that still find them under way
};

}  // namespace vcam
