// TreeProducer.cti: interfaces and devices as a test lists them, and faults at every call. No images.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tree_script.h"

#ifdef _WIN32
#define TREE_EXPORT extern "C" __declspec(dllexport)
#else
#define TREE_EXPORT extern "C" __attribute__((visibility("default")))
#endif

namespace {

using tree::Script;

constexpr const char* kDescription = R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Tree" VendorName="Kestrova" StandardNameSpace="None" SchemaMajorVersion="1"
 SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0" SubMinorVersion="0"
 ProductGuid="1F3C7F9E-1111-4222-8333-444455556666" VersionGuid="1F3C7F9E-1111-4222-8333-444455556667"
 xmlns="http://www.genicam.org/GenApi/Version_1_1">
<Category Name="Root" NameSpace="Standard"><pFeature>IgnoreSubnet</pFeature>
 <pFeature>EnableKitharaIncreasedInterruptInterval</pFeature></Category>
<Boolean Name="IgnoreSubnet"><pValue>Switch</pValue><OnValue>1</OnValue><OffValue>0</OffValue></Boolean>
<Boolean Name="EnableKitharaIncreasedInterruptInterval"><pValue>Switch</pValue><OnValue>1</OnValue>
 <OffValue>0</OffValue></Boolean>
<IntReg Name="Switch"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
 <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<Port Name="Device" NameSpace="Standard"></Port>
</RegisterDescription>)";
constexpr std::uint64_t kDescriptionAddress = 0x10000;

Script& script() {
  static Script theScript;
  return theScript;
}

bool traced() {
  static const bool on = std::getenv("TREE_TRACE") != nullptr;
  return on;
}

void trace(const char* text) {
  if (traced()) {
    std::fputs(text, stdout);
    std::fputs("\n", stdout);
    std::fflush(stdout);
  }
}

// Whatever of the producer is still used when its static objects go would crash a real one.
struct StaticState {
  // A traced producer serves a program that cannot plant its own tree.
  StaticState() {
    if (traced()) {
      script().interfaces.resize(1);
      script().interfaces[0].id = "if0";
      script().interfaces[0].devices.push_back({"cam0", tree::infosOf("Model", "Kestrova"), 1, false});
    }
  }
  ~StaticState() { trace("destroyed"); }
} staticState;

int systemModule = 0;

GC_ERROR begin(const char* function, int command = -1, bool recorded = false) {
  Script& s = script();
  if (recorded) {
    s.calls.emplace_back(function);
    trace(function);
  }
  return s.fault ? s.fault(function, command) : GC_ERR_SUCCESS;
}

/** Runs work under the script's lock unless the test wants the call to fail. */
template<class Work>
GC_ERROR call(const char* function, int command, bool recorded, Work&& work) {
  const std::lock_guard lock(script().mutex);
  const GC_ERROR fault = begin(function, command, recorded);
  return fault != GC_ERR_SUCCESS ? fault : work();
}

GC_ERROR give(const void* value, std::size_t length, INFO_DATATYPE kind, INFO_DATATYPE* type, void* buffer,
              std::size_t* size) {
  if (type != nullptr)
    *type = kind;
  if (*size < length)
    return GC_ERR_BUFFER_TOO_SMALL;
  std::memcpy(buffer, value, length);
  *size = length;
  return GC_ERR_SUCCESS;
}

GC_ERROR giveText(const std::string& text, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
  return give(text.c_str(), text.size() + 1, INFO_DATATYPE_STRING, type, buffer, size);
}

tree::Interface* interfaceOf(void* handle) {
  for (tree::Interface& candidate : script().interfaces)
    if (&candidate == handle)
      return &candidate;
  return nullptr;
}

tree::Device* deviceOf(void* handle) {
  for (tree::Interface& candidate : script().interfaces)
    for (tree::Device& device : candidate.devices)
      if (&device == handle)
        return &device;
  return nullptr;
}

std::vector<tree::Interface*> listed() {
  std::vector<tree::Interface*> found;
  for (tree::Interface& candidate : script().interfaces)
    if (candidate.isListed)
      found.push_back(&candidate);
  return found;
}

std::uint32_t* registersOf(void* port) {
  if (port == &systemModule)
    return &script().systemRegister;
  tree::Interface* const found = interfaceOf(port);
  return found != nullptr ? found->registers : nullptr;
}

}  // namespace

TREE_EXPORT Script* treeScript() {
  return &script();
}

TREE_EXPORT GC_ERROR GC_CALLTYPE GCInitLib(void) {
  return call("GCInitLib", -1, true, [] { return GC_ERR_SUCCESS; });
}
TREE_EXPORT GC_ERROR GC_CALLTYPE GCCloseLib(void) {
  return call("GCCloseLib", -1, true, [] {
    for (tree::Interface& each : script().interfaces) {
      each.isOpen = false;
      for (tree::Device& device : each.devices)
        device.isOpen = false;
    }
    return GC_ERR_SUCCESS;
  });
}
TREE_EXPORT GC_ERROR GC_CALLTYPE GCGetInfo(TL_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  return call("GCGetInfo", cmd, false, [&] {
    switch (cmd) {
      case TL_INFO_PATHNAME:
        return giveText("/somewhere/" TREE_FILE_NAME, type, buf, size);
      case TL_INFO_NAME:
        return giveText(TREE_FILE_NAME, type, buf, size);
      default:
        return giveText("tree info " + std::to_string(cmd), type, buf, size);
    }
  });
}
TREE_EXPORT GC_ERROR GC_CALLTYPE GCGetLastError(GC_ERROR* code, char* text, size_t* size) {
  *code = GC_ERR_ERROR;
  return giveText("the tree's own words", nullptr, text, size);
}

TREE_EXPORT GC_ERROR GC_CALLTYPE GCGetPortInfo(PORT_HANDLE, PORT_INFO_CMD cmd, INFO_DATATYPE* type, void* buf,
                                               size_t* size) {
  const bool8_t no = 0;
  return cmd == PORT_INFO_BIG_ENDIAN ? give(&no, sizeof no, INFO_DATATYPE_BOOL8, type, buf, size)
                                     : giveText("Device", type, buf, size);
}
TREE_EXPORT GC_ERROR GC_CALLTYPE GCGetNumPortURLs(PORT_HANDLE port, uint32_t* count) {
  *count = registersOf(port) != nullptr ? 1 : 0;
  return GC_ERR_SUCCESS;
}
TREE_EXPORT GC_ERROR GC_CALLTYPE GCGetPortURLInfo(PORT_HANDLE, uint32_t, URL_INFO_CMD, INFO_DATATYPE* type, void* buf,
                                                  size_t* size) {
  char url[64];
  std::snprintf(url, sizeof url, "local:tree.xml;%x;%x", static_cast<unsigned>(kDescriptionAddress),
                static_cast<unsigned>(std::strlen(kDescription)));
  return giveText(url, type, buf, size);
}
TREE_EXPORT GC_ERROR GC_CALLTYPE GCReadPort(PORT_HANDLE port, uint64_t address, void* buf, size_t* size) {
  if (address >= kDescriptionAddress) {
    std::memcpy(buf, kDescription + (address - kDescriptionAddress), *size);
    return GC_ERR_SUCCESS;
  }
  const std::lock_guard lock(script().mutex);
  const std::uint32_t* const registers = registersOf(port);
  if (registers == nullptr || address != 0 || *size != sizeof *registers)
    return GC_ERR_INVALID_ADDRESS;
  std::memcpy(buf, registers, *size);
  return GC_ERR_SUCCESS;
}
TREE_EXPORT GC_ERROR GC_CALLTYPE GCWritePort(PORT_HANDLE port, uint64_t address, const void* buf, size_t* size) {
  return call("GCWritePort", -1, true, [&] {
    std::uint32_t* const registers = registersOf(port);
    if (registers == nullptr || address != 0 || *size != sizeof *registers)
      return GC_ERROR{GC_ERR_INVALID_ADDRESS};
    std::memcpy(registers, buf, *size);
    return GC_ERROR{GC_ERR_SUCCESS};
  });
}

TREE_EXPORT GC_ERROR GC_CALLTYPE TLOpen(TL_HANDLE* out) {
  return call("TLOpen", -1, true, [&] {
    *out = &systemModule;
    return GC_ERR_SUCCESS;
  });
}
TREE_EXPORT GC_ERROR GC_CALLTYPE TLClose(TL_HANDLE) {
  return call("TLClose", -1, true, [] { return GC_ERR_SUCCESS; });
}
TREE_EXPORT GC_ERROR GC_CALLTYPE TLUpdateInterfaceList(TL_HANDLE, bool8_t* changed, uint64_t) {
  return call("TLUpdateInterfaceList", -1, true, [&] {
    *changed = 1;
    return GC_ERR_SUCCESS;
  });
}
TREE_EXPORT GC_ERROR GC_CALLTYPE TLGetNumInterfaces(TL_HANDLE, uint32_t* count) {
  return call("TLGetNumInterfaces", -1, false, [&] {
    *count = static_cast<uint32_t>(listed().size());
    return GC_ERR_SUCCESS;
  });
}
TREE_EXPORT GC_ERROR GC_CALLTYPE TLGetInterfaceID(TL_HANDLE, uint32_t index, char* id, size_t* size) {
  return call("TLGetInterfaceID", -1, false, [&] { return giveText(listed().at(index)->id, nullptr, id, size); });
}
TREE_EXPORT GC_ERROR GC_CALLTYPE TLGetInterfaceInfo(TL_HANDLE, const char* id, INTERFACE_INFO_CMD cmd,
                                                    INFO_DATATYPE* type, void* buf, size_t* size) {
  return call("TLGetInterfaceInfo", cmd, false,
              [&] { return giveText(id + std::string(" info ") + std::to_string(cmd), type, buf, size); });
}
TREE_EXPORT GC_ERROR GC_CALLTYPE TLOpenInterface(TL_HANDLE, const char* id, IF_HANDLE* out) {
  return call("TLOpenInterface", -1, true, [&] {
    for (tree::Interface& each : script().interfaces) {
      if (each.id == id && each.isOpen)
        return GC_ERROR{GC_ERR_RESOURCE_IN_USE};
      if (each.id == id && each.isListed) {
        each.isOpen = true;
        *out = &each;
        return GC_ERROR{GC_ERR_SUCCESS};
      }
    }
    return GC_ERROR{GC_ERR_INVALID_ID};
  });
}

TREE_EXPORT GC_ERROR GC_CALLTYPE IFGetInfo(IF_HANDLE handle, INTERFACE_INFO_CMD cmd, INFO_DATATYPE* type, void* buf,
                                           size_t* size) {
  return call("IFGetInfo", cmd, false,
              [&] { return giveText(interfaceOf(handle)->id + " info " + std::to_string(cmd), type, buf, size); });
}
TREE_EXPORT GC_ERROR GC_CALLTYPE IFClose(IF_HANDLE handle) {
  return call("IFClose", -1, true, [&] {
    if (tree::Interface* const found = interfaceOf(handle))
      found->isOpen = false;
    return GC_ERR_SUCCESS;
  });
}
TREE_EXPORT GC_ERROR GC_CALLTYPE IFUpdateDeviceList(IF_HANDLE, bool8_t* changed, uint64_t) {
  return call("IFUpdateDeviceList", -1, true, [&] {
    *changed = 1;
    return GC_ERR_SUCCESS;
  });
}
TREE_EXPORT GC_ERROR GC_CALLTYPE IFGetNumDevices(IF_HANDLE handle, uint32_t* count) {
  return call("IFGetNumDevices", -1, false, [&] {
    *count = static_cast<uint32_t>(interfaceOf(handle)->devices.size());
    return GC_ERR_SUCCESS;
  });
}
TREE_EXPORT GC_ERROR GC_CALLTYPE IFGetDeviceID(IF_HANDLE handle, uint32_t index, char* id, size_t* size) {
  return call("IFGetDeviceID", -1, false,
              [&] { return giveText(interfaceOf(handle)->devices.at(index).id, nullptr, id, size); });
}
TREE_EXPORT GC_ERROR GC_CALLTYPE IFGetDeviceInfo(IF_HANDLE handle, const char* id, DEVICE_INFO_CMD cmd,
                                                 INFO_DATATYPE* type, void* buf, size_t* size) {
  return call("IFGetDeviceInfo", cmd, false, [&] {
    for (const tree::Device& device : interfaceOf(handle)->devices) {
      if (device.id != id)
        continue;
      if (cmd == DEVICE_INFO_ACCESS_STATUS)
        return give(&device.accessStatus, sizeof device.accessStatus, INFO_DATATYPE_INT32, type, buf, size);
      const auto info = device.infos.find(cmd);
      return info != device.infos.end() ? giveText(info->second, type, buf, size) : GC_ERROR{GC_ERR_NOT_IMPLEMENTED};
    }
    return GC_ERROR{GC_ERR_INVALID_ID};
  });
}
TREE_EXPORT GC_ERROR GC_CALLTYPE IFOpenDevice(IF_HANDLE handle, const char* id, DEVICE_ACCESS_FLAGS, DEV_HANDLE* out) {
  return call("IFOpenDevice", -1, true, [&] {
    for (tree::Device& device : interfaceOf(handle)->devices) {
      if (device.id != id)
        continue;
      if (device.isOpen)
        return GC_ERROR{GC_ERR_RESOURCE_IN_USE};
      device.isOpen = true;
      *out = &device;
      return GC_ERROR{GC_ERR_SUCCESS};
    }
    return GC_ERROR{GC_ERR_INVALID_ID};
  });
}

TREE_EXPORT GC_ERROR GC_CALLTYPE DevClose(DEV_HANDLE handle) {
  return call("DevClose", -1, true, [&] {
    if (tree::Device* const found = deviceOf(handle))
      found->isOpen = false;
    return GC_ERR_SUCCESS;
  });
}
