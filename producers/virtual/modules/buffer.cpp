// What a buffer answers about its content.
#include "modules/buffer.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#include "modules/data_stream.h"

#include "modules/device.h"
#include "modules/hostility.h"
#include "modules/tl_types.h"

namespace vcam {

namespace {

std::array<BufferRecord, HandleTable::kCapacity> records{};

constexpr std::uint32_t bit(BUFFER_INFO_CMD command) {
  return std::uint32_t{1} << command;
}

template<class... Commands>
constexpr std::uint32_t bits(Commands... commands) {
  return (bit(commands) | ...);
}

constexpr std::array<INFO_DATATYPE, BufferRecord::kCommands> kTypes = {
    INFO_DATATYPE_PTR,    INFO_DATATYPE_SIZET,  INFO_DATATYPE_PTR,   INFO_DATATYPE_UINT64, INFO_DATATYPE_BOOL8,
    INFO_DATATYPE_BOOL8,  INFO_DATATYPE_BOOL8,  INFO_DATATYPE_BOOL8, INFO_DATATYPE_STRING, INFO_DATATYPE_SIZET,
    INFO_DATATYPE_SIZET,  INFO_DATATYPE_SIZET,  INFO_DATATYPE_SIZET, INFO_DATATYPE_SIZET,  INFO_DATATYPE_SIZET,
    INFO_DATATYPE_SIZET,  INFO_DATATYPE_UINT64, INFO_DATATYPE_BOOL8, INFO_DATATYPE_SIZET,  INFO_DATATYPE_SIZET,
    INFO_DATATYPE_UINT64, INFO_DATATYPE_UINT64, INFO_DATATYPE_SIZET, INFO_DATATYPE_SIZET,  INFO_DATATYPE_UINT64,
    INFO_DATATYPE_STRING, INFO_DATATYPE_INT32,  INFO_DATATYPE_SIZET, INFO_DATATYPE_UINT64, INFO_DATATYPE_BOOL8,
    INFO_DATATYPE_BOOL8};

// What a buffer always knows.
constexpr std::uint32_t kAlways = bits(BUFFER_INFO_BASE, BUFFER_INFO_SIZE, BUFFER_INFO_USER_PTR, BUFFER_INFO_NEW_DATA,
                                       BUFFER_INFO_IS_QUEUED, BUFFER_INFO_IS_ACQUIRING, BUFFER_INFO_IS_INCOMPLETE,
                                       BUFFER_INFO_TLTYPE, BUFFER_INFO_SIZE_FILLED, BUFFER_INFO_DATA_SIZE);

// What only a plain image has; the parts of a multi-part payload have it each.
constexpr std::uint32_t kGeometry =
    bits(BUFFER_INFO_WIDTH, BUFFER_INFO_HEIGHT, BUFFER_INFO_XOFFSET, BUFFER_INFO_YOFFSET, BUFFER_INFO_XPADDING,
         BUFFER_INFO_PIXELFORMAT, BUFFER_INFO_PIXELFORMAT_NAMESPACE, BUFFER_INFO_DELIVERED_IMAGEHEIGHT);

constexpr std::uint32_t kFilled =
    bits(BUFFER_INFO_TIMESTAMP, BUFFER_INFO_YPADDING, BUFFER_INFO_FRAMEID, BUFFER_INFO_IMAGEPRESENT,
         BUFFER_INFO_IMAGEOFFSET, BUFFER_INFO_PAYLOADTYPE, BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE,
         BUFFER_INFO_CHUNKLAYOUTID, BUFFER_INFO_PIXEL_ENDIANNESS, BUFFER_INFO_TIMESTAMP_NS,
         BUFFER_INFO_DATA_LARGER_THAN_BUFFER, BUFFER_INFO_CONTAINS_CHUNKDATA);

std::size_t bitsPerPixel(std::uint32_t pixelFormat) {
  return pixelFormat >> 16 & 0xFF;
}

}  // namespace

BufferRecord& BufferRecord::of(void* bufferHandle) {
  return records[HandleTable::indexOf(bufferHandle)];
}

void BufferRecord::answer(void* stream, void* buffer, BUFFER_INFO_CMD command, INFO_DATATYPE* type, void* target,
                          std::size_t* size) {
  constexpr const char* kStale = "not the handle of a buffer of this open data stream";
  if (!HandleTable::isOpen(buffer, kBuffer)) {
    fail(GC_ERR_INVALID_HANDLE, kStale);
  }
  const BufferRecord& record = of(buffer);
  if (!record.belongsTo(stream)) {
    fail(GC_ERR_INVALID_HANDLE, kStale);
  }
  if (command < 0 || command >= static_cast<BUFFER_INFO_CMD>(kCommands)) {
    fail(GC_ERR_NOT_IMPLEMENTED, "a buffer has no info ", command);
  }
  const std::uint32_t wanted = bit(command);
  if ((record.available_.load(std::memory_order_relaxed) & wanted) == 0) {
    if ((record.noData_.load(std::memory_order_relaxed) & wanted) != 0) {
      fail(GC_ERR_NO_DATA, "info ", command, " belongs to the parts of a multi-part payload");
    }
    if ((record.notImplemented_.load(std::memory_order_relaxed) & wanted) != 0) {
      fail(GC_ERR_NOT_IMPLEMENTED, "the frame carries no info ", command);
    }
    fail(GC_ERR_NOT_AVAILABLE, "the buffer has no info ", command, " at present");
  }
  const std::uint64_t value = record.values_[static_cast<std::size_t>(command)].load(std::memory_order_acquire);
  if (!HandleTable::isOpen(buffer, kBuffer)) {
    fail(GC_ERR_INVALID_HANDLE, kStale);
  }
  if (command == BUFFER_INFO_TLTYPE) {
    vcam::answer(Info::text(std::string(kTLTypes[value].name)), command, type, target, size);
    return;
  }
  answerScalar(kTypes[static_cast<std::size_t>(command)], value, command, type, target, size);
}

Buffer::Buffer(DataStream& stream, void* memory, std::size_t size, void* userPointer, std::size_t alignment)
    : Module(kBuffer),
      stream_(stream),
      base_(static_cast<std::byte*>(memory)),
      size_(size),
      userPointer_(userPointer) {
  if (memory == nullptr) {
    const auto aligned = static_cast<std::align_val_t>(alignment);
    // Sizes near the end of the address space would wrap around inside some allocators.
    const bool possible = size <= static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max()) - alignment;
    auto* const own = possible ? static_cast<std::byte*>(::operator new[](size, aligned, std::nothrow)) : nullptr;
    if (own == nullptr) {
      fail(GC_ERR_OUT_OF_MEMORY, "no memory for a buffer of ", size, " bytes");
    }
    ownMemory_ = {own, {aligned}};
    std::memset(own, 0, size);
    base_ = own;
  }
}

void Buffer::publish(void* streamHandle) {
  record().setOwner(streamHandle);
  record().set(BUFFER_INFO_BASE, static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(base_)));
  record().set(BUFFER_INFO_SIZE, size_);
  record().set(BUFFER_INFO_USER_PTR, static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(userPointer_)));
  record().set(BUFFER_INFO_TLTYPE, tlTypeValue(stream_.identity().tlType));
  clearContent();
  setState(BufferState::Announced);
}

void Buffer::setState(BufferState state) {
  state_ = state;
  const bool queued = state == BufferState::Input || state == BufferState::Filling || state == BufferState::Output;
  record().set(BUFFER_INFO_IS_QUEUED, queued ? 1 : 0);
  record().set(BUFFER_INFO_IS_ACQUIRING, state == BufferState::Filling ? 1 : 0);
}

void Buffer::clearContent() {
  BufferRecord& to = record();
  to.setAvailability(kAlways);
  to.set(BUFFER_INFO_NEW_DATA, 0);
  to.set(BUFFER_INFO_IS_INCOMPLETE, 0);
  to.set(BUFFER_INFO_SIZE_FILLED, 0);
  to.set(BUFFER_INFO_DATA_SIZE, 0);
  incomplete_ = false;
  multiPart_ = false;
  partCount_ = 0;
  chunkCount_ = 0;
  filled_ = 0;
}

void Buffer::setContent(const FramePlan& plan, std::uint64_t ticks, std::size_t filled, bool incomplete,
                        std::uint32_t spoiled) {
  BufferRecord& to = record();
  const bool tooLarge = plan.payloadSize > size_;
  incomplete_ = incomplete || tooLarge;
  filled_ = filled;
  multiPart_ = plan.payloadType == PAYLOAD_TYPE_MULTI_PART;
  partCount_ = plan.partCount;
  std::copy_n(plan.parts.begin(), partCount_, parts_.begin());
  chunkCount_ = plan.chunkCount;
  std::copy_n(plan.chunks.begin(), chunkCount_, chunks_.begin());

  const bool image = plan.imagePresent && !multiPart_;
  if ((spoiled & OVI_VIRTUAL_FRAME_NO_GEOMETRY) != 0) {
    to.setAvailability(kAlways | kFilled, 0, kGeometry);
  } else if (multiPart_) {
    to.setAvailability(kAlways | kFilled, kGeometry);
  } else {
    to.setAvailability(image ? kAlways | kFilled | kGeometry : kAlways | kFilled);
  }
  to.set(BUFFER_INFO_NEW_DATA, 1);
  to.set(BUFFER_INFO_IS_INCOMPLETE, incomplete_ ? 1 : 0);
  to.set(BUFFER_INFO_SIZE_FILLED, filled);
  to.set(BUFFER_INFO_DATA_SIZE, plan.payloadSize);
  to.set(BUFFER_INFO_DATA_LARGER_THAN_BUFFER, tooLarge ? 1 : 0);
  to.set(BUFFER_INFO_FRAMEID, plan.frameId);
  to.set(BUFFER_INFO_TIMESTAMP, ticks);
  to.set(BUFFER_INFO_TIMESTAMP_NS, plan.timestampNs);
  to.set(BUFFER_INFO_PAYLOADTYPE, static_cast<std::uint64_t>(plan.payloadType));
  to.set(BUFFER_INFO_IMAGEPRESENT, image ? 1 : 0);
  to.set(BUFFER_INFO_IMAGEOFFSET, 0);
  to.set(BUFFER_INFO_YPADDING, plan.paddingY);
  to.set(BUFFER_INFO_PIXEL_ENDIANNESS, PIXELENDIANNESS_LITTLE);
  to.set(BUFFER_INFO_CONTAINS_CHUNKDATA, plan.chunkCount != 0 ? 1 : 0);
  to.set(BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE, plan.chunkCount != 0 ? plan.payloadSize - plan.imageSize : 0);
  to.set(BUFFER_INFO_CHUNKLAYOUTID, plan.chunkLayoutId);
  if (image) {
    const std::size_t pitch = (plan.width * bitsPerPixel(plan.pixelFormat) + 7) / 8 + plan.paddingX;
    const std::size_t lines = pitch == 0 ? 0 : std::min<std::size_t>(plan.height, filled / pitch);
    to.set(BUFFER_INFO_WIDTH, plan.width);
    to.set(BUFFER_INFO_HEIGHT, plan.height);
    to.set(BUFFER_INFO_XOFFSET, plan.offsetX);
    to.set(BUFFER_INFO_YOFFSET, plan.offsetY);
    to.set(BUFFER_INFO_XPADDING, plan.paddingX);
    to.set(BUFFER_INFO_PIXELFORMAT, plan.pixelFormat);
    to.set(BUFFER_INFO_PIXELFORMAT_NAMESPACE, PIXELFORMAT_NAMESPACE_PFNC_32BIT);
    to.set(BUFFER_INFO_DELIVERED_IMAGEHEIGHT, incomplete_ ? lines : plan.height);
  }
}

Info Buffer::partInfo(std::uint32_t index, BUFFER_PART_INFO_CMD command) const {
  if (index >= partCount_) {
    fail(GC_ERR_INVALID_INDEX, "part ", index, " of ", partCount_);
  }
  const PartPlan& part = parts_[index];
  switch (command) {
    case BUFFER_PART_INFO_BASE:
      return Info::pointer(base_ + part.offset);
    case BUFFER_PART_INFO_DATA_SIZE:
      return Info::size(part.offset >= filled_ ? 0 : std::min(part.size, filled_ - part.offset));
    case BUFFER_PART_INFO_DATA_TYPE:
      return Info::size(static_cast<std::size_t>(part.dataType));
    case BUFFER_PART_INFO_DATA_FORMAT:
      return Info::uint64(part.pixelFormat);
    case BUFFER_PART_INFO_DATA_FORMAT_NAMESPACE:
      return Info::uint64(PIXELFORMAT_NAMESPACE_PFNC_32BIT);
    case BUFFER_PART_INFO_WIDTH:
      return Info::size(part.width);
    case BUFFER_PART_INFO_HEIGHT:
      return Info::size(part.height);
    case BUFFER_PART_INFO_XOFFSET:
      return Info::size(part.offsetX);
    case BUFFER_PART_INFO_YOFFSET:
      return Info::size(part.offsetY);
    case BUFFER_PART_INFO_XPADDING:
      return Info::size(part.paddingX);
    case BUFFER_PART_INFO_SOURCE_ID:
      return Info::uint64(part.sourceId);
    case BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT: {
      const std::size_t pitch = (part.width * bitsPerPixel(part.pixelFormat) + 7) / 8 + part.paddingX;
      const std::size_t bytes = part.offset >= filled_ ? 0 : filled_ - part.offset;
      return Info::size(pitch == 0 ? 0 : std::min<std::size_t>(part.height, bytes / pitch));
    }
    default:
      fail(GC_ERR_NOT_IMPLEMENTED, "a part has no info ", command);
  }
}

PortIdentity Buffer::identity() {
  PortIdentity me = stream_.identity();
  me.id = hexadecimal(static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(base_)));
  me.module = GENTL_MODULE_BUFFER;
  me.portName = "BufferPort";
  return me;
}

std::unique_ptr<Module> Buffer::detach() {
  return stream_.take(*this);
}

ModuleFeatures& Buffer::features() {
  const std::lock_guard lock(featuresMutex_);
  if (!features_) {
    auto made = std::make_unique<ModuleFeatures>(
        ModuleFeatures::Naming{"VirtualCameraBuffer", "BufferPort", "Buffer module of the virtual camera producer"});
    describe(*made);
    features_ = std::move(made);
  }
  return *features_;
}

void Buffer::describe(ModuleFeatures& f) {
  f.category("BufferInformation", "What lies in the buffer");
  f.block(
      {"BufferData", "The buffer's memory", "Expert"}, [this] { return size_; },
      [this](std::size_t offset, void* to, std::size_t size) { stream_.readBuffer(*this, offset, to, size); });
  f.integer({"BufferUserData", "The private pointer of the announcement", "Expert"},
            [this] { return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(userPointer_)); });
  f.integer({"BufferSize", "Bytes of the buffer's memory", "Expert", "B"}, [this] { return size_; });
  f.events({{"PayloadTooLarge", 0x9401, "A frame did not fit into the buffer", {"EventPayloadTooLargeSize"}}});
  f.finish();
}

void BufferQueue::push(Buffer& buffer) {
  buffer.previous = last_;
  buffer.next = nullptr;
  (last_ != nullptr ? last_->next : first_) = &buffer;
  last_ = &buffer;
  ++size_;
}

Buffer* BufferQueue::pop() {
  Buffer* const buffer = first_;
  if (buffer != nullptr) {
    remove(*buffer);
  }
  return buffer;
}

void BufferQueue::remove(Buffer& buffer) {
  (buffer.previous != nullptr ? buffer.previous->next : first_) = buffer.next;
  (buffer.next != nullptr ? buffer.next->previous : last_) = buffer.previous;
  buffer.previous = nullptr;
  buffer.next = nullptr;
  --size_;
}

}  // namespace vcam
