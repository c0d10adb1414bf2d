// The name of a node's principal interface.
#include "GenApi/INode.h"

namespace GENAPI_NAMESPACE {

GENICAM_NAMESPACE::gcstring GetInterfaceName(IBase* pBase) {
  // In the order of EInterfaceType.
  static constexpr const char* kNames[] = {"IValue",  "IBase",     "IInteger",  "IBoolean",     "ICommand",   "IFloat",
                                           "IString", "IRegister", "ICategory", "IEnumeration", "IEnumEntry", "IPort"};
  const INode* const node = dynamic_cast<INode*>(pBase);
  const size_t type = node != nullptr ? static_cast<size_t>(node->GetPrincipalInterfaceType()) : size_t{intfIBase};
  return type < std::size(kNames) ? kNames[type] : kNames[intfIBase];
}

}  // namespace GENAPI_NAMESPACE
