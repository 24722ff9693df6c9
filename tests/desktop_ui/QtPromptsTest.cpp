#include "desktop/ui/QtPrompts.h"

#include <gtest/gtest.h>

#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>

#include "tests/desktop_ui/QtBench.h"

namespace kv {
namespace {

using namespace kv::test;

class QtPromptsTest : public ::testing::Test {
 protected:
  QObject user;
  QtPrompts prompts;
};

TEST_F(QtPromptsTest, EveryButtonGivesItsAnswerAndClosingTheOneThatCommitsToTheLeast) {
  using enum PromptAnswer;
  const struct {
    PromptButtons buttons;
    const char* pressed;  // null: the box is closed
    PromptAnswer answer;
  } cases[] = {
      {PromptButtons::Ok, nullptr, Ok},           {PromptButtons::OkCancel, "cmdOk", Ok},
      {PromptButtons::OkCancel, nullptr, Cancel}, {PromptButtons::YesNo, "cmdYes", Yes},
      {PromptButtons::YesNo, "cmdNo", No},        {PromptButtons::YesNo, nullptr, No},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.pressed ? each.pressed : "closed");
    WhenOpen<QMessageBox>(user, [&](QMessageBox& box) {
      EXPECT_EQ(box.windowTitle(), "Log Off");
      EXPECT_EQ(box.text(), "Sure?\n<b>Really");
      EXPECT_EQ(box.textFormat(), Qt::PlainText);
      EXPECT_EQ(box.icon(), QMessageBox::Question);
      if (each.pressed) {
        Find<QPushButton>(box, each.pressed).click();
      } else {
        box.close();
      }
    });
    EXPECT_EQ(
        prompts.Show(
            {.text = "Sure?\r\n<b>Really", .title = "Log Off", .icon = PromptIcon::Question, .buttons = each.buttons}),
        each.answer);
  }
}

TEST_F(QtPromptsTest, AnInputBoxGivesWhatWasTypedAndHidesASecret) {
  WhenOpen<QDialog>(user, [](QDialog& box) {
    auto& input = Find<QLineEdit>(box, "txtInput");
    EXPECT_EQ(input.echoMode(), QLineEdit::Password);
    QTest::keyClicks(&input, "1234");
    QTest::keyClick(&input, Qt::Key_Return);
  });
  EXPECT_EQ(prompts.Ask({.text = "Password", .secret = true}), "1234");
  WhenOpen<QDialog>(user, [](QDialog& box) { Find<QPushButton>(box, "cmdCancel").click(); });
  EXPECT_EQ(prompts.Ask({.text = "Name", .initial = "before"}), std::nullopt);
}

TEST_F(QtPromptsTest, FileDialogsShowTheFilterAndAddItsExtension) {
  const QTemporaryDir folder;
  WhenOpen<QFileDialog>(user, [](QFileDialog& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Open");
    EXPECT_EQ(dialog.nameFilters(), (QStringList{"Telepanel Files (*.kta)", "Sheets (*.xls *.xlsx)"}));
    dialog.reject();
  });
  EXPECT_EQ(prompts.OpenFile({.title = "Open", .filter = "Telepanel Files (*.kta)|*.kta|Sheets|*.xls;*.xlsx"}),
            std::nullopt);

  const std::string path = folder.filePath("pump").toStdString();
  WhenOpen<QFileDialog>(user, [&](QFileDialog& dialog) {
    EXPECT_EQ(dialog.directory(), QDir(folder.path()));
    EXPECT_EQ(Find<QLineEdit>(dialog, "fileNameEdit").text(), "pump");
    static_cast<QDialog&>(dialog).accept();
  });
  EXPECT_EQ(prompts.SaveFile({.filter = "Clone files|*.kdf", .folder = folder.path().toStdString(), .initial = "pump"}),
            path + ".kdf");
  WhenOpen<QFileDialog>(user, [&](QFileDialog& dialog) {
    EXPECT_EQ(dialog.directory(), QDir(folder.path()));
    dialog.reject();
  });
  EXPECT_EQ(prompts.OpenFile({}), std::nullopt);
}

}  // namespace
}  // namespace kv
