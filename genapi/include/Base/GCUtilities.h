/// Environment variables, URLs and small helpers of the GenICam interface.
#pragma once

#include "Base/GCException.h"
#include "Base/GCString.h"
#include "Base/GCStringVector.h"

namespace GENICAM_NAMESPACE {

GCBASE_API bool DoesEnvironmentVariableExist(const gcstring& VariableName);
/// RuntimeException if the variable is not set.
GCBASE_API gcstring GetValueOfEnvironmentVariable(const gcstring& VariableName);
GCBASE_API bool GetValueOfEnvironmentVariable(const gcstring& VariableName, gcstring& VariableContent);

/// Backslashes become slashes, unsafe characters %xx.
GCBASE_API gcstring UrlEncode(const gcstring& Input);
GCBASE_API gcstring UrlDecode(const gcstring& Input);

/// Replaces every $(NAME) by the variable's value; RuntimeException if one is not set.
///
/// @param ReplaceBlankBy20  also turn blanks into %20
GCBASE_API void ReplaceEnvironmentVariables(gcstring& Buffer, bool ReplaceBlankBy20 = false);

/// The getters fall back to the environment variable and throw RuntimeException if that is not set either.
GCBASE_API gcstring GetGenICamCacheFolder();
GCBASE_API void SetGenICamCacheFolder(const gcstring& path);
GCBASE_API gcstring GetGenICamLogConfig();
GCBASE_API void SetGenICamLogConfig(const gcstring& path);
GCBASE_API gcstring GetGenICamCLProtocolFolder();
GCBASE_API void SetGenICamCLProtocolFolder(const gcstring& path);

/// Splits at any of the delimiters; empty tokens are dropped.
GCBASE_API void Tokenize(const gcstring& str, gcstring_vector& tokens, const gcstring& delimiters = " ");
/// Full paths of the entries that match a template such as "/path/*.xml", sorted; environment variables are replaced.
GCBASE_API void GetFiles(const gcstring& FileTemplate, gcstring_vector& FileNames, const bool DirectoriesOnly = false);

}  // namespace GENICAM_NAMESPACE
