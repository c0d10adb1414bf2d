// ovi list: the cameras that there are.
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

void list(Session& session) {
  const std::vector<Camera>& cameras = session.cameras();
  if (session.options().json) {
    nlohmann::ordered_json json = nlohmann::ordered_json::array();
    for (const Camera& camera : cameras)
      json.push_back(cameraJson(camera));
    printData(json.dump(2));
    return;
  }
  if (cameras.empty())
    throw ToolError("no camera was found\n" + session.explainNoCameras(), session.command("doctor", {}));
  Table table({"#", "model", "serial", "name", "type", "interface", "state"});
  for (const Camera& camera : cameras)
    table.add({std::to_string(camera.number), camera.model, camera.serial, camera.userName, camera.tlType,
               camera.interfaceName, accessText(camera.accessStatus) + (camera.isVirtual ? ", virtual" : "")});
  printTable(table);
}

void info(Session& session, const std::string& name) {
  const Camera& camera = session.pick(name.empty() ? session.options().camera : name);
  if (session.options().json) {
    printData(cameraJson(camera).dump(2));
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

void addList(CLI::App& app, CommonOptions& /*common*/, Action& action) {
  CLI::App* command = app.add_subcommand("list", "Show the cameras that there are");
  command->footer("Examples:\n  ovi list\n  ovi list --json\n  ovi list --producer /opt/maker/producer.cti");
  command->callback([&action] { action = list; });
}

void addInfo(CLI::App& app, CommonOptions& common, Action& action) {
  CLI::App* command = app.add_subcommand("info", "Show what is known about one camera");
  command->add_option("CAMERA", common.camera, "Number, serial number, user-defined name, model or ID");
  command->footer("Examples:\n  ovi info\n  ovi info 2");
  command->callback([&action] { action = [](Session& session) { info(session, {}); }; });
}

}  // namespace tool
