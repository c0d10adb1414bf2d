// Raw memory and registers of the remote device, and the byte order of a module.
#include "features/memory.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <vector>

#include "core/global_state.h"
#include "core/log.h"
#include "gentl/device.h"
#include "gentl/guard.h"
#include "gentl/module_lookup.h"
#include "gentl/port.h"
#include "number_text.h"

namespace OVI {
namespace {

/** A 32-bit register pair: the target's address goes to the one, its value is at the other. */
struct IndirectPair {
  std::uint64_t address;
  std::uint64_t value;
};
constexpr IndirectPair kIndirectWrite = {0xA184, 0xA188};
constexpr IndirectPair kIndirectRead = {0xA18C, 0xA190};

/** Reverses the bytes; how many is counted with the length's low 32 bits. */
void copyReversed(const std::uint8_t* from, std::uint8_t* to, std::uint64_t length) {
  std::reverse_copy(from, from + static_cast<std::uint32_t>(length), to);
}

/** Runs `transfer` with the remote port of the device behind the handle. */
template<class Transfer>
oviErr withRemotePort(const char* site, const char* failure, std::uint64_t handle, const void* buffer,
                      std::uint64_t length, Transfer&& transfer) {
  if (!isInitialized())
    return OVI_ERR_NOT_INITIALIZED;
  if (handle == 0 || buffer == nullptr || length == 0 || length > std::numeric_limits<std::int64_t>::max())
    return OVI_ERR_INVALID_PARAMETER;
  std::shared_ptr<GenTLCpp::Device> device;
  if (const oviErr code = lookupModule(handle, device); code != OVI_SUCCESS) {
    OVI_LOG_ERROR(site) << "Device not found!";
    return code;
  }
  return caught(
      [&]() -> oviErr {
        const auto port = device->getRemotePort(false);
        transfer(*port, port->isBigEndian());
        return OVI_SUCCESS;
      },
      [&](const char* text) { OVI_LOG_ERROR(site) << failure << text; });
}

oviErr writeRegister(std::uint64_t handle, std::uint64_t address, std::uint32_t value) {
  return OVI::oviWriteMemory(handle, address, reinterpret_cast<const std::uint8_t*>(&value), sizeof value);
}

oviErr readRegister(std::uint64_t handle, std::uint64_t address, std::uint32_t& value) {
  return OVI::oviReadMemory(handle, address, reinterpret_cast<std::uint8_t*>(&value), sizeof value);
}

std::optional<std::uint32_t> parseRegister(const char* text) {
  const auto value = parseInteger(text, std::numeric_limits<std::uint32_t>::max());
  return value ? std::optional(static_cast<std::uint32_t>(*value)) : std::nullopt;
}

template<class Port>
void storeByteOrder(Port&& port, bool& littleEndian) {
  littleEndian = !port->isBigEndian();
}

}  // namespace

oviErr oviReadMemory(std::uint64_t handle, std::uint64_t address, std::uint8_t* buffer, std::uint64_t length) {
  return withRemotePort("OVI::oviReadMemory", "Error reading memory on remote device. Error: ", handle, buffer, length,
                        [&](GenTLCpp::Port& port, bool bigEndian) {
                          const auto from = static_cast<std::int64_t>(address);
                          const auto size = static_cast<std::int64_t>(length);
                          if (!bigEndian) {
                            port.Read(buffer, from, size);
                            return;
                          }
                          std::vector<std::uint8_t> scratch(length);
                          port.Read(scratch.data(), from, size);
                          copyReversed(scratch.data(), buffer, length);
                        });
}

oviErr oviWriteMemory(std::uint64_t handle, std::uint64_t address, const std::uint8_t* buffer, std::uint64_t length) {
  return withRemotePort("OVI::oviWriteMemory", "Error writing memory on remote device. Error: ", handle, buffer, length,
                        [&](GenTLCpp::Port& port, bool bigEndian) {
                          const auto to = static_cast<std::int64_t>(address);
                          const auto size = static_cast<std::int64_t>(length);
                          if (!bigEndian) {
                            port.Write(buffer, to, size);
                            return;
                          }
                          std::vector<std::uint8_t> scratch(length);
                          copyReversed(buffer, scratch.data(), length);
                          port.Write(scratch.data(), to, size);
                        });
}

oviErr oviGetRegisterValue(std::uint64_t handle, const char* address, char* value, std::uint32_t direct) {
  if (!isInitialized())
    return OVI_ERR_NOT_INITIALIZED;
  if (address == nullptr || value == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  const auto target = parseRegister(address);
  if (!target)
    return OVI_ERR_INVALID_PARAMETER;
  if (direct == 0) {
    if (const oviErr code = writeRegister(handle, kIndirectRead.address, *target); code != OVI_SUCCESS)
      return code;
  }
  std::uint32_t read = 0;
  const oviErr code = readRegister(handle, direct != 0 ? *target : kIndirectRead.value, read);
  if (code == OVI_SUCCESS)
    std::snprintf(value, sizeof "0x12345678", "0x%04lx", static_cast<unsigned long>(read));
  return code;
}

oviErr oviSetRegisterValue(std::uint64_t handle, const char* address, const char* value, std::uint32_t direct) {
  if (!isInitialized())
    return OVI_ERR_NOT_INITIALIZED;
  if (address == nullptr || value == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  const auto target = parseRegister(address);
  const auto written = parseRegister(value);
  if (!target || !written)
    return OVI_ERR_INVALID_PARAMETER;
  if (direct == 0) {
    if (const oviErr code = writeRegister(handle, kIndirectWrite.address, *target); code != OVI_SUCCESS)
      return code;
  }
  return writeRegister(handle, direct != 0 ? *target : kIndirectWrite.value, *written);
}

oviErr oviIsModuleLittleEndian(std::uint64_t handle, std::int32_t selector, bool* littleEndian) {
  if (!isInitialized())
    return OVI_ERR_NOT_INITIALIZED;
  if (handle == 0 || littleEndian == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  return caught(
      [&]() -> oviErr {
        if (selector == OVI_MODULE_REMOTE_DEVICE) {
          std::shared_ptr<GenTLCpp::Device> device;
          const oviErr code = lookupModule(handle, device);
          if (code == OVI_SUCCESS)
            storeByteOrder(device->getRemotePort(false), *littleEndian);
          return code;
        }
        std::shared_ptr<GenTLCpp::BaseModule> module;
        const oviErr code = lookupModule(handle, module);
        if (code != OVI_SUCCESS || module->moduleType() == GenTLCpp::kEventModule)
          return OVI_ERR_NOT_FOUND;  // An event has no registers: its handle is no port for a producer.
        storeByteOrder(module->getPort(false), *littleEndian);
        return OVI_SUCCESS;
      },
      [](const char* text) {
        OVI_LOG_DEBUG("OVI::oviIsModuleLittleEndian") << "The port does not tell its byte order. Error: " << text;
      });
}

}  // namespace OVI
