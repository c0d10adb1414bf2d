// A stream with buffers, and the camera behind it, for the rules of buffers, events and images.
#pragma once

#include <deque>
#include <functional>
#include <memory>

#include "check/info.h"
#include "check/modules.h"
#include "check/port_map.h"

namespace tool::check {

/// How long an image may take to come.
constexpr std::uint64_t kImageTime = 3000;  // ms

/// What a rule leaves behind (a running acquisition, the event, buffers) is taken back before the next one.
class StreamSession {
 public:
  /// Sets the camera up before its images are asked for.
  using Prepare = std::function<void(PortMap& camera)>;

  /// Opens a stream and reads the device's description. Throws Broken.
  explicit StreamSession(Checker& check, const Prepare& prepare = {});
  ~StreamSession() { takeBack(); }
  StreamSession(const StreamSession&) = delete;
  StreamSession& operator=(const StreamSession&) = delete;

  /// Holds the producer against one rule, with the stream open and nothing announced, registered or started.
  /// @return whether it did not fail
  bool rule(const std::string& text, const std::function<void()>& work);

  Modules& modules() { return modules_; }
  PortMap& camera() { return camera_; }
  DS_HANDLE stream() const { return modules_.stream; }
  std::size_t payload() const { return payload_; }

  /// Announces so many buffers of ours, at least what the stream demands, with their number from 1 as private pointer.
  void announce(std::size_t count);
  const std::vector<BUFFER_HANDLE>& buffers() const { return buffers_; }
  void queueAll();
  /// Flushes and revokes all of them.
  void revokeAll();
  EVENT_HANDLE registerEvent();
  void unregisterEvent();
  /// What an acquisition needs: the event, and so many buffers, all queued.
  EVENT_HANDLE prepare(std::size_t count);

  std::uint64_t info(STREAM_INFO_CMD command);
  Info bufferInfo(BUFFER_HANDLE buffer, BUFFER_INFO_CMD command);
  /// The next entry of the event. Throws Broken when none comes in time.
  EVENT_NEW_BUFFER_DATA wait(EVENT_HANDLE event, std::uint64_t timeout);

  void start(std::uint64_t count = GENTL_INFINITE);
  /// @param codes  what DSStopAcquisition may answer
  void stop(ACQ_STOP_FLAGS flags = ACQ_STOP_FLAGS_DEFAULT, std::initializer_list<GC_ERROR> codes = {GC_ERR_SUCCESS});
  /// A call may have started the stream, though it should have been refused.
  void mayRun() { running_ = true; }

  /// Closes the stream as it is, running perhaps.
  void closeStream();
  void openStream();

 private:
  class Restored;

  void takeBack() noexcept;
  bool stopQuietly();
  bool revokeQuietly();
  void forgetStream();

  Checker& check_;
  std::deque<std::vector<std::uint8_t>> memory_;
  std::deque<std::vector<std::uint8_t>> abandoned_;  // of buffers that could not be revoked
  Modules modules_;                                  // closed before the memory goes
  PortMap camera_;
  std::size_t payload_ = 0;
  std::vector<BUFFER_HANDLE> buffers_;
  bool registered_ = false;
  bool running_ = false;
};

/// Opens a stream as a rule of its own; null when that fails.
std::unique_ptr<StreamSession> openStream(Checker& check);

}  // namespace tool::check
