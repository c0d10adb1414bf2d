// The public header is clean C++17.
#include "ovi/ovi.h"

size_t sizeOfDiscoveryInCpp();
size_t sizeOfDiscoveryInCpp() {
  return sizeof(oviDiscoveryInfo);
}
