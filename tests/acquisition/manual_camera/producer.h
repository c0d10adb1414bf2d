// What the manual camera is made of: its streams, buffers and events, and the script that directs them.
#pragma once

#include <array>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "gentl_interface/GenTL.h"
#include "manual_camera.h"

namespace manual {

inline constexpr std::uint64_t kXmlAddress = 0x10000;

struct Event {
  bool isRegistered = false;
  EVENT_TYPE type = EVENT_NEW_BUFFER;
  unsigned kills = 0;
  unsigned waiters = 0;
  std::deque<std::vector<char>> queue;
  std::condition_variable changed;
};

struct Buffer {
  std::vector<std::uint8_t> memory;
  void* userData = nullptr;
  Frame frame;
  std::size_t filled = 0;
  enum State { Announced, Input, Output } state = Announced;
};

struct Stream {
  bool isOpen = false;
  bool isStarted = false;
  std::deque<std::unique_ptr<Buffer>> buffers;
  std::deque<Buffer*> input;
  Event newBuffer;
  std::uint64_t frames = 0;
  std::uint64_t delivered = 0;
  std::uint64_t underruns = 0;
};

struct Failure {
  GC_ERROR code;
  int times;
  int skip;
};

/** A device event on its way: the layout is the producer's own. */
struct DeviceEventData {
  std::int64_t id;
  char value[48];
};

class Producer final : public Script {
 public:
  std::mutex mutex;
  bool isDeviceOpen = false;
  std::array<Stream, kStreams> streams;
  std::map<EVENT_TYPE, Event> deviceEvents;
  std::string fileName = "ManualCamera.cti";
  std::size_t streamPayload = 0;
  bool isCameraRunning = false;
  unsigned stopPolls = 0;
  unsigned stopPollsLeft = 0;
  std::map<BUFFER_INFO_CMD, GC_ERROR> bufferInfoFailures;
  std::map<STREAM_INFO_CMD, GC_ERROR> streamInfoFailures;

  void reset() override;
  void setFileName(const std::string& name) override;

  bool deliver(unsigned index, const Frame& frame) override;
  void play(const std::vector<Frame>& frames) override;
  std::size_t queued(unsigned stream) override;
  std::size_t announced(unsigned stream) override;
  void post(EVENT_TYPE type, std::int64_t id, const std::string& value) override;

  void fail(const std::string& function, GC_ERROR code, int times, int skip) override;
  void failBufferInfo(BUFFER_INFO_CMD command, GC_ERROR code) override;
  void failStreamInfo(STREAM_INFO_CMD command, GC_ERROR code) override;
  std::uint32_t getRegister(std::uint32_t address) override;
  void setRegister(std::uint32_t address, std::uint32_t value) override;
  void setStreamPayload(std::size_t size) override;
  void setStopPolls(unsigned polls) override;
  std::vector<std::string> takeCalls() override;
  void hold(const std::string& function) override;
  bool holds() override;
  unsigned waiting() override;
  std::vector<std::string> violations() override;

  /** The failure that is ordered for the call, or success. The lock is held, but for as long as the call is. */
  GC_ERROR ordered(std::unique_lock<std::mutex>& lock, const char* function);
  bool holdsLocked() const { return holds_; }
  void call(const std::string& text) { calls_.push_back(text); }
  void violate(const std::string& text) { violations_.push_back(text); }

  unsigned indexOf(const Stream& stream) const { return static_cast<unsigned>(&stream - streams.data()); }

  void push(Event& event, const void* data, std::size_t size);

  bool deliverLocked(Stream& stream, const Frame& frame);

  void playLocked();

  void readRegister(std::uint64_t address, std::uint8_t* out, std::size_t size);

  void writeRegister(std::uint64_t address, std::uint32_t value);

 private:
  template<class Work>
  void locked(Work&& work) {
    const std::lock_guard lock(mutex);
    work();
  }

  static void fill(Buffer& buffer);

  std::map<std::string, Failure> failures_;
  std::vector<std::string> calls_;
  std::vector<std::string> violations_;
  std::deque<Frame> playlist_;
  std::string toHold_;
  bool holds_ = false;
  std::condition_variable letGo_;
  std::map<std::uint32_t, std::uint32_t> registers_;
};

Producer& producer();

}  // namespace manual
