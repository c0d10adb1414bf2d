// The export through which tests give their orders.
#include "modules/hostility.h"

#include <string>

#include "modules/library.h"

namespace {

using vcam::Hostility;
using vcam::Library;

std::int32_t done(bool understood) {
  return understood ? 0 : -1;
}

std::string deviceFrom(const char* device) {
  return device == nullptr ? std::string() : std::string(device);
}

// Orders cannot fail but by a lack of memory, which must not reach the C side either.
template<class Work>
std::int32_t order(Work work) noexcept {
  try {
    return work();
  } catch (...) {
    return -1;
  }
}

constexpr OviVirtualHostility kOrders = {
    1,
    [](const char* function, std::int32_t code, std::uint64_t from, std::uint64_t calls) {
      return order([&] { return done(Hostility::instance().fail(function, code, from, calls)); });
    },
    [](const char* function, std::uint64_t from, std::uint64_t calls) {
      return order([&] { return done(Hostility::instance().block(function, from, calls)); });
    },
    [](const char* function) { return order([&] { return done(Hostility::instance().release(function)); }); },
    [] { return Hostility::instance().blocked(); },
    [](const char* function, std::int32_t command, OviVirtualText how, std::uint64_t calls) {
      return order([&] { return done(Hostility::instance().spoilText(function, command, how, calls)); });
    },
    [](const char* function, std::int32_t command, std::int32_t type, std::uint64_t calls) {
      return order([&] { return done(Hostility::instance().spoilType(function, command, type, calls)); });
    },
    [](std::uint32_t missing, std::uint64_t from, std::uint64_t calls) {
      return order([&] {
        Hostility::instance().shortReads(missing, from, calls);
        return 0;
      });
    },
    [](const char* device, std::uint32_t how, std::uint64_t from, std::uint64_t frames) {
      return order([&] { return done(Hostility::instance().spoilFrames(device, how, from, frames)); });
    },
    [](const char* device, std::int32_t paused) {
      return order([&] { return done(Hostility::instance().pauseFrames(device, paused != 0)); });
    },
    [](const char* device) {
      return order([&] { return done(Library::instance().setPresent(deviceFrom(device), false)); });
    },
    [](const char* device) {
      return order([&] { return done(Library::instance().setPresent(deviceFrom(device), true)); });
    },
    [](const char* device, std::uint32_t polls) {
      return order([&] { return done(Library::instance().setBusyPolls(deviceFrom(device), polls)); });
    },
    [](std::uint64_t milliseconds) {
      return order([&] {
        Hostility::instance().slowUpdates(milliseconds);
        return 0;
      });
    },
    [] { Hostility::instance().startCounting(); },
    [](const char* function) { return Hostility::instance().calls(function); },
    [] {
      order([] {
        Hostility::instance().reset();
        Library::instance().withdrawOrders();
        return 0;
      });
    },
};

}  // namespace

const OviVirtualHostility* oviVirtualHostility(void) {
  return &kOrders;
}
