// The system module of a producer, and the interfaces that it lists.
#include "gentl/transport_layer.h"

#include <utility>

#include "gentl/info_query.h"
#include "gentl/tl_interface.h"
#include "platform/platform.h"

namespace GenTLCpp {

namespace {
constexpr ModuleTexts kSystemTexts = {
    "The parent GenTL Producer object has been closed. Cannot access anything the TransportLayer object provides us.",
    "TransportLayer is closed, cannot return handle"};
}

TransportLayer::TransportLayer(const std::shared_ptr<GenTLProducer>& producer, LibraryHandle library)
    : OpenModule(producer, library, nullptr, kSystemTexts) {
  setHandle(openHandle([&](TL_HANDLE* handle) { return functions().TLOpen(handle); }));
  traceLine("TransportLayer()");
}

TransportLayer::~TransportLayer() {
  traceLine("~TransportLayer()");
  close();
}

GC_ERROR TransportLayer::closeModule() {
  const GC_ERROR status = OpenModule::closeModule();
  setHandle(nullptr);
  return status;
}

std::vector<std::string> TransportLayer::getInterfaceIDs() const {
  TL_HANDLE handle = getHandle();
  return queryIds([&](std::uint32_t* count) { return functions().TLGetNumInterfaces(handle, count); },
                  [&](std::uint32_t index, char* id, std::size_t* size) {
                    return functions().TLGetInterfaceID(handle, index, id, size);
                  });
}

std::string TransportLayer::getInterfaceInfoString(const std::string& id, INTERFACE_INFO_CMD cmd) const {
  TL_HANDLE handle = getHandle();
  return OVI::platform::fromUtf8(queryText([&](INFO_DATATYPE* type, char* buffer, std::size_t* size) {
    return functions().TLGetInterfaceInfo(handle, id.c_str(), cmd, type, buffer, size);
  }));
}

std::vector<std::shared_ptr<InterfaceInfo>> TransportLayer::getInterfaceInfos() {
  std::vector<std::shared_ptr<InterfaceInfo>> infos;
  for (const std::string& id : getInterfaceIDs()) {
    std::string displayName = getInterfaceInfoString(id, INTERFACE_INFO_DISPLAYNAME);
    std::string tlType = getInterfaceInfoString(id, INTERFACE_INFO_TLTYPE);
    infos.push_back(
        std::make_shared<InterfaceInfo>(sharedAs<TransportLayer>(), id, std::move(displayName), std::move(tlType)));
  }
  return infos;
}

std::shared_ptr<InterfaceInfo> TransportLayer::findInterfaceInfo(const std::string& id) {
  for (std::shared_ptr<InterfaceInfo>& info : getInterfaceInfos()) {
    if (info->getID() == id) {
      return std::move(info);
    }
  }
  return nullptr;
}

bool TransportLayer::updateInterfaceList(std::uint64_t timeout) const {
  bool8_t changed = 0;
  checkGenTLError(functions().TLUpdateInterfaceList(getHandle(), &changed, timeout));
  return changed != 0;
}

IF_HANDLE TransportLayer::openInterfaceHandle(const std::string& id) const {
  traceLine("TLOpenInterface()");
  return openHandle([&](IF_HANDLE* handle) { return functions().TLOpenInterface(getHandle(), id.c_str(), handle); });
}

InterfaceInfo::InterfaceInfo(std::shared_ptr<TransportLayer> parent, std::string id, std::string displayName,
                             std::string tlType)
    : parent_(std::move(parent)),
      id_(std::move(id)),
      displayName_(std::move(displayName)),
      tlType_(std::move(tlType)) {
  traceLine("InterfaceInfo(", id_, ")");
}

InterfaceInfo::~InterfaceInfo() {
  traceLine("~InterfaceInfo(", id_, ")");
}

std::shared_ptr<TLInterface> InterfaceInfo::open() {
  return std::make_shared<TLInterface>(parent_, parent_->getLibraryHandle(), parent_->openInterfaceHandle(id_));
}

}  // namespace GenTLCpp
