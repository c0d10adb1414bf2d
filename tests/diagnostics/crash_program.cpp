// Installs the crash handler and crashes as its first argument says; reports go to the folder of the second.
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <thread>

#include "diagnostics/mini_dumper.h"

void crashHere(volatile int* nowhere) {
  *nowhere = 1;
}

int main(int argc, char** argv) {
  if (argc < 3)
    return 2;
  const std::string mode = argv[1];
  const OVI::MiniDumper first(argv[2], true);
  const OVI::MiniDumper second("no such folder", true);
  if (!first.active() || second.active())
    return 3;
  if (mode == "null")
    crashHere(nullptr);
  if (mode == "thread")
    std::thread([] { crashHere(nullptr); }).join();
  if (mode == "abort")
    std::abort();
  if (mode == "throw")
    throw std::runtime_error("nobody catches this");
  return 4;
}
