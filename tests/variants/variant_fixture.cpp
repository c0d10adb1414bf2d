// Opens and closes what a test needs of a variant.
#include "variant_fixture.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <utility>

#include "platform/platform.h"

namespace variants_test {

namespace fs = std::filesystem;

VariantTest::VariantTest() {
  settings("");
  EXPECT_EQ(oviSetIgnoreSubnetEnabled(0), OVI_SUCCESS);
}

VariantTest::~VariantTest() {
  leave();
  settings("");
}

void VariantTest::leave() {
  if (library_ != nullptr) {
    orders_->reset();
    EXPECT_EQ(oviClose(), OVI_SUCCESS);
    OVI::platform::unload(std::exchange(library_, nullptr));
  }
}

void VariantTest::settings(const std::string& text) {
  const char* file = std::getenv("OVI_VIRTUAL_CONFIG");
  ASSERT_NE(file, nullptr) << "the environment of these tests is not set";
  std::ofstream(file, std::ios::binary) << text;
}

void VariantTest::use(const std::string& producer) {
  // A real-time producer is loaded only where the machine is prepared for it.
  const fs::path prepared = fs::path(*OVI::platform::publicDocuments()) / "Kestrova/Pelt/Hux.ini";
  fs::create_directories(prepared.parent_path());
  std::ofstream(prepared) << "KitharaEnvironment = Success\nEnvironmentSet = 1\n";
  leave();
  ASSERT_EQ(oviInit(0, nullptr, nullptr), OVI_SUCCESS);
  library_ = OVI::platform::loadLibrary(producer);
  ASSERT_NE(library_, nullptr) << producer;
  orders_ = reinterpret_cast<POviVirtualHostility>(OVI::platform::resolve(library_, "oviVirtualHostility"))();
  folder_ = fs::path(producer).parent_path().string();
  discover();
}

void VariantTest::discover() {
  ASSERT_EQ(oviDiscoverDevices(found.get(), 2000, nullptr, folder_.c_str(), 1), OVI_SUCCESS);
}

bool VariantTest::isListed(const std::string& serial) const {
  return std::any_of(found->devices, found->devices + found->deviceCount,
                     [&](const oviDeviceInfo& info) { return info.serialNumber == serial; });
}

void VariantTest::open(const std::string& serial) {
  ASSERT_EQ(oviOpenDevice(("VC-" + serial).c_str(), &device, 2000, 3), OVI_SUCCESS);
}

void VariantTest::closeDevice() {
  EXPECT_EQ(oviCloseDevice(device), OVI_SUCCESS);
}

void VariantTest::openStream(std::uint32_t buffers) {
  ASSERT_EQ(oviCreateDataStream(device, 0, &stream, buffers, 0), OVI_SUCCESS);
  ASSERT_EQ(oviRegisterEvent(stream, OVI_EVENT_NEW_BUFFER, &event, OVI_MODULE_DATA_STREAM), OVI_SUCCESS);
}

void VariantTest::start() {
  ASSERT_EQ(oviStartAcquisition(device, 0xFFFFFFFF), OVI_SUCCESS);
}

void VariantTest::stop() {
  EXPECT_EQ(oviStopAcquisition(device), OVI_SUCCESS);
}

void VariantTest::closeStream() {
  EXPECT_EQ(oviUnregisterEvent(event), OVI_SUCCESS);
  EXPECT_EQ(oviCloseDataStream(stream), OVI_SUCCESS);
}

oviNewBufferEventData VariantTest::next() {
  oviNewBufferEventData image{};
  EXPECT_EQ(oviGetNextImage(event, &image, 10000), OVI_SUCCESS);
  return image;
}

std::optional<std::int64_t> VariantTest::integer(std::uint64_t handle, const char* name, std::uint32_t selector) {
  std::int64_t value = 0;
  return oviGetFeatureInt(handle, name, &value, selector) == OVI_SUCCESS ? std::optional(value) : std::nullopt;
}

std::optional<bool> VariantTest::boolean(std::uint64_t handle, const char* name, std::uint32_t selector) {
  bool value = false;
  return oviGetFeatureBool(handle, name, &value, selector) == OVI_SUCCESS ? std::optional(value) : std::nullopt;
}

}  // namespace variants_test
