// Settings saved, compared and brought back.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "tool_run.h"

namespace tool_test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

TEST(Settings, ComeBackFromAFileInWhateverOrderTheyDependOnEachOther) {
  // The offset fits only after the width is smaller, whose line comes first here.
  const Outcome saved =
      ovi(words("save set.txt -c Mono --set Width=320 --set OffsetX=64 --set ExposureTime=1234 --set "
                "PixelFormat=Mono12p"));
  ASSERT_EQ(saved.code, 0) << saved.err;
  const std::string text = readText("set.txt");
  for (const char* line :
       {"\nWidth = 320\n", "\nOffsetX = 64\n", "\nPixelFormat = Mono12p\n", "\nExposureTime = 1234\n"})
    EXPECT_THAT(text, HasSubstr(line));
  for (const char* other : {"\nDeviceUserID", "\nFileAccess", "\nTLParamsLocked"})
    EXPECT_THAT(text, Not(HasSubstr(other)));

  const Outcome different = ovi(words("diff set.txt -c Mono"));
  EXPECT_EQ(different.code, 1);
  EXPECT_THAT(different.out, HasSubstr("Width\t1280\t320"));
  EXPECT_THAT(different.err, HasSubstr("ovi load set.txt --camera Mono"));

  const Outcome loaded = ovi(words("load set.txt -c Mono"));
  EXPECT_EQ(loaded.code, 0) << loaded.err;
  writeText("turned.txt", "OffsetX = 64\nWidth = 320\n");
  EXPECT_EQ(ovi(words("load turned.txt -c Mono")).code, 0);

  const Outcome same =
      ovi(words("diff set.txt -c Mono --set Width=320 --set OffsetX=64 --set ExposureTime=1234 --set "
                "PixelFormat=Mono12p"));
  EXPECT_EQ(same.code, 0) << same.out << same.err;
  EXPECT_THAT(same.out, IsEmpty());
}

TEST(Settings, SayWhatCouldNotBeSetAndWhy) {
  writeText(
      "wrong.txt",
      "# a comment\n\nWidth = 320\nHieght = 10\nTriggerDelay [TriggerSelector=Nothing] = 1\nPixelFormat = RGB8\n");
  const Outcome run = ovi(words("load wrong.txt -c Mono --json"));
  EXPECT_EQ(run.code, 1);
  const nlohmann::json json = nlohmann::json::parse(run.out);
  EXPECT_EQ(json["settings"], 4);
  EXPECT_EQ(json["failed"].size(), 3U);
  for (const char* said : {"3 of 4 settings", "Did you mean Height?", "\"Nothing\"", "no entry \"RGB8\""})
    EXPECT_THAT(run.err, HasSubstr(said));

  writeText("broken.txt", "Width = 320\nnothing at all\n");
  const Outcome broken = ovi(words("load broken.txt -c Mono"));
  EXPECT_EQ(broken.code, 2);
  EXPECT_THAT(broken.err, HasSubstr("broken.txt, line 2: \"nothing at all\""));
}

}  // namespace
}  // namespace tool_test
