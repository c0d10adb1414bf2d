// GC functions of ports.
#include "modules/port.h"

#include <algorithm>
#include <utility>

#include "gentl/call.h"

using namespace vcam;

namespace {

constexpr const char* kPort = "module with a port";

// Takes the number that a call was given. What is left stands for a call that moved nothing, so that no failure, of the
// handle neither, can pass for one that moved all.
std::size_t take(std::size_t* number) {
  return isBad(number) ? 0 : std::exchange(*number, 0);
}

void checkAccess(const void* buffer, std::size_t size) {
  require(buffer, "the buffer");
  if (size == 0) {
    fail(GC_ERR_INVALID_PARAMETER, "no bytes to move");
  }
}

// Moves block after block up to the first that fails; the count says how many were moved.
template<class Move>
void accessAll(PORT_HANDLE port, const PORT_REGISTER_STACK_ENTRY* entries, std::size_t* count, Move move) {
  const std::size_t wanted = take(count);
  const Pin<Port> target(port, kPorts, kPort);
  require(count, "the number of entries");
  require(entries, "the entries");
  if (wanted == 0) {
    fail(GC_ERR_INVALID_PARAMETER, "no entries");
  }
  for (; *count < wanted; ++*count) {
    // The entry may lie at any address, the structure is packed.
    const PORT_REGISTER_STACK_ENTRY entry = entries[*count];
    checkAccess(entry.pBuffer, entry.Size);
    move(*target, entry);
  }
}

}  // namespace

GC_ERROR GC_CALLTYPE GCReadPort(PORT_HANDLE port, uint64_t address, void* buf, size_t* size) {
  return call(Function::GCReadPort, [&] {
    const std::size_t wanted = take(size);
    const Pin<Port> target(port, kPorts, kPort);
    require(size, "the size");
    checkAccess(buf, wanted);
    const std::size_t missing =
        Hostility::armed() ? std::min(Hostility::instance().missingBytes(), wanted) : std::size_t{0};
    if (missing < wanted) {
      target->read(address, buf, wanted - missing);
    }
    *size = wanted - missing;
  });
}

GC_ERROR GC_CALLTYPE GCWritePort(PORT_HANDLE port, uint64_t address, const void* buf, size_t* size) {
  return call(Function::GCWritePort, [&] {
    const std::size_t wanted = take(size);
    const Pin<Port> target(port, kPorts, kPort);
    require(size, "the size");
    checkAccess(buf, wanted);
    target->write(address, buf, wanted, *size);
  });
}

GC_ERROR GC_CALLTYPE GCReadPortStacked(PORT_HANDLE port, PORT_REGISTER_STACK_ENTRY* entries, size_t* count) {
  return call(Function::GCReadPortStacked, [&] {
    accessAll(port, entries, count, [](Port& target, const PORT_REGISTER_STACK_ENTRY& entry) {
      target.read(entry.Address, entry.pBuffer, entry.Size);
    });
  });
}

GC_ERROR GC_CALLTYPE GCWritePortStacked(PORT_HANDLE port, PORT_REGISTER_STACK_ENTRY* entries, size_t* count) {
  return call(Function::GCWritePortStacked, [&] {
    accessAll(port, entries, count, [](Port& target, const PORT_REGISTER_STACK_ENTRY& entry) {
      std::size_t moved = 0;
      target.write(entry.Address, entry.pBuffer, entry.Size, moved);
    });
  });
}

GC_ERROR GC_CALLTYPE GCGetPortInfo(PORT_HANDLE port, PORT_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  return call(Function::GCGetPortInfo, [&] {
    const Pin<Port> target(port, kPorts, kPort);
    answer(target->portInfo(cmd), cmd, type, buf, size);
  });
}

GC_ERROR GC_CALLTYPE GCGetPortURL(PORT_HANDLE port, char* url, size_t* size) {
  return call(Function::GCGetPortURL, [&] {
    const Pin<Port> target(port, kPorts, kPort);
    // A list of one text: its own NUL and the NUL of the list.
    answerText(target->legacyUrl() + '\0', url, size);
  });
}

GC_ERROR GC_CALLTYPE GCGetNumPortURLs(PORT_HANDLE port, uint32_t* count) {
  return call(Function::GCGetNumPortURLs, [&] {
    const Pin<Port> target(port, kPorts, kPort);
    store(count, uint32_t{1}, "the count");
  });
}

GC_ERROR GC_CALLTYPE GCGetPortURLInfo(PORT_HANDLE port, uint32_t index, URL_INFO_CMD cmd, INFO_DATATYPE* type,
                                      void* buf, size_t* size) {
  return call(Function::GCGetPortURLInfo, [&] {
    const Pin<Port> target(port, kPorts, kPort);
    answer(target->urlInfo(index, cmd), cmd, type, buf, size);
  });
}
