#include "file_registers.h"

#include "library_fixture.h"

namespace scripted {
namespace {

std::string registerNode(const std::string& name, FileRegisters::Register address) {
  return "<IntReg Name=\"" + name + "\"><Address>" + std::to_string(address) +
         "</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable>"
         "<Sign>Signed</Sign><Endianess>LittleEndian</Endianess></IntReg>\n";
}

std::string enumerationNode(const std::string& name, FileRegisters::Register address,
                            const std::vector<std::string>& entries) {
  std::string text = "<Enumeration Name=\"" + name + "\">";
  for (std::size_t i = 0; i < entries.size(); ++i)
    text += "<EnumEntry Name=\"" + entries[i] + "\"><Value>" + std::to_string(i) + "</Value></EnumEntry>";
  return text + "<pValue>" + name + "Reg</pValue></Enumeration>\n" + registerNode(name + "Reg", address);
}

}  // namespace

std::string FileRegisters::description(std::int64_t bufferLength, const std::vector<std::string>& files,
                                       const std::string& moreFeatures, const std::string& moreNodes) {
  return describe(
      "FileSelector FileOpenMode FileOperationSelector FileOperationExecute FileAccessOffset FileAccessLength "
      "FileOperationResult FileOperationStatus FileSize FileChecksum FileAccessBuffer " +
          moreFeatures,
      enumerationNode("FileSelector", kSelector, files) +
          enumerationNode("FileOpenMode", kOpenMode, {"Read", "Write"}) +
          enumerationNode("FileOperationSelector", kOperation, {"Open", "Close", "Read", "Write"}) +
          enumerationNode("FileOperationStatus", kStatus, {"Success", "Failure", "FatalError", "Other"}) +
          "<Command Name=\"FileOperationExecute\"><pValue>ExecuteReg</pValue><CommandValue>1</CommandValue></Command>" +
          registerNode("ExecuteReg", kExecute) + registerNode("FileAccessOffset", kOffset) +
          registerNode("FileAccessLength", kLength) + registerNode("FileOperationResult", kResult) +
          registerNode("FileSize", kSize) + registerNode("FileChecksum", kChecksum) + moreNodes +
          "<Register Name=\"FileAccessBuffer\"><Address>" + std::to_string(kBuffer) + "</Address><Length>" +
          std::to_string(bufferLength) +
          "</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><pInvalidator>ExecuteReg</pInvalidator></"
          "Register>");
}

}  // namespace scripted
