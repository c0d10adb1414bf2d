// Rules of interfaces and the devices that they list.
#include <memory>

#include "check/groups.h"
#include "check/lists.h"
#include "check/modules.h"
#include "check/opened.h"
#include "text.h"

namespace tool::check {

void checkInterfaces(Checker& check) {
  const ProducerFunctions& gentl = check.gentl();
  std::unique_ptr<Modules> modules;
  std::vector<std::string> interfaces;
  if (!check.rule("The interfaces are found", [&] {
        modules = std::make_unique<Modules>(check, Depth::kSystem);
        interfaces = interfaceIds(check, modules->tl);
      }))
    return;
  std::size_t total = 0;
  bool listed = true;
  for (const std::string& id : interfaces) {
    std::vector<std::string> ids;
    const auto open = [&](Opened& iface) {
      check.need(gentl.TLOpenInterface, modules->tl, id.c_str(), &iface.handle);
      ids = deviceIds(check, iface.handle);
    };
    listed = check.rule("The devices of " + id + " are listed in time, each with an ID of its own", [&] {
      Opened iface(gentl.IFClose);
      check.need(gentl.TLOpenInterface, modules->tl, id.c_str(), &iface.handle);
      bool8_t changed = 0;
      timeUpdate(check, "IFUpdateDeviceList",
                 [&] { return gentl.IFUpdateDeviceList(iface.handle, &changed, kUpdateTime); });
      ids = deviceIds(check, iface.handle);
      requireUnique(ids);
      check.seen(ids.empty() ? "no device" : join(ids, ", "));
    }) && listed;
    total += ids.size();
    check.rule("The devices of " + id + " are described by the rules of type, size and terminator", [&] {
      Opened iface(gentl.IFClose);
      open(iface);
      for (const std::string& device : ids)
        askAll(
            check, "IFGetDeviceInfo of " + device + " ",
            [&](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
              return gentl.IFGetDeviceInfo(iface.handle, device.c_str(), command, type, buffer, size);
            },
            kDeviceInfos);
      check.seen(std::to_string(ids.size()) + " devices");
    });
    check.rule("An index behind the last device of " + id + " and an unknown ID are refused", [&] {
      Opened iface(gentl.IFClose);
      open(iface);
      std::size_t size = 0;
      check.prefer("behind the last", {GC_ERR_INVALID_INDEX}, gentl.IFGetDeviceID, iface.handle,
                   static_cast<std::uint32_t>(ids.size()), nullptr, &size);
      Opened device(gentl.DevClose);
      check.prefer("of an unknown ID", {GC_ERR_INVALID_ID}, gentl.IFOpenDevice, iface.handle, "no such device",
                   DEVICE_ACCESS_CONTROL, &device.handle);
    });
    check.rule("The interface " + id + " closes", [&] {
      Opened iface(gentl.IFClose);
      open(iface);
      check.need(gentl.IFClose, iface.release());
    });
  }
  if (!listed)
    return;
  check.rule("There is a device", [&] {
    total == 0 ? check.warn("no device was found: what needs one is not checked")
               : check.seen(std::to_string(total) + " devices");
  });
}

}  // namespace tool::check
