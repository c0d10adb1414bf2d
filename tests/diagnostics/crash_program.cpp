// Installs the crash handler and crashes as its first argument says; reports go to the folder of the second.
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <thread>

#include "diagnostics/mini_dumper.h"

// Where nothing is mapped; not null, which a sanitizer build reports by itself.
volatile std::uintptr_t nowhere = 0x10;

void crashHere() {
  *reinterpret_cast<volatile int*>(nowhere) = 1;
}

// Called through this, so that the compiler leaves it a function of its own.
void (*volatile crash)() = crashHere;

int main(int argc, char** argv) {
  if (argc < 3)
    return 2;
  const std::string mode = argv[1];
  const OVI::MiniDumper first(argv[2], true);
  const OVI::MiniDumper second("no such folder", true);
  if (!first.active() || second.active())
    return 3;
  if (mode == "null")
    crash();
  if (mode == "thread")
    std::thread([] { crash(); }).join();
  if (mode == "abort")
    std::abort();
  if (mode == "throw")
    throw std::runtime_error("nobody catches this");
  return 4;
}
