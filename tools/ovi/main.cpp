// The command-line program: reads the command line, runs one command, and says what went wrong and what to try next.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <exception>

#include "commands.h"
#include "platform/console.h"
#include "session.h"
#include "terminal.h"
#include "text.h"
#include "tool_error.h"

namespace {

constexpr std::array kCommands = {tool::addList,   tool::addInfo, tool::addFeatures, tool::addGet,  tool::addSet,
                                  tool::addWatch,  tool::addGrab, tool::addStream,   tool::addScan, tool::addBench,
                                  tool::addSave,   tool::addLoad, tool::addDiff,     tool::addFile, tool::addMem,
                                  tool::addDoctor, tool::addXml,  tool::addCheck,    tool::addProbe};

int report(const std::string& message, const std::string& hint, tool::ExitCode code) {
  const bool terminal = tool::standardErrorIsTerminal();
  tool::printNote(tool::coloured("ovi: ", tool::Colour::kRed, terminal) + message);
  if (!hint.empty())
    tool::printNote(tool::coloured("try: ", tool::Colour::kDim, terminal) + hint);
  return static_cast<int>(code);
}

// An unknown word where a command should stand gets the nearest command.
int reportUsage(CLI::App& app, const CLI::ParseError& error, const std::vector<std::string>& arguments) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands({}))
    if (!command->get_group().empty())
      names.push_back(command->get_name());
  const auto word = std::ranges::find_if(arguments, [](const std::string& a) { return a[0] != '-'; });
  if (word != arguments.end() && std::ranges::find(names, *word) == names.end()) {
    const std::string nearest = tool::nearestMatch(*word, names);
    return report("there is no command \"" + *word + "\"." + (nearest.empty() ? "" : " Did you mean " + nearest + "?"),
                  nearest.empty() ? "ovi --help" : "ovi " + nearest + " --help", tool::ExitCode::kUsage);
  }
  return report(error.what(), word == arguments.end() ? "ovi --help" : "ovi " + *word + " --help",
                tool::ExitCode::kUsage);
}

void showOverview(tool::Session& session) {
  const std::vector<tool::Camera>& cameras = session.cameras();
  const bool terminal = tool::standardOutputIsTerminal();
  tool::printData(tool::coloured("ovi " + ovi::Library::version(), tool::Colour::kBold, terminal) +
                  ", cameras for machine vision");
  if (cameras.empty()) {
    tool::printData("\nNo camera was found.\n" + session.explainNoCameras());
    tool::printData("\nNext: ovi doctor, ovi --help");
    return;
  }
  const auto real = std::count_if(cameras.begin(), cameras.end(), [](const tool::Camera& c) { return !c.isVirtual; });
  tool::printData("\n" + std::to_string(cameras.size()) + " camera" + (cameras.size() == 1 ? "" : "s") + ", " +
                  std::to_string(real) + " real and " +
                  std::to_string(cameras.size() - static_cast<std::size_t>(real)) + " virtual.");
  const auto first = std::ranges::find_if(cameras, [&](const tool::Camera& c) { return real == 0 || !c.isVirtual; });
  const std::string option = cameras.size() == 1 ? "" : " --camera " + first->shortName();
  tool::printData("\nNext:\n  ovi list\n  ovi grab" + option + " -o first.png\n  ovi stream" + option +
                  " --frames 100\n  ovi features" + option + "\n  ovi --help");
}

std::string allMessages(const std::vector<std::string>& messages) {
  std::string text;
  for (const std::string& message : messages)
    text += "\n  log: " + message;
  return text;
}

int run(const std::vector<std::string>& arguments) {
  CLI::App app("Cameras for machine vision: find, look, set, stream, transfer.", "ovi");
  tool::CommonOptions common;
  tool::Action action = showOverview;
  app.fallthrough();
  app.allow_windows_style_options(false);  // a word that begins with a slash is a path everywhere
  app.require_subcommand(0, 1);
  app.set_version_flag("--version", ovi::Library::version());
  app.add_flag("--json", common.json, "Print data as JSON");
  app.add_flag("-v,--verbose", common.verbose, "Show the library's log on standard error");
  app.add_option("--producer", common.producer, "Use this producer file only")->type_name("FILE.cti");
  app.add_option("--set", common.assignments,
                 "Set this first, on every camera that is opened; may be given several times")
      ->type_name("FEATURE=VALUE")
      ->allow_extra_args(false);
  app.add_option("--timeout", common.timeout, "Milliseconds for each list of cameras to be updated");
  for (const tool::AddCommand add : kCommands)
    add(app, common, action);

  try {
    std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
    app.parse(std::move(reversed));
  } catch (const CLI::Success& success) {
    // Help and version are data that somebody asked for.
    return app.exit(success);
  } catch (const CLI::ParseError& error) {
    return reportUsage(app, error, arguments);
  }

  tool::setDataStream(tool::takeStandardOutput(common.verbose));
  tool::catchInterrupt();
  tool::Session session(common);
  try {
    action(session);
    return 0;
  } catch (const tool::ToolError& error) {
    return report(error.what(), error.hint(), error.code());
  } catch (const ovi::Error& error) {
    return report(std::string(error.what()) + allMessages(session.takeMessages()), "ovi --verbose ...",
                  tool::ExitCode::kFailure);
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    tool::prepareConsole();
    return run(tool::utf8Arguments(argc, argv));
  } catch (const tool::ToolError& error) {
    return report(error.what(), error.hint(), error.code());
  } catch (const std::exception& error) {
    return report(error.what(), {}, tool::ExitCode::kFailure);
  }
}
