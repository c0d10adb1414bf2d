// Building a node map and the operations over several of its nodes.
#include "nodemap/node_map.h"

#include <algorithm>
#include <chrono>
#include <ranges>
#include <utility>

#include "GenICamVersion.h"
#include "base/limits.h"
#include "nodemap/call.h"
#include "nodes/node_factory.h"
#include "nodes/port_node.h"

namespace GenApiEngine {

void* Arena::allocate(std::size_t size, std::size_t alignment) {
  // Alignments are powers of two.
  const std::size_t padding = (0 - reinterpret_cast<std::uintptr_t>(next_)) & (alignment - 1);
  if (next_ == nullptr || padding + size > left_) {
    constexpr std::size_t kSmallestChunk = 1024;
    constexpr std::size_t kLargestChunk = 64 * 1024;
    reserve(std::max(size, std::clamp(bytes_ / 4, kSmallestChunk, kLargestChunk)));
    return allocate(size, alignment);
  }
  std::byte* const place = next_ + padding;
  next_ = place + size;
  left_ -= padding + size;
  return place;
}

void Arena::reserve(std::size_t bytes) {
  chunks_.push_back({std::make_unique_for_overwrite<std::byte[]>(bytes), bytes});
  next_ = chunks_.back().data.get();
  left_ = bytes;
  bytes_ += bytes;
}

NodeMap::NodeMap(std::shared_ptr<const Model> model, std::string deviceName, Api::CLock* userLock)
    : lock_(userLock != nullptr ? *userLock : ownLock_),
      model_(std::move(model)),
      deviceName_(std::move(deviceName)) {
  const auto begin = std::chrono::steady_clock::now();
  try {
    build();
  } catch (...) {
    std::ranges::for_each(nodes_, [](NodeCore* node) { std::destroy_at(node); });
    throw;
  }
  buildTime_ = std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now() - begin).count();
}

void NodeMap::build() {
  std::size_t bytes = 0;
  for (const NodeRecord& record : model_->nodes()) {
    bytes += sizeOfNode(record.kind);
  }
  if (bytes != 0) {
    arena_.reserve(bytes + bytes / 32);
  }
  nodes_.reserve(model_->nodes().size());
  for (NodeIndex i = 0; i < model_->nodes().size(); ++i) {
    nodes_.push_back(makeNode(*this, i));
  }
}

NodeMap::~NodeMap() {
  std::ranges::for_each(nodes_ | std::views::reverse, [](NodeCore* node) { std::destroy_at(node); });
}

void NodeMap::Destroy() {
  delete this;
}

void NodeMap::GetNodes(Api::NodeList_t& nodes) const {
  nodes.clear();
  nodes.reserve(nodes_.size());
  for (NodeCore* node : nodes_) {
    nodes.push_back(node);
  }
}

Api::INode* NodeMap::GetNode(const gcstring& name) const {
  return node(model_->indexOf({name.c_str(), name.size()}));
}

uint64_t NodeMap::GetNumNodes() const {
  return nodes_.size();
}

std::size_t NodeMap::memoryBytes() const {
  return sizeof *this + arena_.bytes() + nodes_.capacity() * sizeof(NodeCore*) + queue_.capacity() * sizeof(NodeIndex);
}

// Ports.

bool NodeMap::connect(Api::IPort* port, std::string_view portName) {
  NodeCore* const found = node(model_->indexOf(portName));
  auto* const portNode = dynamic_cast<PortNode*>(found);
  if (portNode == nullptr) {
    return false;
  }
  portNode->SetPortImpl(port);
  return true;
}
bool NodeMap::Connect(Api::IPort* port, const gcstring& portName) const {
  return const_cast<NodeMap*>(this)->connect(port, {portName.c_str(), portName.size()});
}
bool NodeMap::Connect(Api::IPort* port) const {
  return const_cast<NodeMap*>(this)->connect(port, "Device");
}
bool NodeMap::Connect(Api::IPortStacked* port, const gcstring& portName) {
  return connect(port, {portName.c_str(), portName.size()});
}
bool NodeMap::Connect(Api::IPortStacked* port) {
  return connect(port, "Device");
}

// Invalidation.

void NodeMap::drop(NodeCore& node, std::uint32_t keepEpoch) {
  node.dropCaches(keepEpoch);
  if (node.hasCallbacks()) {
    due_.push_back(&node);
  }
}

void NodeMap::invalidate(std::span<const NodeIndex> roots, std::uint32_t keepEpoch) {
  ++visitEpoch_;
  queue_.clear();
  const auto visit = [this](NodeIndex index) {
    NodeCore& node = *nodes_[index];
    if (node.visited != visitEpoch_) {
      node.visited = visitEpoch_;
      queue_.push_back(index);
    }
  };
  std::ranges::for_each(roots, visit);
  for (std::size_t at = 0; at < queue_.size(); ++at) {  // NOLINT(modernize-loop-convert): it grows meanwhile.
    const NodeIndex index = queue_[at];
    drop(*nodes_[index], keepEpoch);
    for (const Dependent dependent : model_->dependents(index)) {
      visit(dependent.node());
    }
  }
}

void NodeMap::InvalidateNodes() const {
  if (nodes_.empty()) {
    return;
  }
  auto& self = const_cast<NodeMap&>(*this);
  WriteCall call(*nodes_.front(), "InvalidateNodes");
  for (NodeCore* node : nodes_) {
    self.drop(*node, 0);
  }
  call.finish(false);
}

void NodeMap::fireInside() {
  // Callbacks may start operations of their own, which use the same list.
  std::vector<NodeCore*> due = std::exchange(due_, {});
  ++visitEpoch_;
  std::erase_if(due, [this](NodeCore* node) { return std::exchange(node->visited, visitEpoch_) == visitEpoch_; });
  dueOutside_.insert(dueOutside_.end(), due.begin(), due.end());
  for (NodeCore* node : due) {
    node->fireCallbacks(Api::cbPostInsideLock);
  }
}

void NodeMap::Poll(int64_t elapsed) {
  if (nodes_.empty()) {
    return;
  }
  const auto step = static_cast<std::uint64_t>(std::clamp<std::int64_t>(elapsed, 0, kMaxPollStep));
  WriteCall call(*nodes_.front(), "Poll");
  for (const NodeIndex index : model_->polled()) {
    NodeCore& node = *nodes_[index];
    const std::int64_t period = node.GetPollingTime();
    if (period < 0 || !node.isPolledNow()) {
      continue;
    }
    NodeCore* const block = node.other(node.propertyNode(Element::pBlockPolling));
    steps_ = 0;
    try {
      if (block != nullptr && block->saysYes({})) {
        continue;
      }
    } catch (...) {
      // A block that cannot be read does not block.
    }
    node.pollSum += step;
    if (node.pollSum >= static_cast<std::uint64_t>(period)) {
      node.pollSum = 0;
      invalidate(index);
    }
  }
  call.finish(false);
}

bool NodeMap::ParseSwissKnifes(gcstring_vector* errors) const {
  bool good = true;
  for (NodeCore* node : nodes_) {
    const Call call(*node, "ParseSwissKnifes");
    try {
      node->compileFormulas();
    } catch (const GENICAM_NAMESPACE::GenericException& error) {
      good = false;
      if (errors != nullptr) {
        errors->push_back(error.what());
      }
    }
  }
  return good;
}

Api::CNodeWriteConcatenator* NodeMap::NewNodeWriteConcatenator() const {
  return new Api::CNodeWriteConcatenator();
}

bool NodeMap::ConcatenatedWrite(Api::CNodeWriteConcatenator* writes, bool /*featureStreaming*/,
                                gcstring_vector* errors) {
  if (writes == nullptr) {
    return false;
  }
  const Api::AutoLock lock(lock_);
  bool good = true;
  const auto fail = [&](const gcstring& text) {
    good = false;
    if (errors != nullptr) {
      errors->push_back(text);
    }
  };
  for (const auto& [name, value] : writes->GetWrites()) {
    const NodeIndex index = model_->indexOf({name.c_str(), name.size()});
    Api::IValue* const target = index == kNoNode ? nullptr : nodes_[index]->asValue();
    if (target == nullptr) {
      fail(gcstring("There is no node with a value named ") + name);
      continue;
    }
    try {
      target->FromString(value);
    } catch (const GENICAM_NAMESPACE::GenericException& error) {
      fail(error.what());
    }
  }
  return good;
}

// What the description says of the device.

gcstring NodeMap::GetDeviceName() {
  return toGc(deviceName_);
}
gcstring NodeMap::GetModelName() {
  return toGc(model_->info().modelName);
}
gcstring NodeMap::GetVendorName() {
  return toGc(model_->info().vendorName);
}
gcstring NodeMap::GetToolTip() {
  return toGc(model_->info().toolTip);
}
gcstring NodeMap::GetStandardNameSpace() {
  return toGc(model_->info().standardNameSpace);
}
gcstring NodeMap::GetProductGuid() {
  return toGc(model_->info().productGuid);
}
gcstring NodeMap::GetVersionGuid() {
  return toGc(model_->info().versionGuid);
}
void NodeMap::GetGenApiVersion(Version_t& version, uint16_t& build) {
  version = {GENICAM_VERSION_MAJOR, GENICAM_VERSION_MINOR, GENICAM_VERSION_SUBMINOR};
  build = GENICAM_VERSION_BUILD;
}
void NodeMap::GetSchemaVersion(Version_t& version) {
  version = {model_->info().schema[0], model_->info().schema[1], model_->info().schema[2]};
}
void NodeMap::GetDeviceVersion(Version_t& version) {
  version = {model_->info().version[0], model_->info().version[1], model_->info().version[2]};
}

// The frame of a write.

WriteCall::WriteCall(NodeCore& node, const char* method) : node_(node), map_(node.map()) {
  map_.lock_.Lock();
  if (map_.callDepth_++ == 0) {
    map_.entryNode_ = &node;
    map_.entryMethod_ = method;
    map_.steps_ = 0;
  }
  dueBefore_ = map_.dueOutside_.size();
  if (map_.writeDepth_++ == 0) {
    map_.written_.clear();
    ++map_.writeEpoch_;
  }
}

void WriteCall::finish(bool verify) {
  if (map_.writeDepth_ == 1) {
    map_.invalidate(map_.written_, map_.writeEpoch_);
    map_.written_.clear();
    dropped_ = true;
    if (verify) {
      node_.checkErrors();
    }
    --map_.writeDepth_;
    if (!map_.due_.empty()) {
      try {
        map_.fireInside();
      } catch (...) {
        ++map_.writeDepth_;
        throw;
      }
    }
    ++map_.writeDepth_;
  }
  leave();
}

void WriteCall::leave() {
  locked_ = false;
  --map_.writeDepth_;
  std::vector<NodeCore*> outside;
  if (--map_.callDepth_ == 0) {
    outside.swap(map_.dueOutside_);
  }
  map_.lock_.Unlock();
  for (NodeCore* node : outside) {
    node->fireCallbacks(Api::cbPostOutsideLock);
  }
}

WriteCall::~WriteCall() {
  if (!locked_) {
    return;
  }
  if (map_.writeDepth_ == 1) {
    if (!dropped_) {
      map_.invalidate(map_.written_, map_.writeEpoch_);
    }
    map_.written_.clear();
    map_.due_.clear();
    map_.dueOutside_.resize(std::min(dueBefore_, map_.dueOutside_.size()));
  }
  --map_.writeDepth_;
  --map_.callDepth_;
  map_.lock_.Unlock();
}

}  // namespace GenApiEngine
