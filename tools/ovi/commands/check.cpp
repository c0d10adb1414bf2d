// ovi check: whether a producer keeps the rules of GenTL, as far as the library and its users depend on them.
#include <algorithm>
#include <array>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "check/call_watch.h"
#include "check/groups.h"
#include "check/modules.h"
#include "commands.h"
#include "paths.h"
#include "platform/child_process.h"
#include "platform/console.h"
#include "printable.h"
#include "terminal.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

using nlohmann::ordered_json;

constexpr std::chrono::seconds kGroupTime{90};
// Longer than any time-out that the rules ask for.
constexpr std::chrono::seconds kCallTime{8};

constexpr std::array kGroups = {check::Group{"exports", "Exports", check::checkExports},
                                check::Group{"life", "Life cycle", check::checkLifeCycle},
                                check::Group{"system", "System", check::checkSystem},
                                check::Group{"interfaces", "Interfaces and devices", check::checkInterfaces},
                                check::Group{"device", "Device", check::checkDevice},
                                check::Group{"ports", "Ports and descriptions", check::checkPorts},
                                check::Group{"events", "Events", check::checkEvents},
                                check::Group{"buffers", "Buffers and flushes", check::checkBuffers},
                                check::Group{"images", "Images", check::checkImages},
                                check::Group{"stops", "Stop and restart", check::checkStops},
                                check::Group{"threads", "Threads", check::checkThreads},
                                check::Group{"faults", "Fault paths", check::checkFaults}};

struct Result {
  const char* name;
  Colour colour;
};

// The verdicts in their order, and a rule that the same failure ended as one before: it is told once.
constexpr std::array kResults = {Result{"pass", Colour::kGreen}, Result{"warn", Colour::kYellow},
                                 Result{"fail", Colour::kRed}, Result{"skip", Colour::kDim}};

std::size_t resultIndex(const ordered_json& line) {
  const auto same = [&](const Result& result) { return line["result"] == result.name; };
  return static_cast<std::size_t>(std::ranges::find_if(kResults, same) - kResults.begin());
}

struct CheckOptions {
  std::string producer;
  std::string group;  // set in the processes of the groups
  std::vector<std::string> only;
};

// In a group's process: a line of JSON for each rule that begins or ends.
void runGroup(const CheckOptions& options, const std::string& camera) {
  const auto group =
      std::ranges::find_if(kGroups, [&](const check::Group& candidate) { return options.group == candidate.name; });
  if (group == kGroups.end())
    throw ToolError("there is no group \"" + options.group + "\"", "ovi check --help", ExitCode::kUsage);
  const auto print = [](const ordered_json& line) { printJson(line, -1); };
  std::string current;
  check::watchCalls(kCallTime, [&](const std::string& function) {
    print({{"rule", current},
           {"result", "fail"},
           {"seen", function + " did not come back within " + std::to_string(kCallTime.count()) + " s"},
           {"ended", true}});
  });
  const auto begin = [&](const std::string& rule) {
    current = rule;
    print({{"begin", rule}});
  };
  begin("The producer loads");
  // Never unloaded: a broken producer may have threads that still run.
  static const DynamicLibrary* const library = [&] {
    const check::WatchedCall watch("its own start, while it is loaded");
    return new DynamicLibrary(pathFromText(options.producer));
  }();
  begin("");
  const check::ProducerFunctions functions(*library);
  check::Checker checker(functions, camera, begin, [&](const check::RuleLine& line) {
    current.clear();
    print({{"rule", line.rule},
           {"result", kResults.at(static_cast<std::size_t>(line.verdict)).name},
           {"seen", line.seen},
           {"ended", line.ended}});
  });
  group->run(checker);
  print({{"end", options.group}});
}

// What a group's process printed, with a line for an end that was none.
std::vector<ordered_json> linesOf(const ChildResult& child) {
  std::vector<ordered_json> lines;
  std::string begun;
  bool ended = false;
  std::istringstream stream(child.output);
  for (std::string text; std::getline(stream, text);) {
    ordered_json line = ordered_json::parse(text, nullptr, false);
    if (line.is_object() && line.contains("begin")) {
      begun = line["begin"];
    } else if (line.is_object() && line.contains("rule")) {
      begun.clear();
      lines.push_back(std::move(line));
    } else if (line.is_object() && line.contains("end")) {
      ended = true;
    }
  }
  const auto failed = [&](const std::string& seen) {
    lines.push_back(
        {{"rule", begun.empty() ? "The rules can be tried to their end" : begun}, {"result", "fail"}, {"seen", seen}});
  };
  const std::size_t where = child.messages.find("crashed in ");
  if (!child.started)
    failed("no process could be started: " + child.refusal);
  else if (child.timedOut)
    failed("the process hung");
  else if (child.crashed)
    failed("the process crashed: " + child.crash +
           (where == std::string::npos
                ? ""
                : ", in " + child.messages.substr(where + 11, child.messages.find('\n', where) - where - 11)));
  else if (const std::string said = child.messages.substr(0, child.messages.find_first_of("\r\n"));
           (!ended || child.exitCode != 0) && (lines.empty() || lines.back()["result"] != "fail"))
    failed(said.starts_with("ovi: ") ? said.substr(5)
                                     : "it ended the process, with exit code " + std::to_string(child.exitCode) +
                                           (said.empty() ? "" : ", and said: " + said));
  return lines;
}

// Failures that ended a rule, over all groups.
class ToldFailures {
 public:
  /// Makes the line of a rule that ended as one before a skipped one.
  void judge(ordered_json& line) {
    const bool ended = line.value("ended", false);
    line.erase("ended");
    if (!ended || told_.insert(line["seen"].get<std::string>()).second)
      return;
    line["result"] = "skip";
    line["seen"] = "not judged; as before, " + line["seen"].get<std::string>();
  }

 private:
  std::set<std::string> told_;
};

using Totals = std::array<std::size_t, kResults.size()>;

std::string totalsText(const Totals& totals) {
  std::string text;
  for (std::size_t i = 0; i < totals.size(); ++i)
    if (i < 3 || totals.at(i) > 0)
      text += (i == 0 ? "" : ", ") + std::to_string(totals.at(i)) + " " + kResults.at(i).name;
  return text;
}

void printLine(const ordered_json& line) {
  const std::size_t index = resultIndex(line);
  const std::string seen = printable(line.value("seen", ""));
  printData("  " + Styled(kResults.at(index).name, kResults.at(index).colour) + "  " + line["rule"].get<std::string>() +
            (seen.empty() ? ""
             : index == 0 ? " (" + seen + ")"
                          : "\n        " + seen));
}

// The producers in these folders, for whoever does not know the path of his own.
std::vector<std::string> producersIn(const std::vector<std::string>& folders) {
  std::vector<std::string> files;
  std::error_code error;
  for (const std::string& folder : folders)
    for (const auto& entry : std::filesystem::directory_iterator(pathFromText(folder), error))
      if (entry.path().extension() == ".cti" && entry.is_regular_file(error))
        files.push_back(pathText(entry.path()));
  return files;
}

void requireProducer(const Session& session, const std::string& producer) {
  std::error_code error;
  if (std::filesystem::is_regular_file(pathFromText(producer), error))
    return;
  const bool isFolder = std::filesystem::is_directory(pathFromText(producer), error);
  const std::vector<std::string> known = producersIn(isFolder ? std::vector{producer} : session.folders());
  throw ToolError((producer.empty() ? "no producer was named"
                   : isFolder       ? producer + " is a folder" + (known.empty() ? " without a producer" : "")
                                    : "there is no producer " + producer) +
                      (known.empty() ? ""
                       : isFolder    ? "; in it are:\n  " + join(known, "\n  ")
                                     : "; on the search path are:\n  " + join(known, "\n  ")),
                  "ovi check " + (known.empty() ? "FILE.cti" : shellWord(known.front())), ExitCode::kUsage);
}

// It is no fault of the producer that it has no such device.
void requireNamedDevice(const Session& session, const std::string& producer, const ordered_json& line) {
  const std::string& camera = session.options().camera;
  if (!camera.empty() && line.value("ended", false) && line["seen"] == check::noDeviceText(camera))
    throw ToolError("the producer has no device \"" + camera + "\"", "ovi list --producer " + shellWord(producer),
                    ExitCode::kUsage);
}

void requireGroups(const CheckOptions& options) {
  const std::vector<std::string> names = checkGroupNames();
  for (const std::string& group : options.only) {
    if (std::ranges::find(names, group) != names.end())
      continue;
    const std::string nearest = nearestMatch(group, names);
    throw ToolError("there is no group \"" + group + "\"." + (nearest.empty() ? "" : " Did you mean " + nearest + "?") +
                        " Groups: " + join(names, ", "),
                    "ovi check " + options.producer + " --only " + (nearest.empty() ? names.front() : nearest),
                    ExitCode::kUsage);
  }
}

void runAll(const Session& session, CheckOptions options) {
  if (options.producer.empty())
    options.producer = session.options().producer;
  requireProducer(session, options.producer);
  requireGroups(options);
  const bool json = session.options().json;
  Totals totals{};
  ToldFailures told;
  ordered_json all = ordered_json::array();
  ProgressLine progress;
  for (const check::Group& group : kGroups) {
    throwIfInterrupted();
    if (!options.only.empty() && std::ranges::find(options.only, group.name) == options.only.end())
      continue;
    progress.show(-1.0, group.title, true);
    std::vector<std::string> arguments = {"check", options.producer, "--in-group", group.name};
    if (!session.options().camera.empty())
      arguments.insert(arguments.end(), {"--camera", session.options().camera});
    std::vector<ordered_json> lines = linesOf(runChild(ownProgram(), arguments, kGroupTime));
    progress.clear();
    if (!json)
      printData(Styled(group.title, Colour::kBold));
    bool hopeless = false;
    for (ordered_json& line : lines) {
      requireNamedDevice(session, options.producer, line);
      told.judge(line);
      ++totals.at(resultIndex(line));
      hopeless = hopeless || (line["result"] == "fail" && (group.name == std::string("exports") ||
                                                           line["rule"] == "GCInitLib initialises the library"));
      if (json) {
        ordered_json item{{"group", group.name}};
        item.update(line);
        all.push_back(std::move(item));
      } else {
        printLine(line);
      }
    }
    if (hopeless)
      break;
  }
  if (json) {
    ordered_json report{{"producer", options.producer}};
    for (std::size_t i = 0; i < totals.size(); ++i)
      report[kResults.at(i).name] = totals.at(i);
    report["rules"] = all;
    printJson(report);
  } else {
    printData(totalsText(totals));
  }
  if (const std::size_t failed = totals[2]; failed > 0)
    throw ToolError("the producer breaks " + std::to_string(failed) + (failed == 1 ? " rule" : " rules"));
}

}  // namespace

std::vector<std::string> checkGroupNames() {
  std::vector<std::string> names;
  for (const check::Group& group : kGroups)
    names.emplace_back(group.name);
  return names;
}

void addCheck(CLI::App& app, CommonOptions& common, Action& action) {
  CLI::App* command = app.add_subcommand("check", "Hold a producer against the rules of GenTL");
  auto options = std::make_shared<CheckOptions>();
  command->add_option("PRODUCER", options->producer, "The producer's file; --producer names it too");
  command->add_option("--only", options->only, "Only these groups: " + join(checkGroupNames(), ", "))
      ->type_name("GROUP")
      ->allow_extra_args(false);
  command->add_option("--in-group", options->group)->group("");
  addCameraOption(*command, common);
  command->footer(
      "Examples:\n  ovi check /opt/maker/producer.cti\n  ovi check producer.cti --camera 12345678\n"
      "  ovi check producer.cti --only images --only stops");
  command->callback([=, &action, &common] {
    common.withoutLibrary = true;
    action = [=](Session& session) {
      options->group.empty() ? runAll(session, *options) : runGroup(*options, session.options().camera);
    };
  });
}

}  // namespace tool
