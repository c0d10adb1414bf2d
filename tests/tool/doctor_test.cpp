// What the tool finds out about machines with broken producers, and about cameras that are left out.
#include <gmock/gmock.h>
#include <miniz.h>
#ifndef _WIN32
#include <unistd.h>
#endif

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tool_run.h"

namespace tool_test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

std::string fileInArchive(const char* archive, const char* name) {
  mz_zip_archive zip{};
  if (mz_zip_reader_init_file(&zip, archive, 0) == 0)
    return {};
  std::size_t size = 0;
  void* const content = mz_zip_reader_extract_file_to_heap(&zip, name, &size, 0);
  std::string text(static_cast<const char*>(content), content == nullptr ? 0 : size);
  mz_free(content);
  mz_zip_reader_end(&zip);
  return text;
}

TEST(Doctor, IsContentWithTheVirtualCamerasAndWritesAReport) {
  const Environment home("HOME", VIRTUAL_DIR);
  const Environment secret("SOME_PASSWORD", "open sesame");
  const Outcome run = ovi(words("--json doctor --camera KV130001 --report report.zip"));
  EXPECT_EQ(run.code, 0) << run.out << run.err;
  const nlohmann::json json = nlohmann::json::parse(run.out);
  EXPECT_EQ(json["problems"], 0);
  EXPECT_EQ(json["producers"][0]["gentl"], "1.5");
  EXPECT_EQ(json["producers"][0]["loads"], true);
  EXPECT_EQ(json["interfaces"].size(), 2U);
  EXPECT_GT(json["images"][0]["frames"], 10);
  const auto observer = std::find_if(json["cameras"].begin(), json["cameras"].end(),
                                     [](const auto& camera) { return camera["serial"] == "OB000008"; });
  ASSERT_NE(observer, json["cameras"].end());
  EXPECT_EQ((*observer)["state"], "maker not served");

  const std::string report = fileInArchive("report.zip", "report.txt");
  EXPECT_THAT(report, AllOf(HasSubstr("KV130001"), HasSubstr("processors: "), HasSubstr("GENICAM_GENTL64_PATH="),
                            Not(HasSubstr("sesame"))));
#ifndef _WIN32
  EXPECT_THAT(report, AllOf(HasSubstr("GENICAM_GENTL64_PATH=~"), Not(HasSubstr(VIRTUAL_DIR))));
#endif
  EXPECT_THAT(fileInArchive("report.zip", "log.txt"), HasSubstr("New acquisition device"));
  EXPECT_EQ(nlohmann::json::parse(fileInArchive("report.zip", "report.json"))["problems"], 0);
  EXPECT_EQ(ovi(words("doctor --report report.txt")).code, 2);
}

TEST(Doctor, NamesFilesThatAreNoProducers) {
  const std::filesystem::path folder = freshFolder("broken");
  writeText(folder / "Text.cti", "This is no library.\n");
  writeText(folder / "Empty.cti", "");
  writeText(folder / "Foreign.cti", std::string("\x7F"
                                                "ELF\x02\x01\x01",
                                                7) +
                                        std::string(9, '\0') + std::string("\x03\0\xF3\0", 4));
  writeText(folder / "Old.cti", std::string("\x7F"
                                            "ELF\x01\x01\x01",
                                            7) +
                                    std::string(9, '\0') + std::string("\x03\0\x03\0", 4));
  writeText(folder / "Windows.cti", "MZ" + std::string(58, '\0') + std::string("\x40\0\0\0PE\0\0\x64\x86", 10));
  // Headers whose offsets lead nowhere.
  writeText(folder / "Torn.cti", readText(HOLLOW_DIR "/Hollow.cti").substr(0, 5000));
  writeText(folder / "Capital.CTI", "");
  const Environment path("GENICAM_GENTL64_PATH", searchPath({"broken", "nowhere", "~/cti", "\"quoted\"", HOLLOW_DIR}));
  const Environment settings("OVI_VIRTUAL_CONFIG", "nowhere.ini");
  const Outcome run = ovi({"doctor"});
  EXPECT_EQ(run.code, 1);
  for (const char* said :
       {"nowhere: there is no such folder", "only shells know ~",
        "VirtualCamera.cti says: Virtual camera producer: nowhere.ini: the settings file cannot be read",
        "without quotation marks", "Text.cti: text, no library", "Empty.cti: empty file",
        "Foreign.cti: ELF library for RISC-V, 64 bit; this program can load: ", "Old.cti: ELF library for x86, 32 bit",
        "Windows.cti: PE file, no library, for x86-64", "Torn.cti: does not load",
        "Capital.CTI: is not loaded: its extension", "Hollow.cti: is no GenTL producer", "KV130001"})
    EXPECT_THAT(run.out, HasSubstr(said));
  EXPECT_THAT(run.err, HasSubstr("problems were found"));
}

// A copy of the hostile producer, with the name of the library that it needs changed when another one is given.
void copyHostile(const std::filesystem::path& file, const std::string& needs = "VirtualCamera.cti") {
  std::string content = readText(HOSTILE_DIR "/Hostile.cti");
  for (std::size_t at = 0; (at = content.find("VirtualCamera.cti", at)) != std::string::npos; ++at)
    content.replace(at, needs.size(), needs);
  writeText(file, content);
}

TEST(Doctor, NamesMissingLibrariesAndFiles) {
  const std::filesystem::path folder = freshFolder("needy");
  std::filesystem::create_directory(folder / "Folder.cti");
  copyHostile(folder / "TLSimu.cti");
  copyHostile(folder / "Needy.cti", "VirtualAbsent.cti");
#ifndef _WIN32
  std::filesystem::create_symlink("nowhere", folder / "Link.cti");
#endif
  const Environment path("GENICAM_GENTL64_PATH", "needy");
  const std::string said = ovi({"doctor"}).out;
  EXPECT_THAT(said, AllOf(HasSubstr("needy: 1 producer file\n"), HasSubstr("Folder.cti: is a folder and not loaded"),
                          HasSubstr("TLSimu.cti: is never loaded"), Not(HasSubstr("TLSimu.cti: Kestrova")),
                          HasSubstr("Needy.cti: does not load: it needs VirtualAbsent.cti, which is not there")));
#ifndef _WIN32
  EXPECT_THAT(said, AllOf(HasSubstr("Link.cti: leads to no file"), HasSubstr("LD_LIBRARY_PATH")));
#endif
  // Also where the environment does not name the folder.
  EXPECT_THAT(ovi({"doctor", "--producer", "needy"}).out, HasSubstr("TLSimu.cti: is never loaded"));
  EXPECT_THAT(ovi({"list", "--producer", "needy/TLSimu.cti"}).err, HasSubstr("the library loads no file of this name"));
}

TEST(Doctor, NamesWhatProducersDoWrong) {
  struct Wrong {
    const char* order;
    std::vector<const char*> said;
  };
  const std::vector<Wrong> cases = {
      {"crash", {"crashes in its own start", "ask its maker for another version"}},
      {"crash GCInitLib", {"Hostile.cti: crashes in GCInitLib: ", "take its folder out of the search path"}},
      {"exit", {"Hostile.cti: ends the program that loads it, with exit code 3", "take its folder out"}},
      {"block TLOpen", {"Hostile.cti: hangs: TLOpen does not come back"}},
      {"fail GCInitLib -1001", {"Hostile.cti: GCInitLib returned GC_ERR_ERROR (-1001)", "driver or service"}},
      {"fail TLOpen -1004", {"TLOpen returned GC_ERR_RESOURCE_IN_USE", "close that program"}},
      {"fail IFUpdateDeviceList -1010",
       {"VirtualInterface1 of Hostile.cti: IFUpdateDeviceList returned GC_ERR_IO", "no producer tells of any"}},
      {"text IFGetDeviceInfo 1", {"camera VC-KV130001", "is left out: it tells no model"}},
      {"access 4", {"KV130001", "another program holds it", "close the other program"}},
      {"access 3", {"it cannot be opened", "another subnet"}},
  };
  for (const Wrong& wrong : cases) {
    SCOPED_TRACE(wrong.order);
    const Environment order("OVI_TEST_ORDER", wrong.order);
    const Outcome run = ovi({"doctor", "--timeout", "100", "--producer", HOSTILE_DIR "/Hostile.cti"});
    for (const char* said : wrong.said)
      EXPECT_THAT(run.out, HasSubstr(said)) << run.code << ' ' << run.err;
  }
  // The cameras of others are found all the same.
  const Environment path("GENICAM_GENTL64_PATH", HOSTILE_DIR);
  const Environment order("OVI_TEST_ORDER", "crash GCInitLib");
  EXPECT_THAT(ovi({"list"}).err, HasSubstr("try: ovi doctor"));
  const Outcome run = ovi({"doctor"});
  EXPECT_EQ(run.code, 1);
  EXPECT_THAT(run.out,
              AllOf(HasSubstr("Hostile.cti: crashes"), HasSubstr("KV130001"), HasSubstr("available, virtual")));
}

TEST(Producer, IsUsedWithoutItsNeighbours) {
  const std::filesystem::path folder = freshFolder("neighbours");
  writeText(folder / "Own.cti", readText(VIRTUAL_DIR "/VirtualCamera.cti"));
  copyHostile(folder / "Crash.cti");
  const Environment order("OVI_TEST_ORDER", "crash");
  writeText(folder / "Own.ini", "[Camera KV130001]\nUserName = Beside\n");
  const Outcome run = ovi({"list", "--json", "--producer", "neighbours/Own.cti"});
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("\"Beside\"")) << "the file beside the producer";
  EXPECT_EQ(nlohmann::json::parse(run.out).size(), 7U);
  EXPECT_THAT(run.out, Not(HasSubstr((std::filesystem::temp_directory_path() / "ovi-").string())))
      << "the link that the library was given";
  EXPECT_THAT(ovi({"doctor", "--producer", "neighbours/Own.cti"}).out, Not(HasSubstr("Crash.cti")));
  // One that finds what it needs only beside its own place.
  writeText(folder / "VirtualNearby.cti", readText(VIRTUAL_DIR "/VirtualCamera.cti"));
  copyHostile(folder / "Needy.cti", "VirtualNearby.cti");
  const Environment none("OVI_TEST_ORDER", "");
  EXPECT_EQ(ovi({"list", "--producer", "neighbours/Needy.cti"}).code, 0);
}

#ifndef _WIN32

TEST(Doctor, TellsWhatMayNotBeRead) {
  if (geteuid() == 0)
    GTEST_SKIP() << "root may read everything";
  const std::filesystem::path folder = freshFolder("forbidden");
  copyHostile(folder / "Secret.cti");
  std::filesystem::permissions(folder / "Secret.cti", std::filesystem::perms::none);
  const Environment path("GENICAM_GENTL64_PATH", "forbidden");
  EXPECT_THAT(ovi({"doctor"}).out, HasSubstr("Secret.cti: cannot be read: Permission denied"));
}

#endif

}  // namespace
}  // namespace tool_test
