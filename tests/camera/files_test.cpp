// File access, user sets and what survives the process; raw and indirect registers.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "remote.h"

namespace vcam::test {
namespace {

enum File : std::uint8_t { kUserSet1 = 0, kGammaLut = 3, kFirmware = 4, kUserData = 5 };
enum Operation : std::uint8_t { kOpen, kClose, kRead, kWrite, kDelete };
enum Mode : std::uint8_t { kForRead, kForWrite, kForBoth };
enum Status : std::uint8_t { kSuccess, kFailure, kFatalError };

std::int64_t run(Remote& camera, Operation operation) {
  camera.set("FileOperationSelector", operation);
  camera.execute("FileOperationExecute");
  for (const auto end = Clock::now() + 10s; camera.get("FileOperationExecute") != 0 && Clock::now() < end;) {
    std::this_thread::yield();
  }
  return camera.get("FileOperationStatus");
}

std::int64_t open(Remote& camera, File file, Mode mode) {
  camera.set("FileSelector", file);
  camera.set("FileOpenMode", mode);
  return run(camera, kOpen);
}

std::int64_t writeAt(Remote& camera, std::int64_t offset, const FileContent& block) {
  EXPECT_EQ(camera.write("FileAccessBuffer", block), GC_ERR_SUCCESS);
  camera.set("FileAccessOffset", offset);
  camera.set("FileAccessLength", static_cast<std::int64_t>(block.size()));
  return run(camera, kWrite);
}

FileContent readAll(Remote& camera, File file) {
  EXPECT_EQ(open(camera, file, kForRead), kSuccess);
  FileContent content;
  const std::int64_t size = camera.get("FileSize");
  while (static_cast<std::int64_t>(content.size()) < size) {
    camera.set("FileAccessOffset", static_cast<std::int64_t>(content.size()));
    camera.set("FileAccessLength", 256);
    EXPECT_EQ(run(camera, kRead), kSuccess);
    const auto got = static_cast<std::size_t>(camera.get("FileOperationResult"));
    const FileContent block = camera.bytesOf("FileAccessBuffer");
    content.insert(content.end(), block.begin(), block.begin() + static_cast<std::ptrdiff_t>(got));
    if (got == 0) {
      ADD_FAILURE() << "a read moved nothing";
      break;
    }
  }
  EXPECT_EQ(camera.get("FileChecksum"), fileChecksum(content));
  EXPECT_EQ(run(camera, kClose), kSuccess);
  return content;
}

FileContent sample(std::size_t size) {
  FileContent content(size);
  for (std::size_t i = 0; i < size; ++i) {
    content[i] = static_cast<std::byte>(i * 31 + 7);
  }
  return content;
}

void writeAll(Remote& camera, const FileContent& content) {
  for (std::size_t at = 0; at < content.size(); at += 256) {
    const std::size_t count = std::min<std::size_t>(256, content.size() - at);
    const auto begin = content.begin() + static_cast<std::ptrdiff_t>(at);
    ASSERT_EQ(writeAt(camera, static_cast<std::int64_t>(at), {begin, begin + static_cast<std::ptrdiff_t>(count)}),
              kSuccess);
    ASSERT_EQ(camera.get("FileOperationResult"), static_cast<std::int64_t>(count));
  }
}

TEST(FileChecksum, AddsLittleEndianWordsAndFillsTheLast) {
  const auto of = [](std::initializer_list<int> values) {
    FileContent content;
    for (const int value : values) {
      content.push_back(static_cast<std::byte>(value));
    }
    return fileChecksum(content);
  };
  EXPECT_EQ(of({}), 0U);
  EXPECT_EQ(of({1, 2, 3, 4, 5}), 0x04030206U);
  EXPECT_EQ(of({0xFF, 0xFF, 0xFF, 0xFF, 2}), 1U) << "wraps";
}

TEST(FileAccess, WrittenFilesReadBackAndChecksumsAreChecked) {
  Remote camera;
  const FileContent content = sample(1000);
  ASSERT_EQ(open(camera, kUserData, kForWrite), kSuccess);
  writeAll(camera, content);
  camera.set("FileChecksum", fileChecksum(content));
  ASSERT_EQ(run(camera, kClose), kSuccess);
  EXPECT_EQ(readAll(camera, kUserData), content);

  ASSERT_EQ(open(camera, kUserData, kForWrite), kSuccess);
  writeAll(camera, sample(300));
  camera.set("FileChecksum", fileChecksum(sample(300)) + 1);
  EXPECT_EQ(run(camera, kClose), kFailure);
  EXPECT_EQ(readAll(camera, kUserData), content) << "the old file stays";

  ASSERT_EQ(open(camera, kUserData, kForBoth), kSuccess);
  ASSERT_EQ(writeAt(camera, 998, sample(4)), kSuccess);
  ASSERT_EQ(run(camera, kClose), kSuccess);
  EXPECT_EQ(readAll(camera, kUserData).size(), 1002U);
  EXPECT_EQ(run(camera, kDelete), kSuccess);
  EXPECT_EQ(camera.get("FileSize"), 0);
}

TEST(FileAccess, RefusesOperationsOutOfPlace) {
  Remote camera;
  camera.set("FileSelector", kUserData);
  EXPECT_EQ(run(camera, kClose), kFailure);
  EXPECT_EQ(run(camera, kRead), kFailure);
  ASSERT_EQ(open(camera, kUserData, kForRead), kSuccess);
  EXPECT_EQ(open(camera, kUserData, kForRead), kFailure) << "one is open already";
  EXPECT_EQ(writeAt(camera, 0, sample(4)), kFailure) << "open for reading";
  EXPECT_EQ(run(camera, kDelete), kFailure);
  camera.set("FileAccessOffset", 1);
  EXPECT_EQ(run(camera, kRead), kFailure) << "behind the end";
  EXPECT_EQ(run(camera, kClose), kSuccess);
  ASSERT_EQ(open(camera, kUserData, kForWrite), kSuccess);
  EXPECT_EQ(writeAt(camera, 1 << 24, sample(4)), kFatalError) << "behind the memory";
  EXPECT_EQ(camera.get("FileOperationResult"), 0);
  camera.set("FileSelector", kGammaLut);
  EXPECT_EQ(writeAt(camera, 0, sample(4)), kFailure) << "another file is open";
  EXPECT_EQ(camera.trySet("FileAccessLength", 257), GC_ERR_INVALID_VALUE);
  EXPECT_EQ(camera.trySet("FileAccessOffset", -1), GC_ERR_INVALID_VALUE);
}

TEST(FileAccess, FirmwareTakesTimeToApply) {
  Configuration configuration;
  configuration.firmwareApplyMs = 150;
  Remote camera(smallModel(), configuration);
  FileContent firmware = readAll(camera, kFirmware);
  ASSERT_GT(firmware.size(), 36U);
  EXPECT_EQ(run(camera, kDelete), kFailure);
  firmware[36] = std::byte{9};
  ASSERT_EQ(open(camera, kFirmware, kForWrite), kSuccess);
  writeAll(camera, firmware);
  camera.set("FileChecksum", fileChecksum(firmware));
  camera.set("FileOperationSelector", kClose);
  const auto begin = Clock::now();
  camera.execute("FileOperationExecute");
  if (Clock::now() - begin < 100ms) {
    EXPECT_EQ(camera.get("FileOperationExecute"), 1) << "still at it";
    EXPECT_EQ(camera.getText("DeviceFirmwareVersion"), "1.0.0");
    EXPECT_EQ(camera.trySet("FileOperationExecute", 1), GC_ERR_BUSY);
  }
  while (camera.get("FileOperationExecute") != 0 && Clock::now() < begin + 10s) {
    std::this_thread::yield();
  }
  EXPECT_GE(Clock::now() - begin, 150ms);
  EXPECT_EQ(camera.get("FileOperationStatus"), kSuccess);
  EXPECT_EQ(camera.getText("DeviceFirmwareVersion"), "1.9.0");

  ASSERT_EQ(open(camera, kFirmware, kForWrite), kSuccess);
  writeAll(camera, sample(100));
  EXPECT_EQ(run(camera, kClose), kFailure) << "no firmware";
}

TEST(FileAccess, LutFileIsTheTable) {
  Remote camera;
  FileContent file = readAll(camera, kGammaLut);
  ASSERT_EQ(file.size(), 516U);
  EXPECT_EQ(file[0], std::byte{'D'});
  EXPECT_EQ(camera.get("LUTValue", 255), 4095);
  file[4 + 2 * 255] = std::byte{0x23};
  file[4 + 2 * 255 + 1] = std::byte{0x01};
  ASSERT_EQ(open(camera, kGammaLut, kForWrite), kSuccess);
  writeAll(camera, file);
  ASSERT_EQ(run(camera, kClose), kSuccess);
  EXPECT_EQ(camera.get("LUTValue", 255), 0x123);
}

TEST(UserSets, AndFilesSurviveInTheStorageFolder) {
  const std::filesystem::path folder = std::filesystem::absolute("storage");
  std::filesystem::remove_all(folder);
  Configuration configuration;
  configuration.storageFolder = folder;
  FileContent set;
  {
    Remote camera(smallModel(), configuration);
    camera.set("UserSetSelector", 0);
    EXPECT_EQ(camera.trySet("UserSetSave", 1), GC_ERR_ACCESS_DENIED);
    camera.set("Width", 64);
    camera.setFloat("ExposureTime", 1234.5);
    camera.set("UserSetSelector", 1);
    camera.execute("UserSetSave");
    camera.set("UserSetDefault", 1);
    const FileContent name = toContent("Kitchen");
    ASSERT_EQ(camera.write("DeviceUserID", name), GC_ERR_SUCCESS);
    camera.set("UserSetSelector", 2);
    camera.execute("UserSetLoad");
    EXPECT_EQ(camera.get("Width"), 256) << "a set that was never saved holds the defaults";
    set = readAll(camera, kUserSet1);
    EXPECT_EQ(toText(set).substr(0, 8), "UserSet\n");
  }
  Remote camera(smallModel(), configuration);
  EXPECT_EQ(camera.get("Width"), 64);
  EXPECT_DOUBLE_EQ(camera.getFloat("ExposureTime"), 1234.5);
  EXPECT_EQ(camera->userDefinedName(), "Kitchen");
  EXPECT_EQ(readAll(camera, kUserSet1), set);
  // A set that came from outside and is none is refused when it is loaded, and nothing changes.
  ASSERT_EQ(open(camera, kUserSet1, kForWrite), kSuccess);
  writeAll(camera, sample(64));
  ASSERT_EQ(run(camera, kClose), kSuccess);
  camera.set("UserSetSelector", 1);
  EXPECT_EQ(camera.trySet("UserSetLoad", 1), GC_ERR_INVALID_VALUE);
  EXPECT_EQ(camera.get("Width"), 64);
}

// A full disk must not cost what was stored before.
TEST(FileStore, KeepsTheOldFileWhenTheNewOneCannotBeWritten) {
  const std::filesystem::path full = "/dev/full";
  if (!std::filesystem::exists(full)) {
    GTEST_SKIP() << "no device that is always full";
  }
  const std::filesystem::path folder = std::filesystem::absolute("full");
  std::filesystem::remove_all(folder);
  std::vector<std::string> reports;
  const auto report = [&](const std::string& text) { reports.push_back(text); };
  FileStore store(folder, report);
  store.write("UserData", toContent("old"));
  std::filesystem::create_symlink(full, folder / "UserData.bin.new");
  store.write("UserData", toContent("new"));
  EXPECT_EQ(reports.size(), 1U);
  EXPECT_EQ(toText(*store.read("UserData")), "new") << "as long as the producer lives";
  EXPECT_EQ(toText(*FileStore(folder, report).read("UserData")), "old");
}

TEST(RawRegisters, AreReachedDirectlyAndIndirectlyInBothByteOrders) {
  for (const bool bigEndian : {false, true}) {
    CameraModel model = smallModel();
    model.bigEndian = bigEndian;
    Remote camera(model);
    const auto put = [&](std::uint64_t address, std::uint32_t value) {
      std::array<unsigned char, 4> bytes{};
      for (std::size_t i = 0; i < 4; ++i) {
        bytes[bigEndian ? 3 - i : i] = static_cast<unsigned char>(value >> 8 * i);
      }
      return camera->write(address, bytes.data(), bytes.size());
    };
    const auto take = [&](std::uint64_t address) {
      std::array<unsigned char, 4> bytes{};
      EXPECT_EQ(camera->read(address, bytes.data(), bytes.size()), GC_ERR_SUCCESS);
      std::uint32_t value = 0;
      for (std::size_t i = 0; i < 4; ++i) {
        value |= std::uint32_t{bytes[bigEndian ? 3 - i : i]} << 8 * i;
      }
      return value;
    };
    ASSERT_EQ(put(0xA3E4, 0x2A00), GC_ERR_SUCCESS);
    EXPECT_EQ(camera.get("MaintenanceMode"), 0x2A00);
    ASSERT_EQ(put(0xA184, 0xA400), GC_ERR_SUCCESS);
    ASSERT_EQ(put(0xA188, 0xCAFEF00D), GC_ERR_SUCCESS);
    EXPECT_EQ(take(0xA400), 0xCAFEF00DU);
    ASSERT_EQ(put(0xA18C, 0xA3E4), GC_ERR_SUCCESS);
    EXPECT_EQ(take(0xA190), 0x2A00U);
    for (const std::uint32_t nowhere : {0x4U, 0xA18DU, 0xA190U, 0xA193U}) {
      ASSERT_EQ(put(0xA18C, nowhere), GC_ERR_SUCCESS);
      EXPECT_EQ(take(0xA190), 0xFFFFFFFFU);
    }
    for (const std::uint32_t itself : {0xA185U, 0xA188U, 0xA18BU}) {
      ASSERT_EQ(put(0xA184, itself), GC_ERR_SUCCESS);
      EXPECT_EQ(put(0xA188, 1), GC_ERR_INVALID_ADDRESS) << "not into itself, nor into a part of it";
    }
    std::array<unsigned char, 8> bytes{};
    EXPECT_EQ(camera->write(camera->description().address, bytes.data(), 1), GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(camera->read(camera->description().address + camera->description().size - 4, bytes.data(), 8),
              GC_ERR_INVALID_ADDRESS);
  }
}

}  // namespace
}  // namespace vcam::test
