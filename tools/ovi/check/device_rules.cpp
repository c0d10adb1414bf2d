// Rules of a device and its streams.
#include <memory>
#include <utility>

#include "check/groups.h"
#include "check/lists.h"
#include "check/modules.h"
#include "check/opened.h"
#include "text.h"

namespace tool::check {

void checkDevice(Checker& check) {
  const ProducerFunctions& gentl = check.gentl();
  std::unique_ptr<Modules> modules;
  if (!check.rule("A device opens", [&] {
        modules = std::make_unique<Modules>(check, Depth::kDevice);
        check.seen(modules->deviceId);
      }))
    return;
  Modules& m = *modules;
  check.rule("An open device is not opened a second time", [&] {
    Opened second(gentl.DevClose);
    check.expect({GC_ERR_RESOURCE_IN_USE}, gentl.IFOpenDevice, m.iface, m.deviceId.c_str(), DEVICE_ACCESS_EXCLUSIVE,
                 &second.handle);
  });
  check.rule("DevGetInfo tells the same as the interface does about the device", [&] {
    const Infos mine = askAll(
        check, "DevGetInfo",
        [&](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
          return gentl.DevGetInfo(m.device, command, type, buffer, size);
        },
        kDeviceInfos);
    Infos its;
    for (const InfoCommand& command : kDeviceInfos)
      its[command.command] = ask(
          [&](std::int32_t cmd, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
            return gentl.IFGetDeviceInfo(m.iface, m.deviceId.c_str(), cmd, type, buffer, size);
          },
          command.command);
    compare(check, mine, its, kDeviceInfos, "IFGetDeviceInfo");
    const std::uint64_t status = its.at(DEVICE_INFO_ACCESS_STATUS).number();
    if (status == DEVICE_ACCESS_STATUS_READWRITE)
      check.warn("the interface still says that the open device is free (DEVICE_INFO_ACCESS_STATUS 1)");
    check.seen(mine.at(DEVICE_INFO_VENDOR).text() + " " + mine.at(DEVICE_INFO_MODEL).text() + ", access status " +
               std::to_string(status));
  });
  check.rule("The device knows its interface", [&] {
    if (!gentl.DevGetParentIF.exists())
      return;
    IF_HANDLE parent = nullptr;
    check.need(gentl.DevGetParentIF, m.device, &parent);
    if (parent != m.iface)
      check.fault("DevGetParentIF gives another handle than TLOpenInterface");
  });
  check.rule("Streams have IDs of their own and open once", [&] {
    const std::vector<std::string> ids = streamIds(check, m.device);
    requireUnique(ids);
    for (const std::string& id : ids) {
      Opened stream(gentl.DSClose);
      Opened second(gentl.DSClose);
      check.need(gentl.DevOpenDataStream, m.device, id.c_str(), &stream.handle);
      check.prefer("of an open stream", {GC_ERR_RESOURCE_IN_USE}, gentl.DevOpenDataStream, m.device, id.c_str(),
                   &second.handle);
      if (gentl.DSGetParentDev.exists()) {
        DEV_HANDLE parent = nullptr;
        check.need(gentl.DSGetParentDev, stream.handle, &parent);
        if (parent != m.device)
          check.fault("DSGetParentDev gives another handle than IFOpenDevice");
      }
      check.need(gentl.DSClose, stream.release());
      check.need(gentl.DevOpenDataStream, m.device, id.c_str(), &stream.handle);
      check.need(gentl.DSClose, stream.release());
    }
    std::size_t size = 0;
    check.prefer("behind the last", {GC_ERR_INVALID_INDEX}, gentl.DevGetDataStreamID, m.device,
                 static_cast<std::uint32_t>(ids.size()), nullptr, &size);
    check.seen(join(ids, ", "));
  });
  check.rule("A closed device is gone, and can be opened again for each kind of access", [&] {
    DEV_HANDLE closed = std::exchange(m.device, nullptr);
    check.need(gentl.DevClose, closed);
    check.prefer("of a closed device", {GC_ERR_INVALID_HANDLE}, gentl.DevClose, closed);
    for (const DEVICE_ACCESS_FLAGS access : {DEVICE_ACCESS_READONLY, DEVICE_ACCESS_CONTROL, DEVICE_ACCESS_EXCLUSIVE}) {
      Opened device(gentl.DevClose);
      if (check.expect({GC_ERR_SUCCESS, GC_ERR_NOT_IMPLEMENTED}, gentl.IFOpenDevice, m.iface, m.deviceId.c_str(),
                       access, &device.handle) == GC_ERR_SUCCESS)
        check.need(gentl.DevClose, device.release());
      else
        check.warn("access " + std::to_string(access) + " is not implemented");
    }
  });
  check.rule("Closing an interface closes its devices", [&] {
    Opened device(gentl.DevClose);
    check.need(gentl.IFOpenDevice, m.iface, m.deviceId.c_str(), DEVICE_ACCESS_EXCLUSIVE, &device.handle);
    check.need(gentl.IFClose, m.iface);
    m.iface = nullptr;
    check.prefer("of a device of a closed interface", {GC_ERR_INVALID_HANDLE}, gentl.DevClose, device.release());
  });
}

}  // namespace tool::check
