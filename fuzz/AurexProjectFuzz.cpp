// Any bytes as a project of the Aurex family: what is taken has a topic for each one that is announced, and together
// with the heads they are the file. The bytes are tried as they are and descrambled, so that a corpus can be read.

#include <cstdint>
#include <string>

#include "download/AurexProjectFile.h"
#include "download/DecodeFile.h"
#include "fuzz/Require.h"

namespace {

void Check(const std::string& bytes) {
  const auto project = kv::ParseAurexProject(bytes, "fuzz");
  if (!project) {
    Require(!project.error().where.what.empty(), "a refused file is refused with the reason");
    return;
  }
  std::size_t size = 150;
  std::uint64_t data = 0;
  for (const kv::AurexProjectTopic& topic : project->topics) {
    Require(topic.data.size() <= std::size_t{1} << 20, "a topic fits a message");
    size += 12 + topic.data.size();
    data += topic.data.size();
  }
  Require(size == bytes.size() || size + 1 == bytes.size(), "the topics fill the file");
  Require(data == project->dataBytes, "the amount is that of the topics");
  Require(project->topics.size() >= project->announcedTopics, "no topic is missing");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  Check(bytes);
  Check(kv::DecodeBytes(bytes));
  return 0;
}
