// A data stream: the pools of buffers and the engine that fills them.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "camera/camera.h"
#include "modules/buffer.h"
#include "modules/library.h"
#include "modules/module.h"

namespace vcam {

class Device;
class NewBufferEvent;

class DataStream final : public Module {
 public:
  DataStream(Device& device, std::uint32_t index);
  ~DataStream() override;

  std::uint32_t index() const { return index_; }
  void* deviceHandle() const;
  Info info(STREAM_INFO_CMD command);

  // Buffers. A buffer is named by its handle, which is checked to be one of this stream.
  void* announce(void* memory, std::size_t size, void* userPointer);
  void* allocateAndAnnounce(std::size_t size, void* userPointer);
  void revoke(void* handle, void** memory, void** userPointer);
  void queue(void* handle);
  void flush(ACQ_QUEUE_TYPE operation);
  void* bufferAt(std::uint32_t index);
  void chunkData(void* handle, SINGLE_CHUNK_DATA* chunks, std::size_t* count);
  std::uint32_t partCount(void* handle);
  Info partInfo(void* handle, std::uint32_t part, BUFFER_PART_INFO_CMD command);
  void readBuffer(const Buffer& buffer, std::size_t offset, void* to, std::size_t size);
  std::unique_ptr<Module> take(const Buffer& buffer);

  void start(ACQ_START_FLAGS flags, std::uint64_t count);
  void stop(ACQ_STOP_FLAGS flags);

  void* registerEvent(EVENT_TYPE type) override;
  PortIdentity identity() override;

 protected:
  ModuleFeatures& features() override { return features_; }
  void endCalls() override;
  void closeChildren() override;
  std::unique_ptr<Module> detach() override;

 private:
  friend class NewBufferEvent;

  // Events of the module, for those who listen to its features.
  static constexpr std::uint64_t kAcquisitionStarted = 0x9301;
  static constexpr std::uint64_t kAcquisitionStopped = 0x9302;
  static constexpr std::uint64_t kFrameLost = 0x9303;

  enum HandlingMode : std::uint64_t { OldestFirst, OldestFirstOverwrite, NewestOnly };

  void describe();
  void describeVariant();
  void countPackets(std::size_t filled);
  std::size_t payloadSize() const;
  void* add(std::unique_ptr<Buffer> buffer);

  // All of these run under mutex_.
  Buffer& find(void* handle);
  Buffer& findFilled(void* handle);
  void toAnnounced(Buffer& buffer);
  void toInput(Buffer& buffer);
  void useInput();
  void deliver(Buffer& buffer);
  void drainOutput(void (DataStream::*move)(Buffer&));
  void endFilling(std::unique_lock<std::mutex>& lock, void (DataStream::*move)(Buffer&));

  // The engine.
  void run();
  void takeFrame(std::unique_lock<std::mutex>& lock);
  Buffer* bufferForFrame(std::unique_lock<std::mutex>& lock);
  void fill(std::unique_lock<std::mutex>& lock, Buffer& buffer, std::uint32_t spoiled);
  void complete(Buffer& buffer, std::size_t filled, bool incomplete, std::uint32_t spoiled);
  void runFast(std::unique_lock<std::mutex>& lock);
  void fillFast();
  bool stopEngine();
  std::uint64_t ticksOf(std::uint64_t nanoseconds) const;

  Device& device_;
  Session& session_;
  std::uint32_t index_;
  std::string deviceId_;
  std::uint64_t timestampFrequency_;
  const Variant variant_;
  const std::shared_ptr<Recorder> recorder_;
  ModuleFeatures features_;

  // Guards everything below but the thread; never held while the camera draws.
  std::mutex mutex_;
  std::condition_variable engineWake_;  // the engine: a buffer came, or it is to stop
  std::condition_variable fillOver_;    // others: the engine has let go of the buffer that it was filling
  std::vector<std::unique_ptr<Buffer>> announced_;
  BufferQueue input_;
  BufferQueue output_;
  Buffer* filling_ = nullptr;
  std::uint64_t fills_ = 0;                           // fills that have ended, so that none is taken for the next one
  Buffer* late_ = nullptr;                            // filled, but to be delivered after the next one
  void (DataStream::*discardTo_)(Buffer&) = nullptr;  // where the buffer being filled goes instead of the output
  NewBufferEvent* event_ = nullptr;
  HandlingMode mode_ = OldestFirst;
  bool grabbing_ = false;
  bool stopPending_ = false;  // a start that has not seen its stop yet
  bool stopping_ = false;
  bool wantsInput_ = false;  // the engine waits for a buffer
  bool fast_ = false;        // whoever queues a buffer fills it
  std::uint64_t toDeliver_ = 0;
  std::uint64_t delivered_ = 0;  // since the start
  std::uint64_t fired_ = 0;      // deliveries of all kinds since the stream was opened
  std::uint64_t underruns_ = 0;
  std::uint64_t started_ = 0;
  FramePlan plan_;
  bool filterDriver_ = false;
  // Packets are counted in the real-time variant only.
  std::uint64_t packetsReceived_ = 0;
  std::uint64_t packetsLost_ = 0;
  std::uint64_t framesLost_ = 0;

  std::mutex controlMutex_;  // one start, stop or close at a time; taken before mutex_
  std::thread engine_;
};

// The event of new buffers: its queue is the stream's output queue.
class NewBufferEvent final : public Event {
 public:
  explicit NewBufferEvent(DataStream& stream);
  ~NewBufferEvent() override;

  void attach();
  void notifyLocked() { wakeOneLocked(); }

  Info dataInfo(std::span<const std::byte> entry, EVENT_DATA_INFO_CMD command) const override;

 private:
  std::size_t countLocked() const override { return stream_.output_.size(); }
  std::uint64_t firedLocked() const override { return stream_.fired_ - firedBefore_; }
  std::size_t nextSizeLocked() const override { return sizeof(EVENT_NEW_BUFFER_DATA); }
  void popLocked(void* target) override;
  void clearLocked() override { stream_.drainOutput(&DataStream::toAnnounced); }
  std::size_t maximumEntrySize() const override { return sizeof(EVENT_NEW_BUFFER_DATA); }
  std::size_t maximumValueSize() const override { return sizeof(void*); }

  DataStream& stream_;
  std::uint64_t firedBefore_ = 0;
};

}  // namespace vcam
