// An environment variable that has another value for a while, for the library or a child process to see.
#pragma once

#include <string>

#include "platform/console.h"

namespace tool {

class ChangedEnvironment {
 public:
  ChangedEnvironment(const char* name, const std::string& value) : name_(name), before_(environmentVariable(name)) {
    setEnvironmentVariable(name, value);
  }
  ~ChangedEnvironment() { setEnvironmentVariable(name_, before_); }
  ChangedEnvironment(const ChangedEnvironment&) = delete;
  ChangedEnvironment& operator=(const ChangedEnvironment&) = delete;

 private:
  const char* name_;
  std::string before_;
};

}  // namespace tool
