/// Marks for declarations of the GenApi interface; empty, as the engine is linked statically.
#pragma once

#include "GenApi/GenApiNamespace.h"

#ifndef GENAPI_DECL
#define GENAPI_DECL
#endif
#ifndef GENAPI_DECL_ABSTRACT
#define GENAPI_DECL_ABSTRACT
#endif
