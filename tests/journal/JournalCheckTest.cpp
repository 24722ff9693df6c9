#include "journal/JournalCheck.h"

#include "tests/journal/JournalFixture.h"

namespace kv {
namespace {

struct JournalCheckTest : testing::Test, test::JournalFixture {
  std::string whole;

  JournalCheckTest() {
    for (int i = 0; i < 3; ++i) (void)End(Begin());  // records 2 to 7 behind the start
    whole = Bytes();
  }
};

TEST_F(JournalCheckTest, FindsEveryFlippedBitAndNamesTheRecord) {
  std::filesystem::remove(File());
  std::filesystem::remove(HeadFile(places));
  Reopen();
  (void)End(Begin());
  whole = Bytes();
  std::fstream file(File(), std::ios::binary | std::ios::in | std::ios::out);
  const auto put = [&](std::size_t at, char byte) { file.seekp(static_cast<std::streamoff>(at)).put(byte).flush(); };
  for (std::size_t at = 0; at < whole.size(); ++at) {
    const auto number = 1 + std::count(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(at), '\n');
    for (unsigned bit = 0; bit < 8; ++bit) {
      put(at, static_cast<char>(static_cast<unsigned char>(whole[at]) ^ (1U << bit)));
      const JournalCheck check = Check();
      ASSERT_FALSE(check.IsSound()) << at << " bit " << bit;
      ASSERT_EQ(check.findings.front().number, static_cast<std::uint64_t>(number)) << at << " bit " << bit;
    }
    put(at, whole[at]);
  }
  EXPECT_TRUE(Check().IsSound());
}

TEST_F(JournalCheckTest, FindsEveryCut) {
  for (std::size_t length = whole.size(); length-- > 0;) {
    std::filesystem::resize_file(File(), length);
    const bool isBoundary = length == 0 || whole[length - 1] == '\n';
    const bool isEmpty = whole.find('\n') >= length;
    const JournalCheck check = Check();
    ASSERT_EQ(check.findings.size(), 1U) << length;
    const JournalFault expected = isEmpty      ? JournalFault::Gone
                                  : isBoundary ? JournalFault::OlderCopy
                                               : JournalFault::Cut;
    ASSERT_EQ(check.findings.front().fault, expected) << length;
  }
}

}  // namespace
}  // namespace kv
