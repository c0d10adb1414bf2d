// File transfer against a camera that follows the protocol, or does not.
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>

#include "file_camera.h"
#include "gmock/gmock.h"

namespace scripted {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

/** Progress as one text a report: "status done/total code message". */
struct Progress {
  std::vector<std::string> reports;
  int stopAt = -1;

  static std::uint8_t take(const oviFileTransferProgress* progress, void* context) {
    auto& mine = *static_cast<Progress*>(context);
    mine.reports.push_back(std::to_string(progress->status) + " " + std::to_string(progress->bytesDone) + "/" +
                           std::to_string(progress->totalBytes) + " " + std::to_string(progress->errorCode) + " " +
                           progress->message);
    return static_cast<int>(mine.reports.size()) - 1 == mine.stopAt ? 0 : 1;
  }
};

Bytes readFile(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void writeFile(const std::string& path, const Bytes& bytes) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

Bytes randomBytes(std::size_t size, unsigned seed) {
  std::mt19937 random(seed);
  Bytes bytes(size);
  for (std::uint8_t& byte : bytes)
    byte = static_cast<std::uint8_t>(random());
  return bytes;
}

class FileTransfer : public ScriptedCameraTest {
 protected:
  explicit FileTransfer(std::string producer = "ScriptedCamera") : ScriptedCameraTest(std::move(producer)) {}

  void SetUp() override {
    ScriptedCameraTest::SetUp();
    fs::remove_all("files");
    fs::create_directory("files");
    start();
  }
  void TearDown() override {
    ScriptedCameraTest::TearDown();
    std::uint8_t disabled = 1;
    oviIsFeatureCachingDisabled(&disabled);
    EXPECT_EQ(disabled, 0) << "a transfer left feature caching off";
  }

  /** A fresh camera with that buffer. */
  void start(std::int64_t bufferLength = 256) {
    camera_ = std::make_unique<FileCamera>(script(), bufferLength);
    progress = {};
    open();
    camera_->takeTrace();
  }
  FileCamera& camera() { return *camera_; }

  oviErr download(const char* path = "files/in", const char* selector = "UserSet1") {
    return oviFileDownloadToDevice(device(), path, selector, 2, Progress::take, &progress);
  }
  oviErr upload(const char* path = "files/out", const char* selector = "UserSet1") {
    return oviFileUploadFromDevice(device(), path, selector, 2, Progress::take, &progress);
  }
  static std::size_t filesInFolder() {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator("files"), fs::directory_iterator{}));
  }

  Progress progress;

 private:
  std::unique_ptr<FileCamera> camera_;
};

TEST_F(FileTransfer, DownloadGoesStepByStep) {
  const Bytes data = randomBytes(600, 1);
  writeFile("files/in", data);
  EXPECT_EQ(download(), OVI_SUCCESS);
  EXPECT_EQ(camera().file, data);
  EXPECT_FALSE(camera().isOpen());
  std::uint32_t sum = 0;
  for (std::size_t i = 0; i < data.size(); ++i)
    sum += static_cast<std::uint32_t>(data[i]) << (i % 4 * 8);
  EXPECT_THAT(camera().takeTrace(),
              testing::ElementsAre("Heartbeat=2000", "Heartbeat=3000",                      //
                                   "Operation=1", "Execute=1",                              //
                                   "Selector=0", "OpenMode=1", "Operation=0", "Execute=1",  //
                                   "Operation=3",                                           //
                                   "Buffer=256", "Offset=0", "Length=256", "Execute=1",     //
                                   "Buffer=256", "Offset=256", "Length=256", "Execute=1",   //
                                   "Buffer=88", "Offset=512", "Length=88", "Execute=1",     //
                                   "Checksum=" + std::to_string(sum), "Operation=1", "Execute=1"));
  EXPECT_THAT(progress.reports,
              testing::ElementsAre(
                  "0 0/0 0 File download to device is starting", "1 0/600 0 Data transfer in progress...",
                  "1 256/600 0 Data transfer in progress...", "1 512/600 0 Data transfer in progress...",
                  "1 600/600 0 Data transfer finished successfully!",
                  "2 600/600 0 Waiting for device to finish the update...", "3 600/600 0 Tranfer finished successful"));
}

TEST_F(FileTransfer, UploadGoesStepByStep) {
  camera().file = randomBytes(512, 2);
  EXPECT_EQ(upload(), OVI_SUCCESS);
  EXPECT_EQ(readFile("files/out"), camera().file);
  EXPECT_EQ(filesInFolder(), 1U);
  EXPECT_FALSE(camera().isOpen());
  EXPECT_THAT(camera().takeTrace(), testing::ElementsAre("Operation=1", "Execute=1",                              //
                                                         "Selector=0", "OpenMode=0", "Operation=0", "Execute=1",  //
                                                         "Operation=2",                                           //
                                                         "Offset=0", "Length=256", "Execute=1",                   //
                                                         "Offset=256", "Length=256", "Execute=1",                 //
                                                         "Operation=1", "Execute=1"));
  EXPECT_THAT(
      progress.reports,
      testing::ElementsAre("0 0/0 0 File upload from device is starting", "1 0/512 0 Data transfer in progress..",
                           "1 256/512 0 Data transfer in progress..", "3 512/512 0 Tranfer finished successful"));
  // What was there under the target's name goes only when the new file is complete.
  camera().checksumError = 1;
  camera().file.push_back(7);
  progress = {};
  EXPECT_EQ(upload(), OVI_ERR_FILE_OPERATION_FAILURE);
  EXPECT_THAT(progress.reports, testing::Contains("5 512/513 -110 Checksum does not match!"));
  EXPECT_EQ(readFile("files/out").size(), 512U);
  EXPECT_EQ(filesInFolder(), 1U);
  // One model family computes another checksum.
  std::strcpy(reinterpret_cast<char*>(&script().camera.memory[FileCamera::kModelName]), "Pelt-swir 640");
  open();
  EXPECT_EQ(upload(), OVI_SUCCESS);
  EXPECT_EQ(readFile("files/out"), camera().file);
}

TEST_F(FileTransfer, FaultsEndItWithCodeAndReason) {
  struct Fault {
    bool down;
    std::function<void(FileCamera&)> arrange;
    oviErr code;
    const char* log;
    bool leftOpen;
  };
  const auto refuse = [](FileCamera::Register what, int at) {
    return [=](FileCamera& camera) {
      camera.refused = what;
      camera.refusedAt = at;
    };
  };
  const auto atChunk = [](int chunk, FileCamera::Register what, std::uint64_t value) {
    return [=](FileCamera& camera) {
      camera.onChunk = [=, &camera](int now) {
        if (now == chunk)
          camera.set(what, value);
      };
    };
  };
  const Fault faults[] = {
      {true, refuse(FileCamera::kSelector, 1), OVI_ERR_IO,
       "Failed to select file on camera! File: UserSet1. Operation mode: Write Code: [-118]", false},
      {true, refuse(FileCamera::kOpenMode, 1), OVI_ERR_IO, "Failed to set FileOpenMode on camera! Code: [-118]", false},
      {true, refuse(FileCamera::kOperation, 2), OVI_ERR_IO,
       "Failed to select file opertion on camera to Open! Code: [-118]", false},
      {true, refuse(FileCamera::kExecute, 2), OVI_ERR_IO, "Error during oviSetParameterCmd(FileOperationExecute)! Code",
       false},
      {true, refuse(FileCamera::kOperation, 3), OVI_ERR_IO,
       "oviSetParameterString: FileOperationSelector(Write) failed Code: [-118]", true},
      {true, refuse(FileCamera::kBuffer, 2), OVI_ERR_IO, "File update error on setting register FileAccessBuffer: Code",
       true},
      {true, refuse(FileCamera::kOffset, 3), OVI_ERR_IO, "File update error on setting feature FileAccessOffset: Code",
       true},
      {true, refuse(FileCamera::kLength, 1), OVI_ERR_IO, "File update error on setting feature FileAccessLength: Code",
       true},
      {true, refuse(FileCamera::kExecute, 4), OVI_ERR_IO, "File update error on executing file operation command: Code",
       true},
      {true, atChunk(2, FileCamera::kResult, 255), OVI_ERR_FILE_OPERATION_FAILURE,
       "FileOperationResult feature returned a size unequal to the expected value: 255 != 256", true},
      {true, atChunk(1, FileCamera::kStatus, FileCamera::kFatalError), OVI_ERR_UNKNOWN,
       "Camera reported a fatal error during file operation (FileOperationStatus=FatalError)! ", true},
      {true, atChunk(3, FileCamera::kStatus, FileCamera::kOther), OVI_ERR_UNKNOWN,
       "Camera reported an error during file operation (FileOperationStatus=Other)", true},
      {true, refuse(FileCamera::kChecksum, 1), OVI_ERR_IO, "Failed to set feature FileCheckSum on camera: Code", true},
      {true, refuse(FileCamera::kOperation, 4), OVI_ERR_IO,
       "CloseFile: oviSetParameterString(FileOperationSelector) -> Close - Error: Code: [-118]", true},
      {true, [](FileCamera& camera) { camera.statusAfterClose = FileCamera::kFailure; }, OVI_ERR_FILE_OPERATION_FAILURE,
       "Error result after file update process finished: Code: [-110]", false},
      {false, refuse(FileCamera::kOperation, 3), OVI_ERR_IO,
       "LoadFileFromCamera oviSetParameterString:FileOperationSelector(\"Read\") Code", false},
      {false, refuse(FileCamera::kOffset, 2), OVI_ERR_IO,
       "LoadFileFromCamera oviSetParameterInt(FileAccessOffset) failed. Error: Code", false},
      {false, refuse(FileCamera::kLength, 3), OVI_ERR_IO,
       "LoadFileFromCamera oviSetParameterInt(FileAccessLength) failed. Error: Code", false},
      {false, refuse(FileCamera::kExecute, 3), OVI_ERR_IO,
       "LoadFileFromCamera fileOperationExecute: FileOperationExecute(1) failed. Error: Code", false},
      {false, atChunk(2, FileCamera::kResult, 0), OVI_ERR_FILE_OPERATION_FAILURE,
       "FileOperationResult feature returned a size unequal to the expected value: 0 != 256", false},
      {false, atChunk(1, FileCamera::kStatus, FileCamera::kFailure), OVI_ERR_FILE_OPERATION_FAILURE,
       "LoadFileFromCamera GetFileOperationStatus: FileOperationStatus failed. Error: Code: [-110]", false},
      {false, atChunk(3, FileCamera::kStatus, FileCamera::kFatalError), OVI_ERR_FILE_OPERATION_FATAL,
       "LoadFileFromCamera GetFileOperationStatus: FileOperationStatus returns \"FatalError\". Error: Code: [-111]",
       false},
      {false, atChunk(3, FileCamera::kStatus, FileCamera::kOther), OVI_SUCCESS, "", false},
      {false, [](FileCamera& camera) { camera.reportedSize = std::int64_t{1} << 40U; }, OVI_ERR_FILE_OPERATION_FAILURE,
       "The camera's FileSize is not usable: 1099511627776 bytes", false},
      {false, [](FileCamera& camera) { camera.reportedSize = INT64_MAX; }, OVI_ERR_FILE_OPERATION_FAILURE,
       "The camera's FileSize is not usable: ", false},
  };
  const Bytes data = randomBytes(600, 3);
  writeFile("files/in", data);
  for (const Fault& fault : faults) {
    SCOPED_TRACE(std::string(fault.log) + " #" + std::to_string(&fault - faults));
    start();
    camera().file = data;
    fault.arrange(camera());
    takeLog();
    EXPECT_EQ(fault.down ? download() : upload(), fault.code);
    EXPECT_EQ(camera().isOpen(), fault.leftOpen);
    EXPECT_TRUE(fault.code == OVI_SUCCESS || !findInLog(takeLog(1), fault.log).empty());
    ASSERT_FALSE(progress.reports.empty());
    if (fault.code == OVI_SUCCESS) {
      EXPECT_EQ(progress.reports.back(), "3 600/600 0 Tranfer finished successful");
    } else {
      EXPECT_THAT(progress.reports.back(), testing::StartsWith("4 0/"));
      EXPECT_THAT(progress.reports.back(),
                  testing::EndsWith(std::to_string(fault.code) + " Tranfer finished with error"));
      EXPECT_FALSE(fs::exists("files/out"));
    }
    fs::remove("files/out");
  }
  for (const std::int64_t length : {0, -4}) {
    start(length);
    camera().file = data;
    EXPECT_NE(upload(), OVI_SUCCESS) << length;
    EXPECT_NE(download(), OVI_SUCCESS) << length;
    EXPECT_FALSE(fs::exists("files/out"));
  }
}

TEST_F(FileTransfer, ToleratesSomeFailingPolls) {
  writeFile("files/in", {1, 2, 3, 4, 5});
  struct Case {
    int answered;
    int failing;
    bool good;
  };
  for (const Case& each : {Case{0, 20, true}, Case{0, 21, false}, Case{1, 19, true}, Case{1, 20, false}}) {
    SCOPED_TRACE(std::to_string(each.answered) + "+" + std::to_string(each.failing));
    start();
    camera().onChunk = [&](int) {
      // One answered poll more: the command has just been asked whether it is active, before it was executed.
      camera().skippedPolls = each.answered;
      camera().failingPolls = each.failing;
      camera().set(FileCamera::kExecute, std::uint64_t{each.answered > 0 ? 1U : 0U});
    };
    const auto inner = script().camera.onRead;
    script().camera.onRead = [&, inner](std::uint64_t address, std::size_t size) {
      const GC_ERROR code = inner(address, size);
      if (address == FileCamera::kExecute && code == GC_ERR_SUCCESS && camera().failingPolls <= 0)
        camera().set(FileCamera::kExecute, std::uint64_t{0});
      return code;
    };
    EXPECT_EQ(download(), each.good ? OVI_SUCCESS : OVI_ERR_TIMEOUT);
    EXPECT_EQ(findInLog(takeLog(1), "Error during oviIsCommandActive(FileOperationExecute)! Code: [-108]") == "",
              each.good);
  }
}

TEST_F(FileTransfer, StopsAtEveryReport) {
  writeFile("files/in", randomBytes(600, 4));
  for (const bool down : {true, false}) {
    const int reports = down ? 6 : 4;
    for (int stop = 0; stop < reports; ++stop) {
      SCOPED_TRACE((down ? "download stopped at " : "upload stopped at ") + std::to_string(stop));
      start();
      camera().file = randomBytes(600, 4);
      progress.stopAt = stop;
      const bool told = down && stop == 4;  // The report that the data are through does not ask.
      EXPECT_EQ(down ? download() : upload(), told ? OVI_SUCCESS : OVI_ERR_ABORTED);
      if (!told) {
        EXPECT_THAT(progress.reports.back(), testing::EndsWith("-109 Tranfer finished with error"));
      }
      EXPECT_FALSE(fs::exists("files/out"));
      EXPECT_TRUE(down || !camera().isOpen());
    }
  }
}

TEST_F(FileTransfer, JudgesItsArgumentsFirst) {
  writeFile("files/in", {1, 2, 3});
  EXPECT_EQ(download(nullptr), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(upload("files/out", nullptr), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(download("files/in", "userset1"), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(oviFileUploadFromDevice(999999, "files/out", "Nope", 1, nullptr, nullptr), OVI_ERR_NOT_FOUND);
  EXPECT_TRUE(camera().takeTrace().empty());
  EXPECT_TRUE(progress.reports.empty());
  // Accepted everywhere, in any case; this camera does not have it.
  EXPECT_EQ(download("files/in", "gammalut"), OVI_ERR_NOT_FOUND);
  takeLog();
  EXPECT_EQ(download("files/missing"), OVI_ERR_NOT_FOUND);
  EXPECT_NE(findInLog(takeLog(1), "Cannot read the file files/missing: "), "");
  writeFile("files/empty", {});
  EXPECT_EQ(download("files/empty"), OVI_ERR_NOT_FOUND);
  EXPECT_NE(findInLog(takeLog(1), "Cannot read the file files/empty: The file is empty."), "");
  EXPECT_EQ(download("files"), OVI_ERR_NOT_FOUND);
  camera().file = {1};
  EXPECT_EQ(upload("files/no/such/folder"), OVI_ERR_FILE_OPERATION_FAILURE);
  EXPECT_NE(findInLog(takeLog(1), "Cannot write the file files/no/such/folder: "), "");
  EXPECT_EQ(upload("files"), OVI_ERR_FILE_OPERATION_FAILURE);
  EXPECT_EQ(upload("files/Gr\xC3\xBC\xC3\x9F"), OVI_SUCCESS);
  EXPECT_EQ(readFile("files/Gr\xC3\xBC\xC3\x9F"), Bytes{1});
}

TEST_F(FileTransfer, RandomFilesComeBackIdentical) {
  std::mt19937 random(5);
  for (unsigned i = 0; i < 40; ++i) {
    const std::size_t size = 1 + random() % 40000;
    const std::int64_t chunk = 1 + static_cast<std::int64_t>(random() % 9000);
    SCOPED_TRACE(std::to_string(size) + " bytes in chunks of " + std::to_string(chunk));
    start(std::max<std::int64_t>(chunk, static_cast<std::int64_t>(size) / 100));
    const Bytes data = randomBytes(size, i);
    writeFile("files/in", data);
    ASSERT_EQ(download(), OVI_SUCCESS);
    ASSERT_EQ(upload(), OVI_SUCCESS);
    ASSERT_EQ(readFile("files/out"), data);
    // Another file of that length has none of the bytes that were written before.
    for (std::uint8_t& byte : camera().file)
      byte ^= 0xFF;
    ASSERT_EQ(upload(), OVI_SUCCESS);
    ASSERT_EQ(readFile("files/out"), camera().file);
  }
}

TEST_F(FileTransfer, TellsTheTypeOfAFile) {
  const auto typeOf = [this](const std::string& content) {
    writeFile("files/in", Bytes(content.begin(), content.end()));
    char type[32] = "untouched";
    EXPECT_EQ(oviGetUpdateFileType(device(), "files/in", type, sizeof type), OVI_SUCCESS);
    return std::string(type);
  };
  const std::string zeros(64, '\0');
  const std::string firmware = zeros.substr(0, 32) + "V\xEF\xEF\xEF";
  const std::string sensor = "APPL" + zeros.substr(0, 8) + "\x60\x82";
  const std::pair<std::string, const char*> cases[] = {
      {"APPLxxxx", "Application"},
      {"APP", "untouched"},
      {"FPGA", "Bitstream"},
      {"HWCA", "HWCalibFile"},
      {"BREF", "BrefLut1"},
      {"KM", "User Defined"},
      {"SHC", "PRNULUT1"},
      {"UserSetV", "Default"},
      {"UserSetX", "UserSet1"},
      {"DD", "GammaLUT"},
      {"DevicePackage", "PackageDescriptionFile"},
      {"SENS", "SensorFile"},
      {"XMLx", "Xml"},
      {"\xEF\xBB\xBF<?xml", "Xml"},
      {"abc<?xml", "Xml"},
      {"<?xml", "untouched"},
      {firmware + "x", "Firmware"},
      {firmware, "untouched"},
      {"FPGA" + firmware.substr(4) + "x", "Bitstream"},
      {sensor, "SensorFile"},
      {sensor.substr(0, 13), "Application"},
      {"", "untouched"},
  };
  for (const auto& [content, type] : cases)
    EXPECT_EQ(typeOf(content), type) << content.substr(0, 13) << " of " << content.size();
  char type[5] = "####";
  EXPECT_EQ(oviGetUpdateFileType(device(), "files/missing", type, sizeof type), OVI_SUCCESS);
  EXPECT_STREQ(type, "####");
  writeFile("files/in", {'A', 'P', 'P', 'L'});
  EXPECT_EQ(oviGetUpdateFileType(device(), "files/in", type, sizeof type), OVI_SUCCESS);
  EXPECT_STREQ(type, "Appl");
  EXPECT_EQ(oviGetUpdateFileType(device(), "files/in", type, 0), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(oviGetUpdateFileType(device(), nullptr, type, 5), OVI_ERR_INVALID_PARAMETER);
}

class KnownProducerTransfer : public FileTransfer {
 protected:
  static constexpr std::size_t kAcknowledge = 0x10;
  static constexpr std::size_t kHeartbeat = 0x20;

  KnownProducerTransfer() : FileTransfer("gevtls2i") {}

  void arrange(const std::string& features = "GVCPAckTimeout HeartbeatTimeout", int minimum = 100) {
    const auto feature = [minimum](const std::string& name, std::size_t address) {
      return "<Integer Name=\"" + name + "\"><pValue>" + name + "Reg</pValue><Min>" + std::to_string(minimum) +
             "</Min><Max>1500</Max></Integer>" + "<IntReg Name=\"" + name + "Reg\"><Address>" +
             std::to_string(address) +
             "</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable>"
             "<Sign>Signed</Sign><Endianess>LittleEndian</Endianess></IntReg>";
    };
    Space& local = script().localDevice;
    local.description =
        describe(features, feature("GVCPAckTimeout", kAcknowledge) + feature("HeartbeatTimeout", kHeartbeat));
    local.memory[kAcknowledge] = 150;
    local.memory[kHeartbeat] = 120;
    local.onWrite = [this](std::uint64_t address, std::size_t) {
      std::uint32_t value = 0;
      std::memcpy(&value, &script().localDevice.memory[address], sizeof value);
      writes.push_back((address == kAcknowledge ? "Acknowledge=" : "Heartbeat=") + std::to_string(value));
      return GC_ERR_SUCCESS;
    };
    start();
    writes.clear();
  }

  std::vector<std::string> writes;
};

TEST_F(KnownProducerTransfer, TimeoutsAreAdjustedAndRestored) {
  arrange();
  writeFile("files/in", {1, 2, 3});
  EXPECT_EQ(download(), OVI_SUCCESS);
  const auto expected = testing::ElementsAre("Acknowledge=1500", "Heartbeat=100", "Heartbeat=120", "Acknowledge=150");
  EXPECT_THAT(writes, expected);
  writes.clear();
  camera().refused = FileCamera::kOpenMode;
  camera().refusedAt = 1;
  EXPECT_EQ(upload(), OVI_ERR_IO);
  EXPECT_THAT(writes, expected);
  writes.clear();
  progress = {};
  progress.stopAt = 0;
  EXPECT_EQ(download(), OVI_ERR_ABORTED);
  EXPECT_THAT(writes, expected);
  // A restore that fails does not keep the next one from being made, and an application's own choice stays.
  script().localDevice.onWrite = [this, n = 0](std::uint64_t, std::size_t) mutable {
    writes.emplace_back(std::to_string(++n));
    return n == 3 ? GC_ERR_IO : GC_ERR_SUCCESS;
  };
  writes.clear();
  oviSetFeatureCachingDisabled(1);
  EXPECT_EQ(upload(), OVI_SUCCESS);
  EXPECT_THAT(writes, testing::SizeIs(4));
  EXPECT_NE(findInLog(takeLog(1), "Failed to restore HeartbeatTimeout."), "");
  std::uint8_t disabled = 0;
  oviIsFeatureCachingDisabled(&disabled);
  EXPECT_EQ(disabled, 1);
  oviSetFeatureCachingDisabled(0);
}

TEST_F(KnownProducerTransfer, ATimeoutOutsideTheTreeIsLeftAlone) {
  arrange("HeartbeatTimeout", 0);
  writeFile("files/in", {1, 2, 3});
  EXPECT_EQ(download(), OVI_SUCCESS);
  EXPECT_THAT(writes, testing::ElementsAre("Heartbeat=2", "Heartbeat=120")) << "the other one's limits are not known";
}

}  // namespace
}  // namespace scripted
