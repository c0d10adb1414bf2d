// Objects that are put out of reach while threads use them.
#include "core/hold.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <deque>
#include <memory>
#include <thread>
#include <vector>

#include "core/key_index.h"

namespace OVI {
namespace {

using namespace std::chrono_literals;

/** Says in its memory whether it is alive. */
struct HeldProbe {
  explicit HeldProbe(std::atomic<int>& count) : destroyed(count) {}
  HeldProbe(const HeldProbe&) = delete;
  HeldProbe& operator=(const HeldProbe&) = delete;
  ~HeldProbe() {
    alive = 0;
    ++destroyed;
  }
  std::atomic<int>& destroyed;
  int alive = 12345;
};

TEST(HoldTest, WhatIsRetiredLivesUntilTheLastOneLetsGo) {
  std::atomic<int> destroyed = 0;
  auto probe = std::make_shared<HeldProbe>(destroyed);
  std::atomic<HeldProbe*> place = probe.get();
  std::deque<Hold> nested;  // More than a thread's first block has places for.
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(nested.emplace_back().of(place), probe.get());
  }
  place = nullptr;
  EXPECT_EQ(Hold().of(place), nullptr);
  retire(std::move(probe));
  while (!nested.empty()) {
    EXPECT_EQ(destroyed, 0);
    Hold moved = std::move(nested.front());
    nested.pop_front();
  }
  EXPECT_EQ(destroyed, 1);
  retire(std::make_shared<HeldProbe>(destroyed));
  EXPECT_EQ(destroyed, 2) << "nobody holds it";
}

TEST(HoldTest, ShuttingAGateWaitsForThoseInsideButNotForItself) {
  UseGate gate;
  std::atomic<bool> isInside{false};
  std::atomic<bool> mayLeave{false};
  std::atomic<bool> hasLeft{false};
  Hold own;
  ASSERT_TRUE(gate.enter(own));
  std::thread other([&] {
    Hold hold;
    isInside = gate.enter(hold);
    while (!mayLeave) {
      std::this_thread::yield();
    }
    hasLeft = true;
  });
  while (!isInside) {
    std::this_thread::yield();
  }
  EXPECT_FALSE(gate.shut(1ms));
  mayLeave = true;
  EXPECT_TRUE(gate.shut(10s));
  EXPECT_TRUE(hasLeft);
  Hold late;
  EXPECT_FALSE(gate.enter(late));
  other.join();
}

TEST(HoldTest, WhoFindsAnObjectFindsItAlive) {
  constexpr std::uint64_t kKeys = 100;  // Makes the index grow several times.
  constexpr int kRounds = 60;
  KeyIndex<HeldProbe> index;
  std::atomic<int> destroyed = 0;
  std::atomic<std::uint64_t> newest = 1;
  std::atomic<bool> isOver{false};
  std::atomic<int> dead = 0;
  std::vector<std::thread> readers;
  for (int i = 0; i < 3; ++i) {
    readers.emplace_back([&] {
      while (!isOver) {
        const std::uint64_t last = newest;
        for (std::uint64_t key = last > kKeys ? last - kKeys : 1; key <= last; ++key) {
          Hold hold;
          const HeldProbe* const probe = index.find(key, hold);
          dead += probe != nullptr && probe->alive != 12345 ? 1 : 0;
        }
      }
    });
  }
  for (std::uint64_t round = 0; round < kRounds; ++round) {
    std::vector<std::shared_ptr<HeldProbe>> probes;
    for (std::uint64_t i = 0; i < kKeys; ++i) {
      probes.push_back(std::make_shared<HeldProbe>(destroyed));
      index.insert(round * kKeys + i + 1, *probes.back());
      newest = round * kKeys + i + 1;
    }
    for (std::uint64_t i = 0; i < kKeys; ++i) {
      index.erase(round * kKeys + i + 1);
      retire(std::move(probes[i]));
    }
  }
  isOver = true;
  for (std::thread& reader : readers) {
    reader.join();
  }
  EXPECT_EQ(dead, 0);
  EXPECT_EQ(destroyed, kRounds * static_cast<int>(kKeys));
}

}  // namespace
}  // namespace OVI
