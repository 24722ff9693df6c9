// The files are written by the simulator's code, which shares none with the readers.

#include "download/DownloadFile.h"

#include <gmock/gmock.h>

#include <functional>

#include "Samples.h"
#include "download/DecodeFile.h"
#include "download/OsFileName.h"
#include "simulator/LittleEndian.h"
#include "simulator/files/SampleBytes.h"
#include "tests/support/Damage.h"
#include "tests/support/TemporaryFolder.h"

namespace kv::test {
namespace {

using testing::HasSubstr;
using Fault = DownloadFileFault;

// What a user is told of them is tried with the command line, and what is sent of them with whole downloads.
TEST(DownloadFiles, HoldWhatIsSentOfThem) {
  const TemporaryFolder folder;
  EXPECT_TRUE(ReadDownloadFile(folder.Put("a.txt", SampleProject("Q50")))) << "by its content";
  const auto aurex = ReadAurexProject(folder.Put("a.dai", SampleProject("K220-22-R1")));
  ASSERT_TRUE(aurex) << aurex.error().Text();
  EXPECT_EQ(std::string(aurex->passwordBlock.begin(), aurex->passwordBlock.end()), "PASSWORD");
  EXPECT_EQ(aurex->topics[0].param3, 1);
  EXPECT_EQ(aurex->topics[2].param1, 4096u);
  EXPECT_EQ(aurex->topics[2].data.size(), 5000u - 4096u);
  const auto compact = ReadCompactProject(folder.Put("c.d50", SampleProject("Q51", 100)));
  ASSERT_TRUE(compact) << compact.error().Text();
  EXPECT_EQ(compact->commands[3], "LN48616C6C2037");
  EXPECT_TRUE(ReadCompactOsFile(folder.Put("q58V4712.osi", SampleOs("Q58", {"4.71", 2}))));
}

std::string Words(std::initializer_list<std::string> words) {
  std::string all;
  for (const std::string& word : words) all += word + "|";
  return all;
}

std::string Text(const AurexProjectFile& project) {
  std::string all = Words({std::to_string(project.osVersion), std::to_string(project.osBuild), project.model,
                           project.name, project.nameInController.value_or("-"), std::to_string(project.dataBytes)});
  for (const AurexProjectTopic& each : project.topics)
    all += Words({std::to_string(each.param1), std::to_string(each.param3), std::to_string(each.param4)});
  return all;
}
std::string Text(const CompactProjectFile& project) {
  return Words({project.name, project.nameInController, project.model, std::to_string(project.commands.size()),
                std::to_string(project.lineCount), project.endsWithReset ? "whole" : "cut"});
}
std::string Text(const AurexOsFile& os) {
  std::string all = Words({os.model, NumberText(os.number), os.remark, std::to_string(os.dataBytes)});
  for (const AurexOsTopic& each : os.topics)
    all +=
        Words({std::to_string(each.number), each.name, std::to_string(each.base), each.isCompressed ? "packed" : ""});
  return all;
}
std::string Text(const FontsFile& fonts) {
  return Words({fonts.model, FontsText(fonts), std::to_string(fonts.data.size())});
}
std::string Text(const CompactOsFile& os) {
  return Words({os.head.model, NumberText(os.head.number), os.head.remark, std::to_string(os.image.size())});
}

// Where a file has its check and, behind so many bytes that do not count, its length.
struct Sums {
  std::size_t check = 0;
  std::size_t length = 0;
  std::size_t head = 0;
};

// Each as it is, and with length and check mended, so that what lies behind these is looked at, too.
TEST(DownloadFiles, ThatWereDamagedTellWhereAndWhy) {
  const auto record = [](const std::string& good, const Sums& sums, auto parse) {
    const auto told = [&](const std::string& bytes) {
      const auto read = parse(bytes, "f");
      return read ? Text(*read) : std::to_string(static_cast<int>(read.error().fault)) + read.error().Text();
    };
    ExpectAsRecorded([&] { return ToldOfDamage(good, told); });
    if (sums.check == 0) return;
    const auto mended = [&](std::string bytes) {
      if (bytes.size() < sums.check + 4) return told(bytes);
      if (bytes.size() != good.size())
        sim::PutLittle(bytes.data() + sums.length, static_cast<std::uint32_t>(bytes.size() - sums.head), 4);
      sim::PutCheck(bytes, sums.check);
      return told(bytes);
    };
    ExpectAsRecorded([&] { return ToldOfDamage(good, mended); });
  };
  record(DecodeBytes(SampleProject("K330", 100)), {},
         [](const std::string& bytes, const char* file) { return ParseAurexProject(DecodeBytes(bytes), file); });
  record(SampleProject("Q50", 100), {}, ParseCompactProject);
  record(SampleOs("K330", {"4.60", 19}, 100), {12, 8, 0}, ParseAurexOsFile);
  record(SampleFonts("K330", {"1.30", 0}, 100), {12, 8, 16}, ParseFontsFile);
  record(SampleOs("Q50", {"4.60", 2}, 100), {16, 12, 0}, ParseCompactOsFile);
}

// Puts a number at a place of an O/S file and mends its check, as a careless tool would.
std::string With(std::string file, std::size_t offset, std::uint32_t value, std::size_t bytes, std::size_t checkAt) {
  sim::PutLittle(file.data() + offset, value, bytes);
  sim::PutCheck(file, checkAt);
  return file;
}

std::string WithProjectLength(std::uint32_t length) {
  std::string bytes = DecodeBytes(SampleProject("K330", 300));
  sim::PutLittle(bytes.data() + 150 + 6, length, 4);
  return DecodeBytes(bytes);
}

std::string Scrambled(std::initializer_list<std::string> lines) {
  std::string file;
  std::size_t number = 0;
  for (const std::string& line : lines) {
    std::string written(line.rbegin(), line.rend());
    for (char& c : written) c = static_cast<char>(c + static_cast<char>(number % 3));
    file += written + "\r\n";
    ++number;
  }
  return file;
}

TEST(DownloadFiles, ThatAreNotRightAreRefusedWithTheReason) {
  const std::string os = SampleOs("K330", {"4.60", 19});
  const std::string fonts = SampleFonts("K330", {"1.30", 0});
  const std::string image = SampleOs("Q50", {"4.60", 2});
  const std::string kos = "AurexK330v46019.kos";
  const std::string sign = "T50 Ladder Download File";
  const std::string signature150(150, '\0');
  struct Case {
    std::string name;
    std::string content;
    Fault fault;
    std::string text;
  };
  const Case cases[] = {
      {"a.dai", std::string(149, 'x'), Fault::NotLegal, "at least 150 bytes, not 149"},
      {"a.dai", signature150, Fault::NotLegal, "Aurex Download File"},
      {"a.dai", WithProjectLength(0xFFFFFFFF), Fault::Damaged, "topic 1 at byte 150: expected at most 1048576"},
      {"a.dai", WithProjectLength(500), Fault::Damaged, "expected 500 bytes of data, and found 332"},
      {"a.d50", Scrambled({"n", "Q50", sign, "DI", "DE"}), Fault::NotLegal, "\"DE\""},
      {"a.d50", Scrambled({"n", "Q50", "T51", "DE", "DI"}), Fault::NotLegal, "signature"},
      {"a.d50", std::string(300'000, '\n'), Fault::NotLegal, "200000 lines"},
      {"a.d50", std::string(10 << 20, 'x'), Fault::NotLegal, "signature"},
      {"a.d50", std::string(17 << 20, 'x'), Fault::NotLegal, "larger than any"},
      {"a.d50", Scrambled({std::string(1101, 'n'), "Q50", sign, "DE", "DI"}), Fault::Damaged,
       "line 1: expected at most"},
      {"a.d50", Scrambled({"n", "Q50", sign, "DE", "DI", "", "CCE"}), Fault::Damaged, "line 6: expected 1 to 1100"},
      {"a.d50", Scrambled({"n", "Q50", sign, "DE", "DI", "L\xC4"}), Fault::Damaged, "line 6"},
      {"a.d50", Scrambled({"n", "Q50", sign, "DE", "DI", std::string(1101, 'x')}), Fault::Damaged, "line 6"},
      {kos, "", Fault::NotLegal, "KVOS"},
      {kos, fonts, Fault::NotLegal, "KVOS"},
      {kos, With(os, 16, 0x32204C43, 4, 12), Fault::Damaged, "K220, K222 or K330"},
      {kos, With(os, 6, 0, 2, 12), Fault::Damaged, "1 to 15 topics"},
      {kos, With(os, 6, 16, 2, 12), Fault::Damaged, "1 to 15 topics"},
      {kos, With(os, 6, 12, 2, 12), Fault::Damaged, "12 entries"},
      {kos, With(os, 6, 2, 2, 12), Fault::Damaged, "end of the last topic"},
      {kos, With(os, 64, 0, 2, 12), Fault::Damaged, "number from 1 to 15"},
      {kos, With(os, 68, 0x000FFFFF, 4, 12), Fault::Damaged, "place from 0x00100000 to 0x002FFFFF"},
      {kos, With(os, 68, 0x002FFFFF, 4, 12), Fault::Damaged, "place from"},
      {kos, With(os, 100, 0x00100000, 4, 12), Fault::Damaged, "place from 0x00100078"},
      {kos, With(os, 72, 0, 4, 12), Fault::Damaged, "1 to 200 bytes"},
      {kos, With(os, 72, 0xFFFFFFFF, 4, 12), Fault::Damaged, "1 to 200 bytes"},
      {"AurexK330v46119.kos", os, Fault::Damaged, "ends with \"AurexK330v46019.kos\""},
      {"AurexK220v46019.kos", os, Fault::Damaged, "its name"},
      {"os.kos", os, Fault::Damaged, "its name"},
      {"AurexFontv1300.kft", fonts.substr(0, 15), Fault::NotLegal, "16 bytes"},
      {"AurexFontv1300.kft", With(fonts, 6, 10000, 2, 12), Fault::NotLegal, "four digits"},
      {"AurexFontv1300.kft", With(fonts, 8, 0xFFFFFFFF, 4, 12), Fault::Damaged, "4294967311 bytes, and has 216"},
      {"AurexFontv1290.kft", fonts, Fault::Damaged, "its name"},
      {"Q50v4602.OSI", With(image, 12, 0xFFFFFFFF, 4, 16), Fault::Damaged, "4294967295 bytes, and has 256: it was cut"},
      {"Q50v4602.OSI", With(image + "x", 12, 257, 4, 16), Fault::Damaged, "whole blocks"},
      {"Q51v4602.OSI", image, Fault::Damaged, "expected \"Q50v4602.OSI\""},
      {"Q50v4612.OSI", image, Fault::Damaged, "its name"},
      {"os.bin", os, Fault::NotLegal, ".kos"},
  };
  const TemporaryFolder folder;
  for (const Case& wrong : cases) {
    SCOPED_TRACE(wrong.name + " " + wrong.text);
    const auto read = ReadDownloadFile(folder.Put(wrong.name, wrong.content));
    ASSERT_FALSE(read);
    EXPECT_EQ(read.error().fault, wrong.fault);
    EXPECT_THAT(read.error().Text(), HasSubstr(wrong.text));
    EXPECT_THAT(read.error().Text(), HasSubstr(wrong.name));
  }
  for (const char* name : {"gone.dai", "gone.d50", "gone.kos", "gone.kft", "gone.OSI"}) {
    EXPECT_EQ(ReadDownloadFile(folder.Path() / name).error().fault, Fault::Unreadable);
    std::filesystem::create_directory(folder.Path() / name);
    EXPECT_EQ(ReadDownloadFile(folder.Path() / name).error().fault, Fault::Unreadable);
  }
}

}  // namespace
}  // namespace kv::test
