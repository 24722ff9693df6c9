#include <gmock/gmock.h>

#include <QCheckBox>
#include <QProgressBar>
#include <QTableWidget>

#include "KvTele2/cache/CacheFile.h"
#include "cache/ui/frmRestoreCache.h"
#include "sessions/RecentCaches.h"
#include "tests/desktop_ui/ToolWindowFixture.h"

namespace kv::test {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class ImportWizardTest : public ToolWindowFixture<frmRestoreCache, LoggedPrompts> {
 protected:
  ImportWizardTest() {
    const auto folder = fixture.shared.paths.Temporary();
    std::filesystem::create_directories(folder);
    const auto shipped = std::filesystem::path(KV_TEST_DATA).parent_path() / "runtime" / "TP_Temp" / "TP_Temp_1";
    std::filesystem::copy_file(shipped, folder / "TP_Temp_1");
    std::filesystem::permissions(folder / "TP_Temp_1", std::filesystem::perms::owner_read);
    PlugIn({.model = "K670"});
  }
  void Open() {
    auto wizard = std::make_unique<frmRestoreCache>(
        CacheServices{.shared = fixture.shared, .prompts = prompts, .pacer = pacer, .clock = clock}, nullptr);
    wizard->SetRemoteClass(fixture.host);
    Show(std::move(wizard));
  }
  void Choose(const std::filesystem::path& chosen) {
    prompts.Choose(Utf8FromPath(chosen));
    Click("cmdBrowse");
  }
  void Click(const char* button) const { Find<QPushButton>(*window, button).click(); }
  [[nodiscard]] std::string Caption(const char* button) const {
    return Find<QPushButton>(*window, button).text().toStdString();
  }
  [[nodiscard]] std::string Marks() const {
    const auto key = [this](const char* name) { return Find<QLabel>(*window, name).property("key").toString(); };
    return (key("imgStepRes1") + "/" + key("imgStepRes2")).toStdString();
  }
  [[nodiscard]] std::string Buttons() const {
    return Enabled<QPushButton>({"cmdBrowse", "cmdHelp", "cmdBack", "cmdNext", "cmdCancel"});
  }
  [[nodiscard]] bool IsRed() const {
    return Find<QLabel>(*window, "lblState").palette().color(QPalette::WindowText) == QColor(255, 0, 0);
  }
  // Does it once pieces come in.
  void WhenAtWork(std::function<void()> action) const {
    const auto& bar = Find<QProgressBar>(*window, "prbStatus");
    When(*window, [&bar] { return bar.value() > 0; }, std::move(action));
  }
  [[nodiscard]] QTableWidget& Results() const { return Find<QTableWidget>(*window, "vsfResults"); }
  // How many rows say in the last column that they came from there.
  [[nodiscard]] int CameFrom(const char* from) const {
    int count = 0;
    for (int row = 0; row < Results().rowCount(); ++row) count += Results().item(row, 3)->text() == from ? 1 : 0;
    return count;
  }

  std::filesystem::path file = fixture.home.Path() / "plant.ktc";
};

// What stood at the chosen place is named before, and stays unless all has come.
TEST_F(ImportWizardTest, ACancelledOrFailedImportLeavesTheFileAndTheDisplayAsTheyWere) {
  const auto import = [&](const Plc& plc, bool isCancelled) {
    fixture.home.Put("plant.ktc", "no cache at all");
    PlugIn(plc);
    Open();
    Choose(file);
    prompts.Press(PromptAnswer::Yes);
    if (isCancelled) WhenAtWork([&] { QTest::keyClick(window.get(), Qt::Key_Escape); });
    Click("cmdNext");
    EXPECT_THAT(prompts.Boxes().back().text, HasSubstr("plant.ktc"));
    EXPECT_TRUE(prompts.Boxes().back().canLose);
    EXPECT_TRUE(TemporaryFolder::Content(file) == "no cache at all");
    const auto screen = driver.GetChannel()->Panel()->Changes({.most = 8192}, 1);
    EXPECT_TRUE(screen && !screen->isSystemMode);
    EXPECT_TRUE(window->isVisible());
  };
  import({.model = "K670", .baud = 115200}, true);
  EXPECT_FALSE(IsRed());
  EXPECT_EQ(Caption("cmdNext"), "Try Again");
  import({.model = "K670", .faults = {"refuse:code=05,on=block,nth=10"}}, false);
  EXPECT_EQ(Text("lblState"), "Errors occurred during the creation of the plant.ktc file");
  EXPECT_TRUE(IsRed());
  EXPECT_THAT(Text("lblReason"), HasSubstr("What to do: "));
  EXPECT_THAT(Text("lblKept"), AllOf(StartsWith(Utf8FromPath(file) + " is as it was before the import"),
                                     HasSubstr("Back leads to the first step")));
  EXPECT_TRUE(Find<QLabel>(*window, "lblKept").isVisible());
  EXPECT_FALSE(Results().isVisible());
  EXPECT_THAT(Marks(), HasSubstr("FAIL"));
  EXPECT_EQ(Caption("cmdNext"), "Finish");
  Click("cmdBack");
  EXPECT_EQ(Marks(), "/");
  prompts.Press(PromptAnswer::No);
  Click("cmdNext");
  EXPECT_TRUE(TemporaryFolder::Content(file) == "no cache at all");
  Click("cmdBack");
  fixture.home.Put("plant.ktc", "somebody else has written it meanwhile");
  Click("cmdNext");
  EXPECT_EQ(Text("lblStep0"), "No File Was Selected") << "nobody consented to the loss of this one";
}

TEST_F(ImportWizardTest, SaysBeforeHowLongItTakesAndHasNothingToCancelWhenTheFileIsMade) {
  PlugIn({.model = "K670", .baud = 115200});
  Open();
  Choose(file);
  EXPECT_THAT(Text("lblPreview"), HasSubstr("263 KiB of fonts and images, about "));
  auto& images = Find<QLabel>(*window, "lblStep2");
  QTest::mouseClick(&images, Qt::LeftButton, {}, images.rect().center());
  EXPECT_FALSE(Find<QCheckBox>(*window, "CheckStep2").isChecked()) << "its label switches it";
  EXPECT_THAT(Text("lblPreview"), HasSubstr(": 39 KiB of fonts and images, about "));
  WhenAtWork([&] { EXPECT_EQ(Caption("cmdNext"), "Next"); });
  Click("cmdNext");
  EXPECT_EQ(Caption("cmdNext"), "Finish");
  EXPECT_FALSE(Find<QPushButton>(*window, "cmdCancel").isVisible());
  const auto largest = Results().item(3, 0)->data(Qt::DecorationRole).value<QPixmap>();
  EXPECT_LT(largest.width(), Results().iconSize().width()) << "ends with a whole character";
}

TEST(ChosenCache, IsShownWithTheMiddleOfALongPathLeftOut) {
  const std::string forty = "/plants/" + std::string(28, 'x') + ".ktc";
  EXPECT_EQ(ChosenCache(PathFromUtf8(forty)).Label(), "File: " + forty);
  EXPECT_EQ(ChosenCache(PathFromUtf8("/0123456789012345678\xC3\xA4 left out abcdefghijklm.ktc")).Label(),
            "File: /0123456789012345678...abcdefghijklm.ktc");
  EXPECT_EQ(CacheNameOf("K670-67-C30 / K390-29-C30"), "K670-67-C30 - K390-29-C30.ktc");
}

}  // namespace
}  // namespace kv::test
