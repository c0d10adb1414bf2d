// Rules of events, buffers, flushes, images, stops and threads.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

#include "check/groups.h"
#include "check/stream_session.h"

namespace tool::check {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint64_t kImageTime = 3000;  // ms

std::int64_t millisecondsSince(Clock::time_point start) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

std::unique_ptr<StreamSession> open(Checker& check) {
  std::unique_ptr<StreamSession> session;
  check.rule("A stream opens and tells how large an image is", [&] {
    session = std::make_unique<StreamSession>(check);
    check.seen(session->modules().streamId + ", " + std::to_string(session->payload()) + " bytes");
  });
  return session;
}

// A wait on a thread of its own, and what came of it.
class Waiter {
 public:
  Waiter(const ProducerFunctions& gentl, EVENT_HANDLE event)
      : thread_([this, &gentl, event] {
          EVENT_NEW_BUFFER_DATA data{};
          std::size_t size = sizeof data;
          code_ = gentl.EventGetData(event, &data, &size, 5000);
          done_ = true;
        }) {}
  ~Waiter() {
    if (thread_.joinable())
      thread_.join();
  }
  Waiter(const Waiter&) = delete;
  Waiter& operator=(const Waiter&) = delete;

  bool done() const { return done_; }
  GC_ERROR code() {
    thread_.join();
    return code_;
  }

 private:
  std::atomic<bool> done_{false};
  std::atomic<GC_ERROR> code_{GC_ERR_ERROR};
  std::thread thread_;
};

void settle() {
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
}

// What is told of one image, and what of it is wrong.
struct ImageSeries {
  std::optional<std::uint64_t> lastId;
  std::uint64_t lastTime = 0;
  std::size_t incomplete = 0;
  std::size_t withoutGeometry = 0;
  std::uint64_t lost = 0;

  void take(Checker& check, StreamSession& session, BUFFER_HANDLE buffer) {
    const auto info = [&](BUFFER_INFO_CMD command) { return session.bufferInfo(buffer, command); };
    const Info id = info(BUFFER_INFO_FRAMEID);
    if (id.exists() && lastId && id.number() <= *lastId)
      check.fault("frame ID " + std::to_string(id.number()) + " came after " + std::to_string(*lastId));
    if (id.exists() && lastId && id.number() > *lastId + 1)
      lost += id.number() - *lastId - 1;
    if (id.exists())
      lastId = id.number();
    const Info time = info(BUFFER_INFO_TIMESTAMP);
    if (time.exists() && time.number() < lastTime)
      check.fault("a time stamp is before that of the image before");
    if (time.exists())
      lastTime = time.number();
    const Info state = info(BUFFER_INFO_IS_INCOMPLETE);
    const bool whole = !state.exists() || state.number() == 0;
    incomplete += whole ? 0 : 1;
    const Info filled = info(BUFFER_INFO_SIZE_FILLED);
    const Info size = info(BUFFER_INFO_SIZE);
    if (filled.exists() && size.exists() && (filled.number() > size.number() || (whole && filled.number() == 0)))
      check.fault("BUFFER_INFO_SIZE_FILLED is " + std::to_string(filled.number()) + " in a buffer of " +
                  std::to_string(size.number()) + " bytes");
    const Info fresh = info(BUFFER_INFO_NEW_DATA);
    if (fresh.exists() && fresh.number() == 0)
      check.fault("BUFFER_INFO_NEW_DATA of a new image is false");
    const Info kind = info(BUFFER_INFO_PAYLOADTYPE);
    if (!kind.exists() || kind.number() == PAYLOAD_TYPE_IMAGE)
      for (const BUFFER_INFO_CMD command : {BUFFER_INFO_WIDTH, BUFFER_INFO_HEIGHT, BUFFER_INFO_PIXELFORMAT})
        if (!info(command).exists()) {
          ++withoutGeometry;
          break;
        }
  }
  void finish(Checker& check) const {
    if (incomplete > 0)
      check.warn(std::to_string(incomplete) + " images were incomplete");
    if (lost > 0)
      check.warn(std::to_string(lost) + " frame IDs are missing: images were lost");
    if (withoutGeometry > 0)
      check.warn(std::to_string(withoutGeometry) +
                 " images came without width, height or pixel format; programs see zeros there");
  }
};

void takeImages(Checker& check, StreamSession& session, EVENT_HANDLE event, int count) {
  ImageSeries series;
  for (int i = 0; i < count; ++i) {
    const EVENT_NEW_BUFFER_DATA data = session.wait(event, kImageTime);
    const auto number = reinterpret_cast<std::uintptr_t>(data.pUserPointer);
    if (number == 0 || number > session.buffers().size() || session.buffers()[number - 1] != data.BufferHandle)
      throw Broken("the event names a buffer and a private pointer that do not belong together");
    series.take(check, session, data.BufferHandle);
    check.need(check.gentl().DSQueueBuffer, session.stream(), data.BufferHandle);
  }
  series.finish(check);
  check.seen(std::to_string(count) + " images");
}

void expectCounts(Checker& check, StreamSession& session, const char* when, std::size_t queued, std::size_t awaiting) {
  const std::uint64_t q = session.info(STREAM_INFO_NUM_QUEUED);
  const std::uint64_t a = session.info(STREAM_INFO_NUM_AWAIT_DELIVERY);
  if (q != queued || a != awaiting)
    check.fault(std::string(when) + " " + std::to_string(q) + " buffers are queued and " + std::to_string(a) +
                " await delivery, not " + std::to_string(queued) + " and " + std::to_string(awaiting));
}

}  // namespace

void checkEvents(Checker& check) {
  const ProducerFunctions& gentl = check.gentl();
  const std::unique_ptr<StreamSession> session = open(check);
  if (!session)
    return;
  EVENT_HANDLE event = nullptr;
  if (!check.rule("The new-buffer event is registered once", [&] {
        event = session->registerEvent();
        EVENT_HANDLE second = nullptr;
        check.expect({GC_ERR_RESOURCE_IN_USE}, gentl.GCRegisterEvent, session->stream(), EVENT_NEW_BUFFER, &second);
      }))
    return;
  check.rule("EventGetInfo gives every value by the rules of type and size", [&] {
    askAll(
        check, "EventGetInfo",
        [&](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
          return gentl.EventGetInfo(event, command, type, buffer, size);
        },
        kEventInfos);
  });
  check.rule("A wait without an event ends with its time-out", [&] {
    EVENT_NEW_BUFFER_DATA data{};
    for (const std::uint64_t timeout : {std::uint64_t{0}, std::uint64_t{200}}) {
      std::size_t size = sizeof data;
      const auto start = Clock::now();
      check.expect({GC_ERR_TIMEOUT}, gentl.EventGetData, event, static_cast<void*>(&data), &size, timeout);
      const std::int64_t taken = millisecondsSince(start);
      if (taken < static_cast<std::int64_t>(timeout) - 20 || taken > static_cast<std::int64_t>(timeout) + 1000)
        check.fault("a wait of " + std::to_string(timeout) + " ms took " + std::to_string(taken) + " ms");
    }
  });
  check.rule("EventKill ends a wait, or the next one", [&] {
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
  check.rule("Each of two waits needs a kill of its own", [&] {
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
  check.rule("Flushing an empty event is no failure", [&] { check.need(gentl.EventFlush, event); });
  check.rule("Unregistering an event ends the waits for it", [&] {
    Waiter waiter(gentl, event);
    settle();
    session->unregisterEvent();
    if (const GC_ERROR code = waiter.code(); code != GC_ERR_ABORT)
      check.fault("the wait returned " + codeText(code) + ", not " + codeText(GC_ERR_ABORT));
    check.prefer("a second time", {GC_ERR_NOT_INITIALIZED}, gentl.GCUnregisterEvent, session->stream(),
                 EVENT_NEW_BUFFER);
  });
}

void checkBuffers(Checker& check) {
  const ProducerFunctions& gentl = check.gentl();
  const std::unique_ptr<StreamSession> session = open(check);
  if (!session)
    return;
  const DS_HANDLE stream = session->stream();
  check.rule("DSGetInfo gives every value by the rules of type, size and terminator", [&] {
    askAll(
        check, "DSGetInfo",
        [&](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
          return gentl.DSGetInfo(stream, command, type, buffer, size);
        },
        kStreamInfos);
  });
  constexpr std::size_t kCount = 4;
  if (!check.rule("Buffers are announced and listed in their order", [&] {
        session->announce(kCount);
        for (std::uint32_t i = 0; i < session->buffers().size(); ++i) {
          BUFFER_HANDLE buffer = nullptr;
          check.need(gentl.DSGetBufferID, stream, i, &buffer);
          if (buffer != session->buffers()[i])
            check.fault("DSGetBufferID(" + std::to_string(i) + ") is another buffer");
        }
        BUFFER_HANDLE none = nullptr;
        check.prefer("behind the last", {GC_ERR_INVALID_INDEX}, gentl.DSGetBufferID, stream,
                     static_cast<std::uint32_t>(session->buffers().size()), &none);
        if (session->info(STREAM_INFO_NUM_ANNOUNCED) != session->buffers().size())
          check.fault("STREAM_INFO_NUM_ANNOUNCED is " + std::to_string(session->info(STREAM_INFO_NUM_ANNOUNCED)));
        check.seen(std::to_string(session->buffers().size()) + " buffers");
      }))
    return;
  const std::size_t count = session->buffers().size();
  const BUFFER_HANDLE first = session->buffers().front();
  check.rule("DSGetBufferInfo describes a buffer by the rules of type and size", [&] {
    askAll(
        check, "DSGetBufferInfo",
        [&](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
          return gentl.DSGetBufferInfo(stream, first, command, type, buffer, size);
        },
        kBufferInfos);
  });
  check.rule("A queued buffer is neither queued again nor revoked", [&] {
    check.need(gentl.DSQueueBuffer, stream, first);
    expectCounts(check, *session, "after queueing one", 1, 0);
    check.prefer("of a queued buffer", {GC_ERR_RESOURCE_IN_USE}, gentl.DSQueueBuffer, stream, first);
    check.prefer("of a queued buffer", {GC_ERR_BUSY}, gentl.DSRevokeBuffer, stream, first, nullptr, nullptr);
  });
  EVENT_HANDLE event = nullptr;
  check.rule("Each flush moves buffers as GenTL says", [&] {
    event = session->registerEvent();
    check.need(gentl.DSFlushQueue, stream, ACQ_QUEUE_ALL_DISCARD);
    expectCounts(check, *session, "after ALL_DISCARD", 0, 0);
    check.need(gentl.DSFlushQueue, stream, ACQ_QUEUE_UNQUEUED_TO_INPUT);
    expectCounts(check, *session, "after UNQUEUED_TO_INPUT", count, 0);
    check.need(gentl.DSFlushQueue, stream, ACQ_QUEUE_INPUT_TO_OUTPUT);
    expectCounts(check, *session, "after INPUT_TO_OUTPUT", 0, count);
    const EVENT_NEW_BUFFER_DATA data = session->wait(event, 0);
    const Info fresh = session->bufferInfo(data.BufferHandle, BUFFER_INFO_NEW_DATA);
    if (fresh.exists() && fresh.number() != 0)
      check.fault("a buffer that INPUT_TO_OUTPUT moved has BUFFER_INFO_NEW_DATA true");
    check.need(gentl.DSFlushQueue, stream, ACQ_QUEUE_OUTPUT_DISCARD);
    expectCounts(check, *session, "after OUTPUT_DISCARD", 0, 0);
    check.need(gentl.DSFlushQueue, stream, ACQ_QUEUE_ALL_TO_INPUT);
    expectCounts(check, *session, "after ALL_TO_INPUT", count, 0);
    check.need(gentl.DSFlushQueue, stream, ACQ_QUEUE_INPUT_TO_OUTPUT);
    check.need(gentl.EventFlush, event);
    expectCounts(check, *session, "after INPUT_TO_OUTPUT and EventFlush", 0, 0);
    check.prefer("of an unknown operation", {GC_ERR_NOT_IMPLEMENTED, GC_ERR_INVALID_PARAMETER}, gentl.DSFlushQueue,
                 stream, 99);
    session->unregisterEvent();
  });
  check.rule("Revoked buffers give back memory and private pointer, and are gone", [&] {
    session->revokeAll();
    if (session->info(STREAM_INFO_NUM_ANNOUNCED) != 0)
      check.fault("buffers are still announced");
    check.prefer("of a revoked buffer", {GC_ERR_INVALID_HANDLE, GC_ERR_INVALID_BUFFER}, gentl.DSQueueBuffer, stream,
                 first);
  });
  check.rule("The producer makes buffers of its own", [&] {
    BUFFER_HANDLE buffer = nullptr;
    check.need(gentl.DSAllocAndAnnounceBuffer, stream, session->payload(), static_cast<void*>(nullptr), &buffer);
    const Info base = session->bufferInfo(buffer, BUFFER_INFO_BASE);
    if (!base.exists() || base.number() == 0)
      check.fault("BUFFER_INFO_BASE is not there");
    check.need(gentl.DSRevokeBuffer, stream, buffer, nullptr, nullptr);
  });
}

void checkImages(Checker& check) {
  const ProducerFunctions& gentl = check.gentl();
  const std::unique_ptr<StreamSession> session = open(check);
  if (!session)
    return;
  EVENT_HANDLE event = nullptr;
  if (!check.rule("Acquisition starts", [&] {
        event = session->registerEvent();
        session->announce(6);
        session->queueAll();
        session->start();
        if (session->info(STREAM_INFO_IS_GRABBING) == 0)
          check.fault("STREAM_INFO_IS_GRABBING is false");
      }))
    return;
  check.rule("Images come one after the other, whole and with rising frame IDs",
             [&] { takeImages(check, *session, event, 20); });
  check.rule("An image is described by the rules of type and size, its event too", [&] {
    const EVENT_NEW_BUFFER_DATA data = session->wait(event, kImageTime);
    askAll(
        check, "DSGetBufferInfo",
        [&](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
          return gentl.DSGetBufferInfo(session->stream(), data.BufferHandle, command, type, buffer, size);
        },
        kImageInfos);
    for (const EVENT_DATA_INFO_CMD command : {EVENT_DATA_ID, EVENT_DATA_VALUE}) {
      void* value = nullptr;
      std::size_t size = sizeof value;
      INFO_DATATYPE type = 0;
      check.need(gentl.EventGetDataInfo, event, static_cast<const void*>(&data), sizeof data, command, &type,
                 static_cast<void*>(&value), &size);
      if (type != INFO_DATATYPE_PTR || value != (command == EVENT_DATA_ID ? data.BufferHandle : data.pUserPointer))
        check.fault("EventGetDataInfo tells another buffer or private pointer than EventGetData, or no pointer");
    }
    std::size_t chunks = 0;
    check.expect({GC_ERR_SUCCESS, GC_ERR_NO_DATA, GC_ERR_NOT_IMPLEMENTED, GC_ERR_NOT_AVAILABLE},
                 gentl.DSGetBufferChunkData, session->stream(), data.BufferHandle, nullptr, &chunks);
    std::uint32_t parts = 0;
    check.expect({GC_ERR_SUCCESS, GC_ERR_NO_DATA, GC_ERR_NOT_IMPLEMENTED, GC_ERR_NOT_AVAILABLE},
                 gentl.DSGetNumBufferParts, session->stream(), data.BufferHandle, &parts);
    INFO_DATATYPE type = 0;
    std::size_t size = 0;
    check.expect({GC_ERR_SUCCESS, GC_ERR_NO_DATA, GC_ERR_NOT_IMPLEMENTED, GC_ERR_NOT_AVAILABLE, GC_ERR_INVALID_INDEX},
                 gentl.DSGetBufferPartInfo, session->stream(), data.BufferHandle, parts, BUFFER_PART_INFO_DATA_SIZE,
                 &type, nullptr, &size);
    check.need(gentl.DSQueueBuffer, session->stream(), data.BufferHandle);
  });
  check.rule("The stream counts what it delivers", [&] {
    const std::uint64_t before = session->info(STREAM_INFO_NUM_DELIVERED);
    takeImages(check, *session, event, 3);
    if (session->info(STREAM_INFO_NUM_DELIVERED) < before + 1)
      check.fault("STREAM_INFO_NUM_DELIVERED does not grow");
  });
  check.rule("Acquisition stops, buffers are discarded and revoked", [&] {
    session->stop();
    if (session->info(STREAM_INFO_IS_GRABBING) != 0)
      check.fault("STREAM_INFO_IS_GRABBING is true");
    session->revokeAll();
    session->unregisterEvent();
  });
  check.rule("The modules close one by one", [&] {
    Modules& m = session->modules();
    check.need(gentl.DSClose, m.stream);
    m.stream = nullptr;
    check.need(gentl.DevClose, m.device);
    m.device = nullptr;
    check.need(gentl.IFClose, m.iface);
    m.iface = nullptr;
    check.need(gentl.TLClose, m.tl);
    m.tl = nullptr;
  });
}

void checkStops(Checker& check) {
  const ProducerFunctions& gentl = check.gentl();
  const std::unique_ptr<StreamSession> session = open(check);
  if (!session)
    return;
  const DS_HANDLE stream = session->stream();
  EVENT_HANDLE event = nullptr;
  check.rule("Starts that make no sense are refused", [&] {
    event = session->registerEvent();
    session->announce(4);
    session->queueAll();
    check.prefer("of 0 images", {GC_ERR_INVALID_PARAMETER}, gentl.DSStartAcquisition, stream, ACQ_START_FLAGS_DEFAULT,
                 std::uint64_t{0});
    check.prefer("without a start", {GC_ERR_RESOURCE_IN_USE}, gentl.DSStopAcquisition, stream, ACQ_STOP_FLAGS_DEFAULT);
  });
  check.rule("A running stream is not started a second time", [&] {
    session->start();
    check.prefer("of a running stream", {GC_ERR_RESOURCE_IN_USE}, gentl.DSStartAcquisition, stream,
                 ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE);
    session->stop();
  });
  check.rule("Stop and restart work again and again, images come each time", [&] {
    for (int round = 0; round < 5; ++round) {
      check.need(gentl.DSFlushQueue, stream, ACQ_QUEUE_ALL_TO_INPUT);
      session->start();
      const EVENT_NEW_BUFFER_DATA data = session->wait(event, kImageTime);
      check.need(gentl.DSQueueBuffer, stream, data.BufferHandle);
      session->stop(round % 2 == 0 ? ACQ_STOP_FLAGS_DEFAULT : ACQ_STOP_FLAGS_KILL);
    }
    check.seen("5 times, in turn by the end of the image and at once");
  });
  check.rule("A start for three images delivers three", [&] {
    check.need(gentl.DSFlushQueue, stream, ACQ_QUEUE_ALL_TO_INPUT);
    session->start(3);
    for (int i = 0; i < 3; ++i)
      session->wait(event, kImageTime);
    EVENT_NEW_BUFFER_DATA data{};
    std::size_t size = sizeof data;
    check.expect({GC_ERR_TIMEOUT}, gentl.EventGetData, event, static_cast<void*>(&data), &size, std::uint64_t{300});
    session->camera().execute(check, "AcquisitionStop");
    check.expect({GC_ERR_SUCCESS, GC_ERR_RESOURCE_IN_USE}, gentl.DSStopAcquisition, stream, ACQ_STOP_FLAGS_DEFAULT);
    session->camera().lock(false);
  });
  check.rule("A stream without free buffers goes on when it gets one", [&] {
    check.need(gentl.DSFlushQueue, stream, ACQ_QUEUE_ALL_TO_INPUT);
    session->start();
    std::vector<BUFFER_HANDLE> taken;
    for (std::size_t i = 0; i < session->buffers().size(); ++i)
      taken.push_back(session->wait(event, kImageTime).BufferHandle);
    for (BUFFER_HANDLE buffer : taken)
      check.need(gentl.DSQueueBuffer, stream, buffer);
    session->wait(event, kImageTime);
    session->stop();
  });
  check.rule("A stream that runs can be closed, and opened again", [&] {
    check.need(gentl.DSFlushQueue, stream, ACQ_QUEUE_ALL_TO_INPUT);
    session->start();
    session->wait(event, kImageTime);
    Modules& m = session->modules();
    check.need(gentl.DSClose, stream);
    m.stream = nullptr;
    session->camera().execute(check, "AcquisitionStop");
    session->camera().lock(false);
    check.need(gentl.DevOpenDataStream, m.device, m.streamId.c_str(), &m.stream);
  });
}

void checkThreads(Checker& check) {
  const ProducerFunctions& gentl = check.gentl();
  const std::unique_ptr<StreamSession> session = open(check);
  if (!session)
    return;
  check.rule("A wait holds up no other call", [&] {
    EVENT_HANDLE event = session->registerEvent();
    Waiter waiter(gentl, event);
    settle();
    const auto start = Clock::now();
    session->info(STREAM_INFO_NUM_ANNOUNCED);
    session->announce(2);
    session->queueAll();
    session->revokeAll();
    if (const std::int64_t taken = millisecondsSince(start); taken > 1000)
      check.fault("calls took " + std::to_string(taken) + " ms while another thread waited");
    check.need(gentl.EventKill, event);
    if (const GC_ERROR code = waiter.code(); code != GC_ERR_ABORT)
      check.fault("the wait that was killed returned " + codeText(code));
    session->unregisterEvent();
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

void checkFaults(Checker& check) {
  const ProducerFunctions& gentl = check.gentl();
  const std::unique_ptr<StreamSession> session = open(check);
  if (!session)
    return;
  const Modules& m = session->modules();
  INFO_DATATYPE type = 0;
  std::size_t size = 0;
  check.rule("No handle and handles of other kinds are refused", [&] {
    check.prefer("without a handle", {GC_ERR_INVALID_HANDLE}, gentl.TLGetInfo, nullptr, TL_INFO_ID, &type, nullptr,
                 &size);
    check.prefer("without a handle", {GC_ERR_INVALID_HANDLE}, gentl.DevClose, nullptr);
    check.prefer("of a system", {GC_ERR_INVALID_HANDLE}, gentl.DSGetInfo, m.tl, STREAM_INFO_ID, &type, nullptr, &size);
    check.prefer("of a stream", {GC_ERR_INVALID_HANDLE}, gentl.DevGetInfo, m.stream, DEVICE_INFO_ID, &type, nullptr,
                 &size);
    check.prefer("without a buffer", {GC_ERR_INVALID_HANDLE, GC_ERR_INVALID_BUFFER}, gentl.DSQueueBuffer, m.stream,
                 nullptr);
  });
  check.rule("Missing places for results are refused", [&] {
    std::uint32_t count = 0;
    check.prefer("without a size", {GC_ERR_INVALID_PARAMETER}, gentl.DevGetInfo, m.device, DEVICE_INFO_ID, &type,
                 nullptr, nullptr);
    check.prefer("without a count", {GC_ERR_INVALID_PARAMETER}, gentl.TLGetNumInterfaces, m.tl, nullptr);
    check.prefer("without a handle's place", {GC_ERR_INVALID_PARAMETER}, gentl.DevGetPort, m.device, nullptr);
    check.prefer("without an ID", {GC_ERR_INVALID_PARAMETER, GC_ERR_INVALID_ID}, gentl.TLOpenInterface, m.tl, nullptr,
                 nullptr);
    check.need(gentl.TLGetNumInterfaces, m.tl, &count);
  });
  check.rule("Unknown commands are not implemented", [&] {
    check.prefer("of command 999", {GC_ERR_NOT_IMPLEMENTED}, gentl.TLGetInfo, m.tl, 999, &type, nullptr, &size);
    check.prefer("of command 999", {GC_ERR_NOT_IMPLEMENTED}, gentl.DevGetInfo, m.device, 999, &type, nullptr, &size);
    check.prefer("of command 999", {GC_ERR_NOT_IMPLEMENTED}, gentl.DSGetInfo, m.stream, 999, &type, nullptr, &size);
    check.prefer("of command 999", {GC_ERR_NOT_IMPLEMENTED}, gentl.GCGetPortInfo, m.remote, 999, &type, nullptr, &size);
  });
}

}  // namespace tool::check
