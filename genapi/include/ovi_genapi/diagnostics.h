/// What the engine can tell about a node map beyond the GenApi interface: for tools and tests, not for applications.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "GenApi/INodeMap.h"

namespace GenApiEngine {

/// Something in a description that was wrong and forgiven.
struct DescriptionWarning {
  std::uint32_t line;  ///< counted from 1
  std::string text;
};

struct NodeMapDiagnostics {
  std::vector<DescriptionWarning> warnings;
  std::size_t warningsSuppressed = 0;  ///< further ones that were not kept
  std::size_t nodes = 0;
  std::size_t textBytes = 0;   ///< of the description
  std::size_t modelBytes = 0;  ///< of its parsed form, which all maps of the same content share; the text included
  std::size_t mapBytes = 0;    ///< of this node map alone
  // Nanoseconds. The first four were spent once, when the content was first seen.
  std::int64_t prepareTime = 0;
  std::int64_t parseTime = 0;
  std::int64_t buildTime = 0;
  std::int64_t linkTime = 0;
  std::int64_t mapTime = 0;
};

/// Something in a description that the schema forbids.
struct DescriptionRemark {
  std::string node;  ///< empty when it concerns the whole description
  std::string text;
};

/// What the description holds against the schema without any consequence in this engine, but for which other programs
/// may refuse it as a whole: elements in the wrong order, missing ones, words and numbers that are none, exchanged
/// bits.
///
/// Throws InvalidArgumentException for a node map that is not one of this engine's.
std::vector<DescriptionRemark> reviewOf(const GENAPI_NAMESPACE::INodeMap& nodeMap);

/// Throws InvalidArgumentException for a node map that is not one of this engine's.
NodeMapDiagnostics diagnosticsOf(const GENAPI_NAMESPACE::INodeMap& nodeMap);

/// The kind of a node as its description names it: "Integer", "MaskedIntReg", ...; "StructEntry" for entries of
/// StructReg.
std::string nodeKindOf(const GENAPI_NAMESPACE::INode& node);

}  // namespace GenApiEngine
