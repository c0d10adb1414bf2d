// ovi man: the manual page, made of what the commands say about themselves. Run by the build, which installs it.
#include <sstream>

#include "commands.h"
#include "terminal.h"
#include "tool_error.h"

namespace tool {

namespace {

// Text of a manual page, in which the formatter sees nothing of its own.
std::string roff(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (c == '\\')
      result += "\\e";
    else if (c == '-')
      result += "\\-";
    else
      result += c;
  }
  return result;
}

// A line of text must not look like a request to the formatter.
std::string roffLine(const std::string& text) {
  const bool request = !text.empty() && (text[0] == '.' || text[0] == '\'');
  return (request ? "\\&" : "") + roff(text) + "\n";
}

bool isDocumented(const CLI::Option& option) {
  return !option.get_group().empty();
}

std::string synopsis(const CLI::App& command, const std::string& name) {
  std::string text = ".B " + roff(name);
  bool hasOptions = false;
  for (const CLI::Option* option : command.get_options())
    hasOptions = hasOptions || (isDocumented(*option) && !option->get_positional() &&
                                option->get_lnames() != std::vector<std::string>{"help"});
  if (hasOptions)
    text += "\n.RI [ options ]";
  for (const CLI::Option* option : command.get_options()) {
    if (!option->get_positional())
      continue;
    const std::string word = roff(option->get_single_name()) + (option->get_items_expected_max() > 1 ? " ..." : "");
    text += option->get_required() ? "\n.I " + word : "\n.RI [ \"" + word + "\" ]";
  }
  return text + "\n";
}

void writeOptions(std::ostream& page, const CLI::App& command) {
  for (const CLI::Option* option : command.get_options()) {
    if (!isDocumented(*option) || option->get_name(false, true).find("--help") != std::string::npos)
      continue;
    std::string label;
    if (option->get_positional()) {
      label = "\\fI" + roff(option->get_single_name()) + "\\fR";
    } else {
      for (const std::string& name : option->get_snames())
        label += (label.empty() ? "" : ", ") + ("\\fB\\-" + roff(name) + "\\fR");
      for (const std::string& name : option->get_lnames())
        label += (label.empty() ? "" : ", ") + ("\\fB\\-\\-" + roff(name) + "\\fR");
      if (option->get_items_expected_max() > 0)
        label += " \\fI" + roff(option->get_type_name()) + "\\fR";
    }
    page << ".TP\n" << label << "\n" << roffLine(option->get_description());
  }
}

// The text under a command's help: sentences, and examples that are indented.
void writeFooter(std::ostream& page, const std::string& footer) {
  std::istringstream lines(footer);
  page << ".PP\n";  // It belongs to the command, not to its last option.
  bool inExamples = false;
  for (std::string line; std::getline(lines, line);) {
    const bool example = line.starts_with("  ");
    if (example != inExamples)
      page << (example ? ".PP\n.nf\n.RS\n" : ".RE\n.fi\n");
    else if (line.empty())
      page << ".PP\n";
    inExamples = example;
    if (!line.empty())
      page << roffLine(example ? line.substr(2) : line);
  }
  if (inExamples)
    page << ".RE\n.fi\n";
}

void writeCommand(std::ostream& page, const CLI::App& command, const std::string& parents) {
  const std::string name = parents + " " + command.get_name();
  const auto shown = [](const CLI::App* candidate) { return !candidate->get_group().empty(); };
  const std::vector<const CLI::App*> below = command.get_subcommands(shown);
  page << ".SS " << roff(name.substr(4)) << "\n";
  if (below.empty())
    page << synopsis(command, name) << ".PP\n";
  page << roffLine(command.get_description() + ".");
  writeOptions(page, command);
  writeFooter(page, command.get_footer());
  for (const CLI::App* one : below)
    writeCommand(page, *one, name);
}

constexpr const char* kDescription =
    "finds the cameras of machine vision on this machine through the GenTL producers (.cti files) of their makers, "
    "shows\n"
    "and sets their features, takes images, moves files, and tells why a camera or an image is missing.\n"
    ".PP\n"
    "A camera is named by its number in the list, its serial number, its user\\-defined name, its model or its ID. "
    "When\n"
    "there is only one, it need not be named. Virtual cameras are offered when they are installed with the tool; they "
    "are\n"
    "marked as such, and step back where there is a real camera.\n"
    ".PP\n"
    "Standard output carries data only: aligned on a terminal, separated by tabs elsewhere, JSON with\n"
    ".BR \\-\\-json .\n"
    "Everything else goes to standard error. The options below may stand anywhere in the line.\n";

constexpr const char* kEnd =
    ".SH EXIT STATUS\n"
    ".TP\n0\nSuccess.\n"
    ".TP\n1\nThe camera, the producer or the library failed, or what was asked for is not so.\n"
    ".TP\n2\nThe command line was wrong.\n"
    ".TP\n130\nInterrupted. The first Ctrl\\-C stops the camera and closes everything; a second one ends the program "
    "at once.\n"
    ".SH ENVIRONMENT\n"
    ".TP\n.B GENICAM_GENTL64_PATH\nFolders that are searched for producers. The makers' installers enter theirs.\n"
    ".TP\n.B NO_COLOR\nIf it is set and not empty, nothing is coloured.\n"
    ".TP\n.BR OVI_VIRTUAL_CONFIG \" and others\"\nSettings of the virtual cameras, see the documentation of the "
    "virtual camera.\n";

void printPage(const CLI::App& app) {
  std::ostringstream page;
  page << ".TH OVI 1 \"\" \"ovi " << ovi::Library::version() << "\" \"User commands\"\n"
       << ".SH NAME\novi \\- cameras for machine vision: find, look, set, stream, transfer\n"
       << ".SH SYNOPSIS\n.B ovi\n.RI [ options ]\n.RI [ command\n.RI [ arguments ]]\n"
       << ".SH DESCRIPTION\n.B ovi\n"
       << kDescription << ".SH OPTIONS\n";
  writeOptions(page, app);
  page << ".SH COMMANDS\nWithout a command it says what is there and what to type next.\n";
  for (const CLI::App* command :
       app.get_subcommands([](const CLI::App* candidate) { return !candidate->get_group().empty(); }))
    writeCommand(page, *command, "ovi");
  page << kEnd;
  std::string text = page.str();
  text.pop_back();
  printData(text);
}

}  // namespace

void addMan(CLI::App& app, CommonOptions& common, Action& action) {
  CLI::App* command = app.add_subcommand("man", "Print the manual page");
  command->group("");  // for the build, not for people
  command->callback([&app, &action, &common] {
    common.withoutLibrary = true;
    action = [&app](Session&) { printPage(app); };
  });
}

}  // namespace tool
