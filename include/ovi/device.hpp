/// @file
/// A camera in C++: opened, its features, its acquisition, its memory and files.
#pragma once

#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "ovi/event.hpp"
#include "ovi/feature.hpp"
#include "ovi/feature_tree.hpp"
#include "ovi/feature_watch.hpp"
#include "ovi/ovi.h"
#include "ovi/result.hpp"
#include "ovi/stream.hpp"

namespace ovi {

/// What others may do with the camera meanwhile.
enum class Access : std::uint32_t {
  kReadOnly = OVI_DEVICE_ACCESS_READ_ONLY,
  kControl = OVI_DEVICE_ACCESS_CONTROL,
  kExclusive = OVI_DEVICE_ACCESS_EXCLUSIVE
};

/// A running acquisition, stopped when it is destroyed.
class Acquisition {
 public:
  /// Starts the acquisition.
  Acquisition(std::uint64_t deviceHandle, std::uint32_t images) : device_(deviceHandle) {
    const oviErr code = oviStartAcquisition(device_, images);
    if (code != OVI_SUCCESS)
      oviStopAcquisition(device_);  // The streams may run already.
    check(code, "oviStartAcquisition");
  }
  ~Acquisition() {
    if (device_ != 0)
      oviStopAcquisition(device_);
  }
  /// The other one stops nothing any more.
  Acquisition(Acquisition&& other) noexcept : device_(std::exchange(other.device_, 0)) {}
  Acquisition& operator=(Acquisition&&) = delete;

  /// Stops now; throws what the destructor would keep to itself.
  void stop() {
    if (device_ != 0)
      check(oviStopAcquisition(std::exchange(device_, 0)), "oviStopAcquisition");
  }

 private:
  std::uint64_t device_;
};

/// Called during a file transfer; returns whether to go on.
using TransferFunction = std::function<bool(const oviFileTransferProgress&)>;

/// An open camera. Streams and features of it must not be used after it is gone.
class Device {
 public:
  /// Opens a camera of the latest discovery by its deviceID. The time is for each update of the producer's lists.
  explicit Device(const std::string& id, Access access = Access::kExclusive,
                  Milliseconds timeout = Milliseconds(1000)) {
    check(oviOpenDevice(id.c_str(), &handle_, detail::timeoutValue(timeout), static_cast<std::uint32_t>(access)),
          "oviOpenDevice", id);
  }
  ~Device() {
    if (handle_ != 0)
      oviCloseDevice(handle_);
  }
  /// The other one is not open any more.
  Device(Device&& other) noexcept : handle_(std::exchange(other.handle_, 0)) {}
  /// The other one closes what was open here.
  Device& operator=(Device&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }

  std::uint64_t handle() const noexcept { return handle_; }  ///< For calls of the C interface

  /// A feature of the camera, or of a module above it.
  Feature feature(std::string name, Module module = Module::kRemoteDevice) const {
    return {handle_, module, std::move(name)};
  }
  /// A feature of the camera.
  Feature operator[](std::string name) const { return feature(std::move(name)); }
  /// All features of the camera, or of a module above it.
  std::vector<TreeFeature> features(Module module = Module::kRemoteDevice) const {
    return featureTree(handle_, module);
  }
  /// Calls a function whenever the feature may have changed, until what it returns is destroyed.
  FeatureWatch watch(std::string name, FeatureWatch::Function changed, Module module = Module::kRemoteDevice) const {
    return {handle_, module, std::move(name), std::move(changed)};
  }

  /// Takes the camera's features from a description file from now on, instead of from the camera.
  void setDescription(const std::string& path) const {
    check(oviSetRemoteDeviceXMLFile(handle_, path.c_str()), "oviSetRemoteDeviceXMLFile", path);
  }

  /// Whether the S2i GigE producer serves it.
  bool usesS2iProducer() const { return ask(oviIsUsingS2iTL, "oviIsUsingS2iTL"); }
  /// Whether the Kithara real-time GigE producer serves it.
  bool usesKitharaProducer() const { return ask(oviIsUsingKitharaTL, "oviIsUsingKitharaTL"); }
  /// Whether a producer that can record serves it.
  bool usesNimboProducer() const { return ask(oviIsUsingNimboTL, "oviIsUsingNimboTL"); }

  /// Number of data streams.
  std::uint32_t streamCount() const {
    std::uint32_t count = 0;
    check(oviGetNumberOfDataStreams(handle_, &count), "oviGetNumberOfDataStreams");
    return count;
  }
  /// What is known about a data stream.
  oviDataStreamInfo streamInfo(std::uint32_t index) const {
    oviDataStreamInfo info{};
    check(oviGetDataStreamInfo(handle_, index, &info), "oviGetDataStreamInfo");
    return info;
  }
  /// Opens a data stream; a buffer size of 0 lets the library ask the camera.
  Stream openStream(std::uint32_t bufferCount = 10, std::uint32_t index = 0, std::uint64_t bufferSize = 0) const {
    return {handle_, index, bufferCount, bufferSize};
  }
  /// An event of the device or of a module above it; those of streams and buffers are at their own handles.
  Event registerEvent(std::uint32_t kind, Module module) const { return {handle_, kind, module}; }

  /// Starts the acquisition until what it returns is destroyed.
  [[nodiscard]] Acquisition acquire(std::uint32_t images = OVI_INFINITE_IMAGES) const { return {handle_, images}; }
  /// Starts the acquisition.
  void start(std::uint32_t images = OVI_INFINITE_IMAGES) const {
    check(oviStartAcquisition(handle_, images), "oviStartAcquisition");
  }
  /// Stops it. Waits for images end. Throws also when nothing ran, as many producers then answer ResourceInUse.
  void stop() const { check(oviStopAcquisition(handle_), "oviStopAcquisition"); }
  /// Stops it without waiting for the image that is being transferred.
  void abort() const { check(oviAbortAcquisition(handle_), "oviAbortAcquisition"); }
  /// Gives the streams larger buffers when the images have grown.
  void reallocateBuffers() const { check(oviCheckAndReallocBuffers(handle_), "oviCheckAndReallocBuffers"); }
  /// Bytes of an image.
  std::uint64_t imageSize() const {
    std::int64_t size = 0;
    check(oviGetImageSize(handle_, &size), "oviGetImageSize");
    return static_cast<std::uint64_t>(size);
  }

  /// Raises a GigE camera's packet size to its maximum.
  void setMaxPacketSize() const { check(oviSetDeviceMaxPacketSize(handle_), "oviSetDeviceMaxPacketSize"); }

  /// Whether the camera is in its maintenance mode.
  bool isInMaintenanceMode() const {
    std::uint8_t enabled = 0;
    check(oviGetMaintenanceMode(handle_, &enabled), "oviGetMaintenanceMode");
    return enabled != 0;
  }
  /// Switches the maintenance mode; all ones mean the usual register and value.
  void setMaintenanceMode(bool enable, std::uint64_t address = UINT64_MAX, std::uint32_t value = UINT32_MAX) const {
    check(oviSetMaintenanceMode(handle_, enable ? 1 : 0, address, value), "oviSetMaintenanceMode");
  }

  /// Whether the camera's registers have their least significant byte first.
  bool isLittleEndian() const {
    bool answer = false;
    check(oviIsModuleLittleEndian(handle_, OVI_MODULE_REMOTE_DEVICE, &answer), "oviIsModuleLittleEndian");
    return answer;
  }
  /// Reads a 32-bit register as text, "0x002a"; an address "x100" is hexadecimal. Indirect: through the camera's
  /// register pair.
  std::string readRegister(const std::string& address, bool indirect = false) const {
    char value[32] = {};
    check(oviGetRegisterValue(handle_, address.c_str(), value, indirect ? 0 : 1), "oviGetRegisterValue", address);
    return value;
  }
  /// Writes a 32-bit register from text: decimal, or hexadecimal after an "x".
  void writeRegister(const std::string& address, const std::string& value, bool indirect = false) const {
    check(oviSetRegisterValue(handle_, address.c_str(), value.c_str(), indirect ? 0 : 1), "oviSetRegisterValue",
          address);
  }
  /// Reads bytes of the camera's register space.
  void readMemory(std::uint64_t address, std::uint8_t* to, std::uint64_t length) const {
    check(oviReadMemory(handle_, address, to, length), "oviReadMemory");
  }
  /// Writes bytes of the camera's register space.
  void writeMemory(std::uint64_t address, const std::uint8_t* from, std::uint64_t length) const {
    check(oviWriteMemory(handle_, address, from, length), "oviWriteMemory");
  }

  /// Which of the camera's files a host file is meant for; empty when it is of no known type.
  std::string fileTypeOf(const std::string& path) const {
    char type[512] = {};
    check(oviGetUpdateFileType(handle_, path.c_str(), type, sizeof(type)), "oviGetUpdateFileType", path);
    return type;
  }
  /// Writes a host file into a camera file. An exception of the progress function stops the transfer and leaves the
  /// call.
  void download(const std::string& path, const std::string& fileSelector, Milliseconds timeout,
                const TransferFunction& progress = {}) const {
    transfer(oviFileDownloadToDevice, "oviFileDownloadToDevice", path, fileSelector, timeout, progress);
  }
  /// Reads a camera file into a host file.
  void upload(const std::string& path, const std::string& fileSelector, Milliseconds timeout,
              const TransferFunction& progress = {}) const {
    transfer(oviFileUploadFromDevice, "oviFileUploadFromDevice", path, fileSelector, timeout, progress);
  }

 private:
  template<class Function>
  bool ask(Function function, const char* name) const {
    bool answer = false;
    check(function(handle_, &answer), name);
    return answer;
  }

  struct TransferContext {
    const TransferFunction& function;
    std::exception_ptr exception;
  };
  static std::uint8_t OVI_CALL forwardTransfer(const oviFileTransferProgress* progress, void* context) {
    auto& transfer = *static_cast<TransferContext*>(context);
    try {
      return !transfer.exception && transfer.function(*progress) ? 1 : 0;
    } catch (...) {
      transfer.exception = std::current_exception();
      return 0;
    }
  }
  template<class Function>
  void transfer(Function function, const char* name, const std::string& path, const std::string& selector,
                Milliseconds timeout, const TransferFunction& progress) const {
    TransferContext context{progress, nullptr};
    const oviErr code = function(handle_, path.c_str(), selector.c_str(), detail::timeoutValue(timeout),
                                 progress ? &Device::forwardTransfer : nullptr, &context);
    if (context.exception)
      std::rethrow_exception(context.exception);
    check(code, name, path);
  }

  std::uint64_t handle_ = 0;
};

}  // namespace ovi
