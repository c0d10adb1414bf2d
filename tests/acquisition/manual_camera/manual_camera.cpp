// The manual camera's library, system, interface and device, and their ports: they are there, and do nothing.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <string>

#include "calls.h"
#include "description.h"

using namespace manual;  // NOLINT: the C functions below are all of this file.

extern "C" {

GC_IMPORT_EXPORT Script* manualCameraScript() {
  return &producer();
}

GC_ERROR GCInitLib() {
  return GC_ERR_SUCCESS;
}
GC_ERROR GCCloseLib() {
  return GC_ERR_SUCCESS;
}
GC_ERROR GCGetInfo(TL_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  return TLGetInfo(nullptr, cmd, type, buf, size);
}
GC_ERROR GCGetLastError(GC_ERROR* code, char* out, size_t* size) {
  *code = GC_ERR_SUCCESS;
  return text("manual", nullptr, out, size);
}

// ---- Port

GC_ERROR GCReadPort(PORT_HANDLE, uint64_t address, void* buf, size_t* size) {
  return run("GCReadPort", [&](Producer& p) {
    p.readRegister(address, static_cast<std::uint8_t*>(buf), *size);
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR GCWritePort(PORT_HANDLE, uint64_t address, const void* buf, size_t* size) {
  return run("GCWritePort", [&](Producer& p) {
    std::uint32_t value = 0;
    std::memcpy(&value, buf, std::min(*size, sizeof value));
    p.writeRegister(address, value);
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR GCGetNumPortURLs(PORT_HANDLE, uint32_t* count) {
  *count = 1;
  return GC_ERR_SUCCESS;
}
GC_ERROR GCGetPortURLInfo(PORT_HANDLE, uint32_t, URL_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  if (cmd != URL_INFO_URL) {
    return GC_ERR_NOT_IMPLEMENTED;
  }
  std::array<char, 64> url{};
  std::snprintf(url.data(), url.size(), "local:manual.xml;%x;%zx", static_cast<unsigned>(kXmlAddress),
                kDescription.size());
  return text(url.data(), type, buf, size);
}
GC_ERROR GCGetPortInfo(PORT_HANDLE, PORT_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  return cmd == PORT_INFO_BIG_ENDIAN ? number(bool8_t{0}, INFO_DATATYPE_BOOL8, type, buf, size)
                                     : text("Device", type, buf, size);
}

// ---- System, interface, device

GC_ERROR TLOpen(TL_HANDLE* out) {
  *out = &systemHandle;
  return GC_ERR_SUCCESS;
}
GC_ERROR TLClose(TL_HANDLE) {
  return GC_ERR_SUCCESS;
}
GC_ERROR TLGetInfo(TL_HANDLE, TL_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  Producer& p = producer();
  const std::lock_guard lock(p.mutex);
  return text(cmd == TL_INFO_PATHNAME ? "/somewhere/" + p.fileName : p.fileName, type, buf, size);
}
GC_ERROR TLGetNumInterfaces(TL_HANDLE, uint32_t* count) {
  *count = 1;
  return GC_ERR_SUCCESS;
}
GC_ERROR TLGetInterfaceID(TL_HANDLE, uint32_t, char* id, size_t* size) {
  return text("ManualInterface", nullptr, id, size);
}
GC_ERROR TLGetInterfaceInfo(TL_HANDLE, const char*, INTERFACE_INFO_CMD, INFO_DATATYPE* type, void* buf, size_t* size) {
  return text("ManualInterface", type, buf, size);
}
GC_ERROR TLOpenInterface(TL_HANDLE, const char*, IF_HANDLE* out) {
  *out = &interfaceHandle;
  return GC_ERR_SUCCESS;
}
GC_ERROR TLUpdateInterfaceList(TL_HANDLE, bool8_t* changed, uint64_t) {
  if (changed != nullptr) {
    *changed = 0;
  }
  return GC_ERR_SUCCESS;
}
GC_ERROR IFClose(IF_HANDLE) {
  return GC_ERR_SUCCESS;
}
GC_ERROR IFGetInfo(IF_HANDLE, INTERFACE_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  return TLGetInterfaceInfo(nullptr, nullptr, cmd, type, buf, size);
}
GC_ERROR IFGetNumDevices(IF_HANDLE, uint32_t* count) {
  *count = 1;
  return GC_ERR_SUCCESS;
}
GC_ERROR IFGetDeviceID(IF_HANDLE, uint32_t, char* id, size_t* size) {
  return text(kDeviceId, nullptr, id, size);
}
GC_ERROR IFUpdateDeviceList(IF_HANDLE, bool8_t* changed, uint64_t) {
  return TLUpdateInterfaceList(nullptr, changed, 0);
}
GC_ERROR IFGetDeviceInfo(IF_HANDLE, const char*, DEVICE_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  return cmd == DEVICE_INFO_ACCESS_STATUS
             ? number(std::int32_t{DEVICE_ACCESS_STATUS_READWRITE}, INFO_DATATYPE_INT32, type, buf, size)
             : text(cmd == DEVICE_INFO_VENDOR ? "Kestrova" : kDeviceId, type, buf, size);
}
GC_ERROR IFOpenDevice(IF_HANDLE, const char*, DEVICE_ACCESS_FLAGS, DEV_HANDLE* out) {
  return run("IFOpenDevice", [&](Producer& p) -> GC_ERROR {
    if (p.isDeviceOpen) {
      return GC_ERR_RESOURCE_IN_USE;
    }
    p.isDeviceOpen = true;
    *out = &deviceHandle;
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR DevGetPort(DEV_HANDLE, PORT_HANDLE* out) {
  *out = &remoteHandle;
  return GC_ERR_SUCCESS;
}
GC_ERROR DevGetInfo(DEV_HANDLE, DEVICE_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  return IFGetDeviceInfo(nullptr, nullptr, cmd, type, buf, size);
}
GC_ERROR DevGetNumDataStreams(DEV_HANDLE, uint32_t* count) {
  return run("DevGetNumDataStreams", [&](Producer&) {
    *count = kStreams;
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR DevGetDataStreamID(DEV_HANDLE, uint32_t index, char* id, size_t* size) {
  return text("Stream" + std::to_string(index), nullptr, id, size);
}
GC_ERROR DevOpenDataStream(DEV_HANDLE, const char* id, DS_HANDLE* out) {
  return run("DevOpenDataStream", [&](Producer& p) -> GC_ERROR {
    Stream& stream = p.streams[std::string(id) == "Stream1" ? 1 : 0];
    if (stream.isOpen) {
      return GC_ERR_RESOURCE_IN_USE;
    }
    stream.isOpen = true;
    stream.frames = stream.delivered = stream.underruns = 0;
    *out = &stream;
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR DevClose(DEV_HANDLE) {
  return run("DevClose", [&](Producer& p) {
    p.call("DevClose");
    for (Stream& stream : p.streams) {
      closeStream(stream, "DevClose");
    }
    for (auto& [type, event] : p.deviceEvents) {
      endRegistration(event, "DevClose");
    }
    p.isDeviceOpen = false;
    return GC_ERR_SUCCESS;
  });
}

}  // extern "C"
