// A read-only port onto bytes in memory: a chunk of a buffer or the data of an event.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "GenApi/INodeMap.h"
#include "GenApi/IPort.h"

namespace GenApiEngine {

/// Has no data, and is not available, until some is attached. Changed only under the node map's lock, which also holds
/// while the node map reads.
class MemoryPort : public GENAPI_NAMESPACE::IPort {
 public:
  GENAPI_NAMESPACE::EAccessMode GetAccessMode() const override;
  /// Addresses count from the begin of the data, negative ones from its end. 8 bytes at INT64_MAX are the address of
  /// the data in memory, 8 bytes at INT64_MAX - 15 its length. Throws AccessException without data, OutOfRangeException
  /// outside it.
  void Read(void* pBuffer, int64_t Address, int64_t Length) override;
  /// Throws AccessException.
  void Write(const void* pBuffer, int64_t Address, int64_t Length) override;

  /// Borrows the data.
  void attach(const std::uint8_t* data, std::size_t size);
  /// Copies the data.
  void attachCopy(const std::uint8_t* data, std::size_t size);
  /// Replaces borrowed data by a copy of it.
  void keepCopy();
  void detach();
  bool isAttached() const { return attached_; }
  bool ownsData() const { return data_ == copy_.data(); }
  std::size_t size() const { return size_; }

 private:
  const std::uint8_t* data_ = nullptr;
  std::size_t size_ = 0;
  bool attached_ = false;
  std::vector<std::uint8_t> copy_;
};

/// Disconnects those ports of a node map. Callbacks may throw: all ports are let go first, then the first exception is
/// thrown again.
void disconnect(GENAPI_NAMESPACE::INodeMap& map, std::span<GENAPI_NAMESPACE::INode* const> portNodes);

}  // namespace GenApiEngine
