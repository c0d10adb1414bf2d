// The port onto bytes in memory.
#include "adapters/memory_port.h"

#include <cinttypes>
#include <cstring>
#include <exception>

#include "Base/GCException.h"
#include "base/chunk_registers.h"

namespace GenApiEngine {
using namespace GENAPI_NAMESPACE;

EAccessMode MemoryPort::GetAccessMode() const {
  return attached_ ? RO : NA;
}

void MemoryPort::Read(void* pBuffer, int64_t Address, int64_t Length) {
  if (!attached_)
    throw ACCESS_EXCEPTION("No data is attached to the port");
  const auto size = static_cast<int64_t>(size_);
  const bool isPseudoRegister = Address == kDataAddressRegister || Address == kDataLengthRegister;
  if (isPseudoRegister && Length == sizeof(uint64_t)) {
    const uint64_t value = Address == kDataLengthRegister ? size_ : reinterpret_cast<uintptr_t>(data_);
    std::memcpy(pBuffer, &value, sizeof value);
    return;
  }
  const int64_t offset = Address < 0 ? Address + size : Address;
  if (offset < 0 || Length < 0 || offset > size || Length > size - offset)
    throw OUT_OF_RANGE_EXCEPTION("Address %" PRId64 ", length %" PRId64 ", lies outside the %" PRId64
                                 " bytes that are attached to the port",
                                 Address, Length, size);
  if (Length > 0)
    std::memcpy(pBuffer, data_ + offset, static_cast<std::size_t>(Length));
}

void MemoryPort::Write(const void* /*pBuffer*/, int64_t /*Address*/, int64_t /*Length*/) {
  throw ACCESS_EXCEPTION("The data that is attached to the port cannot be written");
}

void MemoryPort::attach(const std::uint8_t* data, std::size_t size) {
  copy_.clear();
  data_ = data;
  size_ = size;
  attached_ = true;
}

void MemoryPort::attachCopy(const std::uint8_t* data, std::size_t size) {
  if (size > 0)
    copy_.assign(data, data + size);
  else
    copy_.clear();
  data_ = copy_.data();
  size_ = size;
  attached_ = true;
}

void MemoryPort::keepCopy() {
  if (attached_ && !ownsData())
    attachCopy(data_, size_);
}

void MemoryPort::detach() {
  copy_.clear();
  data_ = nullptr;
  size_ = 0;
  attached_ = false;
}

void disconnect(INodeMap& map, std::span<INode* const> portNodes) {
  std::exception_ptr failure;
  for (INode* const node : portNodes) {
    try {
      map.Connect(static_cast<IPort*>(nullptr), node->GetName());
    } catch (...) {
      failure = failure != nullptr ? failure : std::current_exception();
    }
  }
  if (failure != nullptr)
    std::rethrow_exception(failure);
}

}  // namespace GenApiEngine
