// The way of a filled buffer from the producer to its record.
#pragma once

#include <cstdint>

#include "gentl/event.h"
#include "ovi/ovi.h"

namespace OVI {

/**
 * Waits for a filled buffer and describes it in its record.
 *
 * Allocates nothing, formats nothing and holds no lock while the producer is called, unless something fails. The event
 * is one for filled buffers.
 *
 * @param outRecord  set when the result is Success, unless the buffer has no record
 * @param outCopy    when not null: receives a copy of the record, made before a stop can give the buffer away again
 */
oviErr waitForImage(GenTLCpp::Event& event, std::uint64_t timeout, oviNewBufferEventData*& outRecord,
                    oviNewBufferEventData* outCopy = nullptr);

}  // namespace OVI
