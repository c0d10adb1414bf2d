// A producer's modules, opened as far as a group of rules needs them and closed at its end.
#include "check/modules.h"

#include "check/info.h"
#include "check/lists.h"
#include "text.h"

namespace tool::check {

namespace {

// True when the device is the one that the user means.
bool isMeant(const Checker& check, const std::string& id, const Query& query) {
  if (check.camera().empty()) {
    const Info status = ask(query, DEVICE_INFO_ACCESS_STATUS);
    return !status.exists() || status.number() == DEVICE_ACCESS_STATUS_READWRITE ||
           status.number() == DEVICE_ACCESS_STATUS_UNKNOWN;
  }
  const auto is = [&](std::int32_t command) {
    const Info info = ask(query, command);
    return info.exists() && equalsIgnoringCase(info.text(), check.camera());
  };
  return id == check.camera() || is(DEVICE_INFO_SERIAL_NUMBER) || is(DEVICE_INFO_USER_DEFINED_NAME) ||
         is(DEVICE_INFO_MODEL);
}

}  // namespace

std::string noDeviceText(const std::string& camera) {
  return "there is no device \"" + camera + "\"";
}

Modules::Modules(Checker& check, Depth depth) : gentl_(check.gentl()) {
  try {
    open(check, depth);
  } catch (...) {
    close();
    throw;
  }
}

Modules::Modules(Checker& check, const DeviceAddress& address, Depth depth) : gentl_(check.gentl()) {
  try {
    openToLook(check, address, depth);
  } catch (...) {
    close();
    throw;
  }
}

Modules::~Modules() {
  close();
}

void Modules::open(Checker& check, Depth depth) {
  check.need(gentl_.GCInitLib);
  initialized_ = true;
  if (depth == Depth::kLibrary)
    return;
  check.need(gentl_.TLOpen, &tl);
  if (depth == Depth::kSystem)
    return;
  if (depth == Depth::kInterface) {
    const std::vector<std::string> ids = interfaceIds(check, tl);
    if (ids.empty())
      throw Broken("there is no interface");
    interfaceId = ids.front();
    check.need(gentl_.TLOpenInterface, tl, interfaceId.c_str(), &iface);
    return;
  }
  openDevice(check);
  openBelowDevice(check, depth);
}

void Modules::openToLook(Checker& check, const DeviceAddress& address, Depth depth) {
  interfaceId = address.interface;
  deviceId = address.device;
  check.need(gentl_.GCInitLib);
  initialized_ = true;
  check.need(gentl_.TLOpen, &tl);
  interfaceIds(check, tl);  // The producer knows its interfaces only after it was asked for them.
  check.need(gentl_.TLOpenInterface, tl, interfaceId.c_str(), &iface);
  deviceIds(check, iface);
  GC_ERROR code = GC_ERR_ERROR;
  for (const DEVICE_ACCESS_FLAGS access : {DEVICE_ACCESS_READONLY, DEVICE_ACCESS_CONTROL, DEVICE_ACCESS_EXCLUSIVE}) {
    code = gentl_.IFOpenDevice(iface, deviceId.c_str(), access, &device);
    if (code == GC_ERR_SUCCESS)
      return openBelowDevice(check, depth);
  }
  throw Broken("IFOpenDevice returned " + codeText(code));
}

void Modules::openBelowDevice(Checker& check, Depth depth) {
  check.need(gentl_.DevGetPort, device, &remote);
  if (depth == Depth::kDevice)
    return;
  const std::vector<std::string> streams = streamIds(check, device);
  if (streams.empty())
    throw Broken("the device has no stream");
  streamId = streams.front();
  check.need(gentl_.DevOpenDataStream, device, streamId.c_str(), &stream);
}

void Modules::openDevice(Checker& check) {
  for (const std::string& id : interfaceIds(check, tl))
    if (openDeviceOf(check, id))
      return;
  throw Broken(check.camera().empty() ? "no interface has a device that can be opened" : noDeviceText(check.camera()));
}

bool Modules::openDeviceOf(Checker& check, const std::string& interface) {
  check.need(gentl_.TLOpenInterface, tl, interface.c_str(), &iface);
  interfaceId = interface;
  for (const std::string& id : deviceIds(check, iface)) {
    if (!isMeant(check, id, [&](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
          return gentl_.IFGetDeviceInfo(iface, id.c_str(), command, type, buffer, size);
        }))
      continue;
    check.need(gentl_.IFOpenDevice, iface, id.c_str(), DEVICE_ACCESS_EXCLUSIVE, &device);
    deviceId = id;
    return true;
  }
  check.need(gentl_.IFClose, iface);
  iface = nullptr;
  return false;
}

void Modules::close() {
  if (stream != nullptr)
    gentl_.DSClose(stream);
  if (device != nullptr)
    gentl_.DevClose(device);
  if (iface != nullptr)
    gentl_.IFClose(iface);
  if (tl != nullptr)
    gentl_.TLClose(tl);
  if (initialized_)
    gentl_.GCCloseLib();
  stream = device = iface = tl = nullptr;
  initialized_ = false;
}

}  // namespace tool::check
