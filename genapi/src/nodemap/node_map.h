// A node map: the nodes of one model in one arena, their lock, and the operations that reach over several nodes.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "GenApi/GenApi.h"
#include "model/model.h"
#include "nodes/node_core.h"

namespace GenApiEngine {

/// Memory for the nodes of one map, given back at once.
class Arena {
 public:
  void* allocate(std::size_t size, std::size_t alignment);
  template<class T>
  std::span<T> array(std::size_t count) {
    T* const first = static_cast<T*>(allocate(count * sizeof(T), alignof(T)));
    std::uninitialized_value_construct_n(first, count);
    return {first, count};
  }
  void reserve(std::size_t bytes);
  std::size_t bytes() const { return bytes_; }

 private:
  struct Chunk {
    std::unique_ptr<std::byte[]> data;
    std::size_t size;
  };
  std::vector<Chunk> chunks_;
  std::byte* next_ = nullptr;
  std::size_t left_ = 0;
  std::size_t bytes_ = 0;
};

/// Limits set at run time.
struct ImposedLimits {
  std::optional<std::int64_t> intMin, intMax;
  std::optional<double> floatMin, floatMax;
};

class NodeMap final : public Api::INodeMap, public Api::IDeviceInfo, public Api::IDestroy, public Api::IUserData {
 public:
  /// @param userLock  used instead of the map's own lock; may be null
  NodeMap(std::shared_ptr<const Model> model, std::string deviceName, Api::CLock* userLock);
  NodeMap(const NodeMap&) = delete;
  NodeMap& operator=(const NodeMap&) = delete;

  // INodeMap
  void GetNodes(Api::NodeList_t& nodes) const override;
  Api::INode* GetNode(const gcstring& name) const override;
  Api::INode* FindNode(const char* name, size_t length) const override { return node(model_->indexOf({name, length})); }
  void InvalidateNodes() const override;
  bool Connect(Api::IPort* port, const gcstring& portName) const override;
  bool Connect(Api::IPort* port) const override;
  bool Connect(Api::IPortStacked* port, const gcstring& portName) override;
  bool Connect(Api::IPortStacked* port) override;
  gcstring GetDeviceName() override;
  void Poll(int64_t elapsed) override;
  Api::CLock& GetLock() const override { return lock_; }
  uint64_t GetNumNodes() const override;
  bool ParseSwissKnifes(gcstring_vector* errors) const override;
  Api::CNodeWriteConcatenator* NewNodeWriteConcatenator() const override;
  bool ConcatenatedWrite(Api::CNodeWriteConcatenator* writes, bool featureStreaming, gcstring_vector* errors) override;
  // IDeviceInfo
  gcstring GetModelName() override;
  gcstring GetVendorName() override;
  gcstring GetToolTip() override;
  gcstring GetStandardNameSpace() override;
  void GetGenApiVersion(Version_t& version, uint16_t& build) override;
  void GetSchemaVersion(Version_t& version) override;
  void GetDeviceVersion(Version_t& version) override;
  gcstring GetProductGuid() override;
  gcstring GetVersionGuid() override;
  // IDestroy
  void Destroy() override;
  // IUserData
  Api::UserData_t GetUserData() const override { return userData_; }
  Api::UserData_t SetUserData(Api::UserData_t data) override { return std::exchange(userData_, data); }

  const Model& model() const { return *model_; }
  NodeCore* node(NodeIndex index) const { return index == kNoNode ? nullptr : nodes_[index]; }
  const std::string& deviceName() const { return deviceName_; }
  Arena& arena() { return arena_; }
  std::int64_t buildTime() const { return buildTime_; }
  std::size_t memoryBytes() const;
  ImposedLimits& imposedLimits(NodeIndex index) { return imposed_[index]; }

  // Operations. All expect the lock.
  /// A terminal of the running write has got its value.
  void markWritten(NodeIndex terminal) { written_.push_back(terminal); }
  std::uint32_t writeEpoch() const { return writeEpoch_; }
  /// Drops the caches of those nodes and of all that depend on them, and notes whose callbacks are due.
  void invalidate(std::span<const NodeIndex> roots, std::uint32_t keepEpoch);
  void invalidate(NodeIndex root) { invalidate({&root, 1}, 0); }
  /// Calls the callbacks that are due inside the lock; those outside follow when the outermost call ends.
  void fireInside();

 private:
  friend class Frame;
  friend class WriteCall;
  friend class ValueDescent;
  friend class NodeCore;

  ~NodeMap();
  void build();
  bool connect(Api::IPort* port, std::string_view portName);
  void drop(NodeCore& node, std::uint32_t keepEpoch);

  mutable Api::CLock ownLock_;
  Api::CLock& lock_;
  std::shared_ptr<const Model> model_;
  std::vector<NodeCore*> nodes_;
  Arena arena_;
  // The call that the application made, for the texts of exceptions.
  const NodeCore* entryNode_ = nullptr;
  const char* entryMethod_ = nullptr;
  std::uint32_t callDepth_ = 0;
  std::uint32_t descent_ = 0;
  std::uint32_t steps_ = 0;
  std::uint32_t writeDepth_ = 0;
  std::uint32_t writeEpoch_ = 0;
  std::uint32_t visitEpoch_ = 0;
  std::vector<NodeIndex> written_;
  std::vector<NodeIndex> queue_;
  std::vector<NodeCore*> due_;         // callbacks to call inside the lock
  std::vector<NodeCore*> dueOutside_;  // callbacks to call once it is released
  std::unordered_map<NodeIndex, ImposedLimits> imposed_;
  std::string deviceName_;
  Api::UserData_t userData_ = nullptr;
  std::int64_t buildTime_ = 0;
};

}  // namespace GenApiEngine
