// Access rules, streams, events and registers of the local device.
#include "modules/device.h"

#include "modules/data_stream.h"
#include "modules/interface.h"
#include "modules/tl_types.h"

namespace vcam {

namespace {
constexpr std::uint64_t kConnectionLost = 0x9201;
}

Device::Device(Interface& interface, CameraSlot& slot, DEVICE_ACCESS_FLAGS access)
    : Module(kDevice),
      interface_(interface),
      slot_(slot),
      session_(interface.session()),
      access_(access),
      plugsAtOpening_(slot.plugs),
      features_({"VirtualCameraDevice", "DevicePort", "Local device module of the virtual camera producer"}),
      remote_(*this),
      children_(std::make_unique<Children<DataStream>>()) {
  describe();
  HandleTable::insert(remote_);
  camera().setEventSink([this](std::uint64_t id, std::span<const std::byte> data) {
    events().fire(EVENT_REMOTE_DEVICE, {id, {}, data});
  });
}

Device::~Device() {
  closeRemotePort();
}

void* Device::interfaceHandle() const {
  return interface_.handle();
}

DEVICE_ACCESS_STATUS Device::accessStatus() const {
  if (!isConnected()) {
    return DEVICE_ACCESS_STATUS_NOACCESS;
  }
  return isReadOnly() ? DEVICE_ACCESS_STATUS_OPEN_READONLY : DEVICE_ACCESS_STATUS_OPEN_READWRITE;
}

void Device::requireConnection() const {
  if (!isConnected()) {
    fail(GC_ERR_IO, "device \"", camera().identity().id, "\" was disconnected");
  }
}

void Device::cableLost() {
  fireError(GC_ERR_IO, "The device was disconnected");
  fireModuleEvent(kConnectionLost, {});
  children_->forEach([](DataStream& stream) { stream.fireError(GC_ERR_IO, "The device was disconnected"); });
}

Info Device::info(DEVICE_INFO_CMD command) {
  return Interface::deviceInfo(slot_, accessStatus(), command);
}

std::uint32_t Device::streamCount() const {
  return static_cast<std::uint32_t>(camera().streamCount());
}

std::string Device::streamId(std::uint32_t index) const {
  if (streamCount() == 0) {
    fail(GC_ERR_NOT_IMPLEMENTED, "the device has no data streams");
  }
  if (index >= streamCount()) {
    fail(GC_ERR_INVALID_INDEX, "data stream ", index, " of ", streamCount());
  }
  return camera().identity().id + "-Stream" + std::to_string(index);
}

void* Device::openStream(const std::string& id) {
  if (streamCount() == 0) {
    fail(GC_ERR_NOT_IMPLEMENTED, "the device has no data streams");
  }
  requireConnection();
  for (std::uint32_t index = 0; index < streamCount(); ++index) {
    if (streamId(index) == id) {
      return children_->open([&](const DataStream& open) { return open.index() == index; },
                             [&] { return std::make_unique<DataStream>(*this, index); }, "the data stream");
    }
  }
  fail(GC_ERR_INVALID_ID, "device \"", camera().identity().id, "\" has no data stream \"", id, "\"");
}

std::unique_ptr<Module> Device::take(const DataStream& child) {
  return children_->take(child);
}

void* Device::registerEvent(EVENT_TYPE type) {
  if (type == EVENT_FEATURE_INVALIDATE || type == EVENT_FEATURE_CHANGE || type == EVENT_REMOTE_DEVICE) {
    knownPayload_ = streamCount() == 0 ? 0 : camera().payloadSize(0);
    return events().add(std::make_unique<QueuedEvent>(type));
  }
  return Module::registerEvent(type);
}

void Device::streamStarted() {
  if (runningStreams_++ == 0) {
    fireFeatureChange("TLParamsLocked", "1");
  }
}

void Device::streamEnded() {
  if (--runningStreams_ == 0) {
    fireFeatureChange("TLParamsLocked", "0");
  }
}

void Device::fireFeatureChange(std::string_view feature, std::string_view value) {
  events().fire(EVENT_FEATURE_CHANGE, {0, feature, std::as_bytes(std::span(value))});
}

void Device::noticePayloadChange() {
  if (!events().has(EVENT_FEATURE_INVALIDATE)) {
    return;
  }
  const std::size_t payload = streamCount() == 0 ? 0 : camera().payloadSize(0);
  if (knownPayload_.exchange(payload) != payload) {
    events().fire(EVENT_FEATURE_INVALIDATE, {0, "PayloadSize", {}});
  }
}

void Device::closeChildren() {
  children_->closeAll();
  camera().setEventSink({});
  if (isConnected()) {
    camera().disconnect();
  }
  closeRemotePort();
}

void Device::closeRemotePort() {
  void* const remote = remote_.handle();
  if (HandleTable::claim(remote, kRemoteDevice) != nullptr) {
    HandleTable::drain(remote);
    HandleTable::erase(remote);
  }
}

std::unique_ptr<Module> Device::detach() {
  return interface_.take(*this);
}

PortIdentity Device::identity() {
  const Identity& me = camera().identity();
  return {me.id, me.vendor, me.model, session_.identity.version, me.tlType, GENTL_MODULE_DEVICE, "DevicePort"};
}

// The time-outs of a network camera's control channel.
void Device::describeLink() {
  if (!isNetwork(session_.options.variant)) {
    return;
  }
  features_.category("LinkControl", "The control channel to the device");
  const auto timeout = [this](std::string_view name, std::string_view toolTip, std::atomic<std::uint64_t>& value,
                              std::uint64_t minimum, std::uint64_t maximum) {
    features_.integer(
        {name, toolTip, "Expert", "ms"}, [&value] { return value.load(); },
        [&value, name, minimum, maximum](std::uint64_t wanted) {
          if (wanted < minimum || wanted > maximum) {
            fail(GC_ERR_INVALID_VALUE, name, " ", wanted, " is not from ", minimum, " to ", maximum);
          }
          value = wanted;
        },
        {minimum, [maximum] { return maximum; }});
  };
  timeout("GVCPAckTimeout", "How long a command waits for its acknowledge", acknowledgeMs_, 10, 10000);
  if (session_.options.variant == Variant::GigE) {
    timeout("HeartbeatTimeout", "After how long without a command the device is free again", heartbeatMs_, 500, 600000);
  }
}

void Device::describe() {
  const Identity& me = camera().identity();
  ModuleFeatures& f = features_;
  f.category("DeviceInformation", "Which device this is");
  f.text({"DeviceID", "Unique ID of the device"}, [&] { return me.id; });
  f.text({"DeviceVendorName", "Vendor of the device"}, [&] { return me.vendor; });
  f.text({"DeviceModelName", "Model of the device"}, [&] { return me.model; });
  f.text({"DeviceSerialNumber", "Serial number of the device"}, [&] { return me.serialNumber; });
  f.text({"DeviceUserID", "User-defined name of the device"}, [this] { return camera().userDefinedName(); });
  f.text({"DeviceVersion", "Version of the device"}, [&] { return me.version; });
  f.text({"DeviceDisplayName", "Name of the device for people"}, [&] { return me.displayName; });
  f.enumeration({"DeviceType", "Transport technology"}, tlTypeEntries(false), [&] { return tlTypeValue(me.tlType); });
  f.enumeration({"DeviceAccessStatus", "How the device can be reached", "Expert"}, accessStatusEntries(),
                [this] { return static_cast<std::uint64_t>(accessStatus()); });
  f.integer({"DeviceTimestampFrequency", "Ticks of the time stamps in a second", "Expert", "Hz"},
            [this] { return camera().timestampFrequency(); });
  f.enumeration({"DeviceChunkDataFormat", "Format of chunk data", "Expert"},
                {{"None", 0}, {"GigEVision", 1}, {"Custom", 2}}, [] { return 1; });
  f.enumeration({"DeviceEventDataFormat", "Format of the camera's event data", "Expert"},
                {{"None", 0}, {"GigEVision", 1}, {"GigEVisionExtendedId", 2}, {"Custom", 3}}, [] { return 3; });
  f.category("StreamEnumeration", "The data streams of the device");
  f.integer(
      {"StreamSelector", "The data stream that the following features are about", "Expert"},
      [this] { return selectedStream_.load(); },
      [this](std::uint64_t value) {
        if (value >= streamCount()) {
          fail(GC_ERR_INVALID_VALUE, "StreamSelector ", value, " of ", streamCount());
        }
        selectedStream_ = static_cast<std::size_t>(value);
      },
      {0, [this] { return streamCount() == 0 ? 0 : streamCount() - 1; }});
  f.text({"StreamID", "ID of the selected data stream", "Expert"},
         [this] { return streamId(static_cast<std::uint32_t>(selectedStream_.load())); });
  f.select("StreamSelector", {"StreamID"});
  describeLink();
  f.events({{"ConnectionLost", kConnectionLost, "The device does not answer any more", {}}});
  f.finish();
}

}  // namespace vcam
