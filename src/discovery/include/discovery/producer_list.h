// The producer files on the machine, as applications ask for them.
#pragma once

#include <cstdint>

#include "ovi/ovi.h"

namespace OVI {

oviErr oviGetNumberOfTLProducers(std::uint32_t* count);
oviErr oviGetTLProducerPathByIndex(char* path, std::uint64_t pathSize, std::uint32_t index);
oviErr oviGetTLProducerInfobyFilePath(oviTLProducerInfos* info, const char* filePath);

}  // namespace OVI
