// docs/architecture.md against the tree. Whoever adds a tool window follows the page and one example: what it names has
// to be all there is. Whoever looks for a rule finds it where the page says.

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <regex>
#include <set>

#include "tests/support/MarkdownTables.h"
#include "tests/support/TemporaryFolder.h"

namespace kv::test {
namespace {

namespace fs = std::filesystem;

const fs::path kTree = KV_TEST_DATA "/..";

void ForEachFile(std::initializer_list<const char*> folders,
                 const std::function<void(const std::string& name, const std::string& content)>& look) {
  for (const char* folder : folders) {
    for (const auto& entry : fs::recursive_directory_iterator(kTree / folder)) {
      if (entry.is_regular_file())
        look(entry.path().lexically_relative(kTree).generic_string(), TemporaryFolder::Content(entry));
    }
  }
}

TEST(ToolWindowPageTest, NamesExactlyTheFilesOfTheExample) {
  const std::string tool = "Session";
  const std::string folder = "sessions";
  const std::string marks[] = {"ID_" + tool, "frm" + tool, folder + "/ui", folder + "_ui"};
  std::set<std::string> named;
  for (const Row& row : RowsBelow({"File", "What goes there", "In the example"}, "architecture.md")) {
    const std::string file = CodeIn(row[0]);
    named.insert(file);
    EXPECT_THAT(TemporaryFolder::Content(kTree / file), testing::HasSubstr(CodeIn(row[2]))) << file;
  }
  ForEachFile({"apps", "cmake", "libs", "runtime", "simulator", "src", "tests", "tools"},
              [&](const std::string& name, const std::string& content) {
                const auto isIn = [&](const std::string& mark) { return content.contains(mark); };
                const bool isOfExample = std::ranges::any_of(marks, isIn);
                EXPECT_TRUE(!isOfExample || named.contains(name)) << name << " belongs to the example, too";
              });
}

// Everything in backquotes.
std::vector<std::string> CodesIn(const std::string& cell) {
  static const std::regex kCode("`([^`]+)`");
  std::vector<std::string> codes;
  for (std::sregex_iterator at(cell.begin(), cell.end(), kCode), end; at != end; ++at) codes.push_back((*at)[1]);
  return codes;
}

TEST(RulePageTest, EachNameStandsInAFileOfItsRow) {
  for (const Row& row : RowsBelow({"The rule for ...", "File", "Name"}, "architecture.md")) {
    std::string content;
    for (const std::string& file : CodesIn(row[1])) content += TemporaryFolder::Content(kTree / file);
    for (const std::string& name : CodesIn(row[2])) EXPECT_THAT(content, testing::HasSubstr(name)) << row[0];
  }
}

// What a test is held against, and finds missing; one whose test has gone, or has another name now, holds nothing.
TEST(RecordsTest, EachIsReadByATest) {
  struct Kind {
    fs::path records;
    const char* readers;
    const char* before;  // its name, or that of its test, in what reads it
    const char* behind;
  };
  for (const auto& [records, readers, before, behind] : {Kind{"recorded", "tests", "(", ")"},
                                                         {"KvTele2/shown", "tests/KvTele2", ", ", ")"},
                                                         {"simulator/sessions", "tests/simulator", "\"", "\""},
                                                         {"host_ui/steps", "tests/steps_ui", "\"", "\""},
                                                         {"kvtele/transcripts", "tests/kvtele", "\"", "\""},
                                                         {"kvtele/texts", "tests/kvtele", "\"", "\""}}) {
    std::string all;
    ForEachFile({readers}, [&](const std::string& name, const std::string& content) {
      if (name.ends_with(".cpp")) all += content;
    });
    for (const auto& entry : fs::directory_iterator(kTree / "tests" / records)) {
      std::string name = entry.path().filename().string();
      if (name.ends_with(".txt")) name.resize(name.size() - 4);
      // "Each.SUITE.TEST.parameter" or "SUITE.TEST"
      if (before[0] == '(')
        name = std::regex_replace(name, std::regex("^(?:\\w+\\.(?=\\w+\\.\\w+\\.))?(\\w+)\\.(\\w+).*"), "$1, $2");
      EXPECT_TRUE(all.contains(before + name + behind)) << entry << " is read by no test";
    }
  }
}

// Names in the tables of commands are walked by the tests of their windows.
TEST(IconNamesTest, EveryNameInTheCodeIsADrawing) {
  const std::regex use("IconOf\\(([^)]*)\\)");
  ForEachFile({"apps", "libs", "src"}, [&](const std::string& name, const std::string& content) {
    if (name.starts_with("src/desktop/ui/Icons.")) return;
    for (std::sregex_iterator at(content.begin(), content.end(), use), end; at != end; ++at) {
      const std::string icon = (*at)[1];
      const bool isOfTable = icon.ends_with(".icon");
      const bool isDrawn =
          icon.size() > 2 && fs::exists(kTree / "src/desktop/ui/icons" / (icon.substr(1, icon.size() - 2) + ".svg"));
      EXPECT_TRUE(isOfTable || isDrawn) << name << ": " << icon;
    }
  });
}

}  // namespace
}  // namespace kv::test
