// Rules of starts and stops.
#include "check/groups.h"
#include "check/stream_session.h"

namespace tool::check {

void checkStops(Checker& check) {
  const ProducerFunctions& gentl = check.gentl();
  const std::unique_ptr<StreamSession> session = openStream(check);
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

}  // namespace tool::check
