// GC functions of the library itself and of event registration.
#include "gentl/call.h"
#include "modules/module.h"
#include "modules/system.h"

using namespace vcam;

GC_ERROR GC_CALLTYPE GCInitLib(void) {
  return call(
      Function::GCInitLib, [] { Library::instance().open(); }, Needs::Nothing);
}

GC_ERROR GC_CALLTYPE GCCloseLib(void) {
  return call(
      Function::GCCloseLib, [] { Library::instance().close(); }, Needs::Nothing);
}

GC_ERROR GC_CALLTYPE GCGetInfo(TL_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  return call(Function::GCGetInfo,
              [&] { answer(System::info(Library::instance().identity(), cmd), cmd, type, buf, size); });
}

GC_ERROR GC_CALLTYPE GCGetLastError(GC_ERROR* code, char* text, size_t* size) {
  // The failures of this function are not remembered: they would hide the one that is asked for.
  try {
    if (Hostility::armed()) {
      if (const GC_ERROR ordered = Hostility::instance().enter(Function::GCGetLastError); ordered != GC_ERR_SUCCESS) {
        return ordered;
      }
    }
    if (!Library::isInitialized()) {
      return GC_ERR_NOT_INITIALIZED;
    }
    const LastError last = lastError();
    require(code, "the code");
    answerText(last.text, text, size);
    *code = last.code;
    return GC_ERR_SUCCESS;
  } catch (const Failure& failure) {
    return failure.code();
  } catch (...) {
    return GC_ERR_ERROR;
  }
}

GC_ERROR GC_CALLTYPE GCRegisterEvent(EVENTSRC_HANDLE module, EVENT_TYPE event, EVENT_HANDLE* out) {
  return call(Function::GCRegisterEvent, [&] {
    const Pin<Module> source(module, kModules, "module with events");
    require(out, "the event handle");
    *out = source->registerEvent(event);
  });
}

GC_ERROR GC_CALLTYPE GCUnregisterEvent(EVENTSRC_HANDLE module, EVENT_TYPE event) {
  return call(Function::GCUnregisterEvent, [&] {
    const Pin<Module> source(module, kModules, "module with events");
    source->events().remove(event);
  });
}
