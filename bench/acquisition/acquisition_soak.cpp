// Takes images at full speed for minutes, stops, starts and reopens on the way, and watches that nothing grows or is
// lost.
#include <algorithm>
#include <chrono>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "ovi/ovi.h"

namespace {

constexpr std::uint32_t kBuffers = 16;

/** What the process holds, as the system counts it; zeros where the system does not tell. */
struct Holdings {
  long residentKilobytes = 0;
  long threads = 0;
  long files = 0;
};

Holdings holdings() {
  Holdings now;
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind("VmRSS:", 0) == 0) {
      now.residentKilobytes = std::atol(line.c_str() + 6);
    } else if (line.rfind("Threads:", 0) == 0) {
      now.threads = std::atol(line.c_str() + 8);
    }
  }
  std::error_code none;
  for (const auto& file : std::filesystem::directory_iterator("/proc/self/fd", none)) {
    static_cast<void>(file);
    ++now.files;
  }
  return now;
}

int failures = 0;

void expect(bool holds, const char* what) {
  if (!holds) {
    ++failures;
    std::printf("FAILED: %s\n", what);
  }
}

/** A stream of the camera from its opening to its closing. */
class Session {
 public:
  explicit Session(const char* deviceId) {
    expect(oviOpenDevice(deviceId, &device_, 1000, 3) == OVI_SUCCESS, "the camera opens");
    expect(oviSetFeatureBool(device_, "SpeedMode", true, OVI_MODULE_REMOTE_DEVICE) == OVI_SUCCESS, "SpeedMode is on");
    expect(oviCreateDataStream(device_, 0, &stream_, kBuffers, 0) == OVI_SUCCESS, "the stream opens");
    expect(oviRegisterEvent(stream_, OVI_EVENT_NEW_BUFFER, &event_, OVI_MODULE_DATA_STREAM) == OVI_SUCCESS,
           "the event registers");
  }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  ~Session() {
    expect(oviUnregisterEvent(event_) == OVI_SUCCESS, "the event unregisters");
    expect(oviCloseDataStream(stream_) == OVI_SUCCESS, "the stream closes");
    expect(oviCloseDevice(device_) == OVI_SUCCESS, "the camera closes");
  }

  /** From a start to a stop. @return the images, which follow one another without a gap */
  std::uint64_t run(std::chrono::steady_clock::time_point end) {
    expect(oviStartAcquisition(device_, 0xFFFFFFFF) == OVI_SUCCESS, "acquisition starts");
    std::uint64_t images = 0;
    std::uint64_t frame = 0;
    while (images % 1024 != 0 || std::chrono::steady_clock::now() < end) {
      void* data = nullptr;
      if (oviWaitForEvent(event_, 1000, &data) != OVI_SUCCESS) {
        expect(false, "an image comes within a second");
        break;
      }
      auto* image = static_cast<oviNewBufferEventData*>(data);
      if (images != 0 && image->frameID != frame + 1) {
        expect(false, "no frame is missing");
      }
      frame = image->frameID;
      ++images;
      expect(oviReleaseImage(stream_, image) == OVI_SUCCESS, "the image is released");
    }
    oviAcquistionStatistics counted{};
    expect(oviGetAcquisitionStatistics(stream_, &counted) == OVI_SUCCESS, "the stream counts");
    // What lies delivered in the output queue has not been taken: a whole pool at most.
    expect(counted.delivered >= images && counted.delivered - images <= kBuffers, "the producer counts the same");
    expect(oviStopAcquisition(device_) == OVI_SUCCESS, "acquisition stops");
    return images;
  }

 private:
  std::uint64_t device_ = 0;
  std::uint64_t stream_ = 0;
  std::uint64_t event_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  using Clock = std::chrono::steady_clock;
  const double minutes = argc > 1 ? std::atof(argv[1]) : 5;
  const std::string producers = std::filesystem::absolute(argv[0]).parent_path().string();
  expect(oviInit(1, nullptr, nullptr) == OVI_SUCCESS, "the library starts");
  const auto found = std::make_unique<oviDiscoveryInfo>();
  const auto camera = std::make_unique<oviDeviceInfo>();
  expect(oviDiscoverDevices(found.get(), 1000, nullptr, producers.c_str(), 1) == OVI_SUCCESS, "discovery works");
  expect(oviGetDeviceInfo(0, camera.get()) == OVI_SUCCESS, "there is a camera");
  if (failures != 0) {
    return 1;
  }

  const Clock::time_point begin = Clock::now();
  const Clock::time_point end =
      begin + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(minutes * 60));
  std::uint64_t images = 0;
  unsigned sessions = 0;
  Holdings settled;  // After the first tenth, when everything has been used once.
  Holdings now;
  Clock::time_point nextReport = begin;
  while (Clock::now() < end && failures < 10) {
    {
      Session session(camera->deviceID);
      for (int run = 0; run < 3; ++run) {
        images += session.run(std::min(end, Clock::now() + std::chrono::milliseconds(500)));
      }
    }
    ++sessions;
    now = holdings();
    if (Clock::now() - begin < (end - begin) / 10 || settled.threads == 0) {
      settled = now;
    }
    if (Clock::now() >= nextReport) {
      const std::chrono::duration<double> passed = Clock::now() - begin;
      std::printf("%7.0f s  %14" PRIu64 " images  %10.0f a second  %5u sessions  %8ld KB  %3ld threads  %3ld files\n",
                  passed.count(), images, static_cast<double>(images) / passed.count(), sessions, now.residentKilobytes,
                  now.threads, now.files);
      std::fflush(stdout);
      nextReport = Clock::now() + std::chrono::seconds(15);
    }
  }
  // The records of closed streams stay, 144 bytes a buffer; the rest is the allocator's slack.
  const long recordKilobytes = static_cast<long>(sessions) * kBuffers * 144 / 1024;
  constexpr long kSlackKilobytes = 2048;
  expect(now.residentKilobytes <= settled.residentKilobytes + recordKilobytes + kSlackKilobytes,
         "memory does not grow");
  expect(now.threads <= settled.threads, "threads do not grow");
  expect(now.files <= settled.files, "open files do not grow");
  expect(oviClose() == OVI_SUCCESS, "the library closes");
  std::printf("%" PRIu64 " images, %u sessions, memory %ld KB -> %ld KB, %d failures\n", images, sessions,
              settled.residentKilobytes, now.residentKilobytes, failures);
  return failures == 0 ? 0 : 1;
}
