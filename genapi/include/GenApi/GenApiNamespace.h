/// The namespace GenApi.
#pragma once

#include "Base/GCNamespace.h"
