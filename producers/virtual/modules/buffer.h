// A buffer: a block of memory that is announced to a stream, and what is known about its content.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <span>

#include "camera/frame_plan.h"
#include "modules/module.h"

namespace vcam {

class DataStream;

// The answers of DSGetBufferInfo. They lie in memory that is never freed, beside the handle table, so that asking takes
// no lock: a buffer that is gone is recognised by its handle.
class BufferRecord {
 public:
  static constexpr std::size_t kCommands = BUFFER_INFO_CONTAINS_CHUNKDATA + 1;

  static BufferRecord& of(void* bufferHandle);

  void set(BUFFER_INFO_CMD command, std::uint64_t value) {
    values_[static_cast<std::size_t>(command)].store(value, std::memory_order_relaxed);
  }
  void setOwner(void* stream) { owner_.store(stream, std::memory_order_relaxed); }
  bool belongsTo(void* stream) const { return owner_.load(std::memory_order_relaxed) == stream; }

  // Which commands answer with a value; the others answer "no data", "not implemented" or "not available".
  void setAvailability(std::uint32_t available, std::uint32_t noData = 0, std::uint32_t notImplemented = 0) {
    available_.store(available, std::memory_order_relaxed);
    noData_.store(noData, std::memory_order_relaxed);
    notImplemented_.store(notImplemented, std::memory_order_relaxed);
  }

  // Answers one command for a buffer of a stream.
  static void answer(void* stream, void* buffer, BUFFER_INFO_CMD command, INFO_DATATYPE* type, void* target,
                     std::size_t* size);

 private:
  std::atomic<void*> owner_;
  std::atomic<std::uint32_t> available_;
  std::atomic<std::uint32_t> noData_;
  std::atomic<std::uint32_t> notImplemented_;
  std::array<std::atomic<std::uint64_t>, kCommands> values_;
};

enum class BufferState : std::uint8_t {
  Announced,  // with the application, or never queued
  Input,      // waits to be filled
  Filling,
  Output,  // filled, waits to be fetched
  Revoking,
};

// Gives aligned memory back.
struct FreeAligned {
  std::align_val_t alignment{};
  void operator()(std::byte* memory) const { ::operator delete[](memory, alignment); }
};

// Everything but the module part is guarded by the stream's mutex.
class Buffer final : public Module {
 public:
  // Memory of the application when `memory` is given, otherwise of our own, aligned as the application's must be.
  Buffer(DataStream& stream, void* memory, std::size_t size, void* userPointer, std::size_t alignment);

  std::byte* base() const { return base_; }
  std::size_t size() const { return size_; }
  void* userPointer() const { return userPointer_; }
  bool ownsMemory() const { return ownMemory_ != nullptr; }

  // To be called once the buffer has its handle.
  void publish(void* streamHandle);

  BufferState state() const { return state_; }
  void setState(BufferState state);
  // Takes the content back: the buffer is to be filled anew, or comes back empty.
  void clearContent();
  // The buffer holds this frame now. `spoiled` is a sum of OviVirtualFrame.
  void setContent(const FramePlan& plan, std::uint64_t ticks, std::size_t filled, bool incomplete,
                  std::uint32_t spoiled);

  std::span<const PartPlan> parts() const { return {parts_.data(), partCount_}; }
  bool isMultiPart() const { return multiPart_; }
  std::span<const ChunkPlan> chunks() const { return {chunks_.data(), chunkCount_}; }
  bool isIncomplete() const { return incomplete_; }
  Info partInfo(std::uint32_t index, BUFFER_PART_INFO_CMD command) const;

  PortIdentity identity() override;

  // The neighbours in the queue that the buffer is in.
  Buffer* previous = nullptr;
  Buffer* next = nullptr;

 protected:
  ModuleFeatures& features() override;
  std::unique_ptr<Module> detach() override;

 private:
  BufferRecord& record() const { return BufferRecord::of(handle()); }
  void describe(ModuleFeatures& features);

  DataStream& stream_;
  std::byte* base_;
  std::size_t size_;
  void* userPointer_;
  std::unique_ptr<std::byte[], FreeAligned> ownMemory_;
  BufferState state_ = BufferState::Announced;
  bool incomplete_ = false;
  bool multiPart_ = false;
  std::size_t partCount_ = 0;
  std::size_t chunkCount_ = 0;
  std::size_t filled_ = 0;
  std::array<PartPlan, FramePlan::kMaxParts> parts_{};
  std::array<ChunkPlan, FramePlan::kMaxChunks> chunks_{};
  std::mutex featuresMutex_;
  std::unique_ptr<ModuleFeatures> features_;  // made when somebody first asks for the buffer's port
};

// A queue through the buffers themselves; a buffer is in one queue at most.
class BufferQueue {
 public:
  bool empty() const { return first_ == nullptr; }
  std::size_t size() const { return size_; }
  Buffer* front() const { return first_; }
  void push(Buffer& buffer);
  Buffer* pop();
  void remove(Buffer& buffer);

 private:
  Buffer* first_ = nullptr;
  Buffer* last_ = nullptr;
  std::size_t size_ = 0;
};

}  // namespace vcam
