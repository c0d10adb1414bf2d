// Passes register accesses on to the camera, as far as the device was opened for them.
#include "modules/remote_device.h"

#include "modules/device.h"

namespace vcam {

namespace {

void check(GC_ERROR code, std::string_view action, std::uint64_t address, std::size_t size) {
  if (code != GC_ERR_SUCCESS) {
    fail(code, "the camera refused to ", action, " ", size, " bytes at address 0x", hexadecimal(address));
  }
}

}  // namespace

PortIdentity RemoteDevice::identity() {
  PortIdentity me = device_.identity();
  const Identity& camera = device_.camera().identity();
  me.version = camera.version;
  me.module = GENTL_MODULE_REMOTE_DEVICE;
  me.portName = device_.camera().portName();
  me.bigEndian = device_.camera().isBigEndian();
  me.writable = !device_.isReadOnly();
  return me;
}

const DescriptionInfo& RemoteDevice::description() {
  return device_.camera().description();
}

void RemoteDevice::read(std::uint64_t address, void* data, std::size_t size) {
  device_.requireConnection();
  check(device_.camera().read(address, data, size), "read", address, size);
}

void RemoteDevice::write(std::uint64_t address, const void* data, std::size_t size, std::size_t& moved) {
  device_.requireConnection();
  if (device_.isReadOnly()) {
    fail(GC_ERR_ACCESS_DENIED, "the device was opened for reading only");
  }
  const GC_ERROR error = device_.camera().write(address, data, size, &moved);
  device_.noticePayloadChange();
  check(error, "write", address, size);
}

}  // namespace vcam
