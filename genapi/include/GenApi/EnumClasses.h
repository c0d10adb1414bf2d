/// Conversion between the enumerations and their spellings in camera descriptions.
#pragma once

#include "GenApi/Types.h"

namespace GENAPI_NAMESPACE {

/// For every enumeration E below: EClass::FromString and EClass::ToString.
///
/// FromString is false for an unknown spelling and leaves the value alone. ToString gives the underscore name for an
/// unknown value.
template<class E>
class EnumClassT {
 public:
  static bool FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, E* pValue);
  static void ToString(GENICAM_NAMESPACE::gcstring& ValueStr, E* pValue) { ValueStr = ToString(*pValue); }
  static GENICAM_NAMESPACE::gcstring ToString(E Value);
};

class ESignClass : public EnumClassT<ESign> {};
class EAccessModeClass : public EnumClassT<EAccessMode> {};
class EVisibilityClass : public EnumClassT<EVisibility> {};
class ECachingModeClass : public EnumClassT<ECachingMode> {};
class ERepresentationClass : public EnumClassT<ERepresentation> {};
class EEndianessClass : public EnumClassT<EEndianess> {};
class ENameSpaceClass : public EnumClassT<ENameSpace> {};
class EStandardNameSpaceClass : public EnumClassT<EStandardNameSpace> {};
class EYesNoClass : public EnumClassT<EYesNo> {};
class ESlopeClass : public EnumClassT<ESlope> {};
class EDisplayNotationClass : public EnumClassT<EDisplayNotation> {};
class EInputDirectionClass : public EnumClassT<EInputDirection> {};
class EGenApiSchemaVersionClass : public EnumClassT<EGenApiSchemaVersion> {};

}  // namespace GENAPI_NAMESPACE
