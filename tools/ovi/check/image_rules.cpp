// Rules of images and of what is told about them.
#include "check/groups.h"
#include "check/stream_session.h"

namespace tool::check {

namespace {

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

}  // namespace

void checkImages(Checker& check) {
  const ProducerFunctions& gentl = check.gentl();
  const std::unique_ptr<StreamSession> session = openStream(check);
  if (!session)
    return;
  constexpr std::size_t kCount = 6;
  const auto start = [&] {
    EVENT_HANDLE event = session->prepare(kCount);
    session->start();
    return event;
  };
  session->rule("Acquisition starts, and images come one after the other, whole and with rising frame IDs", [&] {
    EVENT_HANDLE event = start();
    if (session->info(STREAM_INFO_IS_GRABBING) == 0)
      check.fault("STREAM_INFO_IS_GRABBING is false");
    takeImages(check, *session, event, 20);
  });
  session->rule("An image is described by the rules of type and size, its event too", [&] {
    EVENT_HANDLE event = start();
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
  session->rule("The stream counts what it delivers", [&] {
    EVENT_HANDLE event = start();
    const std::uint64_t before = session->info(STREAM_INFO_NUM_DELIVERED);
    takeImages(check, *session, event, 3);
    if (session->info(STREAM_INFO_NUM_DELIVERED) < before + 1)
      check.fault("STREAM_INFO_NUM_DELIVERED does not grow");
  });
  session->rule("Acquisition stops, buffers are discarded and revoked", [&] {
    start();
    session->stop();
    if (session->info(STREAM_INFO_IS_GRABBING) != 0)
      check.fault("STREAM_INFO_IS_GRABBING is true");
    session->revokeAll();
  });
  session->rule("The modules close one by one", [&] {
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

}  // namespace tool::check
