// Rules of exports and of the life of the library.
#include "check/groups.h"
#include "check/info.h"
#include "check/opened.h"
#include "text.h"

namespace tool::check {

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
        Opened second(gentl.TLClose);
        check.prefer("of an open system", {GC_ERR_RESOURCE_IN_USE}, gentl.TLOpen, &second.handle);
      }))
    check.rule("A closed system is gone, and can be opened again", [&] {
      check.need(gentl.TLClose, tl);
      std::uint32_t count = 0;
      check.prefer("of a closed system", {GC_ERR_INVALID_HANDLE}, gentl.TLGetNumInterfaces, tl, &count);
      check.need(gentl.TLOpen, &tl);
    });
  bool closed = false;
  check.rule("GCCloseLib ends everything", [&] {
    check.need(gentl.GCCloseLib);
    closed = true;
    check.prefer("of a closed library", {GC_ERR_NOT_INITIALIZED}, gentl.GCCloseLib);
    check.prefer("of a closed library", {GC_ERR_NOT_INITIALIZED}, gentl.TLOpen, &tl);
  });
  if (!closed)
    return;
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

}  // namespace tool::check
