// What only Windows has: the debugger's channel, the ANSI code page in paths and texts, and the folder of a load.
#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/files.h"
#include "platform/platform.h"

namespace OVI::platform {
namespace {

std::wstring heard;

// A debugger hears of its channel by exceptions of these codes; so does the process itself.
LONG CALLBACK listen(EXCEPTION_POINTERS* exception) {
  constexpr DWORD kNarrowText = 0x40010006;
  constexpr DWORD kWideText = 0x4001000A;
  const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
  if (record.ExceptionCode == kWideText) {
    heard += reinterpret_cast<const wchar_t*>(record.ExceptionInformation[1]);
  } else if (record.ExceptionCode == kNarrowText) {
    for (const char* c = reinterpret_cast<const char*>(record.ExceptionInformation[1]); *c != '\0'; ++c)
      heard += static_cast<wchar_t>(static_cast<unsigned char>(*c));
  } else {
    return EXCEPTION_CONTINUE_SEARCH;
  }
  return EXCEPTION_CONTINUE_EXECUTION;
}

TEST(WindowsPlatform, TextReachesTheDebugger) {
  void* const listener = AddVectoredExceptionHandler(1, listen);
  debugOutput(std::wstring(L"wide\n"));
  debugOutput(std::string("narrow\n"));
  RemoveVectoredExceptionHandler(listener);
  EXPECT_EQ(heard, L"wide\nnarrow\n");
}

TEST(WindowsPlatform, PathsOutsideAsciiNameTheSameFileAsTheSystem) {
  const std::string name = fromUtf8("gr\xC3\xBC\xC3\x9F.bin");
  EXPECT_EQ(toUtf8(name), "gr\xC3\xBC\xC3\x9F.bin");
  const std::filesystem::path wide(L"gr\u00FC\u00DF.bin");
  const std::string content("1\n2\r\n\0", 6);
  ASSERT_EQ(writeWholeFile(name, content.data(), content.size()), "");
  EXPECT_EQ(std::filesystem::file_size(wide), content.size());
  EXPECT_EQ(readFile(name), content);
  std::vector<std::uint8_t> read;
  EXPECT_EQ(readWholeFile(name, content.size(), read), "");
  EXPECT_EQ(std::string(read.begin(), read.end()), content);
  std::filesystem::remove(wide);
}

TEST(WindowsPlatform, WhatTheCodePageLacksIsReplaced) {
  EXPECT_EQ(narrow(std::wstring(L"a\u4E2Db")), "a?b");
}

TEST(WindowsPlatform, ALoadLeavesTheApplicationsLibraryFolder) {
  std::array<wchar_t, MAX_PATH> before{};
  std::array<wchar_t, MAX_PATH> after{};
  ASSERT_NE(SetDllDirectoryW(L"C:\\windows"), 0);
  GetDllDirectoryW(static_cast<DWORD>(before.size()), before.data());
  EXPECT_EQ(loadLibrary("folder/missing.cti"), nullptr);
  EXPECT_EQ(lastErrorText().substr(0, 6), "Module");
  GetDllDirectoryW(static_cast<DWORD>(after.size()), after.data());
  SetDllDirectoryW(nullptr);
  EXPECT_STREQ(after.data(), before.data());
}

TEST(WindowsPlatform, FoldersComeAsTheSystemGivesThem) {
  EXPECT_EQ(tempDirectory().back(), '\\');
  ASSERT_NE(SetEnvironmentVariableW(L"TMP", L"C:\\\u4E2D"), 0);
  EXPECT_EQ(tempDirectory(), "C:\\\xE4\xB8\xAD\\") << "a name that the code page lacks";
  ASSERT_TRUE(publicDocuments());
  EXPECT_TRUE(std::filesystem::is_directory(*publicDocuments()));
}

}  // namespace
}  // namespace OVI::platform
