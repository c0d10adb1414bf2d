// The file access of a scripted camera: where its registers lie, and the description that tells of them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace scripted {

struct FileRegisters {
  enum Register : std::uint64_t {
    kSelector = 0x10,
    kOpenMode = 0x18,
    kOperation = 0x20,
    kExecute = 0x28,
    kOffset = 0x30,
    kLength = 0x38,
    kResult = 0x40,
    kStatus = 0x48,
    kSize = 0x50,
    kChecksum = 0x58,
    kModelName = 0x60,
    kHeartbeat = 0x80,
    kBuffer = 0x1000
  };
  enum Operation : std::uint64_t { kOpen, kClose, kRead, kWrite };
  enum Status : std::uint64_t { kSuccess, kFailure, kFatalError, kOther };

  /** With these files, and with what else the camera has: names of features, and their nodes. */
  static std::string description(std::int64_t bufferLength, const std::vector<std::string>& files,
                                 const std::string& moreFeatures = {}, const std::string& moreNodes = {});
};

}  // namespace scripted
