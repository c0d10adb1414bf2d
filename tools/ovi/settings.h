// A camera's settings as a list of assignments, as text, and back into a camera.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "module_view.h"

namespace tool {

/// One feature's value, under the values of its selectors.
struct Setting {
  std::string feature;
  std::vector<std::pair<std::string, std::string>> selectors;
  std::string value;

  /// "Gain [GainSelector=AnalogAll]"
  std::string name() const;
};

/// A setting that a camera did not take, or holds another value of.
struct SettingProblem {
  Setting setting;
  std::string reason;
};

/// The settings that the camera has now: what its description marks as streamable and can be read and written, in the
/// description's order; features that selectors select once for every value of these. Where the description marks
/// nothing, or is not known to the view, everything that can be read and written counts, but what identifies the camera
/// or works instead of setting.
/// @param notes  receives by which rule they were chosen when not by the first, and what is missing
std::vector<Setting> readSettings(const ModuleView& view, std::vector<std::string>& notes);

/// Sets them all, again and again while that gets further, since one setting may have to wait for another; reads each
/// back. Selectors are as before afterwards, but those that are settings themselves.
/// @return what could not be set
std::vector<SettingProblem> writeSettings(const ModuleView& view, const std::vector<Setting>& settings);

/// What the camera holds instead of a setting's value; selectors are as before afterwards.
std::vector<SettingProblem> compareSettings(const ModuleView& view, const std::vector<Setting>& settings);

/// A line of a settings file: "Gain [GainSelector=AnalogAll] = 1.5".
std::string settingLine(const Setting& setting);

/// The settings of a file's text; lines that are empty or begin with # do not count. Throws ToolError with the line.
std::vector<Setting> parseSettings(const std::string& text, const std::string& path);

}  // namespace tool
