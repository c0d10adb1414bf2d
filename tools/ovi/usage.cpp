// The grammar of the command line beyond what its parser knows: options in any place, and errors that help.
#include "usage.h"

#include <algorithm>

#include "text.h"

namespace tool {

namespace {

bool isShown(const CLI::App* command) {
  return !command->get_group().empty();
}

bool takesValue(const CLI::Option* option) {
  return option->get_items_expected_max() > 0;
}

bool isShort(const std::string& argument) {
  return argument[0] == '-' && argument[1] != '-';
}

// The option with the name of an argument such as "--camera=1" or "-c1".
const CLI::Option* optionOf(const CLI::App& command, const std::string& argument) {
  return command.get_option_no_throw(argument.substr(0, isShort(argument) ? 2 : argument.find('=')));
}

bool carriesValue(const std::string& argument) {
  return isShort(argument) ? argument.size() > 2 : argument.find('=') != std::string::npos;
}

// The same in any of the commands below; the commands agree about what an option means.
const CLI::Option* optionBelow(const CLI::App& command, const std::string& argument) {
  for (const CLI::App* below : command.get_subcommands(isShown)) {
    if (const CLI::Option* found = optionOf(*below, argument))
      return found;
    if (const CLI::Option* found = optionBelow(*below, argument))
      return found;
  }
  return nullptr;
}

// The innermost command that was named, as it is written.
const CLI::App& namedCommand(const CLI::App& app, std::string& path) {
  const CLI::App* command = &app;
  path = "ovi";
  while (!command->get_subcommands().empty()) {
    command = command->get_subcommands().front();
    path += " " + command->get_name();
  }
  return *command;
}

std::string meant(const std::string& nearest) {
  return nearest.empty() ? std::string() : " Did you mean " + nearest + "?";
}

ToolError wrong(const std::string& message, const std::string& hint) {
  return ToolError(message, hint, ExitCode::kUsage);
}

ToolError unknownCommand(const CLI::App& parent, const std::string& path, const std::string& word) {
  std::vector<std::string> names;
  for (const CLI::App* command : parent.get_subcommands(isShown))
    names.push_back(command->get_name());
  const std::string nearest = nearestMatch(word, names);
  return wrong("there is no command \"" + path.substr(std::min<std::size_t>(4, path.size())) +
                   (path.size() > 4 ? " " : "") + word + "\"." + meant(nearest),
               path + (nearest.empty() ? "" : " " + nearest) + " --help");
}

ToolError unknownOption(const CLI::App& app, const CLI::App& command, const std::string& path,
                        const std::string& argument) {
  std::vector<std::string> names;
  for (const CLI::App* one = &command; one != nullptr; one = one == &app ? nullptr : one->get_parent())
    for (const CLI::Option* option : one->get_options())
      for (const std::string& name : option->get_lnames())
        names.push_back("--" + name);
  const std::string name = argument.substr(0, argument.find('='));
  const std::string where = &command == &app ? "there is no option " : path + " has no option ";
  return wrong(where + name + "." + meant(name.size() > 2 ? nearestMatch(name, names) : std::string()),
               path + " --help");
}

ToolError unexpected(const CLI::App& app, const CLI::App& command, const std::string& path) {
  for (const std::string& argument : app.remaining(true)) {
    if (argument.size() > 1 && argument[0] == '-' && argument != "--")
      return unknownOption(app, command, path, argument);
    if (argument == "--")
      continue;
    if (!command.get_subcommands(isShown).empty())
      return unknownCommand(command, path, argument);
    return wrong(path + " takes no \"" + argument + "\"", path + " --help");
  }
  return wrong("the command line is not understood", path + " --help");
}

// The parser's words about a value: all that it converts are numbers ("Could not convert: --frames = many"), and none
// may be missing ("--frames: 1 required N missing").
std::string plainWords(const std::string& text) {
  constexpr std::string_view kConvert = "Could not convert: ";
  constexpr std::string_view kRequired = ": 1 required ";
  constexpr std::string_view kMissing = " missing";
  const std::size_t equals = text.find(" = ");
  if (text.starts_with(kConvert) && equals != std::string::npos)
    return text.substr(kConvert.size(), equals - kConvert.size()) + " takes a number, and \"" +
           text.substr(equals + 3) + "\" is none that fits";
  const std::size_t required = text.find(kRequired);
  if (required != std::string::npos && text.size() > required + kRequired.size() + kMissing.size())
    return text.substr(0, required) + " needs a value: " +
           text.substr(required + kRequired.size(), text.size() - required - kRequired.size() - kMissing.size());
  return text;
}

}  // namespace

const CLI::App* commandBelow(const CLI::App& parent, const std::string& name) {
  const std::vector<const CLI::App*> found =
      parent.get_subcommands([&](const CLI::App* command) { return command->get_name() == name; });
  return found.empty() ? nullptr : found.front();
}

std::vector<std::string> orderedArguments(const CLI::App& app, std::vector<std::string> arguments) {
  if (!arguments.empty() && arguments.front() == "help") {
    arguments.erase(arguments.begin());
    if (arguments.empty() || commandBelow(app, arguments.front()) != nullptr)
      arguments.emplace_back("--help");
  }
  std::vector<std::string> result;
  std::vector<std::string> moved;
  const CLI::App* command = &app;
  std::size_t i = 0;
  for (; i < arguments.size(); ++i) {
    if (const CLI::App* const next = commandBelow(*command, arguments[i])) {
      command = next;
      result.push_back(arguments[i]);
      continue;
    }
    // Behind the innermost command the parser itself finds them.
    if (arguments[i].size() < 2 || arguments[i][0] != '-' || command->get_subcommands(isShown).empty())
      break;
    const CLI::Option* const ours = optionOf(*command, arguments[i]);
    const CLI::Option* const own = ours != nullptr ? ours : optionOf(app, arguments[i]);
    const CLI::Option* const option = own != nullptr ? own : optionBelow(*command, arguments[i]);
    std::vector<std::string>& target = own != nullptr || option == nullptr ? result : moved;
    target.push_back(arguments[i]);
    if (option != nullptr && takesValue(option) && !carriesValue(arguments[i]) && i + 1 < arguments.size())
      target.push_back(arguments[++i]);
  }
  result.insert(result.end(), moved.begin(), moved.end());
  result.insert(result.end(), arguments.begin() + static_cast<std::ptrdiff_t>(i), arguments.end());
  return result;
}

ToolError usageError(const CLI::App& app, const CLI::ParseError& error) {
  std::string path;
  const CLI::App& command = namedCommand(app, path);
  const std::vector<const CLI::App*> below = command.get_subcommands(isShown);
  const std::vector<std::string> remaining = app.remaining(true);
  if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr ||
      (!below.empty() && !remaining.empty() && dynamic_cast<const CLI::RequiredError*>(&error) != nullptr))
    return unexpected(app, command, path);
  if (!below.empty() && &command != &app) {
    std::vector<std::string> names;
    for (const CLI::App* one : below)
      names.push_back(one->get_name());
    return wrong(path + " needs one of " + join(names, ", "), path + " " + names.front() + " --help");
  }
  return wrong((&command == &app ? "" : path.substr(4) + ": ") + plainWords(error.what()), path + " --help");
}

}  // namespace tool
