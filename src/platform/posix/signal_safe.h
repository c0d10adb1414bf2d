// Writing a report from a signal handler: nothing here allocates, locks or formats through the C library.
#pragma once

#include <cstddef>
#include <cstdint>

namespace OVI::platform {

/** Appends to a file descriptor; with a negative one, and after the first failure, everything is dropped. */
class SignalSafeWriter {
 public:
  explicit SignalSafeWriter(int file) noexcept : file_(file) {}

  SignalSafeWriter& text(const char* text) noexcept;
  SignalSafeWriter& text(const char* text, std::uint64_t length) noexcept;
  SignalSafeWriter& decimal(std::uint64_t value) noexcept;
  SignalSafeWriter& hexadecimal(std::uint64_t value) noexcept;
  /** "2026-01-31 13:05:09 UTC". */
  SignalSafeWriter& utcTime(std::int64_t secondsSinceEpoch) noexcept;
  /** The system's number of the first failure; 0 when everything was written. */
  int error() const noexcept { return error_; }

 private:
  int file_;
  int error_ = 0;
};

/** Copies memory of this process that may not be there. @return whether all of it was */
bool readMemory(std::uintptr_t address, void* to, std::size_t size) noexcept;

/** The function that holds the code address and its module, as "name+0x12 (module+0x3456)": its symbol is looked up in
 * the module's file, so that functions that are not exported have their names too. */
void writeSymbol(SignalSafeWriter& report, std::uintptr_t address) noexcept;

/** One line for each loaded module: its address range and its path. */
void writeModules(SignalSafeWriter& report) noexcept;

}  // namespace OVI::platform
