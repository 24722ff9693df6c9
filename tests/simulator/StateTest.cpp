#include <gtest/gtest.h>

#include "ControllerFixture.h"
#include "base/PathText.h"
#include "tests/support/TemporaryFolder.h"

namespace sim::test {
namespace {

TEST(State, AFileThatIsCutIsRefused) {
  const kv::TemporaryFolder folder;
  SimulatorOptions options = Options("K330");
  options.stateFile = kv::Utf8FromPath(folder.Path() / "state");
  EXPECT_TRUE(Fixture(options).It().SaveState());
  const std::string good = kv::TemporaryFolder::Content(folder.Path() / "state");
  for (std::size_t cut = 0; cut < good.size(); cut += good.size() / 20 + 1) {
    folder.Put("state", good.substr(0, cut));
    EXPECT_FALSE(Controller::Create(options)) << cut;
  }
  folder.Put("state", good);
  EXPECT_TRUE(Controller::Create(options));
}

}  // namespace
}  // namespace sim::test
