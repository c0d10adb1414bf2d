/// All of Base.
#pragma once

#include "Base/GCException.h"
#include "Base/GCString.h"
#include "Base/GCStringVector.h"
#include "Base/GCTypes.h"
#include "Base/GCUtilities.h"
