// Closing what an application forgot to close when its process ends.
#pragma once

namespace OVI {

/**
 * Makes the producers that are loaded now be closed when the process exits, before their own static objects are
 * destroyed.
 *
 * A producer that is still open then tends to crash the process. To be called after each loading: what is registered
 * last runs first, so before the destructors of every library that was loaded before it.
 */
void closeProducersAtExit();

}  // namespace OVI
