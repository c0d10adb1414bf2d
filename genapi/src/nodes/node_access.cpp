// What may be done with a node: its access mode out of its own, its guards and what it is computed of; and whether both
// may be kept.
#include "base/limits.h"
#include "model/text.h"
#include "nodemap/call.h"
#include "nodemap/node_map.h"
#include "nodes/node_core.h"

namespace GenApiEngine {
namespace {

using Api::ECachingMode;

bool isLimit(Element element) {
  return element == Element::pMin || element == Element::pMax || element == Element::pInc;
}

bool isGuard(Element element) {
  return element == Element::pIsImplemented || element == Element::pIsAvailable || element == Element::pIsLocked;
}

EAccessMode accessFrom(std::string_view text, EAccessMode otherwise) {
  return equalsIgnoringCase(text, "RO")   ? Api::RO
         : equalsIgnoringCase(text, "WO") ? Api::WO
         : equalsIgnoringCase(text, "RW") ? Api::RW
                                          : otherwise;
}

}  // namespace

EAccessMode NodeCore::GetAccessMode() const {
  const Call call(*this, "GetAccessMode");
  return const_cast<NodeCore*>(this)->accessMode();
}

EAccessMode NodeCore::accessMode() {
  if (access_ != kUnknownAccess) {
    return static_cast<EAccessMode>(access_);
  }
  if (isSet(kAccessBusy)) {
    // The mode depends on itself; what is still open does not restrict it.
    return Api::RW;
  }
  if (map_.descent_ >= kMaxDepth || ++map_.steps_ > kMaxSteps) {
    return Api::NI;
  }
  bool reliable = true;
  ++map_.descent_;
  set(kAccessBusy);
  EAccessMode mode = Api::NI;
  try {
    mode = computeAccess(reliable);
  } catch (...) {
    // Whatever a port throws, an access mode is an answer.
    reliable = false;
    mode = Api::NA;
  }
  clear(kAccessBusy);
  --map_.descent_;
  mode = Api::Combine(mode, static_cast<EAccessMode>(runtimeAccess_));
  if (reliable && accessCacheable()) {
    access_ = static_cast<std::uint8_t>(mode);
    if (Api::IsReadable(mode)) {
      set(kReadable);
    }
  }
  return mode;
}

EAccessMode NodeCore::computeAccess(bool& reliable) {
  if (broken_) {
    return Api::NI;
  }
  if (!hasGuards_) {
    return adjustAccess(naturalAccess());
  }
  EAccessMode failure = Api::RW;
  if (!guardValue(propertyNode(Element::pIsImplemented), Api::NI, failure, reliable)) {
    return failure == Api::RW ? Api::NI : failure;
  }
  if (!obeysGuards()) {
    return adjustAccess(naturalAccess());
  }
  if (!guardValue(propertyNode(Element::pIsAvailable), Api::NA, failure, reliable)) {
    return failure == Api::RW ? Api::NA : failure;
  }
  EAccessMode mode = naturalAccess();
  if (const NodeIndex lock = propertyNode(Element::pIsLocked); lock != kNoNode && mode != Api::NI) {
    if (guardValue(lock, Api::NA, failure, reliable)) {
      mode = Api::Combine(mode, Api::RO);
    } else if (failure != Api::RW) {
      mode = Api::Combine(mode, failure);
    }
  }
  return adjustAccess(Api::Combine(mode, accessFrom(propertyText(Element::ImposedAccessMode), Api::RW)));
}

// True when the guard says yes or is not there. False with a failure other than RW when it could not be asked.
bool NodeCore::guardValue(NodeIndex index, EAccessMode onFailure, EAccessMode& failure, bool& reliable) const {
  NodeCore* const guard = other(index);
  if (guard == nullptr) {
    return true;
  }
  const EAccessMode mode = guard->accessMode();
  if (!Api::IsReadable(mode)) {
    failure = mode == Api::NI ? Api::NI : Api::NA;
    return false;
  }
  try {
    return guard->saysYes({});
  } catch (...) {
    reliable = false;
    failure = onFailure;
    return false;
  }
}

EAccessMode NodeCore::neededAccess(NodeIndex index) const {
  NodeCore* const node = other(index);
  if (node == nullptr) {
    return Api::RW;
  }
  const EAccessMode mode = node->accessMode();
  return mode == Api::NI || mode == Api::NA ? mode : Api::RW;
}

EAccessMode NodeCore::neededAccessOfOperands() {
  EAccessMode mode = Api::RW;
  for (const Property& property : properties()) {
    const Element element = property.element();
    if ((infoOf(element).link == Link::Computes && element != Element::pPort) || isLimit(element)) {
      mode = Api::Combine(mode, neededAccess(property.target));
    }
  }
  return mode;
}

bool NodeCore::accessCacheable() {
  constexpr std::uint8_t kNotKnown = 2;
  if (accessCacheable_ != kNotKnown) {
    return accessCacheable_ != 0;
  }
  if (map_.descent_ >= kMaxDepth) {
    return false;
  }
  ++map_.descent_;
  accessCacheable_ = 1;  // what depends on itself adds nothing
  bool cacheable = true;
  for (const Property& property : properties()) {
    const Element element = property.element();
    const bool matters = infoOf(element).link >= Link::Reads || element == Element::pEnumEntry;
    NodeCore* const node = matters ? other(property.target) : nullptr;
    if (node == nullptr || element == Element::pError || element == Element::pBlockPolling) {
      continue;
    }
    const bool byValue = isGuard(element) || element == Element::pIndex;
    cacheable = cacheable && node->accessCacheable() && (!byValue || node->cachingMode() != Api::NoCache);
  }
  --map_.descent_;
  accessCacheable_ = cacheable ? 1 : 0;
  return cacheable;
}

ECachingMode NodeCore::cachingMode() {
  if (caching_ != kUnknownCaching) {
    return static_cast<ECachingMode>(caching_);
  }
  if (map_.descent_ >= kMaxDepth) {
    return Api::NoCache;
  }
  ++map_.descent_;
  ECachingMode mode = ownCaching();
  caching_ = static_cast<std::uint8_t>(mode);
  for (const Property& property : properties()) {
    NodeCore* const node = infoOf(property.element()).link >= Link::Computes && property.element() != Element::pPort
                               ? other(property.target)
                               : nullptr;
    if (node != nullptr) {
      mode = Api::Combine(mode, node->cachingMode());
    }
  }
  --map_.descent_;
  caching_ = static_cast<std::uint8_t>(mode);
  return mode;
}

void NodeCore::requireReadable(const char* text) {
  if (!isSet(kReadable) && !Api::IsReadable(accessMode())) {
    NODE_FAIL(*this, AccessException, text);
  }
}
void NodeCore::requireWritable(const char* text) {
  if (!Api::IsWritable(accessMode())) {
    NODE_FAIL(*this, AccessException, text);
  }
}
void NodeCore::requireAvailable() {
  if (!Api::IsAvailable(accessMode())) {
    NODE_FAIL(*this, AccessException, "Node is not available.");
  }
}

void NodeCore::ImposeAccessMode(EAccessMode mode) {
  WriteCall call(*this, "ImposeAccessMode");
  runtimeAccess_ = static_cast<std::uint8_t>(mode);
  map_.invalidate(index_);
  call.finish(false);
}

}  // namespace GenApiEngine
