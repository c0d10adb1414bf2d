// Enumeration nodes: a number with names for its values.
#pragma once

#include "nodes/enum_entry_node.h"
#include "nodes/value_node.h"
#include "nodes/value_source.h"

namespace GenApiEngine {

class EnumerationNode final : public ValueNode<Api::IEnumeration> {
 public:
  EnumerationNode(NodeMap& map, NodeIndex index);

  void GetSymbolics(Api::StringList_t& symbolics) override;
  void GetEntries(Api::NodeList_t& entries) override;
  Api::IEnumeration& operator=(const gcstring& text) override;
  gcstring operator*() override { return ToString(false, false); }
  void SetIntValue(int64_t value, bool verify) override;
  int64_t GetIntValue(bool verify, bool ignoreCache) override;
  Api::IEnumEntry* GetEntryByName(const gcstring& symbolic) override;
  Api::IEnumEntry* GetEntry(int64_t value) override;
  Api::IEnumEntry* GetCurrentEntry(bool verify, bool ignoreCache) override;

  // As a number an enumeration is the numeric value of its entry.
  std::int64_t readInt(ReadFlags flags) override;
  double readFloat(ReadFlags flags) override;
  /// As a guard, though, it is the value of its entry.
  bool saysYes(ReadFlags flags) override;
  void writeInt(std::int64_t value, bool verify) override;
  void writeFloat(double value, bool verify) override;
  std::int64_t entryValue(std::string_view symbolic) override;
  NodeCore* valueSource() const override { return source_.node(*this); }
  bool isPolledNow() override;

 protected:
  std::string textValue(ReadFlags flags) override;
  void setText(std::string_view text, bool verify) override;
  EAccessMode naturalAccess() override { return source_.access(*this); }
  EAccessMode adjustAccess(EAccessMode mode) override;

 private:
  EnumEntryNode& entry(NodeIndex index) const { return static_cast<EnumEntryNode&>(*other(index)); }
  EnumEntryNode* byValue(std::int64_t value) const;
  EnumEntryNode* byName(std::string_view symbolic) const;
  /// The number behind, without regard to the enumeration's own access mode.
  std::int64_t readRaw(ReadFlags flags);
  void writeRaw(std::int64_t value, bool verify);

  /// Whether the entry of that value goes back to another one by itself.
  bool clearsItself(std::int64_t value);

  enum class Clears : std::uint8_t { NotKnown, None, Some };

  mutable ValueSource<std::int64_t> source_;
  std::span<NodeIndex> entries_;
  std::int64_t value_ = 0;
  Clears clears_ = Clears::NotKnown;
  bool isClearing_ = false;  // the last known entry clears itself: no cache knows the value
};

}  // namespace GenApiEngine
