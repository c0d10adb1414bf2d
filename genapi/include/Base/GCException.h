/// The exceptions of the GenICam interface and the macros that make them: throw ACCESS_EXCEPTION("Port %d", n);
#pragma once

#include <sstream>
#include <string>

#include "Base/GCString.h"

namespace GENICAM_NAMESPACE {

/// The root of all GenICam exceptions; not a std::exception.
///
/// what() is "<description> : <type> thrown in node '<node>' while calling '<entry point>' (file '<file>', line <n>)",
/// or without the node part where no node is involved. Of the file only the base name is kept.
class GCBASE_RTTI_CLASS_API GenericException {
 public:
  GenericException(const char* description, const char* sourceFileName, unsigned int sourceLine);
  GenericException(const char* description, const char* sourceFileName, unsigned int sourceLine,
                   const char* exceptionType);
  /// @param entryPoint  the outermost call of the application, for example "Gain.SetValue()"
  /// @param nodeName    the node that found the fault
  GenericException(const char* description, const char* sourceFileName, unsigned int sourceLine, const char* entryPoint,
                   const char* nodeName, const char* exceptionType);
  GenericException(const GenericException&) = default;
  GenericException(GenericException&&) = default;
  GenericException& operator=(const GenericException&) = default;
  GenericException& operator=(GenericException&&) = default;
  virtual ~GenericException();

  virtual const char* GetDescription() const;
  virtual const char* GetSourceFileName() const;
  virtual unsigned int GetSourceLine() const;
  virtual const char* what() const;

 protected:
  unsigned int m_SourceLine;
  gcstring m_SourceFileName;
  gcstring m_Description;
  gcstring m_EntryPoint;
  gcstring m_NodeName;
  gcstring m_ExceptionType;
  gcstring m_What;
};

#define GENICAM_DECLARE_EXCEPTION(Name)                                                                           \
  class GCBASE_RTTI_CLASS_API Name : public GenericException {                                                    \
   public:                                                                                                        \
    Name(const char* description, const char* sourceFileName, unsigned int sourceLine)                            \
        : GenericException(description, sourceFileName, sourceLine, #Name) {}                                     \
    Name(const char* description, const char* sourceFileName, unsigned int sourceLine, const char* exceptionType) \
        : GenericException(description, sourceFileName, sourceLine, exceptionType) {}                             \
    Name(const char* description, const char* sourceFileName, unsigned int sourceLine, const char* entryPoint,    \
         const char* nodeName, const char* exceptionType)                                                         \
        : GenericException(description, sourceFileName, sourceLine, entryPoint, nodeName, exceptionType) {}       \
  }

GENICAM_DECLARE_EXCEPTION(BadAllocException);
GENICAM_DECLARE_EXCEPTION(InvalidArgumentException);
GENICAM_DECLARE_EXCEPTION(OutOfRangeException);
GENICAM_DECLARE_EXCEPTION(PropertyException);
GENICAM_DECLARE_EXCEPTION(RuntimeException);
GENICAM_DECLARE_EXCEPTION(LogicalErrorException);
GENICAM_DECLARE_EXCEPTION(AccessException);
GENICAM_DECLARE_EXCEPTION(TimeoutException);
GENICAM_DECLARE_EXCEPTION(DynamicCastException);

#undef GENICAM_DECLARE_EXCEPTION

/// printf formatting for exception texts; what is longer than 2047 bytes is cut.
GCBASE_API gcstring FormatExceptionText(const char* text);
GCBASE_API gcstring FormatExceptionTextWithArguments(const char* format, ...);
template<class... Args>
gcstring FormatExceptionText(const char* format, Args... args) {
  return FormatExceptionTextWithArguments(format, args...);
}

/// Remembers where an exception is thrown and makes it from a text. Long texts are cut.
template<class E>
class ExceptionReporter {
 public:
  ExceptionReporter(const char* sourceFileName, unsigned int sourceLine, const char* exceptionType)
      : m_SourceFileName(sourceFileName),
        m_SourceLine(sourceLine),
        m_ExceptionType(exceptionType) {}

  /// Text without arguments is taken as it is, but for "%%".
  E Report(const char* text) const { return make(FormatExceptionText(text).c_str()); }
  template<class... Args>
  E Report(const char* format, Args... args) const {
    return make(FormatExceptionText(format, args...).c_str());
  }
  E Report() const { return make(""); }
  E Report(const std::string& description) const { return make(description.c_str()); }
  E Report(const std::stringstream& description) const { return make(description.str().c_str()); }

 private:
  E make(const char* description) const { return E(description, m_SourceFileName, m_SourceLine, m_ExceptionType); }

  const char* m_SourceFileName;
  unsigned int m_SourceLine;
  const char* m_ExceptionType;
};

/// A narrower integer of the same value; RuntimeException when it does not fit.
template<class Td, class Ts>
Td INTEGRAL_CAST2(Ts value) {
  const Td narrow = static_cast<Td>(value);
  if (static_cast<Ts>(narrow) != value || (narrow < Td{}) != (value < Ts{}))
    throw RuntimeException("INTEGRAL_CAST failed", __FILE__, __LINE__, "RuntimeException");
  return narrow;
}
template<class T>
T INTEGRAL_CAST(int64_t value) {
  return INTEGRAL_CAST2<T, int64_t>(value);
}

/// What CHECK_RANGE_I64 and CHECK_RANGE_FLT do: OutOfRangeException outside the range or between two steps,
/// LogicalErrorException for an increment of 0.
GCBASE_API void CheckRange(int64_t value, int64_t minimum, int64_t maximum, int64_t increment,
                           const char* sourceFileName, unsigned int sourceLine);
GCBASE_API void CheckRange(double value, double minimum, double maximum, const char* sourceFileName,
                           unsigned int sourceLine);

}  // namespace GENICAM_NAMESPACE

#define GENICAM_EXCEPTION_REPORTER(Type) \
  GENICAM_NAMESPACE::ExceptionReporter<GENICAM_NAMESPACE::Type>(__FILE__, __LINE__, #Type).Report

#define GENERIC_EXCEPTION GENICAM_EXCEPTION_REPORTER(GenericException)
#define BAD_ALLOC_EXCEPTION GENICAM_EXCEPTION_REPORTER(BadAllocException)
#define INVALID_ARGUMENT_EXCEPTION GENICAM_EXCEPTION_REPORTER(InvalidArgumentException)
#define OUT_OF_RANGE_EXCEPTION GENICAM_EXCEPTION_REPORTER(OutOfRangeException)
#define PROPERTY_EXCEPTION GENICAM_EXCEPTION_REPORTER(PropertyException)
#define RUNTIME_EXCEPTION GENICAM_EXCEPTION_REPORTER(RuntimeException)
#define LOGICAL_ERROR_EXCEPTION GENICAM_EXCEPTION_REPORTER(LogicalErrorException)
#define ACCESS_EXCEPTION GENICAM_EXCEPTION_REPORTER(AccessException)
#define TIMEOUT_EXCEPTION GENICAM_EXCEPTION_REPORTER(TimeoutException)
#define DYNAMICCAST_EXCEPTION GENICAM_EXCEPTION_REPORTER(DynamicCastException)

#define CHECK_RANGE_I64(value, minimum, maximum, increment) \
  GENICAM_NAMESPACE::CheckRange((value), (minimum), (maximum), (increment), __FILE__, __LINE__)
#define CHECK_RANGE_FLT(value, minimum, maximum) \
  GENICAM_NAMESPACE::CheckRange((value), (minimum), (maximum), __FILE__, __LINE__)

#define CHECK_DYNAMIC_CAST_POINTER(pointer)                     \
  do {                                                          \
    if ((pointer) == nullptr)                                   \
      throw DYNAMICCAST_EXCEPTION("Unexpected type of object"); \
  } while (false)
