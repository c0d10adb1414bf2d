// GC functions of ports.
#include "modules/port.h"
#include "gentl/call.h"

using namespace vcam;

namespace {

constexpr const char* kPort = "module with a port";

void checkAccess(const void* buffer, const std::size_t* size) {
  require(size, "the size");
  require(buffer, "the buffer");
  if (*size == 0) {
    fail(GC_ERR_INVALID_PARAMETER, "no bytes to move");
  }
}

// Moves a block; on failure no byte was moved, and the size says so.
template<class Move>
void access(std::size_t* size, Move move) {
  try {
    move();
  } catch (...) {
    *size = 0;
    throw;
  }
}

// Moves block after block up to the first that fails; the count says how many were moved.
template<class Move>
void accessAll(const PORT_REGISTER_STACK_ENTRY* entries, std::size_t* count, Move move) {
  require(count, "the number of entries");
  require(entries, "the entries");
  if (*count == 0) {
    fail(GC_ERR_INVALID_PARAMETER, "no entries");
  }
  const std::size_t wanted = *count;
  for (*count = 0; *count < wanted; ++*count) {
    // The entry may lie at any address, the structure is packed.
    const PORT_REGISTER_STACK_ENTRY entry = entries[*count];
    checkAccess(entry.pBuffer, &entry.Size);
    move(entry.Address, entry.pBuffer, entry.Size);
  }
}

}  // namespace

GC_ERROR GC_CALLTYPE GCReadPort(PORT_HANDLE port, uint64_t address, void* buf, size_t* size) {
  return call(Function::GCReadPort, [&] {
    const Pin<Port> target(port, kPorts, kPort);
    checkAccess(buf, size);
    access(size, [&] {
      std::size_t missing = Hostility::armed() ? Hostility::instance().missingBytes() : 0;
      missing = missing < *size ? missing : *size;
      if (missing < *size) {
        target->read(address, buf, *size - missing);
      }
      *size -= missing;
    });
  });
}

GC_ERROR GC_CALLTYPE GCWritePort(PORT_HANDLE port, uint64_t address, const void* buf, size_t* size) {
  return call(Function::GCWritePort, [&] {
    const Pin<Port> target(port, kPorts, kPort);
    checkAccess(buf, size);
    access(size, [&] { target->write(address, buf, *size); });
  });
}

GC_ERROR GC_CALLTYPE GCReadPortStacked(PORT_HANDLE port, PORT_REGISTER_STACK_ENTRY* entries, size_t* count) {
  return call(Function::GCReadPortStacked, [&] {
    const Pin<Port> target(port, kPorts, kPort);
    accessAll(entries, count,
              [&](uint64_t address, void* buffer, size_t size) { target->read(address, buffer, size); });
  });
}

GC_ERROR GC_CALLTYPE GCWritePortStacked(PORT_HANDLE port, PORT_REGISTER_STACK_ENTRY* entries, size_t* count) {
  return call(Function::GCWritePortStacked, [&] {
    const Pin<Port> target(port, kPorts, kPort);
    accessAll(entries, count,
              [&](uint64_t address, void* buffer, size_t size) { target->write(address, buffer, size); });
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
    answerText(target->description().url + '\0', url, size);
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
