#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "base/PathText.h"
#include "tests/support/Records.h"
#include "tests/support/TemporaryFolder.h"

namespace kv::test {
namespace {

std::filesystem::path FileOf(const std::string& name) {
  return PathFromUtf8(KV_TEST_DATA) / PathFromUtf8(name);
}

}  // namespace

std::optional<std::string> RecordOf(const std::string& name) {
  if (!std::filesystem::exists(FileOf(name))) return std::nullopt;
  return TemporaryFolder::Content(FileOf(name));
}

bool AreRecordsRenewed() {
  return std::getenv("KV_RENEW_LOOKS") != nullptr;
}

void RenewRecord(const std::string& name, const std::string& text, bool goesOn) {
  std::ofstream(FileOf(name), std::ios::binary | (goesOn ? std::ios::app : std::ios::trunc)) << text;
}

}  // namespace kv::test
