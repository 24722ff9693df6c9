#include "journal/JournalCheck.h"

#include <functional>

#include "tests/journal/JournalFixture.h"

namespace kv {
namespace {

using Lines = std::vector<std::string>;

struct JournalCheckTest : testing::Test, test::JournalFixture {
  std::string whole;

  JournalCheckTest() {
    for (int i = 0; i < 3; ++i) (void)End(Begin());  // records 2 to 7 behind the start
    whole = Bytes();
  }
  static std::string Joined(const Lines& lines) {
    std::string bytes;
    for (const std::string& line : lines) bytes += line;
    return bytes;
  }
  // A record altered by somebody who knows the form: its own hash is right.
  static std::string Resealed(const std::string& line, const std::string& from, const std::string& to) {
    auto read = ParseRecord(line.substr(0, line.size() - 1));
    EXPECT_EQ(read->record.what, from);
    read->record.what = to;
    return PrintRecord(read->record) + "\n";
  }
};

TEST_F(JournalCheckTest, NamesWhatWasDoneToTheFile) {
  struct Case {
    const char* name;
    std::function<void(Lines&)> change;
    std::string findings;
    std::string withoutHead;  // the same where no head is kept
  };
  const Case cases[] = {
      {"nothing", [](Lines&) {}, "", ""},
      {"a line out", [](Lines& l) { l.erase(l.begin() + 3); }, "missing 4", "missing 4"},
      {"the first line out", [](Lines& l) { l.erase(l.begin()); }, "missing 1", "missing 1"},
      {"two lines out", [](Lines& l) { l.erase(l.begin() + 2, l.begin() + 4); }, "missing 3", "missing 3"},
      {"a value changed", [](Lines& l) { l[3].replace(l[3].find("anna"), 4, "hans"); }, "altered 4", "altered 4"},
      {"one sealed anew", [](Lines& l) { l[3] = Resealed(l[3], "write operands", "nothing"); }, "altered 4",
       "altered 4"},
      {"doubled", [](Lines& l) { l.insert(l.begin() + 4, l[3]); }, "doubled 4", "doubled 4"},
      {"doubled at the end", [](Lines& l) { l.push_back(l[3]); }, "doubled 4", "doubled 4"},
      {"exchanged", [](Lines& l) { std::swap(l[2], l[3]); }, "exchanged 3", "exchanged 3"},
      {"the last line out", [](Lines& l) { l.pop_back(); }, "olderCopy 7", ""},
      {"the last two out", [](Lines& l) { l.resize(l.size() - 2); }, "olderCopy 7", ""},
      {"the end in a record", [](Lines& l) { l.back().resize(70); }, "cut 7", ""},
      {"everything", [](Lines& l) { l.clear(); }, "gone 7", ""},
      {"the last one sealed anew",
       [](Lines& l) {
         l.pop_back();
         l.back() = Resealed(l.back(), "write operands", "nothing");
       },
       "olderCopy 7", ""},
      {"another line end", [](Lines& l) { l[3].insert(l[3].size() - 1, "\r"); }, "altered 4", "altered 4"},
      {"an empty line", [](Lines& l) { l.insert(l.begin() + 3, "\n"); }, "altered 4; doubled 4",
       "altered 4; doubled 4"},
  };
  const std::string head = Content(HeadFile(places));
  for (const Case& each : cases) {
    Lines lines = LinesOf(whole);
    each.change(lines);
    Put(Joined(lines));
    EXPECT_EQ(Findings(), each.findings) << each.name;
    std::filesystem::remove(HeadFile(places));
    EXPECT_EQ(Findings(), each.withoutHead) << each.name;
    EXPECT_FALSE(Check().IsAnchored());
    std::ofstream(HeadFile(places), std::ios::binary) << head;
  }
}

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

TEST_F(JournalCheckTest, TellsAnOlderCopyThatWasGoneOnWith) {
  const Lines lines = LinesOf(whole);
  Put(Joined({lines.begin(), lines.begin() + 3}));
  const JournalAnchor anchor{7, lines.back().empty() ? "" : lines.back().substr(0, 64), "the head that was given"};
  (void)End(Begin());  // the program records what it found
  EXPECT_EQ(Findings({anchor}), "foundThen 4; olderCopy 7");
  (void)End(Begin());
  EXPECT_EQ(Findings({anchor}), "foundThen 4; replaced 7");
}

TEST_F(JournalCheckTest, ReadsAnchorsAsThePrograms) {
  const std::string hash(64, 'a');
  for (const std::string& text : {hash + ",7", "7 " + hash, hash + ", 7", "7," + hash}) {
    const auto anchor = ParseAnchor(text);
    ASSERT_TRUE(anchor) << text;
    EXPECT_EQ(anchor->number, 7U);
    EXPECT_EQ(anchor->hash, hash);
  }
  for (const std::string& text : {hash, std::string("7"), hash + ",0", hash + ",x", std::string(), "7 " + hash + "a"}) {
    EXPECT_FALSE(ParseAnchor(text)) << text;
  }
}

TEST_F(JournalCheckTest, SaysWhatIsNoFault) {
  (void)Begin("restore");  // and the power fails
  pacer.SetLocalTime(std::chrono::local_days{std::chrono::year{2023} / 1 / 1});
  (void)End(Begin());
  std::ofstream(File(), std::ios::binary | std::ios::app) << "half a record";
  const JournalCheck check = Check();
  EXPECT_TRUE(check.IsSound()) << Findings();
  EXPECT_EQ(check.openRecords, std::vector<std::uint64_t>{8});
  EXPECT_EQ(check.clockBack, std::vector<std::uint64_t>{9});
  EXPECT_EQ(check.tornBytes, 13U);
}

// Whatever is in the file: an end, and no more memory than a line takes.
TEST_F(JournalCheckTest, TakesHostileFiles) {
  Put(std::string(std::size_t{3} << 20, 'x') + "\n" + whole);
  EXPECT_THAT(Findings(), testing::StartsWith("altered 1; doubled 1"));
  std::string numbers;
  for (std::uint64_t i = 1; i < 5000; ++i) numbers += PrintRecord({.number = i * 2}) + "\n";
  Put(numbers);
  const JournalCheck check = Check();
  EXPECT_EQ(check.findings.size(), 100U);
  EXPECT_GT(check.moreFindings, 4000U);
  std::string deep = R"({"n":1,"kind":"end","x":)" + std::string(100'000, '[');
  Put(deep + "\n");
  EXPECT_FALSE(Check().IsSound());
}

}  // namespace
}  // namespace kv
