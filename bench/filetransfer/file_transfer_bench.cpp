// What a chunk of a file costs on its way into a camera and back: register accesses, and time of the library's own.
//
// The camera is a block of memory, so nearly all of the time is the library's.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "file_registers.h"
#include "ovi/ovi.h"
#include "platform/platform.h"
#include "report.h"
#include "scripted_camera.h"

namespace {

constexpr std::size_t kFileSize = std::size_t{16} << 20U;
constexpr std::size_t kChunk = 1024;
constexpr std::size_t kChunks = kFileSize / kChunk;

void require(bool good, const char* what) {
  if (!good) {
    std::fprintf(stderr, "file_transfer_bench: %s failed\n", what);
    std::exit(EXIT_FAILURE);
  }
}

/** One file, no checks, and a count of all accesses. */
class FileCamera : scripted::FileRegisters {
 public:
  explicit FileCamera(scripted::Space& space) : space_(space) {
    space_.description = description(kChunk, {"UserData"});
    space_.onRead = [this](std::uint64_t, std::size_t) {
      ++accesses;
      return GC_ERR_SUCCESS;
    };
    space_.onWrite = [this](std::uint64_t address, std::size_t) {
      ++accesses;
      if (address == kExecute)
        execute();
      return GC_ERR_SUCCESS;
    };
  }

  std::uint64_t accesses = 0;
  std::vector<std::uint8_t> file = std::vector<std::uint8_t>(kFileSize);

 private:
  std::uint64_t get(Register address) const {
    std::uint64_t value = 0;
    std::memcpy(&value, &space_.memory[address], sizeof value);
    return value;
  }
  void set(Register address, std::uint64_t value) { std::memcpy(&space_.memory[address], &value, sizeof value); }

  void execute() {
    const std::uint64_t operation = get(kOperation);
    const std::uint64_t length = get(kLength);
    set(kExecute, 0);
    set(kStatus, 0);
    set(kSize, kFileSize);
    if (operation == kWrite)
      std::memcpy(&file[get(kOffset)], &space_.memory[kBuffer], length);
    else if (operation == kRead)
      std::memcpy(&space_.memory[kBuffer], &file[get(kOffset)], length);
    set(kResult, length);
  }

  scripted::Space& space_;
};

/** The time from the first report of progress to the last one, in which all chunks but the first are moved. */
struct Clock {
  using Time = std::chrono::steady_clock::time_point;
  Time first{};
  Time last{};

  static std::uint8_t OVI_CALL note(const oviFileTransferProgress* progress, void* context) {
    constexpr std::uint32_t kRunning = 1;
    auto& clock = *static_cast<Clock*>(context);
    if (progress->status == kRunning) {
      clock.last = std::chrono::steady_clock::now();
      clock.first = clock.first == Time{} ? clock.last : clock.first;
    }
    return 1;
  }
};

double perChunk(std::chrono::steady_clock::duration time) {
  return std::chrono::duration<double, std::micro>(time).count() / static_cast<double>(kChunks);
}

/** The best of some transfers. */
template<class Transfer>
void measure(bench::Report& report, const char* what, FileCamera& camera, Transfer&& transfer) {
  constexpr int kRounds = 10;
  double chunks = 1e9;
  double all = 1e9;
  for (int round = 0; round < kRounds; ++round) {
    camera.accesses = 0;
    Clock clock;
    const auto start = std::chrono::steady_clock::now();
    require(transfer(&clock) == OVI_SUCCESS, what);
    all = std::min(all, perChunk(std::chrono::steady_clock::now() - start));
    chunks = std::min(chunks, perChunk(clock.last - clock.first));
  }
  report.atMost(std::string(what) + ", us a chunk", chunks, 2, bench::withUnit(all, "us with the host's file"));
  report.atMost(std::string(what) + ", register accesses a chunk",
                static_cast<double>(camera.accesses) / static_cast<double>(kChunks), 20);
}

}  // namespace

int main() {
  const std::string directory = SCRIPTED_DIR "/ScriptedCamera";
  void* const library = OVI::platform::loadLibrary(directory + "/ScriptedCamera.cti");
  require(library != nullptr, "loading the scripted camera");
  FileCamera camera(reinterpret_cast<scripted::GetScript>(OVI::platform::resolve(library, "scriptedCamera"))()->camera);
  const auto info = std::make_unique<oviDiscoveryInfo>();
  std::uint64_t device = 0;
  require(oviInit(1, nullptr, nullptr) == OVI_SUCCESS, "oviInit");
  require(oviDiscoverDevices(info.get(), 1000, nullptr, directory.c_str(), 1) == OVI_SUCCESS, "oviDiscoverDevices");
  require(oviOpenDevice("ScriptedCamera", &device, 1000, 3) == OVI_SUCCESS, "oviOpenDevice");

  const std::filesystem::path folder = std::filesystem::temp_directory_path();
  const std::string in = (folder / "ovi_bench_in").string();
  const std::string out = (folder / "ovi_bench_out").string();
  std::vector<char> content(kFileSize);
  std::uint32_t sum = 0;
  for (std::size_t i = 0; i < content.size(); ++i) {
    content[i] = static_cast<char>(i * 7 + i / 1000);
    sum += static_cast<std::uint32_t>(static_cast<unsigned char>(content[i])) << (i % 4 * 8);
  }
  std::ofstream(in, std::ios::binary).write(content.data(), static_cast<std::streamsize>(content.size()));

  bench::Report report("file_transfer_bench");
  measure(report, "oviFileDownloadToDevice", camera, [&](Clock* clock) {
    return oviFileDownloadToDevice(device, in.c_str(), "UserData", 1000, Clock::note, clock);
  });
  require(std::memcmp(camera.file.data(), content.data(), kFileSize) == 0, "comparing the file");
  require(oviSetFeatureInt(device, "FileChecksum", sum, OVI_MODULE_REMOTE_DEVICE) == OVI_SUCCESS, "the checksum");
  measure(report, "oviFileUploadFromDevice", camera, [&](Clock* clock) {
    return oviFileUploadFromDevice(device, out.c_str(), "UserData", 1000, Clock::note, clock);
  });
  std::filesystem::remove(in);
  std::filesystem::remove(out);
  oviCloseDevice(device);
  oviClose();
  return report.result();
}
