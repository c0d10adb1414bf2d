// Rules of threads.
#include <atomic>
#include <thread>

#include "check/groups.h"
#include "check/stopwatch.h"
#include "check/stream_session.h"
#include "check/waiter.h"

namespace tool::check {

void checkThreads(Checker& check) {
  const ProducerFunctions& gentl = check.gentl();
  const std::unique_ptr<StreamSession> session = openStream(check);
  if (!session)
    return;
  session->rule("A wait holds up no other call", [&] {
    EVENT_HANDLE event = session->registerEvent();
    Waiter waiter(gentl, event);
    settle();
    const Stopwatch watch;
    session->info(STREAM_INFO_NUM_ANNOUNCED);
    session->announce(2);
    session->queueAll();
    session->revokeAll();
    if (const std::int64_t taken = watch.milliseconds(); taken > 1000)
      check.fault("calls took " + std::to_string(taken) + " ms while another thread waited");
    check.need(gentl.EventKill, event);
    if (const GC_ERROR code = waiter.code(); code != GC_ERR_ABORT)
      check.fault("the wait that was killed returned " + codeText(code));
  });
  check.rule("Four threads ask at the same time and get the same answers", [&] {
    const Modules& m = session->modules();
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
      threads.emplace_back([&] {
        for (int i = 0; i < 200; ++i) {
          const Info id =
              ask([&](std::int32_t command, INFO_DATATYPE* type, void* buffer,
                      std::size_t* size) { return gentl.DevGetInfo(m.device, command, type, buffer, size); },
                  DEVICE_INFO_ID);
          if (!id.exists() || id.text() != m.deviceId)
            ++wrong;
        }
      });
    for (std::thread& thread : threads)
      thread.join();
    if (wrong > 0)
      check.fault(std::to_string(wrong) + " of 800 answers were wrong");
    check.seen("800 answers");
  });
}

}  // namespace tool::check
