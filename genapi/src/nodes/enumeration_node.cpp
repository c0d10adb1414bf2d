// Entries, current value and writing of Enumeration nodes.
#include "nodes/enumeration_node.h"

#include <algorithm>
#include <cinttypes>
#include <cmath>
#include <ranges>

namespace GenApiEngine {

EnumerationNode::EnumerationNode(NodeMap& map, NodeIndex index) : ValueNode(map, index), source_(*this) {
  const Model& model = map.model();
  const auto isEntry = [&model](const Property& p) {
    return p.element() == Element::pEnumEntry && p.target != kNoNode &&
           model.node(p.target).kind == NodeKind::EnumEntry;
  };
  const auto all = properties();
  entries_ = map.arena().array<NodeIndex>(static_cast<std::size_t>(std::count_if(all.begin(), all.end(), isEntry)));
  std::size_t next = 0;
  for (const Property& property : all) {
    if (isEntry(property)) {
      entries_[next++] = property.target;
    }
  }
}

// Of two entries with one value the later one counts.
EnumEntryNode* EnumerationNode::byValue(std::int64_t value) const {
  const auto found =
      std::ranges::find_if(entries_ | std::views::reverse, [&](NodeIndex i) { return entry(i).value() == value; });
  return found == entries_.rend() ? nullptr : &entry(*found);
}

EnumEntryNode* EnumerationNode::byName(std::string_view symbolic) const {
  const auto found = std::ranges::find_if(entries_, [&](NodeIndex i) { return entry(i).symbolic() == symbolic; });
  return found == entries_.end() ? nullptr : &entry(*found);
}

EAccessMode EnumerationNode::adjustAccess(EAccessMode mode) {
  if (entries_.empty() || mode == Api::NI || mode == Api::NA) {
    return mode;
  }
  bool implemented = false;
  for (const NodeIndex index : entries_) {
    const EAccessMode entryMode = entry(index).accessMode();
    if (Api::IsAvailable(entryMode)) {
      return mode;
    }
    implemented = implemented || Api::IsImplemented(entryMode);
  }
  return implemented ? Api::NA : Api::NI;
}

std::int64_t EnumerationNode::readRaw(ReadFlags flags) {
  if (isSet(kValid) && !flags.verify && !flags.ignoreCache) {
    return value_;
  }
  const ValueDescent descent(*this, state_, kValueBusy);
  value_ = source_.read(*this, {flags.verify, flags.ignoreCache || isClearing_});
  isClearing_ = clearsItself(value_);
  if (isClearing_) {
    clear(kValid);
  } else {
    valueRead();
  }
  return value_;
}

bool EnumerationNode::clearsItself(std::int64_t value) {
  if (clears_ == Clears::NotKnown) {
    const bool any = std::ranges::any_of(entries_, [&](NodeIndex i) { return entry(i).IsSelfClearing(); });
    clears_ = any ? Clears::Some : Clears::None;
  }
  EnumEntryNode* const current = clears_ == Clears::Some ? byValue(value) : nullptr;
  return current != nullptr && current->IsSelfClearing();
}

void EnumerationNode::writeRaw(std::int64_t value, bool verify) {
  if (verify) {
    requireWritable();
    EnumEntryNode* const chosen = byValue(value);
    if (chosen == nullptr) {
      NODE_FAIL(*this, OutOfRangeException, "There is no entry with the value %" PRId64 ".", value);
    }
    if (!Api::IsAvailable(chosen->accessMode())) {
      NODE_FAIL(*this, AccessException, "Failed to write enumeration value. Enum entry is not writable");
    }
  }
  const ValueDescent descent(*this, state_, kWriteBusy);
  source_.write(*this, value, verify);
  value_ = value;
  isClearing_ = clearsItself(value);
  if (isClearing_) {
    clear(kValid);
  } else {
    valueWritten();
  }
}

void EnumerationNode::GetSymbolics(Api::StringList_t& symbolics) {
  const Call call(*this, "GetSymbolics");
  symbolics.clear();
  for (const NodeIndex index : entries_) {
    if (Api::IsAvailable(entry(index).accessMode())) {
      symbolics.push_back(toGc(entry(index).symbolic()));
    }
  }
}

void EnumerationNode::GetEntries(Api::NodeList_t& entries) {
  entries.clear();
  for (const NodeIndex index : entries_) {
    entries.push_back(&entry(index));
  }
}

Api::IEnumeration& EnumerationNode::operator=(const gcstring& text) {
  FromString(text, true);
  return *this;
}

void EnumerationNode::SetIntValue(int64_t value, bool verify) {
  WriteCall call(*this, "SetIntValue");
  writeRaw(value, verify);
  call.finish(verify);
}

int64_t EnumerationNode::GetIntValue(bool verify, bool ignoreCache) {
  const Api::AutoLock lock(map().GetLock());
  if (isReady() && !verify && !ignoreCache) {
    return value_;
  }
  const Frame frame(*this, "GetIntValue");
  requireReadable();
  const std::int64_t value = readRaw({verify, ignoreCache});
  if (verify) {
    checkErrors();
  }
  return value;
}

Api::IEnumEntry* EnumerationNode::GetEntryByName(const gcstring& symbolic) {
  return byName({symbolic.c_str(), symbolic.size()});
}

Api::IEnumEntry* EnumerationNode::GetEntry(const int64_t value) {
  return byValue(value);
}

Api::IEnumEntry* EnumerationNode::GetCurrentEntry(bool verify, bool ignoreCache) {
  const Call call(*this, "GetCurrentEntry");
  if (!Api::IsAvailable(accessMode())) {
    NODE_FAIL(*this, AccessException, "Node is not readable.");
  }
  // What can only be written may still be known from the last write.
  const std::int64_t value = readRaw({verify, ignoreCache});
  EnumEntryNode* const current = byValue(value);
  if (current == nullptr && verify) {
    NODE_FAIL(*this, OutOfRangeException, "There is no entry with the value %" PRId64 ".", value);
  }
  return current;
}

double EnumerationNode::readFloat(ReadFlags flags) {
  requireReadable();
  const std::int64_t value = readRaw(flags);
  const EnumEntryNode* const current = byValue(value);
  return current == nullptr ? static_cast<double>(value) : current->numericValue();
}

std::int64_t EnumerationNode::readInt(ReadFlags flags) {
  requireReadable();
  const std::int64_t value = readRaw(flags);
  const EnumEntryNode* const current = byValue(value);
  if (current == nullptr || current->numericValue() == static_cast<double>(value)) {
    return value;
  }
  constexpr double kEdge = 9223372036854775808.0;  // 2^63
  const double numeric = current->numericValue();
  if (!(numeric >= -kEdge && numeric < kEdge)) {
    NODE_FAIL(*this, RuntimeException, "Value %f does not fit into an integer.", numeric);
  }
  return std::llround(numeric);
}

bool EnumerationNode::saysYes(ReadFlags flags) {
  requireReadable();
  return readRaw(flags) != 0;
}

void EnumerationNode::writeInt(std::int64_t value, bool verify) {
  writeFloat(static_cast<double>(value), verify);
}

// Takes the entry whose number is nearest.
void EnumerationNode::writeFloat(double value, bool verify) {
  const EnumEntryNode* nearest = nullptr;
  for (const NodeIndex index : entries_) {
    EnumEntryNode& candidate = entry(index);
    if (Api::IsAvailable(candidate.accessMode()) &&
        (nearest == nullptr ||
         std::fabs(candidate.numericValue() - value) < std::fabs(nearest->numericValue() - value))) {
      nearest = &candidate;
    }
  }
  if (nearest == nullptr) {
    NODE_FAIL(*this, AccessException, "Failed to write enumeration. None of the entries is writable");
  }
  writeRaw(nearest->value(), verify);
}

std::int64_t EnumerationNode::entryValue(std::string_view symbolic) {
  const EnumEntryNode* const found = byName(symbolic);
  if (found == nullptr) {
    NODE_FAIL(*this, RuntimeException, "There is no entry '%s'.", std::string(symbolic).c_str());
  }
  return found->value();
}

// Polling is for entries that go back to another one by themselves, until somebody reads that it has happened.
bool EnumerationNode::isPolledNow() {
  try {
    if (!Api::IsReadable(accessMode())) {
      return false;
    }
    if (!isClearing_) {
      readRaw({});
    }
    return isClearing_;
  } catch (...) {
    return false;
  }
}

std::string EnumerationNode::textValue(ReadFlags flags) {
  const std::int64_t value = readRaw(flags);
  const EnumEntryNode* const current = byValue(value);
  if (current == nullptr) {
    NODE_FAIL(*this, InvalidArgumentException, "There is no entry with the value %" PRId64 ".", value);
  }
  return std::string(current->symbolic());
}

void EnumerationNode::setText(std::string_view text, bool verify) {
  const EnumEntryNode* const chosen = byName(text);
  if (chosen == nullptr) {
    NODE_FAIL(*this, InvalidArgumentException, "Feature '%s' : cannot convert value '%s', the value is invalid.",
              nodeName().c_str(), std::string(text).c_str());
  }
  writeRaw(chosen->value(), verify);
}

}  // namespace GenApiEngine
