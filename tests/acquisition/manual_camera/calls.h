// What the GenTL functions of the manual camera have in common.
#pragma once

#include <cstring>
#include <mutex>
#include <string>

#include "producer.h"

namespace manual {

// Handles of the modules that have no state of their own.
inline char systemHandle, interfaceHandle, deviceHandle, remoteHandle;

inline GC_ERROR text(const std::string& value, INFO_DATATYPE* type, void* out, std::size_t* size) {
  if (type != nullptr) {
    *type = INFO_DATATYPE_STRING;
  }
  if (out != nullptr && *size < value.size() + 1) {
    return GC_ERR_BUFFER_TOO_SMALL;
  }
  *size = value.size() + 1;
  if (out != nullptr) {
    std::memcpy(out, value.c_str(), value.size() + 1);
  }
  return GC_ERR_SUCCESS;
}

template<class T>
GC_ERROR number(T value, INFO_DATATYPE kind, INFO_DATATYPE* type, void* out, std::size_t* size) {
  *type = kind;
  if (out != nullptr && *size < sizeof value) {
    return GC_ERR_BUFFER_TOO_SMALL;
  }
  *size = sizeof value;
  if (out != nullptr) {
    std::memcpy(out, &value, sizeof value);
  }
  return GC_ERR_SUCCESS;
}

/** The open stream behind a handle; a closed one is a violation. The lock is held. */
inline Stream* streamOf(DS_HANDLE handle, const char* function) {
  for (Stream& stream : producer().streams) {
    if (&stream == handle && stream.isOpen && producer().isDeviceOpen) {
      return &stream;
    }
  }
  producer().violate(std::string(function) + " on a closed stream");
  return nullptr;
}

/** Calls work(producer) under the lock, unless a failure is ordered. */
template<class Work>
GC_ERROR run(const char* function, Work&& work) {
  Producer& p = producer();
  std::unique_lock lock(p.mutex);
  const GC_ERROR ordered = p.ordered(lock, function);
  return ordered != GC_ERR_SUCCESS ? ordered : work(p);
}

/** The same for an open stream. A call that is ordered to fail may come at any time. */
template<class Work>
GC_ERROR runStream(const char* function, DS_HANDLE handle, Work&& work) {
  return run(function, [&](Producer& p) -> GC_ERROR {
    Stream* stream = streamOf(handle, function);
    return stream != nullptr ? work(p, *stream) : static_cast<GC_ERROR>(GC_ERR_INVALID_HANDLE);
  });
}

/** What a consumer must not do while a call is under way, or a wait. */
inline void closes(const char* what, bool isWaitedFor) {
  if (isWaitedFor || producer().holdsLocked()) {
    producer().violate(std::string(what) + (isWaitedFor ? " under a wait" : " under a call"));
  }
}

inline void endRegistration(Event& event, const char* what) {
  closes(what, event.waiters != 0);
  event.isRegistered = false;
  event.queue.clear();
  event.kills = 0;
  event.changed.notify_all();
}

inline void closeStream(Stream& stream, const char* what) {
  endRegistration(stream.newBuffer, what);
  stream.isOpen = stream.isStarted = false;
  stream.input.clear();
  stream.buffers.clear();
}

}  // namespace manual
