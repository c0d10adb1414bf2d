// What a feature call costs through the C interface, as a multiple of the engine's own call on the same description.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "GenApi/GenApi.h"
#include "allocations.h"
#include "machine.h"
#include "ovi/ovi.h"
#include "platform/platform.h"
#include "report.h"
#include "scripted_camera.h"

namespace {

constexpr std::uint32_t kCamera = OVI_MODULE_REMOTE_DEVICE;

const char* const kDescription = R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Bench" VendorName="Kestrova" StandardNameSpace="None" SchemaMajorVersion="1"
 SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0" SubMinorVersion="0"
 ProductGuid="1F3C7F9E-1111-4222-8333-444455556668" VersionGuid="1F3C7F9E-1111-4222-8333-444455556669"
 xmlns="http://www.genicam.org/GenApi/Version_1_1">
<Category Name="Root"><pFeature>AcquisitionFrameCount</pFeature><pFeature>ExposureTime</pFeature>
 <pFeature>ReverseX</pFeature><pFeature>PixelFormat</pFeature></Category>
<Integer Name="AcquisitionFrameCount"><ToolTip>Frames.</ToolTip><pValue>CountReg</pValue><Min>0</Min><Max>1000</Max>
</Integer>
<Float Name="ExposureTime"><pValue>ExposureReg</pValue><Min>0</Min><Max>1000</Max></Float>
<Boolean Name="ReverseX"><pValue>ReverseReg</pValue><OnValue>1</OnValue><OffValue>0</OffValue></Boolean>
<Enumeration Name="PixelFormat"><EnumEntry Name="Mono8"><Value>0</Value></EnumEntry>
 <EnumEntry Name="Mono16"><Value>1</Value></EnumEntry><pValue>FormatReg</pValue></Enumeration>
<IntReg Name="CountReg"><Address>0x10</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
 <Cachable>WriteThrough</Cachable><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<IntReg Name="ReverseReg"><Address>0x14</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
 <Cachable>WriteThrough</Cachable><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<IntReg Name="FormatReg"><Address>0x18</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
 <Cachable>WriteThrough</Cachable><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
<FloatReg Name="ExposureReg"><Address>0x20</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
 <Cachable>WriteThrough</Cachable><Endianess>LittleEndian</Endianess></FloatReg>
<Port Name="Device"></Port>
</RegisterDescription>)";

/** Registers that are all zero. */
class ZeroPort : public GenApi::IPort {
 public:
  GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }
  void Read(void* buffer, std::int64_t, std::int64_t length) override {
    std::fill_n(static_cast<char*>(buffer), length, '\0');
  }
  void Write(const void*, std::int64_t, std::int64_t) override {}
};

struct Measured {
  double nanoseconds = std::numeric_limits<double>::max();
  double allocations = 0;
};

/** The best of many rounds, each long enough for the clock and short enough to escape the scheduler. */
Measured measure(const std::function<void()>& call) {
  constexpr int kRounds = 300;
  constexpr int kCalls = 1000;
  Measured best;
  call();
  for (int round = 0; round < kRounds; ++round) {
    const std::size_t before = bench::allocationCount();
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < kCalls; ++i)
      call();
    const std::chrono::duration<double, std::nano> took = std::chrono::steady_clock::now() - start;
    best.nanoseconds = std::min(best.nanoseconds, took.count() / kCalls);
    best.allocations = static_cast<double>(bench::allocationCount() - before) / kCalls;
  }
  return best;
}

void require(bool good, const char* what) {
  if (!good) {
    std::fprintf(stderr, "features_bench: %s failed\n", what);
    std::exit(EXIT_FAILURE);
  }
}

void tell(bench::Report& report, const std::string& what, const Measured& measured, const Measured& engine,
          double target) {
  report.atMost(what + " / the engine's integer by name", measured.nanoseconds / engine.nanoseconds, target,
                bench::withUnit(measured.nanoseconds, "ns"));
  report.atMost(what + ", allocations", measured.allocations, 0);
}

std::uint64_t openCamera() {
  const std::string directory = SCRIPTED_DIR "/ScriptedCamera";
  void* const library = OVI::platform::loadLibrary(directory + "/ScriptedCamera.cti");
  require(library != nullptr, "loading the scripted camera");
  auto* const script = reinterpret_cast<scripted::GetScript>(OVI::platform::resolve(library, "scriptedCamera"))();
  for (scripted::Space* const space : {&script->camera, &script->localDevice, &script->interface, &script->system})
    space->description = kDescription;
  const auto info = std::make_unique<oviDiscoveryInfo>();
  std::uint64_t device = 0;
  require(oviInit(0, nullptr, nullptr) == OVI_SUCCESS, "oviInit");
  require(oviDiscoverDevices(info.get(), 1000, nullptr, directory.c_str(), 1) == OVI_SUCCESS, "oviDiscoverDevices");
  require(oviOpenDevice("ScriptedCamera", &device, 1000, 3) == OVI_SUCCESS, "oviOpenDevice");
  return device;
}

/** The virtual cameras of this build, opened; there are four at least. */
std::array<std::uint64_t, 4> openFourCameras() {
  const auto info = std::make_unique<oviDiscoveryInfo>();
  require(oviDiscoverDevices(info.get(), 1000, nullptr, OVI_OUT, 1) == OVI_SUCCESS, "oviDiscoverDevices");
  std::array<std::uint64_t, 4> devices{};
  std::size_t opened = 0;
  for (std::uint32_t i = 0; i < info->deviceCount && opened < devices.size(); ++i) {
    const std::string id = info->devices[i].deviceID;
    if (id != "ScriptedCamera" && oviOpenDevice(id.c_str(), &devices[opened], 1000, 3) == OVI_SUCCESS)
      ++opened;
  }
  require(opened == devices.size(), "opening four virtual cameras");
  return devices;
}

/** Seconds until every device was read so many times, each by a thread of its own. */
double secondsToRead(std::span<const std::uint64_t> devices, int reads) {
  std::vector<std::thread> threads;
  const auto start = std::chrono::steady_clock::now();
  for (const std::uint64_t device : devices) {
    threads.emplace_back([device, reads] {
      std::int64_t value = 0;
      for (int i = 0; i < reads; ++i)
        require(oviGetFeatureInt(device, "Width", &value, kCamera) == OVI_SUCCESS, "reading the width");
    });
  }
  for (std::thread& thread : threads)
    thread.join();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/** How many times as much four threads read as one does; rounds alternate and the best of each counts. */
void tellScaling(bench::Report& report) {
  constexpr int kRounds = 30;
  constexpr int kReads = 20000;
  const std::array devices = openFourCameras();
  bench::MachineScaling machine(4);
  double one = std::numeric_limits<double>::max();
  double four = one;
  for (int round = 0; round < kRounds; ++round) {
    one = std::min(one, secondsToRead(std::span(devices).first(1), kReads));
    four = std::min(four, secondsToRead(devices, kReads));
    machine.round();
  }
  report.atLeast("reads of four threads on four cameras / one", 4 * one / four, 1.8,
                 bench::withUnit(machine.factor(), "times for four threads of arithmetic"));
  for (const std::uint64_t device : devices)
    oviCloseDevice(device);
}

}  // namespace

int main() {
  const std::uint64_t device = openCamera();
  ZeroPort port;
  GenApi::CNodeMapFactory factory{GenICam::gcstring(kDescription)};
  GenApi::INodeMap* const map = factory.CreateNodeMap("Device");
  require(map->Connect(&port, "Device"), "connecting the engine's own node map");
  const GenICam::gcstring name = "AcquisitionFrameCount";

  std::int64_t integer = 0;
  double number = 0;
  bool flag = false;
  std::size_t size = 0;
  char text[512];
  oviFeatureParameter record;
  GenApi::IInteger& held = *GenApi::CIntegerPtr(map->GetNode(name));
  GenApi::IFloat& heldFloat = *GenApi::CFloatPtr(map->GetNode("ExposureTime"));
  GenApi::IBoolean& heldFlag = *GenApi::CBooleanPtr(map->GetNode("ReverseX"));
  GenApi::IEnumeration& heldFormat = *GenApi::CEnumerationPtr(map->GetNode("PixelFormat"));

  const Measured onPointer = measure([&] { integer = held.GetValue(); });
  const Measured engine = measure([&] {
    GenApi::IInteger& node = *GenApi::CIntegerPtr(map->GetNode(name));
    if (GenApi::IsReadable(node.GetAccessMode()))
      integer = node.GetValue();
  });
  const Measured engineFloat = measure([&] { number = heldFloat.GetValue(); });
  const Measured engineFlag = measure([&] { flag = heldFlag.GetValue(); });
  const Measured engineFormat = measure([&] { text[0] = heldFormat.GetCurrentEntry()->GetSymbolic().c_str()[0]; });

  bench::Report report("features_bench");
  report.plain("the engine's integer by held pointer, ns", onPointer.nanoseconds);
  report.plain("the engine's float by held pointer, ns", engineFloat.nanoseconds);
  report.plain("the engine's boolean by held pointer, ns", engineFlag.nanoseconds);
  report.plain("the engine's entry's name by held pointer, ns", engineFormat.nanoseconds);
  report.plain("the engine's integer by name, access checked, ns", engine.nanoseconds);
  require(oviGetFeatureInt(device, "AcquisitionFrameCount", &integer, kCamera) == OVI_SUCCESS, "the integer read");
  tell(report, "integer", measure([&] { oviGetFeatureInt(device, "AcquisitionFrameCount", &integer, kCamera); }),
       engine, 2.5);
  tell(report, "float", measure([&] { oviGetFeatureFloat(device, "ExposureTime", &number, kCamera); }), engine, 2.5);
  tell(report, "boolean", measure([&] { oviGetFeatureBool(device, "ReverseX", &flag, kCamera); }), engine, 2.5);
  tell(report, "enumeration by name", measure([&] {
         size = sizeof text;
         oviGetFeatureString(device, "PixelFormat", text, &size, kCamera);
       }),
       engine, 2.5);
  tell(report, "record", measure([&] { oviGetFeatureParameter(device, "AcquisitionFrameCount", &record, kCamera); }),
       engine, 12);
  tell(report, "text", measure([&] { oviGetFeature(device, "AcquisitionFrameCount", text); }), engine, 16);

  GenApi::CPointer<GenApi::IDestroy, GenApi::INodeMap>(map)->Destroy();
  oviCloseDevice(device);
  tellScaling(report);
  oviClose();
  return report.result();
}
