/* The public header is plain C11. */
#include "ovi/ovi.h"

size_t sizeOfDiscoveryInC(void);
size_t sizeOfDiscoveryInC(void) {
  return sizeof(oviDiscoveryInfo);
}
