// Queries of a producer: values and texts by the rules of size, type and terminator.
#include "check/info.h"

#include <algorithm>
#include <array>

namespace tool::check {

namespace {

constexpr std::uint8_t kUntouched = 0xCD;
constexpr std::size_t kGuard = 16;
constexpr std::size_t kAbsurd = 1 << 24;

constexpr std::array kTypeNames = {"UNKNOWN", "STRING",  "STRINGLIST", "INT16", "UINT16", "INT32",  "UINT32", "INT64",
                                   "UINT64",  "FLOAT64", "PTR",        "BOOL8", "SIZET",  "BUFFER", "PTRDIFF"};

std::string typeText(INFO_DATATYPE type) {
  return type >= 0 && static_cast<std::size_t>(type) < kTypeNames.size() ? kTypeNames.at(static_cast<std::size_t>(type))
                                                                         : "type " + std::to_string(type);
}

std::size_t sizeOf(INFO_DATATYPE type) {
  static constexpr std::array<std::size_t, 15> kSizes = {
      0, 0, 0, 2, 2, 4, 4, 8, 8, 8, sizeof(void*), 1, sizeof(std::size_t), 0, sizeof(std::ptrdiff_t)};
  return kSizes.at(static_cast<std::size_t>(type));
}

bool meansNoValue(GC_ERROR code) {
  return code == GC_ERR_NOT_IMPLEMENTED || code == GC_ERR_NOT_AVAILABLE || code == GC_ERR_NO_DATA;
}

// A buffer that shows what was written into it, and behind it.
class Target {
 public:
  explicit Target(std::size_t size) : size_(size), bytes_(size + kGuard, kUntouched) {}
  void* data() { return bytes_.data(); }
  bool untouched() const {
    return std::ranges::all_of(bytes_, [](std::uint8_t b) { return b == kUntouched; });
  }
  bool overrun() const {
    return std::any_of(bytes_.begin() + static_cast<std::ptrdiff_t>(size_), bytes_.end(),
                       [](std::uint8_t b) { return b != kUntouched; });
  }
  std::vector<std::uint8_t> take(std::size_t size) const {
    return {bytes_.begin(), bytes_.begin() + static_cast<std::ptrdiff_t>(std::min(size, size_))};
  }

 private:
  std::size_t size_;
  std::vector<std::uint8_t> bytes_;
};

// What is wrong with a text of which so many bytes were written.
std::string textFault(const std::vector<std::uint8_t>& bytes) {
  const auto end = std::ranges::find(bytes, std::uint8_t{0});
  if (end == bytes.end())
    return "has no terminating NUL";
  if (end + 1 != bytes.end())
    return "ends after " + std::to_string(end - bytes.begin()) + " characters, but " + std::to_string(bytes.size()) +
           " bytes were reported";
  return {};
}

// The rules of one value; what is wrong is told to `fault`.
Info askByTheRules(const Query& query, const InfoCommand& wanted,
                   const std::function<void(const std::string&)>& fault) {
  Info info;
  std::size_t needed = 0;
  INFO_DATATYPE sizeType = -1;
  info.code = query(wanted.command, &sizeType, nullptr, &needed);
  if (info.code != GC_ERR_SUCCESS) {
    if (!meansNoValue(info.code) || wanted.need != InfoCommand::kOptional)
      fault("returned " + codeText(info.code));
    return info;
  }
  if (needed == 0 || needed > kAbsurd) {
    fault("needs " + std::to_string(needed) + " bytes, it says");
    info.code = GC_ERR_ERROR;
    return info;
  }
  Target target(needed);
  std::size_t written = needed;
  info.code = query(wanted.command, &info.type, target.data(), &written);
  if (info.code != GC_ERR_SUCCESS) {
    fault("returned " + codeText(info.code) + " with the size that it asked for, " + std::to_string(needed));
    return info;
  }
  if (target.overrun() || written > needed)
    fault("wrote more than the " + std::to_string(needed) + " bytes of the buffer");
  info.bytes = target.take(written);
  if (info.type != wanted.type)
    fault("is of type " + typeText(info.type) + ", not " + typeText(wanted.type));
  else if (sizeType != info.type)
    fault("has type " + typeText(sizeType) + " when its size is asked, and " + typeText(info.type) + " then");
  if (wanted.type == INFO_DATATYPE_STRING) {
    if (const std::string wrong = textFault(info.bytes); !wrong.empty())
      fault(wrong);
    else if (wanted.need == InfoCommand::kText && info.text().empty())
      fault("is empty");
  } else if (const std::size_t size = sizeOf(wanted.type); size != 0 && written != size) {
    fault("has " + std::to_string(written) + " bytes, not " + std::to_string(size));
  }
  Target small(needed - 1);
  std::size_t room = needed - 1;
  INFO_DATATYPE type = 0;
  if (const GC_ERROR code = query(wanted.command, &type, small.data(), &room); code != GC_ERR_BUFFER_TOO_SMALL)
    fault("returned " + codeText(code) + " for a buffer that is one byte too small, not " +
          codeText(GC_ERR_BUFFER_TOO_SMALL));
  else if (!small.untouched())
    fault("wrote into a buffer that was too small");
  return info;
}

using enum InfoCommand::Need;

}  // namespace

const std::vector<InfoCommand> kSystemInfos = {
    {TL_INFO_ID, "TL_INFO_ID", INFO_DATATYPE_STRING, kText},
    {TL_INFO_VENDOR, "TL_INFO_VENDOR", INFO_DATATYPE_STRING, kText},
    {TL_INFO_MODEL, "TL_INFO_MODEL", INFO_DATATYPE_STRING, kText},
    {TL_INFO_VERSION, "TL_INFO_VERSION", INFO_DATATYPE_STRING, kText},
    {TL_INFO_TLTYPE, "TL_INFO_TLTYPE", INFO_DATATYPE_STRING, kText},
    {TL_INFO_NAME, "TL_INFO_NAME", INFO_DATATYPE_STRING, kText},
    {TL_INFO_PATHNAME, "TL_INFO_PATHNAME", INFO_DATATYPE_STRING, kText},
    {TL_INFO_DISPLAYNAME, "TL_INFO_DISPLAYNAME", INFO_DATATYPE_STRING, kText},
    {TL_INFO_CHAR_ENCODING, "TL_INFO_CHAR_ENCODING", INFO_DATATYPE_INT32, kNeeded},
    {TL_INFO_GENTL_VER_MAJOR, "TL_INFO_GENTL_VER_MAJOR", INFO_DATATYPE_UINT32, kNeeded},
    {TL_INFO_GENTL_VER_MINOR, "TL_INFO_GENTL_VER_MINOR", INFO_DATATYPE_UINT32, kNeeded},
};

const std::vector<InfoCommand> kInterfaceInfos = {
    {INTERFACE_INFO_ID, "INTERFACE_INFO_ID", INFO_DATATYPE_STRING, kText},
    {INTERFACE_INFO_DISPLAYNAME, "INTERFACE_INFO_DISPLAYNAME", INFO_DATATYPE_STRING, kText},
    {INTERFACE_INFO_TLTYPE, "INTERFACE_INFO_TLTYPE", INFO_DATATYPE_STRING, kText},
};

const std::vector<InfoCommand> kDeviceInfos = {
    {DEVICE_INFO_ID, "DEVICE_INFO_ID", INFO_DATATYPE_STRING, kText},
    {DEVICE_INFO_VENDOR, "DEVICE_INFO_VENDOR", INFO_DATATYPE_STRING, kText},
    {DEVICE_INFO_MODEL, "DEVICE_INFO_MODEL", INFO_DATATYPE_STRING, kText},
    {DEVICE_INFO_TLTYPE, "DEVICE_INFO_TLTYPE", INFO_DATATYPE_STRING, kText},
    {DEVICE_INFO_DISPLAYNAME, "DEVICE_INFO_DISPLAYNAME", INFO_DATATYPE_STRING, kText},
    {DEVICE_INFO_ACCESS_STATUS, "DEVICE_INFO_ACCESS_STATUS", INFO_DATATYPE_INT32, kNeeded},
    {DEVICE_INFO_USER_DEFINED_NAME, "DEVICE_INFO_USER_DEFINED_NAME", INFO_DATATYPE_STRING, kOptional},
    {DEVICE_INFO_SERIAL_NUMBER, "DEVICE_INFO_SERIAL_NUMBER", INFO_DATATYPE_STRING, kOptional},
    {DEVICE_INFO_VERSION, "DEVICE_INFO_VERSION", INFO_DATATYPE_STRING, kOptional},
    {DEVICE_INFO_TIMESTAMP_FREQUENCY, "DEVICE_INFO_TIMESTAMP_FREQUENCY", INFO_DATATYPE_UINT64, kOptional},
};

const std::vector<InfoCommand> kStreamInfos = {
    {STREAM_INFO_ID, "STREAM_INFO_ID", INFO_DATATYPE_STRING, kText},
    {STREAM_INFO_NUM_DELIVERED, "STREAM_INFO_NUM_DELIVERED", INFO_DATATYPE_UINT64, kNeeded},
    {STREAM_INFO_NUM_UNDERRUN, "STREAM_INFO_NUM_UNDERRUN", INFO_DATATYPE_UINT64, kNeeded},
    {STREAM_INFO_NUM_ANNOUNCED, "STREAM_INFO_NUM_ANNOUNCED", INFO_DATATYPE_SIZET, kNeeded},
    {STREAM_INFO_NUM_QUEUED, "STREAM_INFO_NUM_QUEUED", INFO_DATATYPE_SIZET, kNeeded},
    {STREAM_INFO_NUM_AWAIT_DELIVERY, "STREAM_INFO_NUM_AWAIT_DELIVERY", INFO_DATATYPE_SIZET, kNeeded},
    {STREAM_INFO_NUM_STARTED, "STREAM_INFO_NUM_STARTED", INFO_DATATYPE_UINT64, kOptional},
    {STREAM_INFO_PAYLOAD_SIZE, "STREAM_INFO_PAYLOAD_SIZE", INFO_DATATYPE_SIZET, kOptional},
    {STREAM_INFO_IS_GRABBING, "STREAM_INFO_IS_GRABBING", INFO_DATATYPE_BOOL8, kNeeded},
    {STREAM_INFO_DEFINES_PAYLOADSIZE, "STREAM_INFO_DEFINES_PAYLOADSIZE", INFO_DATATYPE_BOOL8, kNeeded},
    {STREAM_INFO_TLTYPE, "STREAM_INFO_TLTYPE", INFO_DATATYPE_STRING, kText},
    {STREAM_INFO_NUM_CHUNKS_MAX, "STREAM_INFO_NUM_CHUNKS_MAX", INFO_DATATYPE_SIZET, kOptional},
    {STREAM_INFO_BUF_ANNOUNCE_MIN, "STREAM_INFO_BUF_ANNOUNCE_MIN", INFO_DATATYPE_SIZET, kOptional},
    {STREAM_INFO_BUF_ALIGNMENT, "STREAM_INFO_BUF_ALIGNMENT", INFO_DATATYPE_SIZET, kOptional},
};

const std::vector<InfoCommand> kPortInfos = {
    {PORT_INFO_ID, "PORT_INFO_ID", INFO_DATATYPE_STRING, kText},
    {PORT_INFO_VENDOR, "PORT_INFO_VENDOR", INFO_DATATYPE_STRING, kText},
    {PORT_INFO_MODEL, "PORT_INFO_MODEL", INFO_DATATYPE_STRING, kText},
    {PORT_INFO_TLTYPE, "PORT_INFO_TLTYPE", INFO_DATATYPE_STRING, kText},
    {PORT_INFO_MODULE, "PORT_INFO_MODULE", INFO_DATATYPE_STRING, kText},
    {PORT_INFO_LITTLE_ENDIAN, "PORT_INFO_LITTLE_ENDIAN", INFO_DATATYPE_BOOL8, kNeeded},
    {PORT_INFO_BIG_ENDIAN, "PORT_INFO_BIG_ENDIAN", INFO_DATATYPE_BOOL8, kNeeded},
    {PORT_INFO_ACCESS_READ, "PORT_INFO_ACCESS_READ", INFO_DATATYPE_BOOL8, kNeeded},
    {PORT_INFO_ACCESS_WRITE, "PORT_INFO_ACCESS_WRITE", INFO_DATATYPE_BOOL8, kNeeded},
    {PORT_INFO_ACCESS_NA, "PORT_INFO_ACCESS_NA", INFO_DATATYPE_BOOL8, kNeeded},
    {PORT_INFO_ACCESS_NI, "PORT_INFO_ACCESS_NI", INFO_DATATYPE_BOOL8, kNeeded},
    {PORT_INFO_VERSION, "PORT_INFO_VERSION", INFO_DATATYPE_STRING, kOptional},
    {PORT_INFO_PORTNAME, "PORT_INFO_PORTNAME", INFO_DATATYPE_STRING, kText},
};

const std::vector<InfoCommand> kUrlInfos = {
    {URL_INFO_URL, "URL_INFO_URL", INFO_DATATYPE_STRING, kText},
    {URL_INFO_SCHEMA_VER_MAJOR, "URL_INFO_SCHEMA_VER_MAJOR", INFO_DATATYPE_INT32, kOptional},
    {URL_INFO_SCHEMA_VER_MINOR, "URL_INFO_SCHEMA_VER_MINOR", INFO_DATATYPE_INT32, kOptional},
    {URL_INFO_FILE_VER_MAJOR, "URL_INFO_FILE_VER_MAJOR", INFO_DATATYPE_INT32, kOptional},
    {URL_INFO_FILE_VER_MINOR, "URL_INFO_FILE_VER_MINOR", INFO_DATATYPE_INT32, kOptional},
    {URL_INFO_FILE_VER_SUBMINOR, "URL_INFO_FILE_VER_SUBMINOR", INFO_DATATYPE_INT32, kOptional},
    {URL_INFO_FILE_SHA1_HASH, "URL_INFO_FILE_SHA1_HASH", INFO_DATATYPE_BUFFER, kOptional},
    {URL_INFO_FILE_REGISTER_ADDRESS, "URL_INFO_FILE_REGISTER_ADDRESS", INFO_DATATYPE_UINT64, kOptional},
    {URL_INFO_FILE_SIZE, "URL_INFO_FILE_SIZE", INFO_DATATYPE_UINT64, kOptional},
    {URL_INFO_SCHEME, "URL_INFO_SCHEME", INFO_DATATYPE_INT32, kOptional},
    {URL_INFO_FILENAME, "URL_INFO_FILENAME", INFO_DATATYPE_STRING, kOptional},
};

const std::vector<InfoCommand> kEventInfos = {
    {EVENT_EVENT_TYPE, "EVENT_EVENT_TYPE", INFO_DATATYPE_INT32, kNeeded},
    {EVENT_NUM_IN_QUEUE, "EVENT_NUM_IN_QUEUE", INFO_DATATYPE_SIZET, kNeeded},
    {EVENT_NUM_FIRED, "EVENT_NUM_FIRED", INFO_DATATYPE_UINT64, kNeeded},
    {EVENT_SIZE_MAX, "EVENT_SIZE_MAX", INFO_DATATYPE_SIZET, kNeeded},
    {EVENT_INFO_DATA_SIZE_MAX, "EVENT_INFO_DATA_SIZE_MAX", INFO_DATATYPE_SIZET, kOptional},
};

const std::vector<InfoCommand> kBufferInfos = {
    {BUFFER_INFO_BASE, "BUFFER_INFO_BASE", INFO_DATATYPE_PTR, kNeeded},
    {BUFFER_INFO_SIZE, "BUFFER_INFO_SIZE", INFO_DATATYPE_SIZET, kNeeded},
    {BUFFER_INFO_USER_PTR, "BUFFER_INFO_USER_PTR", INFO_DATATYPE_PTR, kNeeded},
    {BUFFER_INFO_NEW_DATA, "BUFFER_INFO_NEW_DATA", INFO_DATATYPE_BOOL8, kNeeded},
    {BUFFER_INFO_IS_QUEUED, "BUFFER_INFO_IS_QUEUED", INFO_DATATYPE_BOOL8, kNeeded},
    {BUFFER_INFO_IS_ACQUIRING, "BUFFER_INFO_IS_ACQUIRING", INFO_DATATYPE_BOOL8, kOptional},
    {BUFFER_INFO_TLTYPE, "BUFFER_INFO_TLTYPE", INFO_DATATYPE_STRING, kOptional},
};

const std::vector<InfoCommand> kImageInfos = {
    {BUFFER_INFO_TIMESTAMP, "BUFFER_INFO_TIMESTAMP", INFO_DATATYPE_UINT64, kOptional},
    {BUFFER_INFO_IS_INCOMPLETE, "BUFFER_INFO_IS_INCOMPLETE", INFO_DATATYPE_BOOL8, kNeeded},
    {BUFFER_INFO_SIZE_FILLED, "BUFFER_INFO_SIZE_FILLED", INFO_DATATYPE_SIZET, kOptional},
    {BUFFER_INFO_WIDTH, "BUFFER_INFO_WIDTH", INFO_DATATYPE_SIZET, kOptional},
    {BUFFER_INFO_HEIGHT, "BUFFER_INFO_HEIGHT", INFO_DATATYPE_SIZET, kOptional},
    {BUFFER_INFO_XOFFSET, "BUFFER_INFO_XOFFSET", INFO_DATATYPE_SIZET, kOptional},
    {BUFFER_INFO_YOFFSET, "BUFFER_INFO_YOFFSET", INFO_DATATYPE_SIZET, kOptional},
    {BUFFER_INFO_XPADDING, "BUFFER_INFO_XPADDING", INFO_DATATYPE_SIZET, kOptional},
    {BUFFER_INFO_YPADDING, "BUFFER_INFO_YPADDING", INFO_DATATYPE_SIZET, kOptional},
    {BUFFER_INFO_FRAMEID, "BUFFER_INFO_FRAMEID", INFO_DATATYPE_UINT64, kOptional},
    {BUFFER_INFO_IMAGEPRESENT, "BUFFER_INFO_IMAGEPRESENT", INFO_DATATYPE_BOOL8, kOptional},
    {BUFFER_INFO_IMAGEOFFSET, "BUFFER_INFO_IMAGEOFFSET", INFO_DATATYPE_SIZET, kOptional},
    {BUFFER_INFO_PAYLOADTYPE, "BUFFER_INFO_PAYLOADTYPE", INFO_DATATYPE_SIZET, kOptional},
    {BUFFER_INFO_PIXELFORMAT, "BUFFER_INFO_PIXELFORMAT", INFO_DATATYPE_UINT64, kOptional},
    {BUFFER_INFO_PIXELFORMAT_NAMESPACE, "BUFFER_INFO_PIXELFORMAT_NAMESPACE", INFO_DATATYPE_UINT64, kOptional},
    {BUFFER_INFO_DELIVERED_IMAGEHEIGHT, "BUFFER_INFO_DELIVERED_IMAGEHEIGHT", INFO_DATATYPE_SIZET, kOptional},
    {BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE, "BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE", INFO_DATATYPE_SIZET, kOptional},
    {BUFFER_INFO_CHUNKLAYOUTID, "BUFFER_INFO_CHUNKLAYOUTID", INFO_DATATYPE_UINT64, kOptional},
    {BUFFER_INFO_FILENAME, "BUFFER_INFO_FILENAME", INFO_DATATYPE_STRING, kOptional},
    {BUFFER_INFO_PIXEL_ENDIANNESS, "BUFFER_INFO_PIXEL_ENDIANNESS", INFO_DATATYPE_INT32, kOptional},
    {BUFFER_INFO_DATA_SIZE, "BUFFER_INFO_DATA_SIZE", INFO_DATATYPE_SIZET, kOptional},
    {BUFFER_INFO_TIMESTAMP_NS, "BUFFER_INFO_TIMESTAMP_NS", INFO_DATATYPE_UINT64, kOptional},
    {BUFFER_INFO_DATA_LARGER_THAN_BUFFER, "BUFFER_INFO_DATA_LARGER_THAN_BUFFER", INFO_DATATYPE_BOOL8, kOptional},
    {BUFFER_INFO_CONTAINS_CHUNKDATA, "BUFFER_INFO_CONTAINS_CHUNKDATA", INFO_DATATYPE_BOOL8, kOptional},
};

std::string Info::text() const {
  return {bytes.begin(), std::ranges::find(bytes, std::uint8_t{0})};
}

std::uint64_t Info::number() const {
  std::uint64_t value = 0;
  std::memcpy(&value, bytes.data(), std::min(bytes.size(), sizeof value));
  return value;
}

Info ask(const Query& query, std::int32_t command) {
  Info info;
  std::array<std::uint8_t, 4096> buffer{};
  std::size_t size = buffer.size();
  info.code = query(command, &info.type, buffer.data(), &size);
  if (info.exists())
    info.bytes.assign(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(std::min(size, buffer.size())));
  return info;
}

Infos askAll(Checker& check, const std::string& function, const Query& query,
             const std::vector<InfoCommand>& commands) {
  Infos infos;
  for (const InfoCommand& command : commands)
    infos[command.command] = askByTheRules(
        query, command, [&](const std::string& text) { check.fault(function + "(" + command.name + ") " + text); });
  return infos;
}

void compare(Checker& check, const Infos& ours, const Infos& theirs, const std::vector<InfoCommand>& commands,
             const std::string& other) {
  for (const InfoCommand& command : commands) {
    const auto mine = ours.find(command.command);
    const auto its = theirs.find(command.command);
    // Who holds the device changes when it is opened.
    const bool changes = command.command == DEVICE_INFO_ACCESS_STATUS && command.type == INFO_DATATYPE_INT32;
    if (mine != ours.end() && its != theirs.end() && mine->second.exists() && its->second.exists() && !changes &&
        mine->second.bytes != its->second.bytes)
      check.fault(std::string(command.name) + " differs from that of " + other + ": \"" + mine->second.text() +
                  "\" and \"" + its->second.text() + "\"");
  }
}

std::string askText(const std::string& what, const TextQuery& query) {
  std::size_t needed = 0;
  if (const GC_ERROR code = query(nullptr, &needed); code != GC_ERR_SUCCESS)
    throw Broken(what + " returned " + codeText(code) + " when the size was asked");
  if (needed <= 1 || needed > kAbsurd)
    throw Broken(what + (needed == 1 ? " is empty" : " needs " + std::to_string(needed) + " bytes, it says"));
  Target target(needed);
  std::size_t written = needed;
  if (const GC_ERROR code = query(static_cast<char*>(target.data()), &written); code != GC_ERR_SUCCESS)
    throw Broken(what + " returned " + codeText(code));
  if (target.overrun() || written > needed)
    throw Broken(what + " wrote more than the " + std::to_string(needed) + " bytes of the buffer");
  const std::vector<std::uint8_t> bytes = target.take(written);
  if (const std::string wrong = textFault(bytes); !wrong.empty())
    throw Broken(what + " " + wrong);
  Target small(needed - 1);
  std::size_t room = needed - 1;
  if (const GC_ERROR code = query(static_cast<char*>(small.data()), &room); code != GC_ERR_BUFFER_TOO_SMALL)
    throw Broken(what + " returned " + codeText(code) + " for a buffer that is one byte too small");
  return {bytes.begin(), bytes.end() - 1};
}

}  // namespace tool::check
