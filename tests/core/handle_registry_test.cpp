// Handles: who gets one, what goes with whom, and what happens when many threads use the table at once.
#include "core/handle_registry.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <set>
#include <thread>
#include <vector>

namespace OVI {
namespace {

using Handle = HandleRegistry::Handle;
using Handles = std::vector<Handle>;

/** Stands for a module; the registry never looks into one. Its destruction uses the registry, as real ones may. */
struct Probe {
  explicit Probe(std::atomic<int>* destroyed = nullptr) : destroyed_(destroyed) {}
  Probe(const Probe&) = delete;
  Probe& operator=(const Probe&) = delete;
  ~Probe() {
    std::thread([] { static_cast<void>(HandleRegistry::instance().find(1)); }).join();
    if (destroyed_ != nullptr) {
      ++*destroyed_;
    }
  }
  std::atomic<int>* destroyed_;
};

HandleRegistry::Module makeModule(std::atomic<int>* destroyed = nullptr) {
  auto probe = std::make_shared<Probe>(destroyed);
  return {probe, reinterpret_cast<GenTLCpp::BaseModule*>(probe.get())};
}

class HandleRegistryTest : public testing::Test {
 protected:
  ~HandleRegistryTest() override { registry_.clear(); }

  Handle openDevice(const HandleRegistry::Module& system, const HandleRegistry::Module& tlInterface,
                    const HandleRegistry::Module& device) {
    Handle handle = 0;
    EXPECT_EQ(registry_.registerOpenedDevice(system, tlInterface, device, handle), OVI_SUCCESS);
    return handle;
  }
  Handles related(Handle owner, ModuleKind kind) {
    Handles handles;
    static_cast<void>(registry_.listRelated(owner, kind, handles));
    return handles;
  }

  HandleRegistry& registry_ = HandleRegistry::instance();
};

TEST_F(HandleRegistryTest, HandlesAreNeverZeroAndNeverIssuedTwice) {
  std::set<Handle> issued;
  for (int round = 0; round < 3; ++round) {
    for (int i = 0; i < 10; ++i) {
      Handle handle = 0;
      ASSERT_EQ(registry_.registerModule(makeModule(), ModuleKind::System, handle), OVI_SUCCESS);
      EXPECT_NE(handle, 0U);
      EXPECT_TRUE(issued.insert(handle).second);
    }
    registry_.clear();
  }
}

TEST_F(HandleRegistryTest, NothingIsRegisteredWithoutAModuleOrAnOwner) {
  Handle handle = 0;
  EXPECT_EQ(registry_.registerModule(nullptr, ModuleKind::Device, handle), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(registry_.registerOpenedDevice(makeModule(), nullptr, makeModule(), handle), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(registry_.registerOwned(987654321, makeModule(), ModuleKind::Buffer, handle), OVI_ERR_NOT_FOUND);
  EXPECT_EQ(handle, 0U);
}

TEST_F(HandleRegistryTest, DevicesShareTheHandlesOfTheirSystemAndInterface) {
  const auto system = makeModule();
  const auto tlInterface = makeModule();
  const auto device = makeModule();
  const Handle first = openDevice(system, tlInterface, device);
  const Handle second = openDevice(system, tlInterface, makeModule());

  EXPECT_EQ(openDevice(system, tlInterface, device), first);
  EXPECT_EQ(related(first, ModuleKind::Device), Handles{first});
  EXPECT_EQ(related(first, ModuleKind::System), related(second, ModuleKind::System));
  EXPECT_EQ(related(first, ModuleKind::Interface), related(second, ModuleKind::Interface));
  EXPECT_EQ(registry_.find(related(second, ModuleKind::System).at(0)), system);
  EXPECT_EQ(registry_.handleOf(device.get()), first);
}

TEST_F(HandleRegistryTest, RemovingADeviceTakesWhatItListsWithIt) {
  const auto system = makeModule();
  const Handle device = openDevice(system, makeModule(), makeModule());
  const Handle other = openDevice(system, makeModule(), makeModule());
  Handle stream = 0;
  Handle buffer = 0;
  ASSERT_EQ(registry_.registerOwned(device, makeModule(), ModuleKind::DataStream, stream), OVI_SUCCESS);
  ASSERT_EQ(registry_.registerOwned(stream, makeModule(), ModuleKind::Buffer, buffer), OVI_SUCCESS);
  const Handle systemHandle = related(device, ModuleKind::System).at(0);

  registry_.remove(device);
  registry_.remove(device);  // Unknown by now, and ignored.

  EXPECT_EQ(registry_.find(device), nullptr);
  EXPECT_EQ(registry_.find(stream), nullptr);
  EXPECT_EQ(registry_.find(systemHandle), nullptr);
  EXPECT_NE(registry_.find(buffer), nullptr) << "buffers belong to the stream, not to the device";
  EXPECT_NE(registry_.find(other), nullptr);
  EXPECT_EQ(related(device, ModuleKind::DataStream), Handles{});

  const Handle reopened = openDevice(system, makeModule(), makeModule());
  EXPECT_EQ(registry_.find(related(reopened, ModuleKind::System).at(0)), system) << "the system gets a new handle";
}

TEST_F(HandleRegistryTest, RemovingAMemberTakesItOffItsOwnersList) {
  const Handle device = openDevice(makeModule(), makeModule(), makeModule());
  Handles streams(3);
  for (Handle& stream : streams) {
    ASSERT_EQ(registry_.registerOwned(device, makeModule(), ModuleKind::DataStream, stream), OVI_SUCCESS);
  }
  EXPECT_EQ(related(device, ModuleKind::DataStream), streams);
  registry_.remove(streams[1]);
  EXPECT_EQ(related(device, ModuleKind::DataStream), (Handles{streams[0], streams[2]}));
  registry_.remove(streams[0]);
  registry_.remove(streams[2]);
  Handles none;
  EXPECT_EQ(registry_.listRelated(device, ModuleKind::DataStream, none), OVI_ERR_NOT_FOUND);
}

TEST_F(HandleRegistryTest, ModulesAreDestroyedWithTheTableOpenToOthers) {
  std::atomic<int> destroyed = 0;
  const Handle device = openDevice(makeModule(&destroyed), makeModule(&destroyed), makeModule(&destroyed));
  Handle single = 0;
  ASSERT_EQ(registry_.registerModule(makeModule(&destroyed), ModuleKind::Event, single), OVI_SUCCESS);
  registry_.remove(device);
  EXPECT_EQ(destroyed, 3);
  registry_.clear();
  EXPECT_EQ(destroyed, 4);
}

TEST_F(HandleRegistryTest, ThreadsSeeWholeOperations) {
  constexpr int kWriters = 2;
  constexpr int kReaders = 4;
  constexpr int kRounds = 300;
  std::atomic<Handle> published = 0;
  std::atomic<int> running = kWriters;
  std::atomic<int> contradictions = 0;

  std::vector<std::thread> threads;
  for (int i = 0; i < kWriters; ++i) {
    threads.emplace_back([&] {
      for (int round = 0; round < kRounds; ++round) {
        const auto device = std::make_shared<int>(round);
        const HandleRegistry::Module module(device, reinterpret_cast<GenTLCpp::BaseModule*>(device.get()));
        const Handle handle = openDevice(module, module, module);
        published = handle;
        registry_.remove(handle);
      }
      --running;
    });
  }
  for (int i = 0; i < kReaders; ++i) {
    threads.emplace_back([&] {
      while (running > 0) {
        const Handle handle = published;
        // Whoever is listed was registered, and the list goes before or together with the device.
        const Handles listed = related(handle, ModuleKind::Device);
        const auto module = registry_.find(handle);
        if (listed.empty() && module != nullptr) {
          ++contradictions;
        }
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(contradictions, 0);
}

}  // namespace
}  // namespace OVI
