// The rules of size negotiation, and the spoiling of answers for tests.
#include "modules/info.h"

#include <algorithm>
#include <cstring>

#include "modules/failure.h"
#include "modules/hostility.h"

namespace vcam {

namespace {

void answerBytes(std::string_view bytes, void* buffer, std::size_t* size) {
  if (buffer == nullptr) {
    *size = bytes.size();
    return;
  }
  require(buffer, "the buffer");
  if (*size < bytes.size()) {
    fail(GC_ERR_BUFFER_TOO_SMALL, "the buffer holds ", *size, " bytes, the answer ", bytes.size());
  }
  std::memcpy(buffer, bytes.data(), bytes.size());
  *size = bytes.size();
}

void answerSpoiledText(OviVirtualText how, std::string text, void* buffer, std::size_t* size) {
  switch (how) {
    case OVI_VIRTUAL_TEXT_UNTERMINATED:
      text.pop_back();
      break;
    case OVI_VIRTUAL_TEXT_EMPTY:
      text.assign(1, '\0');
      break;
    case OVI_VIRTUAL_TEXT_FULL:
      text.assign(buffer == nullptr ? text.size() : *size, 'x');
      break;
  }
  answerBytes(text, buffer, size);
}

void answerTerminated(std::string text, std::int32_t command, void* buffer, std::size_t* size) {
  text.push_back('\0');
  if (Hostility::armed()) {
    if (const std::optional<OviVirtualText> how = Hostility::instance().textSpoiler(command)) {
      answerSpoiledText(*how, std::move(text), buffer, size);
      return;
    }
  }
  answerBytes(text, buffer, size);
}

void reportType(INFO_DATATYPE dataType, std::int32_t command, INFO_DATATYPE* type) {
  *type = dataType;
  if (Hostility::armed()) {
    *type = Hostility::instance().typeSpoiler(command).value_or(dataType);
  }
}

}  // namespace

void answerScalar(INFO_DATATYPE dataType, std::uint64_t value, std::int32_t command, INFO_DATATYPE* type, void* buffer,
                  std::size_t* size) {
  require(type, "the type");
  require(size, "the size");
  const std::size_t bytes = sizeOf(dataType);
  if (buffer != nullptr) {
    require(buffer, "the buffer");
    if (*size < bytes) {
      fail(GC_ERR_BUFFER_TOO_SMALL, "the buffer holds ", *size, " bytes, the answer ", bytes);
    }
    // The low bytes come first on every machine that this runs on. A copy of known size needs no call.
    if (bytes == sizeof(value)) {
      std::memcpy(buffer, &value, sizeof(value));
    } else {
      std::memcpy(buffer, &value, bytes);
    }
  }
  *size = bytes;
  reportType(dataType, command, type);
}

void answer(const Info& info, std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
  switch (info.type()) {
    case INFO_DATATYPE_STRING:
    case INFO_DATATYPE_STRINGLIST:
      require(type, "the type");
      require(size, "the size");
      answerTerminated(info.string(), command, buffer, size);
      reportType(info.type(), command, type);
      break;
    case INFO_DATATYPE_BUFFER:
      require(type, "the type");
      require(size, "the size");
      answerBytes(info.string(), buffer, size);
      reportType(info.type(), command, type);
      break;
    default:
      answerScalar(info.type(), info.scalar(), command, type, buffer, size);
  }
}

void answerText(std::string_view text, char* buffer, std::size_t* size) {
  require(size, "the size");
  answerTerminated(std::string(text), -1, buffer, size);
}

}  // namespace vcam
