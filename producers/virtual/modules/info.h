// Answers of the info functions: one value type, one function that hands it out by the rules of size negotiation.
#pragma once

#include <gentl_interface/GenTL.h>

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

namespace vcam {

class Info {
 public:
  static Info text(std::string value) { return {INFO_DATATYPE_STRING, 0, std::move(value)}; }
  // The texts back to back, each with its NUL; the closing NUL is added.
  static Info list(std::string value) { return {INFO_DATATYPE_STRINGLIST, 0, std::move(value)}; }
  static Info bytes(std::string value) { return {INFO_DATATYPE_BUFFER, 0, std::move(value)}; }
  static Info boolean(bool value) { return {INFO_DATATYPE_BOOL8, value ? 1U : 0U, {}}; }
  static Info int32(std::int32_t value) { return {INFO_DATATYPE_INT32, static_cast<std::uint32_t>(value), {}}; }
  static Info uint32(std::uint32_t value) { return {INFO_DATATYPE_UINT32, value, {}}; }
  static Info uint64(std::uint64_t value) { return {INFO_DATATYPE_UINT64, value, {}}; }
  static Info size(std::size_t value) { return {INFO_DATATYPE_SIZET, value, {}}; }
  static Info pointer(const void* value) {
    return {INFO_DATATYPE_PTR, static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(value)), {}};
  }

  INFO_DATATYPE type() const { return type_; }
  std::uint64_t scalar() const { return scalar_; }
  const std::string& string() const { return text_; }

 private:
  Info(INFO_DATATYPE type, std::uint64_t scalar, std::string text)
      : type_(type),
        scalar_(scalar),
        text_(std::move(text)) {}

  INFO_DATATYPE type_;
  std::uint64_t scalar_;
  std::string text_;
};

// Hands a value out: the size that is needed when there is no buffer, the value otherwise. `command` is for tests that
// spoil the answer.
void answer(const Info& info, std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size);

// The same for the functions that hand out a text without a type.
void answerText(std::string_view text, char* buffer, std::size_t* size);

// Hands out a scalar; what answer() does, without the detour.
void answerScalar(INFO_DATATYPE dataType, std::uint64_t value, std::int32_t command, INFO_DATATYPE* type, void* buffer,
                  std::size_t* size);

// Bytes of a scalar of this type; 0 for types without a fixed size.
constexpr std::size_t sizeOf(INFO_DATATYPE type) {
  constexpr std::size_t kSizes[] = {
      0, 0, 0, 2, 2, 4, 4, 8, 8, 8, sizeof(void*), 1, sizeof(std::size_t), 0, sizeof(std::ptrdiff_t)};
  return type >= 0 && type < static_cast<INFO_DATATYPE>(std::size(kSizes)) ? kSizes[type] : 0;
}

}  // namespace vcam
