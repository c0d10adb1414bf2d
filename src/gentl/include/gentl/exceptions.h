// GenTL status codes as exceptions: one class per code, so that a caller catches what it can handle.
#pragma once

#include <exception>
#include <string>
#include <utility>

#include "gentl_interface/GenTL.h"

namespace GenTLCpp {

/** Codes of the binding itself, outside the range of the standard. */
inline constexpr GC_ERROR kLoadLibraryFailed = -10001;
inline constexpr GC_ERROR kModuleClosed = -10002;

/** A failed GenTL call: its code, and a text that ends with the code. */
class GenTLException : public std::exception {
 public:
  GenTLException(const std::string& text, GC_ERROR code);

  const char* what() const noexcept override { return message_.c_str(); }
  GC_ERROR code() const noexcept { return code_; }

 private:
  std::string message_;
  GC_ERROR code_;
};

template<GC_ERROR Code>
class CodedException : public GenTLException {
 public:
  explicit CodedException(const std::string& text) : GenTLException(text, Code) {}
};

using ErrorException = CodedException<GC_ERR_ERROR>;
using NotInitializedException = CodedException<GC_ERR_NOT_INITIALIZED>;
using NotImplementedException = CodedException<GC_ERR_NOT_IMPLEMENTED>;
using ResourceInUseException = CodedException<GC_ERR_RESOURCE_IN_USE>;
using AccessDeniedException = CodedException<GC_ERR_ACCESS_DENIED>;
using InvalidHandleException = CodedException<GC_ERR_INVALID_HANDLE>;
using InvalidIdException = CodedException<GC_ERR_INVALID_ID>;
using NoDataException = CodedException<GC_ERR_NO_DATA>;
using InvalidParameterException = CodedException<GC_ERR_INVALID_PARAMETER>;
using IoException = CodedException<GC_ERR_IO>;
using TimeoutException = CodedException<GC_ERR_TIMEOUT>;
using AbortException = CodedException<GC_ERR_ABORT>;
using InvalidBufferException = CodedException<GC_ERR_INVALID_BUFFER>;
using NotAvailableException = CodedException<GC_ERR_NOT_AVAILABLE>;
using InvalidAddressException = CodedException<GC_ERR_INVALID_ADDRESS>;
using BufferTooSmallException = CodedException<GC_ERR_BUFFER_TOO_SMALL>;
using InvalidIndexException = CodedException<GC_ERR_INVALID_INDEX>;
using ParsingChunkDataException = CodedException<GC_ERR_PARSING_CHUNK_DATA>;
using InvalidValueException = CodedException<GC_ERR_INVALID_VALUE>;
using ResourceExhaustedException = CodedException<GC_ERR_RESOURCE_EXHAUSTED>;
using OutOfMemoryException = CodedException<GC_ERR_OUT_OF_MEMORY>;
using BusyException = CodedException<GC_ERR_BUSY>;
using LoadLibraryException = CodedException<kLoadLibraryFailed>;
using ClosedException = CodedException<kModuleClosed>;

/** Whether checkGenTLError throws: the standard knows the status as a fault, -1022 to -1001. */
constexpr bool isFailure(GC_ERROR status) noexcept {
  return status <= GC_ERR_ERROR && status >= GC_ERR_BUSY;
}

namespace detail {
/** For a status other than success: throws if the standard knows the code, else returns. */
void throwForStatus(GC_ERROR status, bool withProducerText);
}  // namespace detail

/**
 * Throws the exception of a failed status. Every other status counts as success.
 *
 * @param withProducerText  whether the producer's last-error text goes into the exception's text
 */
inline void checkGenTLError(GC_ERROR status, bool withProducerText = true) {
  if (status != GC_ERR_SUCCESS) {
    detail::throwForStatus(status, withProducerText);
  }
}

}  // namespace GenTLCpp
