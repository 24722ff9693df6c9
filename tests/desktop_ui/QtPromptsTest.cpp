#include "desktop/ui/QtPrompts.h"

#include <gtest/gtest.h>

#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QTemporaryDir>
#include <fstream>

#include "desktop/ui/RunDialog.h"
#include "tests/desktop_ui/UsableWindow.h"

namespace kv {
namespace {

using namespace kv::test;

class QtPromptsTest : public ::testing::Test {
 protected:
  QObject user;
  QtPrompts prompts;
};

TEST_F(QtPromptsTest, EveryButtonGivesItsAnswerEnterConsentsWhereNothingIsLostAndEscapeNever) {
  using enum PromptAnswer;
  using Buttons = PromptButtons;
  const struct {
    PromptButtons buttons;
    bool canLose;
    const char* pressed;  // null: the key is
    Qt::Key key;
    PromptAnswer answer;
  } cases[] = {
      {Buttons::Ok, false, nullptr, Qt::Key_Escape, Ok},
      {Buttons::Ok, true, nullptr, Qt::Key_Escape, Cancel},
      {Buttons::Ok, true, nullptr, Qt::Key_Return, Ok},
      {Buttons::OkCancel, false, "cmdOk", {}, Ok},
      {Buttons::OkCancel, false, nullptr, Qt::Key_Return, Ok},
      {Buttons::OkCancel, true, nullptr, Qt::Key_Return, Cancel},
      {Buttons::OkCancel, false, nullptr, Qt::Key_Escape, Cancel},
      {Buttons::YesNo, true, "cmdYes", {}, Yes},
      {Buttons::YesNo, false, "cmdNo", {}, No},
      {Buttons::YesNo, false, nullptr, Qt::Key_Return, Yes},
      {Buttons::YesNo, true, nullptr, Qt::Key_Return, No},
      {Buttons::YesNo, true, nullptr, Qt::Key_Escape, No},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.pressed ? each.pressed : each.key == Qt::Key_Escape ? "Escape" : "Enter");
    WhenOpen<QMessageBox>(user, [&](QMessageBox& box) {
      EXPECT_EQ(box.windowTitle(), "Log Off");
      EXPECT_EQ(box.text(), "Sure?\n<b>Really");
      EXPECT_EQ(box.textFormat(), Qt::PlainText);
      EXPECT_EQ(box.icon(), QMessageBox::Question);
      ExpectControlsCanBeRead(box);
      if (each.pressed) {
        Find<QPushButton>(box, each.pressed).click();
      } else {
        QTest::keyClick(&box, each.key);
      }
    });
    EXPECT_EQ(prompts.Show({.text = "Sure?\r\n<b>Really",
                            .title = "Log Off",
                            .icon = PromptIcon::Question,
                            .buttons = each.buttons,
                            .canLose = each.canLose}),
              each.answer);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  }
}

TEST_F(QtPromptsTest, AnInputBoxGivesWhatWasTypedAndHidesASecret) {
  WhenOpen<QDialog>(user, [](QDialog& box) {
    auto& input = Find<QLineEdit>(box, "txtInput");
    ExpectControlsCanBeRead(box);
    EXPECT_EQ(input.echoMode(), QLineEdit::Password);
    EXPECT_EQ(box.windowTitle() + "|" + input.accessibleName() + "|" + Find<QLabel>(box, "lblHint").text(),
              "Stop|Password|Case counts");
    QTest::keyClicks(&input, "1234");
    QTest::keyClick(&input, Qt::Key_Return);
  });
  EXPECT_EQ(prompts.Ask({.text = "Password", .title = "Stop", .secret = true, .hint = "Case counts"}), "1234");
  for (const bool isTaken : {false, true}) {
    WhenOpen<QDialog>(user, [&](QDialog& box) { Find<QPushButton>(box, isTaken ? "cmdOk" : "cmdCancel").click(); });
    EXPECT_EQ(prompts.Ask({.text = "Name", .initial = "before"}).value_or("left"), isTaken ? "before" : "left");
  }
}

TEST_F(QtPromptsTest, ABoxIsNeverHigherThanTheScreen) {
  std::string text;
  for (int line = 0; line < 200; ++line) text += "What is about to be done, and to which machine\r\n";
  WhenOpen<QMessageBox>(user, [](QMessageBox& box) {
    EXPECT_LE(box.frameSize().height(), box.screen()->availableSize().height());
    const auto& no = Find<QPushButton>(box, "cmdNo");
    EXPECT_TRUE(box.rect().contains(QRect(no.mapTo(&box, QPoint()), no.size())));
    box.reject();
  });
  EXPECT_EQ(prompts.Show({.text = text, .buttons = PromptButtons::YesNo}), PromptAnswer::No);
}

// Who closes the help does not close the question with it.
TEST_F(QtPromptsTest, ABoxBelongsToTheWindowThatIsWorkedInAndNotToOneBesideIt) {
  QWidget work;
  QWidget help;
  help.setProperty(kStandsBeside, true);
  for (QWidget* window : {&work, &help}) {
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window, kPatience));
  }
  EXPECT_EQ(DialogOwner(), &work);
  const OwnCommand command(help);
  EXPECT_EQ(DialogOwner(), &help) << "what it asks itself";
}

TEST_F(QtPromptsTest, FileDialogsShowTheFilterAndAddItsExtension) {
  const QTemporaryDir folder;
  WhenOpen<QFileDialog>(user, [](QFileDialog& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Open");
    EXPECT_EQ(dialog.objectName(), "FileDialog") << "by which the help finds its page";
    EXPECT_EQ(Find<QLineEdit>(dialog, "fileNameEdit").text(), "");
    EXPECT_LE(dialog.frameSize().height(), dialog.screen()->availableSize().height());
    EXPECT_EQ(dialog.nameFilters(), (QStringList{"Telepanel Files (*.kta)", "Sheets (*.xls *.xlsx)"}));
    dialog.reject();
  });
  EXPECT_EQ(prompts.OpenFile({.title = "Open", .filter = "Telepanel Files (*.kta)|*.kta|Sheets|*.xls;*.xlsx"}),
            std::nullopt);

  const std::string path = QDir::toNativeSeparators(folder.filePath("pump")).toStdString();
  WhenOpen<QFileDialog>(user, [&](QFileDialog& dialog) {
    EXPECT_EQ(dialog.directory(), QDir(folder.path()));
    EXPECT_EQ(Find<QLineEdit>(dialog, "fileNameEdit").text(), "pump");
    static_cast<QDialog&>(dialog).accept();
  });
  const FileDialog clone{.filter = "Clone files|*.kdf", .folder = folder.path().toStdString(), .initial = "pump"};
  EXPECT_EQ(prompts.SaveFile(clone), path + ".kdf");

  std::ofstream(path + ".kdf") << "there already";
  for (const bool asks : {true, false}) {
    FileDialog again = clone;
    again.asksToReplace = asks;
    bool isAsked = false;
    WhenOpen<QFileDialog>(user, [&](QFileDialog& dialog) {
      WhenOpen<QMessageBox>(dialog, [&](QMessageBox& box) {
        isAsked = true;
        box.reject();
        static_cast<QDialog&>(dialog).reject();
      });
      static_cast<QDialog&>(dialog).accept();
    });
    EXPECT_EQ(prompts.SaveFile(again).has_value(), !asks);
    EXPECT_EQ(isAsked, asks);
  }
}

// A day's work goes back and forth between a few folders: each kind of file has its own, over the end of the program
// too.
TEST_F(QtPromptsTest, FileDialogsBeginInTheFolderUsedLastForTheSamePurpose) {
  const QTemporaryDir home;
  const QDir folder(home.path());
  const QString clones = QString::fromUtf8("Клоны & Co"), gone = "gone";
  for (const QString& each : {clones, gone}) ASSERT_TRUE(folder.mkdir(each));
  const std::filesystem::path settings = folder.filePath("Windows.ini").toStdString();

  const auto choose = [&](QtPrompts& asked, const std::string& purpose, const QString& name) {
    WhenOpen<QFileDialog>(user, [&](QFileDialog& dialog) {
      Find<QLineEdit>(dialog, "fileNameEdit").setText(folder.filePath(name + "/plant.kdf"));
      static_cast<QDialog&>(dialog).accept();
    });
    EXPECT_NE(asked.SaveFile({.purpose = purpose}), std::nullopt);
  };
  const auto begin = [&](QtPrompts& asked, const std::string& purpose) {
    QString shown;
    WhenOpen<QFileDialog>(user, [&](QFileDialog& dialog) {
      shown = dialog.directory().absolutePath();
      dialog.reject();
    });
    EXPECT_EQ(asked.OpenFile({.purpose = purpose}), std::nullopt);
    return folder.relativeFilePath(shown);
  };

  QtPrompts first(settings);
  choose(first, "Clones", clones);
  choose(first, "Regions", gone);
  EXPECT_EQ(begin(first, "Clones"), clones);
  EXPECT_EQ(begin(first, "Sheets"), gone) << "the folder used last, while there is none for the purpose";
  QtPrompts second(settings);
  EXPECT_EQ(begin(second, "Clones"), clones);
  ASSERT_TRUE(folder.rmdir(gone));
  EXPECT_NE(begin(second, "Regions"), gone) << "the folder is not there any more";
}

}  // namespace
}  // namespace kv
