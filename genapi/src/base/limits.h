// The engine's limits in one place, each with its reason: a description is input from outside and may be hostile.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ovi_genapi/description_limit.h"

namespace GenApiEngine {

/// What the XML parser's tree may take while a description is loaded. Real ones of 100 MB, of which there are none,
/// would need 400 MB; text of nothing but tags would need sixteen times its size.
inline constexpr std::size_t kMaxTreeBytes = std::size_t{1} << 30;

/// A property takes 16 bytes of memory and at least 12 of text, but the entries of a StructReg each take over what that
/// says: few bytes of text could mean any number of them.
inline constexpr std::size_t kMaxProperties = std::size_t{1} << 24;

/// A property keeps the length of its text in 24 bits; the longest text seen in the field has a few kilobytes.
inline constexpr std::uint32_t kMaxTextLength = (1U << 24) - 1;

/// The longest name seen in the field has 80 bytes. Every warning names its node.
inline constexpr std::uint32_t kMaxNameLength = 1U << 14;

/// Every entry of an enumeration takes over the enumeration's name: few bytes of text could mean any number of them.
inline constexpr std::size_t kMaxRepeatedNameBytes = std::size_t{64} << 20;

/// How far from its place a name may lie in the table of names. The longest way among millions of names is some 400;
/// names that were made to have one place would make every look-up go through all of them.
inline constexpr std::size_t kMaxProbes = 1024;

/// A reader of warnings wants the first ones; a description that is all wrong must not fill the memory with them.
inline constexpr std::size_t kMaxWarnings = 1000;

/// How deep one node may ask another. The longest chain seen in the field has 13 nodes, and every level costs a few
/// hundred bytes of a stack that belongs to a thread of the application.
inline constexpr std::uint32_t kMaxDepth = 200;

/// How many nodes one call may ask in all. Without it a chain of uncached nodes that each use the next one twice would
/// take for ever; the largest cameras need some thousands.
inline constexpr std::uint32_t kMaxSteps = 200000;

/// Registers longer than this are not read as a whole. File buffers of cameras have up to some megabytes.
inline constexpr std::int64_t kMaxRegisterLength = std::int64_t{64} << 20;

/// What a port keeps of raw register contents before it forgets them all: a computed address may take any value.
inline constexpr std::size_t kMaxRawCacheBytes = std::size_t{4} << 20;

/// What one polling call may be told to have passed, in milliseconds, so that sums never overflow.
inline constexpr std::int64_t kMaxPollStep = std::int64_t{1} << 40;

/// A frame holds the variables that a formula reads and its value stack. One of usual size lies on the thread's stack,
/// where there may be one for each of the nodes that ask each other; a larger one is allocated, an unreasonable one
/// refused.
inline constexpr std::size_t kSmallFormulaFrame = 96;
inline constexpr std::size_t kMaxFormulaFrame = 1024;

/// Expressions are compiled in place at each use; these two end what would grow without bound. The longest formulas of
/// real cameras need a few hundred.
inline constexpr std::size_t kMaxFormulaInstructions = 32768;
inline constexpr std::size_t kMaxFormulaCharacters = std::size_t{4} << 20;

/// Expressions that name expressions that name expressions...; also what ends a circle of them.
inline constexpr int kMaxExpressionDepth = 24;

/// A selector of more values is no list of things that exist; nobody waits for its end.
inline constexpr std::int64_t kMaxSelectorValues = 65536;

/// Digits of a printed number behind these are noise in any double.
inline constexpr std::int64_t kMaxDisplayPrecision = 64;

/// How many models, and how much text of models, the process keeps for the next node map of the same content.
inline constexpr std::size_t kMaxCachedModels = 16;
inline constexpr std::size_t kMaxCachedTextBytes = std::size_t{64} << 20;

}  // namespace GenApiEngine
