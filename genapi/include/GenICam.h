/// The whole GenICam interface: Base and GenApi.
#pragma once

#include "Base/GCBase.h"
#include "GenApi/GenApi.h"
