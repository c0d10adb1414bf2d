// The groups of rules; each runs in a process of its own.
#pragma once

#include "check/checker.h"

namespace tool::check {

struct Group {
  const char* name;
  const char* title;
  void (*run)(Checker& check);
};

void checkExports(Checker& check);
void checkLifeCycle(Checker& check);
void checkSystem(Checker& check);
void checkInterfaces(Checker& check);
void checkDevice(Checker& check);
void checkPorts(Checker& check);
void checkEvents(Checker& check);
void checkBuffers(Checker& check);
void checkImages(Checker& check);
void checkStops(Checker& check);
void checkThreads(Checker& check);
void checkFaults(Checker& check);

}  // namespace tool::check
