// A stream with buffers, and the camera behind it, for the rules of buffers, events and images.
#include "check/stream_session.h"

#include <algorithm>
#include <iterator>

namespace tool::check {

namespace {

// What the work returns; false as well when an exception stops it.
template<class Work>
bool quietly(Work&& work) noexcept {
  try {
    return work();
  } catch (...) {
    return false;
  }
}

}  // namespace

class StreamSession::Restored {
 public:
  explicit Restored(StreamSession& session) : session_(session) {}
  ~Restored() { session_.takeBack(); }
  Restored(const Restored&) = delete;
  Restored& operator=(const Restored&) = delete;

 private:
  StreamSession& session_;
};

StreamSession::StreamSession(Checker& check, const Prepare& prepare)
    : check_(check),
      modules_(check, Depth::kStream),
      camera_(check, modules_.remote) {
  if (prepare)
    prepare(camera_);
  const ProducerFunctions& gentl = check.gentl();
  const Info defines = ask([&](std::int32_t command, INFO_DATATYPE* type, void* buffer,
                               std::size_t* size) { return gentl.DSGetInfo(stream(), command, type, buffer, size); },
                           STREAM_INFO_DEFINES_PAYLOADSIZE);
  const std::optional<std::int64_t> size = camera_.integer("PayloadSize");
  if ((defines.exists() && defines.number() != 0) || !size)
    payload_ = static_cast<std::size_t>(info(STREAM_INFO_PAYLOAD_SIZE));
  else
    payload_ = static_cast<std::size_t>(std::max<std::int64_t>(*size, 0));
  if (payload_ == 0)
    throw Broken("neither the stream nor the device's PayloadSize tells how large an image is");
}

bool StreamSession::rule(const std::string& text, const std::function<void()>& work) {
  return check_.rule(text, [&] {
    if (modules_.stream == nullptr)
      openStream();
    const Restored restored(*this);
    work();
  });
}

// Nothing of it is judged. A stream that does not let itself be tidied up is closed; the next rule opens it again.
void StreamSession::takeBack() noexcept {
  const ProducerFunctions& gentl = check_.gentl();
  bool clean = !running_ || quietly([&] { return stopQuietly(); });
  clean = (!registered_ ||
           quietly([&] { return gentl.GCUnregisterEvent(stream(), EVENT_NEW_BUFFER) == GC_ERR_SUCCESS; })) &&
          clean;
  clean = (buffers_.empty() || quietly([&] { return revokeQuietly(); })) && clean;
  registered_ = running_ = false;
  if (clean)
    return;
  quietly([&] { return gentl.DSClose(stream()) == GC_ERR_SUCCESS; });
  forgetStream();
}

bool StreamSession::stopQuietly() {
  const auto execute = [&] {
    camera_.execute(check_, "AcquisitionStop");
    return true;
  };
  const auto unlock = [&] {
    camera_.lock(false);
    return true;
  };
  quietly(execute);
  const GC_ERROR code = check_.gentl().DSStopAcquisition(stream(), ACQ_STOP_FLAGS_KILL);
  quietly(unlock);
  return code == GC_ERR_SUCCESS || code == GC_ERR_RESOURCE_IN_USE;
}

bool StreamSession::revokeQuietly() {
  const ProducerFunctions& gentl = check_.gentl();
  bool all = gentl.DSFlushQueue(stream(), ACQ_QUEUE_ALL_DISCARD) == GC_ERR_SUCCESS;
  for (BUFFER_HANDLE buffer : buffers_)
    all = gentl.DSRevokeBuffer(stream(), buffer, nullptr, nullptr) == GC_ERR_SUCCESS && all;
  if (all) {
    buffers_.clear();
    memory_.clear();
  }
  return all;
}

void StreamSession::forgetStream() {
  modules_.stream = nullptr;
  registered_ = running_ = false;
  std::ranges::move(memory_, std::back_inserter(abandoned_));
  buffers_.clear();
  memory_.clear();
}

void StreamSession::closeStream() {
  const DS_HANDLE closing = stream();
  check_.need(check_.gentl().DSClose, closing);
  forgetStream();
}

void StreamSession::openStream() {
  check_.need(check_.gentl().DevOpenDataStream, modules_.device, modules_.streamId.c_str(), &modules_.stream);
}

EVENT_HANDLE StreamSession::prepare(std::size_t count) {
  EVENT_HANDLE event = registerEvent();
  announce(count);
  queueAll();
  return event;
}

void StreamSession::announce(std::size_t count) {
  const Info minimum =
      ask([&](std::int32_t command, INFO_DATATYPE* type, void* buffer,
              std::size_t* size) { return check_.gentl().DSGetInfo(stream(), command, type, buffer, size); },
          STREAM_INFO_BUF_ANNOUNCE_MIN);
  const Info alignment =
      ask([&](std::int32_t command, INFO_DATATYPE* type, void* buffer,
              std::size_t* size) { return check_.gentl().DSGetInfo(stream(), command, type, buffer, size); },
          STREAM_INFO_BUF_ALIGNMENT);
  const std::uintptr_t step = alignment.exists() ? std::max<std::uintptr_t>(alignment.number(), 1) : 1;
  if (minimum.exists())
    count = std::max(count, static_cast<std::size_t>(minimum.number()));
  for (std::size_t i = 1; i <= count; ++i) {
    std::vector<std::uint8_t>& memory = memory_.emplace_back(payload_ + step);
    const auto address = (reinterpret_cast<std::uintptr_t>(memory.data()) + step - 1) / step * step;
    BUFFER_HANDLE buffer = nullptr;
    // NOLINTBEGIN(performance-no-int-to-ptr): an aligned address, and a number for the producer to give back.
    check_.need(check_.gentl().DSAnnounceBuffer, stream(), reinterpret_cast<void*>(address), payload_,
                reinterpret_cast<void*>(i), &buffer);
    // NOLINTEND(performance-no-int-to-ptr)
    buffers_.push_back(buffer);
  }
}

void StreamSession::queueAll() {
  for (BUFFER_HANDLE buffer : buffers_)
    check_.need(check_.gentl().DSQueueBuffer, stream(), buffer);
}

void StreamSession::revokeAll() {
  check_.need(check_.gentl().DSFlushQueue, stream(), ACQ_QUEUE_ALL_DISCARD);
  for (std::size_t i = 0; i < buffers_.size(); ++i) {
    void* memory = nullptr;
    void* mine = nullptr;
    check_.need(check_.gentl().DSRevokeBuffer, stream(), buffers_[i], &memory, &mine);
    if (reinterpret_cast<std::uintptr_t>(mine) != i + 1)
      check_.fault("DSRevokeBuffer gave back another private pointer than was announced");
    const auto* const start = memory_.at(i).data();
    if (memory < start || memory >= start + memory_.at(i).size())
      check_.fault("DSRevokeBuffer gave back another memory than was announced");
  }
  buffers_.clear();
  memory_.clear();
}

EVENT_HANDLE StreamSession::registerEvent() {
  EVENT_HANDLE event = nullptr;
  check_.need(check_.gentl().GCRegisterEvent, stream(), EVENT_NEW_BUFFER, &event);
  registered_ = true;
  return event;
}

void StreamSession::unregisterEvent() {
  check_.need(check_.gentl().GCUnregisterEvent, stream(), EVENT_NEW_BUFFER);
  registered_ = false;
}

std::uint64_t StreamSession::info(STREAM_INFO_CMD command) {
  const Info value = ask([&](std::int32_t cmd, INFO_DATATYPE* type, void* buffer,
                             std::size_t* size) { return check_.gentl().DSGetInfo(stream(), cmd, type, buffer, size); },
                         command);
  if (!value.exists())
    throw Broken("DSGetInfo(" + std::to_string(command) + ") returned " + codeText(value.code));
  return value.number();
}

Info StreamSession::bufferInfo(BUFFER_HANDLE buffer, BUFFER_INFO_CMD command) {
  return ask([&](std::int32_t cmd, INFO_DATATYPE* type, void* to,
                 std::size_t* size) { return check_.gentl().DSGetBufferInfo(stream(), buffer, cmd, type, to, size); },
             command);
}

EVENT_NEW_BUFFER_DATA StreamSession::wait(EVENT_HANDLE event, std::uint64_t timeout) {
  EVENT_NEW_BUFFER_DATA data{};
  std::size_t size = sizeof data;
  const GC_ERROR code = check_.gentl().EventGetData(event, &data, &size, timeout);
  if (code == GC_ERR_TIMEOUT)
    throw Broken("no buffer came within " + std::to_string(timeout) + " ms");
  if (code != GC_ERR_SUCCESS)
    throw Broken("EventGetData returned " + codeText(code));
  if (size != sizeof data)
    throw Broken("EventGetData wrote " + std::to_string(size) + " bytes, not " + std::to_string(sizeof data));
  return data;
}

void StreamSession::start(std::uint64_t count) {
  camera_.lock(true);
  running_ = true;
  check_.need(check_.gentl().DSStartAcquisition, stream(), ACQ_START_FLAGS_DEFAULT, count);
  camera_.execute(check_, "AcquisitionStart");
}

void StreamSession::stop(ACQ_STOP_FLAGS flags, std::initializer_list<GC_ERROR> codes) {
  camera_.execute(check_, "AcquisitionStop");
  check_.expect(codes, check_.gentl().DSStopAcquisition, stream(), flags);
  running_ = false;
  camera_.lock(false);
}

std::unique_ptr<StreamSession> openStream(Checker& check) {
  std::unique_ptr<StreamSession> session;
  check.rule("A stream opens and tells how large an image is", [&] {
    session = std::make_unique<StreamSession>(check);
    check.seen(session->modules().streamId + ", " + std::to_string(session->payload()) + " bytes");
  });
  return session;
}

}  // namespace tool::check
