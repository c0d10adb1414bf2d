// An interface of a producer, and the devices that it lists.
#include "gentl/tl_interface.h"

#include <utility>

#include "gentl/device.h"
#include "gentl/info_query.h"
#include "platform/platform.h"

namespace GenTLCpp {

namespace {
constexpr ModuleTexts kInterfaceTexts = {"TransportLayer is closed, cannot access TLInterface",
                                         "Interface is closed, cannot return handle"};
}

TLInterface::TLInterface(const std::shared_ptr<TransportLayer>& transportLayer, LibraryHandle library, IF_HANDLE handle)
    : OpenModule(transportLayer, library, handle, kInterfaceTexts) {
  traceLine("TLInterface()");
}

TLInterface::~TLInterface() {
  traceLine("~TLInterface()");
  close();
}

std::string TLInterface::getInfoString(INTERFACE_INFO_CMD cmd) const {
  IF_HANDLE handle = getHandle();
  return OVI::platform::fromUtf8(queryText([&](INFO_DATATYPE* type, char* buffer, std::size_t* size) {
    return functions().IFGetInfo(handle, cmd, type, buffer, size);
  }));
}

std::vector<std::string> TLInterface::getDeviceIDs() const {
  IF_HANDLE handle = getHandle();
  return queryIds([&](std::uint32_t* count) { return functions().IFGetNumDevices(handle, count); },
                  [&](std::uint32_t index, char* id, std::size_t* size) {
                    return functions().IFGetDeviceID(handle, index, id, size);
                  });
}

std::vector<std::shared_ptr<DeviceInfo>> TLInterface::getDeviceInfos() {
  std::vector<std::shared_ptr<DeviceInfo>> infos;
  for (std::string& id : getDeviceIDs()) {
    infos.push_back(std::make_shared<DeviceInfo>(sharedAs<TLInterface>(), std::move(id)));
  }
  return infos;
}

std::shared_ptr<DeviceInfo> TLInterface::findDeviceInfo(const std::string& id) {
  for (std::shared_ptr<DeviceInfo>& info : getDeviceInfos()) {
    if (info->getID() == id) {
      return std::move(info);
    }
  }
  return nullptr;
}

std::string TLInterface::getDeviceInfoString(const std::string& id, DEVICE_INFO_CMD cmd) const {
  IF_HANDLE handle = getHandle();
  return OVI::platform::fromUtf8(queryText([&](INFO_DATATYPE* type, char* buffer, std::size_t* size) {
    return functions().IFGetDeviceInfo(handle, id.c_str(), cmd, type, buffer, size);
  }));
}

std::int32_t TLInterface::getDeviceAccessStatus(const std::string& id) const {
  IF_HANDLE handle = getHandle();
  return queryValue<std::int32_t>([&](INFO_DATATYPE* type, void* value, std::size_t* size) {
    return functions().IFGetDeviceInfo(handle, id.c_str(), DEVICE_INFO_ACCESS_STATUS, type, value, size);
  });
}

bool TLInterface::updateDeviceList(std::uint64_t timeout) const {
  bool8_t changed = 0;
  checkGenTLError(functions().IFUpdateDeviceList(getHandle(), &changed, timeout));
  return changed != 0;
}

DEV_HANDLE TLInterface::openDeviceHandle(const std::string& id, DEVICE_ACCESS_FLAGS accessFlags) const {
  traceLine("IFOpenDevice()");
  return openHandle(
      [&](DEV_HANDLE* handle) { return functions().IFOpenDevice(getHandle(), id.c_str(), accessFlags, handle); });
}

DeviceInfo::DeviceInfo(std::shared_ptr<TLInterface> parent, std::string id)
    : parent_(std::move(parent)),
      id_(std::move(id)) {
  traceLine("DeviceInfo(", id_, ")");
}

DeviceInfo::~DeviceInfo() {
  traceLine("~DeviceInfo(", id_, ")");
}

std::string DeviceInfo::getInfoString(DEVICE_INFO_CMD cmd) const {
  return parent_->getDeviceInfoString(id_, cmd);
}

std::int32_t DeviceInfo::getAccessStatus() const {
  return parent_->getDeviceAccessStatus(id_);
}

std::shared_ptr<Device> DeviceInfo::open(DEVICE_ACCESS_FLAGS accessFlags) {
  return std::make_shared<Device>(parent_, parent_->getLibraryHandle(), parent_->openDeviceHandle(id_, accessFlags));
}

}  // namespace GenTLCpp
