// Ctrl-C: every command that takes a while stops, closes the camera, and says so.
#include <gmock/gmock.h>

#include "tool_run.h"

namespace tool_test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

struct Interrupted {
  const char* command;
  const char* text;  ///< tells that it is in the middle of it
};

TEST(Interrupt, StopsEveryCommandWithTheCameraClosed) {
  freshFolder("pictures");
  writeText("sent.bin", "UserSet" + std::string(100'000, 'x'));
  const Environment slow("OVI_VIRTUAL_FIRMWARE_APPLY_MS", "60000");
  const std::vector<Interrupted> commands = {
      {"stream -c Mono --save raw --to pictures", "frame-"},
      {"stream -c Mono --set TriggerMode=On --verbose", "Timeout waiting"},
      {"grab -c Mono --set TriggerMode=On --verbose", "Timeout waiting"},
      {"watch Width -c Mono", "Width="},
      {"scan -c Mono --minutes 5 --verbose", "allocate Buffers"},
      {"bench -c Mono --seconds 60 --verbose", "allocate Buffers"},
      {"check " VIRTUAL_DIR "/VirtualCamera.cti", "Life cycle"},
      {"doctor --verbose", "Using search paths"},
  };
  for (const Interrupted& one : commands) {
    SCOPED_TRACE(one.command);
    const Outcome run = oviInterrupted(words(one.command), one.text);
    EXPECT_EQ(run.code, 130) << run.err;
    EXPECT_THAT(run.err, HasSubstr("ovi: interrupted"));
  }
}

}  // namespace
}  // namespace tool_test
