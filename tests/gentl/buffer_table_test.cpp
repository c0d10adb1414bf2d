// Announced buffers are found by either handle, whatever came and went before, and without a lock while others come.
#include "gentl/buffer_table.h"

#include <atomic>
#include <thread>

#include "gtest/gtest.h"

namespace GenTLCpp {
namespace {

BUFFER_HANDLE nativeOf(std::uint64_t number) {
  return reinterpret_cast<BUFFER_HANDLE>(static_cast<std::uintptr_t>(number));
}

TEST(BufferTableTest, FindsWhatIsAnnouncedAndNothingElse) {
  constexpr std::uint64_t kPool = 200;  // Grows several times.
  BufferTable table;
  EXPECT_EQ(table.findNative(nativeOf(1)), nullptr);
  table.remove(nativeOf(1));
  int records[kPool] = {};
  for (std::uint64_t pool = 0; pool < 6; ++pool) {  // Handles of buffers that are gone come again, or do not.
    const std::uint64_t native = 1 + (pool % 3) * 7;
    const std::uint64_t handle = 1 + pool * kPool;
    for (std::uint64_t i = 0; i < kPool; ++i) {
      AnnouncedBuffer& buffer = table.add(nativeOf(native + 64 * i), &records[i]);
      EXPECT_EQ(table.findHandle(handle + i), nullptr);
      EXPECT_EQ(buffer.deliveredSize.load(), 0U);
      buffer.deliveredSize = 5;
      table.setHandle(buffer, handle + i);
    }
    for (std::uint64_t i = 0; i < kPool; ++i) {
      AnnouncedBuffer* buffer = table.findNative(nativeOf(native + 64 * i));
      ASSERT_NE(buffer, nullptr);
      EXPECT_EQ(buffer->userData.load(), &records[i]);
      EXPECT_EQ(table.findHandle(handle + i), buffer);
    }
    EXPECT_EQ(table.findNative(nullptr), nullptr);
    EXPECT_EQ(table.findHandle(0), nullptr);
    EXPECT_EQ(table.findHandle(handle + kPool), nullptr);
    for (std::uint64_t i = 0; i < kPool; ++i) {
      table.remove(nativeOf(native + 64 * i));
      EXPECT_EQ(table.findNative(nativeOf(native + 64 * i)), nullptr);
      EXPECT_EQ(table.findHandle(handle + i), nullptr);
    }
  }
}

TEST(BufferTableTest, IsSearchedWhileItChanges) {
  BufferTable table;
  int record = 0;
  table.setHandle(table.add(nativeOf(1), &record), 1);
  std::atomic<bool> isOver{false};
  const std::jthread changer([&] {
    for (std::uint64_t round = 0; round < 200; ++round) {
      for (std::uint64_t i = 2; i < 100; ++i) {
        table.setHandle(table.add(nativeOf(round + i), nullptr), round * 100 + i);
      }
      for (std::uint64_t i = 2; i < 100; ++i) {
        table.remove(nativeOf(round + i));
      }
    }
    isOver = true;
  });
  while (!isOver) {
    const AnnouncedBuffer* steady = table.findNative(nativeOf(1));
    ASSERT_NE(steady, nullptr);
    ASSERT_EQ(steady->userData.load(), &record);
    ASSERT_EQ(table.findHandle(1), steady);
    static_cast<void>(table.findNative(nativeOf(50)));
  }
}

}  // namespace
}  // namespace GenTLCpp
