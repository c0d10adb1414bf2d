// The records in which filled buffers reach the application.
#pragma once

#include <cstdint>

#include "gentl_interface/GenTL.h"
#include "ovi/ovi.h"

namespace OVI {

/**
 * A new record, zero-filled.
 *
 * Records are never freed: an application may hold one longer than the stream that filled it. This is the one place
 * where the library keeps memory for ever; a pool that is rebuilt uses its records again.
 */
oviNewBufferEventData* createImageRecord();

/** Ties the record to the buffer that it is announced with. */
void setBufferHandle(oviNewBufferEventData& record, std::uint64_t bufferHandle) noexcept;

/** Copies the producer's event data behind the record, which must be one of createImageRecord. @return the copy */
void* keepEventData(oviNewBufferEventData& record, const EVENT_NEW_BUFFER_DATA& data) noexcept;

}  // namespace OVI
