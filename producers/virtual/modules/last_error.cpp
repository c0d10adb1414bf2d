// Keeps the texts in plain memory of the thread, so that threads may outlive the producer.
#include "modules/last_error.h"

#include <array>

namespace vcam {

namespace {

struct Record {
  GC_ERROR code;
  std::size_t length;
  std::array<char, 512> text;
};

thread_local Record record{};

void append(std::string_view text) {
  record.length += text.copy(record.text.data() + record.length, record.text.size() - record.length);
}

}  // namespace

GC_ERROR rememberError(GC_ERROR code, std::string_view where, std::string_view what) noexcept {
  record.code = code;
  record.length = 0;
  append(where);
  append(": ");
  append(what);
  return code;
}

LastError lastError() noexcept {
  if (record.code == GC_ERR_SUCCESS) {
    return {GC_ERR_SUCCESS, "No Error"};
  }
  return {record.code, {record.text.data(), record.length}};
}

}  // namespace vcam
