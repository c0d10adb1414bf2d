// Settings of the machine that cost cameras or images when they are as systems come, and what kind of machine it is.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "doctor/finding.h"

namespace tool {

/// Network, USB and other settings, as far as this system shows them without special rights.
Findings examineMachine();

/// Cameras that hang on the machine's buses but that this user may not open.
Findings examineBuses();

/// System, processor, memory: label and value.
std::vector<std::pair<std::string, std::string>> machineFacts();

/// Folders below which camera makers install.
std::vector<std::string> usualProducerFolders();

}  // namespace tool
