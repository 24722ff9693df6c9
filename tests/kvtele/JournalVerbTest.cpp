#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "journal/JournalFiles.h"
#include "tests/kvtele/CommandFixture.h"

namespace kv::test {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;

struct JournalVerb : ::testing::Test {
  CommandFixture fixture;

  JournalVerb() { fixture.recordsChanges = true; }
  Result On(const std::string& line) { return fixture.On("K220-22-R1", line); }
  [[nodiscard]] std::filesystem::path File() const { return SegmentFile(fixture.home.Path() / "Sessions/Default", 1); }
};

TEST_F(JournalVerb, ChecksAndSaysSoByItsExitCode) {
  const std::string err = On("write MI 0 5").err;
  const std::string hash = err.substr(err.find("Head: 3 ") + 8, 64);
  EXPECT_EQ(On("write MI 0 6").exit, 0);
  EXPECT_EQ(fixture.Run("journal check").exit, 0);
  EXPECT_EQ(fixture.Run("journal check --expect " + hash + ",3").exit, 0);
  EXPECT_EQ(fixture.Run("journal check --expect " + hash + ",4").exit, 5);

  std::filesystem::resize_file(File(), std::filesystem::file_size(File()) - 10);
  const Result cut = fixture.Run("--json journal check");
  EXPECT_EQ(cut.exit, 5);
  EXPECT_THAT(cut.out, AllOf(HasSubstr("\"sound\": false"), HasSubstr("\"fault\": \"cut\"")));
}

}  // namespace
}  // namespace kv::test
