// ovi doctor: why a camera or an image is missing, and what to do about it.
#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>

#include "binary_file.h"
#include "commands.h"
#include "finding.h"
#include "paths.h"
#include "picture.h"
#include "platform/child_process.h"
#include "platform/console.h"
#include "platform/machine_settings.h"
#include "terminal.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

constexpr std::chrono::seconds kProbeTime{20};
constexpr std::chrono::seconds kSearchTime{60};

struct Chapter {
  std::string title;
  Findings findings;
};

std::string lastLines(const std::string& text, std::size_t count) {
  std::size_t start = text.size();
  for (std::size_t lines = 0; start > 0 && lines <= count; --start)
    lines += text[start - 1] == '\n' ? 1U : 0U;
  std::string tail = text.substr(start == 0 ? 0 : start + 1);
  while (!tail.empty() && (tail.back() == '\n' || tail.back() == '\r'))
    tail.pop_back();
  return tail;
}

// What is the matter with a child that did not give an answer; empty when it did.
std::string childFailure(const ChildResult& child) {
  if (!child.started)
    return "could not be tried: no process could be started";
  if (child.crashed)
    return "crashes: " + child.crash;
  if (child.timedOut)
    return "hangs: no answer in time";
  return {};
}

std::vector<std::filesystem::path> producersIn(const std::string& folder) {
  std::vector<std::filesystem::path> files;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(pathFromText(folder), error))
    if (entry.path().extension() == ".cti")
      files.push_back(entry.path());
  std::ranges::sort(files);
  return files;
}

Chapter examineFolders(const Session& session, const std::vector<std::string>& folders) {
  Chapter chapter{"Search path", {}};
  if (session.options().producer.empty() && environmentVariable("GENICAM_GENTL64_PATH").empty())
    chapter.findings.push_back({Level::kNote,
                                "GENICAM_GENTL64_PATH is not set: producers of camera makers are not found",
                                "install the camera maker's producer, or name one with --producer FILE.cti"});
  for (const std::string& folder : folders) {
    std::error_code error;
    if (!std::filesystem::is_directory(pathFromText(folder), error))
      chapter.findings.push_back({Level::kProblem, folder + ": there is no such folder",
                                  "take it out of GENICAM_GENTL64_PATH, or install the producer again"});
    else if (const std::size_t count = producersIn(folder).size(); count == 0)
      chapter.findings.push_back({Level::kNote, folder + ": no producer in it (*.cti)", ""});
    else
      chapter.findings.push_back(
          {Level::kGood, folder + ": " + std::to_string(count) + " producer file" + (count == 1 ? "" : "s"), ""});
  }
  return chapter;
}

Finding examineProducer(const std::filesystem::path& file) {
  const std::string name = pathText(file);
  const BinaryFile binary = inspectBinary(file);
  if (!binary.readable)
    return {Level::kProblem, name + ": " + binary.kind, "check the file's permissions, or install the producer again"};
  if (!binary.fits)
    return {Level::kProblem, name + ": " + binary.kind + ", cannot be loaded by this program",
            "install the producer for this kind of machine"};
  const ChildResult child = runChild(ownProgram(), {"probe", name}, kProbeTime);
  if (const std::string failure = childFailure(child); !failure.empty())
    return {Level::kProblem, name + ": " + failure + " when it is loaded (" + binary.kind + ")",
            "ask its maker for a newer version; take it out of the search path meanwhile"};
  const nlohmann::json answer = nlohmann::json::parse(child.output, nullptr, false);
  if (!answer.is_object())
    return {Level::kProblem, name + ": cannot be tried: " + lastLines(child.messages, 1), ""};
  if (!answer.value("loads", false)) {
    std::string reason = answer.value("result", "");
    for (const auto& message : answer.value("messages", nlohmann::json::array()))
      reason += "; " + message.get<std::string>();
    return {Level::kProblem, name + ": does not load: " + reason,
            "install what it needs, or install it again; ldd shows libraries that are missing"};
  }
  return {Level::kGood, name + ": " + answer.value("displayName", "") + ", loads (" + binary.kind + ")", ""};
}

Chapter examineProducers(const Session& session, const std::vector<std::string>& folders) {
  Chapter chapter{"Producers", {}};
  const std::filesystem::path wanted = pathFromText(session.options().producer);
  std::error_code error;
  const bool one = !wanted.empty() && !std::filesystem::is_directory(wanted, error);
  for (const std::string& folder : folders)
    for (const std::filesystem::path& file : producersIn(folder))
      if (!one || file.filename() == wanted.filename())
        chapter.findings.push_back(examineProducer(file));
  if (chapter.findings.empty())
    chapter.findings.push_back({Level::kProblem, "there is none", "install the camera maker's producer"});
  return chapter;
}

// Cameras that the library leaves out, by the lines of its log.
void addDropped(const std::string& log, Findings& findings) {
  const std::string found = "New acquisition device: [";
  const std::string dropped = "currently not supported";
  std::size_t at = 0;
  while ((at = log.find(dropped, at)) != std::string::npos) {
    const std::size_t line = log.rfind(found, at);
    if (line != std::string::npos) {
      const std::size_t start = line + found.size();
      findings.push_back({Level::kNote,
                          "camera " + log.substr(start, log.find(']', start) - start) +
                              " is left out: its maker is not served, or it tells no model",
                          ""});
    }
    at += dropped.size();
  }
}

Chapter examineCameras(const Session& session, std::string& log) {
  Chapter chapter{"Cameras", {}};
  std::vector<std::string> arguments = {"list", "--json", "--verbose", "--timeout",
                                        std::to_string(session.options().timeout)};
  if (!session.options().producer.empty())
    arguments.insert(arguments.end(), {"--producer", session.options().producer});
  const ChildResult child = runChild(ownProgram(), arguments, kSearchTime);
  log = child.messages;
  if (const std::string failure = childFailure(child); !failure.empty()) {
    chapter.findings.push_back({Level::kProblem, "the search for cameras " + failure,
                                "take the producers that do not load out of the search path, one by one"});
    return chapter;
  }
  addDropped(log, chapter.findings);
  const nlohmann::json cameras = nlohmann::json::parse(child.output, nullptr, false);
  std::size_t count = 0;
  for (const auto& camera : cameras.is_array() ? cameras : nlohmann::json::array()) {
    const std::string access = camera.value("access", "");
    const bool free = access == "available" || access == "unknown";
    chapter.findings.push_back({free ? Level::kGood : Level::kNote,
                                camera.value("model", "") + ", " + camera.value("serial", "") + ", on " +
                                    camera.value("interface", "") + ": " + access +
                                    (camera.value("virtual", false) ? ", virtual" : ""),
                                free ? "" : "close the other program that uses it"});
    ++count;
  }
  if (count == 0)
    chapter.findings.push_back(
        {Level::kProblem, "none was found", "is it powered and connected, and in the same subnet as this machine?"});
  return chapter;
}

std::string chapterText(const Chapter& chapter, bool terminal) {
  static constexpr std::array<const char*, 3> kMarks = {"ok      ", "note    ", "problem "};
  static constexpr std::array<Colour, 3> kColours = {Colour::kGreen, Colour::kYellow, Colour::kRed};
  std::string text = coloured(chapter.title, Colour::kBold, terminal) + "\n";
  for (const Finding& finding : chapter.findings) {
    const auto level = static_cast<std::size_t>(finding.level);
    text += "  " + coloured(kMarks.at(level), kColours.at(level), terminal) + finding.text + "\n";
    if (!finding.advice.empty())
      text += "          try: " + finding.advice + "\n";
  }
  return text;
}

nlohmann::ordered_json chapterJson(const Chapter& chapter) {
  static constexpr std::array<const char*, 3> kLevels = {"ok", "note", "problem"};
  nlohmann::ordered_json json = nlohmann::ordered_json::array();
  for (const Finding& finding : chapter.findings) {
    nlohmann::ordered_json item{{"level", kLevels.at(static_cast<std::size_t>(finding.level))}, {"text", finding.text}};
    if (!finding.advice.empty())
      item["advice"] = finding.advice;
    json.push_back(std::move(item));
  }
  return json;
}

void doctor(Session& session, const std::string& report) {
  ProgressLine line;
  const std::vector<std::string> folders = session.folders();
  std::vector<Chapter> chapters{examineFolders(session, folders)};
  line.show(0.2, "trying producers", true);
  chapters.push_back(examineProducers(session, folders));
  line.show(0.6, "searching for cameras", true);
  std::string log;
  chapters.push_back(examineCameras(session, log));
  chapters.push_back({"This machine", examineMachine()});
  line.clear();

  std::size_t problems = 0;
  std::string plain = "ovi " + ovi::Library::version() + "\n";
  std::string shown;
  nlohmann::ordered_json json{{"version", ovi::Library::version()}};
  for (const Chapter& chapter : chapters) {
    for (const Finding& finding : chapter.findings)
      problems += finding.level == Level::kProblem ? 1U : 0U;
    plain += chapterText(chapter, false);
    shown += chapterText(chapter, standardOutputIsTerminal());
    json[chapter.title] = chapterJson(chapter);
  }
  if (!report.empty()) {
    const std::string text = plain + "\nLog of the search\n" + log;
    writeRaw({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}, pathFromText(report));
    printNote("wrote the report " + report);
  }
  shown.pop_back();
  printData(session.options().json ? json.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) : shown);
  if (problems > 0)
    throw ToolError(std::to_string(problems) + (problems == 1 ? " problem was found" : " problems were found"),
                    "what the lines marked \"problem\" say");
}

}  // namespace

void addDoctor(CLI::App& app, CommonOptions& /*common*/, Action& action) {
  CLI::App* command = app.add_subcommand("doctor", "Find out why a camera or an image is missing");
  auto report = std::make_shared<std::string>();
  command->add_option("--report", *report, "Write a report for others, with the log of the search")->type_name("FILE");
  command->footer("Examples:\n  ovi doctor\n  ovi doctor --json\n  ovi doctor --report report.txt");
  command->callback([=, &action] { action = [=](Session& session) { doctor(session, *report); }; });
}

}  // namespace tool
