// A command line that is still being typed: which words are there, and what its last one may become.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace tool {

/// One way to go on: the whole word, and what a person is told about it.
struct Candidate {
  std::string text;
  std::string description = {};
};

/// The words of a line as a shell would see them, quotes taken away; the last one is the unfinished one, perhaps empty.
std::vector<std::string> shellWords(const std::string& line);

/// A line held against the commands and options of the program.
class UnfinishedLine {
 public:
  UnfinishedLine(const CLI::App& app, const std::vector<std::string>& words);

  /// Commands or options that the last word may become; empty when it is a value.
  std::vector<Candidate> words() const;
  /// What kind of value the last word is, "CAMERA" or "FILE"; empty when it is none.
  const std::string& valueKind() const { return valueKind_; }
  /// The unfinished value, and what stands before it in the word, such as "--camera=".
  const std::string& value() const { return value_; }
  const std::string& valuePrefix() const { return valuePrefix_; }
  /// What an earlier word gave to an option, such as "--camera"; empty when it is not there.
  std::string given(const std::string& name) const;
  /// Whether the command is "stream", "file get", ...
  bool isCommand(const std::string& name) const { return path_ == name; }

 private:
  const CLI::Option* option(const std::string& name) const;
  bool takesValue(const CLI::Option& option) const;
  void take(const std::string& word);
  void finish(const std::string& word);
  const CLI::Option* positional(std::size_t index) const;

  std::vector<const CLI::App*> commands_;  // from the program down to the innermost command that was named
  std::string path_;
  std::size_t positionals_ = 0;
  const CLI::Option* pending_ = nullptr;  // waits for its value
  bool onlyPositionals_ = false;
  std::vector<std::pair<const CLI::Option*, std::string>> given_;
  std::string last_;
  std::string valueKind_;
  std::string value_;
  std::string valuePrefix_;
};

}  // namespace tool
