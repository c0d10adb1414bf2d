// The manual camera's events: registered, waited for, killed.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "calls.h"

namespace manual {
namespace {

Event* eventOf(EVENTSRC_HANDLE module, EVENT_TYPE type) {
  Producer& p = producer();
  for (Stream& stream : p.streams) {
    if (&stream == module && type == EVENT_NEW_BUFFER) {
      return &stream.newBuffer;
    }
  }
  return module == &deviceHandle && type != EVENT_NEW_BUFFER ? &p.deviceEvents[type] : nullptr;
}

/** The buffers whose events are still queued go back to being announced only. */
void discardOutput(Stream& stream) {
  for (const auto& buffer : stream.buffers) {
    if (buffer->state == Buffer::Output) {
      buffer->state = Buffer::Announced;
    }
  }
  stream.newBuffer.queue.clear();
}

}  // namespace
}  // namespace manual

using namespace manual;  // NOLINT: the C functions below are all of this file.

extern "C" {

GC_ERROR GCRegisterEvent(EVENTSRC_HANDLE module, EVENT_TYPE type, EVENT_HANDLE* out) {
  return run("GCRegisterEvent", [&](Producer& p) -> GC_ERROR {
    Event* event = eventOf(module, type);
    if (event == nullptr) {
      return GC_ERR_NOT_IMPLEMENTED;
    }
    if (event->isRegistered) {
      return GC_ERR_RESOURCE_IN_USE;
    }
    event->isRegistered = true;
    event->type = type;
    *out = event;
    p.call("GCRegisterEvent(" + std::to_string(type) + ")");
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR GCUnregisterEvent(EVENTSRC_HANDLE module, EVENT_TYPE type) {
  return run("GCUnregisterEvent", [&](Producer& p) -> GC_ERROR {
    Event* event = eventOf(module, type);
    if (event == nullptr || !event->isRegistered) {
      p.violate("GCUnregisterEvent of nothing");
      return GC_ERR_NOT_INITIALIZED;
    }
    p.call("GCUnregisterEvent(" + std::to_string(type) + ")");
    endRegistration(*event, "GCUnregisterEvent");
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR EventGetData(EVENT_HANDLE handle, void* buf, size_t* size, uint64_t timeoutMs) {
  Producer& p = producer();
  std::unique_lock lock(p.mutex);
  const GC_ERROR ordered = p.ordered(lock, "EventGetData");
  if (ordered != GC_ERR_SUCCESS) {
    return ordered;
  }
  auto& event = *static_cast<Event*>(handle);
  if (!event.isRegistered) {
    p.violate("EventGetData on an event that is not registered");
    return GC_ERR_INVALID_HANDLE;
  }
  const auto isOver = [&] { return event.kills != 0 || !event.queue.empty() || !event.isRegistered; };
  ++event.waiters;
  if (timeoutMs == GENTL_INFINITE) {
    event.changed.wait(lock, isOver);
  } else {
    event.changed.wait_until(lock, std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs), isOver);
  }
  --event.waiters;
  if (!event.isRegistered || event.kills != 0) {
    event.kills -= event.kills != 0 ? 1 : 0;
    return GC_ERR_ABORT;
  }
  if (event.queue.empty()) {
    return GC_ERR_TIMEOUT;
  }
  const std::vector<char> data = std::move(event.queue.front());
  event.queue.pop_front();
  if (event.type == EVENT_NEW_BUFFER) {
    EVENT_NEW_BUFFER_DATA buffer{};
    std::memcpy(&buffer, data.data(), sizeof buffer);
    static_cast<Buffer*>(buffer.BufferHandle)->state = Buffer::Announced;
  }
  *size = std::min(*size, data.size());
  std::memcpy(buf, data.data(), *size);
  return GC_ERR_SUCCESS;
}
GC_ERROR EventGetDataInfo(EVENT_HANDLE handle, const void* in, size_t, EVENT_DATA_INFO_CMD cmd, INFO_DATATYPE* type,
                          void* out, size_t* outSize) {
  return run("EventGetDataInfo", [&](Producer& p) -> GC_ERROR {
    const auto& event = *static_cast<Event*>(handle);
    if (!event.isRegistered) {
      p.violate("EventGetDataInfo on an event that is not registered");
      return GC_ERR_INVALID_HANDLE;
    }
    if (event.type == EVENT_NEW_BUFFER) {
      EVENT_NEW_BUFFER_DATA data{};
      std::memcpy(&data, in, sizeof data);
      return cmd == EVENT_DATA_ID ? number(data.BufferHandle, INFO_DATATYPE_PTR, type, out, outSize)
                                  : static_cast<GC_ERROR>(GC_ERR_NOT_AVAILABLE);
    }
    DeviceEventData data{};
    std::memcpy(&data, in, sizeof data);
    if (cmd == EVENT_DATA_VALUE) {
      return text(data.value, type, out, outSize);
    }
    if (event.type == EVENT_ERROR) {
      return number(static_cast<std::int32_t>(data.id), INFO_DATATYPE_INT32, type, out, outSize);
    }
    std::array<char, 32> digits{};
    std::snprintf(digits.data(), digits.size(), "%04llX", static_cast<unsigned long long>(data.id));
    return text(digits.data(), type, out, outSize);
  });
}
GC_ERROR EventGetInfo(EVENT_HANDLE handle, EVENT_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  return run("EventGetInfo", [&](Producer&) -> GC_ERROR {
    const bool isImage = static_cast<Event*>(handle)->type == EVENT_NEW_BUFFER;
    return cmd == EVENT_SIZE_MAX ? number(isImage ? sizeof(EVENT_NEW_BUFFER_DATA) : sizeof(DeviceEventData),
                                          INFO_DATATYPE_SIZET, type, buf, size)
                                 : static_cast<GC_ERROR>(GC_ERR_NOT_AVAILABLE);
  });
}
GC_ERROR EventFlush(EVENT_HANDLE handle) {
  return run("EventFlush", [&](Producer& p) {
    p.call("EventFlush");
    for (Stream& stream : p.streams) {
      if (&stream.newBuffer == handle) {
        discardOutput(stream);
      }
    }
    static_cast<Event*>(handle)->queue.clear();
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR EventKill(EVENT_HANDLE handle) {
  return run("EventKill", [&](Producer& p) {
    p.call("EventKill");
    auto& event = *static_cast<Event*>(handle);
    ++event.kills;
    event.changed.notify_one();
    return GC_ERR_SUCCESS;
  });
}

}  // extern "C"
