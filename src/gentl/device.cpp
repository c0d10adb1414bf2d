// An opened device: its remote side, the camera, and its data streams.
#include "gentl/device.h"

#include <utility>

#include "gentl/data_stream.h"
#include "gentl/description.h"
#include "gentl/feature_list.h"
#include "gentl/info_query.h"

namespace GenTLCpp {

namespace {
constexpr ModuleTexts kDeviceTexts = {"Interface is closed, cannot access device",
                                      "Device is closed, cannot return handle"};
}

Device::Device(const std::shared_ptr<TLInterface>& tlInterface, LibraryHandle library, DEV_HANDLE handle)
    : OpenModule(tlInterface, library, handle, kDeviceTexts) {
  traceLine("Device()");
}

Device::~Device() {
  traceLine("~Device()");
  close();
}

GC_ERROR Device::close() {
  std::shared_ptr<FeatureList> list = takeOut(remoteFeatureList_);
  std::shared_ptr<ConcretePort> port;
  {
    const std::lock_guard lock(remotePortMutex_);
    port = std::move(remotePort_);
  }
  const GC_ERROR status = OpenModule::close();
  OVI::retire(std::move(list));
  return status;
}

GC_ERROR Device::closeModule() {
  if (!isClosed()) {
    traceLine("DevClose()");
  }
  return OpenModule::closeModule();
}

std::string Device::getInfoString(DEVICE_INFO_CMD cmd) const {
  DEV_HANDLE handle = getHandle();
  return queryText([&](INFO_DATATYPE* type, char* buffer, std::size_t* size) {
    return functions().DevGetInfo(handle, cmd, type, buffer, size);
  });
}

std::shared_ptr<ConcretePort> Device::getRemotePort(bool renew) {
  const std::lock_guard lock(remotePortMutex_);
  if (renew || remotePort_ == nullptr) {
    PORT_HANDLE port = openHandle([&](PORT_HANDLE* handle) { return functions().DevGetPort(getHandle(), handle); });
    remotePort_ = std::make_shared<ConcretePort>(port, sharedFromThis());
  }
  return remotePort_;
}

std::shared_ptr<FeatureList> Device::getRemoteFeatureList() {
  return remoteFeatureList_.get([this] {
    std::shared_ptr<FeatureList> list =
        createFeatureList(createNodeMap(getRemotePort(false)), moduleTypeName(moduleType()));
    if (list == nullptr) {
      traceLine("ERROR:Failed to get XML node map for local device! Node map was NULL!");
    }
    return list;
  });
}

FeatureList* Device::getRemoteFeatureList(OVI::Hold& hold) {
  FeatureList* list = remoteFeatureList_.find(hold);
  while (list == nullptr && getRemoteFeatureList() != nullptr) {  // Somebody may take a new list away at once.
    list = remoteFeatureList_.find(hold);
  }
  return list;
}

NodeMapPtr Device::getRemoteNodeMap() {
  const std::shared_ptr<FeatureList> list = getRemoteFeatureList();
  return list != nullptr ? list->getNodeMap() : nullptr;
}

void Device::setRemoteDeviceXMLFile(const std::string& path) {
  const GenICam::gcstring xml = readDescriptionFile(path);
  if (xml.empty()) {
    throw INVALID_ARGUMENT_EXCEPTION("The file %s is empty or cannot be read", path.c_str());
  }
  const NodeMapPtr nodeMap = makeNodeMap(xml, getRemotePort(false));
  if (nodeMap == nullptr) {
    checkGenTLError(GC_ERR_ERROR);
  }
  OVI::retire(remoteFeatureList_.exchange(createFeatureList(nodeMap, moduleTypeName(moduleType()))));
}

std::vector<std::string> Device::getDataStreamIDs() const {
  DEV_HANDLE handle = getHandle();
  return queryIds([&](std::uint32_t* count) { return functions().DevGetNumDataStreams(handle, count); },
                  [&](std::uint32_t index, char* id, std::size_t* size) {
                    return functions().DevGetDataStreamID(handle, index, id, size);
                  });
}

std::shared_ptr<DataStream> Device::openDataStream(const std::string& id) {
  traceLine("DevOpenDataStream()");
  DS_HANDLE stream =
      openHandle([&](DS_HANDLE* handle) { return functions().DevOpenDataStream(getHandle(), id.c_str(), handle); });
  return std::make_shared<DataStream>(sharedAs<Device>(), getLibraryHandle(), stream, id);
}

std::shared_ptr<DataStream> Device::openDataStream(std::size_t index) {
  const std::vector<std::string> ids = getDataStreamIDs();
  if (index >= ids.size()) {
    checkGenTLError(GC_ERR_INVALID_INDEX, false);
  }
  return openDataStream(ids[index]);
}

}  // namespace GenTLCpp
