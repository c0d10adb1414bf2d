// Reading and writing texts.
#include "nodes/string_base.h"

namespace GenApiEngine {

void StringBase::SetValue(const gcstring& value, bool verify) {
  WriteCall call(*this, "SetValue");
  writeString({value.c_str(), value.size()}, verify);
  call.finish(verify);
}

Api::IString& StringBase::operator=(const gcstring& value) {
  StringBase::SetValue(value, true);
  return *this;
}

gcstring StringBase::GetValue(bool verify, bool ignoreCache) {
  const Call call(*this, "GetValue");
  const std::string text = textValue({verify, ignoreCache});
  if (verify) {
    checkErrors();
  }
  return toGc(text);
}

std::string StringBase::textValue(ReadFlags flags) {
  std::string text;
  readString(text, flags);
  return text;
}

void StringBase::readString(std::string& out, ReadFlags flags) {
  requireReadable("Node is not readable");
  if (!isSet(kValid) || flags.verify || flags.ignoreCache) {
    const ValueDescent descent(*this, state_, kValueBusy);
    fetchString(value_, flags);
    valueRead();
  }
  out = value_;
}

void StringBase::writeString(std::string_view value, bool verify) {
  if (verify) {
    requireWritable("Node is not writable");
  }
  const ValueDescent descent(*this, state_, kWriteBusy);
  storeString(value, verify);
  value_ = value;
  valueWritten();
}

int64_t StringBase::GetMaxLength() {
  const Call call(*this, "GetMaxLength");
  return maxLength();
}

}  // namespace GenApiEngine
