// The library with the manual camera behind it, and its log.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "manual_camera/manual_camera.h"
#include "ovi/ovi.h"

namespace manual {

using Calls = std::vector<std::string>;

/** Messages of the log since the last call, as "level text"; 1 error, 2 warning, 4 info, 8 debug. */
std::vector<std::string> takeLog();

/** Expects a message since the last call that begins like this; nothing for an empty beginning. */
void expectLogged(const std::string& beginning);

/** Finds the manual camera, opens it, and closes everything again. */
class ManualCameraTest : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  Script& script() { return *script_; }
  std::uint64_t device() const { return device_; }
  void open();
  void closeDevice();
  /** The device is closed already. */
  void forgetDevice() { device_ = 0; }

  /** A stream with its event for filled buffers; the log of the calls so far is dropped. */
  struct Stream {
    std::uint64_t handle = 0;
    std::uint64_t event = 0;
  };
  Stream openStream(std::uint32_t index = 0, std::uint32_t buffers = 3);
  void start() { ASSERT_EQ(oviStartAcquisition(device_, 0xFFFFFFFF), OVI_SUCCESS); }
  /** The record of a frame that is delivered now, or null. */
  oviNewBufferEventData* take(const Stream& stream, const Frame& frame = {});

 private:
  Script* script_ = nullptr;
  void* library_ = nullptr;
  std::uint64_t device_ = 0;
};

}  // namespace manual
