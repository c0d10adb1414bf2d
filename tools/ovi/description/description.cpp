// A camera description made into a node map without a camera.
#include "description/description.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <string_view>
#include <system_error>

#include "paths.h"
#include "tool_error.h"

namespace tool {

namespace {

using Clock = std::chrono::steady_clock;

std::string contentOf(const std::filesystem::path& file) {
  std::error_code error;
  if (!std::filesystem::exists(file, error))
    throw ToolError("there is no file " + pathText(file), "give the path of a description, .xml or .zip",
                    ExitCode::kUsage);
  if (std::filesystem::is_directory(file, error))
    throw ToolError(pathText(file) + " is a folder", "give a description, .xml or .zip", ExitCode::kUsage);
  std::ifstream stream(file, std::ios::binary);
  std::string content{std::istreambuf_iterator<char>(stream), {}};
  if (!stream.is_open() || stream.bad())
    throw ToolError("cannot read " + pathText(file));
  if (content.empty())
    throw ToolError(pathText(file) + " is empty");
  return content;
}

struct Meaning {
  std::string_view part;  // of the warning
  const char* meaning;
};

constexpr std::array kMeanings = {
    Meaning{"is no version number",
            "the version is taken as 0; programs that ask for the schema or device version see that"},
    Meaning{"which is not there",
            "the reference leads nowhere: what depends on it is left out or not implemented. Add the node or mend the "
            "name"},
    Meaning{"which is of the wrong kind",
            "the reference leads to a node that has no such value: what depends on it is left out or not implemented. "
            "Mend the name"},
    Meaning{"and is not implemented", "programs see the node, but can do nothing with it. Add what it lacks"},
    Meaning{"has too long a name for its", "programs see the enumeration without entries. Shorten its name"},
    Meaning{"depends on itself",
            "the value could never be computed, so programs see the node as not implemented. Break the circle"},
    Meaning{"is defined twice, its features are joined",
            "programs see one category with the features of both. Give each category once"},
    Meaning{"is defined twice, the first definition counts",
            "the later definition has no effect. Rename it or take it out"},
    Meaning{"without a name is skipped", "nothing can refer to it, so it is not part of the map. Add a Name"},
    Meaning{"were made to resemble it", "looking up such names would take too long. Rename the node"},
    Meaning{"with a name that is too long is skipped", "no program shows such a name. Shorten it"},
    Meaning{"which is too much, and is skipped",
            "each entry takes over every element of the struct; they would fill the memory. Divide the struct"},
    Meaning{"before the description and is skipped", "other programs may refuse the file. Take it out"},
    Meaning{"what follows the end of the description", "other programs may refuse the file. Take it out"},
    Meaning{"there is no SchemaMajorVersion", "other programs may refuse the file. Add the three Schema...Version"},
    Meaning{"is no node and is skipped", "the element and all in it are not part of the map. Is its name misspelt?"},
    Meaning{"is not known and is skipped", "the element has no effect on its node. Is its name misspelt?"},
    Meaning{"is taken for", "the name is not written as the schema has it; other programs may refuse the file"},
    Meaning{"has no Length", "the length that the camera means may be another. Add a Length"},
    Meaning{"has no pPort", "other programs may refuse the register. Add a pPort"},
    Meaning{"is no number",
            "the element has no effect, or its node is not implemented when it cannot be without it. Write a number"},
    Meaning{"only the first counts", "other programs may refuse the file. Take the second one out"},
    Meaning{"that is no UTF-8", "other programs may refuse the file. Save it as UTF-8, or declare its encoding"},
};

}  // namespace

Description::Description(const std::filesystem::path& file, std::unique_ptr<GenApi::IPort> port)
    : port_(std::move(port)) {
  const auto begin = Clock::now();
  content_ = contentOf(file);
  readTime_ = Clock::now() - begin;
  load(pathText(file));
}

Description::Description(const std::string& name, std::string content, std::unique_ptr<GenApi::IPort> port)
    : port_(std::move(port)),
      content_(std::move(content)) {
  load(name);
}

void Description::load(const std::string& name) {
  const auto begin = Clock::now();
  zipped_ = content_.starts_with("PK");
  try {
    GenApi::CNodeMapFactory factory(zipped_ ? GenApi::ContentType_ZippedXml : GenApi::ContentType_Xml, content_.data(),
                                    content_.size());
    nodeMap_ = factory.CreateNodeMap();
    loadTime_ = Clock::now() - begin;
    GenApi::NodeList_t nodes;
    nodeMap_->GetNodes(nodes);
    for (GenApi::INode* node : nodes)
      if (node->GetPrincipalInterfaceType() == GenApi::intfIPort)
        nodeMap_->Connect(port_.get(), node->GetName());
  } catch (const GenICam::GenericException& error) {
    throw ToolError(name + ": no usable description: " + error.GetDescription());
  }
}

Description::~Description() {
  if (auto* const end = dynamic_cast<GenApi::IDestroy*>(nodeMap_))
    end->Destroy();
}

std::uint32_t Description::lineOf(const std::string& nodeName) const {
  const std::size_t at = zipped_ ? std::string::npos : content_.find("Name=\"" + nodeName + "\"");
  if (at == std::string::npos)
    return 0;
  return static_cast<std::uint32_t>(
             std::count(content_.begin(), content_.begin() + static_cast<std::ptrdiff_t>(at), '\n')) +
         1;
}

std::string meaningOf(const std::string& warning) {
  for (const Meaning& candidate : kMeanings)
    if (warning.find(candidate.part) != std::string::npos)
      return candidate.meaning;
  return {};
}

}  // namespace tool
