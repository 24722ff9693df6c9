// The help as it is built and read: every number has its page, every page is found, nothing leads nowhere, and bytes
// that are no help do no harm.

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <regex>
#include <set>

#include "base/ProgramVersion.h"
#include "base/Texts.h"
#include "help/ChmDirectory.h"
#include "help/ChmFile.h"
#include "help/HelpTopics.h"
#include "help/HtmlText.h"
#include "tests/help/BuiltHelp.h"
#include "tests/support/Damage.h"
#include "tests/support/TemporaryFolder.h"

namespace kv::test {
namespace {

namespace fs = std::filesystem;

const fs::path kTree = KV_TEST_DATA "/..";

std::string FileOf(const HelpTopic& topic) {
  return std::string(topic.page) + ".html";
}

void ForEachSource(std::initializer_list<const char*> folders,
                   const std::function<void(const std::string& code)>& look) {
  for (const char* folder : folders) {
    for (const auto& entry : fs::recursive_directory_iterator(kTree / folder)) {
      if (entry.path().extension() == ".cpp") look(TemporaryFolder::Content(entry));
    }
  }
}

std::string SourcesIn(std::initializer_list<const char*> folders) {
  std::string all;
  ForEachSource(folders, [&](const std::string& code) { all += code; });
  return all;
}

TEST(HelpFileTest, HasEachNumberOfTheTableAndNoOther) {
  const HelpBook book = BuiltHelp();
  EXPECT_EQ(book.Numbers().size(), HelpTopics().size());
  std::vector<std::string> pages;
  for (const HelpTopic& topic : HelpTopics()) {
    EXPECT_EQ(book.PageOf(topic.number), FileOf(topic));
    EXPECT_TRUE(book.Read(FileOf(topic))) << topic.page;
    pages.push_back(FileOf(topic));
  }
  EXPECT_EQ(book.PageOf(-1), pages.front()) << "a number that nobody has";
  std::vector<std::string> contents;
  for (const HelpBook::Entry& entry : book.Contents()) contents.push_back(entry.page);
  EXPECT_EQ(contents, pages);
  EXPECT_EQ(ChmFile::Open(kHelpFolder / "KvTeleExe.chm").has_value(), KV_HAS_HELP_COMPILER == 1);
}

TEST(HelpFileTest, HoldsTheSameAsThePages) {
  if (!KV_HAS_HELP_COMPILER) GTEST_SKIP() << "there is no compiler for help files";
  const auto file = ChmFile::Open(kHelpFolder / "KvTeleExe.chm");
  ASSERT_TRUE(file) << file.error();
  const auto pages = HelpBook::Open("missing.chm", kHelpFolder / "pages");
  ASSERT_TRUE(pages) << pages.error();
  EXPECT_THAT(file->Names(), testing::IsSupersetOf(pages->Names()));
  for (const std::string& name : pages->Names()) EXPECT_EQ(file->Read(name), pages->Read(name)) << name;
  EXPECT_EQ(pages->Numbers(), BuiltHelp().Numbers());
  for (const char* outside : {"../KvTeleExe.chm", "/etc/passwd"}) EXPECT_FALSE(pages->Read(outside)) << outside;
}

// Of a file of two pages, which chmcmd has made.
TEST(HelpFileTest, ADirectoryThatWasDamagedTellsWhat) {
  ExpectAsRecorded([] {
    return ToldOfDamage(TemporaryFolder::Content(KV_TEST_DATA "/help/small.chm"), [](const std::string& bytes) {
      const auto directory = ReadChmDirectory(bytes);
      if (!directory) return directory.error();
      std::string all;
      for (const auto& [name, place] : *directory)
        all += name + " " + std::to_string(place.section) + " " + std::to_string(place.start) + " " +
               std::to_string(place.length) + "|";
      return all;
    });
  });
}

TEST(HelpFileTest, NothingLeadsNowhereAndNothingIsLeftOver) {
  const HelpBook book = BuiltHelp();
  const auto names = book.Names();
  std::set<std::string> pictures;
  for (const HelpTopic& topic : HelpTopics()) {
    const HtmlPage page = ReadHtmlPage(*book.Read(FileOf(topic)));
    EXPECT_THAT(page.title, testing::Not("")) << topic.page;
    EXPECT_THAT(page.keywords, testing::Not("")) << topic.page;
    for (const std::string& link : page.links) {
      EXPECT_THAT(names, testing::Contains(link)) << topic.page;
      if (link.ends_with(".png")) pictures.insert(link.substr(link.find('/') + 1));
    }
  }
  // Of each window one look is enough: the others of the folder are the same in dark colours and at another scale.
  for (const auto& entry : fs::directory_iterator(kTree / "docs/images")) {
    const std::string name = entry.path().filename().string();
    if (entry.path().extension() != ".png") continue;
    const bool isVariant = name.contains("-dark.") || name.contains("-200.");
    EXPECT_TRUE(isVariant || pictures.contains(name)) << name << " is on no page of the help";
  }
}

TEST(HelpFileTest, ItsPicturesAreOfThisRelease) {
  EXPECT_EQ(TemporaryFolder::Content(kTree / "docs/images/release.txt"), ProgramVersion() + std::string("\n"))
      << "take them anew: tools/screenshots.sh";
}

// A page that is older than its window tells of a command that is not there any more.
TEST(HelpFileTest, EmphasisesOnlyWhatStandsInAWindow) {
  std::string texts = TemporaryFolder::Content(kTree / "tests/host_ui/looks.txt");
  texts += SourcesIn({"src/desktop/ui", "src/help/ui", "src/dataview/ui", "src/download/ui", "libs/KvTele2"});
  std::erase(texts, '&');
  const HelpBook book = BuiltHelp();
  for (const HelpTopic& topic : HelpTopics()) {
    for (const std::string& term : ReadHtmlPage(*book.Read(FileOf(topic))).terms) {
      EXPECT_TRUE(texts.contains(term)) << topic.page << ": " << term;
    }
  }
}

TEST(HelpFileTest, NamesTheKeysOfEachCommand) {
  const std::string commands = TemporaryFolder::Content(kTree / "libs/KvTele2/HostCommands.cpp");
  const std::regex keyLine("HostCommand\\{[^,]+, *\"[^\"]*\", *\"([^\"]+)\"");
  const std::string text = ReadHtmlPage(*BuiltHelp().Read("windows-and-keys.html")).text;
  std::sregex_iterator at(commands.begin(), commands.end(), keyLine);
  EXPECT_GT(std::distance(at, {}), 20);
  for (; at != std::sregex_iterator(); ++at) EXPECT_THAT(text, testing::HasSubstr((*at)[1].str()));
}

// Who adds a window adds its topic, and that tells of it by its title.
TEST(HelpTopicsTest, EachWindowHasAPageThatNamesIt) {
  const std::regex nameLine("setObjectName\\(\"(frm[A-Za-z0-9]+|[A-Za-z]+(?:Dialog|Box))\"\\)");
  const std::regex titleLine("setWindowTitle\\(\"([^\"]+)\"\\)");
  const HelpBook book = BuiltHelp();
  int windows = 0;
  ForEachSource({"src", "libs"}, [&](const std::string& code) {
    std::smatch title;
    const bool hasTitle = std::regex_search(code, title, titleLine);
    for (std::sregex_iterator at(code.begin(), code.end(), nameLine), end; at != end; ++at, ++windows) {
      const std::vector<std::string> names{(*at)[1]};
      const HelpTopic* topic = HelpTopicAt(names);
      ASSERT_NE(topic, nullptr) << names.front();
      const std::string page = UpperCased(*book.Read(FileOf(*topic)));
      const std::string wanted = hasTitle ? UpperCased(title[1].str()) : "";
      EXPECT_THAT(page, testing::HasSubstr(wanted)) << names.front();
    }
  });
  EXPECT_GT(windows, 15);
}

TEST(HelpTopicsTest, EachPlaceIsTheNameOfAControl) {
  const std::string code = SourcesIn({"src", "libs"});
  for (const HelpTopic& topic : HelpTopics()) {
    std::string name;
    for (const char c : std::string(topic.places) + " ") {
      if (c != ' ' && c != '/') {
        name += c;
        continue;
      }
      EXPECT_TRUE(name.empty() || code.contains('"' + name + '"')) << topic.page << ": " << name;
      name.clear();
    }
  }
}

TEST(HelpTopicsTest, AnErrorHasThePageOfItsFamily) {
  struct Row {
    const char* page;
    const char* message;
  };
  const Row rows[] = {
      {"error-no-answer", "Reading MI 0 from unit 1 on COM3 failed: no reply after 3 tries (1.5 s)."},
      {"error-damaged", "Reading MI 0 failed: no reply arrived whole after 3 tries (1.5 s)."},
      {"error-damaged", "Reading MI 0 failed: no reply ended after 1 try (1 s), the last one stopped in the middle."},
      {"error-port", "Opening the link failed: COM3 is in use."},
      {"error-port", "Opening the link failed: no permission to use /dev/ttyS0.\nWhat to do: have the administrator"},
      {"error-lost", "Reading MI 0 failed: the connection was lost: plc:20300 closed the connection."},
      {"error-lost", "Reading MI 0 failed: the link is closed."},
      {"error-refused", "Writing MI 0 failed: the controller refused: the value does not fit the operand."},
      {"error-refused", "Reading MI 0 failed: this controller understands text commands only."},
      {"error-password", "Writing MI 0 failed: the controller refused: its password is needed first."},
      {"error-password", "This password is wrong. Upper and lower case differ."},
      {"error-busy", "Reading MI 0 failed: the controller refused: it is busy."},
      {"error-busy", "Reading MI 0 failed: another request is under way."},
      {"error-other", "Reading MI 0 failed: another controller answered: K330, serial number 5."},
      {"error-other", "The Telepanel file does not match the project currently installed in the controller."},
      {"error-unsure",
       "Writing MI 0 failed: the request was sent, but whether it was executed could not be found out."},
      {"error-os", "You cannot access this PLC because it is currently in BOOTSTRAP mode."},
      {"error-files", "/plant/KvTeleExe.ini could not be written (No space left on device)."},
      {"modem", "Opening the link failed: the modem hears no dial tone."},
  };
  for (const Row& row : rows) {
    const HelpTopic* topic = HelpTopicOfError(row.message);
    ASSERT_NE(topic, nullptr) << row.message;
    EXPECT_EQ(topic->page, row.page) << row.message;
  }
  EXPECT_EQ(HelpTopicOfError("Are you sure you want to log off?"), nullptr);
}

TEST(HelpBookTest, SaysWhereTheHelpShouldBe) {
  const TemporaryFolder home;
  for (const char* content : {"", "ITSF", "<html>"}) {
    const auto book = HelpBook::Open(home.Put("KvTeleExe.chm", content), home.Path() / "pages");
    ASSERT_FALSE(book);
    EXPECT_THAT(book.error(), testing::AllOf(testing::HasSubstr("KvTeleExe.chm"), testing::HasSubstr("What to do: ")));
  }
}

// Whatever a file or a page says, reading ends, and nothing outside of the help is read.
TEST(HelpBookTest, BearsWhatIsNoHelp) {
  ExpectAsRecorded([] {
    return ToldOfDamage(TemporaryFolder::Content(KV_TEST_DATA "/help/damaged.html"), [](const std::string& bytes) {
      const HtmlPage page = ReadHtmlPage(bytes);
      std::string all = page.title + "|" + page.keywords + "|" + page.questions + "|" + page.text + "|";
      for (const auto* texts : {&page.terms, &page.links}) {
        for (const std::string& text : *texts) all += text + "|";
      }
      for (const HelpBook::Entry& each : ParseSiteMap(bytes))
        all += std::to_string(each.level) + each.title + "=" + each.page + "|";
      return all;
    });
  });
  EXPECT_TRUE(ParseSiteMap("<ul><object><param name=\"Name\" value=\"A\"><param name=\"Local\"").empty());
  const std::string texts("\0a\0b", 4);
  EXPECT_TRUE(ParseMapNumbers("", texts).empty());
  EXPECT_TRUE(ParseMapNumbers(std::string("\xff\xff\xff\xff\x01\0\0", 7), texts).empty()) << "cut";
  EXPECT_TRUE(ParseMapNumbers(std::string("\x08\0\0\0\x01\0\0\0\x09\0\0\0", 12), texts).empty()) << "past the end";
  EXPECT_TRUE(ParseMapNumbers(std::string("\x08\0\0\0\x01\0\0\0\x03\0\0\0", 12), texts).empty()) << "without an end";
  EXPECT_EQ(ParseMapNumbers(std::string("\x08\0\0\0\x01\0\0\0\x01\0\0\0", 12), texts).at(1), "a");
  const HelpBook book = BuiltHelp();
  for (const char* name : {"", "../KvTeleExe.chm", "/etc/passwd", "no-such.html"})
    EXPECT_FALSE(book.Read(name)) << name;
}

}  // namespace
}  // namespace kv::test
