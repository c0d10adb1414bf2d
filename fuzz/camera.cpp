// Starts the library with the scripted producer alone.
#include "camera.h"

#include <exception>
#include <memory>
#include <utility>

#include "core/lifecycle.h"
#include "discovery/device_access.h"
#include "discovery/device_discovery.h"
#include "gentl/description.h"
#include "gentl/device.h"
#include "gentl/module_lookup.h"
#include "platform/platform.h"
#include "support.h"

namespace fuzz {

scripted::Space& cameraSpace() {
  static scripted::Script* const script = [] {
    void* const library = OVI::platform::loadLibrary(OVI_FUZZ_PRODUCER_FOLDER "/ScriptedCamera.cti");
    require(library != nullptr);
    auto* const loaded = reinterpret_cast<scripted::GetScript>(OVI::platform::resolve(library, "scriptedCamera"))();
    const auto found = std::make_unique<oviDiscoveryInfo>();
    require(OVI::oviInit(OVI_LOG_LEVEL_NONE, nullptr, nullptr) == OVI_SUCCESS);
    require(OVI::oviDiscoverDevices(found.get(), 1000, nullptr, OVI_FUZZ_PRODUCER_FOLDER, 1) == OVI_SUCCESS);
    require(found->deviceCount == 1);
    return loaded;
  }();
  return script->camera;
}

Camera::Camera() {
  cameraSpace();
  require(OVI::oviOpenDevice("ScriptedCamera", &handle_, 1000, OVI_DEVICE_ACCESS_EXCLUSIVE) == OVI_SUCCESS);
}

Camera::~Camera() {
  require(OVI::oviCloseDevice(handle_) == OVI_SUCCESS);
}

std::string descriptionBehind(std::vector<std::string> urls) {
  static const Camera camera;
  cameraSpace().urls = std::move(urls);
  std::shared_ptr<GenTLCpp::Device> device;
  require(OVI::lookupModule(camera.handle(), device) == OVI_SUCCESS);
  try {
    const GenICam::gcstring text = GenTLCpp::retrieveXML(*device->getRemotePort(false));
    require(!text.empty());
    return {text.c_str(), text.size()};
  } catch (const std::exception&) {
    return {};
  }
}

}  // namespace fuzz
