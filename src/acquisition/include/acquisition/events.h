// Events of all modules, and the way of an image to the application and back.
#pragma once

#include <cstdint>

#include "ovi/ovi.h"

namespace OVI {

oviErr oviRegisterEvent(std::uint64_t moduleHandle, std::uint32_t kind, std::uint64_t* eventHandle,
                        std::uint32_t moduleSelector);
oviErr oviWaitForEvent(std::uint64_t eventHandle, std::uint64_t timeout, void** data);
oviErr oviGetNextImage(std::uint64_t eventHandle, oviNewBufferEventData* record, std::uint64_t timeout);
oviErr oviReleaseImage(std::uint64_t streamHandle, oviNewBufferEventData* record);
oviErr oviEventKill(std::uint64_t eventHandle);
oviErr oviUnregisterEvent(std::uint64_t eventHandle);
oviErr oviGetImageSize(std::uint64_t deviceHandle, std::int64_t* size);

}  // namespace OVI
