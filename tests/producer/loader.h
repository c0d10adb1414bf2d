// Loads the producer's file; the only place of these tests that knows the operating system.
#pragma once

#include <string>

namespace producer_test {

// The producer that the test environment names.
std::string producerPath();

class SharedLibrary {
 public:
  explicit SharedLibrary(const std::string& path);
  SharedLibrary(const SharedLibrary&) = delete;
  SharedLibrary& operator=(const SharedLibrary&) = delete;
  ~SharedLibrary();

  bool isLoaded() const { return handle_ != nullptr; }
  void* find(const char* name) const;

 private:
  void* handle_;
};

}  // namespace producer_test
