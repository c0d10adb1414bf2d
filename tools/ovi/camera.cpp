// A camera that was found, its names, and which one a name means.
#include "camera.h"

#include "paths.h"
#include "platform/console.h"
#include "printable.h"
#include "text.h"

namespace tool {

std::string Camera::shortName() const {
  if (!serial.empty())
    return serial;
  return userName.empty() ? printable(id) : userName;
}

std::string accessText(std::uint32_t accessStatus) {
  switch (accessStatus) {
    case 1:
      return "available";
    case 2:
      return "read-only";
    case 3:
      return "not available";
    case 4:
      return "in use";
    case 5:
      return "opened by this program";
    default:
      return "unknown";
  }
}

Camera describeCamera(const ovi::DeviceInfo& info, std::size_t number) {
  Camera camera;
  camera.number = number;
  camera.id = fromLibraryText(info.deviceID);
  const auto shown = [](const char* text) { return printable(fromLibraryText(text)); };
  camera.displayName = shown(info.displayName);
  camera.model = shown(info.model);
  camera.vendor = shown(info.vendor);
  camera.serial = shown(info.serialNumber);
  camera.userName = shown(info.userDefinedName);
  camera.version = shown(info.version);
  camera.tlType = fromLibraryText(info.tlType);
  camera.interfaceName = shown(info.interfaceDisplayName);
  camera.interfaceId = fromLibraryText(info.interfaceID);
  camera.producerName = shown(info.tlDisplayName);
  camera.producerPath = fromLibraryText(info.tlPathName);
  camera.accessStatus = info.accessStatus;
  camera.isVirtual = pathFromText(camera.producerPath).filename() == kVirtualProducer;
  return camera;
}

std::string cameraLines(const std::vector<const Camera*>& cameras) {
  std::string text;
  for (const Camera* camera : cameras)
    text += "\n  " + std::to_string(camera->number) + "  " + camera->model + "  " + camera->serial +
            (camera->userName.empty() ? "" : "  \"" + camera->userName + "\"") +
            (camera->isVirtual ? "  (virtual)" : "");
  return text;
}

std::vector<const Camera*> camerasNamed(const std::vector<Camera>& all, const std::string& name) {
  std::vector<const Camera*> matches;
  // The first kind of name that means any camera counts.
  const auto collect = [&](auto&& isMeant) {
    if (!matches.empty())
      return;
    for (const Camera& camera : all)
      if (isMeant(camera))
        matches.push_back(&camera);
  };
  collect([&](const Camera& c) { return c.id == name || printable(c.id) == name; });
  collect([&](const Camera& c) { return c.serial == name; });
  collect([&](const Camera& c) { return c.userName == name; });
  collect([&](const Camera& c) { return std::to_string(c.number) == name; });
  collect([&](const Camera& c) { return c.displayName == name; });
  collect([&](const Camera& c) { return equalsIgnoringCase(c.model, name); });
  collect([&](const Camera& c) { return equalsIgnoringCase(c.userName, name) || equalsIgnoringCase(c.serial, name); });
  return matches;
}

std::string nearestCameraName(const std::vector<Camera>& all, const std::string& name) {
  std::vector<std::string> names;
  for (const Camera& camera : all)
    for (const std::string& candidate : {camera.serial, camera.userName, camera.model, camera.id})
      if (!candidate.empty())
        names.push_back(candidate);
  return nearestMatch(name, names);
}

}  // namespace tool
