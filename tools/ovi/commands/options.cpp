// Options that several commands share.
#include "commands.h"

namespace tool {

void addCameraOption(CLI::App& command, CommonOptions& common) {
  command.add_option("-c,--camera", common.camera, "Number, serial number, user-defined name, model or ID")
      ->type_name("CAMERA");
}

void addModuleOption(CLI::App& command, std::string& module) {
  command.add_option("-m,--module", module, "device, local, interface, system or stream")->type_name("MODULE");
}

}  // namespace tool
