// A consumer that shares nothing with the producer: types and numbers are written out here, from the standard.
#pragma once

#include <gtest/gtest.h>
#include <ovi_virtual/hostility.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "loader.h"

namespace producer_test {

using Error = std::int32_t;
using Handle = void*;

constexpr Error kSuccess = 0;
constexpr Error kError = -1001;
constexpr Error kNotInitialized = -1002;
constexpr Error kNotImplemented = -1003;
constexpr Error kResourceInUse = -1004;
constexpr Error kAccessDenied = -1005;
constexpr Error kInvalidHandle = -1006;
constexpr Error kInvalidId = -1007;
constexpr Error kNoData = -1008;
constexpr Error kInvalidParameter = -1009;
constexpr Error kIo = -1010;
constexpr Error kTimeout = -1011;
constexpr Error kAbort = -1012;
constexpr Error kInvalidBuffer = -1013;
constexpr Error kNotAvailable = -1014;
constexpr Error kInvalidAddress = -1015;
constexpr Error kBufferTooSmall = -1016;
constexpr Error kInvalidIndex = -1017;
constexpr Error kParsingChunkData = -1018;
constexpr Error kInvalidValue = -1019;
constexpr Error kBusy = -1022;

// Data types of infos.
constexpr std::int32_t kString = 1;
constexpr std::int32_t kStringList = 2;
constexpr std::int32_t kInt32 = 5;
constexpr std::int32_t kUint32 = 6;
constexpr std::int32_t kUint64 = 8;
constexpr std::int32_t kPointer = 10;
constexpr std::int32_t kBool8 = 11;
constexpr std::int32_t kSize = 12;
constexpr std::int32_t kBytes = 13;

constexpr std::uint64_t kInfinite = 0xFFFFFFFFFFFFFFFF;

// Event types.
constexpr std::int32_t kErrorEvent = 0;
constexpr std::int32_t kNewBuffer = 1;
constexpr std::int32_t kFeatureInvalidate = 2;
constexpr std::int32_t kFeatureChange = 3;
constexpr std::int32_t kRemoteDevice = 4;
constexpr std::int32_t kModuleEvent = 5;

#pragma pack(push, 1)
struct NewBufferData {
  Handle buffer;
  void* user;
};
struct StackEntry {
  std::uint64_t address;
  void* buffer;
  std::size_t size;
};
struct ChunkEntry {
  std::uint64_t id;
  std::ptrdiff_t offset;
  std::size_t length;
};
#pragma pack(pop)
static_assert(sizeof(NewBufferData) == 16 && sizeof(StackEntry) == 24 && sizeof(ChunkEntry) == 24);

// Every function of the interface. Missing ones stay null.
struct Functions {
  template<class... Arguments>
  using F = Error (*)(Arguments...);
  using Type = std::int32_t*;
  using Size = std::size_t*;

  F<> GCInitLib;
  F<> GCCloseLib;
  F<std::int32_t, Type, void*, Size> GCGetInfo;
  F<Error*, char*, Size> GCGetLastError;
  F<Handle, std::uint64_t, void*, Size> GCReadPort;
  F<Handle, std::uint64_t, const void*, Size> GCWritePort;
  F<Handle, char*, Size> GCGetPortURL;
  F<Handle, std::int32_t, Type, void*, Size> GCGetPortInfo;
  F<Handle, std::uint32_t*> GCGetNumPortURLs;
  F<Handle, std::uint32_t, std::int32_t, Type, void*, Size> GCGetPortURLInfo;
  F<Handle, StackEntry*, Size> GCReadPortStacked;
  F<Handle, StackEntry*, Size> GCWritePortStacked;
  F<Handle, std::int32_t, Handle*> GCRegisterEvent;
  F<Handle, std::int32_t> GCUnregisterEvent;
  F<Handle, void*, Size, std::uint64_t> EventGetData;
  F<Handle, const void*, std::size_t, std::int32_t, Type, void*, Size> EventGetDataInfo;
  F<Handle, std::int32_t, Type, void*, Size> EventGetInfo;
  F<Handle> EventFlush;
  F<Handle> EventKill;
  F<Handle*> TLOpen;
  F<Handle> TLClose;
  F<Handle, std::int32_t, Type, void*, Size> TLGetInfo;
  F<Handle, std::uint32_t*> TLGetNumInterfaces;
  F<Handle, std::uint32_t, char*, Size> TLGetInterfaceID;
  F<Handle, const char*, std::int32_t, Type, void*, Size> TLGetInterfaceInfo;
  F<Handle, const char*, Handle*> TLOpenInterface;
  F<Handle, std::uint8_t*, std::uint64_t> TLUpdateInterfaceList;
  F<Handle> IFClose;
  F<Handle, std::int32_t, Type, void*, Size> IFGetInfo;
  F<Handle, std::uint32_t*> IFGetNumDevices;
  F<Handle, std::uint32_t, char*, Size> IFGetDeviceID;
  F<Handle, std::uint8_t*, std::uint64_t> IFUpdateDeviceList;
  F<Handle, const char*, std::int32_t, Type, void*, Size> IFGetDeviceInfo;
  F<Handle, const char*, std::int32_t, Handle*> IFOpenDevice;
  F<Handle, Handle*> IFGetParentTL;
  F<Handle> DevClose;
  F<Handle, std::int32_t, Type, void*, Size> DevGetInfo;
  F<Handle, Handle*> DevGetPort;
  F<Handle, std::uint32_t*> DevGetNumDataStreams;
  F<Handle, std::uint32_t, char*, Size> DevGetDataStreamID;
  F<Handle, const char*, Handle*> DevOpenDataStream;
  F<Handle, Handle*> DevGetParentIF;
  F<Handle, void*, std::size_t, void*, Handle*> DSAnnounceBuffer;
  F<Handle, std::size_t, void*, Handle*> DSAllocAndAnnounceBuffer;
  F<Handle, Handle, void**, void**> DSRevokeBuffer;
  F<Handle, Handle> DSQueueBuffer;
  F<Handle, std::int32_t> DSFlushQueue;
  F<Handle, std::int32_t, std::uint64_t> DSStartAcquisition;
  F<Handle, std::int32_t> DSStopAcquisition;
  F<Handle, std::int32_t, Type, void*, Size> DSGetInfo;
  F<Handle, std::uint32_t, Handle*> DSGetBufferID;
  F<Handle, Handle, std::int32_t, Type, void*, Size> DSGetBufferInfo;
  F<Handle> DSClose;
  F<Handle, Handle, ChunkEntry*, Size> DSGetBufferChunkData;
  F<Handle, Handle*> DSGetParentDev;
  F<Handle, Handle, std::uint32_t*> DSGetNumBufferParts;
  F<Handle, Handle, std::uint32_t, std::int32_t, Type, void*, Size> DSGetBufferPartInfo;

  std::vector<std::string> missing;
  POviVirtualHostility oviVirtualHostility = nullptr;
};

// The loaded producer, the same for all tests of the program.
const Functions& gentl();
const OviVirtualHostility& orders();

// An answer of an info function.
struct Answer {
  Error error = kError;
  std::int32_t type = 0;
  std::string bytes;  // without the NUL, when it is a text

  std::uint64_t number() const;
};

// Asks for the size, then for the value, and checks what the rules of size negotiation demand on the way.
template<class Function, class... Arguments>
Answer ask(Function function, Arguments... arguments);

// The text of the last failure on this thread.
std::string lastErrorText();

// The registers of a port by the names of its description, as far as plain addresses go.
class Registers {
 public:
  explicit Registers(Handle port);

  const std::string& description() const { return description_; }
  bool has(const std::string& name) const;
  std::uint64_t address(const std::string& name) const;
  std::uint64_t get(const std::string& name) const;
  Error set(const std::string& name, std::uint64_t value) const;
  std::string text(const std::string& name) const;
  // The number of an enumeration's entry.
  std::uint64_t entry(const std::string& enumeration, const std::string& name) const;

 private:
  struct Document;
  struct Place {
    std::uint64_t address = 0;
    std::size_t length = 0;
  };
  // Where the register lies, with the selectors as they stand.
  Place place(const std::string& name) const;

  Handle port_;
  bool bigEndian_;
  std::string description_;
  std::shared_ptr<Document> document_;
};

// Opens what a test needs and closes it again in the end.
class ProducerTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  const Functions& g = gentl();

  void openSystem();
  void openInterface(std::uint32_t index = 0);
  // By the model name; the interface is found.
  void openDevice(const std::string& model = "VC-1300M", std::int32_t access = 4);
  void openStream(std::uint32_t index = 0);
  std::vector<Handle> announce(std::size_t count, bool queued = true);

  void startCamera() { ASSERT_EQ(remote->set("AcquisitionStart", 1), kSuccess); }
  void stopCamera() { ASSERT_EQ(remote->set("AcquisitionStop", 1), kSuccess); }
  // Waits for a filled buffer.
  std::optional<NewBufferData> next(std::uint64_t timeoutMs = 5000);
  std::uint64_t bufferInfo(Handle buffer, std::int32_t command) const;
  std::uint64_t streamInfo(std::int32_t command) const;

  Handle tl = nullptr;
  Handle interface = nullptr;
  Handle device = nullptr;
  Handle port = nullptr;
  Handle stream = nullptr;
  Handle newBuffer = nullptr;
  std::string deviceId;
  std::unique_ptr<Registers> remote;
};

template<class Function, class... Arguments>
Answer ask(Function function, Arguments... arguments) {
  Answer answer;
  std::size_t needed = 12345;
  answer.error = function(arguments..., &answer.type, nullptr, &needed);
  if (answer.error != kSuccess) {
    return answer;
  }
  std::string buffer(needed + 3, '\x7F');
  std::size_t size = needed - 1;
  std::int32_t type = 0;
  if (needed != 0) {
    EXPECT_EQ(function(arguments..., &type, buffer.data(), &size), kBufferTooSmall);
    EXPECT_EQ(buffer, std::string(needed + 3, '\x7F')) << "a failing call wrote";
  }
  size = buffer.size();
  answer.error = function(arguments..., &type, buffer.data(), &size);
  EXPECT_EQ(answer.error, kSuccess);
  EXPECT_EQ(type, answer.type);
  EXPECT_EQ(size, needed);
  EXPECT_EQ(buffer.substr(needed), "\x7F\x7F\x7F") << "the call wrote past the size";
  buffer.resize(size);
  if (answer.type == kString) {
    EXPECT_TRUE(!buffer.empty() && buffer.back() == '\0');
    buffer.pop_back();
    EXPECT_EQ(buffer.find('\0'), std::string::npos);
  }
  answer.bytes = buffer;
  return answer;
}

}  // namespace producer_test
