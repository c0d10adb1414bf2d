// One run of the tool as a program of its own.
#include "tool_run.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

namespace tool_test {

namespace {

constexpr const char* kOut = "run.out";
constexpr const char* kErr = "run.err";

std::string quoted(const std::string& word) {
  std::string text = "'";
  for (const char c : word)
    text += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return text + "'";
}

std::string commandLine(const std::vector<std::string>& arguments) {
  std::string line = quoted(OVI_PROGRAM);
  for (const std::string& argument : arguments)
    line += " " + quoted(argument);
  return line + " >" + kOut + " 2>" + kErr;
}

Outcome finish(const std::string& command) {
  Outcome run;
  const int status = std::system(command.c_str());
  run.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  run.out = readText(kOut);
  run.err = readText(kErr);
  return run;
}

}  // namespace

Outcome ovi(const std::vector<std::string>& arguments) {
  return finish(commandLine(arguments));
}

Outcome oviInterrupted(const std::vector<std::string>& arguments) {
  return finish("rm -f " + std::string(kOut) + "; " + commandLine(arguments) +
                " & child=$!; while kill -0 $child && [ ! -s " + kOut +
                " ]; do sleep 0.02; done; kill -INT $child; wait $child");
}

Environment::Environment(const char* name, const std::string& value) : name_(name) {
  const char* const before = std::getenv(name);
  before_ = before == nullptr ? "" : before;
  setenv(name, value.c_str(), 1);
}

Environment::~Environment() {
  setenv(name_, before_.c_str(), 1);
}

std::filesystem::path freshFolder(const std::string& name) {
  std::filesystem::remove_all(name);
  std::filesystem::create_directories(name);
  return name;
}

std::string readText(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void writeText(const std::filesystem::path& file, std::string_view text) {
  std::ofstream(file, std::ios::binary) << text;
}

std::vector<std::string> words(const std::string& line) {
  std::istringstream stream(line);
  return {std::istream_iterator<std::string>(stream), {}};
}

}  // namespace tool_test
