// Life cycle, handles, lists and infos of library, system, interface and device.
#include "consumer.h"

#include <chrono>
#include <cstring>
#include <set>

namespace producer_test {

namespace {

// One info command and what it must answer.
struct InfoCase {
  std::int32_t command;
  std::int32_t type;
  Error error = kSuccess;
};

template<class Function, class... Arguments>
void checkInfos(const std::vector<InfoCase>& cases, Function function, Arguments... arguments) {
  for (const InfoCase& expected : cases) {
    SCOPED_TRACE(testing::Message() << "info " << expected.command);
    const Answer answer = ask(function, arguments..., expected.command);
    EXPECT_EQ(answer.error, expected.error);
    if (expected.error == kSuccess) {
      EXPECT_EQ(answer.type, expected.type);
      const std::map<std::int32_t, std::size_t> sizes = {{kInt32, 4},   {kUint32, 4}, {kUint64, 8},
                                                         {kPointer, 8}, {kBool8, 1},  {kSize, 8}};
      if (const auto found = sizes.find(answer.type); found != sizes.end()) {
        EXPECT_EQ(answer.bytes.size(), found->second);
      } else {
        EXPECT_FALSE(answer.bytes.empty());
      }
    }
  }
}

}  // namespace

class LibraryTest : public ProducerTest {};

TEST(Library, NothingWorksBeforeInitAndAfterClose) {
  const Functions& g = gentl();
  ASSERT_TRUE(g.missing.empty()) << "missing: " << g.missing.front();
  const auto check = [&] {
    Handle handle = nullptr;
    std::int32_t type = 0;
    std::size_t size = 0;
    Error code = 0;
    EXPECT_EQ(g.TLOpen(&handle), kNotInitialized);
    EXPECT_EQ(g.GCGetInfo(0, &type, nullptr, &size), kNotInitialized);
    EXPECT_EQ(g.GCGetLastError(&code, nullptr, &size), kNotInitialized);
    EXPECT_EQ(g.TLClose(nullptr), kNotInitialized);
    EXPECT_EQ(g.GCReadPort(nullptr, 0, &type, &size), kNotInitialized);
    EXPECT_EQ(g.EventGetData(nullptr, nullptr, &size, 0), kNotInitialized);
    EXPECT_EQ(g.DSGetBufferInfo(nullptr, nullptr, 0, &type, nullptr, &size), kNotInitialized);
    EXPECT_EQ(g.GCCloseLib(), kNotInitialized);
  };
  check();
  ASSERT_EQ(g.GCInitLib(), kSuccess);
  EXPECT_EQ(g.GCInitLib(), kResourceInUse) << "there is no reference count";
  EXPECT_EQ(g.GCCloseLib(), kSuccess);
  check();
}

TEST_F(LibraryTest, LastErrorKeepsTheLatestFailureOfTheThread) {
  Error code = 77;
  std::size_t size = 0;
  // A failure of this function itself is not remembered.
  openSystem();
  Handle handle = nullptr;
  EXPECT_EQ(g.TLOpenInterface(tl, "no such interface", &handle), kInvalidId);
  EXPECT_EQ(g.GCGetLastError(nullptr, nullptr, &size), kInvalidParameter);
  EXPECT_EQ(g.TLUpdateInterfaceList(tl, nullptr, 0), kSuccess) << "a success does not clear it";
  ASSERT_EQ(g.GCGetLastError(&code, nullptr, &size), kSuccess);
  EXPECT_EQ(code, kInvalidId);
  EXPECT_GT(size, 1U);
  EXPECT_NE(lastErrorText().find("no such interface"), std::string::npos) << lastErrorText();
  EXPECT_NE(lastErrorText().find("TLOpenInterface"), std::string::npos) << lastErrorText();
  char tiny[2];
  size = sizeof(tiny);
  EXPECT_EQ(g.GCGetLastError(&code, tiny, &size), kBufferTooSmall);
}

TEST_F(LibraryTest, EveryInfoHasItsTypeAndSize) {
  openDevice();
  const std::vector<InfoCase> system = {{0, kString},
                                        {1, kString},
                                        {2, kString},
                                        {3, kString},
                                        {4, kString},
                                        {5, kString},
                                        {6, kString},
                                        {7, kString},
                                        {8, kInt32},
                                        {9, kUint32},
                                        {10, kUint32},
                                        {11, 0, kNotImplemented},
                                        {-1, 0, kNotImplemented},
                                        {1000, 0, kNotImplemented}};
  checkInfos(system, g.TLGetInfo, tl);
  checkInfos(system, g.GCGetInfo);
  for (int command = 0; command <= 10; ++command) {
    EXPECT_EQ(ask(g.TLGetInfo, tl, command).bytes, ask(g.GCGetInfo, command).bytes) << command;
  }
  EXPECT_EQ(ask(g.TLGetInfo, tl, 5).bytes, "VirtualCamera.cti");
  EXPECT_EQ(ask(g.TLGetInfo, tl, 9).number(), 1U);
  EXPECT_EQ(ask(g.TLGetInfo, tl, 10).number(), 5U);

  const std::vector<InfoCase> interfaces = {{0, kString}, {1, kString}, {2, kString}, {3, 0, kNotImplemented}};
  checkInfos(interfaces, g.IFGetInfo, interface);
  const std::string interfaceId = ask(g.IFGetInfo, interface, 0).bytes;
  for (int command = 0; command <= 2; ++command) {
    EXPECT_EQ(ask(g.TLGetInterfaceInfo, tl, interfaceId.c_str(), command).bytes,
              ask(g.IFGetInfo, interface, command).bytes);
  }

  const std::vector<InfoCase> devices = {{0, kString},
                                         {1, kString},
                                         {2, kString},
                                         {3, kString},
                                         {4, kString},
                                         {5, kInt32},
                                         {6, kString},
                                         {7, kString},
                                         {8, kString},
                                         {9, kUint64},
                                         {10, 0, kNotImplemented}};
  checkInfos(devices, g.DevGetInfo, device);
  for (int command = 0; command <= 9; ++command) {
    EXPECT_EQ(ask(g.IFGetDeviceInfo, interface, deviceId.c_str(), command).bytes,
              ask(g.DevGetInfo, device, command).bytes)
        << command;
  }

  openStream();
  checkInfos({{0, kString},
              {1, kUint64},
              {2, kUint64},
              {3, kSize},
              {4, kSize},
              {5, kSize},
              {6, kUint64},
              {7, kSize},
              {8, kBool8},
              {9, kBool8},
              {10, kString},
              {11, kSize},
              {12, kSize},
              {13, kSize},
              {14, 0, kNotImplemented}},
             g.DSGetInfo, stream);
  checkInfos({{0, kInt32}, {1, kSize}, {2, kUint64}, {3, kSize}, {4, kSize}, {5, 0, kNotImplemented}}, g.EventGetInfo,
             newBuffer);
  EXPECT_EQ(ask(g.EventGetInfo, newBuffer, 3).number(), 16U);
}

TEST_F(LibraryTest, BadPointersAreRefused) {
  openDevice();
  std::int32_t type = 0;
  std::size_t size = 0;
  char text[64];
  Handle handle = nullptr;
  auto* const allOnes = reinterpret_cast<void*>(~std::uintptr_t{0});
  EXPECT_EQ(g.TLGetInfo(tl, 0, nullptr, nullptr, &size), kInvalidParameter);
  EXPECT_EQ(g.TLGetInfo(tl, 0, &type, nullptr, nullptr), kInvalidParameter);
  size = sizeof(text);
  EXPECT_EQ(g.TLGetInfo(tl, 0, &type, allOnes, &size), kInvalidParameter);
  EXPECT_EQ(g.TLGetNumInterfaces(tl, nullptr), kInvalidParameter);
  EXPECT_EQ(g.TLOpenInterface(tl, nullptr, &handle), kInvalidParameter);
  EXPECT_EQ(g.TLOpenInterface(tl, "x", nullptr), kInvalidParameter);
  EXPECT_EQ(g.IFGetDeviceInfo(interface, nullptr, 0, &type, nullptr, &size), kInvalidParameter);
  EXPECT_EQ(g.DevGetPort(device, nullptr), kInvalidParameter);
  EXPECT_EQ(g.GCRegisterEvent(device, kErrorEvent, nullptr), kInvalidParameter);
  EXPECT_EQ(g.TLOpen(nullptr), kInvalidParameter);
  // What may be left out must not be a stray pointer either.
  // NOLINTNEXTLINE(performance-no-int-to-ptr)
  auto* const stray = reinterpret_cast<std::uint8_t*>(~std::uintptr_t{0});
  EXPECT_EQ(g.TLUpdateInterfaceList(tl, stray, 0), kInvalidParameter);
  EXPECT_EQ(g.IFUpdateDeviceList(interface, stray, 0), kInvalidParameter);
}

TEST_F(LibraryTest, ListsAreFrozenBetweenUpdates) {
  ASSERT_EQ(g.TLOpen(&tl), kSuccess);
  std::uint32_t count = 99;
  char id[256];
  std::size_t size = sizeof(id);
  std::uint8_t changed = 9;
  ASSERT_EQ(g.TLGetNumInterfaces(tl, &count), kSuccess);
  EXPECT_EQ(count, 0U) << "nothing is listed before the first update";
  const Registers registers(tl);
  EXPECT_EQ(registers.set("InterfaceSelector", 1), kInvalidValue);
  Handle listChanged = nullptr;
  ASSERT_EQ(g.GCRegisterEvent(tl, kModuleEvent, &listChanged), kSuccess);
  ASSERT_EQ(g.TLUpdateInterfaceList(tl, &changed, 100), kSuccess);
  EXPECT_EQ(changed, 1);
  ASSERT_EQ(g.TLUpdateInterfaceList(tl, &changed, kInfinite), kSuccess);
  EXPECT_EQ(changed, 0);
  EXPECT_EQ(ask(g.EventGetInfo, listChanged, 2).number(), 1U) << "fired once";
  EXPECT_EQ(registers.set("InterfaceSelector", 1), kSuccess);
  ASSERT_EQ(g.TLGetNumInterfaces(tl, &count), kSuccess);
  EXPECT_EQ(count, 2U);
  EXPECT_EQ(g.TLGetInterfaceID(tl, 2, id, &size), kInvalidIndex);

  openInterface();
  std::uint32_t devices = 0;
  ASSERT_EQ(g.IFGetNumDevices(interface, &devices), kSuccess);
  ASSERT_GT(devices, 1U);
  size = sizeof(id);
  ASSERT_EQ(g.IFGetDeviceID(interface, 0, id, &size), kSuccess);
  ASSERT_EQ(orders().loseDevice(id), 0);
  ASSERT_EQ(g.IFGetNumDevices(interface, &count), kSuccess);
  EXPECT_EQ(count, devices);
  EXPECT_EQ(ask(g.IFGetDeviceInfo, interface, static_cast<const char*>(id), 5).number(), 3U) << "no access";

  // A search that takes longer than the caller waits leaves the list as it was.
  ASSERT_EQ(orders().slowUpdates(60), 0);
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(g.IFUpdateDeviceList(interface, &changed, 20), kTimeout);
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(20));
  ASSERT_EQ(g.IFGetNumDevices(interface, &count), kSuccess);
  EXPECT_EQ(count, devices);
  EXPECT_EQ(g.IFUpdateDeviceList(interface, &changed, kInfinite), kSuccess);
  EXPECT_EQ(changed, 1);
  ASSERT_EQ(g.IFGetNumDevices(interface, &count), kSuccess);
  EXPECT_EQ(count, devices - 1);
  EXPECT_EQ(ask(g.IFGetDeviceInfo, interface, static_cast<const char*>(id), 0).error, kInvalidId);
  ASSERT_EQ(orders().returnDevice(id), 0);
  EXPECT_EQ(g.IFUpdateDeviceList(interface, nullptr, kInfinite), kSuccess);
  ASSERT_EQ(g.IFGetNumDevices(interface, &count), kSuccess);
  EXPECT_EQ(count, devices);
}

TEST_F(LibraryTest, IdsAreUniqueAndTheCamerasAreAsPromised) {
  openSystem();
  std::set<std::string> ids;
  std::set<std::string> vendors;
  std::uint32_t served = 0;
  for (std::uint32_t i = 0; i < 2; ++i) {
    openInterface(i);
    std::uint32_t devices = 0;
    ASSERT_EQ(g.IFGetNumDevices(interface, &devices), kSuccess);
    EXPECT_GT(devices, 0U);
    for (std::uint32_t d = 0; d < devices; ++d) {
      char id[256];
      std::size_t size = sizeof(id);
      ASSERT_EQ(g.IFGetDeviceID(interface, d, id, &size), kSuccess);
      EXPECT_TRUE(ids.insert(id).second) << id;
      const char* name = id;
      const std::string vendor = ask(g.IFGetDeviceInfo, interface, name, 1).bytes;
      served += vendor == "Kestrova" ? 1 : 0;
      vendors.insert(vendor);
      EXPECT_EQ(ask(g.IFGetDeviceInfo, interface, name, 5).number(), 1U) << "closed and free";
      // A user-defined name is as good as an ID, and the opened module tells its real ID.
      const std::string user = ask(g.IFGetDeviceInfo, interface, name, 6).bytes;
      Handle opened = nullptr;
      ASSERT_EQ(g.IFOpenDevice(interface, user.c_str(), 3, &opened), kSuccess);
      EXPECT_EQ(ask(g.DevGetInfo, opened, 0).bytes, id);
      EXPECT_EQ(g.DevClose(opened), kSuccess);
    }
    EXPECT_EQ(g.IFClose(interface), kSuccess);
  }
  EXPECT_EQ(ids.size(), 8U);
  EXPECT_EQ(served, 7U);
  EXPECT_EQ(vendors.size(), 2U);
}

TEST_F(LibraryTest, ModulesOpenOnceAndReopen) {
  openStream();
  Handle second = nullptr;
  EXPECT_EQ(g.TLOpen(&second), kResourceInUse);
  const std::string interfaceId = ask(g.IFGetInfo, interface, 0).bytes;
  const std::string streamId = ask(g.DSGetInfo, stream, 0).bytes;
  EXPECT_EQ(g.TLOpenInterface(tl, interfaceId.c_str(), &second), kResourceInUse);
  EXPECT_EQ(g.IFOpenDevice(interface, deviceId.c_str(), 3, &second), kResourceInUse);
  EXPECT_EQ(g.DevOpenDataStream(device, streamId.c_str(), &second), kResourceInUse);
  EXPECT_EQ(g.DevOpenDataStream(device, "no stream", &second), kInvalidId);
  EXPECT_EQ(g.IFOpenDevice(interface, "no device", 3, &second), kInvalidId);

  Handle parent = nullptr;
  EXPECT_EQ(g.DSGetParentDev(stream, &parent), kSuccess);
  EXPECT_EQ(parent, device);
  EXPECT_EQ(g.DevGetParentIF(device, &parent), kSuccess);
  EXPECT_EQ(parent, interface);
  EXPECT_EQ(g.IFGetParentTL(interface, &parent), kSuccess);
  EXPECT_EQ(parent, tl);

  EXPECT_EQ(g.DSClose(stream), kSuccess);
  EXPECT_EQ(g.DSClose(stream), kInvalidHandle);
  EXPECT_EQ(g.DevOpenDataStream(device, streamId.c_str(), &stream), kSuccess);
  EXPECT_EQ(g.DevClose(device), kSuccess);
  for (const std::int32_t access : {2, 3, 4}) {
    EXPECT_EQ(g.IFOpenDevice(interface, deviceId.c_str(), access, &device), kSuccess);
    EXPECT_EQ(ask(g.IFGetDeviceInfo, interface, deviceId.c_str(), 5).number(), access == 2 ? 6U : 5U);
    EXPECT_EQ(g.DevClose(device), kSuccess);
  }
  for (const std::int32_t access : {-1, 0, 1, 5, 1000}) {
    EXPECT_EQ(g.IFOpenDevice(interface, deviceId.c_str(), access, &device), kInvalidParameter) << access;
  }
}

TEST_F(LibraryTest, ClosingAParentClosesAllBelowAndHandlesNeverComeBack) {
  openStream();
  const std::vector<Handle> buffers = announce(3);
  std::int32_t type = 0;
  std::uint64_t value = 0;
  std::size_t size = sizeof(value);
  const std::vector<Handle> stale = {tl, interface, device, port, stream, newBuffer, buffers[0]};
  ASSERT_EQ(g.TLClose(tl), kSuccess);
  // Reopening takes the same places in the producer's tables.
  tl = interface = device = nullptr;
  openStream();
  announce(3);
  for (const Handle handle : stale) {
    EXPECT_EQ(g.TLGetInfo(handle, 0, &type, nullptr, &size), kInvalidHandle);
    EXPECT_EQ(g.IFGetInfo(handle, 0, &type, nullptr, &size), kInvalidHandle);
    EXPECT_EQ(g.DevGetInfo(handle, 0, &type, nullptr, &size), kInvalidHandle);
    EXPECT_EQ(g.GCGetPortInfo(handle, 0, &type, nullptr, &size), kInvalidHandle);
    EXPECT_EQ(g.DSGetInfo(handle, 0, &type, nullptr, &size), kInvalidHandle);
    EXPECT_EQ(g.EventGetInfo(handle, 0, &type, nullptr, &size), kInvalidHandle);
    EXPECT_EQ(g.DSGetBufferInfo(stream, handle, 0, &type, nullptr, &size), kInvalidHandle);
    EXPECT_EQ(g.DSQueueBuffer(stream, handle), kInvalidHandle);
    EXPECT_EQ(g.EventGetData(handle, &value, &size, 0), kInvalidHandle);
    EXPECT_EQ(g.EventKill(handle), kInvalidHandle);
  }
}

TEST_F(LibraryTest, HandlesOfAnotherKindAreRefused) {
  openStream();
  const Handle buffer = announce(1).front();
  std::int32_t type = 0;
  std::size_t size = 0;
  int local = 0;
  Handle out = nullptr;
  for (const Handle handle :
       {Handle{nullptr}, Handle{&local}, reinterpret_cast<Handle>(~std::uintptr_t{0}),
        reinterpret_cast<Handle>(std::uintptr_t{0x5A00000000000110}), tl, device, port, newBuffer}) {
    EXPECT_EQ(g.DSGetInfo(handle, 0, &type, nullptr, &size), kInvalidHandle);
    EXPECT_EQ(g.DSClose(handle), kInvalidHandle);
    EXPECT_EQ(g.DSRevokeBuffer(stream, handle, nullptr, nullptr), kInvalidHandle);
    EXPECT_EQ(g.DSGetBufferInfo(handle, buffer, 0, &type, nullptr, &size), kInvalidHandle);
    EXPECT_EQ(g.IFClose(handle), kInvalidHandle);
  }
  EXPECT_EQ(g.DevClose(port), kInvalidHandle) << "the remote port dies with its device";
  EXPECT_EQ(g.GCRegisterEvent(port, kErrorEvent, &out), kInvalidHandle) << "the remote port has no events";
}

}  // namespace producer_test
