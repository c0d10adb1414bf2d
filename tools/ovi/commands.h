// The commands of the tool: each adds itself to the command line and runs when it is chosen.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>

#include "session.h"

namespace tool {

/// What is run after the command line was read; set by the command that was chosen.
using Action = std::function<void(Session&)>;

/// Adds a command to the command line, with its options; `action` is what it does when chosen.
using AddCommand = void (*)(CLI::App& app, CommonOptions& common, Action& action);

/// What is there, and what to type next: what the tool does without a command.
void showOverview(Session& session);

void addList(CLI::App& app, CommonOptions& common, Action& action);
void addInfo(CLI::App& app, CommonOptions& common, Action& action);
void addFeatures(CLI::App& app, CommonOptions& common, Action& action);
void addGet(CLI::App& app, CommonOptions& common, Action& action);
void addSet(CLI::App& app, CommonOptions& common, Action& action);
void addGrab(CLI::App& app, CommonOptions& common, Action& action);
void addStream(CLI::App& app, CommonOptions& common, Action& action);
void addFile(CLI::App& app, CommonOptions& common, Action& action);
void addMem(CLI::App& app, CommonOptions& common, Action& action);
void addWatch(CLI::App& app, CommonOptions& common, Action& action);
void addSave(CLI::App& app, CommonOptions& common, Action& action);
void addLoad(CLI::App& app, CommonOptions& common, Action& action);
void addDiff(CLI::App& app, CommonOptions& common, Action& action);
void addScan(CLI::App& app, CommonOptions& common, Action& action);
void addBench(CLI::App& app, CommonOptions& common, Action& action);
void addDoctor(CLI::App& app, CommonOptions& common, Action& action);
void addXml(CLI::App& app, CommonOptions& common, Action& action);
void addCheck(CLI::App& app, CommonOptions& common, Action& action);
void addComplete(CLI::App& app, CommonOptions& common, Action& action);
void addMan(CLI::App& app, CommonOptions& common, Action& action);
void addProbe(CLI::App& app, CommonOptions& common, Action& action);
void addDescribe(CLI::App& app, CommonOptions& common, Action& action);

/// An option with a number that is not negative. The parser would take -1 for the largest one.
template<class Number>
CLI::Option* addNumberOption(CLI::App& command, const std::string& names, Number& value, const char* unit,
                             const std::string& description) {
  const auto check = [](const std::string& text) {
    return text.starts_with("-") ? "\"" + text + "\" is less than 0" : std::string();
  };
  return command.add_option(names, value, description)->type_name(unit)->check(check);
}

/// The groups of rules of ovi check.
std::vector<std::string> checkGroupNames();

/// The option that names the camera, for commands that work on one.
void addCameraOption(CLI::App& command, CommonOptions& common);

/// The option that names a module; the text is converted with moduleFromText.
void addModuleOption(CLI::App& command, std::string& module);

}  // namespace tool
