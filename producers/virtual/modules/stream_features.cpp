// The features of a data stream's own node map.
#include "modules/data_stream.h"
#include "modules/device.h"
#include "modules/recorder.h"
#include "modules/tl_types.h"

namespace vcam {

void DataStream::describeVariant() {
  ModuleFeatures& f = features_;
  const auto counter = [this](std::uint64_t& value) {
    return [this, &value] {
      const std::lock_guard lock(mutex_);
      return value;
    };
  };
  switch (variant_) {
    case Variant::Plain:
      break;
    case Variant::GigE:
      f.category("FilterDriverControl", "The way of packets through this host");
      f.boolean(
          {"EnableFilterDriver", "Takes packets from the network card past the system's own network code"},
          [this] {
            const std::lock_guard lock(mutex_);
            return filterDriver_ ? 1 : 0;
          },
          [this](std::uint64_t value) {
            const std::lock_guard lock(mutex_);
            if (grabbing_) {
              fail(GC_ERR_ACCESS_DENIED, "the driver cannot change while the acquisition is running");
            }
            filterDriver_ = value != 0;
          });
      break;
    case Variant::RealTime:
      f.category("PacketStatistics", "Packets and frames since the last start");
      f.integer({"PaketLoss", "Packets that did not arrive"}, counter(packetsLost_));
      f.integer({"PaketsReceived", "Packets that arrived"}, counter(packetsReceived_));
      f.integer({"FrameLoss", "Frames that did not arrive"}, counter(framesLost_));
      break;
    case Variant::Recording:
      f.category("RecorderControl", "What recording asks of buffers");
      f.integer({"BufferSize", "Bytes that a buffer needs: the payload in whole blocks of the recorder", "Expert", "B"},
                [this] { return Recorder::blocksFor(payloadSize()); });
      break;
  }
}

void DataStream::describe() {
  ModuleFeatures& f = features_;
  const auto count = [this](STREAM_INFO_CMD command) { return [this, command] { return info(command).scalar(); }; };
  f.category("StreamInformation", "Which data stream this is, and its state");
  f.text({"StreamID", "Unique ID of the data stream"}, [this] { return device_.streamId(index_); });
  f.enumeration({"StreamType", "Transport technology"}, tlTypeEntries(false),
                [this] { return tlTypeValue(device_.camera().identity().tlType); });
  f.integer({"PayloadSize", "Bytes of the largest payload", "Expert", "B"}, [this] { return payloadSize(); });
  f.boolean({"StreamIsGrabbing", "Whether the acquisition is started", "Expert"}, count(STREAM_INFO_IS_GRABBING));
  f.category("BufferHandlingControl", "How buffers are used");
  f.enumeration(
      {"StreamBufferHandlingMode", "Which buffer is delivered next, and what happens when none is free"},
      {{"OldestFirst", OldestFirst}, {"OldestFirstOverwrite", OldestFirstOverwrite}, {"NewestOnly", NewestOnly}},
      [this] {
        const std::lock_guard lock(mutex_);
        return mode_;
      },
      [this](std::uint64_t value) {
        const std::lock_guard lock(mutex_);
        if (grabbing_) {
          fail(GC_ERR_ACCESS_DENIED, "the mode cannot change while the acquisition is running");
        }
        mode_ = static_cast<HandlingMode>(value);
      });
  f.integer({"StreamAnnouncedBufferCount", "Buffers that are announced", "Expert"}, count(STREAM_INFO_NUM_ANNOUNCED));
  f.integer({"StreamAnnounceBufferMinimum", "Buffers that must be announced before a start", "Expert"},
            count(STREAM_INFO_BUF_ANNOUNCE_MIN));
  f.integer({"StreamBufferAlignment", "Alignment of announced memory", "Expert", "B"},
            count(STREAM_INFO_BUF_ALIGNMENT));
  f.integer({"StreamChunkCountMaximum", "Most chunks that a buffer carries", "Expert"},
            count(STREAM_INFO_NUM_CHUNKS_MAX));
  f.integer({"StreamDeliveredFrameCount", "Frames delivered since the last start", "Expert"},
            count(STREAM_INFO_NUM_DELIVERED));
  f.integer({"StreamLostFrameCount", "Frames lost for want of a buffer", "Expert"}, count(STREAM_INFO_NUM_UNDERRUN));
  f.integer({"StreamStartedFrameCount", "Fills of a buffer that were begun", "Expert"}, count(STREAM_INFO_NUM_STARTED));
  f.integer({"StreamInputBufferCount", "Buffers that wait to be filled", "Expert"}, count(STREAM_INFO_NUM_QUEUED));
  f.integer({"StreamOutputBufferCount", "Buffers that wait to be fetched", "Expert"},
            count(STREAM_INFO_NUM_AWAIT_DELIVERY));
  describeVariant();
  f.events({{"AcquisitionStarted", kAcquisitionStarted, "The acquisition was started", {}},
            {"AcquisitionStopped", kAcquisitionStopped, "The acquisition has stopped", {}},
            {"FrameLost", kFrameLost, "A frame was lost for want of a buffer", {"EventFrameLostFrameID"}}});
  f.finish();
}

}  // namespace vcam
