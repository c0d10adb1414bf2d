// IF functions.
#include "gentl/call.h"
#include "modules/interface.h"
#include "modules/system.h"

using namespace vcam;

namespace {
constexpr const char* kInterfaceWhat = "interface";
}

GC_ERROR GC_CALLTYPE IFClose(IF_HANDLE iface) {
  return call(Function::IFClose, [&] { Module::close(iface, kInterface, kInterfaceWhat); });
}

GC_ERROR GC_CALLTYPE IFGetInfo(IF_HANDLE iface, INTERFACE_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  return call(Function::IFGetInfo, [&] {
    const Pin<Interface> interface(iface, kInterface, kInterfaceWhat);
    answer(System::interfaceInfo(interface->entry(), cmd), cmd, type, buf, size);
  });
}

GC_ERROR GC_CALLTYPE IFGetNumDevices(IF_HANDLE iface, uint32_t* count) {
  return call(Function::IFGetNumDevices, [&] {
    const Pin<Interface> interface(iface, kInterface, kInterfaceWhat);
    store(count, interface->deviceCount(), "the count");
  });
}

GC_ERROR GC_CALLTYPE IFGetDeviceID(IF_HANDLE iface, uint32_t index, char* id, size_t* size) {
  return call(Function::IFGetDeviceID, [&] {
    const Pin<Interface> interface(iface, kInterface, kInterfaceWhat);
    answerText(interface->deviceId(index), id, size);
  });
}

GC_ERROR GC_CALLTYPE IFUpdateDeviceList(IF_HANDLE iface, bool8_t* changed, uint64_t timeoutMs) {
  return call(Function::IFUpdateDeviceList, [&] {
    const Pin<Interface> interface(iface, kInterface, kInterfaceWhat);
    requireIfGiven(changed, "the changed flag");
    const bool different = interface->updateList(timeoutMs);
    if (changed != nullptr) {
      *changed = different ? 1 : 0;
    }
  });
}

GC_ERROR GC_CALLTYPE IFGetDeviceInfo(IF_HANDLE iface, const char* id, DEVICE_INFO_CMD cmd, INFO_DATATYPE* type,
                                     void* buf, size_t* size) {
  return call(Function::IFGetDeviceInfo, [&] {
    const Pin<Interface> interface(iface, kInterface, kInterfaceWhat);
    answer(interface->deviceInfo(idFrom(id), cmd), cmd, type, buf, size);
  });
}

GC_ERROR GC_CALLTYPE IFOpenDevice(IF_HANDLE iface, const char* id, DEVICE_ACCESS_FLAGS access, DEV_HANDLE* out) {
  return call(Function::IFOpenDevice, [&] {
    const Pin<Interface> interface(iface, kInterface, kInterfaceWhat);
    require(out, "the device handle");
    *out = interface->openDevice(idFrom(id), access);
  });
}

GC_ERROR GC_CALLTYPE IFGetParentTL(IF_HANDLE iface, TL_HANDLE* out) {
  return call(Function::IFGetParentTL, [&] {
    const Pin<Interface> interface(iface, kInterface, kInterfaceWhat);
    store(out, interface->systemHandle(), "the system handle");
  });
}
