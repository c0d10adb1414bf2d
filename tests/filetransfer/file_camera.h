// A scripted camera with files: the whole file-access protocol, every step of it traced, and faults where a test wants
// them.
#pragma once

#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "file_registers.h"
#include "library_fixture.h"

namespace scripted {

class FileCamera : public FileRegisters {
 public:
  explicit FileCamera(Script& script, std::int64_t bufferLength = 256) : space_(script.camera) {
    space_.description = description(
        bufferLength, {"UserSet1", "BrefLut1", "GammaLUT"}, "DeviceModelName DeviceLinkHeartbeatTimeout",
        "<StringReg Name=\"DeviceModelName\"><Address>" + std::to_string(kModelName) +
            "</Address><Length>32</Length><AccessMode>RO</AccessMode><pPort>Device</pPort></StringReg>"
            "<Float Name=\"DeviceLinkHeartbeatTimeout\"><pValue>HeartbeatReg</pValue><Min>500</Min><Max>10000</Max>"
            "</Float><FloatReg Name=\"HeartbeatReg\"><Address>" +
            std::to_string(kHeartbeat) +
            "</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable>"
            "<Endianess>LittleEndian</Endianess></FloatReg>");
    set(kHeartbeat, 3000.0);
    std::strcpy(reinterpret_cast<char*>(&space_.memory[kModelName]), "Scripted");
    space_.onWrite = [this](std::uint64_t address, std::size_t size) { return written(address, size); };
    space_.onRead = [this](std::uint64_t address, std::size_t) {
      return address == kExecute && failingPolls > 0 && executed_ && skippedPolls-- <= 0 && failingPolls-- > 0
                 ? GC_ERR_TIMEOUT
                 : GC_ERR_SUCCESS;
    };
  }

  template<class T>
  void set(Register address, T value) {
    std::memcpy(&space_.memory[address], &value, sizeof value);
  }
  template<class T = std::uint64_t>
  T get(Register address) const {
    T value{};
    std::memcpy(&value, &space_.memory[address], sizeof value);
    return value;
  }
  bool isOpen() const { return open_; }
  /** The writes so far, "Name=value", without those of the buffer's content. */
  std::vector<std::string> takeTrace() { return std::exchange(trace_, {}); }

  std::vector<std::uint8_t> file;
  /** Called after each chunk that the camera moved, with its number from 1. */
  std::function<void(int chunk)> onChunk;
  /** This write is refused; counted from 1 over all writes of that register. */
  Register refused = kBuffer;
  int refusedAt = 0;
  /** After the next execution, polls of the command: so many answered, then so many that fail. */
  int skippedPolls = 0;
  int failingPolls = 0;
  /** What the status reads after the file is closed. */
  Status statusAfterClose = kSuccess;
  std::int64_t reportedSize = -1;
  std::int64_t checksumError = 0;

 private:
  GC_ERROR written(std::uint64_t address, std::size_t size) {
    static const std::map<std::uint64_t, std::string> kNames = {
        {kSelector, "Selector"}, {kOpenMode, "OpenMode"},   {kOperation, "Operation"},
        {kExecute, "Execute"},   {kOffset, "Offset"},       {kLength, "Length"},
        {kChecksum, "Checksum"}, {kHeartbeat, "Heartbeat"}, {kBuffer, "Buffer"}};
    const auto name = kNames.find(address);
    if (name == kNames.end())
      return GC_ERR_INVALID_ADDRESS;
    trace_.push_back(name->second + "=" +
                     std::to_string(address == kBuffer      ? size
                                    : address == kHeartbeat ? static_cast<std::uint64_t>(get<double>(kHeartbeat))
                                                            : get(static_cast<Register>(address))));
    if (address == refused && refusedAt > 0 && --refusedAt == 0)
      return GC_ERR_IO;
    if (address == kExecute)
      execute();
    return GC_ERR_SUCCESS;
  }

  void execute() {
    executed_ = true;
    const auto offset = static_cast<std::size_t>(get(kOffset));
    const auto length = static_cast<std::size_t>(get(kLength));
    const std::uint64_t operation = get(kOperation);
    set(kExecute, std::uint64_t{0});
    set(kStatus, kSuccess);
    if (operation == kOpen) {
      open_ = true;
      chunk_ = 0;
      if (get(kOpenMode) == 1)
        file.clear();
      set(kSize, reportedSize >= 0 ? reportedSize : static_cast<std::int64_t>(file.size()));
      set(kChecksum, static_cast<std::int64_t>(sum()) + checksumError);
    } else if (operation == kClose) {
      if (open_)
        set(kStatus, statusAfterClose);
      open_ = false;
    } else {
      if (operation == kWrite) {
        file.resize(std::max(file.size(), offset + length));
        std::memcpy(file.data() + offset, &space_.memory[kBuffer], length);
      } else {
        std::memset(&space_.memory[kBuffer], 0xEE, 0x10000);
        std::memcpy(&space_.memory[kBuffer], file.data() + offset, length);
      }
      set(kResult, length);
      if (onChunk)
        onChunk(++chunk_);
    }
  }

  std::uint32_t sum() const {
    std::uint32_t total = 0;
    for (std::size_t i = 0; i < file.size(); ++i)
      total += static_cast<std::uint32_t>(file[i]) << (i % 4 * 8);
    return total;
  }

  Space& space_;
  bool open_ = false;
  bool executed_ = false;
  int chunk_ = 0;
  std::vector<std::string> trace_;
};

}  // namespace scripted
