// Rules of exports, life cycle, lists and the information of modules.
#include <chrono>
#include <set>

#include "check/groups.h"
#include "check/modules.h"
#include "text.h"

namespace tool::check {

namespace {

using Clock = std::chrono::steady_clock;

// The rules of an update, which must come in time.
template<class Update>
void timeUpdate(Checker& check, const char* function, Update&& update) {
  constexpr std::int64_t kLong = 500;
  const auto start = Clock::now();
  const GC_ERROR code = update();
  const auto taken = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
  if (code != GC_ERR_SUCCESS)
    throw Broken(std::string(function) + " with a time-out of " + std::to_string(kUpdateTime) + " ms returned " +
                 codeText(code) + " after " + std::to_string(taken) + " ms");
  (taken > kLong ? check.warn(std::string(function) + " took " + std::to_string(taken) +
                              " ms: programs that wait less miss its cameras")
                 : check.seen(std::string(function) + " took " + std::to_string(taken) + " ms"));
}

void unique(const std::vector<std::string>& ids) {
  if (std::set<std::string>(ids.begin(), ids.end()).size() != ids.size())
    throw Broken("an ID occurs twice: " + join(ids, ", "));
}

Query systemQuery(const ProducerFunctions& gentl, TL_HANDLE tl) {
  return [&gentl, tl](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
    return gentl.TLGetInfo(tl, command, type, buffer, size);
  };
}

}  // namespace

void checkExports(Checker& check) {
  const ProducerFunctions& gentl = check.gentl();
  check.rule("All functions of GenTL are exported", [&] {
    if (!gentl.missing().empty())
      check.fault("not exported: " + join(gentl.missing(), ", "));
    if (!gentl.missingNewer().empty())
      check.warn("not exported, newer than GenTL 1.2: " + join(gentl.missingNewer(), ", "));
    check.seen("57 functions");
  });
}

void checkLifeCycle(Checker& check) {
  const ProducerFunctions& gentl = check.gentl();
  TL_HANDLE tl = nullptr;
  check.rule("Before GCInitLib functions answer that the library is not initialised", [&] {
    INFO_DATATYPE type = 0;
    std::size_t size = 0;
    check.prefer("before GCInitLib", {GC_ERR_NOT_INITIALIZED}, gentl.GCGetInfo, TL_INFO_ID, &type, nullptr, &size);
    check.prefer("before GCInitLib", {GC_ERR_NOT_INITIALIZED}, gentl.TLOpen, &tl);
    check.prefer("before GCInitLib", {GC_ERR_NOT_INITIALIZED}, gentl.GCCloseLib);
  });
  if (!check.rule("GCInitLib initialises the library", [&] { check.need(gentl.GCInitLib); }))
    return;
  check.rule("A second GCInitLib is refused", [&] { check.expect({GC_ERR_RESOURCE_IN_USE}, gentl.GCInitLib); });
  check.rule("GCGetInfo describes the producer before a system is open", [&] {
    const Infos infos = askAll(
        check, "GCGetInfo",
        [&](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
          return gentl.GCGetInfo(command, type, buffer, size);
        },
        kSystemInfos);
    check.seen(infos.at(TL_INFO_DISPLAYNAME).text() + ", version " + infos.at(TL_INFO_VERSION).text() + ", GenTL " +
               std::to_string(infos.at(TL_INFO_GENTL_VER_MAJOR).number()) + "." +
               std::to_string(infos.at(TL_INFO_GENTL_VER_MINOR).number()));
  });
  check.rule("GCGetLastError tells the last failure with code and text", [&] {
    const GC_ERROR failure = gentl.TLOpen(nullptr);
    GC_ERROR code = 0;
    const std::string text = askText(
        "GCGetLastError", [&](char* buffer, std::size_t* size) { return gentl.GCGetLastError(&code, buffer, size); });
    if (code != failure)
      check.fault("after a failure with " + codeText(failure) + " it tells " + codeText(code));
    check.seen(codeText(code) + ", \"" + text + "\"");
  });
  if (check.rule("The system opens once", [&] {
        check.need(gentl.TLOpen, &tl);
        TL_HANDLE second = nullptr;
        check.prefer("of an open system", {GC_ERR_RESOURCE_IN_USE}, gentl.TLOpen, &second);
      }))
    check.rule("A closed system is gone, and can be opened again", [&] {
      check.need(gentl.TLClose, tl);
      std::uint32_t count = 0;
      check.prefer("of a closed system", {GC_ERR_INVALID_HANDLE}, gentl.TLGetNumInterfaces, tl, &count);
      check.need(gentl.TLOpen, &tl);
    });
  check.rule("GCCloseLib ends everything", [&] {
    check.need(gentl.GCCloseLib);
    check.prefer("of a closed library", {GC_ERR_NOT_INITIALIZED}, gentl.GCCloseLib);
    check.prefer("of a closed library", {GC_ERR_NOT_INITIALIZED}, gentl.TLOpen, &tl);
  });
  check.rule("The library can be initialised again and again", [&] {
    for (int i = 0; i < 3; ++i) {
      check.need(gentl.GCInitLib);
      check.need(gentl.TLOpen, &tl);
      check.need(gentl.TLClose, tl);
      check.need(gentl.GCCloseLib);
    }
    check.seen("3 times");
  });
}

void checkSystem(Checker& check) {
  const ProducerFunctions& gentl = check.gentl();
  std::unique_ptr<Modules> modules;
  if (!check.rule("The system opens", [&] { modules = std::make_unique<Modules>(check, Depth::kSystem); }))
    return;
  const TL_HANDLE tl = modules->tl;
  Infos infos;
  check.rule("TLGetInfo gives every value by the rules of type, size and terminator", [&] {
    infos = askAll(check, "TLGetInfo", systemQuery(gentl, tl), kSystemInfos);
    check.seen(std::to_string(kSystemInfos.size()) + " values");
  });
  check.rule("TLGetInfo and GCGetInfo tell the same", [&] {
    Infos early;
    for (const InfoCommand& command : kSystemInfos)
      early[command.command] = ask([&](std::int32_t cmd, INFO_DATATYPE* type, void* buffer,
                                       std::size_t* size) { return gentl.GCGetInfo(cmd, type, buffer, size); },
                                   command.command);
    compare(check, infos, early, kSystemInfos, "GCGetInfo");
  });
  check.rule("The list of interfaces is updated in time", [&] {
    bool8_t changed = 0;
    timeUpdate(check, "TLUpdateInterfaceList", [&] { return gentl.TLUpdateInterfaceList(tl, &changed, kUpdateTime); });
    check.prefer("without a place for the change", {GC_ERR_SUCCESS}, gentl.TLUpdateInterfaceList, tl, nullptr,
                 kUpdateTime);
  });
  std::vector<std::string> ids;
  check.rule("Interfaces have IDs of their own", [&] {
    ids = interfaceIds(check, tl);
    unique(ids);
    ids.empty() ? check.warn("there is no interface") : check.seen(join(ids, ", "));
  });
  check.rule("An index behind the last interface and an unknown ID are refused", [&] {
    std::size_t size = 0;
    check.prefer("behind the last", {GC_ERR_INVALID_INDEX}, gentl.TLGetInterfaceID, tl,
                 static_cast<std::uint32_t>(ids.size()), nullptr, &size);
    IF_HANDLE iface = nullptr;
    check.prefer("of an unknown ID", {GC_ERR_INVALID_ID}, gentl.TLOpenInterface, tl, "no such interface", &iface);
    INFO_DATATYPE type = 0;
    check.prefer("of an unknown ID", {GC_ERR_INVALID_ID}, gentl.TLGetInterfaceInfo, tl, "no such interface",
                 INTERFACE_INFO_ID, &type, nullptr, &size);
  });
  check.rule("Every interface opens once and tells the same as the system does about it", [&] {
    for (const std::string& id : ids) {
      const Infos before = askAll(
          check, "TLGetInterfaceInfo",
          [&](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
            return gentl.TLGetInterfaceInfo(tl, id.c_str(), command, type, buffer, size);
          },
          kInterfaceInfos);
      IF_HANDLE iface = nullptr;
      check.need(gentl.TLOpenInterface, tl, id.c_str(), &iface);
      IF_HANDLE second = nullptr;
      check.prefer("of an open interface", {GC_ERR_RESOURCE_IN_USE}, gentl.TLOpenInterface, tl, id.c_str(), &second);
      const Infos after = askAll(
          check, "IFGetInfo",
          [&](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
            return gentl.IFGetInfo(iface, command, type, buffer, size);
          },
          kInterfaceInfos);
      compare(check, after, before, kInterfaceInfos, "TLGetInterfaceInfo");
      TL_HANDLE parent = nullptr;
      if (gentl.IFGetParentTL.exists()) {
        check.need(gentl.IFGetParentTL, iface, &parent);
        if (parent != tl)
          check.fault("IFGetParentTL gives another handle than TLOpen");
      }
      check.need(gentl.IFClose, iface);
      check.prefer("of a closed interface", {GC_ERR_INVALID_HANDLE}, gentl.IFClose, iface);
    }
    check.seen(std::to_string(ids.size()) + " interfaces");
  });
  check.rule("The system and the library close", [&] {
    check.need(gentl.TLClose, tl);
    modules->tl = nullptr;
  });
}

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
  for (const std::string& id : interfaces) {
    IF_HANDLE iface = nullptr;
    std::vector<std::string> ids;
    check.rule("The devices of " + id + " are listed in time, each with an ID of its own", [&] {
      check.need(gentl.TLOpenInterface, modules->tl, id.c_str(), &iface);
      bool8_t changed = 0;
      timeUpdate(check, "IFUpdateDeviceList", [&] { return gentl.IFUpdateDeviceList(iface, &changed, kUpdateTime); });
      ids = deviceIds(check, iface);
      unique(ids);
      check.seen(ids.empty() ? "no device" : join(ids, ", "));
    });
    total += ids.size();
    check.rule("The devices of " + id + " are described by the rules of type, size and terminator", [&] {
      for (const std::string& device : ids)
        askAll(
            check, "IFGetDeviceInfo of " + device + " ",
            [&](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
              return gentl.IFGetDeviceInfo(iface, device.c_str(), command, type, buffer, size);
            },
            kDeviceInfos);
      check.seen(std::to_string(ids.size()) + " devices");
    });
    check.rule("An index behind the last device of " + id + " and an unknown ID are refused", [&] {
      std::size_t size = 0;
      check.prefer("behind the last", {GC_ERR_INVALID_INDEX}, gentl.IFGetDeviceID, iface,
                   static_cast<std::uint32_t>(ids.size()), nullptr, &size);
      DEV_HANDLE device = nullptr;
      check.prefer("of an unknown ID", {GC_ERR_INVALID_ID}, gentl.IFOpenDevice, iface, "no such device",
                   DEVICE_ACCESS_CONTROL, &device);
    });
    check.rule("The interface " + id + " closes", [&] { check.need(gentl.IFClose, iface); });
  }
  check.rule("There is a device", [&] {
    total == 0 ? check.warn("no device was found: what needs one is not checked")
               : check.seen(std::to_string(total) + " devices");
  });
}

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
    DEV_HANDLE second = nullptr;
    check.expect({GC_ERR_RESOURCE_IN_USE}, gentl.IFOpenDevice, m.iface, m.deviceId.c_str(), DEVICE_ACCESS_EXCLUSIVE,
                 &second);
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
    unique(ids);
    for (const std::string& id : ids) {
      DS_HANDLE stream = nullptr;
      DS_HANDLE second = nullptr;
      check.need(gentl.DevOpenDataStream, m.device, id.c_str(), &stream);
      check.prefer("of an open stream", {GC_ERR_RESOURCE_IN_USE}, gentl.DevOpenDataStream, m.device, id.c_str(),
                   &second);
      if (gentl.DSGetParentDev.exists()) {
        DEV_HANDLE parent = nullptr;
        check.need(gentl.DSGetParentDev, stream, &parent);
        if (parent != m.device)
          check.fault("DSGetParentDev gives another handle than IFOpenDevice");
      }
      check.need(gentl.DSClose, stream);
      check.need(gentl.DevOpenDataStream, m.device, id.c_str(), &stream);
      check.need(gentl.DSClose, stream);
    }
    std::size_t size = 0;
    check.prefer("behind the last", {GC_ERR_INVALID_INDEX}, gentl.DevGetDataStreamID, m.device,
                 static_cast<std::uint32_t>(ids.size()), nullptr, &size);
    check.seen(join(ids, ", "));
  });
  check.rule("A closed device is gone, and can be opened again for each kind of access", [&] {
    check.need(gentl.DevClose, m.device);
    DEV_HANDLE const closed = m.device;
    m.device = nullptr;
    check.prefer("of a closed device", {GC_ERR_INVALID_HANDLE}, gentl.DevClose, closed);
    for (const DEVICE_ACCESS_FLAGS access : {DEVICE_ACCESS_READONLY, DEVICE_ACCESS_CONTROL, DEVICE_ACCESS_EXCLUSIVE}) {
      DEV_HANDLE device = nullptr;
      if (check.expect({GC_ERR_SUCCESS, GC_ERR_NOT_IMPLEMENTED}, gentl.IFOpenDevice, m.iface, m.deviceId.c_str(),
                       access, &device) == GC_ERR_SUCCESS)
        check.need(gentl.DevClose, device);
      else
        check.warn("access " + std::to_string(access) + " is not implemented");
    }
  });
  check.rule("Closing an interface closes its devices", [&] {
    DEV_HANDLE device = nullptr;
    check.need(gentl.IFOpenDevice, m.iface, m.deviceId.c_str(), DEVICE_ACCESS_EXCLUSIVE, &device);
    check.need(gentl.IFClose, m.iface);
    m.iface = nullptr;
    check.prefer("of a device of a closed interface", {GC_ERR_INVALID_HANDLE}, gentl.DevClose, device);
  });
}

}  // namespace tool::check
