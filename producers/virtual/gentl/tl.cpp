// TL functions.
#include "gentl/call.h"
#include "modules/system.h"

using namespace vcam;

namespace {
constexpr const char* kSystemWhat = "system";
}

GC_ERROR GC_CALLTYPE TLOpen(TL_HANDLE* out) {
  return call(Function::TLOpen, [&] {
    require(out, "the system handle");
    *out = Library::instance().openSystem();
  });
}

GC_ERROR GC_CALLTYPE TLClose(TL_HANDLE tl) {
  return call(Function::TLClose, [&] { Module::close(tl, kSystem, kSystemWhat); });
}

GC_ERROR GC_CALLTYPE TLGetInfo(TL_HANDLE tl, TL_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  return call(Function::TLGetInfo, [&] {
    const Pin<System> system(tl, kSystem, kSystemWhat);
    answer(system->info(cmd), cmd, type, buf, size);
  });
}

GC_ERROR GC_CALLTYPE TLGetNumInterfaces(TL_HANDLE tl, uint32_t* count) {
  return call(Function::TLGetNumInterfaces, [&] {
    const Pin<System> system(tl, kSystem, kSystemWhat);
    store(count, system->interfaceCount(), "the count");
  });
}

GC_ERROR GC_CALLTYPE TLGetInterfaceID(TL_HANDLE tl, uint32_t index, char* id, size_t* size) {
  return call(Function::TLGetInterfaceID, [&] {
    const Pin<System> system(tl, kSystem, kSystemWhat);
    answerText(system->interfaceId(index), id, size);
  });
}

GC_ERROR GC_CALLTYPE TLGetInterfaceInfo(TL_HANDLE tl, const char* id, INTERFACE_INFO_CMD cmd, INFO_DATATYPE* type,
                                        void* buf, size_t* size) {
  return call(Function::TLGetInterfaceInfo, [&] {
    const Pin<System> system(tl, kSystem, kSystemWhat);
    answer(system->interfaceInfo(idFrom(id), cmd), cmd, type, buf, size);
  });
}

GC_ERROR GC_CALLTYPE TLOpenInterface(TL_HANDLE tl, const char* id, IF_HANDLE* out) {
  return call(Function::TLOpenInterface, [&] {
    const Pin<System> system(tl, kSystem, kSystemWhat);
    require(out, "the interface handle");
    *out = system->openInterface(idFrom(id));
  });
}

GC_ERROR GC_CALLTYPE TLUpdateInterfaceList(TL_HANDLE tl, bool8_t* changed, uint64_t timeoutMs) {
  return call(Function::TLUpdateInterfaceList, [&] {
    const Pin<System> system(tl, kSystem, kSystemWhat);
    requireIfGiven(changed, "the changed flag");
    const bool different = system->updateList(timeoutMs);
    if (changed != nullptr) {
      *changed = different ? 1 : 0;
    }
  });
}
