// ovi doctor: why a camera or an image is missing, and what to do about it.
#include <array>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>

#include "commands.h"
#include "doctor/bug_report.h"
#include "doctor/cameras.h"
#include "doctor/producers.h"
#include "doctor/search_path.h"
#include "doctor/surroundings.h"
#include "paths.h"
#include "platform/console.h"
#include "platform/machine_settings.h"
#include "printable.h"
#include "terminal.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

struct Chapter {
  const char* title;
  const char* key;
  Findings findings;
};

constexpr std::array<const char*, 3> kLevels = {"ok", "note", "problem"};

Styled chapterText(const Chapter& chapter) {
  static constexpr std::array<Colour, 3> kColours = {Colour::kGreen, Colour::kYellow, Colour::kRed};
  Styled text(chapter.title, Colour::kBold);
  for (const Finding& finding : chapter.findings) {
    const auto level = static_cast<std::size_t>(finding.level);
    std::string mark = kLevels.at(level);
    mark.resize(8, ' ');
    text += "\n  " + Styled(mark, kColours.at(level)) + printable(finding.text);
    if (!finding.advice.empty())
      text += "\n          try: " + printable(finding.advice);
  }
  return text;
}

nlohmann::ordered_json chapterJson(const Chapter& chapter) {
  nlohmann::ordered_json json = nlohmann::ordered_json::array();
  for (const Finding& finding : chapter.findings) {
    nlohmann::ordered_json item{{"level", kLevels.at(static_cast<std::size_t>(finding.level))}, {"text", finding.text}};
    if (!finding.advice.empty())
      item["advice"] = finding.advice;
    if (finding.facts.is_object())
      item.update(finding.facts);
    json.push_back(std::move(item));
  }
  return json;
}

struct Diagnosis {
  std::vector<Chapter> chapters;
  std::string log;

  std::size_t count(Level level) const {
    std::size_t number = 0;
    for (const Chapter& chapter : chapters)
      for (const Finding& finding : chapter.findings)
        number += finding.level == level ? 1U : 0U;
    return number;
  }
  Styled text() const {
    Styled all("");
    for (const Chapter& chapter : chapters)
      all += (&chapter == chapters.data() ? "" : "\n") + chapterText(chapter);
    return all;
  }
  std::string json() const {
    nlohmann::ordered_json all{
        {"version", ovi::Library::version()}, {"problems", count(Level::kProblem)}, {"notes", count(Level::kNote)}};
    for (const Chapter& chapter : chapters)
      all[chapter.key] = chapterJson(chapter);
    return all.dump(2, ' ', false, nlohmann::json::error_handler_t::replace);
  }
};

Diagnosis diagnose(Session& session) {
  Diagnosis diagnosis;
  const auto add = [&](const char* title, const char* key, Findings findings) {
    if (!findings.empty())
      diagnosis.chapters.push_back({title, key, std::move(findings)});
  };
  ProgressLine line;
  line.show(0.0, "looking at the search path", true);
  SearchPathExamination path = examineSearchPath(session);
  add("Search path", "searchPath", std::move(path.findings));
  std::size_t done = 0;
  ProducerExamination producers = examineProducers(session, path.producers, [&](const std::filesystem::path& file) {
    line.show(0.1 + 0.6 * static_cast<double>(done++) / static_cast<double>(path.producers.size()),
              "trying " + pathText(file.filename()), true);
  });
  add("Producers", "producers", producers.producers);
  add("Interfaces", "interfaces", producers.interfaces);
  line.show(0.7, "searching for cameras", true);
  CameraExamination cameras = examineCameras(session, producers);
  diagnosis.log = std::move(cameras.log);
  Findings buses = examineBuses();
  cameras.findings.insert(cameras.findings.end(), buses.begin(), buses.end());
  add("Cameras", "cameras", std::move(cameras.findings));
  if (const std::string& camera = session.options().camera; !camera.empty()) {
    line.show(0.8, "taking images", true);
    add("Images", "images", examineImages(session, camera));
  }
  line.show(0.9, "looking at the machine", true);
  Findings machine = examineSurroundings();
  Findings settings = examineMachine();
  machine.insert(machine.end(), std::make_move_iterator(settings.begin()), std::make_move_iterator(settings.end()));
  add("This machine", "machine", std::move(machine));
  return diagnosis;
}

void doctor(Session& session, const std::string& report) {
  if (!report.empty() && !equalsIgnoringCase(pathText(pathFromText(report).extension()), ".zip"))
    throw ToolError("the report \"" + report + "\" is a ZIP archive, but its name does not end with .zip",
                    session.command("doctor --report " + report + ".zip"), ExitCode::kUsage);
  const Diagnosis diagnosis = diagnose(session);
  if (!report.empty()) {
    writeReport(pathFromText(report), {{"report.txt", diagnosis.text().rendered(false) + "\n\n" + machineText()},
                                       {"report.json", diagnosis.json() + "\n"},
                                       {"log.txt", diagnosis.log}});
    printNote("wrote the report " + report + "; look into it before you give it away");
  }
  printData(session.options().json ? diagnosis.json() : diagnosis.text());
  if (const std::size_t problems = diagnosis.count(Level::kProblem); problems > 0)
    throw ToolError(std::to_string(problems) + (problems == 1 ? " problem was found" : " problems were found"),
                    "what the lines marked \"problem\" say");
}

}  // namespace

void addDoctor(CLI::App& app, CommonOptions& common, Action& action) {
  CLI::App* command = app.add_subcommand("doctor", "Find out why a camera or an image is missing");
  auto report = std::make_shared<std::string>();
  command->add_option("--report", *report, "Write a report for others: findings, log of the search, machine")
      ->type_name("FILE.zip");
  addCameraOption(*command, common);
  command->footer(
      "With a camera it also takes images from it for 3 seconds.\n\n"
      "Examples:\n  ovi doctor\n  ovi doctor --camera 1\n  ovi doctor --json\n  ovi doctor --report report.zip");
  command->callback([=, &action] { action = [=](Session& session) { doctor(session, *report); }; });
}

}  // namespace tool
