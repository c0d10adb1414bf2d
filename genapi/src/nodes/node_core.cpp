// Caches and the generic answers of nodes.
#include "nodes/node_core.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/limits.h"
#include "model/text.h"
#include "nodemap/call.h"
#include "nodemap/node_map.h"
#include "nodes/node_callbacks.h"
#include "nodes/property_values.h"

namespace GenApiEngine {
namespace {

using Api::ECachingMode;
using Api::EVisibility;

struct VisibilityName {
  std::string_view name;
  EVisibility visibility;
};
constexpr std::array kVisibilities{VisibilityName{"Beginner", Api::Beginner}, VisibilityName{"Expert", Api::Expert},
                                   VisibilityName{"Guru", Api::Guru}, VisibilityName{"Invisible", Api::Invisible}};

}  // namespace

NodeCore::NodeCore(NodeMap& map, NodeIndex index) : map_(map), index_(index) {
  const NodeRecord& known = record();
  broken_ = known.broken;
  hasGuards_ = known.guarded;
  hasErrors_ = known.hasErrors;
}

NodeCore::~NodeCore() {
  if (callbacks_ != nullptr) {
    for (Api::CNodeCallback* callback : callbacks_->registered) {
      if (callback != nullptr) {
        callback->Destroy();
      }
    }
    callbacks_->destroyEnded();
  }
}

const NodeRecord& NodeCore::record() const {
  return map_.model().node(index_);
}
std::string_view NodeCore::name() const {
  return map_.model().name(record());
}
std::string NodeCore::nodeName() const {
  return map_.model().fullName(record());
}
std::span<const Property> NodeCore::properties() const {
  return map_.model().properties(record());
}
const Property* NodeCore::property(Element element) const {
  return map_.model().find(record(), element);
}
std::string_view NodeCore::propertyText(Element element) const {
  const Property* found = property(element);
  return found == nullptr ? std::string_view() : map_.model().text(*found);
}
NodeIndex NodeCore::propertyNode(Element element) const {
  const Property* found = property(element);
  return found == nullptr ? kNoNode : found->target;
}
NodeCore* NodeCore::other(NodeIndex index) const {
  return map_.node(index);
}

// Caches.

void NodeCore::valueRead() {
  if (cachingMode() != Api::NoCache) {
    set(kValid);
  }
}

void NodeCore::valueWritten() {
  if (cachingMode() == Api::WriteThrough) {
    set(kValid);
    keepThroughWrite();
  } else {
    clear(kValid);
  }
}

void NodeCore::keepThroughWrite() {
  keepEpoch_ = map_.writeEpoch();
}

void NodeCore::dropCaches(std::uint32_t keepEpoch) {
  const bool kept = keepEpoch != 0 && keepEpoch_ == keepEpoch;
  access_ = kUnknownAccess;
  clear(kReadable);
  if (!kept) {
    clear(kValid);
  }
  if (isSet(kWatchesInvalidation)) {
    onInvalidate(kept);
  }
}

void NodeCore::InvalidateNode() {
  WriteCall call(*this, "InvalidateNode");
  map_.invalidate(index_);
  call.finish(false);
}

bool NodeCore::IsCachable() const {
  return GetCachingMode() != Api::NoCache;
}
Api::EYesNo NodeCore::IsAccessModeCacheable() const {
  const Call call(*this, "IsAccessModeCacheable");
  return const_cast<NodeCore*>(this)->accessCacheable() ? Api::Yes : Api::No;
}
ECachingMode NodeCore::GetCachingMode() const {
  const Call call(*this, "GetCachingMode");
  return const_cast<NodeCore*>(this)->cachingMode();
}

// Values that a node does not have.

std::int64_t NodeCore::readInt(ReadFlags) {
  NODE_FAIL(*this, RuntimeException, "Node has no numeric value.");
}
double NodeCore::readFloat(ReadFlags) {
  NODE_FAIL(*this, RuntimeException, "Node has no numeric value.");
}
void NodeCore::writeInt(std::int64_t, bool) {
  NODE_FAIL(*this, RuntimeException, "Node has no numeric value.");
}
void NodeCore::writeFloat(double, bool) {
  NODE_FAIL(*this, RuntimeException, "Node has no numeric value.");
}
void NodeCore::readString(std::string&, ReadFlags) {
  NODE_FAIL(*this, RuntimeException, "Node has no string value.");
}
void NodeCore::writeString(std::string_view, bool) {
  NODE_FAIL(*this, RuntimeException, "Node has no string value.");
}
std::int64_t NodeCore::entryValue(std::string_view) {
  NODE_FAIL(*this, RuntimeException, "Node has no entries.");
}
const Property* NodeCore::inherited(Element element) const {
  const NodeCore* node = this;
  for (std::uint32_t depth = 0; node != nullptr && depth < kMaxDepth; ++depth, node = node->valueSource()) {
    if (const Property* own = node->property(element)) {
      return own;
    }
  }
  return nullptr;
}
Api::ERepresentation NodeCore::representation() const {
  const Property* found = inherited(Element::Representation);
  const auto value = found == nullptr ? Api::_UndefinedRepresentation : representationFrom(map_.model().text(*found));
  return value == Api::_UndefinedRepresentation ? Api::PureNumber : value;
}
std::string NodeCore::unit() const {
  const Property* found = inherited(Element::Unit);
  return found == nullptr ? std::string() : toUtf8(map_.model().text(*found));
}
Api::EDisplayNotation NodeCore::displayNotation() const {
  const Property* found = inherited(Element::DisplayNotation);
  const auto value = found == nullptr ? Api::_UndefinedEDisplayNotation : notationFrom(map_.model().text(*found));
  return value == Api::_UndefinedEDisplayNotation ? Api::fnAutomatic : value;
}
std::int64_t NodeCore::displayPrecision() const {
  constexpr std::int64_t kDefault = 6;
  const Property* found = inherited(Element::DisplayPrecision);
  return found == nullptr ? kDefault : map_.model().integer(*found);
}

void NodeCore::checkErrors() {
  if (!hasErrors_) {
    return;
  }
  for (const Property& property : properties()) {
    NodeCore* const error = property.element() == Element::pError ? other(property.target) : nullptr;
    // What an error node cannot say is no error of the write, which has succeeded.
    if (error == nullptr || !Api::IsReadable(error->accessMode()) || !error->saysYes({false, true})) {
      continue;
    }
    std::string text = "Error reported by " + error->nodeName();
    if (auto* enumeration = dynamic_cast<Api::IEnumeration*>(error)) {
      if (auto* entry = dynamic_cast<INode*>(enumeration->GetCurrentEntry())) {
        text = std::string(entry->GetDisplayName().c_str()) + " : " + entry->GetToolTip().c_str();
      }
    }
    NODE_FAIL(*this, RuntimeException, "%s", text.c_str());
  }
}

// Descriptive answers.

gcstring NodeCore::GetName(bool fullQualified) const {
  const std::string full = nodeName();
  return fullQualified ? toGc((record().standard ? "Std::" : "Cust::") + full) : toGc(full);
}
Api::ENameSpace NodeCore::GetNameSpace() const {
  return record().standard ? Api::Standard : Api::Custom;
}

EVisibility NodeCore::GetVisibility() const {
  const Call call(*this, "GetVisibility");
  return const_cast<NodeCore*>(this)->visibility();
}
EVisibility NodeCore::visibility() {
  return Api::Combine(ownVisibility(), static_cast<EVisibility>(runtimeVisibility_));
}
EVisibility NodeCore::ownVisibility() {
  const std::string_view text = propertyText(Element::Visibility);
  const auto* found =
      std::ranges::find_if(kVisibilities, [text](const VisibilityName& v) { return equalsIgnoringCase(v.name, text); });
  return found == kVisibilities.end() ? Api::Beginner : found->visibility;
}
void NodeCore::ImposeVisibility(EVisibility visibility) {
  const Call call(*this, "ImposeVisibility");
  runtimeVisibility_ = static_cast<std::uint8_t>(visibility);
}

int64_t NodeCore::GetPollingTime() const {
  const Property* time = property(Element::PollingTime);
  return time == nullptr ? -1 : map_.model().integer(*time);
}
gcstring NodeCore::GetToolTip() const {
  return toGc(toUtf8(propertyText(Element::ToolTip)));
}
gcstring NodeCore::GetDescription() const {
  return toGc(toUtf8(propertyText(Element::Description)));
}
gcstring NodeCore::GetDisplayName() const {
  const std::string_view text = propertyText(Element::DisplayName);
  return toGc(text.empty() ? defaultDisplayName() : toUtf8(text));
}
std::string NodeCore::defaultDisplayName() const {
  return nodeName();
}
gcstring NodeCore::GetDeviceName() const {
  return toGc(map_.deviceName());
}
gcstring NodeCore::GetEventID() const {
  return toGc(propertyText(Element::EventID));
}
bool NodeCore::IsStreamable() const {
  return parseYesNo(propertyText(Element::Streamable), false);
}
bool NodeCore::IsDeprecated() const {
  return parseYesNo(propertyText(Element::IsDeprecated), false);
}
gcstring NodeCore::GetDocuURL() const {
  return toGc(toUtf8(propertyText(Element::DocuURL)));
}
bool NodeCore::IsFeature() const {
  return record().feature;
}
Api::INodeMap* NodeCore::GetNodeMap() const {
  return &map_;
}
Api::EInterfaceType NodeCore::GetPrincipalInterfaceType() const {
  return Api::intfIBase;
}
Api::INode* NodeCore::GetAlias() const {
  return other(propertyNode(Element::pAlias));
}
Api::INode* NodeCore::GetCastAlias() const {
  return other(propertyNode(Element::pCastAlias));
}

bool NodeCore::FindInterface(int type, void** found) {
  if (type == Api::kInterfaceINode) {
    *found = static_cast<INode*>(this);
  } else if (type == Api::intfIValue) {
    *found = asValue();
  } else {
    *found = interfaceOf(type);
  }
  return true;
}

Api::UserData_t NodeCore::GetUserData() const {
  return userData_;
}
Api::UserData_t NodeCore::SetUserData(Api::UserData_t data) {
  return std::exchange(userData_, data);
}

gcstring NodeCore::entryPoint() const {
  if (map_.callDepth_ == 0 || map_.entryNode_ == nullptr) {
    return {};
  }
  return toGc(map_.entryNode_->nodeName() + "." + map_.entryMethod_ + "()");
}

ValueDescent::ValueDescent(NodeCore& node, std::uint8_t& state, std::uint8_t busyBit)
    : map_(node.map()),
      state_(state),
      busyBit_(busyBit) {
  // A write that is not verified does not ask for the access mode.
  if (node.isBroken()) {
    NODE_FAIL(node, AccessException, "Node is not implemented.");
  }
  if ((state & busyBit) != 0) {
    NODE_FAIL(node, RuntimeException, "The value depends on itself.");
  }
  if (map_.descent_ >= kMaxDepth) {
    NODE_FAIL(node, RuntimeException, "The value depends on a chain of more than %u nodes.", kMaxDepth);
  }
  if (++map_.steps_ > kMaxSteps) {
    NODE_FAIL(node, RuntimeException, "The value needs more than %u other values.", kMaxSteps);
  }
  ++map_.descent_;
  state_ = static_cast<std::uint8_t>(state_ | busyBit_);
}

ValueDescent::~ValueDescent() {
  state_ = static_cast<std::uint8_t>(state_ & ~busyBit_);
  --map_.descent_;
}

}  // namespace GenApiEngine
