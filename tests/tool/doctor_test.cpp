// What the tool finds out about machines with broken producers.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "tool_run.h"

namespace tool_test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

TEST(Doctor, IsContentWithTheVirtualCameras) {
  const Outcome run = ovi(words("doctor --json --report report.txt"));
  EXPECT_EQ(run.code, 0) << run.out << run.err;
  const nlohmann::json json = nlohmann::json::parse(run.out);
  EXPECT_THAT(json["Producers"].dump(), AllOf(HasSubstr("VirtualCamera.cti"), HasSubstr("loads")));
  EXPECT_THAT(json["Cameras"].dump(), HasSubstr("KV130001"));
  EXPECT_THAT(readText("report.txt"), AllOf(HasSubstr("KV130001"), HasSubstr("Log of the search")));
}

TEST(Doctor, NamesWhatIsBroken) {
  const std::filesystem::path folder = freshFolder("broken");
  writeText(folder / "Text.cti", "This is no library.\n");
  writeText(folder / "Empty.cti", "");
  writeText(folder / "Foreign.cti", std::string("\x7F"
                                                "ELF\x02\x01\x01",
                                                7) +
                                        std::string(11, '\0') + std::string("\xF3\0", 2));
  const Environment path("GENICAM_GENTL64_PATH", searchPath({"broken", "nowhere", HOLLOW_DIR}));
  const Outcome run = ovi({"doctor"});
  EXPECT_EQ(run.code, 1);
  for (const char* said : {"nowhere: there is no such folder", "Text.cti: text, no library", "Empty.cti: empty file",
                           "Foreign.cti: ELF library for RISC-V", "Hollow.cti: does not load", "KV130001"})
    EXPECT_THAT(run.out, HasSubstr(said));
  EXPECT_THAT(run.err, HasSubstr("problems were found"));
}

}  // namespace
}  // namespace tool_test
