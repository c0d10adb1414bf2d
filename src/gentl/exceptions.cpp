// From GenTL status codes to exceptions.
#include "gentl/exceptions.h"

#include <array>
#include <cstddef>
#include <memory>

#include "gentl/producer.h"

namespace GenTLCpp {

namespace {

template<GC_ERROR Code>
[[noreturn]] void raise(const std::string& text) {
  throw CodedException<Code>(text);
}

struct Fault {
  const char* text;
  void (*raise)(const std::string& text);
};

// From -1001 downwards, without a gap.
constexpr GC_ERROR kFirstFault = GC_ERR_ERROR;
constexpr std::array kFaults = {
    Fault{"Unspecified runtime exception.", raise<GC_ERR_ERROR>},
    Fault{"Module or resource not initialized.", raise<GC_ERR_NOT_INITIALIZED>},
    Fault{"Requested operation not implemented.", raise<GC_ERR_NOT_IMPLEMENTED>},
    Fault{"Requested resource is already in use.", raise<GC_ERR_RESOURCE_IN_USE>},
    Fault{"Requested operation is not allowed.", raise<GC_ERR_ACCESS_DENIED>},
    Fault{"Given handle does not support the operation.", raise<GC_ERR_INVALID_HANDLE>},
    Fault{"ID could not be connected to a resource.", raise<GC_ERR_INVALID_ID>},
    Fault{"Function has no data to work on.", raise<GC_ERR_NO_DATA>},
    Fault{"Parameter not valid or out of range.", raise<GC_ERR_INVALID_PARAMETER>},
    Fault{"Communication error, read or write to remote device failed.", raise<GC_ERR_IO>},
    Fault{"Operation timed out before completion.", raise<GC_ERR_TIMEOUT>},
    Fault{"Operation aborted.", raise<GC_ERR_ABORT>},
    Fault{"Insufficient amount of announced buffers to start acquisition.", raise<GC_ERR_INVALID_BUFFER>},
    Fault{"Resource or information is not available.", raise<GC_ERR_NOT_AVAILABLE>},
    Fault{"Address is out of range or invalid.", raise<GC_ERR_INVALID_ADDRESS>},
    Fault{"Buffer used is too small for operation.", raise<GC_ERR_BUFFER_TOO_SMALL>},
    Fault{"Provided index is out of range.", raise<GC_ERR_INVALID_INDEX>},
    Fault{"Error parsing chunk data buffer.", raise<GC_ERR_PARSING_CHUNK_DATA>},
    Fault{"Attempting to write an invalid register value.", raise<GC_ERR_INVALID_VALUE>},
    Fault{"The requested resource is exhausted.", raise<GC_ERR_RESOURCE_EXHAUSTED>},
    Fault{"System and/or hardware has run out of memory.", raise<GC_ERR_OUT_OF_MEMORY>},
    Fault{"Operation cannot be performed. Responsible module is busy.", raise<GC_ERR_BUSY>},
};
static_assert(kFaults.size() == kFirstFault - GC_ERR_BUSY + 1);

}  // namespace

GenTLException::GenTLException(const std::string& text, GC_ERROR code)
    : message_(code == -1 ? text : text + " (ID: " + std::to_string(code) + ")"),
      code_(code) {}

void detail::throwForStatus(GC_ERROR status, bool withProducerText) {
  std::string producerText;
  if (withProducerText) {
    if (const std::shared_ptr<GenTLProducer> producer = GenTLProducer::current()) {
      producerText = producer->getLastErrorText();
    }
  }
  if (!isFailure(status)) {
    return;
  }
  const Fault& fault = kFaults[static_cast<std::size_t>(kFirstFault - status)];
  fault.raise(std::string(fault.text) + " (Message from the source: " + producerText + ")");
}

}  // namespace GenTLCpp
