// ovi list: the cameras that there are.
#include <algorithm>
#include <nlohmann/json.hpp>

#include "commands.h"
#include "terminal.h"
#include "tool_error.h"

namespace tool {

namespace {

nlohmann::ordered_json cameraJson(const Camera& camera) {
  nlohmann::ordered_json json;
  json["number"] = camera.number;
  json["serial"] = camera.serial;
  json["model"] = camera.model;
  json["vendor"] = camera.vendor;
  json["userName"] = camera.userName;
  json["displayName"] = camera.displayName;
  json["id"] = camera.id;
  json["version"] = camera.version;
  json["type"] = camera.tlType;
  json["interface"] = camera.interfaceName;
  json["producer"] = camera.producerName;
  json["producerPath"] = camera.producerPath;
  json["access"] = accessText(camera.accessStatus);
  json["virtual"] = camera.isVirtual;
  return json;
}

nlohmann::ordered_json camerasJson(const std::vector<Camera>& cameras) {
  nlohmann::ordered_json json = nlohmann::ordered_json::array();
  for (const Camera& camera : cameras)
    json.push_back(cameraJson(camera));
  return json;
}

void list(Session& session) {
  const std::vector<Camera>& cameras = session.cameras();
  if (session.options().json)
    printJson(camerasJson(cameras));
  if (cameras.empty())
    throw ToolError("no camera was found\n" + session.explainNoCameras(), session.command("doctor", {}));
  if (session.options().json)
    return;
  Table table({"#", "model", "serial", "name", "type", "interface", "state"});
  for (const Camera& camera : cameras)
    table.add({std::to_string(camera.number), camera.model, camera.serial, camera.userName, camera.tlType,
               camera.interfaceName, accessText(camera.accessStatus) + (camera.isVirtual ? ", virtual" : "")});
  printTable(table);
}

void info(Session& session, const std::string& name) {
  const Camera& camera = session.pick(name.empty() ? session.options().camera : name);
  if (session.options().json) {
    printJson(cameraJson(camera));
    return;
  }
  const std::vector<std::pair<const char*, std::string>> lines = {
      {"model", camera.model},
      {"vendor", camera.vendor},
      {"serial number", camera.serial},
      {"user-defined name", camera.userName},
      {"version", camera.version},
      {"state", accessText(camera.accessStatus)},
      {"ID", camera.id},
      {"interface", camera.interfaceName + " (" + camera.tlType + ")"},
      {"producer", camera.producerName + (camera.isVirtual ? " (virtual camera, no hardware)" : "")},
      {"producer file", camera.producerPath},
  };
  for (const auto& [label, value] : lines) {
    std::string line = std::string(label) + ":";
    line.resize(20, ' ');
    printData(line + (value.empty() ? "-" : value));
  }
}

}  // namespace

void showOverview(Session& session) {
  const std::vector<Camera>& cameras = session.cameras();
  if (session.options().json) {
    printJson(nlohmann::ordered_json{{"version", ovi::Library::version()}, {"cameras", camerasJson(cameras)}});
    return;
  }
  printData(Styled("ovi " + ovi::Library::version(), Colour::kBold) + ", cameras for machine vision");
  if (cameras.empty()) {
    printData("\nNo camera was found.\n" + session.explainNoCameras());
    printData("\nNext: " + session.command("doctor") + ", ovi --help");
    return;
  }
  const auto real = std::count_if(cameras.begin(), cameras.end(), [](const Camera& c) { return !c.isVirtual; });
  printData("\n" + std::to_string(cameras.size()) + " camera" + (cameras.size() == 1 ? "" : "s") + ", " +
            std::to_string(real) + " real and " + std::to_string(cameras.size() - static_cast<std::size_t>(real)) +
            " virtual.");
  const auto first = std::ranges::find_if(cameras, [&](const Camera& c) { return real == 0 || !c.isVirtual; });
  const std::string name = cameras.size() == 1 ? "" : first->shortName();
  printData("\nNext:\n  " + session.command("list") + "\n  " + session.command("grab -o first.png", name) + "\n  " +
            session.command("stream --frames 100", name) + "\n  " + session.command("features", name) +
            "\n  ovi --help");
}

void addList(CLI::App& app, CommonOptions& /*common*/, Action& action) {
  CLI::App* command = app.add_subcommand("list", "Show the cameras that there are");
  command->footer("Examples:\n  ovi list\n  ovi list --json\n  ovi list --producer /opt/maker/producer.cti");
  command->callback([&action] { action = list; });
}

void addInfo(CLI::App& app, CommonOptions& common, Action& action) {
  CLI::App* command = app.add_subcommand("info", "Show what is known about one camera");
  command->add_option("CAMERA", common.camera, "Number, serial number, user-defined name, model or ID");
  addCameraOption(*command, common);
  command->footer("Examples:\n  ovi info\n  ovi info 2");
  command->callback([&action] { action = [](Session& session) { info(session, {}); }; });
}

}  // namespace tool
