// A producer's functions, each under its name and watched while it runs.
#pragma once

#include <gentl_interface/GenTL.h>

#include <string>
#include <vector>

#include "check/call_watch.h"
#include "platform/dynamic_library.h"

namespace tool::check {

template<class Pointer>
class Function;

template<class... Args>
class Function<GC_ERROR(GC_CALLTYPE*)(Args...)> {
 public:
  using Pointer = GC_ERROR(GC_CALLTYPE*)(Args...);

  Function(const DynamicLibrary& library, const char* name, int minor, std::vector<std::string>& missing,
           std::vector<std::string>& missingNewer)
      : name_(name),
        pointer_(reinterpret_cast<Pointer>(library.find(name))) {
    if (pointer_ == nullptr)
      (minor < kFirstOptional ? missing : missingNewer).emplace_back(name);
  }

  const char* name() const { return name_; }
  bool exists() const { return pointer_ != nullptr; }
  /// For whoever measures what a call costs.
  Pointer unwatched() const { return pointer_; }
  GC_ERROR operator()(Args... args) const {
    if (pointer_ == nullptr)
      return GC_ERR_NOT_IMPLEMENTED;
    const WatchedCall watch(name_);
    try {
      return pointer_(args...);
    } catch (...) {
      throwOnAs(name_);
    }
  }

 private:
  // The library does without the functions that came with this version of GenTL or later.
  static constexpr int kFirstOptional = 3;

  const char* name_;
  Pointer pointer_;
};

/// All functions of GenTL 1.5.
class ProducerFunctions {
  const DynamicLibrary& library_;
  std::vector<std::string> missing_;
  std::vector<std::string> missingNewer_;

  template<class Pointer>
  Function<Pointer> get(const char* name, int minor = 0) {
    return {library_, name, minor, missing_, missingNewer_};
  }

 public:
  explicit ProducerFunctions(const DynamicLibrary& library) : library_(library) {}
  ProducerFunctions(const ProducerFunctions&) = delete;
  ProducerFunctions& operator=(const ProducerFunctions&) = delete;

  const std::vector<std::string>& missing() const { return missing_; }
  /// Those that came with GenTL 1.3 and later.
  const std::vector<std::string>& missingNewer() const { return missingNewer_; }

  const Function<PGCInitLib> GCInitLib = get<PGCInitLib>("GCInitLib");
  const Function<PGCCloseLib> GCCloseLib = get<PGCCloseLib>("GCCloseLib");
  const Function<PGCGetInfo> GCGetInfo = get<PGCGetInfo>("GCGetInfo");
  const Function<PGCGetLastError> GCGetLastError = get<PGCGetLastError>("GCGetLastError");
  const Function<PGCReadPort> GCReadPort = get<PGCReadPort>("GCReadPort");
  const Function<PGCWritePort> GCWritePort = get<PGCWritePort>("GCWritePort");
  const Function<PGCGetPortURL> GCGetPortURL = get<PGCGetPortURL>("GCGetPortURL");
  const Function<PGCGetPortInfo> GCGetPortInfo = get<PGCGetPortInfo>("GCGetPortInfo");
  const Function<PGCGetNumPortURLs> GCGetNumPortURLs = get<PGCGetNumPortURLs>("GCGetNumPortURLs", 1);
  const Function<PGCGetPortURLInfo> GCGetPortURLInfo = get<PGCGetPortURLInfo>("GCGetPortURLInfo", 1);
  const Function<PGCReadPortStacked> GCReadPortStacked = get<PGCReadPortStacked>("GCReadPortStacked", 1);
  const Function<PGCWritePortStacked> GCWritePortStacked = get<PGCWritePortStacked>("GCWritePortStacked", 1);
  const Function<PGCRegisterEvent> GCRegisterEvent = get<PGCRegisterEvent>("GCRegisterEvent");
  const Function<PGCUnregisterEvent> GCUnregisterEvent = get<PGCUnregisterEvent>("GCUnregisterEvent");
  const Function<PEventGetData> EventGetData = get<PEventGetData>("EventGetData");
  const Function<PEventGetDataInfo> EventGetDataInfo = get<PEventGetDataInfo>("EventGetDataInfo");
  const Function<PEventGetInfo> EventGetInfo = get<PEventGetInfo>("EventGetInfo");
  const Function<PEventFlush> EventFlush = get<PEventFlush>("EventFlush");
  const Function<PEventKill> EventKill = get<PEventKill>("EventKill");
  const Function<PTLOpen> TLOpen = get<PTLOpen>("TLOpen");
  const Function<PTLClose> TLClose = get<PTLClose>("TLClose");
  const Function<PTLGetInfo> TLGetInfo = get<PTLGetInfo>("TLGetInfo");
  const Function<PTLGetNumInterfaces> TLGetNumInterfaces = get<PTLGetNumInterfaces>("TLGetNumInterfaces");
  const Function<PTLGetInterfaceID> TLGetInterfaceID = get<PTLGetInterfaceID>("TLGetInterfaceID");
  const Function<PTLGetInterfaceInfo> TLGetInterfaceInfo = get<PTLGetInterfaceInfo>("TLGetInterfaceInfo");
  const Function<PTLOpenInterface> TLOpenInterface = get<PTLOpenInterface>("TLOpenInterface");
  const Function<PTLUpdateInterfaceList> TLUpdateInterfaceList = get<PTLUpdateInterfaceList>("TLUpdateInterfaceList");
  const Function<PIFClose> IFClose = get<PIFClose>("IFClose");
  const Function<PIFGetInfo> IFGetInfo = get<PIFGetInfo>("IFGetInfo");
  const Function<PIFGetNumDevices> IFGetNumDevices = get<PIFGetNumDevices>("IFGetNumDevices");
  const Function<PIFGetDeviceID> IFGetDeviceID = get<PIFGetDeviceID>("IFGetDeviceID");
  const Function<PIFUpdateDeviceList> IFUpdateDeviceList = get<PIFUpdateDeviceList>("IFUpdateDeviceList");
  const Function<PIFGetDeviceInfo> IFGetDeviceInfo = get<PIFGetDeviceInfo>("IFGetDeviceInfo");
  const Function<PIFOpenDevice> IFOpenDevice = get<PIFOpenDevice>("IFOpenDevice");
  const Function<PIFGetParentTL> IFGetParentTL = get<PIFGetParentTL>("IFGetParentTL", 4);
  const Function<PDevClose> DevClose = get<PDevClose>("DevClose");
  const Function<PDevGetInfo> DevGetInfo = get<PDevGetInfo>("DevGetInfo");
  const Function<PDevGetPort> DevGetPort = get<PDevGetPort>("DevGetPort");
  const Function<PDevGetNumDataStreams> DevGetNumDataStreams = get<PDevGetNumDataStreams>("DevGetNumDataStreams");
  const Function<PDevGetDataStreamID> DevGetDataStreamID = get<PDevGetDataStreamID>("DevGetDataStreamID");
  const Function<PDevOpenDataStream> DevOpenDataStream = get<PDevOpenDataStream>("DevOpenDataStream");
  const Function<PDevGetParentIF> DevGetParentIF = get<PDevGetParentIF>("DevGetParentIF", 4);
  const Function<PDSAnnounceBuffer> DSAnnounceBuffer = get<PDSAnnounceBuffer>("DSAnnounceBuffer");
  const Function<PDSAllocAndAnnounceBuffer> DSAllocAndAnnounceBuffer =
      get<PDSAllocAndAnnounceBuffer>("DSAllocAndAnnounceBuffer");
  const Function<PDSRevokeBuffer> DSRevokeBuffer = get<PDSRevokeBuffer>("DSRevokeBuffer");
  const Function<PDSQueueBuffer> DSQueueBuffer = get<PDSQueueBuffer>("DSQueueBuffer");
  const Function<PDSFlushQueue> DSFlushQueue = get<PDSFlushQueue>("DSFlushQueue");
  const Function<PDSStartAcquisition> DSStartAcquisition = get<PDSStartAcquisition>("DSStartAcquisition");
  const Function<PDSStopAcquisition> DSStopAcquisition = get<PDSStopAcquisition>("DSStopAcquisition");
  const Function<PDSGetInfo> DSGetInfo = get<PDSGetInfo>("DSGetInfo");
  const Function<PDSGetBufferID> DSGetBufferID = get<PDSGetBufferID>("DSGetBufferID");
  const Function<PDSGetBufferInfo> DSGetBufferInfo = get<PDSGetBufferInfo>("DSGetBufferInfo");
  const Function<PDSClose> DSClose = get<PDSClose>("DSClose");
  const Function<PDSGetBufferChunkData> DSGetBufferChunkData = get<PDSGetBufferChunkData>("DSGetBufferChunkData", 3);
  const Function<PDSGetParentDev> DSGetParentDev = get<PDSGetParentDev>("DSGetParentDev", 4);
  const Function<PDSGetNumBufferParts> DSGetNumBufferParts = get<PDSGetNumBufferParts>("DSGetNumBufferParts", 5);
  const Function<PDSGetBufferPartInfo> DSGetBufferPartInfo = get<PDSGetBufferPartInfo>("DSGetBufferPartInfo", 5);
};

}  // namespace tool::check
