// The interface's device list, the infos of devices, and its registers.
#include "modules/interface.h"

#include <algorithm>

#include "modules/device.h"
#include "modules/system.h"
#include "modules/tl_types.h"

namespace vcam {

namespace {

constexpr std::uint64_t kDeviceArrived = 0x9101;
constexpr std::uint64_t kDeviceLost = 0x9102;

std::string orNotAvailable(std::string value, std::string_view name) {
  if (value.empty()) {
    fail(GC_ERR_NOT_AVAILABLE, "the device has no ", name);
  }
  return value;
}

}  // namespace

Interface::Interface(System& system, const InterfaceEntry& entry)
    : Module(kInterface),
      system_(system),
      session_(system.session()),
      entry_(entry),
      index_(static_cast<std::size_t>(&entry - session_.interfaces.data())),
      features_({"VirtualCameraInterface", "InterfacePort", "Interface module of the virtual camera producer"}),
      children_(std::make_unique<Children<Device>>()) {
  describe();
}

Interface::~Interface() = default;

void* Interface::systemHandle() const {
  return system_.handle();
}

bool Interface::updateList(std::uint64_t timeoutMs) {
  update_.search(session_.options.deviceUpdateMs, timeoutMs);
  std::vector<CameraSlot*> found;
  for (const auto& slot : session_.cameras) {
    if (slot->interfaceIndex == index_ && slot->present && (ignoreSubnet_ || !slot->foreignSubnet)) {
      found.push_back(slot.get());
    }
  }
  const std::lock_guard lock(listMutex_);
  const bool changed = found != list_;
  list_ = std::move(found);
  selected_ = std::min(selected_, list_.empty() ? 0 : list_.size() - 1);
  return changed;
}

std::uint32_t Interface::deviceCount() {
  const std::lock_guard lock(listMutex_);
  return static_cast<std::uint32_t>(list_.size());
}

std::string Interface::deviceId(std::uint32_t index) {
  const std::lock_guard lock(listMutex_);
  if (index >= list_.size()) {
    fail(GC_ERR_INVALID_INDEX, "device ", index, " of ", list_.size());
  }
  return list_[index]->camera->identity().id;
}

CameraSlot& Interface::find(const std::string& id) {
  const std::lock_guard lock(listMutex_);
  const auto isHere = [&](const CameraSlot& slot) {
    return slot.interfaceIndex == index_ &&
           ((slot.present && (ignoreSubnet_ || !slot.foreignSubnet)) || std::ranges::find(list_, &slot) != list_.end());
  };
  for (const auto& slot : session_.cameras) {
    if (isHere(*slot) && slot->camera->identity().id == id) {
      return *slot;
    }
  }
  for (const auto& slot : session_.cameras) {
    if (isHere(*slot) && !id.empty() && slot->camera->userDefinedName() == id) {
      return *slot;
    }
  }
  fail(GC_ERR_INVALID_ID, "no device on interface \"", entry_.id, "\" has the ID \"", id, "\"");
}

DEVICE_ACCESS_STATUS Interface::statusOf(const CameraSlot& slot) {
  DEVICE_ACCESS_STATUS status = slot.present ? DEVICE_ACCESS_STATUS_READWRITE : DEVICE_ACCESS_STATUS_NOACCESS;
  children_->forEach([&](const Device& open) {
    if (&open.slot() == &slot) {
      status = open.accessStatus();
    }
  });
  return status;
}

Info Interface::deviceInfo(const std::string& id, DEVICE_INFO_CMD command) {
  const CameraSlot& slot = find(id);
  return deviceInfo(slot, statusOf(slot), command);
}

Info Interface::deviceInfo(const CameraSlot& slot, DEVICE_ACCESS_STATUS status, DEVICE_INFO_CMD command) {
  const Identity& me = slot.camera->identity();
  switch (command) {
    case DEVICE_INFO_ID:
      return Info::text(me.id);
    case DEVICE_INFO_VENDOR:
      return Info::text(me.vendor);
    case DEVICE_INFO_MODEL:
      return Info::text(me.model);
    case DEVICE_INFO_TLTYPE:
      return Info::text(me.tlType);
    case DEVICE_INFO_DISPLAYNAME:
      return Info::text(me.displayName);
    case DEVICE_INFO_ACCESS_STATUS:
      return Info::int32(status);
    case DEVICE_INFO_USER_DEFINED_NAME:
      return Info::text(orNotAvailable(slot.camera->userDefinedName(), "user-defined name"));
    case DEVICE_INFO_SERIAL_NUMBER:
      return Info::text(orNotAvailable(me.serialNumber, "serial number"));
    case DEVICE_INFO_VERSION:
      return Info::text(orNotAvailable(me.version, "version"));
    case DEVICE_INFO_TIMESTAMP_FREQUENCY:
      return Info::uint64(slot.camera->timestampFrequency());
    default:
      fail(GC_ERR_NOT_IMPLEMENTED, "a device has no info ", command);
  }
}

void* Interface::openDevice(const std::string& id, DEVICE_ACCESS_FLAGS access) {
  if (access != DEVICE_ACCESS_READONLY && access != DEVICE_ACCESS_CONTROL && access != DEVICE_ACCESS_EXCLUSIVE) {
    fail(GC_ERR_INVALID_PARAMETER, access, " is no way to open a device");
  }
  CameraSlot& slot = find(id);
  const auto make = [&] {
    if (!slot.present) {
      fail(GC_ERR_IO, "device \"", slot.camera->identity().id, "\" does not answer");
    }
    return std::make_unique<Device>(*this, slot, access);
  };
  return children_->open([&](const Device& open) { return &open.slot() == &slot; }, make,
                         "device \"" + slot.camera->identity().id + "\"");
}

std::unique_ptr<Module> Interface::take(const Device& child) {
  return children_->take(child);
}

void Interface::cableChanged(const CameraSlot& slot, bool present) {
  if (slot.interfaceIndex != index_) {
    return;
  }
  const auto place = std::ranges::find_if(session_.cameras, [&](const auto& other) { return other.get() == &slot; });
  const auto number = static_cast<std::uint64_t>(place - session_.cameras.begin());
  fireModuleEvent(present ? kDeviceArrived : kDeviceLost, {number});
  children_->forEach([&](Device& open) {
    if (&open.slot() == &slot && !present) {
      open.cableLost();
    }
  });
}

void Interface::closeChildren() {
  children_->closeAll();
}

std::unique_ptr<Module> Interface::detach() {
  return system_.take(*this);
}

PortIdentity Interface::identity() {
  const ProducerIdentity& producer = session_.identity;
  return {entry_.id,     producer.vendor,        producer.model, producer.version,
          entry_.tlType, GENTL_MODULE_INTERFACE, "InterfacePort"};
}

CameraSlot& Interface::selectedCamera() {
  const std::lock_guard lock(listMutex_);
  if (list_.empty()) {
    fail(GC_ERR_NOT_AVAILABLE, "the interface lists no device");
  }
  return *list_[selected_];
}

void Interface::describe() {
  ModuleFeatures& f = features_;
  f.category("InterfaceInformation", "Which interface this is");
  f.text({"InterfaceID", "Unique ID of the interface"}, [this] { return entry_.id; });
  f.text({"InterfaceDisplayName", "Name of the interface for people"}, [this] { return entry_.displayName; });
  f.enumeration({"InterfaceType", "Transport technology"}, tlTypeEntries(false),
                [this] { return tlTypeValue(entry_.tlType); });
  f.integer({"InterfaceTLVersionMajor", "Major version of the technology", "Expert"}, [] { return 1; });
  f.integer({"InterfaceTLVersionMinor", "Minor version of the technology", "Expert"}, [] { return 0; });
  f.category("DeviceEnumeration", "The devices on the interface");
  f.command({"DeviceUpdateList", "Searches for devices", "Expert"}, [this] { updateList(updateTimeoutMs_); });
  describeUpdateTimeout(f, "DeviceUpdateTimeout", updateTimeoutMs_);
  f.integer(
      {"DeviceSelector", "The device that the following features are about", "Expert"},
      [this] {
        const std::lock_guard lock(listMutex_);
        return selected_;
      },
      [this](std::uint64_t value) {
        const std::lock_guard lock(listMutex_);
        if (value >= list_.size()) {
          fail(GC_ERR_INVALID_VALUE, "DeviceSelector ", value, " of ", list_.size());
        }
        selected_ = static_cast<std::size_t>(value);
      },
      {0, [this] {
         const std::lock_guard lock(listMutex_);
         return list_.empty() ? 0 : list_.size() - 1;
       }});
  f.text({"DeviceID", "ID of the selected device", "Expert"},
         [this] { return selectedCamera().camera->identity().id; });
  f.text({"DeviceVendorName", "Vendor of the selected device", "Expert"},
         [this] { return selectedCamera().camera->identity().vendor; });
  f.text({"DeviceModelName", "Model of the selected device", "Expert"},
         [this] { return selectedCamera().camera->identity().model; });
  f.text({"DeviceSerialNumber", "Serial number of the selected device", "Expert"},
         [this] { return selectedCamera().camera->identity().serialNumber; });
  f.text({"DeviceUserID", "User-defined name of the selected device", "Expert"},
         [this] { return selectedCamera().camera->userDefinedName(); });
  f.text({"DeviceDisplayName", "Name of the selected device for people", "Expert"},
         [this] { return selectedCamera().camera->identity().displayName; });
  f.enumeration({"DeviceAccessStatus", "How the selected device can be reached", "Expert"}, accessStatusEntries(),
                [this] { return static_cast<std::uint64_t>(statusOf(selectedCamera())); });
  f.integer({"DeviceTLVersionMajor", "Major version of the device's technology", "Expert"}, [] { return 1; });
  f.integer({"DeviceTLVersionMinor", "Minor version of the device's technology", "Expert"}, [] { return 0; });
  f.select("DeviceSelector",
           {"DeviceID", "DeviceVendorName", "DeviceModelName", "DeviceSerialNumber", "DeviceUserID",
            "DeviceDisplayName", "DeviceAccessStatus", "DeviceTLVersionMajor", "DeviceTLVersionMinor"});
  if (isNetwork(session_.options.variant)) {
    f.boolean(
        {"IgnoreSubnet", "Lists devices whose address does not fit to the interface, too", "Expert"},
        [this] { return ignoreSubnet_ ? 1 : 0; }, [this](std::uint64_t value) { ignoreSubnet_ = value != 0; });
  }
  f.events({{"DeviceArrived", kDeviceArrived, "A device was plugged in", {"EventDeviceArrivedNumber"}},
            {"DeviceLost", kDeviceLost, "A device does not answer any more", {"EventDeviceLostNumber"}}});
  f.finish();
}

}  // namespace vcam
