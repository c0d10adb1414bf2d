// The plan of one frame: everything about it but its pixels, decided at the moment at which it was exposed.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "gentl_interface/GenTL.h"

namespace vcam {

class Picture;

// One part of a multi-part payload; positions count from the start of the buffer.
struct PartPlan {
  std::size_t offset = 0;
  std::size_t size = 0;
  PARTDATATYPE_ID dataType = PART_DATATYPE_UNKNOWN;
  std::uint32_t pixelFormat = 0;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::uint32_t offsetX = 0;
  std::uint32_t offsetY = 0;
  std::uint32_t paddingX = 0;
  std::uint64_t sourceId = 0;
  std::uint64_t regionId = 0;
};

// One chunk; its data lies at offset from the start of the buffer and is followed by its 32-bit ID and length, both
// big-endian.
struct ChunkPlan {
  std::uint64_t id = 0;
  std::size_t offset = 0;
  std::size_t length = 0;
};

struct FramePlan {
  static constexpr std::size_t kMaxParts = 4;
  static constexpr std::size_t kMaxChunks = 12;

  // The same for frames that differ in nothing but stream, IDs, time stamp and line status: a plan that is filled again
  // with such a frame is not copied whole.
  std::uint64_t planId = 0;

  std::size_t stream = 0;
  std::uint64_t frameId = 0;
  std::uint64_t timestampNs = 0;  // start of the exposure, in the camera's own time
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::uint32_t offsetX = 0;
  std::uint32_t offsetY = 0;
  std::uint32_t paddingX = 0;     // bytes after each line
  std::uint32_t paddingY = 0;     // bytes after the image
  std::uint32_t pixelFormat = 0;  // PFNC code
  PAYLOADTYPE_INFO_ID payloadType = PAYLOAD_TYPE_IMAGE;
  bool imagePresent = true;  // false for payloads that are chunks only
  bool incomplete = false;   // the camera lost data of this frame

  std::size_t imageSize = 0;     // bytes of the image, or of all parts together
  std::size_t payloadSize = 0;   // bytes of the whole payload, chunks included
  std::uint32_t packetSize = 0;  // bytes of the packets that the payload comes in, headers included

  std::size_t partCount = 0;  // 0 unless the payload is multi-part
  std::array<PartPlan, kMaxParts> parts{};

  std::size_t chunkCount = 0;
  std::array<ChunkPlan, kMaxChunks> chunks{};
  std::uint64_t chunkLayoutId = 0;  // the same as long as the layout is the same, never 0 when there are chunks

  bool speedMode = false;  // only the frame ID is written, as 8 little-endian bytes at the start of the buffer

  // What the chunks say about the frame.
  double exposureTime = 0;  // us
  double gain = 0;          // dB
  std::uint32_t lineStatus = 0;
  std::uint32_t sequencerSet = 0;

  // What render() draws, for each part or the one image; immutable and shared by all frames between two changes of a
  // setting.
  std::array<std::shared_ptr<const Picture>, kMaxParts> pictures;
};

}  // namespace vcam
