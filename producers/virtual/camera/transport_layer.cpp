// The features between the camera and the host: sizes of payload and packets, and the lock while somebody streams.
#include "transport_layer.h"

#include <algorithm>
#include <string>
#include <vector>

namespace vcam {

void TransportLayer::declare(const std::function<std::int64_t()>& payloadSize) {
  FeatureMap& map = core_.map;
  const char* const transport = "TransportLayerControl";
  map.category(transport, "Between the camera and the host");
  map.integer("PayloadSize", transport, "Bytes of a frame as it is transferred")
      .unit("B")
      .length(8)
      .readOnly()
      .visibility("Expert")
      .dependsOn(core_.model.components ? std::vector<std::string>{"Width", "Height", "PixelFormat", "ChunkModeActive",
                                                                   "ChunkEnable", "SpeedMode", "ComponentEnable"}
                                        : std::vector<std::string>{"Width", "Height", "PixelFormat", "ChunkModeActive",
                                                                   "ChunkEnable", "SpeedMode"})
      .computed([payloadSize](std::size_t) { return payloadSize(); });
  locked_ =
      &map.integer("TLParamsLocked", transport, "Not 0 while the consumer streams; what sizes buffers is locked then")
           .min("0")
           .max("1")
           .visibility("Invisible");
  declarePackets();
  map.integer("DeviceTapGeometryCode", transport, "Order in which the sensor is read")
      .readOnly()
      .visibility("Guru")
      .representation("HexNumber")
      .vendorSpecific();
}

void TransportLayer::declarePackets() {
  FeatureMap& map = core_.map;
  const char* const transport = "TransportLayerControl";
  const std::uint32_t network = core_.config.networkPacketSize;
  packetSize_ = &map.integer("GevSCPSPacketSize", transport, "Bytes of a stream packet")
                     .unit("B")
                     .min("576")
                     .max(network == 0 ? "9000" : "GevSCPSPacketSizeMax")
                     .inc("4")
                     .value(1500)
                     .stored()
                     .lockedWhileStreaming()
                     .visibility("Expert");
  if (network == 0) {
    return;
  }
  packetSize_->uncached();
  largestPacket_ = &map.integer("GevSCPSPacketSizeMax", transport, "Largest packet that is known to arrive")
                        .unit("B")
                        .value(9000)
                        .readOnly()
                        .uncached()
                        .vendorSpecific()
                        .visibility("Guru");
  map.command("FindMaxPacketSize", transport, "Tries how large packets may be and uses the largest that arrive")
      .vendorSpecific()
      .visibility("Expert")
      .lockedWhileStreaming()
      .onWrite([this, network](std::size_t) {
        const std::int64_t found = std::min<std::int64_t>(network, 9000) / 4 * 4;
        largestPacket_->set(found);
        packetSize_->set(found);
        return kOk;
      })
      .computed([](std::size_t) { return 0; });
}

}  // namespace vcam
