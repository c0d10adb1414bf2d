/// The versioned namespaces of the interface and the short names that applications use for them.
#pragma once

#include "GenICamVersion.h"

#define GENICAM_CONCATENATE_AGAIN(a, b, c, d) a##b##c##d
#define GENICAM_CONCATENATE(a, b, c, d) GENICAM_CONCATENATE_AGAIN(a, b, c, d)

#ifndef GENICAM_NAMESPACE_DEFINED
#define GENICAM_NAMESPACE_DEFINED
#ifdef GENICAM_COMPANY_SUFFIX
#define GENICAM_NAMESPACE                                                                                \
  GENICAM_CONCATENATE(GENICAM_CONCATENATE(GenICam_, GENICAM_VERSION_MAJOR, _, GENICAM_VERSION_MINOR), _, \
                      GENICAM_COMPANY_SUFFIX, )
#else
#define GENICAM_NAMESPACE GENICAM_CONCATENATE(GenICam_, GENICAM_VERSION_MAJOR, _, GENICAM_VERSION_MINOR)
#endif
#endif

#ifndef GENAPI_NAMESPACE_DEFINED
#define GENAPI_NAMESPACE_DEFINED
#ifdef GENICAM_COMPANY_SUFFIX
#define GENAPI_NAMESPACE                                                                              \
  GENICAM_CONCATENATE(GENICAM_CONCATENATE(GenApi_, GENAPI_VERSION_MAJOR, _, GENAPI_VERSION_MINOR), _, \
                      GENICAM_COMPANY_SUFFIX, )
#else
#define GENAPI_NAMESPACE GENICAM_CONCATENATE(GenApi_, GENAPI_VERSION_MAJOR, _, GENAPI_VERSION_MINOR)
#endif
#endif

namespace GENICAM_NAMESPACE {}
namespace GENAPI_NAMESPACE {}

#ifndef GENICAM_SUPPRESS_NAMESPACE_ALIAS
namespace GenICam = GENICAM_NAMESPACE;
namespace GenApi = GENAPI_NAMESPACE;
#endif
