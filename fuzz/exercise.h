// Asks every node of a map every question, as a hostile camera's user might.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "GenApi/GenApi.h"

namespace fuzz {

/// Register contents made of the fuzzer's bytes; every byte of the address space has one. The first byte of 255 makes
/// every fourth access fail.
class BytesPort : public GenApi::IPort {
 public:
  BytesPort(const std::uint8_t* data, std::size_t size) : bytes_(data, data + size) {}

  GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }
  void Read(void* pBuffer, std::int64_t Address, std::int64_t Length) override;
  void Write(const void* pBuffer, std::int64_t Address, std::int64_t Length) override;

 private:
  void count();

  std::vector<std::uint8_t> bytes_;
  unsigned accesses_ = 0;
};

/// Reads and writes all nodes, but no more than some hundred of them. GenICam exceptions are the expected answer to
/// nonsense; any other one leaves.
void exercise(GenApi::INodeMap& map);

/// Ends a node map.
struct Destroy {
  void operator()(GenApi::INodeMap* map) const { dynamic_cast<GenApi::IDestroy&>(*map).Destroy(); }
};

}  // namespace fuzz
