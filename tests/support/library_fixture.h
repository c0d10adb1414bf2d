// The library with the scripted camera behind it, and its log.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "gtest/gtest.h"
#include "ovi/ovi.h"
#include "scripted_camera.h"

namespace scripted {

/** A log line: the callback's level (1 error, 2 warning, 4 info, 8 debug) and its text. */
using LogLine = std::pair<std::uint32_t, std::string>;

/** What was logged since the last call, of that level or graver. */
std::vector<LogLine> takeLog(std::uint32_t level = 2);

/** The text of the first line that contains `part`, or "". */
std::string findInLog(const std::vector<LogLine>& log, const std::string& part);

/** A description with the port node "Device", a constant "NotAvailable" 0 and "Root" over the features named. */
std::string describe(const std::string& features, const std::string& nodes);

/** Opens and closes the scripted camera around each test. */
class ScriptedCameraTest : public testing::Test {
 protected:
  /** @param producer  "ScriptedCamera", or "gevtls2i" for a producer that the library treats specially */
  explicit ScriptedCameraTest(std::string producer = "ScriptedCamera") : producer_(std::move(producer)) {}

  void SetUp() override;
  void TearDown() override;

  /** Makes the camera speak that description from the next open on. */
  Script& script() { return *script_; }
  void open();
  void close();
  std::uint64_t device() const { return device_; }

 private:
  std::string producer_;
  Script* script_ = nullptr;
  void* library_ = nullptr;
  std::uint64_t device_ = 0;
};

}  // namespace scripted
