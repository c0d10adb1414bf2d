// The orders by which tests make the producer fail; what they mean stands in ovi_virtual/hostility.h.
#pragma once

#include <gentl_interface/GenTL.h>
#include <ovi_virtual/hostility.h>

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "modules/functions.h"

namespace vcam {

class Hostility {
 public:
  static Hostility& instance();

  // The only thing that is paid for when no order was ever given.
  static bool armed() noexcept { return armed_.load(std::memory_order_relaxed); }

  // Counts the call, holds it when it is to be blocked, and returns the code with which it is to fail at once.
  GC_ERROR enter(Function function);

  // What is to happen to an answer of the call that this thread is in.
  std::optional<OviVirtualText> textSpoiler(std::int32_t command);
  std::optional<INFO_DATATYPE> typeSpoiler(std::int32_t command);
  std::size_t missingBytes();

  // A sum of OviVirtualFrame for the next frame of the device.
  std::uint32_t nextFrame(const std::string& device);
  bool isPaused(const std::string& device);
  std::uint64_t updateDelayMs() const;

  // Orders.
  bool fail(const char* function, GC_ERROR code, std::uint64_t from, std::uint64_t calls);
  bool block(const char* function, std::uint64_t from, std::uint64_t calls);
  bool release(const char* function);
  std::uint32_t blocked() const;
  bool spoilText(const char* function, std::int32_t command, OviVirtualText how, std::uint64_t calls);
  bool spoilType(const char* function, std::int32_t command, INFO_DATATYPE type, std::uint64_t calls);
  void shortReads(std::uint32_t missing, std::uint64_t from, std::uint64_t calls);
  bool spoilFrames(const char* device, std::uint32_t how, std::uint64_t from, std::uint64_t frames);
  bool pauseFrames(const char* device, bool paused);
  void slowUpdates(std::uint64_t milliseconds);
  void startCounting();
  std::uint64_t calls(const char* function);
  void reset();

 private:
  // Whether the call or frame that is counted now lies in the span of an order.
  struct Span {
    std::uint64_t from = 1;
    std::uint64_t length = 0;
    std::uint64_t seen = 0;
    bool hits() {
      ++seen;
      return seen >= from && seen - from < length;
    }
  };
  struct Failing {
    Function function;
    GC_ERROR code;
    Span span;
  };
  struct Blocking {
    Function function;
    Span span;
  };
  struct SpoiledText {
    Function function;
    std::int32_t command;
    OviVirtualText how;
    Span span;
  };
  struct SpoiledType {
    Function function;
    std::int32_t command;
    INFO_DATATYPE type;
    Span span;
  };
  struct SpoiledFrames {
    std::string device;
    std::uint32_t how;
    Span span;
  };

  static std::optional<Function> find(const char* name);
  static bool matches(const std::string& order, const std::string& device) { return order.empty() || order == device; }
  void arm() { armed_.store(true, std::memory_order_relaxed); }

  inline static std::atomic<bool> armed_{false};

  mutable std::mutex mutex_;
  std::condition_variable released_;
  std::array<std::uint64_t, kFunctionNames.size()> releases_{};  // grows with each release of the function
  std::uint32_t blockedCalls_ = 0;
  std::vector<Failing> failing_;
  std::vector<Blocking> blocking_;
  std::vector<SpoiledText> texts_;
  std::vector<SpoiledType> types_;
  std::vector<SpoiledFrames> frames_;
  std::vector<std::string> paused_;
  std::uint32_t missing_ = 0;
  Span shortReads_;
  std::uint64_t updateDelayMs_ = 0;
  bool counting_ = false;
  std::array<std::uint64_t, kFunctionNames.size()> counts_{};
};

}  // namespace vcam
