/// An event adapter for events whose ID the producer tells.
#pragma once

#include "GenApi/EventAdapter.h"

namespace GENAPI_NAMESPACE {

class GENAPI_DECL CEventAdapterGeneric : public CEventAdapter {
 public:
  using CEventAdapter::CEventAdapter;

  /// Without an ID there is no telling which event it is: throws RuntimeException.
  void DeliverMessage(const uint8_t msg[], uint32_t numBytes) override;
  /// Hands the data to the ports of that event and invalidates all nodes of it, which fires their callbacks. The data
  /// is copied.
  ///
  /// @param EventID  hexadecimal, as in the description
  void DeliverMessage(const uint8_t msg[], uint32_t numBytes, const GENICAM_NAMESPACE::gcstring& EventID);
  void DeliverMessage(const uint8_t msg[], uint32_t numBytes, uint64_t EventID);
};

}  // namespace GENAPI_NAMESPACE
