// Rules of events: registration, waits, kills.
#include "check/groups.h"
#include "check/stopwatch.h"
#include "check/stream_session.h"
#include "check/waiter.h"

namespace tool::check {

void checkEvents(Checker& check) {
  const ProducerFunctions& gentl = check.gentl();
  const std::unique_ptr<StreamSession> session = openStream(check);
  if (!session)
    return;
  if (!session->rule("The new-buffer event is registered once", [&] {
        session->registerEvent();
        EVENT_HANDLE second = nullptr;
        check.expect({GC_ERR_RESOURCE_IN_USE}, gentl.GCRegisterEvent, session->stream(), EVENT_NEW_BUFFER, &second);
      }))
    return;
  session->rule("EventGetInfo gives every value by the rules of type and size", [&] {
    EVENT_HANDLE event = session->registerEvent();
    askAll(
        check, "EventGetInfo",
        [&](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
          return gentl.EventGetInfo(event, command, type, buffer, size);
        },
        kEventInfos);
  });
  session->rule("A wait without an event ends with its time-out", [&] {
    EVENT_HANDLE event = session->registerEvent();
    EVENT_NEW_BUFFER_DATA data{};
    for (const std::uint64_t timeout : {std::uint64_t{0}, std::uint64_t{200}}) {
      std::size_t size = sizeof data;
      const Stopwatch watch;
      check.expect({GC_ERR_TIMEOUT}, gentl.EventGetData, event, static_cast<void*>(&data), &size, timeout);
      const std::int64_t taken = watch.milliseconds();
      if (taken < static_cast<std::int64_t>(timeout) - 20 || taken > static_cast<std::int64_t>(timeout) + 1000)
        check.fault("a wait of " + std::to_string(timeout) + " ms took " + std::to_string(taken) + " ms");
    }
  });
  session->rule("EventKill ends a wait, or the next one", [&] {
    EVENT_HANDLE event = session->registerEvent();
    Waiter waiter(gentl, event);
    settle();
    check.need(gentl.EventKill, event);
    if (const GC_ERROR code = waiter.code(); code != GC_ERR_ABORT)
      check.fault("the wait that was killed returned " + codeText(code) + ", not " + codeText(GC_ERR_ABORT));
    check.need(gentl.EventKill, event);
    EVENT_NEW_BUFFER_DATA data{};
    std::size_t size = sizeof data;
    check.expect({GC_ERR_ABORT}, gentl.EventGetData, event, static_cast<void*>(&data), &size, std::uint64_t{0});
    check.expect({GC_ERR_TIMEOUT}, gentl.EventGetData, event, static_cast<void*>(&data), &size, std::uint64_t{0});
  });
  session->rule("Each of two waits needs a kill of its own", [&] {
    EVENT_HANDLE event = session->registerEvent();
    Waiter first(gentl, event);
    Waiter second(gentl, event);
    settle();
    check.need(gentl.EventKill, event);
    settle();
    if (first.done() == second.done())
      check.fault(first.done() ? "one EventKill ended two waits" : "EventKill ended no wait");
    check.need(gentl.EventKill, event);
    const GC_ERROR codes[] = {first.code(), second.code()};
    for (const GC_ERROR code : codes)
      if (code != GC_ERR_ABORT)
        check.fault("a wait that was killed returned " + codeText(code));
  });
  session->rule("Flushing an empty event is no failure",
                [&] { check.need(gentl.EventFlush, session->registerEvent()); });
  session->rule("Unregistering an event ends the waits for it", [&] {
    EVENT_HANDLE event = session->registerEvent();
    Waiter waiter(gentl, event);
    settle();
    session->unregisterEvent();
    if (const GC_ERROR code = waiter.code(); code != GC_ERR_ABORT)
      check.fault("the wait returned " + codeText(code) + ", not " + codeText(GC_ERR_ABORT));
    check.prefer("a second time", {GC_ERR_NOT_INITIALIZED}, gentl.GCUnregisterEvent, session->stream(),
                 EVENT_NEW_BUFFER);
  });
}

}  // namespace tool::check
