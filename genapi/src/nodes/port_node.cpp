// Port nodes: connecting, access to the application's port, and the raw cache.
#include "nodes/port_node.h"

#include <algorithm>
#include <typeinfo>
#include <vector>

#include "GenApi/PortImpl.h"
#include "base/chunk_registers.h"
#include "base/limits.h"
#include "model/text.h"
#include "nodemap/call.h"

namespace GenApiEngine {
namespace {

using GENICAM_NAMESPACE::GenericException;

template<class E>
void failAgainAs(const char* type, const NodeCore& node, const GenericException& failure) {
  if (typeid(failure) == typeid(E)) {
    node.failWith<E>(type, failure.GetSourceFileName(), failure.GetSourceLine(), "%s: %s", node.nodeName().c_str(),
                     failure.GetDescription());
  }
}

// An application's port says what went wrong, but not for whom: throws the exception again with the node's name in
// front of its text. What is of the application's own type passes as it is. Only within a handler.
[[noreturn]] void rethrowNaming(const NodeCore& node, const GenericException& failure) {
  using namespace GENICAM_NAMESPACE;
  failAgainAs<GenericException>("GenericException", node, failure);
  failAgainAs<BadAllocException>("BadAllocException", node, failure);
  failAgainAs<InvalidArgumentException>("InvalidArgumentException", node, failure);
  failAgainAs<OutOfRangeException>("OutOfRangeException", node, failure);
  failAgainAs<PropertyException>("PropertyException", node, failure);
  failAgainAs<RuntimeException>("RuntimeException", node, failure);
  failAgainAs<LogicalErrorException>("LogicalErrorException", node, failure);
  failAgainAs<AccessException>("AccessException", node, failure);
  failAgainAs<TimeoutException>("TimeoutException", node, failure);
  failAgainAs<DynamicCastException>("DynamicCastException", node, failure);
  throw;
}

}  // namespace

PortNode::PortNode(NodeMap& map, NodeIndex index)
    : NodeCore(map, index),
      swap_(parseYesNo(propertyText(Element::SwapEndianess), false)) {
  set(kWatchesInvalidation);
}

PortNode::~PortNode() = default;

void PortNode::SetPortImpl(Api::IPort* port) {
  WriteCall call(*this, "SetPortImpl");
  port_ = port;
  raw_.clear();
  rawSize_ = 0;
  ++rawGeneration_;
  map().invalidate(index());
  if (auto* const implementation = dynamic_cast<Api::CPortImpl*>(port)) {
    implementation->SetPortImpl(this);
  }
  call.finish(false);
}

EAccessMode PortNode::naturalAccess() {
  if (port_ != nullptr) {
    return port_->GetAccessMode();
  }
  // Chunk and event ports are there and have just no data yet.
  return waitsForData() ? Api::NA : Api::NI;
}

bool PortNode::waitsForData() const {
  return property(Element::ChunkID) != nullptr || property(Element::pChunkID) != nullptr ||
         property(Element::EventID) != nullptr;
}

void PortNode::requireConnected(const NodeCore& user) const {
  if (port_ == nullptr) {
    NODE_FAIL(user, AccessException, "Port '%s' is not connected.", nodeName().c_str());
  }
}

void PortNode::read(const NodeCore& reader, void* buffer, std::int64_t address, std::int64_t length) {
  requireConnected(reader);
  try {
    port_->Read(buffer, address, length);
  } catch (const GENICAM_NAMESPACE::GenericException& failure) {
    rethrowNaming(reader, failure);
  }
  swapWords(buffer, length);
}

std::int64_t PortNode::offsetOf(const NodeCore& reader, std::int64_t address) {
  if (address >= 0 || !waitsForData() || !Api::IsReadable(accessMode())) {
    return address;
  }
  std::int64_t length = 0;
  read(reader, &length, kDataLengthRegister, sizeof length);
  return address + length;
}

void PortNode::write(const NodeCore& writer, const void* buffer, std::int64_t address, std::int64_t length) {
  requireConnected(writer);
  try {
    if (!swap_) {
      port_->Write(buffer, address, length);
    } else {
      const auto* const bytes = static_cast<const std::uint8_t*>(buffer);
      std::vector<std::uint8_t> swapped(bytes, bytes + length);
      swapWords(swapped.data(), length);
      port_->Write(swapped.data(), address, length);
    }
  } catch (const GENICAM_NAMESPACE::GenericException& failure) {
    rethrowNaming(writer, failure);
  }
  if (recorder_ != nullptr) {
    recorder_->Write(buffer, address, length);
  }
}

void PortNode::swapWords(void* buffer, std::int64_t length) const {
  constexpr std::int64_t kWord = 4;
  if (!swap_) {
    return;
  }
  auto* const bytes = static_cast<std::uint8_t*>(buffer);
  for (std::int64_t at = 0; at + kWord <= length; at += kWord) {
    std::reverse(bytes + at, bytes + at + kWord);
  }
}

void PortNode::Read(void* buffer, int64_t address, int64_t length) {
  const Call call(*this, "Read");
  if (buffer == nullptr || length < 0) {
    NODE_FAIL(*this, InvalidArgumentException, "There is no buffer to read into.");
  }
  read(*this, buffer, address, length);
}

void PortNode::Write(const void* buffer, int64_t address, int64_t length) {
  WriteCall call(*this, "Write");
  if (buffer == nullptr || length < 0) {
    NODE_FAIL(*this, InvalidArgumentException, "There is no buffer to write from.");
  }
  write(*this, buffer, address, length);
  call.finish(false);
}

Api::EYesNo PortNode::GetSwapEndianess() {
  return swap_ ? Api::Yes : Api::No;
}

gcstring PortNode::GetChunkID() const {
  const Call call(*this, "GetChunkID");
  if (NodeCore* const source = other(propertyNode(Element::pChunkID))) {
    std::string text;
    source->readString(text, {});
    return toGc(text);
  }
  return toGc(propertyText(Element::ChunkID));
}

Api::EYesNo PortNode::CacheChunkData() const {
  return parseYesNo(propertyText(Element::CacheChunkData), false) ? Api::Yes : Api::No;
}

void PortNode::Replay(Api::IPortWriteList* writes, bool invalidate) {
  WriteCall call(*this, "Replay");
  requireConnected(*this);
  if (writes != nullptr) {
    writes->Replay(port_);
  }
  if (invalidate) {
    map().invalidate(index());
  }
  call.finish(false);
}

void PortNode::StartRecording(Api::IPortWriteList* writes) {
  const Call call(*this, "StartRecording");
  recorder_ = writes;
}

void PortNode::StopRecording() {
  const Call call(*this, "StopRecording");
  recorder_ = nullptr;
}

std::size_t PortNode::PlaceHash::operator()(const Place& place) const {
  constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15ULL;
  std::uint64_t hash =
      (static_cast<std::uint64_t>(place.address) ^ (static_cast<std::uint64_t>(place.length) << 48)) * kMultiplier;
  return static_cast<std::size_t>(hash ^ (hash >> 32));
}

RawBytes* PortNode::rawBytes(std::int64_t address, std::int64_t length) {
  const auto found = raw_.find({address, length});
  if (found != raw_.end()) {
    return &found->second;
  }
  const auto size = static_cast<std::size_t>(length);
  if (size > kMaxRawCacheBytes / 4) {
    return nullptr;
  }
  constexpr std::size_t kOverhead = 64;
  if (rawSize_ + size + kOverhead > kMaxRawCacheBytes) {
    raw_.clear();
    rawSize_ = 0;
    ++rawGeneration_;
  }
  rawSize_ += size + kOverhead;
  RawBytes& made = raw_[{address, length}];
  if (size > RawBytes::kInline) {
    made.large = std::make_unique<std::uint8_t[]>(size);
  }
  return &made;
}

void PortNode::onInvalidate(bool /*kept*/) {
  for (auto& [place, bytes] : raw_) {
    bytes.valid = false;
  }
}

}  // namespace GenApiEngine
