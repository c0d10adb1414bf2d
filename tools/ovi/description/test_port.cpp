// Ports that stand for a camera when a description is tried without one.
#include "description/test_port.h"

#include <Base/GCException.h>

#include <cinttypes>
#include <cstring>

namespace tool {

namespace {

class ZeroPort : public GenApi::IPort {
 public:
  GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }
  void Read(void* buffer, std::int64_t /*address*/, std::int64_t length) override {
    std::memset(buffer, 0, static_cast<std::size_t>(length));
  }
  void Write(const void* /*buffer*/, std::int64_t /*address*/, std::int64_t /*length*/) override {}
};

class RandomPort : public ZeroPort {
 public:
  explicit RandomPort(std::uint64_t seed) : seed_(seed) {}

  void Read(void* buffer, std::int64_t address, std::int64_t length) override {
    auto* const bytes = static_cast<std::uint8_t*>(buffer);
    for (std::int64_t i = 0; i < length; ++i) {
      const std::uint64_t at = static_cast<std::uint64_t>(address) + static_cast<std::uint64_t>(i);
      bytes[i] = static_cast<std::uint8_t>(mixed(seed_ ^ mixed(at)) >> 56U);
    }
  }

 private:
  static std::uint64_t mixed(std::uint64_t x) {
    x += 0x9E3779B97F4A7C15U;
    x = (x ^ (x >> 30U)) * 0xBF58476D1CE4E5B9U;
    x = (x ^ (x >> 27U)) * 0x94D049BB133111EBU;
    return x ^ (x >> 31U);
  }

  std::uint64_t seed_;
};

class FailingPort : public GenApi::IPort {
 public:
  GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }
  void Read(void* /*buffer*/, std::int64_t address, std::int64_t length) override {
    throw RUNTIME_EXCEPTION("reading %" PRId64 " bytes at 0x%" PRIx64 " fails on request", length,
                            static_cast<std::uint64_t>(address));
  }
  void Write(const void* /*buffer*/, std::int64_t address, std::int64_t length) override {
    throw RUNTIME_EXCEPTION("writing %" PRId64 " bytes at 0x%" PRIx64 " fails on request", length,
                            static_cast<std::uint64_t>(address));
  }
};

}  // namespace

std::unique_ptr<GenApi::IPort> makeZeroPort() {
  return std::make_unique<ZeroPort>();
}

std::unique_ptr<GenApi::IPort> makeRandomPort(std::uint64_t seed) {
  return std::make_unique<RandomPort>(seed);
}

std::unique_ptr<GenApi::IPort> makeFailingPort() {
  return std::make_unique<FailingPort>();
}

}  // namespace tool
