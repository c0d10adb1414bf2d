// ovi describe: the description of a module, as its producer hands it out. Run by commands that want to know what the
// library does not tell, in a process of its own, which may load the producer once more and need not trust it.
#include <memory>
#include <nlohmann/json.hpp>

#include "check/modules.h"
#include "check/port_description.h"
#include "commands.h"
#include "hex.h"
#include "module_view.h"
#include "paths.h"
#include "terminal.h"

namespace tool {

namespace {

struct DescribeOptions {
  std::string producer;
  std::string interface;
  std::string device;
  std::string module;
};

PORT_HANDLE portOf(const check::Modules& modules, ovi::Module module) {
  switch (module) {
    case ovi::Module::kSystem:
      return modules.tl;
    case ovi::Module::kInterface:
      return modules.iface;
    case ovi::Module::kLocalDevice:
      return modules.device;
    case ovi::Module::kDataStream:
      return modules.stream;
    default:
      return modules.remote;
  }
}

void printDescription(const DescribeOptions& options) {
  constexpr std::chrono::seconds kPatience{8};
  check::watchCalls(kPatience, [](const std::string& function) { printNote(function + " does not come back"); });
  const ovi::Module module = moduleFromText(options.module);
  const DynamicLibrary library(pathFromText(options.producer));
  const check::ProducerFunctions functions(library);
  check::Checker checker(
      functions, options.device, [](const std::string&) {}, [](const check::RuleLine&) {});
  const check::Modules modules(checker, {options.interface, options.device},
                               module == ovi::Module::kDataStream ? check::Depth::kStream : check::Depth::kDevice);
  const std::string content = check::descriptionOf(checker, portOf(modules, module));
  printData(hexFromBytes({reinterpret_cast<const std::uint8_t*>(content.data()), content.size()}));
}

}  // namespace

void addDescribe(CLI::App& app, CommonOptions& common, Action& action) {
  CLI::App* command = app.add_subcommand("describe", "Print the description of a module");
  command->group("");  // for other commands, not for people
  auto options = std::make_shared<DescribeOptions>();
  command->add_option("FILE", options->producer, "The producer")->required();
  command->add_option("INTERFACE", options->interface, "The interface's ID")->required();
  command->add_option("DEVICE", options->device, "The device's ID")->required();
  command->add_option("MODULE", options->module, "Which module of the device")->required();
  command->callback([=, &action, &common] {
    common.withoutLibrary = true;
    action = [=](Session&) { printDescription(*options); };
  });
}

}  // namespace tool
