// Rules of buffers and flushes.
#include "check/groups.h"
#include "check/stream_session.h"

namespace tool::check {

namespace {

void expectCounts(Checker& check, StreamSession& session, const char* when, std::size_t queued, std::size_t awaiting) {
  const std::uint64_t q = session.info(STREAM_INFO_NUM_QUEUED);
  const std::uint64_t a = session.info(STREAM_INFO_NUM_AWAIT_DELIVERY);
  if (q != queued || a != awaiting)
    check.fault(std::string(when) + " " + std::to_string(q) + " buffers are queued and " + std::to_string(a) +
                " await delivery, not " + std::to_string(queued) + " and " + std::to_string(awaiting));
}

}  // namespace

void checkBuffers(Checker& check) {
  const ProducerFunctions& gentl = check.gentl();
  const std::unique_ptr<StreamSession> session = openStream(check);
  if (!session)
    return;
  session->rule("DSGetInfo gives every value by the rules of type, size and terminator", [&] {
    askAll(
        check, "DSGetInfo",
        [&](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
          return gentl.DSGetInfo(session->stream(), command, type, buffer, size);
        },
        kStreamInfos);
  });
  constexpr std::size_t kCount = 4;
  if (!session->rule("Buffers are announced and listed in their order", [&] {
        session->announce(kCount);
        for (std::uint32_t i = 0; i < session->buffers().size(); ++i) {
          BUFFER_HANDLE buffer = nullptr;
          check.need(gentl.DSGetBufferID, session->stream(), i, &buffer);
          if (buffer != session->buffers()[i])
            check.fault("DSGetBufferID(" + std::to_string(i) + ") is another buffer");
        }
        BUFFER_HANDLE none = nullptr;
        check.prefer("behind the last", {GC_ERR_INVALID_INDEX}, gentl.DSGetBufferID, session->stream(),
                     static_cast<std::uint32_t>(session->buffers().size()), &none);
        if (session->info(STREAM_INFO_NUM_ANNOUNCED) != session->buffers().size())
          check.fault("STREAM_INFO_NUM_ANNOUNCED is " + std::to_string(session->info(STREAM_INFO_NUM_ANNOUNCED)));
        check.seen(std::to_string(session->buffers().size()) + " buffers");
      }))
    return;
  const auto announceFirst = [&] {
    session->announce(kCount);
    return session->buffers().front();
  };
  session->rule("DSGetBufferInfo describes a buffer by the rules of type and size", [&] {
    BUFFER_HANDLE first = announceFirst();
    askAll(
        check, "DSGetBufferInfo",
        [&](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
          return gentl.DSGetBufferInfo(session->stream(), first, command, type, buffer, size);
        },
        kBufferInfos);
  });
  session->rule("A queued buffer is neither queued again nor revoked", [&] {
    BUFFER_HANDLE first = announceFirst();
    check.need(gentl.DSQueueBuffer, session->stream(), first);
    expectCounts(check, *session, "after queueing one", 1, 0);
    check.prefer("of a queued buffer", {GC_ERR_RESOURCE_IN_USE}, gentl.DSQueueBuffer, session->stream(), first);
    check.prefer("of a queued buffer", {GC_ERR_BUSY}, gentl.DSRevokeBuffer, session->stream(), first, nullptr, nullptr);
  });
  session->rule("Each flush moves buffers as GenTL says", [&] {
    EVENT_HANDLE event = session->registerEvent();
    session->announce(kCount);
    const std::size_t count = session->buffers().size();
    check.need(gentl.DSFlushQueue, session->stream(), ACQ_QUEUE_ALL_DISCARD);
    expectCounts(check, *session, "after ALL_DISCARD", 0, 0);
    check.need(gentl.DSFlushQueue, session->stream(), ACQ_QUEUE_UNQUEUED_TO_INPUT);
    expectCounts(check, *session, "after UNQUEUED_TO_INPUT", count, 0);
    check.need(gentl.DSFlushQueue, session->stream(), ACQ_QUEUE_INPUT_TO_OUTPUT);
    expectCounts(check, *session, "after INPUT_TO_OUTPUT", 0, count);
    const EVENT_NEW_BUFFER_DATA data = session->wait(event, 0);
    const Info fresh = session->bufferInfo(data.BufferHandle, BUFFER_INFO_NEW_DATA);
    if (fresh.exists() && fresh.number() != 0)
      check.fault("a buffer that INPUT_TO_OUTPUT moved has BUFFER_INFO_NEW_DATA true");
    check.need(gentl.DSFlushQueue, session->stream(), ACQ_QUEUE_OUTPUT_DISCARD);
    expectCounts(check, *session, "after OUTPUT_DISCARD", 0, 0);
    check.need(gentl.DSFlushQueue, session->stream(), ACQ_QUEUE_ALL_TO_INPUT);
    expectCounts(check, *session, "after ALL_TO_INPUT", count, 0);
    check.need(gentl.DSFlushQueue, session->stream(), ACQ_QUEUE_INPUT_TO_OUTPUT);
    check.need(gentl.EventFlush, event);
    expectCounts(check, *session, "after INPUT_TO_OUTPUT and EventFlush", 0, 0);
    check.prefer("of an unknown operation", {GC_ERR_NOT_IMPLEMENTED, GC_ERR_INVALID_PARAMETER}, gentl.DSFlushQueue,
                 session->stream(), 99);
  });
  session->rule("Revoked buffers give back memory and private pointer, and are gone", [&] {
    BUFFER_HANDLE first = announceFirst();
    session->revokeAll();
    if (session->info(STREAM_INFO_NUM_ANNOUNCED) != 0)
      check.fault("buffers are still announced");
    check.prefer("of a revoked buffer", {GC_ERR_INVALID_HANDLE, GC_ERR_INVALID_BUFFER}, gentl.DSQueueBuffer,
                 session->stream(), first);
  });
  session->rule("The producer makes buffers of its own", [&] {
    BUFFER_HANDLE buffer = nullptr;
    check.need(gentl.DSAllocAndAnnounceBuffer, session->stream(), session->payload(), static_cast<void*>(nullptr),
               &buffer);
    const Info base = session->bufferInfo(buffer, BUFFER_INFO_BASE);
    if (!base.exists() || base.number() == 0)
      check.fault("BUFFER_INFO_BASE is not there");
    check.need(gentl.DSRevokeBuffer, session->stream(), buffer, nullptr, nullptr);
  });
}

}  // namespace tool::check
