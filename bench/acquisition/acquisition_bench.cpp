// What an image costs through the library, as a multiple of a loop over the same producer without it.
//
// Both take images from the virtual camera in its speed mode, which fills a buffer as soon as it is queued, and ask it
// the same questions about each. The loop without the library has a copy of the producer to itself. Rounds of both
// alternate and the best of each counts, so that one run's ratio says something on a busy machine too.
#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "GenApi/GenApi.h"
#include "allocations.h"
#include "gentl/buffer.h"
#include "gentl/data_stream.h"
#include "gentl/device.h"
#include "gentl/device_info.h"
#include "gentl/event.h"
#include "gentl/feature_list.h"
#include "gentl/interface_info.h"
#include "gentl/producer.h"
#include "gentl/tl_interface.h"
#include "gentl/transport_layer.h"
#include "machine.h"
#include "ovi/ovi.h"
#include "platform/platform.h"
#include "report.h"

namespace {

constexpr std::uint32_t kBuffers = 8;
constexpr int kRounds = 200;
constexpr std::uint64_t kImagesPerRound = 3000;  // Short rounds fit between two time slices of a busy machine.

[[noreturn]] void fail(const std::string& what) {
  std::fprintf(stderr, "acquisition_bench: %s\n", what.c_str());
  std::exit(1);
}

void check(std::int64_t result, const char* what) {
  if (result != 0) {
    fail(std::string(what) + " answers " + std::to_string(result));
  }
}

/** What a loop over images costs. */
struct Cost {
  double nanoseconds = 1e9;  // Per image, the best round.
  double allocations = 0;    // Per image, the worst round.
};

void measure(Cost& cost, std::uint64_t images, const std::function<void(std::uint64_t)>& loop) {
  const std::uint64_t allocationsBefore = bench::allocationCount();
  const auto begin = std::chrono::steady_clock::now();
  loop(images);
  const std::chrono::duration<double, std::nano> time = std::chrono::steady_clock::now() - begin;
  const auto count = static_cast<double>(images);
  cost.nanoseconds = std::min(cost.nanoseconds, time.count() / count);
  cost.allocations =
      std::max(cost.allocations, static_cast<double>(bench::allocationCount() - allocationsBefore) / count);
}

/** The loop without the library, over a producer of its own. */
class RawLoop {
 public:
  explicit RawLoop(const std::string& producerPath) {
    using namespace GenTLCpp;
    producer_ = GenTLProducer::create(producerPath);
    const std::shared_ptr<TransportLayer> system = producer_->openTransportLayer();
    system->updateInterfaceList(1000);
    for (const auto& interfaceInfo : system->getInterfaceInfos()) {
      const std::shared_ptr<TLInterface> interface = interfaceInfo->open();
      interface->updateDeviceList(1000);
      for (const auto& deviceInfo : interface->getDeviceInfos()) {
        if (device_ == nullptr) {
          device_ = deviceInfo->open(DEVICE_ACCESS_CONTROL);
        }
      }
    }
    if (device_ == nullptr) {
      fail("no camera for the raw loop");
    }
    stream_ = device_->openDataStream(std::size_t{0});
    event_ = stream_->registerNewBufferEvent();
    const GenTLCpp::NodeMapPtr map = device_->getRemoteNodeMap();
    GenApi::CBooleanPtr(map->GetNode("SpeedMode"))->SetValue(true);
    const std::int64_t payload = GenApi::CIntegerPtr(map->GetNode("PayloadSize"))->GetValue();
    for (std::uint32_t i = 0; i < kBuffers; ++i) {
      buffers_.push_back(stream_->allocAndAnnounceBuffer(static_cast<std::size_t>(payload), nullptr));
      check(stream_->queueBuffer(*buffers_.back(), false), "DSQueueBuffer");
    }
    check(stream_->startAcquisition(ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE), "DSStartAcquisition");
    GenApi::CCommandPtr(map->GetNode("AcquisitionStart"))->Execute();

    const auto library = stream_->getLibraryHandle();
    getData_ = reinterpret_cast<PEventGetData>(OVI::platform::resolve(library, "EventGetData"));
    getDataInfo_ = reinterpret_cast<PEventGetDataInfo>(OVI::platform::resolve(library, "EventGetDataInfo"));
    getBufferInfo_ = reinterpret_cast<PDSGetBufferInfo>(OVI::platform::resolve(library, "DSGetBufferInfo"));
    queueBuffer_ = reinterpret_cast<PDSQueueBuffer>(OVI::platform::resolve(library, "DSQueueBuffer"));
  }

  void run(std::uint64_t images) {
    constexpr std::array kInfos = {BUFFER_INFO_BASE,   BUFFER_INFO_FRAMEID, BUFFER_INFO_PIXELFORMAT,
                                   BUFFER_INFO_HEIGHT, BUFFER_INFO_WIDTH,   BUFFER_INFO_SIZE_FILLED,
                                   BUFFER_INFO_SIZE};
    DS_HANDLE stream = stream_->getRawHandle();
    EVENT_HANDLE event = event_->getRawHandle();
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    for (std::uint64_t i = 0; i < images; ++i) {
      EVENT_NEW_BUFFER_DATA data{};
      std::size_t size = sizeof data;
      check(getData_(event, &data, &size, 1000), "EventGetData");
      std::uint64_t value = 0;
      size = sizeof value;
      check(getDataInfo_(event, &data, sizeof data, EVENT_DATA_ID, &type, &value, &size), "EventGetDataInfo");
      for (const BUFFER_INFO_CMD info : kInfos) {
        size = sizeof value;
        check(getBufferInfo_(stream, data.BufferHandle, info, &type, &value, &size), "DSGetBufferInfo");
      }
      timestamp_ = OVI::platform::monotonicNanoseconds();
      check(queueBuffer_(stream, data.BufferHandle), "DSQueueBuffer");
    }
  }

 private:
  std::shared_ptr<GenTLCpp::GenTLProducer> producer_;
  std::shared_ptr<GenTLCpp::Device> device_;
  std::shared_ptr<GenTLCpp::DataStream> stream_;
  std::shared_ptr<GenTLCpp::NewBufferEvent> event_;
  std::vector<std::shared_ptr<GenTLCpp::Buffer>> buffers_;
  PEventGetData getData_ = nullptr;
  PEventGetDataInfo getDataInfo_ = nullptr;
  PDSGetBufferInfo getBufferInfo_ = nullptr;
  PDSQueueBuffer queueBuffer_ = nullptr;
  volatile std::uint64_t timestamp_ = 0;
};

/** A stream of a camera that the library has opened. */
class LibraryLoop {
 public:
  explicit LibraryLoop(std::uint32_t cameraIndex) {
    auto info = std::make_unique<oviDeviceInfo>();
    check(oviGetDeviceInfo(cameraIndex, info.get()), "oviGetDeviceInfo");
    check(oviOpenDevice(info->deviceID, &device_, 1000, DEVICE_ACCESS_CONTROL), "oviOpenDevice");
    check(oviSetFeatureBool(device_, "SpeedMode", true, OVI_MODULE_REMOTE_DEVICE), "SpeedMode");
    check(oviCreateDataStream(device_, 0, &stream_, kBuffers, 0), "oviCreateDataStream");
    check(oviRegisterEvent(stream_, OVI_EVENT_NEW_BUFFER, &event_, OVI_MODULE_DATA_STREAM), "oviRegisterEvent");
    check(oviStartAcquisition(device_, 0xFFFFFFFF), "oviStartAcquisition");
  }

  void wait(std::uint64_t images) {
    for (std::uint64_t i = 0; i < images; ++i) {
      void* record = nullptr;
      check(oviWaitForEvent(event_, 1000, &record), "oviWaitForEvent");
      check(oviReleaseImage(stream_, static_cast<oviNewBufferEventData*>(record)), "oviReleaseImage");
    }
  }

  void next(std::uint64_t images) {
    for (std::uint64_t i = 0; i < images; ++i) {
      oviNewBufferEventData record;
      check(oviGetNextImage(event_, &record, 1000), "oviGetNextImage");
      check(oviReleaseImage(stream_, &record), "oviReleaseImage");
    }
  }

 private:
  std::uint64_t device_ = 0;
  std::uint64_t stream_ = 0;
  std::uint64_t event_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  const std::filesystem::path out = std::filesystem::absolute(argc > 0 ? argv[0] : ".").parent_path();
  const std::filesystem::path producer = out / "VirtualCamera.cti";
  const std::filesystem::path copy = std::filesystem::temp_directory_path() / "ovi_bench_VirtualCamera.cti";
  std::filesystem::copy_file(producer, copy, std::filesystem::copy_options::overwrite_existing);
  const std::uint64_t images = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : kImagesPerRound;

  check(oviInit(1, nullptr, nullptr), "oviInit");
  const auto found = std::make_unique<oviDiscoveryInfo>();
  check(oviDiscoverDevices(found.get(), 1000, nullptr, out.string().c_str(), 1), "oviDiscoverDevices");
  if (found->deviceCount < 2) {
    fail("the virtual producer shows less than two cameras");
  }
  RawLoop raw(copy.string());
  LibraryLoop first(0);
  LibraryLoop second(1);

  Cost rawCost;
  Cost waitCost;
  Cost nextCost;
  Cost twoCost;
  bench::MachineScaling machine(2);
  for (int round = 0; round <= kRounds; ++round) {
    if (round == 1) {
      rawCost = waitCost = nextCost = twoCost = {};  // The round before was for warming up.
    }
    measure(rawCost, images, [&](std::uint64_t count) { raw.run(count); });
    measure(waitCost, images, [&](std::uint64_t count) { first.wait(count); });
    measure(nextCost, images, [&](std::uint64_t count) { first.next(count); });
    measure(twoCost, images * 20, [&](std::uint64_t count) {
      std::thread other([&] { second.wait(count / 2); });
      first.wait(count - count / 2);
      other.join();
    });
    machine.round();
  }
  std::filesystem::remove(copy);

  bench::Report report("acquisition_bench");
  const auto row = [&](const char* name, const Cost& cost, double target) {
    report.atMost(std::string(name) + " / without the library", cost.nanoseconds / rawCost.nanoseconds, target,
                  bench::withUnit(cost.nanoseconds, "ns an image"));
    report.atMost(std::string(name) + ", allocations", cost.allocations, 0);
  };
  report.plain("ns an image without the library", rawCost.nanoseconds);
  row("oviWaitForEvent + oviReleaseImage", waitCost, 1.25);
  row("oviGetNextImage + oviReleaseImage", nextCost, 1.3);
  report.atMost("the library's own ns an image", waitCost.nanoseconds - rawCost.nanoseconds, 500);
  report.atLeast("images of two streams on two threads / one", waitCost.nanoseconds / twoCost.nanoseconds, 1.8,
                 bench::withUnit(machine.factor(), "times for two threads of arithmetic"));
  oviClose();
  return report.result();
}
