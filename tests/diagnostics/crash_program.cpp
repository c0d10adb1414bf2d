// Installs the crash handler and crashes as its first argument says; reports go to the folder of the second. With a
// third one the user is told.
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "diagnostics/mini_dumper.h"

// Where nothing is mapped; not null, which a sanitizer build reports by itself.
volatile std::uintptr_t nowhere = 0x10;

void crashHere() {
  *reinterpret_cast<volatile int*>(nowhere) = 1;
}

// Called through this, so that the compiler leaves it a function of its own.
void (*volatile crash)() = crashHere;

// What follows the call keeps this function on the stack.
void callNowhere() {
  reinterpret_cast<void (*)()>(nowhere)();
  nowhere = 0;
}

// A report about many frames takes its time.
int crashDeeply(int depth) {
  if (depth == 0)
    crash();
  return depth == 0 ? 0 : 1 + crashDeeply(depth - 1);
}

int main(int argc, char** argv) {
  if (argc < 3)
    return 2;
  const std::string mode = argv[1];
  const OVI::MiniDumper first(argv[2], argc == 3);
  const OVI::MiniDumper second("no such folder", true);
  if (!first.active() || second.active())
    return 3;
  if (mode == "null")
    crash();
  if (mode == "call")
    callNowhere();
  if (mode == "thread")
    std::thread([] { crash(); }).join();
  if (mode == "threads") {
    std::atomic<int> ready{0};
    std::vector<std::thread> threads(8);
    for (std::thread& thread : threads)
      thread = std::thread([&] {
        ++ready;
        while (ready < 8) {
        }
        crashDeeply(60);
      });
    for (std::thread& thread : threads)
      thread.join();
  }
  if (mode == "abort")
    std::abort();
  if (mode == "throw")
    throw std::runtime_error("nobody catches this");
  return 4;
}
