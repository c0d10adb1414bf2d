// Rules of the system and its interfaces.
#include <memory>

#include "check/groups.h"
#include "check/lists.h"
#include "check/modules.h"
#include "check/opened.h"
#include "text.h"

namespace tool::check {

namespace {

Query systemQuery(const ProducerFunctions& gentl, TL_HANDLE tl) {
  return [&gentl, tl](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
    return gentl.TLGetInfo(tl, command, type, buffer, size);
  };
}

}  // namespace

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
    requireUnique(ids);
    ids.empty() ? check.warn("there is no interface") : check.seen(join(ids, ", "));
  });
  check.rule("An index behind the last interface and an unknown ID are refused", [&] {
    std::size_t size = 0;
    check.prefer("behind the last", {GC_ERR_INVALID_INDEX}, gentl.TLGetInterfaceID, tl,
                 static_cast<std::uint32_t>(ids.size()), nullptr, &size);
    Opened iface(gentl.IFClose);
    check.prefer("of an unknown ID", {GC_ERR_INVALID_ID}, gentl.TLOpenInterface, tl, "no such interface",
                 &iface.handle);
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
      Opened iface(gentl.IFClose);
      check.need(gentl.TLOpenInterface, tl, id.c_str(), &iface.handle);
      Opened second(gentl.IFClose);
      check.prefer("of an open interface", {GC_ERR_RESOURCE_IN_USE}, gentl.TLOpenInterface, tl, id.c_str(),
                   &second.handle);
      const Infos after = askAll(
          check, "IFGetInfo",
          [&](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
            return gentl.IFGetInfo(iface.handle, command, type, buffer, size);
          },
          kInterfaceInfos);
      compare(check, after, before, kInterfaceInfos, "TLGetInterfaceInfo");
      TL_HANDLE parent = nullptr;
      if (gentl.IFGetParentTL.exists()) {
        check.need(gentl.IFGetParentTL, iface.handle, &parent);
        if (parent != tl)
          check.fault("IFGetParentTL gives another handle than TLOpen");
      }
      IF_HANDLE closed = iface.release();
      check.need(gentl.IFClose, closed);
      check.prefer("of a closed interface", {GC_ERR_INVALID_HANDLE}, gentl.IFClose, closed);
    }
    check.seen(std::to_string(ids.size()) + " interfaces");
  });
  check.rule("The system and the library close", [&] {
    check.need(gentl.TLClose, tl);
    modules->tl = nullptr;
  });
}

}  // namespace tool::check
