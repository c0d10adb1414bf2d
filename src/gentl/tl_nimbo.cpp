// The recording extension that one family of producers offers beyond the standard.
#include "gentl/tl_nimbo.h"

#include <stdexcept>

namespace GenTLCpp {

void TLNimbo::throwMissing() {
  throw std::runtime_error("Function not available in TL!");
}

}  // namespace GenTLCpp
