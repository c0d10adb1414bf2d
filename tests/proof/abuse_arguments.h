// Arguments for calls of the library, right and wrong ones, made at random.
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "ovi/ovi.h"

namespace proof {

inline std::string producers;  // The folder of the virtual camera.

inline std::atomic<std::size_t> failedSteps{0};
void report(const std::string& what);

/** All handles that were ever given out, whether they still mean something or not. */
class Handles {
 public:
  void add(std::uint64_t handle) {
    const std::lock_guard lock(mutex_);
    handles_[next_++ % handles_.size()] = handle;
  }
  std::uint64_t at(std::size_t index) {
    const std::lock_guard lock(mutex_);
    return handles_[index % handles_.size()];
  }

 private:
  std::mutex mutex_;
  std::array<std::uint64_t, 24> handles_{};
  std::size_t next_ = 0;
};

inline Handles handles;

void OVI_CALL onLog(std::uint32_t level, const char* message, void* userData);
void OVI_CALL onDiscovery(oviDiscoveryInfo* info);
void OVI_CALL onInvalidate(const char* featureName, void* context);
void OVI_CALL onImage(std::uint8_t* imageData, oviImageInfo* info, std::uint8_t ok);
std::uint8_t OVI_CALL onTransfer(const oviFileTransferProgress* progress, void* context);

/** Makes arguments, one after the other, and keeps what they point to until the call is over. */
class Arguments {
 public:
  explicit Arguments(std::uint32_t seed) : random_(seed) {}

  std::size_t any(std::size_t count) { return std::uniform_int_distribution<std::size_t>(0, count - 1)(random_); }

  void begin() {
    memory_.clear();
    outs_.clear();
    records_.clear();
    hasUnknownHandle_ = false;
  }

  /** After a call that succeeded: what it gave out can be used. */
  void harvest() const;

  /** Whether the call was given a handle that was never issued. */
  bool hasUnknownHandle() const noexcept { return hasUnknownHandle_; }

  /**
   * An argument of type T. Its role:
   *   h       a handle; E a variable with one
   *   n       a name or a value as text; w the same in memory of at least 512 bytes, which are what a register is
   *           written from
   *   D       a device's ID; p a path; q a producer's path; A a search path
   *   o       memory of the size that follows in z (or in the variable of Z); B the same to read from
   *   T       a text of 512 bytes; X one of 300
   *   S       room for an image; P room for images; L a list with room for features
   *   e       one object to be filled; O the same, never null; R a record with anything in it
   *   c       a callback; x its context; 0 null
   *   s       a module selector; t a time-out; i a number; C, Q number and size of buffers
   *   j u m k arguments of scans
   */
  template<class T>
  T make(char role) {
    if constexpr (std::is_same_v<T, double>) {
      constexpr double kValues[] = {0,
                                    -1,
                                    1.5,
                                    1e300,
                                    -1e-300,
                                    std::numeric_limits<double>::infinity(),
                                    std::numeric_limits<double>::quiet_NaN()};
      return kValues[any(std::size(kValues))];
    } else if constexpr (!std::is_pointer_v<T>) {
      return static_cast<T>(number(role));
    } else if constexpr (std::is_function_v<std::remove_pointer_t<T>>) {
      return role == '0' || any(4) == 0 ? nullptr : callback(T{});
    } else {
      return role != 'O' && (role == '0' || any(8) == 0) ? nullptr : pointer<T>(role);
    }
  }

 private:
  static constexpr std::size_t kImageRoom = std::size_t{8} * 1024 * 1024;
  static constexpr std::size_t kFeatureRoom = 2000;

  std::uint64_t number(char role);
  std::uint64_t handle();
  const char* text(char role);
  /** Memory of exactly that size, so that a sanitizer sees what goes beyond it. */
  void* allocate(std::size_t size, bool filled = false);
  void* memory(char role, std::size_t objectSize, bool isHandle, bool isRecord);

  template<class T>
  T pointer(char role) {
    using Object = std::remove_cv_t<std::remove_pointer_t<T>>;
    if constexpr (std::is_same_v<T, const char*>) {
      if (role != 'w')
        return text(role);
      const char* const value = text(role);
      const std::size_t length = std::strlen(value);
      return static_cast<T>(std::memcpy(allocate(std::max<std::size_t>(512, length + 1)), value, length));
    } else if constexpr (std::is_same_v<Object, FEATURE_PARAM_LIST_STRUCT>) {
      features_.resize(kFeatureRoom);
      auto* const list = static_cast<T>(allocate(sizeof(Object)));
      list->features = any(4) == 0 ? nullptr : features_.data();
      return list;
    } else if constexpr (std::is_same_v<Object, std::uint8_t*>) {
      image_.resize(kImageRoom);
      auto* const rooms = static_cast<std::uint8_t**>(allocate(sizeof(std::uint8_t*) * 3));
      std::fill_n(rooms, 3, any(4) == 0 ? nullptr : image_.data());
      return rooms;
    } else if constexpr (std::is_same_v<Object, oviImageInfo>) {
      return static_cast<T>(allocate(sizeof(Object) * 3, role == 'R'));
    } else {
      return static_cast<T>(memory(role, objectSize<Object>(), std::is_same_v<Object, std::uint64_t>,
                                   std::is_same_v<Object, oviNewBufferEventData>));
    }
  }

  template<class Object>
  static constexpr std::size_t objectSize() {
    if constexpr (std::is_void_v<Object>)
      return 64;
    else
      return sizeof(Object);
  }

  static oviLogCallback callback(oviLogCallback) { return onLog; }
  static oviDiscoveryCallback callback(oviDiscoveryCallback) { return onDiscovery; }
  static oviInvalidateCallback callback(oviInvalidateCallback) { return onInvalidate; }
  static oviScanCallback callback(oviScanCallback) { return onImage; }
  static oviFileTransferCallback callback(oviFileTransferCallback) { return onTransfer; }

  std::mt19937 random_;
  std::size_t size_ = 0;
  bool hasUnknownHandle_ = false;
  std::vector<std::unique_ptr<std::uint8_t[]>> memory_;
  std::vector<const std::uint64_t*> outs_;
  std::vector<const oviNewBufferEventData*> records_;
  std::vector<std::uint8_t> image_;
  std::vector<oviFeatureParameter> features_;
};

}  // namespace proof
