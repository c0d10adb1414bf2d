/// Declarations without definitions of what applications name in their own headers.
#pragma once

#include "Base/GCTypes.h"

namespace GENICAM_NAMESPACE {
class gcstring;
class gcstring_vector;
class GenericException;
}  // namespace GENICAM_NAMESPACE

namespace GENAPI_NAMESPACE {
struct IBase;
struct INode;
struct IValue;
struct ICategory;
struct IInteger;
struct IFloat;
struct IBoolean;
struct IString;
struct IEnumeration;
struct IEnumEntry;
struct ICommand;
struct IRegister;
struct ISelector;
struct IPort;
struct IPortStacked;
struct IPortConstruct;
struct IPortRecorder;
struct IPortReplay;
struct IChunkPort;
struct INodeMap;
struct IDestroy;
struct IDeviceInfo;
struct IUserData;
class CLock;
class CNodeCallback;
class CNodeMapFactory;
class node_vector;
class value_vector;
}  // namespace GENAPI_NAMESPACE
