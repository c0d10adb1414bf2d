// The command-line program: reads the command line, runs one command, and says what went wrong and what to try next.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>

#include "commands.h"
#include "platform/console.h"
#include "platform/crash_watch.h"
#include "refusal.h"
#include "session.h"
#include "terminal.h"
#include "tool_error.h"
#include "usage.h"

namespace {

constexpr std::array kCommands = {
    tool::addList,  tool::addInfo,     tool::addFeatures, tool::addGet,    tool::addSet,  tool::addWatch,
    tool::addGrab,  tool::addStream,   tool::addScan,     tool::addBench,  tool::addSave, tool::addLoad,
    tool::addDiff,  tool::addFile,     tool::addMem,      tool::addDoctor, tool::addXml,  tool::addCheck,
    tool::addProbe, tool::addDescribe, tool::addComplete, tool::addMan};

constexpr const char* kWhereCommandsAre =
    "Examples:\n  ovi list\n  ovi grab -o first.png\n  ovi stream --frames 100\n\n"
    "ovi COMMAND --help shows the options of a command, with examples. Options may stand anywhere.";
constexpr const char* kWhatCommandsShare =
    "Also, as with every command: --json, --producer FILE.cti, --set FEATURE=VALUE, --timeout MS, --verbose;\n"
    "ovi --help explains them.";

// Producers run inside this process; what they do to it would else end it without a word.
void tellCrash() {
  std::fputs(
      "\novi: this program crashed, most likely in a producer that it loaded\n"
      "try: ovi doctor, which tries each producer in a process of its own\n",
      stderr);
}

int report(const std::string& message, const std::string& hint, tool::ExitCode code) {
  if (code != tool::ExitCode::kReaderGone)
    tool::printNote(tool::Styled("ovi: ", tool::Colour::kRed) + message);
  if (!hint.empty())
    tool::printNote(tool::Styled("try: ", tool::Colour::kDim) + hint);
  return static_cast<int>(code);
}

std::string allMessages(const std::vector<std::string>& messages) {
  std::string text;
  for (const std::string& message : messages)
    text += "\n  log: " + message;
  return text;
}

void requireAssignments(const std::vector<std::string>& words) {
  for (const std::string& word : words)
    if (word.find('=') == std::string::npos || word.front() == '=')
      throw tool::ToolError("--set takes FEATURE=VALUE, and \"" + word + "\" is none", "ovi --help",
                            tool::ExitCode::kUsage);
}

int run(const std::vector<std::string>& arguments) {
  CLI::App app("Cameras for machine vision: find, look, set, stream, transfer.", "ovi");
  tool::CommonOptions common;
  tool::Action action = tool::showOverview;
  app.fallthrough();
  app.allow_windows_style_options(false);  // a word that begins with a slash is a path everywhere
  app.require_subcommand(0, 1);
  app.set_version_flag("--version", ovi::Library::version());
  app.add_flag("--json", common.json, "Print data as JSON");
  app.add_flag("-v,--verbose", common.verbose, "Show the library's log on standard error");
  app.add_option("--producer", common.producer, "Use this producer only, or those of this folder")
      ->type_name("FILE.cti");
  app.add_option("--set", common.assignments,
                 "Set this first, on every camera that is opened; may be given several times")
      ->type_name("FEATURE=VALUE")
      ->allow_extra_args(false);
  tool::addNumberOption(app, "--timeout", common.timeout, "MS",
                        "Milliseconds for each list of cameras to be updated; 1000 when not given");
  for (const tool::AddCommand add : kCommands)
    add(app, common, action);

  try {
    std::vector<std::string> ordered = tool::orderedArguments(app, arguments);
    std::ranges::reverse(ordered);  // As the parser wants them.
    app.parse(std::move(ordered));
  } catch (const CLI::Success& success) {
    // Help and version are data that somebody asked for.
    const int code = app.exit(success);
    if (dynamic_cast<const CLI::CallForHelp*>(&success) != nullptr)
      tool::printData(app.get_subcommands().empty() ? kWhereCommandsAre : kWhatCommandsShare);
    return code;
  } catch (const CLI::ParseError& error) {
    throw tool::usageError(app, error);
  }

  requireAssignments(common.assignments);
  tool::watchCrashes(tellCrash);
  tool::setDataStream(tool::takeStandardOutput(common.verbose));
  tool::catchInterrupt();
  tool::Session session(common);
  try {
    action(session);
    return 0;
  } catch (const tool::Refused& refused) {
    return report(refused.explained(session), refused.hint(), refused.code());
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
