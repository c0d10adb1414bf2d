// The register space of a module, as node maps read and write it.
#include "gentl/port.h"

#include <cstring>
#include <vector>

#include "gentl/base_module.h"
#include "gentl/exceptions.h"
#include "gentl/info_query.h"
#include "gentl/trace.h"

namespace GenTLCpp {

namespace {
constexpr std::size_t kPortInfoTextSize = 2056;
}

Port::Port(PORT_HANDLE handle, LibraryHandle library) : handle_(handle), functions_(library) {
  traceLine("Port()");
}

Port::~Port() {
  traceLine("~Port()");
}

void Port::Read(void* buffer, std::int64_t address, std::int64_t length) {
  if (length <= 0) {
    return;
  }
  const auto owner = holdOwner();
  const auto wanted = static_cast<std::size_t>(length);
  std::size_t size = wanted;
  checkGenTLError(functions_.GCReadPort(handle_, static_cast<std::uint64_t>(address), buffer, &size));
  if (size < wanted) {
    std::memset(static_cast<char*>(buffer) + size, 0, wanted - size);
  }
}

void Port::Write(const void* buffer, std::int64_t address, std::int64_t length) {
  if (length <= 0) {
    return;
  }
  const auto owner = holdOwner();
  const auto* bytes = static_cast<const char*>(buffer);
  const std::vector<char> copy(bytes, bytes + length);
  std::size_t size = copy.size();
  checkGenTLError(functions_.GCWritePort(handle_, static_cast<std::uint64_t>(address), copy.data(), &size));
}

std::uint32_t Port::getNumURLs() const {
  const auto owner = holdOwner();
  std::uint32_t count = 0;
  checkGenTLError(functions_.GCGetNumPortURLs(handle_, &count));
  return count;
}

std::string Port::getURLInfoString(std::uint32_t index, URL_INFO_CMD cmd) const {
  const auto owner = holdOwner();
  return queryText([&](INFO_DATATYPE* type, char* buffer, std::size_t* size) {
    return functions_.GCGetPortURLInfo(handle_, index, cmd, type, buffer, size);
  });
}

std::string Port::getInfoString(PORT_INFO_CMD cmd) const {
  const auto owner = holdOwner();
  return queryText<kPortInfoTextSize>([&](INFO_DATATYPE* type, char* buffer, std::size_t* size) {
    return functions_.GCGetPortInfo(handle_, cmd, type, buffer, size);
  });
}

bool Port::isBigEndian() const {
  const auto owner = holdOwner();
  return queryValue<bool8_t>([&](INFO_DATATYPE* type, void* value, std::size_t* size) {
           return functions_.GCGetPortInfo(handle_, PORT_INFO_BIG_ENDIAN, type, value, size);
         }) != 0;
}

ConcretePort::ConcretePort(PORT_HANDLE handle, const std::shared_ptr<BaseModule>& owner)
    : Port(handle, owner->getLibraryHandle()),
      owner_(owner) {}

ConcretePort::~ConcretePort() = default;

PORT_HANDLE ConcretePort::getHandle() const {
  static_cast<void>(holdOwner());
  return rawHandle();
}

bool ConcretePort::isAccessible() const {
  const std::shared_ptr<BaseModule> owner = owner_.lock();
  return owner != nullptr && owner->isAccessible();
}

std::shared_ptr<BaseModule> ConcretePort::holdOwner() const {
  std::shared_ptr<BaseModule> owner = owner_.lock();
  if (owner == nullptr || !owner->isAccessible()) {
    throw ClosedException("Device is closed, cannot return handle");
  }
  return owner;
}

}  // namespace GenTLCpp
