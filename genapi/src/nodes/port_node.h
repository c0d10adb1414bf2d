// Port nodes: the way to the application's register space, and the raw bytes that were seen through it.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <unordered_map>

#include "nodes/node_core.h"

namespace GenApiEngine {

/// Register contents by address and length, shared by all register nodes that have both in common.
struct RawBytes {
  static constexpr std::size_t kInline = 8;
  bool valid = false;
  std::array<std::uint8_t, kInline> small{};
  std::unique_ptr<std::uint8_t[]> large;

  std::uint8_t* data() { return large != nullptr ? large.get() : small.data(); }
};

class PortNode final : public NodeCore, public Api::IPortConstruct, public Api::IChunkPort, public Api::IPortRecorder {
 public:
  PortNode(NodeMap& map, NodeIndex index);
  ~PortNode() override;

  // IPort
  void Read(void* buffer, int64_t address, int64_t length) override;
  void Write(const void* buffer, int64_t address, int64_t length) override;
  // IPortConstruct
  void SetPortImpl(Api::IPort* port) override;
  Api::EYesNo GetSwapEndianess() override;
  // IChunkPort
  gcstring GetChunkID() const override;
  Api::EYesNo CacheChunkData() const override;
  // IPortRecorder, IPortReplay
  void Replay(Api::IPortWriteList* writes, bool invalidate) override;
  void StartRecording(Api::IPortWriteList* writes) override;
  void StopRecording() override;

  Api::EInterfaceType GetPrincipalInterfaceType() const override { return Api::intfIPort; }

  // What register nodes ask, under the lock.
  void read(const NodeCore& reader, void* buffer, std::int64_t address, std::int64_t length);
  void write(const NodeCore& writer, const void* buffer, std::int64_t address, std::int64_t length);
  /// Where an address lies that counts from the end of a chunk's or event's data, from the begin of it; other
  /// addresses, and those of data that is not there, as they are.
  std::int64_t offsetOf(const NodeCore& reader, std::int64_t address);
  /// The shared bytes of that place; null when they would be too many to keep. Valid until the generation changes.
  RawBytes* rawBytes(std::int64_t address, std::int64_t length);
  std::uint32_t rawGeneration() const { return rawGeneration_; }

 protected:
  EAccessMode naturalAccess() override;
  void onInvalidate(bool kept) override;
  void* interfaceOf(int type) override { return type == Api::intfIPort ? static_cast<Api::IPort*>(this) : nullptr; }

 private:
  struct Place {
    std::int64_t address;
    std::int64_t length;
    bool operator==(const Place&) const = default;
  };
  struct PlaceHash {
    std::size_t operator()(const Place& place) const;
  };

  /// Whether it is a port onto data that comes with an image or an event.
  bool waitsForData() const;
  void requireConnected(const NodeCore& user) const;
  void swapWords(void* buffer, std::int64_t length) const;

  Api::IPort* port_ = nullptr;
  Api::IPortWriteList* recorder_ = nullptr;
  std::unordered_map<Place, RawBytes, PlaceHash> raw_;
  std::size_t rawSize_ = 0;
  std::uint32_t rawGeneration_ = 1;
  bool swap_ = false;
};

}  // namespace GenApiEngine
