// What applications do with the library, each as one run over the virtual camera that tells whether all of it was
// right.
#include "journeys.h"

#include <atomic>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <thread>
#include <vector>

namespace proof {

namespace {

constexpr const char* kDevice = "VC-KV032003";
constexpr std::uint64_t kPatience = 300;  // Milliseconds, for whatever comes at once unless something is broken.
constexpr int kMany = 110;                // So that a journey's central calls happen more than a hundred times.
constexpr std::uint64_t kFirstRegister = 0x10000;

bool done(std::int32_t code) {
  return code == OVI_SUCCESS;
}

void ignoreLog(std::uint32_t /*level*/, const char* /*message*/, void* userData) {
  ++*static_cast<std::uint64_t*>(userData);
}

void initialise(Verdict& verdict) {
  static std::uint64_t lines = 0;
  static bool attached = false;
  verdict.expect(done(oviInit(OVI_LOG_LEVEL_DEBUG, attached ? nullptr : ignoreLog, &lines)), "oviInit");
  attached = true;
}

void discover(const World& world, Verdict& verdict) {
  const auto found = std::make_unique<oviDiscoveryInfo>();
  initialise(verdict);
  verdict.expect(done(oviDiscoverDevices(found.get(), kPatience, nullptr, world.producers.c_str(), 1)),
                 "oviDiscoverDevices");
  verdict.expect(found->deviceCount > 0, "cameras are found");
  if (world.expected != nullptr)
    verdict.expect(std::memcmp(found.get(), world.expected.get(), sizeof *found) == 0, "all cameras are described");
}

void start(const World& world, Verdict& verdict) {
  oviClose();
  discover(world, verdict);
}

class Camera {
 public:
  explicit Camera(Verdict& verdict) : verdict_(verdict) {
    verdict.expect(done(oviOpenDevice(kDevice, &handle_, kPatience, OVI_DEVICE_ACCESS_CONTROL)), "oviOpenDevice");
  }
  Camera(const Camera&) = delete;
  Camera& operator=(const Camera&) = delete;
  ~Camera() {
    if (handle_ != 0)
      verdict_.expect(done(oviCloseDevice(handle_)), "oviCloseDevice");
  }
  operator std::uint64_t() const noexcept { return handle_; }

 private:
  Verdict& verdict_;
  std::uint64_t handle_ = 0;
};

void open(const World& /*world*/, Verdict& verdict) {
  const Camera camera(verdict);
  bool special = true;
  verdict.expect(done(oviIsUsingS2iTL(camera, &special)) && !special, "oviIsUsingS2iTL");
}

void readModules(std::uint64_t camera, Verdict& verdict) {
  const struct {
    std::uint32_t selector;
    const char* feature;
  } modules[] = {{OVI_MODULE_SYSTEM, "TLVendorName"},
                 {OVI_MODULE_INTERFACE, "InterfaceID"},
                 {OVI_MODULE_LOCAL_DEVICE, "DeviceID"}};
  for (const auto& [selector, feature] : modules) {
    char text[512];
    std::size_t size = sizeof text;
    verdict.expect(done(oviGetFeatureString(camera, feature, text, &size, selector)) && text[0] != 0,
                   "a module's text is read");
  }
  std::uint32_t streams = 0;
  oviDataStreamInfo info{};
  verdict.expect(done(oviGetNumberOfDataStreams(camera, &streams)) && streams == 1, "oviGetNumberOfDataStreams");
  verdict.expect(done(oviGetDataStreamInfo(camera, 0, &info)) && info.id[0] != 0, "oviGetDataStreamInfo");
}

void read(const World& /*world*/, Verdict& verdict) {
  const Camera camera(verdict);
  constexpr std::uint32_t kRemote = OVI_MODULE_REMOTE_DEVICE;
  std::int64_t width = 0;
  std::int64_t size = 0;
  double exposure = 0;
  bool reversed = true;
  char model[512];
  std::size_t modelSize = sizeof model;
  const auto record = std::make_unique<oviFeatureParameter>();
  verdict.expect(done(oviGetFeatureInt(camera, "Width", &width, kRemote)) && width == 320, "oviGetFeatureInt");
  verdict.expect(done(oviGetFeatureFloat(camera, "ExposureTime", &exposure, kRemote)) && exposure > 0,
                 "oviGetFeatureFloat");
  verdict.expect(done(oviGetFeatureBool(camera, "ReverseX", &reversed, kRemote)) && !reversed, "oviGetFeatureBool");
  verdict.expect(done(oviGetFeatureString(camera, "DeviceModelName", model, &modelSize, kRemote)) &&
                     std::strcmp(model, "VC-320HS") == 0,
                 "oviGetFeatureString");
  verdict.expect(done(oviGetFeatureEnum(camera, "PixelFormat", record.get(), kRemote)) &&
                     std::strcmp(record->stringValue, "Mono8") == 0,
                 "oviGetFeatureEnum");
  verdict.expect(done(oviGetFeatureParameter(camera, "Height", record.get(), kRemote)) && record->intValue == 240,
                 "oviGetFeatureParameter");
  verdict.expect(done(oviGetImageSize(camera, &size)) && size == 320 * 240, "oviGetImageSize");
  char child[512];
  std::uint32_t type = 0;
  std::uint32_t children = 0;
  while (done(oviIterateFeatureTree(camera, "Root", children, child, sizeof child, &type, kRemote)))
    ++children;
  verdict.expect(children > 5, "oviIterateFeatureTree");
  for (int i = 0; i < kMany; ++i) {
    std::uint8_t memory[4];
    verdict.expect(done(oviReadMemory(camera, kFirstRegister, memory, sizeof memory)), "oviReadMemory");
  }
  readModules(camera, verdict);
}

void write(const World& /*world*/, Verdict& verdict) {
  const Camera camera(verdict);
  constexpr std::uint32_t kRemote = OVI_MODULE_REMOTE_DEVICE;
  std::int64_t width = 0;
  for (int i = 0; i < kMany; ++i) {
    const std::int64_t wanted = i % 2 == 0 ? 160 : 320;
    verdict.expect(done(oviSetFeatureInt(camera, "Width", wanted, kRemote)), "oviSetFeatureInt");
  }
  verdict.expect(done(oviGetFeatureInt(camera, "Width", &width, kRemote)) && width == 320, "the last write counts");
  char text[512] = "";
  std::size_t size = sizeof text;
  verdict.expect(done(oviSetFeatureString(camera, "DeviceUserID", "proved", kRemote)), "oviSetFeatureString");
  verdict.expect(
      done(oviGetFeatureString(camera, "DeviceUserID", text, &size, kRemote)) && std::strcmp(text, "proved") == 0,
      "the text is there");
  verdict.expect(done(oviSetFeatureFloat(camera, "ExposureTime", 500, kRemote)), "oviSetFeatureFloat");
  verdict.expect(done(oviSetFeatureBool(camera, "ReverseX", true, kRemote)), "oviSetFeatureBool");
  verdict.expect(done(oviSetFeature(camera, "ReverseX", "0")), "oviSetFeature");
  verdict.expect(done(oviSetFeatureEnum(camera, "PixelFormat", "Mono8", kRemote)), "oviSetFeatureEnum");
  verdict.expect(done(oviExecuteCommand(camera, "TimestampLatch", kRemote)), "oviExecuteCommand");
  bool active = true;
  verdict.expect(done(oviIsCommandActive(camera, "TimestampLatch", &active, kRemote)) && !active, "oviIsCommandActive");
}

class Stream {
 public:
  Stream(std::uint64_t camera, Verdict& verdict) : camera_(camera), verdict_(verdict) {
    verdict.expect(done(oviSetFeatureBool(camera, "SpeedMode", true, OVI_MODULE_REMOTE_DEVICE)), "SpeedMode");
    verdict.expect(done(oviCreateDataStream(camera, 0, &stream_, 4, 0)), "oviCreateDataStream");
    verdict.expect(done(oviRegisterEvent(stream_, OVI_EVENT_NEW_BUFFER, &event_, OVI_MODULE_DATA_STREAM)),
                   "oviRegisterEvent");
  }
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;
  ~Stream() {
    if (event_ != 0)
      verdict_.expect(done(oviUnregisterEvent(event_)), "oviUnregisterEvent");
    if (stream_ != 0)
      verdict_.expect(done(oviCloseDataStream(stream_)), "oviCloseDataStream");
    verdict_.expect(done(oviSetFeatureBool(camera_, "SpeedMode", false, OVI_MODULE_REMOTE_DEVICE)), "SpeedMode");
  }

  /** From a start to a stop, with another thread that takes images and goes on until its wait is ended. */
  void run() {
    verdict_.expect(done(oviStartAcquisition(camera_, OVI_INFINITE_IMAGES)), "oviStartAcquisition");
    std::atomic<bool> enough{false};
    Verdict images;
    std::thread taker([&] { takeAll(enough, images); });
    enough.wait(false);
    verdict_.expect(done(oviStopAcquisition(camera_)), "oviStopAcquisition");
    taker.join();
    verdict_.expect(images.good(), images.firstFailure());
    oviAcquistionStatistics statistics{};
    verdict_.expect(done(oviGetAcquisitionStatistics(stream_, &statistics)) && statistics.delivered >= kMany,
                    "oviGetAcquisitionStatistics");
  }

  /** A few images by copy, then an abort. */
  void runBriefly() {
    verdict_.expect(done(oviStartAcquisition(camera_, 3)), "oviStartAcquisition");
    for (int i = 0; i < 3; ++i) {
      oviNewBufferEventData record{};
      if (!verdict_.expect(done(oviGetNextImage(event_, &record, kPatience)), "oviGetNextImage"))
        break;
      verdict_.expect(done(oviReleaseImage(stream_, &record)), "oviReleaseImage");
    }
    verdict_.expect(done(oviAbortAcquisition(camera_)), "oviAbortAcquisition");
    verdict_.expect(done(oviCheckAndReallocBuffers(camera_)), "oviCheckAndReallocBuffers");
  }

 private:
  void takeAll(std::atomic<bool>& enough, Verdict& images) const {
    int failures = 0;
    for (int taken = 0; failures < 3;) {
      void* data = nullptr;
      const oviErr code = oviWaitForEvent(event_, kPatience, &data);
      if (code == OVI_ERR_ABORTED || (enough && code == OVI_ERR_TIMEOUT))
        break;
      if (!images.expect(done(code), "oviWaitForEvent")) {
        ++failures;
        continue;
      }
      auto* const image = static_cast<oviNewBufferEventData*>(data);
      images.expect(image->event.value != nullptr && image->event.valueSize == 320 * 240, "an image is whole");
      const bool released = done(oviReleaseImage(stream_, image));
      images.expect(released || enough, "oviReleaseImage");  // The stop may have taken the buffer back by then.
      if (++taken == kMany) {
        enough = true;
        enough.notify_all();
      }
    }
    images.expect(enough, "there are images enough");
    enough = true;
    enough.notify_all();
  }

  std::uint64_t camera_;
  Verdict& verdict_;
  std::uint64_t stream_ = 0;
  std::uint64_t event_ = 0;
};

void watchModule(std::uint64_t camera, Verdict& verdict) {
  std::uint64_t event = 0;
  if (!verdict.expect(done(oviRegisterEvent(camera, OVI_EVENT_MODULE, &event, OVI_MODULE_LOCAL_DEVICE)),
                      "oviRegisterEvent"))
    return;
  void* data = nullptr;
  verdict.expect(oviWaitForEvent(event, 0, &data) == OVI_ERR_TIMEOUT, "nothing happens");
  verdict.expect(done(oviEventKill(event)), "oviEventKill");
  verdict.expect(done(oviUnregisterEvent(event)), "oviUnregisterEvent");
}

void stream(const World& /*world*/, Verdict& verdict) {
  const Camera camera(verdict);
  watchModule(camera, verdict);
  Stream images(camera, verdict);
  images.run();
  images.runBriefly();
}

void countImage(std::uint8_t* imageData, oviImageInfo* info, std::uint8_t ok);
std::atomic<int> scanned{0};

void countImage(std::uint8_t* imageData, oviImageInfo* info, std::uint8_t ok) {
  scanned += imageData != nullptr && info->width == 320 && ok != 0 ? 1 : 0;
}

void scan(const World& /*world*/, Verdict& verdict) {
  const Camera camera(verdict);
  oviImageInfo unchanged{};
  verdict.expect(done(oviSetImageParameter(camera, &unchanged, kPatience, 1, 0)), "oviSetImageParameter");
  scanned = 0;
  verdict.expect(done(oviScanImg(camera, countImage, kMany, OVI_SCAN_IMAGES, 0)) && scanned == kMany, "oviScanImg");
  std::vector<std::uint8_t> pixels(1024 * 1024);
  verdict.expect(done(oviScanImage(camera, pixels.data())), "oviScanImage");
  oviImageInfo last{};
  verdict.expect(done(oviGetLastImageInfo(&last)) && last.height == 240, "oviGetLastImageInfo");
  std::uint64_t streamHandle = 0;
  std::uint64_t event = 0;
  oviNewBufferEventData record{};
  for (const std::uint32_t phase : {0U, 1U, 1U})
    verdict.expect(done(oviScanImageCont(camera, phase, &streamHandle, &event, &record)), "oviScanImageCont");
  oviScanImageCont(camera, 2, &streamHandle, &event, &record);  // Reports that the stop has released the image already.
  std::uint8_t* const destination = pixels.data();
  oviImageInfo info{};
  verdict.expect(done(oviScanStreamImage(camera, 1, &destination, &info)) && info.width == 320, "oviScanStreamImage");
}

void transfer(const World& /*world*/, Verdict& verdict) {
  const Camera camera(verdict);
  constexpr const char* kSent = "fault_matrix_sent.bin";
  constexpr const char* kReceived = "fault_matrix_received.bin";
  std::string content;
  for (int i = 0; i < 20000; ++i)
    content += static_cast<char>(i * i % 251);
  std::ofstream(kSent, std::ios::binary) << content;
  std::remove(kReceived);
  verdict.expect(done(oviFileDownloadToDevice(camera, kSent, "UserData", kPatience, nullptr, nullptr)),
                 "oviFileDownloadToDevice");
  verdict.expect(done(oviFileUploadFromDevice(camera, kReceived, "UserData", kPatience, nullptr, nullptr)),
                 "oviFileUploadFromDevice");
  std::ifstream file(kReceived, std::ios::binary);
  const std::string received{std::istreambuf_iterator<char>(file), {}};
  verdict.expect(received == content, "what comes back is what was sent");
}

void useEverything(const World& world, Verdict& verdict) {
  start(world, verdict);
  std::uint64_t camera = 0;
  std::uint64_t streamHandle = 0;
  std::uint64_t event = 0;
  verdict.expect(done(oviOpenDevice(kDevice, &camera, kPatience, OVI_DEVICE_ACCESS_CONTROL)), "oviOpenDevice");
  verdict.expect(done(oviCreateDataStream(camera, 0, &streamHandle, 4, 0)), "oviCreateDataStream");
  verdict.expect(done(oviRegisterEvent(streamHandle, OVI_EVENT_NEW_BUFFER, &event, OVI_MODULE_DATA_STREAM)),
                 "oviRegisterEvent");
  verdict.expect(done(oviStartAcquisition(camera, OVI_INFINITE_IMAGES)), "oviStartAcquisition");
}

void close(const World& world, Verdict& verdict) {
  verdict.expect(done(oviClose()), "oviClose");
  discover(world, verdict);
  open(world, verdict);
}

void nothing(const World& /*world*/, Verdict& /*verdict*/) {}

}  // namespace

const std::array<Journey, 8> kJourneys = {{
    {"discover", [](const World&, Verdict&) { oviClose(); }, discover},
    {"open", nothing, open},
    {"read", nothing, read},
    {"write", nothing, write},
    {"stream", nothing, stream},
    {"scan", nothing, scan},
    {"transfer", nothing, transfer},
    {"close", useEverything, close},
}};

}  // namespace proof
