// Dev functions.
#include "gentl/call.h"
#include "modules/device.h"

using namespace vcam;

namespace {
constexpr const char* kDeviceWhat = "local device";
}

GC_ERROR GC_CALLTYPE DevClose(DEV_HANDLE dev) {
  return call(Function::DevClose, [&] { Module::close(dev, kDevice, kDeviceWhat); });
}

GC_ERROR GC_CALLTYPE DevGetInfo(DEV_HANDLE dev, DEVICE_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  return call(Function::DevGetInfo, [&] {
    const Pin<Device> device(dev, kDevice, kDeviceWhat);
    answer(device->info(cmd), cmd, type, buf, size);
  });
}

GC_ERROR GC_CALLTYPE DevGetPort(DEV_HANDLE dev, PORT_HANDLE* out) {
  return call(Function::DevGetPort, [&] {
    const Pin<Device> device(dev, kDevice, kDeviceWhat);
    store(out, device->remotePort(), "the port handle");
  });
}

GC_ERROR GC_CALLTYPE DevGetNumDataStreams(DEV_HANDLE dev, uint32_t* count) {
  return call(Function::DevGetNumDataStreams, [&] {
    const Pin<Device> device(dev, kDevice, kDeviceWhat);
    store(count, device->streamCount(), "the count");
  });
}

GC_ERROR GC_CALLTYPE DevGetDataStreamID(DEV_HANDLE dev, uint32_t index, char* id, size_t* size) {
  return call(Function::DevGetDataStreamID, [&] {
    const Pin<Device> device(dev, kDevice, kDeviceWhat);
    answerText(device->streamId(index), id, size);
  });
}

GC_ERROR GC_CALLTYPE DevOpenDataStream(DEV_HANDLE dev, const char* id, DS_HANDLE* out) {
  return call(Function::DevOpenDataStream, [&] {
    const Pin<Device> device(dev, kDevice, kDeviceWhat);
    require(out, "the data stream handle");
    *out = device->openStream(idFrom(id));
  });
}

GC_ERROR GC_CALLTYPE DevGetParentIF(DEV_HANDLE dev, IF_HANDLE* out) {
  return call(Function::DevGetParentIF, [&] {
    const Pin<Device> device(dev, kDevice, kDeviceWhat);
    store(out, device->interfaceHandle(), "the interface handle");
  });
}
