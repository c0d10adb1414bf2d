// The pools: announcing, queueing, flushing and delivering buffers, and what the stream tells about them.
#include "modules/data_stream.h"

#include <algorithm>
#include <cstring>

#include "modules/device.h"

namespace vcam {

namespace {

bool isAligned(const void* memory, std::size_t alignment) {
  return reinterpret_cast<std::uintptr_t>(memory) % alignment == 0;
}

}  // namespace

DataStream::DataStream(Device& device, std::uint32_t index)
    : Module(kStream),
      device_(device),
      session_(device.session()),
      index_(index),
      deviceId_(device.camera().identity().id),
      timestampFrequency_(device.camera().timestampFrequency()),
      variant_(session_.options.variant),
      recorder_(session_.recorder),
      features_({"VirtualCameraStream", "StreamPort", "Data stream module of the virtual camera producer"}) {
  describe();
}

DataStream::~DataStream() = default;

void* DataStream::deviceHandle() const {
  return device_.handle();
}

std::size_t DataStream::payloadSize() const {
  return device_.camera().payloadSize(index_);
}

// ---- Announcing and revoking ----

void* DataStream::announce(void* memory, std::size_t size, void* userPointer) {
  require(memory, "the buffer's memory");
  if (size == 0) {
    fail(GC_ERR_INVALID_PARAMETER, "a buffer needs at least one byte");
  }
  if (!isAligned(memory, session_.options.bufferAlignment)) {
    fail(GC_ERR_INVALID_BUFFER, "buffers must be aligned to ", session_.options.bufferAlignment, " bytes");
  }
  return add(std::make_unique<Buffer>(*this, memory, size, userPointer, session_.options.bufferAlignment));
}

void* DataStream::allocateAndAnnounce(std::size_t size, void* userPointer) {
  if (size == 0) {
    fail(GC_ERR_INVALID_PARAMETER, "a buffer needs at least one byte");
  }
  return add(std::make_unique<Buffer>(*this, nullptr, size, userPointer, session_.options.bufferAlignment));
}

void* DataStream::add(std::unique_ptr<Buffer> buffer) {
  const std::lock_guard lock(mutex_);
  for (const auto& other : announced_) {
    if (other->base() == buffer->base()) {
      fail(GC_ERR_RESOURCE_IN_USE, "this memory is announced on the data stream already");
    }
  }
  announced_.reserve(announced_.size() + 1);
  HandleTable::insert(*buffer);
  buffer->publish(handle());
  announced_.push_back(std::move(buffer));
  return announced_.back()->handle();
}

void DataStream::revoke(void* handle, void** memory, void** userPointer) {
  requireIfGiven(memory, "the memory's place");
  requireIfGiven(userPointer, "the private pointer's place");
  Buffer* buffer = nullptr;
  {
    const std::lock_guard lock(mutex_);
    buffer = &find(handle);
    if (buffer->state() != BufferState::Announced) {
      fail(GC_ERR_BUSY, "the buffer is queued");
    }
    if (HandleTable::claim(handle, kBuffer) == nullptr) {
      fail(GC_ERR_INVALID_HANDLE, "the buffer is being revoked");
    }
    buffer->setState(BufferState::Revoking);
    if (memory != nullptr) {
      *memory = buffer->ownsMemory() ? nullptr : buffer->base();
    }
    if (userPointer != nullptr) {
      *userPointer = buffer->userPointer();
    }
  }
  buffer->shutDown();
}

std::unique_ptr<Module> DataStream::take(const Buffer& buffer) {
  const std::lock_guard lock(mutex_);
  const auto place = std::ranges::find_if(announced_, [&](const auto& other) { return other.get() == &buffer; });
  std::unique_ptr<Module> taken = std::move(*place);
  announced_.erase(place);
  return taken;
}

Buffer& DataStream::find(void* handle) {
  // A buffer of another stream must not be touched: nothing keeps it from going away meanwhile.
  if (HandleTable::isOpen(handle, kBuffer) && BufferRecord::of(handle).belongsTo(this->handle())) {
    if (Object* buffer = HandleTable::peek(handle, kBuffer)) {
      return *static_cast<Buffer*>(buffer);
    }
  }
  fail(GC_ERR_INVALID_HANDLE, "not the handle of a buffer of this data stream");
}

void* DataStream::bufferAt(std::uint32_t index) {
  const std::lock_guard lock(mutex_);
  if (index >= announced_.size()) {
    fail(GC_ERR_INVALID_INDEX, "buffer ", index, " of ", announced_.size());
  }
  return announced_[index]->handle();
}

// ---- Queues ----

void DataStream::queue(void* handle) {
  const std::lock_guard lock(mutex_);
  Buffer& buffer = find(handle);
  if (buffer.state() != BufferState::Announced) {
    fail(GC_ERR_RESOURCE_IN_USE, "the buffer is queued already");
  }
  toInput(buffer);
  useInput();
}

void DataStream::toInput(Buffer& buffer) {
  buffer.clearContent();
  buffer.setState(BufferState::Input);
  input_.push(buffer);
}

// To be called after buffers were put into the input pool.
void DataStream::useInput() {
  if (fast_) {
    fillFast();
  } else if (wantsInput_) {
    engineWake_.notify_one();
  }
}

void DataStream::toAnnounced(Buffer& buffer) {
  buffer.setState(BufferState::Announced);
}

void DataStream::deliver(Buffer& buffer) {
  buffer.setState(BufferState::Output);
  output_.push(buffer);
  ++fired_;
  if (event_ != nullptr) {
    event_->notifyLocked();
  }
}

void DataStream::drainOutput(void (DataStream::*move)(Buffer&)) {
  for (std::size_t left = output_.size(); left != 0; --left) {
    (this->*move)(*output_.pop());
  }
}

// Makes the engine let go of the buffer that it is filling, and of one that it holds back.
void DataStream::endFilling(std::unique_lock<std::mutex>& lock, void (DataStream::*move)(Buffer&)) {
  if (filling_ != nullptr) {
    discardTo_ = move;
    engineWake_.notify_all();
    fillOver_.wait(lock, [this, ended = fills_] { return fills_ != ended; });
  }
  if (late_ != nullptr) {
    (this->*move)(*std::exchange(late_, nullptr));
  }
}

void DataStream::flush(ACQ_QUEUE_TYPE operation) {
  std::unique_lock lock(mutex_);
  switch (operation) {
    case ACQ_QUEUE_INPUT_TO_OUTPUT:
      while (Buffer* buffer = input_.pop()) {
        deliver(*buffer);
      }
      break;
    case ACQ_QUEUE_OUTPUT_DISCARD:
      drainOutput(&DataStream::toAnnounced);
      break;
    case ACQ_QUEUE_ALL_TO_INPUT:
    case ACQ_QUEUE_UNQUEUED_TO_INPUT: {
      // What comes back from a filling engine at once is not for this call to move again.
      std::vector<Buffer*> idle;
      for (const auto& buffer : announced_) {
        if (buffer->state() == BufferState::Announced) {
          idle.push_back(buffer.get());
        }
      }
      if (operation == ACQ_QUEUE_ALL_TO_INPUT) {
        drainOutput(&DataStream::toInput);
      }
      for (Buffer* buffer : idle) {
        toInput(*buffer);
      }
      if (operation == ACQ_QUEUE_ALL_TO_INPUT) {
        endFilling(lock, &DataStream::toInput);
      }
      useInput();
      break;
    }
    case ACQ_QUEUE_ALL_DISCARD:
      while (Buffer* buffer = input_.pop()) {
        toAnnounced(*buffer);
      }
      endFilling(lock, &DataStream::toAnnounced);
      drainOutput(&DataStream::toAnnounced);
      break;
    default:
      fail(GC_ERR_NOT_IMPLEMENTED, "no flush operation ", operation);
  }
}

// ---- Infos ----

Info DataStream::info(STREAM_INFO_CMD command) {
  const std::lock_guard lock(mutex_);
  switch (command) {
    case STREAM_INFO_ID:
      return Info::text(device_.streamId(index_));
    case STREAM_INFO_NUM_DELIVERED:
      return Info::uint64(delivered_);
    case STREAM_INFO_NUM_UNDERRUN:
      return Info::uint64(underruns_);
    case STREAM_INFO_NUM_ANNOUNCED:
      return Info::size(announced_.size());
    case STREAM_INFO_NUM_QUEUED:
      return Info::size(input_.size() + (filling_ != nullptr ? 1 : 0) + (late_ != nullptr ? 1 : 0));
    case STREAM_INFO_NUM_AWAIT_DELIVERY:
      return Info::size(output_.size());
    case STREAM_INFO_NUM_STARTED:
      return Info::uint64(started_);
    case STREAM_INFO_PAYLOAD_SIZE:
      return Info::size(payloadSize());
    case STREAM_INFO_IS_GRABBING:
      return Info::boolean(grabbing_);
    case STREAM_INFO_DEFINES_PAYLOADSIZE:
      // A camera's one feature cannot speak for several streams.
      return Info::boolean(device_.streamCount() > 1);
    case STREAM_INFO_TLTYPE:
      return Info::text(device_.camera().identity().tlType);
    case STREAM_INFO_NUM_CHUNKS_MAX:
      return Info::size(FramePlan::kMaxChunks);
    case STREAM_INFO_BUF_ANNOUNCE_MIN:
      return Info::size(session_.options.minimumBuffers);
    case STREAM_INFO_BUF_ALIGNMENT:
      return Info::size(session_.options.bufferAlignment);
    default:
      fail(GC_ERR_NOT_IMPLEMENTED, "a data stream has no info ", command);
  }
}

Buffer& DataStream::findFilled(void* handle) {
  Buffer& buffer = find(handle);
  if (buffer.state() == BufferState::Filling) {
    fail(GC_ERR_BUSY, "the buffer is being filled");
  }
  return buffer;
}

void DataStream::chunkData(void* handle, SINGLE_CHUNK_DATA* chunks, std::size_t* count) {
  const std::lock_guard lock(mutex_);
  const Buffer& buffer = findFilled(handle);
  require(count, "the number of entries");
  if (buffer.chunks().empty()) {
    fail(GC_ERR_NO_DATA, "the buffer carries no chunks");
  }
  if (buffer.isIncomplete()) {
    fail(GC_ERR_PARSING_CHUNK_DATA, "the buffer is incomplete, its chunk layout cannot be read");
  }
  const std::size_t available = buffer.chunks().size();
  if (chunks != nullptr) {
    require(chunks, "the chunk array");
    if (*count < available) {
      fail(GC_ERR_BUFFER_TOO_SMALL, "room for ", *count, " chunks of ", available);
    }
    std::transform(buffer.chunks().begin(), buffer.chunks().end(), chunks, [](const ChunkPlan& chunk) {
      return SINGLE_CHUNK_DATA{chunk.id, static_cast<std::ptrdiff_t>(chunk.offset), chunk.length};
    });
  }
  *count = available;
}

std::uint32_t DataStream::partCount(void* handle) {
  const std::lock_guard lock(mutex_);
  const Buffer& buffer = findFilled(handle);
  if (!buffer.isMultiPart()) {
    fail(GC_ERR_NO_DATA, "the buffer holds no multi-part payload");
  }
  return static_cast<std::uint32_t>(buffer.parts().size());
}

Info DataStream::partInfo(void* handle, std::uint32_t part, BUFFER_PART_INFO_CMD command) {
  const std::lock_guard lock(mutex_);
  const Buffer& buffer = findFilled(handle);
  if (!buffer.isMultiPart()) {
    fail(GC_ERR_NO_DATA, "the buffer holds no multi-part payload");
  }
  return buffer.partInfo(part, command);
}

void DataStream::readBuffer(const Buffer& buffer, std::size_t offset, void* to, std::size_t size) {
  const std::lock_guard lock(mutex_);
  if (buffer.state() == BufferState::Filling) {
    fail(GC_ERR_BUSY, "the buffer is being filled");
  }
  std::memcpy(to, buffer.base() + offset, size);
}

PortIdentity DataStream::identity() {
  const ProducerIdentity& producer = session_.identity;
  return {device_.streamId(index_),           producer.vendor,          producer.model, producer.version,
          device_.camera().identity().tlType, GENTL_MODULE_DATA_STREAM, "StreamPort"};
}

}  // namespace vcam
