// A command line that is still being typed: which words are there, and what its last one may become.
#include "completion/unfinished_line.h"

#include <ranges>

#include "usage.h"

namespace tool {

std::vector<std::string> shellWords(const std::string& line) {
  std::vector<std::string> words(1);
  char quote = '\0';
  bool inWord = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (quote == '\0' && (c == ' ' || c == '\t' || c == '\n')) {
      if (inWord)
        words.emplace_back();
      inWord = false;
      continue;
    }
    inWord = true;
    if (quote == '\0' && (c == '\'' || c == '"'))
      quote = c;
    else if (c == quote)
      quote = '\0';
    else if (c == '\\' && quote != '\'' && i + 1 < line.size())
      words.back() += line[++i];
    else
      words.back() += c;
  }
  return words;
}

UnfinishedLine::UnfinishedLine(const CLI::App& app, const std::vector<std::string>& words) : commands_{&app} {
  for (std::size_t i = 0; i + 1 < words.size(); ++i)
    take(words[i]);
  finish(words.empty() ? std::string() : words.back());
}

const CLI::Option* UnfinishedLine::option(const std::string& name) const {
  for (const CLI::App* command : commands_ | std::views::reverse)
    if (const CLI::Option* found = command->get_option_no_throw(name); found != nullptr && !found->get_positional())
      return found;
  return nullptr;
}

bool UnfinishedLine::takesValue(const CLI::Option& option) const {
  return option.get_items_expected_max() > 0;
}

void UnfinishedLine::take(const std::string& word) {
  if (pending_ != nullptr) {
    given_.emplace_back(pending_, word);
    pending_ = nullptr;
    return;
  }
  if (!onlyPositionals_ && word == "--") {
    onlyPositionals_ = true;
    return;
  }
  if (!onlyPositionals_ && word.size() > 1 && word[0] == '-') {
    const std::size_t equals = word.find('=');
    const CLI::Option* const found = option(word.substr(0, equals));
    if (found == nullptr || !takesValue(*found))
      return;
    if (equals == std::string::npos)
      pending_ = found;
    else
      given_.emplace_back(found, word.substr(equals + 1));
    return;
  }
  if (positionals_ == 0)
    if (const CLI::App* found = commandBelow(*commands_.back(), word)) {
      commands_.push_back(found);
      path_ += (path_.empty() ? "" : " ") + word;
      return;
    }
  ++positionals_;
}

void UnfinishedLine::finish(const std::string& word) {
  last_ = word;
  value_ = word;
  if (pending_ != nullptr) {
    valueKind_ = pending_->get_type_name();
    return;
  }
  const std::size_t equals = word.find('=');
  if (!onlyPositionals_ && word.starts_with("--") && equals != std::string::npos) {
    if (const CLI::Option* const found = option(word.substr(0, equals)); found != nullptr && takesValue(*found)) {
      valueKind_ = found->get_type_name();
      value_ = word.substr(equals + 1);
      valuePrefix_ = word.substr(0, equals + 1);
    }
    return;
  }
  if (!onlyPositionals_ && !word.empty() && word[0] == '-')
    return;
  if (const CLI::Option* const found = positional(positionals_))
    valueKind_ = found->get_single_name();
}

// The option that the positional word with that index belongs to; the last one may take several.
const CLI::Option* UnfinishedLine::positional(std::size_t index) const {
  for (const CLI::Option* candidate : commands_.back()->get_options()) {
    if (!candidate->get_positional())
      continue;
    if (index == 0 || candidate->get_items_expected_max() > 1)
      return candidate;
    --index;
  }
  return nullptr;
}

std::vector<Candidate> UnfinishedLine::words() const {
  std::vector<Candidate> candidates;
  if (pending_ != nullptr || !valuePrefix_.empty() || onlyPositionals_)
    return candidates;
  if (last_.empty() || last_[0] != '-') {
    if (positionals_ == 0)
      for (const CLI::App* command : commands_.back()->get_subcommands({}))
        if (!command->get_group().empty())
          candidates.push_back({command->get_name(), command->get_description()});
    return candidates;
  }
  for (const CLI::App* command : commands_ | std::views::reverse)
    for (const CLI::Option* one : command->get_options())
      for (const std::string& name : one->get_lnames())
        if (!one->get_group().empty())
          candidates.push_back({"--" + name, one->get_description()});
  return candidates;
}

std::string UnfinishedLine::given(const std::string& name) const {
  for (const auto& [one, value] : given_)
    if (one->check_name(name))
      return value;
  return {};
}

}  // namespace tool
