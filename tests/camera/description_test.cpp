// The descriptions of the default cameras, read by the node-map engine over the cameras' registers.
#include <gtest/gtest.h>

#include <cstdlib>
#include <set>

#include "GenApi/GenApi.h"
#include "ovi_genapi/diagnostics.h"
#include "remote.h"

namespace vcam::test {
namespace {

namespace G = GENAPI_NAMESPACE;

class CameraPort : public G::IPort {
 public:
  explicit CameraPort(Camera& camera) : camera_(camera) {}
  G::EAccessMode GetAccessMode() const override { return G::RW; }
  void Read(void* buffer, int64_t address, int64_t length) override {
    check(camera_.read(static_cast<std::uint64_t>(address), buffer, static_cast<std::size_t>(length)), address);
  }
  void Write(const void* buffer, int64_t address, int64_t length) override {
    check(camera_.write(static_cast<std::uint64_t>(address), buffer, static_cast<std::size_t>(length)), address);
  }

 private:
  static void check(GC_ERROR error, int64_t address) {
    if (error != GC_ERR_SUCCESS) {
      throw std::runtime_error("address " + std::to_string(address) + " answers " + std::to_string(error));
    }
  }
  Camera& camera_;
};

// A node map made of what lies at the camera's URL.
class Map {
 public:
  explicit Map(Camera& camera) : port_(camera) {
    const std::string& url = camera.description().url;
    const std::size_t first = url.find(';');
    const std::size_t second = url.find(';', first + 1);
    const std::uint64_t address = std::strtoull(url.c_str() + first + 1, nullptr, 16);
    std::string bytes(std::strtoull(url.c_str() + second + 1, nullptr, 16), '\0');
    if (camera.read(address, bytes.data(), bytes.size()) != GC_ERR_SUCCESS) {
      throw std::runtime_error("no description at " + url);
    }
    if (url.find(".zip;") != std::string::npos) {
      ref_._LoadXMLFromZIPData(bytes.data(), bytes.size());
    } else {
      ref_._LoadXMLFromString(bytes.c_str());
    }
    ref_._Connect(&port_, camera.portName().c_str());
  }
  G::CNodeMapRef& ref() { return ref_; }
  template<class T>
  T& get(const char* name) {
    T* const node = dynamic_cast<T*>(ref_._GetNode(name));
    if (node == nullptr) {
      throw std::runtime_error(std::string("no such node: ") + name);
    }
    return *node;
  }

 private:
  CameraPort port_;
  G::CNodeMapRef ref_;
};

TEST(Descriptions, OfAllCamerasLoadCleanlyAndEveryFeatureReads) {
  Configuration configuration;
  configuration.choices["OB000008"].vendor = "A; B & <C>?";  // Any text may be chosen.
  const auto cameras = makeDefaultCameras(configuration);
  ASSERT_GE(cameras.size(), 8U);
  std::set<std::string> serials;
  std::set<std::string> names;
  std::size_t largest = 0;
  for (const auto& camera : cameras) {
    SCOPED_TRACE(camera->identity().model);
    serials.insert(camera->identity().serialNumber);
    names.insert(camera->userDefinedName());
    Map map(*camera);
    const auto diagnostics = GenApiEngine::diagnosticsOf(*map.ref()._Ptr);
    for (const auto& warning : diagnostics.warnings) {
      ADD_FAILURE() << "line " << warning.line << ": " << warning.text;
    }
    largest = std::max(largest, diagnostics.nodes);
    GENICAM_NAMESPACE::gcstring_vector errors;
    EXPECT_TRUE(map.ref()._ParseSwissKnifes(&errors));
    G::NodeList_t nodes;
    map.ref()._GetNodes(nodes);
    for (G::INode* const node : nodes) {
      const std::string name = node->GetName().c_str();
      const G::EAccessMode mode = node->GetAccessMode();
      EXPECT_NE(mode, G::NI) << name;
      auto* const value = dynamic_cast<G::IValue*>(node);
      if (value == nullptr || (mode != G::RO && mode != G::RW)) {
        continue;
      }
      EXPECT_NO_THROW(value->ToString()) << name;
      if (auto* const integer = dynamic_cast<G::IInteger*>(node)) {
        EXPECT_GE(integer->GetValue(), integer->GetMin()) << name;
        EXPECT_LE(integer->GetValue(), integer->GetMax()) << name;
      } else if (auto* const number = dynamic_cast<G::IFloat*>(node)) {
        EXPECT_GE(number->GetValue(), number->GetMin()) << name;
        EXPECT_LE(number->GetValue(), number->GetMax()) << name;
      } else if (auto* const entries = dynamic_cast<G::IEnumeration*>(node)) {
        EXPECT_NE(entries->GetCurrentEntry(), nullptr) << name;
      }
    }
  }
  EXPECT_EQ(serials.size(), cameras.size());
  EXPECT_EQ(names.size(), cameras.size());
  EXPECT_GE(largest, 2000U);
}

TEST(Descriptions, LimitsMoveWithWhatTheyDependOn) {
  for (const std::size_t index : {0U, 3U}) {
    const auto cameras = makeDefaultCameras({});
    Map map(*cameras[index]);
    auto& width = map.get<G::IInteger>("Width");
    const std::int64_t full = width.GetMax();
    EXPECT_EQ(width.GetValue(), full);
    map.get<G::IInteger>("BinningHorizontal").SetValue(2);
    EXPECT_EQ(width.GetMax(), full / 2);
    EXPECT_EQ(width.GetValue(), full / 2) << "the camera changed it";
    width.SetValue(64);
    EXPECT_EQ(map.get<G::IInteger>("OffsetX").GetMax(), full / 2 - 64);
    auto& rate = map.get<G::IFloat>("AcquisitionFrameRate");
    map.get<G::IFloat>("ExposureTime").SetValue(250000);
    EXPECT_DOUBLE_EQ(map.get<G::IFloat>("ExposureTime").GetValue(), 250000);
    EXPECT_NEAR(rate.GetMax(), 4, 1e-6);
    EXPECT_LE(rate.GetValue(), rate.GetMax());
    const std::int64_t payload = map.get<G::IInteger>("PayloadSize").GetValue();
    map.get<G::IEnumeration>("PixelFormat").FromString("Mono12p");
    EXPECT_EQ(map.get<G::IInteger>("PayloadSize").GetValue(), payload * 3 / 2);
    map.get<G::IInteger>("TLParamsLocked").SetValue(1);
    EXPECT_EQ(width.GetNode()->GetAccessMode(), G::RO);
    map.get<G::IInteger>("TLParamsLocked").SetValue(0);
    map.get<G::IEnumeration>("UserSetSelector").FromString("Default");
    map.get<G::ICommand>("UserSetLoad").Execute();
    EXPECT_EQ(width.GetValue(), full) << "loading a set is seen by everything stored";
  }
}

TEST(Descriptions, SelectedFeaturesHaveAValueForEachSelection) {
  const auto cameras = makeDefaultCameras({});
  Map map(*cameras[1]);
  auto& set = map.get<G::IInteger>("SequencerSetSelector");
  auto& path = map.get<G::IInteger>("SequencerPathSelector");
  auto& next = map.get<G::IInteger>("SequencerSetNext");
  for (const std::int64_t s : {0, 3, 7}) {
    for (const std::int64_t p : {0, 1}) {
      set.SetValue(s);
      path.SetValue(p);
      next.SetValue((s + p) % 8);
    }
  }
  set.SetValue(3);
  path.SetValue(1);
  EXPECT_EQ(next.GetValue(), 4);
  set.SetValue(7);
  EXPECT_EQ(next.GetValue(), 0);

  map.get<G::IEnumeration>("LUTSelector").FromString("Blue");
  map.get<G::IInteger>("LUTIndex").SetValue(200);
  map.get<G::IInteger>("LUTValue").SetValue(77);
  std::vector<std::uint8_t> table(1024);
  map.get<G::IRegister>("LUTValueAll").Get(table.data(), static_cast<std::int64_t>(table.size()));
  EXPECT_EQ(table[800], 77);
  table[804] = 99;
  table[805] = 0;
  map.get<G::IRegister>("LUTValueAll").Set(table.data(), static_cast<std::int64_t>(table.size()));
  map.get<G::IInteger>("LUTIndex").SetValue(201);
  EXPECT_EQ(map.get<G::IInteger>("LUTValue").GetValue(), 99);
}

}  // namespace
}  // namespace vcam::test
