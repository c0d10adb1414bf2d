/// The enumerations and list types of the GenApi interface.
#pragma once

#include "Base/GCString.h"
#include "Base/GCStringVector.h"
#include "Base/GCTypes.h"
#include "GenApi/Compatibility.h"
#include "GenApi/GenApiDll.h"

// Some names begin with an underscore and a capital; they are the interface's own.
// NOLINTBEGIN(bugprone-reserved-identifier)
namespace GENAPI_NAMESPACE {

typedef enum _ESign { Signed = 0, Unsigned = 1, _UndefinedSign = 2 } ESign;

typedef enum _EAccessMode {
  NI = 0,  ///< not implemented
  NA = 1,  ///< not available
  WO = 2,
  RO = 3,
  RW = 4,
  _UndefinedAccesMode = 5,
  _CycleDetectAccesMode = 6
} EAccessMode;

typedef enum _EVisibility { Beginner = 0, Expert = 1, Guru = 2, Invisible = 3, _UndefinedVisibility = 99 } EVisibility;

typedef enum _ECachingMode { NoCache = 0, WriteThrough = 1, WriteAround = 2, _UndefinedCachingMode = 3 } ECachingMode;

typedef enum _ERepresentation {
  Linear = 0,
  Logarithmic = 1,
  Boolean = 2,
  PureNumber = 3,
  HexNumber = 4,
  IPV4Address = 5,
  MACAddress = 6,
  _UndefinedRepresentation = 7
} ERepresentation;
#define _UndefindedRepresentation _UndefinedRepresentation

typedef enum _EEndianess { BigEndian = 0, LittleEndian = 1, _UndefinedEndian = 2 } EEndianess;

typedef enum _ENameSpace { Custom = 0, Standard = 1, _UndefinedNameSpace = 2 } ENameSpace;

typedef enum _EStandardNameSpace {
  None = 0,
  GEV = 1,
  IIDC = 2,
  CL = 3,
  USB = 4,
  _UndefinedStandardNameSpace = 5
} EStandardNameSpace;

typedef enum _EYesNo { No = 0, Yes = 1, _UndefinedYesNo = 2 } EYesNo;

typedef enum _ESlope { Increasing = 0, Decreasing = 1, Varying = 2, Automatic = 3, _UndefinedESlope = 4 } ESlope;

typedef enum _EDisplayNotation {
  fnAutomatic = 0,
  fnFixed = 1,
  fnScientific = 2,
  _UndefinedEDisplayNotation = 3
} EDisplayNotation;

typedef enum _EInterfaceType {
  intfIValue = 0,
  intfIBase = 1,
  intfIInteger = 2,
  intfIBoolean = 3,
  intfICommand = 4,
  intfIFloat = 5,
  intfIString = 6,
  intfIRegister = 7,
  intfICategory = 8,
  intfIEnumeration = 9,
  intfIEnumEntry = 10,
  intfIPort = 11
} EInterfaceType;

typedef enum _ELinkType {
  ctParentNodes = 0,
  ctReadingChildren = 1,
  ctWritingChildren = 2,
  ctInvalidatingChildren = 3,
  ctDependingNodes = 4,
  ctTerminalNodes = 5,
  ctValueChangingChildren = 6
} ELinkType;

typedef enum _EIncMode { noIncrement = 0, fixedIncrement = 1, listIncrement = 2 } EIncMode;

typedef enum _EInputDirection { idFrom = 0, idTo = 1, idNone = 2 } EInputDirection;

typedef enum _EXMLValidation : uint32_t {
  xvLoad = 1,
  xvCycles = 2,
  xvSFNC = 4,
  xvDefault = 0,
  xvAll = 0xffffffffU,
  _UndefinedEXMLValidation = 0x8000000
} EXMLValidation;

typedef enum _EGenApiSchemaVersion { v1_0 = 1, v1_1 = 2, _UndefinedEGenApiSchemaVersion = -1 } EGenApiSchemaVersion;

typedef GENICAM_NAMESPACE::gcstring_vector StringList_t;

}  // namespace GENAPI_NAMESPACE
// NOLINTEND(bugprone-reserved-identifier)
