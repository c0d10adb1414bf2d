// Commands and what they say: data on standard output, everything else on standard error, failures that help.
#include <gmock/gmock.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <vector>

#include "tool_run.h"

namespace tool_test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

struct Failure {
  const char* command;
  int code;
  std::vector<const char*> said;  // all of them, on standard error
};

TEST(Failures, NameTheThingTheReasonAndTheNextCommand) {
  const std::vector<Failure> cases = {
      {"lits", 2, {"there is no command \"lits\"", "Did you mean list?"}},
      {"list --jsno", 2, {"--jsno", "ovi list --help"}},
      {"get", 2, {"FEATURE", "ovi get --help"}},
      {"stream --frames many", 2, {"--frames", "many"}},
      {"get Widht", 2, {"using the virtual camera KV130001", "--camera", "Did you mean Width?"}},
      {"info KV13001", 2, {"no camera \"KV13001\"", "Did you mean KV130001?", "KV120002", "ovi list"}},
      {"get Widht -c 1", 2, {"has no feature \"Widht\". Did you mean Width?", "ovi features Width --camera 1"}},
      {"get Root -c 1", 2, {"Root is a category"}},
      {"get AcquisitionStart -c 1 -m strem", 2, {"no module \"strem\"", "stream", "system"}},
      {"set Width=99999 -c 1", 2, {"Width = 99999 is out of range: 16 .. ", "nearest ", "ovi set Width="}},
      {"set Width=99999999999999999999 -c 1", 2, {"Width = 99999999999999999999 is out of range: 16 .. "}},
      {"set Width=1001 -c 1", 2, {"Width = 1001 does not fit: 16 .. ", "step 4", "nearest 1000", "ovi set Width=1000"}},
      {"set =5 -c 1", 2, {"\"=5\" is no assignment", "ovi set FEATURE=5"}},
      {"set DeviceUserID=0123456789012345678901234567890123456789012345678901234567890123456789 -c 1",
       2,
       {"is too long: up to 32 characters"}},
      {"set Width=wide -c 1", 2, {"Width = wide is no integer: 16 .. "}},
      {"set Width -c 1", 2, {"\"Width\" is no assignment", "ovi set Width=VALUE"}},
      {"set ExposureTime=-1 -c Mono", 2, {"ExposureTime = -1 is out of range: ", "nearest "}},
      {"set ReverseX=maybe -c 1", 2, {"ReverseX = maybe is no boolean: 0 or 1"}},
      {"set PixelFormat=mono8 -c 1",
       2,
       {"PixelFormat has no entry \"mono8\". Did you mean Mono8?", "Mono12p", "ovi set PixelFormat=Mono8 --camera 1"}},
      {"set DeviceModelName=Other -c 1", 1, {"read-only now. It always is: DeviceModelName is RO in the camera's"}},
      {"--set TLParamsLocked=1 set Width=640 -c 1", 1, {"Width = 640", "TLParamsLocked = 1 locks it"}},
      {"stream --frames -5 -c 1", 2, {"\"-5\" is less than 0"}},
      {"help strem", 2, {"there is no command \"strem\". Did you mean stream?"}},
      {"features Exposuer -c 1", 2, {"Did you mean Exposure"}},
      {"grab -c 1 -o picture.jpg", 2, {"picture.jpg", ".png", ".raw"}},
      {"grab -c 1 -o nowhere/picture.png", 1, {"cannot write nowhere/picture.png"}},
      {"stream -c 1 -n 1 --save jpg", 2, {"no image format \"jpg\"", "png, raw or none", "--to"}},
      {"stream -c 1 -n 1 --to pictures", 2, {"no image is saved", "--save png"}},
      {"stream -c 1 -c Mono -n 1", 2, {"named twice"}},
      {"scan -c 1", 2, {"either a number of images or of minutes"}},
      {"mem read 0xGG -c 1", 2, {"\"0xGG\" is no address"}},
      {"mem write 0x0 123 -c 1", 2, {"\"123\" is no row of bytes"}},
      {"file get UserSet one.bin -c 1", 2, {"no file \"UserSet\"", "UserSet1", "ovi file list --camera 1"}},
      {"file put missing.bin -c 1", 2, {"there is no file missing.bin"}},
      {"list --producer missing.cti", 2, {"there is no producer", "missing.cti"}},
      {"load missing.txt -c 1", 2, {"cannot read missing.txt"}},
      {"load . -c 1", 2, {". is a folder"}},
      {"diff -c 1", 2, {"a file or another camera"}},
      {"--set list", 2, {"--set takes FEATURE=VALUE, and \"list\" is none"}},
      {"stream -c 1 -n 1 --buffers 99999999", 2, {"99999999 buffers of 1.2 MiB need more than this machine's memory"}},
  };
  for (const Failure& one : cases) {
    SCOPED_TRACE(one.command);
    const Outcome run = ovi(words(one.command));
    EXPECT_EQ(run.code, one.code) << run.err;
    EXPECT_THAT(run.out, IsEmpty());
    for (const char* text : one.said)
      EXPECT_THAT(run.err, HasSubstr(text));
  }
}

#ifndef _WIN32
TEST(Data, ThatCannotBeWrittenFailTheCommand) {
  const Outcome full = shell({"/bin/sh", "-c", "'" OVI_PROGRAM "' list >/dev/full"});
  EXPECT_EQ(full.code, 1);
  EXPECT_THAT(full.err, HasSubstr("cannot write to standard output: No space left on device"));
  // A reader that goes away ends it quietly, with the camera stopped.
  const Outcome gone =
      shell({"/bin/sh", "-c", "{ '" OVI_PROGRAM "' stream -c 1 --save raw --to gone; echo $? >&2; } | head -n 1"});
  EXPECT_THAT(gone.out, HasSubstr("frame-"));
  EXPECT_THAT(gone.err, testing::EndsWith("it ended early: nobody reads the output\n141\n"));
}
#endif

TEST(Cameras, AreListedAndAcceptedByWhateverIsPrinted) {
  const Outcome list = ovi({"list", "--json"});
  ASSERT_EQ(list.code, 0) << list.err;
  EXPECT_THAT(list.err, IsEmpty());
  const nlohmann::json cameras = nlohmann::json::parse(list.out);
  ASSERT_GE(cameras.size(), 2U);
  const nlohmann::json& camera = cameras[1];
  EXPECT_EQ(camera["virtual"], true);
  for (const char* key : {"serial", "model", "userName", "displayName", "id"}) {
    const Outcome info = ovi({"--json", "info", camera[key].get<std::string>()});
    ASSERT_EQ(info.code, 0) << key << ": " << info.err;
    EXPECT_EQ(nlohmann::json::parse(info.out)["serial"], camera["serial"]) << key;
  }
  const Outcome numbered = ovi({"get", "DeviceSerialNumber", "--camera", "2"});
  EXPECT_EQ(numbered.out, camera["serial"].get<std::string>() + "\n");

  const Outcome overview = ovi({});
  EXPECT_EQ(overview.code, 0);
  for (const char* next : {"ovi list", "ovi grab", "ovi stream"})
    EXPECT_THAT(overview.out, HasSubstr(next));
}

TEST(Cameras, AreThereWithoutAnySearchPathAndAreExplainedWhenTheyAreNot) {
  const Environment nothing("GENICAM_GENTL64_PATH", "");
  EXPECT_EQ(ovi({"list"}).code, 0);  // the virtual ones beside the tool

  const std::filesystem::path folder = freshFolder("broken");
  writeText(folder / "Text.cti", "This is no library.\n");
  const Outcome run = ovi({"list", "--producer", (folder / "Text.cti").string()});
  EXPECT_EQ(run.code, 1);
  EXPECT_THAT(run.out, IsEmpty());
  for (const char* text : {"no camera was found", "searched:", "Text.cti", "ovi doctor"})
    EXPECT_THAT(run.err, HasSubstr(text));

  // A broken one does not take the others with it.
  const Environment both("GENICAM_GENTL64_PATH", searchPath({"broken", HOLLOW_DIR, VIRTUAL_DIR}));
  EXPECT_EQ(ovi({"info", "KV130001"}).code, 0);
}

TEST(Features, AreShownReadAndSetOnEveryModule) {
  const Outcome tree = ovi(words("features -c 1 --json"));
  ASSERT_EQ(tree.code, 0) << tree.err;
  const nlohmann::json features = nlohmann::json::parse(tree.out);
  const auto width = std::find_if(features.begin(), features.end(), [](const auto& f) { return f["name"] == "Width"; });
  ASSERT_NE(width, features.end());
  EXPECT_EQ((*width)["kind"], "integer");
  EXPECT_EQ((*width)["access"], "rw");
  EXPECT_EQ((*width)["range"]["min"], 16);

  EXPECT_EQ(ovi(words("set Width=640 Height=0x1E0 PixelFormat=Mono12p -c 1")).out,
            "Width=640\nHeight=480\nPixelFormat=Mono12p\n");
  EXPECT_EQ(ovi(words("get ReverseX -c 1 --set ReverseX=on")).out, "1\n");
  const Outcome both = ovi(words("get Width PixelFormat -c 1 --json --set Width=64"));
  EXPECT_EQ(nlohmann::json::parse(both.out), nlohmann::json({{"Width", "64"}, {"PixelFormat", "Mono8"}}));
  for (const char* module : {"system", "interface", "local", "stream"}) {
    const Outcome run = ovi({"features", "-c", "1", "--module", module, "--json"});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_FALSE(nlohmann::json::parse(run.out).empty()) << module;
  }
}

TEST(Features, AreWatched) {
  const Outcome run = ovi(words("watch Width DeviceModelName -c 1 --seconds 0.2"));
  EXPECT_EQ(run.code, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("\tWidth="));
  EXPECT_THAT(run.out, HasSubstr("\tDeviceModelName="));
}

TEST(Memory, IsReadAndWrittenAsItLiesInTheCamera) {
  // Registers are read byte by byte as they lie, so they show the order that memory must have on either camera.
  for (const char* camera : {"Mono", "BigEndian"}) {
    SCOPED_TRACE(camera);
    const Outcome feature = ovi({"features", "LUTValueAll", "--json", "-c", camera});
    const nlohmann::json where = nlohmann::json::parse(feature.out)[0]["register"];
    const std::string address = std::to_string(where["address"].get<std::uint64_t>());
    const std::string length = std::to_string(where["length"].get<std::uint64_t>());
    const std::string bytes = ovi({"get", "LUTValueAll", "-c", camera}).out;
    ASSERT_GT(bytes.size(), 1024U);
    const Outcome read = ovi({"mem", "read", address, length, "--json", "-c", camera});
    ASSERT_EQ(read.code, 0) << read.err;
    EXPECT_EQ(nlohmann::json::parse(read.out)["bytes"].get<std::string>() + "\n", bytes);
    const Outcome dump = ovi({"mem", "read", address, "16", "-c", camera});
    EXPECT_THAT(dump.out, HasSubstr("  " + bytes.substr(0, 2) + " " + bytes.substr(2, 2) + " "));
    // The second value of the table, which the camera would refuse with its bytes the other way round.
    const std::string second = std::to_string(where["address"].get<std::uint64_t>() + 4);
    EXPECT_EQ(ovi({"mem", "write", second, bytes.substr(8, 8), "-c", camera}).code, 0);
  }
  const Outcome nothing = ovi(words("mem -cMono read 0x0 4"));
  EXPECT_EQ(nothing.code, 1);
  EXPECT_THAT(nothing.err, HasSubstr("reading 4 bytes at 0x0 failed"));
}

TEST(Files, ComeBackAsTheyWereSent) {
  std::string content = "UserSet, and then some bytes ";
  for (int i = 0; i < 5000; ++i)
    content += static_cast<char>(i * 7);
  writeText("sent.bin", content);
  std::filesystem::remove("received.bin");
  // The file says by its first bytes which of the camera's files it is for.
  const Outcome run = ovi(words("file put sent.bin --read-back received.bin -c 1"));
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_EQ(readText("received.bin"), content);

  const Outcome list = ovi(words("file list --json -c 1"));
  ASSERT_EQ(list.code, 0) << list.err;
  EXPECT_THAT(list.out, HasSubstr("\"UserSet1\""));

  const Outcome firmware = ovi(words("file get Firmware firmware.bin -c 1"));
  ASSERT_EQ(firmware.code, 0) << firmware.err;
  const Outcome refused = ovi(words("file put firmware.bin -c 1"));
  EXPECT_EQ(refused.code, 2);
  EXPECT_THAT(refused.err, HasSubstr("ovi file put firmware.bin --as Firmware --yes --camera 1"));
  const Outcome unknown = ovi({"file", "put", "firmware.bin", "--as", "Frimware", "-c", "1"});
  EXPECT_THAT(unknown.err, HasSubstr("Did you mean Firmware?"));
}

TEST(Help, HasExamplesForEveryCommand) {
  const Outcome help = ovi({"--help"});
  EXPECT_EQ(help.code, 0);
  EXPECT_THAT(help.out, Not(HasSubstr("probe")));
  for (const char* command : {"list", "info", "features", "get", "set", "watch", "grab", "stream", "scan", "bench",
                              "save", "load", "diff", "file", "mem", "doctor"}) {
    EXPECT_THAT(help.out, HasSubstr(command));
    EXPECT_THAT(ovi({command, "--help"}).out, HasSubstr(std::string("Examples:\n  ovi ") + command)) << command;
  }
}

}  // namespace
}  // namespace tool_test
