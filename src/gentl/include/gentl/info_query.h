// Questions to a producer that it answers into a buffer of fixed size.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "core/bounded_copy.h"
#include "gentl/exceptions.h"
#include "gentl_interface/GenTL.h"

namespace GenTLCpp {

inline constexpr std::size_t kInfoTextSize = 1024;

/**
 * A text, asked for with one call into a buffer of fixed size. A text without a NUL ends with the buffer.
 *
 * @param call  GC_ERROR(INFO_DATATYPE* type, char* buffer, std::size_t* size)
 */
template<std::size_t Size = kInfoTextSize, class Call>
std::string queryText(Call&& call) {
  std::array<char, Size> buffer{};
  std::size_t size = buffer.size();
  INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
  checkGenTLError(call(&type, buffer.data(), &size));
  return std::string(OVI::boundedText(buffer.data(), buffer.size()));
}

/**
 * A number, flag or pointer of its own width; bytes that the producer leaves alone stay zero.
 *
 * @param call  GC_ERROR(INFO_DATATYPE* type, void* buffer, std::size_t* size)
 */
template<class T, class Call>
T queryValue(Call&& call) {
  T value{};
  std::size_t size = sizeof(T);
  INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
  checkGenTLError(call(&type, static_cast<void*>(&value), &size));
  return value;
}

/** A producer that tells of more interfaces, devices or streams has lost count: no machine has so many. */
constexpr std::uint32_t kMaxListed = 65'536;

/**
 * The IDs of a list, in index order, as many as kMaxListed at most.
 *
 * @param count  GC_ERROR(std::uint32_t* count)
 * @param idAt   GC_ERROR(std::uint32_t index, char* buffer, std::size_t* size)
 */
template<class Count, class IdAt>
std::vector<std::string> queryIds(Count&& count, IdAt&& idAt) {
  std::uint32_t number = 0;
  checkGenTLError(count(&number));
  number = std::min(number, kMaxListed);
  std::vector<std::string> ids;
  for (std::uint32_t index = 0; index < number; ++index) {
    ids.push_back(
        queryText([&](INFO_DATATYPE* /*type*/, char* buffer, std::size_t* size) { return idAt(index, buffer, size); }));
  }
  return ids;
}

/** A handle that an open call gives; success without a handle is an ErrorException. @param call  GC_ERROR(void** out)
 */
template<class Call>
void* openHandle(Call&& call) {
  void* handle = nullptr;
  checkGenTLError(call(&handle));
  if (handle == nullptr) {
    checkGenTLError(GC_ERR_ERROR);
  }
  return handle;
}

}  // namespace GenTLCpp
