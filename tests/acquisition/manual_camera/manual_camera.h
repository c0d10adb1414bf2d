// How a test directs the manual camera: one camera whose every frame, answer and failure the test decides.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "gentl_interface/GenTL.h"

namespace manual {

inline constexpr unsigned kStreams = 2;
inline constexpr const char* kDeviceId = "ManualCamera";

/** Registers of the camera and of all other modules; 32 bits each. */
enum Register : std::uint32_t {
  kWidth = 0x100,
  kHeight = 0x104,
  kPayloadSize = 0x108,
  kPixelFormat = 0x10C,
  kParamsLocked = 0x110,
  kStart = 0x114,
  kStop = 0x118,
  kAbort = 0x11C,
  kPacketSize = 0x120,
  kFilterDriver = 0x200,
  kBufferSize = 0x204,
  kPaketLoss = 0x208,
  kPaketsReceived = 0x20C,
  kFrameLoss = 0x210,
  kFindMaxPacketSize = 0x214,
  kMaintenance = 0xA3E4,
};

/** A frame to deliver. Every pixel's bytes are its column plus the counter. */
struct Frame {
  std::size_t width = 8;
  std::size_t height = 4;
  std::uint64_t pixelFormat = 0x01080001;
  std::uint8_t counter = 0;
  std::size_t filled = SIZE_MAX;       // SIZE_MAX: what the geometry says.
  std::size_t badByte = SIZE_MAX;      // The byte that does not fit the pattern.
  std::uint64_t frameId = UINT64_MAX;  // UINT64_MAX: counts from 0 since the stream was opened.
};

/** The director. All functions may be called from any thread. */
class Script {
 public:
  /** Back to the start: no failures, no log, registers as at power-up. Open modules stay open. */
  virtual void reset() = 0;
  /** The file name that the producer reports as its own. */
  virtual void setFileName(const std::string& name) = 0;

  /** Delivers a frame now. @return false when no buffer is queued, or the stream does not run */
  virtual bool deliver(unsigned stream, const Frame& frame) = 0;
  /** Frames of stream 0 that are delivered by themselves, as soon as the camera runs and a buffer is queued. */
  virtual void play(const std::vector<Frame>& frames) = 0;
  /** Buffers that wait to be filled. */
  virtual std::size_t queued(unsigned stream) = 0;
  /** Buffers that are announced. */
  virtual std::size_t announced(unsigned stream) = 0;

  /** Posts an event of the local device, if it is registered. `id` as in a text of hex digits or an error number. */
  virtual void post(EVENT_TYPE type, std::int64_t id, const std::string& value) = 0;

  /** The function fails with the code, `times` times (-1: always), after `skip` calls that do their work. */
  virtual void fail(const std::string& function, GC_ERROR code, int times = -1, int skip = 0) = 0;
  /** A buffer info or a stream info always answers this code; 0 withdraws it. A buffer info answers its value as well
   * when the standard knows no fault of that code. */
  virtual void failBufferInfo(BUFFER_INFO_CMD command, GC_ERROR code) = 0;
  virtual void failStreamInfo(STREAM_INFO_CMD command, GC_ERROR code) = 0;
  /** The next call of the function does not begin before it is let go, with "". */
  virtual void hold(const std::string& function) = 0;
  /** Whether a call is held. */
  virtual bool holds() = 0;

  virtual std::uint32_t getRegister(std::uint32_t address) = 0;
  virtual void setRegister(std::uint32_t address, std::uint32_t value) = 0;
  /** The stream defines its payload size; 0: it does not. */
  virtual void setStreamPayload(std::size_t size) = 0;
  /** The stop command reads as active this many times after it was executed. */
  virtual void setStopPolls(unsigned polls) = 0;

  /** The calls since the last question, with what matters of their arguments, "DSFlushQueue(0,4)". Info queries, port
   * accesses and waits are left out; register writes of commands and of the lock are in. */
  virtual std::vector<std::string> takeCalls() = 0;
  /** Threads inside EventGetData. */
  virtual unsigned waiting() = 0;
  /** What a consumer must not do: calls on closed modules, closing under a wait or under a call that is held. */
  virtual std::vector<std::string> violations() = 0;

 protected:
  ~Script() = default;
};

using GetScript = Script* (*)();
inline constexpr const char* kGetScriptName = "manualCameraScript";

}  // namespace manual
