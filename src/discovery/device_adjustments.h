// What certain producers need around the opening of a device.
#pragma once

#include <cstdint>

#include "gentl/transport_layer.h"
#include "ovi/ovi.h"

namespace OVI {

/** On the producer of a device that is about to be opened. Never fails the opening. */
void beforeDeviceOpen(const oviDeviceInfo& record, GenTLCpp::TransportLayer& transportLayer);

/** On a device that was just opened. Whatever goes wrong is ignored. */
void afterDeviceOpen(std::uint64_t deviceHandle);

}  // namespace OVI
