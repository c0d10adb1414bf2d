// The manual camera's streams: buffers announced, queued, flushed and described.
#include <memory>
#include <string>
#include <utility>

#include "calls.h"

namespace manual {
namespace {

Buffer* bufferOf(Stream& stream, BUFFER_HANDLE handle) {
  for (const auto& buffer : stream.buffers) {
    if (buffer.get() == handle) {
      return buffer.get();
    }
  }
  return nullptr;
}

std::string named(const char* function, unsigned stream, std::int64_t argument) {
  return std::string(function) + "(" + std::to_string(stream) + "," + std::to_string(argument) + ")";
}

GC_ERROR tellBufferInfo(const Buffer& buffer, BUFFER_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  switch (cmd) {
    case BUFFER_INFO_BASE:
      return number(static_cast<const void*>(buffer.memory.data()), INFO_DATATYPE_PTR, type, buf, size);
    case BUFFER_INFO_SIZE:
      return number(buffer.memory.size(), INFO_DATATYPE_SIZET, type, buf, size);
    case BUFFER_INFO_SIZE_FILLED:
      return number(buffer.filled, INFO_DATATYPE_SIZET, type, buf, size);
    case BUFFER_INFO_WIDTH:
      return number(buffer.frame.width, INFO_DATATYPE_SIZET, type, buf, size);
    case BUFFER_INFO_HEIGHT:
      return number(buffer.frame.height, INFO_DATATYPE_SIZET, type, buf, size);
    case BUFFER_INFO_PIXELFORMAT:
      return number(buffer.frame.pixelFormat, INFO_DATATYPE_UINT64, type, buf, size);
    case BUFFER_INFO_FRAMEID:
      return number(buffer.frame.frameId, INFO_DATATYPE_UINT64, type, buf, size);
    default:
      return GC_ERR_NOT_IMPLEMENTED;
  }
}

}  // namespace
}  // namespace manual

using namespace manual;  // NOLINT: the C functions below are all of this file.

extern "C" {

GC_ERROR DSAllocAndAnnounceBuffer(DS_HANDLE ds, size_t bytes, void* priv, BUFFER_HANDLE* out) {
  return runStream("DSAllocAndAnnounceBuffer", ds, [&](Producer& p, Stream& stream) {
    auto buffer = std::make_unique<Buffer>();
    buffer->memory.resize(bytes);
    buffer->userData = priv;
    *out = buffer.get();
    stream.buffers.push_back(std::move(buffer));
    p.call(named("DSAllocAndAnnounceBuffer", p.indexOf(stream), static_cast<std::int64_t>(bytes)));
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR DSRevokeBuffer(DS_HANDLE ds, BUFFER_HANDLE handle, void** memoryOut, void** privOut) {
  return runStream("DSRevokeBuffer", ds, [&](Producer& p, Stream& stream) -> GC_ERROR {
    Buffer* buffer = bufferOf(stream, handle);
    if (buffer == nullptr) {
      return GC_ERR_INVALID_HANDLE;
    }
    if (buffer->state != Buffer::Announced) {
      return GC_ERR_BUSY;
    }
    p.call("DSRevokeBuffer(" + std::to_string(p.indexOf(stream)) + ")");
    if (memoryOut != nullptr) {
      *memoryOut = nullptr;
    }
    if (privOut != nullptr) {
      *privOut = buffer->userData;
    }
    std::erase_if(stream.buffers, [&](const auto& each) { return each.get() == buffer; });
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR DSQueueBuffer(DS_HANDLE ds, BUFFER_HANDLE handle) {
  return runStream("DSQueueBuffer", ds, [&](Producer& p, Stream& stream) -> GC_ERROR {
    Buffer* buffer = bufferOf(stream, handle);
    if (buffer == nullptr) {
      return GC_ERR_INVALID_HANDLE;
    }
    if (buffer->state != Buffer::Announced) {
      return GC_ERR_RESOURCE_IN_USE;
    }
    buffer->state = Buffer::Input;
    stream.input.push_back(buffer);
    p.playLocked();
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR DSFlushQueue(DS_HANDLE ds, ACQ_QUEUE_TYPE operation) {
  return runStream("DSFlushQueue", ds, [&](Producer& p, Stream& stream) {
    p.call(named("DSFlushQueue", p.indexOf(stream), operation));
    stream.input.clear();
    stream.newBuffer.queue.clear();
    for (const auto& buffer : stream.buffers) {
      buffer->state = operation == ACQ_QUEUE_ALL_TO_INPUT ? Buffer::Input : Buffer::Announced;
      if (buffer->state == Buffer::Input) {
        stream.input.push_back(buffer.get());
      }
    }
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR DSStartAcquisition(DS_HANDLE ds, ACQ_START_FLAGS, uint64_t count) {
  return runStream("DSStartAcquisition", ds, [&](Producer& p, Stream& stream) {
    p.call(named("DSStartAcquisition", p.indexOf(stream), static_cast<std::int64_t>(count)));
    stream.isStarted = true;
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR DSStopAcquisition(DS_HANDLE ds, ACQ_STOP_FLAGS flags) {
  return runStream("DSStopAcquisition", ds, [&](Producer& p, Stream& stream) {
    p.call(named("DSStopAcquisition", p.indexOf(stream), flags));
    stream.isStarted = false;
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR DSGetInfo(DS_HANDLE ds, STREAM_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  return runStream("DSGetInfo", ds, [&](Producer& p, Stream& stream) -> GC_ERROR {
    const auto failure = p.streamInfoFailures.find(cmd);
    if (failure != p.streamInfoFailures.end() && failure->second != GC_ERR_SUCCESS) {
      return failure->second;
    }
    switch (cmd) {
      case STREAM_INFO_ID:
        return text("Stream" + std::to_string(p.indexOf(stream)), type, buf, size);
      case STREAM_INFO_NUM_DELIVERED:
        return number(stream.delivered, INFO_DATATYPE_UINT64, type, buf, size);
      case STREAM_INFO_NUM_UNDERRUN:
        return number(stream.underruns, INFO_DATATYPE_UINT64, type, buf, size);
      case STREAM_INFO_DEFINES_PAYLOADSIZE:
        return number(static_cast<bool8_t>(p.streamPayload != 0), INFO_DATATYPE_BOOL8, type, buf, size);
      case STREAM_INFO_PAYLOAD_SIZE:
        return number(p.streamPayload, INFO_DATATYPE_SIZET, type, buf, size);
      default:
        return GC_ERR_NOT_IMPLEMENTED;
    }
  });
}
GC_ERROR DSGetBufferInfo(DS_HANDLE ds, BUFFER_HANDLE handle, BUFFER_INFO_CMD cmd, INFO_DATATYPE* type, void* buf,
                         size_t* size) {
  return runStream("DSGetBufferInfo", ds, [&](Producer& p, Stream& stream) -> GC_ERROR {
    const Buffer* buffer = bufferOf(stream, handle);
    if (buffer == nullptr) {
      return GC_ERR_INVALID_HANDLE;
    }
    const auto ordered = p.bufferInfoFailures.find(cmd);
    const GC_ERROR code = ordered != p.bufferInfoFailures.end() ? ordered->second : GC_ERR_SUCCESS;
    if (code <= GC_ERR_ERROR && code >= GC_ERR_BUSY) {
      return code;
    }
    const GC_ERROR status = tellBufferInfo(*buffer, cmd, type, buf, size);
    return code != GC_ERR_SUCCESS ? code : status;
  });
}
GC_ERROR DSClose(DS_HANDLE ds) {
  return runStream("DSClose", ds, [&](Producer& p, Stream& stream) {
    p.call("DSClose(" + std::to_string(p.indexOf(stream)) + ")");
    closeStream(stream, "DSClose");
    return GC_ERR_SUCCESS;
  });
}

}  // extern "C"
