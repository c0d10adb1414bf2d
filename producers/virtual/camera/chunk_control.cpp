// A chunk is its data, then its ID and its length as 32-bit big-endian numbers, as image streams commonly have it.
#include "chunk_control.h"

#include <miniz.h>

#include <array>
#include <bit>
#include <cstring>
#include <string>

namespace vcam {
namespace {

constexpr std::size_t kTrailer = 8;

enum ChunkId : std::uint32_t {
  kImage = 1,
  kTimestamp,
  kFrameId,
  kExposureTime,
  kGain,
  kLineStatus,
  kSequencerSet,
  kCrc,
};

struct ChunkDeclaration {
  const char* name;  // of the selector's entry, and with "Chunk" before it of the feature
  ChunkId id;
  std::size_t length;
  bool isFloat;
  const char* toolTip;
};

constexpr std::array<ChunkDeclaration, 7> kChunks{{
    {"Timestamp", kTimestamp, 8, false, "Time stamp of the start of the exposure"},
    {"FrameID", kFrameId, 8, false, "ID of the frame"},
    {"ExposureTime", kExposureTime, 8, true, "Exposure time of the frame"},
    {"Gain", kGain, 8, true, "Gain of the frame"},
    {"LineStatusAll", kLineStatus, 4, false, "Levels of the lines when the frame was taken"},
    {"SequencerSetActive", kSequencerSet, 4, false, "Sequencer set of the frame"},
    {"CRC", kCrc, 4, false, "CRC-32 of the image"},
}};

void putBigEndian(std::span<std::byte> to, std::uint64_t value) {
  for (std::size_t i = to.size(); i-- > 0; value >>= 8U) {
    to[i] = static_cast<std::byte>(value);
  }
}

}  // namespace

void ChunkControl::declare() {
  FeatureMap& map = core_.map;
  const std::string category = "ChunkDataControl";
  map.category(category, "Data that travel with the image");
  active_ = &map.boolean("ChunkModeActive", category, "Sends the enabled chunks with each frame")
                 .lockedWhileStreaming()
                 .stored()
                 .visibility("Expert");
  Feature& selector = map.enumeration("ChunkSelector", category, "The chunk to look at").visibility("Expert");
  enable_ = &map.boolean("ChunkEnable", category, "Sends the chunk")
                 .selectedBy({"ChunkSelector"})
                 .lockedWhileStreaming()
                 .stored()
                 .visibility("Expert");
  for (std::size_t i = 0; i < kChunks.size(); ++i) {
    const ChunkDeclaration& chunk = kChunks[i];
    selector.entry(chunk.name, static_cast<std::int64_t>(i), chunk.toolTip);
    const std::string name = std::string("Chunk") + chunk.name;
    map.port({name + "Port", DataPort::Kind::Chunk, chunk.id});
    Feature& feature =
        chunk.isFloat ? map.floating(name, category, chunk.toolTip) : map.integer(name, category, chunk.toolTip);
    feature.length(chunk.length).onPort(name + "Port", 0).visibility("Expert");
  }
}

void ChunkControl::layOut(FramePlan& plan) const {
  plan.payloadSize = plan.imageSize;
  if (!active_->on()) {
    return;
  }
  const auto add = [&](std::uint64_t id, std::size_t offset, std::size_t length) {
    plan.chunks[plan.chunkCount++] = {id, offset, length};
    plan.payloadSize = offset + length + kTrailer;
    plan.chunkLayoutId = (plan.chunkLayoutId * 31 + id) * 31 + length;
  };
  add(kImage, 0, (plan.imageSize + 3) & ~std::size_t{3});
  for (std::size_t i = 0; i < kChunks.size(); ++i) {
    if (enable_->on(i)) {
      add(kChunks[i].id, plan.payloadSize, kChunks[i].length);
    }
  }
}

void ChunkControl::write(const FramePlan& plan, std::span<std::byte> buffer) const {
  for (std::size_t i = 0; i < plan.chunkCount; ++i) {
    const ChunkPlan& chunk = plan.chunks[i];
    const std::span<std::byte> data = buffer.subspan(chunk.offset, chunk.length);
    std::uint64_t value = 0;
    switch (static_cast<ChunkId>(chunk.id)) {
      case kTimestamp:
        value = plan.timestampNs;
        break;
      case kFrameId:
        value = plan.frameId;
        break;
      case kExposureTime:
        value = std::bit_cast<std::uint64_t>(plan.exposureTime);
        break;
      case kGain:
        value = std::bit_cast<std::uint64_t>(plan.gain);
        break;
      case kLineStatus:
        value = plan.lineStatus;
        break;
      case kSequencerSet:
        value = plan.sequencerSet;
        break;
      case kCrc:
        value = mz_crc32(MZ_CRC32_INIT, reinterpret_cast<const unsigned char*>(buffer.data()), plan.imageSize);
        break;
      case kImage:
        break;
    }
    if (chunk.id == kImage) {
      std::memset(data.data() + plan.imageSize, 0, data.size() - plan.imageSize);
    } else {
      core_.map.putInteger(data, value);
    }
    putBigEndian(buffer.subspan(chunk.offset + chunk.length, 4), chunk.id);
    putBigEndian(buffer.subspan(chunk.offset + chunk.length + 4, 4), chunk.length);
  }
}

}  // namespace vcam
