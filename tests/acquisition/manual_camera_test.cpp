// The library with the manual camera behind it, and its log.
#include "manual_camera_test.h"

#include <memory>
#include <mutex>
#include <utility>

#include "platform/platform.h"

namespace manual {
namespace {

std::mutex logMutex;
std::vector<std::string> logLines;

void keepLine(std::uint32_t level, const char* message, void* /*userData*/) {
  const std::lock_guard lock(logMutex);
  logLines.push_back(std::to_string(level) + " " + message);
}

}  // namespace

std::vector<std::string> takeLog() {
  const std::lock_guard lock(logMutex);
  return std::exchange(logLines, {});
}

void expectLogged(const std::string& beginning) {
  const std::vector<std::string> lines = takeLog();
  if (!beginning.empty()) {
    EXPECT_THAT(lines, testing::Contains(testing::StartsWith(beginning)));
  }
}

void ManualCameraTest::SetUp() {
  const std::string directory = MANUAL_CAMERA_DIR;
  library_ = OVI::platform::loadLibrary(directory + "/ManualCamera.cti");
  ASSERT_NE(library_, nullptr) << OVI::platform::lastErrorText();
  script_ = reinterpret_cast<GetScript>(OVI::platform::resolve(library_, kGetScriptName))();
  script_->reset();
  // The callback is attached once: a second time every line would come twice.
  static bool isAttached = false;
  ASSERT_EQ(oviInit(8, std::exchange(isAttached, true) ? nullptr : keepLine, nullptr), OVI_SUCCESS);
  const auto info = std::make_unique<oviDiscoveryInfo>();
  ASSERT_EQ(oviDiscoverDevices(info.get(), 1000, nullptr, directory.c_str(), 1), OVI_SUCCESS);
  open();
}

void ManualCameraTest::TearDown() {
  if (device_ != 0) {
    closeDevice();
  }
  oviClose();
  EXPECT_THAT(script_->violations(), testing::IsEmpty());
  OVI::platform::unload(library_);
  takeLog();
}

void ManualCameraTest::open() {
  ASSERT_EQ(oviOpenDevice(kDeviceId, &device_, 1000, DEVICE_ACCESS_CONTROL), OVI_SUCCESS);
  script_->takeCalls();
  takeLog();
}

void ManualCameraTest::closeDevice() {
  EXPECT_EQ(oviCloseDevice(device_), OVI_SUCCESS);
  device_ = 0;
}

ManualCameraTest::Stream ManualCameraTest::openStream(std::uint32_t index, std::uint32_t buffers) {
  Stream stream;
  EXPECT_EQ(oviCreateDataStream(device_, index, &stream.handle, buffers, 0), OVI_SUCCESS);
  EXPECT_EQ(oviRegisterEvent(stream.handle, OVI_EVENT_NEW_BUFFER, &stream.event, OVI_MODULE_DATA_STREAM), OVI_SUCCESS);
  script_->takeCalls();
  return stream;
}

oviNewBufferEventData* ManualCameraTest::take(const Stream& stream, const Frame& frame) {
  EXPECT_TRUE(script_->deliver(0, frame));
  void* record = nullptr;
  EXPECT_EQ(oviWaitForEvent(stream.event, 1000, &record), OVI_SUCCESS);
  return static_cast<oviNewBufferEventData*>(record);
}

}  // namespace manual
