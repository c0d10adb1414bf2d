// Rules of starts and stops.
#include "check/groups.h"
#include "check/stream_session.h"

namespace tool::check {

void checkStops(Checker& check) {
  const ProducerFunctions& gentl = check.gentl();
  const std::unique_ptr<StreamSession> session = openStream(check);
  if (!session)
    return;
  constexpr std::size_t kCount = 4;
  session->rule("Starts that make no sense are refused", [&] {
    session->prepare(kCount);
    check.prefer("without a start", {GC_ERR_RESOURCE_IN_USE}, gentl.DSStopAcquisition, session->stream(),
                 ACQ_STOP_FLAGS_DEFAULT);
    session->mayRun();
    check.prefer("of 0 images", {GC_ERR_INVALID_PARAMETER}, gentl.DSStartAcquisition, session->stream(),
                 ACQ_START_FLAGS_DEFAULT, std::uint64_t{0});
  });
  session->rule("A running stream is not started a second time", [&] {
    session->prepare(kCount);
    session->start();
    check.prefer("of a running stream", {GC_ERR_RESOURCE_IN_USE}, gentl.DSStartAcquisition, session->stream(),
                 ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE);
    session->stop();
  });
  session->rule("Stop and restart work again and again, images come each time", [&] {
    EVENT_HANDLE event = session->prepare(kCount);
    for (int round = 0; round < 5; ++round) {
      check.need(gentl.DSFlushQueue, session->stream(), ACQ_QUEUE_ALL_TO_INPUT);
      session->start();
      const EVENT_NEW_BUFFER_DATA data = session->wait(event, kImageTime);
      check.need(gentl.DSQueueBuffer, session->stream(), data.BufferHandle);
      session->stop(round % 2 == 0 ? ACQ_STOP_FLAGS_DEFAULT : ACQ_STOP_FLAGS_KILL);
    }
    check.seen("5 times, in turn by the end of the image and at once");
  });
  session->rule("A start for three images delivers three", [&] {
    EVENT_HANDLE event = session->prepare(kCount);
    session->start(3);
    for (int i = 0; i < 3; ++i)
      session->wait(event, kImageTime);
    EVENT_NEW_BUFFER_DATA data{};
    std::size_t size = sizeof data;
    check.expect({GC_ERR_TIMEOUT}, gentl.EventGetData, event, static_cast<void*>(&data), &size, std::uint64_t{300});
    session->stop(ACQ_STOP_FLAGS_DEFAULT, {GC_ERR_SUCCESS, GC_ERR_RESOURCE_IN_USE});
  });
  session->rule("A stream without free buffers goes on when it gets one", [&] {
    EVENT_HANDLE event = session->prepare(kCount);
    session->start();
    std::vector<BUFFER_HANDLE> taken;
    for (std::size_t i = 0; i < session->buffers().size(); ++i)
      taken.push_back(session->wait(event, kImageTime).BufferHandle);
    for (BUFFER_HANDLE buffer : taken)
      check.need(gentl.DSQueueBuffer, session->stream(), buffer);
    session->wait(event, kImageTime);
    session->stop();
  });
  session->rule("A stream that runs can be closed, and opened again", [&] {
    EVENT_HANDLE event = session->prepare(kCount);
    session->start();
    session->wait(event, kImageTime);
    session->closeStream();
    session->camera().execute(check, "AcquisitionStop");
    session->camera().lock(false);
    session->openStream();
  });
}

}  // namespace tool::check
