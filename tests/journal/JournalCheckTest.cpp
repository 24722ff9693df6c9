#include "journal/JournalCheck.h"

#include <functional>

#include "base/Texts.h"
#include "digest/Sha256.h"
#include "journal/Acknowledgement.h"
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
  static std::string Digest(std::string_view bytes) {
    Sha256 digest;
    digest.Add(bytes);
    return digest.Hex();
  }
  // The lines of records that follow record 7, as somebody writes them who knows the form.
  [[nodiscard]] std::string Forged(std::vector<JournalRecord> records) const {
    std::string lines;
    std::string hash = LinesOf(whole).back().substr(0, 64);
    for (std::uint64_t number = 8; JournalRecord & record : records) {
      record.number = number++;
      record.previous = hash;
      if (record.time.empty()) record.time = "2026-11-22T10:00:00.000+01:00";
      lines += PrintRecord(record) + "\n";
      hash = lines.substr(lines.rfind('\n', lines.size() - 2) + 1, 64);
    }
    return lines;
  }
};

// Behind the head nobody vouches for a record.
TEST_F(JournalCheckTest, FindsWhatTheProgramsNeverWrite) {
  using enum RecordKind;
  const std::string name = ParseRecord(LinesOf(whole).front().substr(0, whole.find('\n')))->record.journal;
  const JournalRecord begin{.kind = Begin, .user = "hans"};
  const JournalRecord segment{.kind = Segment, .journal = name};
  const auto end = [](std::uint64_t of, const char* result = "failed") {
    return JournalRecord{.kind = End, .of = of, .result = result};
  };
  const auto repair = [](std::string_view bytes) {
    return JournalRecord{.kind = Repair, .count = bytes.size(), .hash = Digest(bytes)};
  };
  struct Case {
    const char* what;
    std::vector<JournalRecord> records;
    std::string findings;
    unsigned file = 1;
    std::string torn{};  // at the end of the file before
  };
  const Case cases[] = {
      {"an operation more", {begin, end(8)}, ""},
      {"a second end", {end(2)}, "impossible 8"},
      {"its last end told anew", {segment, end(6, "done")}, "", 2},
      {"another end than its last", {segment, end(6)}, "impossible 9", 2},
      {"an end before its operation", {end(9), begin}, "impossible 8"},
      {"the end of what is none", {end(1)}, "impossible 8"},
      {"a result of its own", {begin, end(8, "perhaps")}, "impossible 9"},
      {"a second start", {{.kind = Start, .journal = name}}, "impossible 8"},
      {"a false time", {{.time = "2026-11-22T10:61:00.000+01:00", .kind = Begin}}, "impossible 8"},
      {"a repair of nothing", {{.kind = Repair}}, "impossible 8"},
      {"a file in the middle of one", {segment}, "impossible 8"},
      {"a further file", {segment, begin}, "", 2},
      {"one without its beginning", {begin}, "impossible 8", 2},
      {"one of another journal", {{.kind = Segment, .journal = std::string(32, 'A')}}, "impossible 8", 2},
      {"bytes that were left there", {segment, repair("torn"), begin}, "", 2, "torn"},
      {"bytes that nobody tells of", {segment, begin}, "impossible 9", 2, "torn"},
      {"bytes that were others", {segment, repair("tear")}, "impossible 9", 2, "torn"},
      {"bytes that are not there", {segment, repair("torn")}, "impossible 9", 2},
  };
  for (const Case& each : cases) {
    std::filesystem::remove(File(2));
    const std::string lines = Forged(each.records);
    Put(whole + (each.file == 1 ? lines : each.torn));
    if (each.file == 2) Put(lines, 2);
    EXPECT_EQ(Findings(), each.findings) << each.what;
    EXPECT_EQ(Check().behindHead, each.records.size()) << each.what;
  }
  std::filesystem::remove(File(2));
  const std::string time = "2026-11-22T10:00:00.000+01:00";
  for (std::size_t at = 0; at < time.size(); ++at) {
    for (const char no : {'/', 'x'}) {  // one comes just before the digits
      JournalRecord record{.time = time, .kind = Begin};
      record.time[at] = no;
      Put(whole + Forged({record}));
      EXPECT_EQ(Findings(), "impossible 8") << record.time;
    }
  }
  const std::string rest = R"("prev":")" + LinesOf(whole).back().substr(0, 64) +
                           R"(","time":"2026-11-22T10:00:00.000+01:00","kind":"begin")";
  const std::string fields[] = {R"("n":8,"n":9,)" + rest, R"("n":8,)" + rest + ",\"what\":\"\x7F\"",
                                R"("n":8,)" + rest + R"(,"kind":"wonder")",
                                R"("n":8,)" + rest + R"(,"x":{"a":1,"a":1})"};
  for (const std::string& each : fields) {
    const std::string json = "{" + each + "}";
    Put(whole + Digest(json) + " " + json + "\n");
    EXPECT_EQ(Findings(), "altered 8") << each;
  }
}

TEST_F(JournalCheckTest, TellsApartWhatWasAcknowledgedForAsLongAsItIsTheSame) {
  const auto acknowledge = [this](const char* reason) {
    return AcknowledgeFindings(places, disk, pacer, pacer, {"anna", reason}).value_or(0);
  };
  EXPECT_EQ(acknowledge("nothing is wrong"), 0U);
  std::filesystem::remove(File());
  EXPECT_EQ(Findings(), "gone 7");
  EXPECT_EQ(acknowledge(""), 0U);
  EXPECT_EQ(acknowledge("session made anew"), 3U);  // behind what begins the journal, and what was found
  (void)Begin();
  EXPECT_EQ(Findings(), "");
  EXPECT_THAT(CheckLines(Check()), testing::Contains("Acknowledged in record 3 by anna: session made anew"));
  EXPECT_THAT(VerdictText(Check()), testing::HasSubstr("apart from 1 finding that was acknowledged"));
  Lines lines = LinesOf(Bytes());
  lines.erase(lines.begin());
  Put(Joined(lines));
  EXPECT_EQ(Findings(), "missing 1; foundThen 2");
  std::filesystem::remove(HeadFile(places));
  lines = LinesOf(whole);
  lines.erase(lines.begin() + 2);
  Put(Joined(lines));
  EXPECT_NE(acknowledge("a bad disk"), 0U);
  Put(Bytes() + "found first, and told last\n");
  EXPECT_EQ(Findings(), "altered 9");
  for (const char* gone : {"", "no record\n"}) {  // the beginning, or what it says
    std::filesystem::remove(HeadFile(places));
    lines = LinesOf(whole);
    lines.front() = gone;
    Put(Joined(lines));
    std::filesystem::remove(File(2));
    EXPECT_EQ(acknowledge("a bad disk"), 9U);  // behind the beginning of a further file
    EXPECT_EQ(Findings(), "");
  }
}

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
      {"capital digits", [](Lines& l) { l[3].replace(0, 64, UpperCased(l[3].substr(0, 64))); }, "altered 4",
       "altered 4"},
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
