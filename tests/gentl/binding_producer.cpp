// A producer that does what its script says and remembers what it was asked.
#define GENTL_PRODUCER
#include <algorithm>
#include <chrono>
#include <cstring>

#include "binding_script.h"

namespace {

using binding::Script;

Script& script() {
  static Script theScript;
  return theScript;
}

int modules[8];

/** Notes the call and gives its scripted status. */
GC_ERROR enter(const char* name) {
  const std::lock_guard lock(script().mutex);
  script().calls.emplace_back(name);
  const auto answer = script().answers.find(name);
  return answer != script().answers.end() ? answer->second : GC_ERR_SUCCESS;
}

GC_ERROR open(const char* name, int module, void** out) {
  const GC_ERROR status = enter(name);
  *out = script().withoutHandle.contains(name) ? nullptr : &modules[module];
  return status;
}

GC_ERROR text(const char* name, const std::string& value, void* buffer, size_t* size) {
  const GC_ERROR status = enter(name);
  if (status >= 0 || status <= -1023) {
    if (script().unterminated) {
      std::memset(buffer, 'u', *size);
    } else {
      *size = value.copy(static_cast<char*>(buffer), *size - 1);
      static_cast<char*>(buffer)[*size] = '\0';
    }
  }
  return status;
}

template<class T>
GC_ERROR number(const char* name, T value, void* buffer, size_t* size) {
  const GC_ERROR status = enter(name);
  std::memcpy(buffer, &value, std::min(*size, sizeof(value)));
  *size = sizeof(value);
  return status;
}

}  // namespace

#define SCRIPT_EXPORT extern "C" GC_IMPORT_EXPORT
SCRIPT_EXPORT Script* bindingScript() {
  return &script();
}

GC_ERROR GCInitLib() {
  return enter("GCInitLib");
}
GC_ERROR GCCloseLib() {
  return enter("GCCloseLib");
}
GC_ERROR GCGetInfo(TL_INFO_CMD cmd, INFO_DATATYPE*, void* buf, size_t* size) {
  return text("GCGetInfo", cmd == TL_INFO_PATHNAME ? "/opt/lib/BindingProducer.cti" : "Binding", buf, size);
}
GC_ERROR GCGetLastError(GC_ERROR* code, char* buf, size_t* size) {
  *code = GC_ERR_ERROR;
  return text("GCGetLastError", script().lastError, buf, size);
}

GC_ERROR GCReadPort(PORT_HANDLE, uint64_t address, void* buf, size_t* size) {
  const GC_ERROR status = enter("GCReadPort");
  const std::lock_guard lock(script().mutex);
  if (address > script().memory.size()) {
    return GC_ERR_INVALID_ADDRESS;
  }
  *size = script().memory.copy(static_cast<char*>(buf), *size, address);
  return status;
}
GC_ERROR GCWritePort(PORT_HANDLE, uint64_t address, const void* buf, size_t* size) {
  const GC_ERROR status = enter("GCWritePort");
  const std::lock_guard lock(script().mutex);
  if (address + *size > script().memory.size()) {
    return GC_ERR_INVALID_ADDRESS;
  }
  std::memcpy(script().memory.data() + address, buf, *size);
  return status;
}
GC_ERROR GCGetPortInfo(PORT_HANDLE, PORT_INFO_CMD cmd, INFO_DATATYPE*, void* buf, size_t* size) {
  return cmd == PORT_INFO_BIG_ENDIAN ? number<bool8_t>("GCGetPortInfo", 0xFF, buf, size)
                                     : text("GCGetPortInfo", "Device", buf, size);
}
GC_ERROR GCGetNumPortURLs(PORT_HANDLE, uint32_t* count) {
  *count = static_cast<uint32_t>(script().urls.size()) + script().moreUrls;
  return enter("GCGetNumPortURLs");
}
GC_ERROR GCGetPortURLInfo(PORT_HANDLE, uint32_t index, URL_INFO_CMD, INFO_DATATYPE*, void* buf, size_t* size) {
  return index < script().urls.size() ? text("GCGetPortURLInfo", script().urls[index], buf, size)
                                      : static_cast<GC_ERROR>(GC_ERR_INVALID_INDEX);
}

GC_ERROR GCRegisterEvent(EVENTSRC_HANDLE, EVENT_TYPE, EVENT_HANDLE* out) {
  return open("GCRegisterEvent", 6, out);
}
GC_ERROR GCUnregisterEvent(EVENTSRC_HANDLE, EVENT_TYPE) {
  return enter("GCUnregisterEvent");
}
GC_ERROR EventGetData(EVENT_HANDLE, void* buf, size_t* size, uint64_t timeoutMs) {
  const GC_ERROR scripted = enter("EventGetData");
  if (scripted != GC_ERR_SUCCESS) {
    return scripted;
  }
  std::unique_lock lock(script().mutex);
  ++script().waiting;
  script().changed.notify_all();
  const auto ready = [] { return script().pendingKills > 0 || script().filledBuffers > 0; };
  const bool signalled =
      script().changed.wait_for(lock, std::chrono::milliseconds(std::min<uint64_t>(timeoutMs, 20000)), ready);
  --script().waiting;
  script().changed.notify_all();
  if (!signalled) {
    return GC_ERR_TIMEOUT;
  }
  if (script().pendingKills > 0) {
    --script().pendingKills;
    ++script().held;
    script().changed.notify_all();
    script().changed.wait(lock, [] { return !script().holdsAborts; });
    --script().held;
    return GC_ERR_ABORT;
  }
  --script().filledBuffers;
  const EVENT_NEW_BUFFER_DATA data = {&modules[5], script().bufferBase};
  *size = std::min(*size, sizeof(data));
  std::memcpy(buf, &data, *size);
  return GC_ERR_SUCCESS;
}
GC_ERROR EventGetDataInfo(EVENT_HANDLE, const void*, size_t, EVENT_DATA_INFO_CMD, INFO_DATATYPE* type, void* out,
                          size_t* outSize) {
  *type = INFO_DATATYPE_UINT64;
  return number<uint64_t>("EventGetDataInfo", 77, out, outSize);
}
GC_ERROR EventGetInfo(EVENT_HANDLE, EVENT_INFO_CMD, INFO_DATATYPE*, void* buf, size_t* size) {
  return number<size_t>("EventGetInfo", 16, buf, size);
}
GC_ERROR EventFlush(EVENT_HANDLE) {
  return enter("EventFlush");
}
GC_ERROR EventKill(EVENT_HANDLE) {
  const GC_ERROR status = enter("EventKill");
  const std::lock_guard lock(script().mutex);
  script().pendingKills = script().remembersOneKill ? 1 : script().pendingKills + 1;
  script().changed.notify_all();
  return status;
}

GC_ERROR TLOpen(TL_HANDLE* out) {
  return open("TLOpen", 0, out);
}
GC_ERROR TLClose(TL_HANDLE) {
  return enter("TLClose");
}
GC_ERROR TLGetNumInterfaces(TL_HANDLE, uint32_t* count) {
  *count = static_cast<uint32_t>(script().counter);
  return enter("TLGetNumInterfaces");
}
GC_ERROR TLGetInterfaceID(TL_HANDLE, uint32_t index, char* id, size_t* size) {
  return text("TLGetInterfaceID", "If" + std::to_string(index), id, size);
}
GC_ERROR TLGetInterfaceInfo(TL_HANDLE, const char* id, INTERFACE_INFO_CMD, INFO_DATATYPE*, void* buf, size_t* size) {
  return text("TLGetInterfaceInfo", std::string("Name of ") + id, buf, size);
}
GC_ERROR TLOpenInterface(TL_HANDLE, const char*, IF_HANDLE* out) {
  return open("TLOpenInterface", 1, out);
}
GC_ERROR TLUpdateInterfaceList(TL_HANDLE, bool8_t* changed, uint64_t) {
  *changed = 2;
  return enter("TLUpdateInterfaceList");
}

GC_ERROR IFClose(IF_HANDLE) {
  return enter("IFClose");
}
GC_ERROR IFGetNumDevices(IF_HANDLE, uint32_t* count) {
  *count = 1;
  return enter("IFGetNumDevices");
}
GC_ERROR IFGetDeviceID(IF_HANDLE, uint32_t, char* id, size_t* size) {
  return text("IFGetDeviceID", "Dev", id, size);
}
GC_ERROR IFUpdateDeviceList(IF_HANDLE, bool8_t* changed, uint64_t) {
  *changed = 0;
  return enter("IFUpdateDeviceList");
}
GC_ERROR IFGetDeviceInfo(IF_HANDLE, const char*, DEVICE_INFO_CMD cmd, INFO_DATATYPE*, void* buf, size_t* size) {
  return cmd == DEVICE_INFO_ACCESS_STATUS ? number<int32_t>("IFGetDeviceInfo", 4, buf, size)
                                          : text("IFGetDeviceInfo", "Vendor", buf, size);
}
GC_ERROR IFOpenDevice(IF_HANDLE, const char*, DEVICE_ACCESS_FLAGS, DEV_HANDLE* out) {
  return open("IFOpenDevice", 2, out);
}

GC_ERROR DevClose(DEV_HANDLE) {
  return enter("DevClose");
}
GC_ERROR DevGetPort(DEV_HANDLE, PORT_HANDLE* out) {
  return open("DevGetPort", 3, out);
}
GC_ERROR DevGetNumDataStreams(DEV_HANDLE, uint32_t* count) {
  *count = 1;
  return enter("DevGetNumDataStreams");
}
GC_ERROR DevGetDataStreamID(DEV_HANDLE, uint32_t, char* id, size_t* size) {
  return text("DevGetDataStreamID", "Stream", id, size);
}
GC_ERROR DevOpenDataStream(DEV_HANDLE, const char*, DS_HANDLE* out) {
  return open("DevOpenDataStream", 4, out);
}

GC_ERROR DSClose(DS_HANDLE) {
  return enter("DSClose");
}
GC_ERROR DSAllocAndAnnounceBuffer(DS_HANDLE, size_t, void*, BUFFER_HANDLE* out) {
  return open("DSAllocAndAnnounceBuffer", 5, out);
}
GC_ERROR DSRevokeBuffer(DS_HANDLE, BUFFER_HANDLE, void** memory, void** user) {
  *memory = nullptr;
  *user = &modules[7];
  return enter("DSRevokeBuffer");
}
GC_ERROR DSQueueBuffer(DS_HANDLE, BUFFER_HANDLE) {
  return enter("DSQueueBuffer");
}
GC_ERROR DSFlushQueue(DS_HANDLE, ACQ_QUEUE_TYPE) {
  return enter("DSFlushQueue");
}
GC_ERROR DSStartAcquisition(DS_HANDLE, ACQ_START_FLAGS, uint64_t) {
  return enter("DSStartAcquisition");
}
GC_ERROR DSStopAcquisition(DS_HANDLE, ACQ_STOP_FLAGS) {
  return enter("DSStopAcquisition");
}
GC_ERROR DSGetInfo(DS_HANDLE, STREAM_INFO_CMD cmd, INFO_DATATYPE*, void* buf, size_t* size) {
  return cmd == STREAM_INFO_DEFINES_PAYLOADSIZE ? number<bool8_t>("DSGetInfo", 7, buf, size)
                                                : number<uint64_t>("DSGetInfo", script().counter, buf, size);
}
GC_ERROR DSGetBufferInfo(DS_HANDLE, BUFFER_HANDLE, BUFFER_INFO_CMD cmd, INFO_DATATYPE*, void* buf, size_t* size) {
  return cmd == BUFFER_INFO_BASE ? number<void*>("DSGetBufferInfo", script().bufferBase, buf, size)
                                 : number<size_t>("DSGetBufferInfo", script().bufferSize, buf, size);
}

// Part of the recording extension; the rest is missing.
SCRIPT_EXPORT int32_t nimboStartRecording() {
  return 0;
}
SCRIPT_EXPORT int32_t nimboSelectRecording(uint32_t index) {
  return static_cast<int32_t>(index);
}
SCRIPT_EXPORT int32_t nimboCloseRecordings() {
  return -1001;
}
SCRIPT_EXPORT uint64_t nimboReadRecording(void* argument) {
  return argument != nullptr ? 0xFEDCBA9876543210U : 1;
}
