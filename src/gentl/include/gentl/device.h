// An opened device: its remote side, the camera, and its data streams.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "gentl/open_module.h"
#include "gentl/tl_interface.h"

namespace GenTLCpp {

class DataStream;

struct DevFunctions {
  explicit DevFunctions(LibraryHandle handle) : library(handle) {}

  LibraryHandle library;
  Export<PDevClose> DevClose{library, "DevClose"};
  Export<PDevGetInfo> DevGetInfo{library, "DevGetInfo"};
  Export<PDevGetPort> DevGetPort{library, "DevGetPort"};
  Export<PDevGetNumDataStreams> DevGetNumDataStreams{library, "DevGetNumDataStreams"};
  Export<PDevGetDataStreamID> DevGetDataStreamID{library, "DevGetDataStreamID"};
  Export<PDevOpenDataStream> DevOpenDataStream{library, "DevOpenDataStream"};
  Export<PDevGetParentIF> DevGetParentIF{library, "DevGetParentIF"};
};

/** Made by DeviceInfo::open. All operations throw GenTLException when the producer fails. */
class Device final : public OpenModule<TLInterface, DevFunctions, &DevFunctions::DevClose> {
 public:
  static constexpr int kModuleType = kDeviceModule;

  Device(const std::shared_ptr<TLInterface>& tlInterface, LibraryHandle library, DEV_HANDLE handle);
  ~Device() override;

  int moduleType() const override { return kModuleType; }
  GC_ERROR close() override;
  GC_ERROR closeModule() override;

  std::string getInfoString(DEVICE_INFO_CMD cmd) const;

  /** The camera's port, made on first use or when renewed. */
  std::shared_ptr<ConcretePort> getRemotePort(bool renew);
  /** The camera's features, made on first use; empty when that fails without an exception, and tried again next time.
   */
  std::shared_ptr<FeatureList> getRemoteFeatureList();
  /** The same for the length of a call. */
  FeatureList* getRemoteFeatureList(OVI::Hold& hold);
  /** The node map of getRemoteFeatureList, or nothing. */
  NodeMapPtr getRemoteNodeMap();
  /** Replaces the camera's description; who holds the old features can go on using them.
   * @throws GenTLException when it does not connect, GenICam::GenericException when it is no description */
  void setRemoteDeviceXMLFile(const std::string& path);

  std::vector<std::string> getDataStreamIDs() const;
  std::shared_ptr<DataStream> openDataStream(const std::string& id);
  /** @throws InvalidIndexException when there is no such stream */
  std::shared_ptr<DataStream> openDataStream(std::size_t index);

 private:
  std::mutex remotePortMutex_;
  std::shared_ptr<ConcretePort> remotePort_;
  FeatureListPlace remoteFeatureList_;
};

}  // namespace GenTLCpp
