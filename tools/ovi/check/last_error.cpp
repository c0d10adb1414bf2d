// What a producer tells of its last failure.
#include "last_error.h"

#include <gentl_interface/GenTL.h>

#include <algorithm>
#include <array>

#include "check/checker.h"
#include "platform/console.h"
#include "platform/dynamic_library.h"
#include "printable.h"

namespace tool {

namespace {

struct ProducerError {
  GC_ERROR code = GC_ERR_SUCCESS;  ///< success when the producer tells none
  std::string text;
};

// The last failure of this thread's calls, as the producer tells it.
ProducerError askForLastError(const std::filesystem::path& producer) {
  const std::unique_ptr<DynamicLibrary> library = DynamicLibrary::alreadyLoaded(producer);
  const auto ask = library ? reinterpret_cast<PGCGetLastError>(library->find("GCGetLastError")) : nullptr;
  std::array<char, 1024> text{};
  std::size_t size = text.size() - 1;
  ProducerError error;
  if (ask == nullptr || ask(&error.code, text.data(), &size) != GC_ERR_SUCCESS)
    return {};
  error.text = fromLibraryText(text.data());
  return error;
}

struct Advice {
  GC_ERROR code;
  const char* text;
};

constexpr std::array kAdvice = {
    Advice{GC_ERR_RESOURCE_IN_USE, "; to it the stream runs already: end other programs that use this camera"},
    Advice{GC_ERR_ACCESS_DENIED, "; another program may control the camera: close that program"},
    Advice{GC_ERR_IO, "; the camera's cable, its power or the link may have failed"},
    Advice{GC_ERR_TIMEOUT, "; the camera's cable, its power or the link may have failed"},
    Advice{GC_ERR_RESOURCE_EXHAUSTED, "; fewer --buffers or a smaller image may do"},
    Advice{GC_ERR_OUT_OF_MEMORY, "; fewer --buffers or a smaller image may do"}};

}  // namespace

std::string lastErrorOf(const std::filesystem::path& producer) {
  const ProducerError error = askForLastError(producer);
  if (error.code == GC_ERR_SUCCESS)
    return {};
  const auto advice = std::ranges::find_if(kAdvice, [&](const Advice& one) { return one.code == error.code; });
  return check::codeText(error.code) + (error.text.empty() ? "" : ", \"" + printable(error.text) + "\"") +
         (advice == kAdvice.end() ? "" : advice->text);
}

}  // namespace tool
