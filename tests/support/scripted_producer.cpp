// ScriptedCamera.cti: the smallest producer that has one camera, with registers as a test writes them.
#include <cstdio>
#include <cstring>
#include <string_view>

#include "scripted_camera.h"

#ifdef _WIN32
#define SCRIPTED_EXPORT extern "C" __declspec(dllexport)
#else
#define SCRIPTED_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace {

enum Module : std::uintptr_t { kNone, kSystem, kInterface, kDevice, kCamera };

scripted::Script& script() {
  static scripted::Script theScript;
  return theScript;
}

void* handleOf(Module module) {
  return reinterpret_cast<void*>(module);
}  // NOLINT(performance-no-int-to-ptr)

scripted::Space* spaceOf(void* handle) {
  switch (reinterpret_cast<std::uintptr_t>(handle)) {
    case kSystem:
      return &script().system;
    case kInterface:
      return &script().interface;
    case kDevice:
      return &script().localDevice;
    case kCamera:
      return &script().camera;
    default:
      return nullptr;
  }
}

GC_ERROR giveBytes(INFO_DATATYPE kind, const void* value, std::size_t length, INFO_DATATYPE* type, void* buffer,
                   std::size_t* size) {
  if (type != nullptr)
    *type = kind;
  if (buffer != nullptr) {
    if (*size < length)
      return GC_ERR_BUFFER_TOO_SMALL;
    std::memcpy(buffer, value, length);
  }
  *size = length;
  return GC_ERR_SUCCESS;
}

GC_ERROR giveText(std::string_view text, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
  const std::string terminated(text);
  return giveBytes(INFO_DATATYPE_STRING, terminated.c_str(), terminated.size() + 1, type, buffer, size);
}

}  // namespace

SCRIPTED_EXPORT scripted::Script* scriptedCamera() {
  return &script();
}

SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE GCInitLib(void) {
  return GC_ERR_SUCCESS;
}
SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE GCCloseLib(void) {
  return GC_ERR_SUCCESS;
}
SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE GCGetInfo(TL_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  return giveText(cmd == TL_INFO_PATHNAME ? "/scripted/" SCRIPTED_FILE_NAME : "Scripted", type, buf, size);
}
SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE GCGetLastError(GC_ERROR* code, char* text, size_t* size) {
  *code = GC_ERR_ERROR;
  return giveText("scripted failure", nullptr, text, size);
}

SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE GCReadPort(PORT_HANDLE port, uint64_t address, void* buf, size_t* size) {
  scripted::Space* const space = spaceOf(port);
  if (space == nullptr)
    return GC_ERR_INVALID_HANDLE;
  const bool isDescription = address >= scripted::kDescriptionAddress;
  const void* const bytes = isDescription ? static_cast<const void*>(space->description.data()) : space->memory.data();
  const std::size_t length = isDescription ? space->description.size() : space->memory.size();
  const std::uint64_t offset = isDescription ? address - scripted::kDescriptionAddress : address;
  if (offset > length || *size > length - offset)
    return GC_ERR_INVALID_ADDRESS;
  if (!isDescription && space->onRead) {
    if (const GC_ERROR code = space->onRead(address, *size); code != GC_ERR_SUCCESS)
      return code;
  }
  std::memcpy(buf, static_cast<const char*>(bytes) + offset, *size);
  return GC_ERR_SUCCESS;
}

SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE GCWritePort(PORT_HANDLE port, uint64_t address, const void* buf, size_t* size) {
  scripted::Space* const space = spaceOf(port);
  if (space == nullptr)
    return GC_ERR_INVALID_HANDLE;
  if (address > space->memory.size() || *size > space->memory.size() - address)
    return GC_ERR_INVALID_ADDRESS;
  std::memcpy(space->memory.data() + address, buf, *size);
  return space->onWrite ? space->onWrite(address, *size) : GC_ERR_SUCCESS;
}

SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE GCGetPortInfo(PORT_HANDLE port, PORT_INFO_CMD cmd, INFO_DATATYPE* type, void* buf,
                                                   size_t* size) {
  const scripted::Space* const space = spaceOf(port);
  if (space == nullptr)
    return GC_ERR_INVALID_HANDLE;
  const bool8_t big = space->bigEndian ? 1 : 0;
  if (cmd == PORT_INFO_BIG_ENDIAN)
    return giveBytes(INFO_DATATYPE_BOOL8, &big, sizeof big, type, buf, size);
  return giveText("Device", type, buf, size);
}
SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE GCGetNumPortURLs(PORT_HANDLE port, uint32_t* count) {
  const scripted::Space& space = *spaceOf(port);
  const bool isDefault = space.urls.empty() && !space.description.empty();
  *count = isDefault ? 1 : static_cast<uint32_t>(space.urls.size());
  return GC_ERR_SUCCESS;
}
SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE GCGetPortURLInfo(PORT_HANDLE port, uint32_t index, URL_INFO_CMD,
                                                      INFO_DATATYPE* type, void* buf, size_t* size) {
  const scripted::Space& space = *spaceOf(port);
  if (index < space.urls.size())
    return giveText(space.urls[index], type, buf, size);
  char url[64];
  std::snprintf(url, sizeof url, "local:scripted.xml;%llx;%llx",
                static_cast<unsigned long long>(scripted::kDescriptionAddress),
                static_cast<unsigned long long>(space.description.size()));
  return giveText(url, type, buf, size);
}

// The library resolves these and never calls them.
SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE GCGetPortURL(PORT_HANDLE, char*, size_t*) {
  return GC_ERR_NOT_IMPLEMENTED;
}
SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE GCReadPortStacked(PORT_HANDLE, PORT_REGISTER_STACK_ENTRY*, size_t*) {
  return GC_ERR_NOT_IMPLEMENTED;
}
SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE GCWritePortStacked(PORT_HANDLE, PORT_REGISTER_STACK_ENTRY*, size_t*) {
  return GC_ERR_NOT_IMPLEMENTED;
}

SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE TLOpen(TL_HANDLE* out) {
  *out = handleOf(kSystem);
  return GC_ERR_SUCCESS;
}
SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE TLClose(TL_HANDLE) {
  return GC_ERR_SUCCESS;
}
SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE TLGetInfo(TL_HANDLE, TL_INFO_CMD cmd, INFO_DATATYPE* type, void* buf,
                                               size_t* size) {
  return GCGetInfo(cmd, type, buf, size);
}
SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE TLUpdateInterfaceList(TL_HANDLE, bool8_t* changed, uint64_t) {
  if (changed != nullptr)
    *changed = 1;
  return GC_ERR_SUCCESS;
}
SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE TLGetNumInterfaces(TL_HANDLE, uint32_t* count) {
  *count = 1;
  return GC_ERR_SUCCESS;
}
SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE TLGetInterfaceID(TL_HANDLE, uint32_t, char* id, size_t* size) {
  return giveText("ScriptedInterface", nullptr, id, size);
}
SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE TLGetInterfaceInfo(TL_HANDLE, const char*, INTERFACE_INFO_CMD, INFO_DATATYPE* type,
                                                        void* buf, size_t* size) {
  return giveText("ScriptedInterface", type, buf, size);
}
SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE TLOpenInterface(TL_HANDLE, const char*, IF_HANDLE* out) {
  *out = handleOf(kInterface);
  return GC_ERR_SUCCESS;
}

SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE IFClose(IF_HANDLE) {
  return GC_ERR_SUCCESS;
}
SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE IFGetInfo(IF_HANDLE, INTERFACE_INFO_CMD, INFO_DATATYPE* type, void* buf,
                                               size_t* size) {
  return giveText("ScriptedInterface", type, buf, size);
}
SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE IFUpdateDeviceList(IF_HANDLE, bool8_t* changed, uint64_t) {
  if (changed != nullptr)
    *changed = 1;
  return GC_ERR_SUCCESS;
}
SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE IFGetNumDevices(IF_HANDLE, uint32_t* count) {
  *count = 1;
  return GC_ERR_SUCCESS;
}
SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE IFGetDeviceID(IF_HANDLE, uint32_t, char* id, size_t* size) {
  return giveText("ScriptedCamera", nullptr, id, size);
}
SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE IFGetDeviceInfo(IF_HANDLE, const char*, DEVICE_INFO_CMD cmd, INFO_DATATYPE* type,
                                                     void* buf, size_t* size) {
  const std::int32_t readWrite = 1;
  if (cmd == DEVICE_INFO_ACCESS_STATUS)
    return giveBytes(INFO_DATATYPE_INT32, &readWrite, sizeof readWrite, type, buf, size);
  return giveText(cmd == DEVICE_INFO_VENDOR ? "Kestrova" : "ScriptedCamera", type, buf, size);
}
SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE IFOpenDevice(IF_HANDLE, const char*, DEVICE_ACCESS_FLAGS, DEV_HANDLE* out) {
  *out = handleOf(kDevice);
  return GC_ERR_SUCCESS;
}

SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE DevClose(DEV_HANDLE) {
  return GC_ERR_SUCCESS;
}
SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE DevGetInfo(DEV_HANDLE, DEVICE_INFO_CMD, INFO_DATATYPE* type, void* buf,
                                                size_t* size) {
  return giveText("ScriptedCamera", type, buf, size);
}
SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE DevGetPort(DEV_HANDLE, PORT_HANDLE* out) {
  *out = handleOf(kCamera);
  return GC_ERR_SUCCESS;
}
SCRIPTED_EXPORT GC_ERROR GC_CALLTYPE DevGetNumDataStreams(DEV_HANDLE, uint32_t* count) {
  *count = 0;
  return GC_ERR_SUCCESS;
}
