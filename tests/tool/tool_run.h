// One run of the tool as a program of its own.
#pragma once

#include <filesystem>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace tool_test {

struct Outcome {
  int code = -1;
  std::string out;
  std::string err;
};

/// Runs the tool in the current folder with these arguments.
Outcome ovi(const std::vector<std::string>& arguments);

/// Runs it, and sends it an interrupt as soon as it has written this text to either output.
Outcome oviInterrupted(const std::vector<std::string>& arguments, const std::string& text);

/// Runs another program. Not on Windows.
Outcome shell(const std::vector<std::string>& words);

/// Sets an environment variable for the runs that follow, and puts it back in the end.
class Environment {
 public:
  Environment(const char* name, const std::string& value);
  ~Environment();
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

 private:
  const char* name_;
  std::string before_;
};

/// An empty folder in the current one.
std::filesystem::path freshFolder(const std::string& name);

/// Folders as the environment names them.
std::string searchPath(std::initializer_list<std::string> folders);

std::string readText(const std::filesystem::path& file);
void writeText(const std::filesystem::path& file, std::string_view text);

/// "WORDS of a line" as arguments.
std::vector<std::string> words(const std::string& line);

}  // namespace tool_test
