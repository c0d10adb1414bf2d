// What the real-time producer needs of the machine, checked before it is loaded.
#pragma once

#include "ovi/ovi.h"

namespace OVI {

/**
 * Checks that no hypervisor is present and that processors are set aside for the real-time producer.
 *
 * The outcome is kept in the settings file `<Public Documents>/Kestrova/Pelt/Hux.ini` under "KitharaEnvironment". Where
 * an administrator sets "EnvironmentSet = 1" there, the kept outcome is the answer and nothing is checked.
 *
 * @return Success, OVI_ERR_HYPERVISOR_NOT_DISABLED or OVI_ERR_NO_KITHARA_PROCESSORS
 */
oviErr isKitharaEnvironmentSet();

}  // namespace OVI
