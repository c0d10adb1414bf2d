// Event functions.
#include "modules/event.h"

#include "gentl/call.h"

using namespace vcam;

namespace {
constexpr const char* kEventWhat = "event";
}

GC_ERROR GC_CALLTYPE EventGetData(EVENT_HANDLE event, void* buf, size_t* size, uint64_t timeoutMs) {
  return call(Function::EventGetData, [&] {
    const Pin<Event> waited(event, kEvent, kEventWhat);
    return waited->getData(buf, size, timeoutMs);
  });
}

GC_ERROR GC_CALLTYPE EventGetDataInfo(EVENT_HANDLE event, const void* in, size_t inSize, EVENT_DATA_INFO_CMD cmd,
                                      INFO_DATATYPE* type, void* out, size_t* outSize) {
  return call(Function::EventGetDataInfo, [&] {
    const Pin<Event> parser(event, kEvent, kEventWhat);
    require(in, "the event data");
    answer(parser->dataInfo({static_cast<const std::byte*>(in), inSize}, cmd), cmd, type, out, outSize);
  });
}

GC_ERROR GC_CALLTYPE EventGetInfo(EVENT_HANDLE event, EVENT_INFO_CMD cmd, INFO_DATATYPE* type, void* buf,
                                  size_t* size) {
  return call(Function::EventGetInfo, [&] {
    const Pin<Event> asked(event, kEvent, kEventWhat);
    answer(asked->info(cmd), cmd, type, buf, size);
  });
}

GC_ERROR GC_CALLTYPE EventFlush(EVENT_HANDLE event) {
  return call(Function::EventFlush, [&] {
    const Pin<Event> flushed(event, kEvent, kEventWhat);
    flushed->flush();
  });
}

GC_ERROR GC_CALLTYPE EventKill(EVENT_HANDLE event) {
  return call(Function::EventKill, [&] {
    const Pin<Event> killed(event, kEvent, kEventWhat);
    killed->kill();
  });
}
