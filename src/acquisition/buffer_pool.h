// The buffers of a stream: how many bytes they need, and their way into the producer and out of it.
#pragma once

#include <cstdint>
#include <vector>

#include "ovi/ovi.h"

namespace OVI {

/** Records of buffers, in the order of the pool. They belong to the library for ever. */
using BufferRecords = std::vector<oviNewBufferEventData*>;

/**
 * Gives a stream `count` buffers, announced, entered in the registry and queued.
 *
 * @param size     bytes each; 0 asks producer and camera
 * @param records  records to use again, one a buffer, as far as they go
 */
oviErr createBuffers(std::uint64_t streamHandle, std::uint32_t count, std::uint64_t size, const BufferRecords& records);

/** Replaces the pool by one of the same length and with the same records if its buffers are too small by now. */
oviErr checkBufferSizeAndRecreate(std::uint64_t streamHandle);

/** Takes all buffers away, whatever state they are in, and appends their records. */
oviErr removeAllBuffersFromStream(std::uint64_t streamHandle, BufferRecords& outRecords);

}  // namespace OVI
