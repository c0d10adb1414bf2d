// The end of the library's use.
#pragma once

#include "ovi/ovi.h"

namespace OVI {

/** Ends all waits, drops every handle, closes every producer. @return NotInitialized, else Success */
oviErr oviClose();

}  // namespace OVI
