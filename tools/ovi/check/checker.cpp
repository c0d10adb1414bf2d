// The rules that a producer is held against: each is one line of the report, with what was seen.
#include "check/checker.h"

#include <Base/GCException.h>

#include <algorithm>
#include <array>

#include "text.h"

namespace tool::check {

namespace {

struct CodeName {
  GC_ERROR code;
  const char* name;
};

constexpr std::array kCodes = {CodeName{GC_ERR_SUCCESS, "success"},
                               CodeName{GC_ERR_ERROR, "GC_ERR_ERROR"},
                               CodeName{GC_ERR_NOT_INITIALIZED, "GC_ERR_NOT_INITIALIZED"},
                               CodeName{GC_ERR_NOT_IMPLEMENTED, "GC_ERR_NOT_IMPLEMENTED"},
                               CodeName{GC_ERR_RESOURCE_IN_USE, "GC_ERR_RESOURCE_IN_USE"},
                               CodeName{GC_ERR_ACCESS_DENIED, "GC_ERR_ACCESS_DENIED"},
                               CodeName{GC_ERR_INVALID_HANDLE, "GC_ERR_INVALID_HANDLE"},
                               CodeName{GC_ERR_INVALID_ID, "GC_ERR_INVALID_ID"},
                               CodeName{GC_ERR_NO_DATA, "GC_ERR_NO_DATA"},
                               CodeName{GC_ERR_INVALID_PARAMETER, "GC_ERR_INVALID_PARAMETER"},
                               CodeName{GC_ERR_IO, "GC_ERR_IO"},
                               CodeName{GC_ERR_TIMEOUT, "GC_ERR_TIMEOUT"},
                               CodeName{GC_ERR_ABORT, "GC_ERR_ABORT"},
                               CodeName{GC_ERR_INVALID_BUFFER, "GC_ERR_INVALID_BUFFER"},
                               CodeName{GC_ERR_NOT_AVAILABLE, "GC_ERR_NOT_AVAILABLE"},
                               CodeName{GC_ERR_INVALID_ADDRESS, "GC_ERR_INVALID_ADDRESS"},
                               CodeName{GC_ERR_BUFFER_TOO_SMALL, "GC_ERR_BUFFER_TOO_SMALL"},
                               CodeName{GC_ERR_INVALID_INDEX, "GC_ERR_INVALID_INDEX"},
                               CodeName{GC_ERR_PARSING_CHUNK_DATA, "GC_ERR_PARSING_CHUNK_DATA"},
                               CodeName{GC_ERR_INVALID_VALUE, "GC_ERR_INVALID_VALUE"},
                               CodeName{GC_ERR_RESOURCE_EXHAUSTED, "GC_ERR_RESOURCE_EXHAUSTED"},
                               CodeName{GC_ERR_OUT_OF_MEMORY, "GC_ERR_OUT_OF_MEMORY"},
                               CodeName{GC_ERR_BUSY, "GC_ERR_BUSY"},
                               CodeName{GC_ERR_AMBIGUOUS, "GC_ERR_AMBIGUOUS"}};

std::string codesText(std::initializer_list<GC_ERROR> codes) {
  std::vector<std::string> texts;
  for (const GC_ERROR code : codes)
    texts.push_back(codeText(code));
  return join(texts, " or ");
}

// What the producer says about its failure with that code.
std::string lastErrorText(const ProducerFunctions& gentl, GC_ERROR failure) {
  std::array<char, 512> text{};
  std::size_t size = text.size() - 1;
  GC_ERROR code = 0;
  if (gentl.GCGetLastError(&code, text.data(), &size) != GC_ERR_SUCCESS || code != failure || text[0] == 0)
    return {};
  return ", \"" + std::string(text.data()) + "\"";
}

}  // namespace

std::string codeText(GC_ERROR code) {
  const auto known = std::ranges::find_if(kCodes, [&](const CodeName& candidate) { return candidate.code == code; });
  if (code == GC_ERR_SUCCESS)
    return known->name;
  return (known == kCodes.end() ? std::string("code") : std::string(known->name)) + " (" + std::to_string(code) + ")";
}

bool Checker::rule(const std::string& text, const std::function<void()>& work) {
  seen_.clear();
  warnings_.clear();
  faults_.clear();
  begin_(text);
  bool ended = true;
  try {
    work();
    ended = false;
  } catch (const Broken& broken) {
    faults_.emplace_back(broken.what());
  } catch (const GenICam::GenericException& error) {
    faults_.emplace_back(error.GetDescription());
  }
  if (!faults_.empty()) {
    ended = ended && faults_.size() == 1 && warnings_.empty();
    faults_.insert(faults_.end(), warnings_.begin(), warnings_.end());
    line_({text, Verdict::kFail, join(faults_, "; "), ended});
    return false;
  }
  line_({text, warnings_.empty() ? Verdict::kPass : Verdict::kWarn, join(warnings_.empty() ? seen_ : warnings_, "; ")});
  return true;
}

void Checker::seen(const std::string& text) {
  seen_.push_back(text);
}

void Checker::warn(const std::string& text) {
  warnings_.push_back(text);
}

void Checker::fault(const std::string& text) {
  faults_.push_back(text);
}

GC_ERROR Checker::expectCode(const char* function, GC_ERROR code, std::initializer_list<GC_ERROR> codes) const {
  if (std::ranges::find(codes, code) != codes.end())
    return code;
  const bool needed = std::ranges::find(codes, GC_ERR_SUCCESS) != codes.end();
  throw Broken(std::string(function) + " returned " + codeText(code) +
               (code == GC_ERR_SUCCESS ? "" : lastErrorText(functions_, code)) +
               (needed ? "" : ", not " + codesText(codes)));
}

void Checker::preferCode(const char* what, const char* function, GC_ERROR code, std::initializer_list<GC_ERROR> codes) {
  if (std::ranges::find(codes, code) == codes.end())
    fault(std::string(function) + " " + what + " returned " + codeText(code) + ", not " + codesText(codes));
}

}  // namespace tool::check
