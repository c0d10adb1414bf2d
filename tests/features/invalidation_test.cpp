// Callbacks when a feature changes, the value cache, and description files of the caller's choice.
#include <atomic>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>

#include "feature_camera.h"

namespace scripted {
namespace {

/** What a callback is told. */
struct Told {
  std::atomic<int> calls{0};
  std::string name;
  std::uint64_t device = 0;
};

void note(const char* name, void* context) {
  auto& told = *static_cast<Told*>(context);
  told.name = name;
  ++told.calls;
}

using Invalidation = FeatureTest;

TEST_F(Invalidation, CallsTheLastCallbackRegistered) {
  Told first;
  Told second;
  EXPECT_EQ(oviRegisterInvalidateCB(device(), "Int", &first, note, kCamera), OVI_SUCCESS);
  EXPECT_EQ(oviSetFeatureInt(device(), "Int", 50, kCamera), OVI_SUCCESS);
  EXPECT_EQ(first.calls, 1);
  EXPECT_EQ(first.name, "Int");
  EXPECT_EQ(oviRegisterInvalidateCB(device(), "Int", &second, note, kCamera), OVI_SUCCESS);
  EXPECT_EQ(oviSetFeatureInt(device(), "Int", 55, kCamera), OVI_SUCCESS);
  EXPECT_EQ(first.calls, 1);
  EXPECT_EQ(second.calls, 1);
  EXPECT_EQ(oviUnRegisterInvalidateCB(device(), "Int", kCamera), OVI_SUCCESS);
  EXPECT_EQ(oviUnRegisterInvalidateCB(device(), "Int", kCamera), OVI_SUCCESS);
  EXPECT_EQ(oviSetFeatureInt(device(), "Int", 60, kCamera), OVI_SUCCESS);
  EXPECT_EQ(second.calls, 1);

  // Neither a name that no category reaches nor a null context ever calls back; both are accepted.
  EXPECT_EQ(oviRegisterInvalidateCB(device(), "NotAFeature", &first, note, kCamera), OVI_SUCCESS);
  EXPECT_EQ(oviRegisterInvalidateCB(device(), "Int", nullptr, note, kCamera), OVI_SUCCESS);
  EXPECT_EQ(oviSetFeatureInt(device(), "NotAFeature", 1, kCamera), OVI_SUCCESS);
  EXPECT_EQ(oviSetFeatureInt(device(), "Int", 65, kCamera), OVI_SUCCESS);
  EXPECT_EQ(first.calls, 1);
  takeLog();
  EXPECT_EQ(oviRegisterInvalidateCB(999999, "Int", &first, note, kCamera), OVI_ERR_NOT_FOUND);
  EXPECT_EQ(oviUnRegisterInvalidateCB(999999, "Int", kCamera), OVI_ERR_NOT_FOUND);
  EXPECT_EQ(oviRegisterInvalidateCB(0, "Int", &first, note, kCamera), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(takeLog(), (std::vector<LogLine>{{2, "Could not register invalidation callback for feature: Int"},
                                             {2, "Could not unregister invalidation callback from feature: Int"},
                                             {2, "Could not register invalidation callback for feature: Int"}}));
}

TEST_F(Invalidation, CallbackMayUseTheLibrary) {
  Told told;
  told.device = device();
  const auto busy = [](const char* name, void* context) {
    auto& mine = *static_cast<Told*>(context);
    std::int64_t value = 0;
    EXPECT_EQ(oviGetFeatureInt(mine.device, name, &value, kCamera), OVI_SUCCESS);
    EXPECT_EQ(oviSetFeatureBool(mine.device, "Bool", true, kCamera), OVI_SUCCESS);
    EXPECT_EQ(oviUnRegisterInvalidateCB(mine.device, name, kCamera), OVI_SUCCESS);
    note(name, context);
  };
  EXPECT_EQ(oviRegisterInvalidateCB(device(), "Int", &told, busy, kCamera), OVI_SUCCESS);
  EXPECT_EQ(oviSetFeatureInt(device(), "Int", 5, kCamera), OVI_SUCCESS);
  EXPECT_EQ(oviSetFeatureInt(device(), "Int", 10, kCamera), OVI_SUCCESS);
  EXPECT_EQ(told.calls, 1);

  // What it throws does not reach the caller, whose write was done, nor the next callback.
  const auto throwing = [](const char*, void*) { throw std::runtime_error("not of the library's business"); };
  EXPECT_EQ(oviRegisterInvalidateCB(device(), "Int", &told, throwing, kCamera), OVI_SUCCESS);
  EXPECT_EQ(oviRegisterInvalidateCB(device(), "Root", &told, note, kCamera), OVI_SUCCESS);
  EXPECT_EQ(oviSetFeatureInt(device(), "Int", 15, kCamera), OVI_SUCCESS);
  EXPECT_EQ(told.calls, 2);
  EXPECT_EQ(stored(0x100), 15U);
}

TEST_F(Invalidation, OpeningAndClosingLeavesNoThreadBehind) {
  // 0 where the system does not list them.
  const auto threads = [] {
    std::error_code none;
    const auto tasks = std::filesystem::directory_iterator("/proc/self/task", none);
    return std::distance(begin(tasks), end(tasks));
  };
  constexpr int kCycles = 1000;
  script().camera.description = describe("Small", intReg("Small", "0x100", 4));
  Told told;
  std::int64_t value = 0;
  const auto cycle = [&] {
    open();
    EXPECT_EQ(oviGetFeatureInt(device(), "Small", &value, kCamera), OVI_SUCCESS);
    EXPECT_EQ(oviGetFeatureInt(device(), "Empty", &value, OVI_MODULE_LOCAL_DEVICE), OVI_SUCCESS);
    EXPECT_EQ(oviRegisterInvalidateCB(device(), "Small", &told, note, kCamera), OVI_SUCCESS);
  };
  cycle();
  const auto before = threads();
  if (before == 0)
    GTEST_SKIP() << "This system does not list a program's threads.";
  for (int i = 0; i < kCycles; ++i)
    cycle();
  EXPECT_EQ(threads(), before);
}

TEST_F(Invalidation, PolledFeatureCallsBackUntilTheDeviceCloses) {
  std::string nodes =
      "<Integer Name=\"Polled\"><pValue>PolledRegister</pValue></Integer>" + intReg("PolledRegister", "0x100", 4, "RW");
  const std::string cachable = "<Cachable>NoCache</Cachable>";
  nodes.replace(nodes.find(cachable), cachable.size(),
                "<Cachable>WriteThrough</Cachable><PollingTime>100</PollingTime>");
  script().camera.description = describe("Polled", nodes);
  open();
  static std::atomic<bool> entered;
  static std::atomic<bool> released;
  entered = released = false;
  Told told;
  const auto slow = [](const char* name, void* context) {
    note(name, context);
    entered = true;
    while (!released)
      std::this_thread::yield();
  };
  ASSERT_EQ(oviRegisterInvalidateCB(device(), "Polled", &told, slow, kCamera), OVI_SUCCESS);
  while (!entered)
    std::this_thread::yield();
  // The device closes while its callback is under way on the polling thread.
  std::thread closing([this] { close(); });
  released = true;
  closing.join();
  const int calls = told.calls;
  EXPECT_GE(calls, 1);
  EXPECT_EQ(told.name, "Polled");
  open();
  EXPECT_EQ(told.calls, calls);
}

TEST_F(Invalidation, CachingDisabledReachesTheDevice) {
  std::string nodes =
      "<Integer Name=\"Cached\"><pValue>CachedRegister</pValue></Integer>" + intReg("CachedRegister", "0x100", 4);
  const std::string cachable = "<Cachable>NoCache</Cachable>";
  nodes.replace(nodes.find(cachable), cachable.size(), "<Cachable>WriteThrough</Cachable>");
  script().camera.description = describe("Cached", nodes);
  open();
  int reads = 0;
  script().camera.onRead = [&reads](std::uint64_t, std::size_t) {
    ++reads;
    return GC_ERR_SUCCESS;
  };
  std::int64_t value = 0;
  const auto readTwice = [&] {
    reads = 0;
    EXPECT_EQ(oviGetFeatureInt(device(), "Cached", &value, kCamera), OVI_SUCCESS);
    EXPECT_EQ(oviGetFeatureInt(device(), "Cached", &value, kCamera), OVI_SUCCESS);
    return reads;
  };
  EXPECT_EQ(readTwice(), 1);
  oviSetFeatureCachingDisabled(1);
  EXPECT_EQ(readTwice(), 2);
  oviSetFeatureCachingDisabled(0);
  EXPECT_EQ(readTwice(), 0);
  script().camera.onRead = nullptr;
}

TEST_F(Invalidation, DescriptionFileReplacesTheCamerasOwn) {
  const auto write = [](const char* path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; };
  write("other.xml", describe("Other", "<Integer Name=\"Other\"><Value>11</Value></Integer>"));
  write("broken.xml", "<RegisterDescription");
  std::int64_t value = 0;
  takeLog();
  write("broken.zip", "no archive");
  for (const char* path : {"missing.xml", "broken.xml", "broken.zip"}) {
    EXPECT_EQ(oviSetRemoteDeviceXMLFile(device(), path), OVI_ERR_INVALID_PARAMETER);
    EXPECT_NE(findInLog(takeLog(1), "Failed to set remote device XML: "), "") << path;
  }
  EXPECT_EQ(oviGetFeatureInt(device(), "Int", &value, kCamera), OVI_SUCCESS);
  EXPECT_EQ(oviSetRemoteDeviceXMLFile(999999, "other.xml"), OVI_ERR_NOT_FOUND);
  EXPECT_EQ(oviSetRemoteDeviceXMLFile(device(), "other.xml"), OVI_SUCCESS);
  EXPECT_EQ(oviGetFeatureInt(device(), "Other", &value, kCamera), OVI_SUCCESS);
  EXPECT_EQ(value, 11);
  EXPECT_EQ(oviGetFeatureInt(device(), "Int", &value, kCamera), OVI_ERR_NOT_FOUND);
}

TEST_F(Invalidation, UnreadableDescriptionIsToldAndTriedAgain) {
  script().camera.description = "";
  open();
  std::int64_t value = 0;
  takeLog();
  EXPECT_EQ(oviGetFeatureInt(device(), "Int", &value, kCamera), OVI_ERR_NOT_FOUND);
  EXPECT_NE(findInLog(takeLog(1), "Failed to get node for parameter! Error: Unable to retrieve XML."), "");
  EXPECT_EQ(oviRegisterInvalidateCB(device(), "Int", &value, note, kCamera), OVI_ERR_UNKNOWN);
  EXPECT_NE(findInLog(takeLog(1), "Exception during request of feature tree from module! Error: Unable"), "");
  script().camera.description = featureCamera();
  EXPECT_EQ(oviGetFeatureInt(device(), "Int", &value, kCamera), OVI_SUCCESS);
}

}  // namespace
}  // namespace scripted
