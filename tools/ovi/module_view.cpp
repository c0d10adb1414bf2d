// One module of an open camera, as the commands that work on features see it.
#include "module_view.h"

#include <algorithm>
#include <array>

#include "feature_text.h"
#include "platform/console.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

struct ModuleName {
  const char* text;
  ovi::Module module;
  const char* noun;
};

constexpr std::array kModules = {ModuleName{"device", ovi::Module::kRemoteDevice, "the camera"},
                                 ModuleName{"local", ovi::Module::kLocalDevice, "the producer's device"},
                                 ModuleName{"interface", ovi::Module::kInterface, "the interface"},
                                 ModuleName{"system", ovi::Module::kSystem, "the producer"},
                                 ModuleName{"stream", ovi::Module::kDataStream, "the stream"}};

}  // namespace

std::vector<std::string> moduleNames() {
  std::vector<std::string> names;
  for (const ModuleName& name : kModules)
    names.emplace_back(name.text);
  return names;
}

std::string moduleText(ovi::Module module) {
  const auto* found =
      std::ranges::find_if(kModules, [module](const ModuleName& name) { return name.module == module; });
  return found->text;
}

ovi::Module moduleFromText(const std::string& text) {
  for (const ModuleName& name : kModules)
    if (equalsIgnoringCase(text, name.text))
      return name.module;
  const std::vector<std::string> names = moduleNames();
  const std::string nearest = nearestMatch(text, names);
  throw ToolError("there is no module \"" + text + "\"." + (nearest.empty() ? "" : " Did you mean " + nearest + "?"),
                  "--module with one of " + join(names, ", "), ExitCode::kUsage);
}

ModuleView::ModuleView(Session& session, const std::string& module, Use use, const std::string& camera)
    : session_(session),
      wanted_(moduleFromText(module)),
      camera_(session.pick(camera.empty() ? session.options().camera : camera)),
      device_(session.open(camera_.id, use)) {
  for (const std::string& assignment : session.options().assignments)
    assignFeature(*this, assignment);
  module_ = wanted_;
  if (module_ != ovi::Module::kRemoteDevice)
    options_ = " --module " + module;
  if (module_ == ovi::Module::kDataStream)
    stream_ = std::make_unique<ovi::Stream>(device_.openStream(4));
}

ovi::Feature ModuleView::feature(const std::string& name) const {
  return {handle(), module_, toLibraryText(name)};
}

bool ModuleView::has(const std::string& name) const {
  return feature(name).exists();
}

std::string ModuleView::command(const std::string& words) const {
  return session_.command(words + options_);
}

std::string ModuleView::noun() const {
  const auto* found = std::ranges::find_if(kModules, [this](const ModuleName& name) { return name.module == module_; });
  return found->noun;
}

}  // namespace tool
