// What is known about a device: the record that applications get.
#pragma once

#include <string>

#include "gentl/device_info.h"
#include "gentl/tl_interface.h"
#include "ovi/ovi.h"

namespace OVI {

/** Asks device, interface and producer for every field on its own: one that fails is empty, with a debug line. */
void fillDeviceRecord(oviDeviceInfo& record, const GenTLCpp::TLInterface& tlInterface, const std::string& interfaceID,
                      const std::string& deviceID);

/** Whether the library serves the device: it tells a model, and its vendor is one of those on the list. */
bool isSupportedDevice(const oviDeviceInfo& record) noexcept;

}  // namespace OVI
