// The texts of exceptions.
#include <cinttypes>
#include <cstdarg>
#include <cstdio>
#include <string_view>

#include "Base/GCException.h"

namespace GENICAM_NAMESPACE {
namespace {

const char* baseName(const char* path) {
  const std::string_view text = path != nullptr ? path : "";
  const size_t separator = text.find_last_of("/\\");
  return separator == std::string_view::npos ? text.data() : text.data() + separator + 1;
}

}  // namespace

GenericException::GenericException(const char* description, const char* sourceFileName, unsigned int sourceLine)
    : GenericException(description, sourceFileName, sourceLine, "GenericException") {}

GenericException::GenericException(const char* description, const char* sourceFileName, unsigned int sourceLine,
                                   const char* exceptionType)
    : GenericException(description, sourceFileName, sourceLine, "", "", exceptionType) {}

GenericException::GenericException(const char* description, const char* sourceFileName, unsigned int sourceLine,
                                   const char* entryPoint, const char* nodeName, const char* exceptionType)
    : m_SourceLine(sourceLine),
      m_SourceFileName(baseName(sourceFileName)),
      m_Description(description),
      m_EntryPoint(entryPoint),
      m_NodeName(nodeName),
      m_ExceptionType(exceptionType) {
  m_What = m_Description + " : " + m_ExceptionType + " thrown";
  if (!m_NodeName.empty())
    m_What += " in node '" + m_NodeName + "'";
  if (!m_EntryPoint.empty())
    m_What += " while calling '" + m_EntryPoint + "'";
  m_What += " (file '" + m_SourceFileName + "', line " + std::to_string(m_SourceLine).c_str() + ")";
}

GenericException::~GenericException() = default;

const char* GenericException::GetDescription() const {
  return m_Description.c_str();
}
const char* GenericException::GetSourceFileName() const {
  return m_SourceFileName.c_str();
}
unsigned int GenericException::GetSourceLine() const {
  return m_SourceLine;
}
const char* GenericException::what() const {
  return m_What.c_str();
}

gcstring FormatExceptionText(const char* text) {
  gcstring result;
  for (const char* c = text != nullptr ? text : ""; *c != '\0'; ++c) {
    result += *c;
    if (c[0] == '%' && c[1] == '%')
      ++c;
  }
  return result;
}

gcstring FormatExceptionTextWithArguments(const char* format, ...) {
  constexpr size_t kBufferSize = 2048;
  char text[kBufferSize] = "";
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  return text;
}

void CheckRange(int64_t value, int64_t minimum, int64_t maximum, int64_t increment, const char* sourceFileName,
                unsigned int sourceLine) {
  const ExceptionReporter<OutOfRangeException> outOfRange(sourceFileName, sourceLine, "OutOfRangeException");
  if (value < minimum)
    throw outOfRange.Report("Value = %" PRId64 " must be equal or greater than Min = %" PRId64, value, minimum);
  if (value > maximum)
    throw outOfRange.Report("Value = %" PRId64 " must be equal or smaller than Max = %" PRId64, value, maximum);
  if (increment == 0)
    throw LogicalErrorException("Increment must not equal 0!", sourceFileName, sourceLine);
  if ((static_cast<uint64_t>(value) - static_cast<uint64_t>(minimum)) % static_cast<uint64_t>(increment) != 0)
    throw outOfRange.Report("The difference between Value = %" PRId64 " and Min = %" PRId64
                            " must be dividable without rest by Inc = %" PRId64,
                            value, minimum, increment);
}

void CheckRange(double value, double minimum, double maximum, const char* sourceFileName, unsigned int sourceLine) {
  const ExceptionReporter<OutOfRangeException> outOfRange(sourceFileName, sourceLine, "OutOfRangeException");
  if (value < minimum)
    throw outOfRange.Report("Value %f must be greater than or equal %f", value, minimum);
  if (value > maximum)
    throw outOfRange.Report("Value %f must be smaller than or equal %f", value, maximum);
}

}  // namespace GENICAM_NAMESPACE
