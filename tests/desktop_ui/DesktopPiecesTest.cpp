#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFileInfo>
#include <QFrame>
#include <QImage>
#include <QLabel>
#include <QPalette>
#include <QPushButton>
#include <QScrollBar>
#include <QSplitter>
#include <QStyle>
#include <QTableWidget>
#include <QTextEdit>
#include <QVBoxLayout>

#include "base/ProfileStrings.h"
#include "base/ScopeGuard.h"
#include "desktop/ui/CardLayout.h"
#include "desktop/ui/Icons.h"
#include "desktop/ui/QtShell.h"
#include "desktop/ui/ScrollPage.h"
#include "desktop/ui/Theme.h"
#include "desktop/ui/WindowGeometry.h"
#include "tests/desktop_ui/UsableWindow.h"
#include "tests/support/TemporaryFolder.h"

namespace kv {
namespace {

using namespace kv::test;

QImage Drawn(std::string_view icon) {
  return IconOf(icon).pixmap(48).toImage().convertToFormat(QImage::Format_ARGB32);
}

TEST(IconsTest, EveryDrawingIsSeenInTheColourOfThePalette) {
  const QStringList drawings = QDir(KV_TEST_DATA "/../src/desktop/ui/icons").entryList(QDir::Files);
  ASSERT_TRUE(drawings.contains("app.svg"));
  const ScopeGuard restore([before = QApplication::palette()] { QApplication::setPalette(before); });
  for (const QColor colour : {QColor(Qt::black), QColor(Qt::white)}) {
    QPalette palette;
    palette.setColor(QPalette::ButtonText, colour);
    QApplication::setPalette(palette);
    for (const QString& drawing : drawings) {
      const std::string name = QFileInfo(drawing).baseName().toStdString();
      const QImage image = Drawn(name);
      int seen = 0;
      for (int at = 0; at < 48 * 48; ++at) seen += image.pixel(at % 48, at / 48) == colour.rgba();
      EXPECT_GT(seen, 40) << name;
      EXPECT_EQ(image == Drawn("no such icon"), name == "app") << name;
    }
  }
}

TEST(CardLayoutTest, CardsFillTheRowsThatThereIsRoomFor) {
  for (const auto& [width, columns] : {std::pair(90, 1), std::pair(330, 3), std::pair(1000, 5)}) {
    QWidget page;
    auto* cards = new CardLayout(&page, 100);
    cards->setContentsMargins({});
    cards->setSpacing(10);
    for (int i = 0; i < 5; ++i) {
      auto* card = new QFrame;
      card->setMinimumHeight(20 + 10 * i);
      cards->addWidget(card);
    }
    page.resize(width, cards->heightForWidth(width));
    page.show();
    QWidget* last = cards->itemAt(4)->widget();
    EXPECT_EQ(std::ranges::count_if(page.findChildren<QFrame*>(), [](QFrame* card) { return card->y() == 0; }),
              columns);
    EXPECT_EQ(last->geometry().bottom(), page.rect().bottom()) << width;
    EXPECT_LE(last->width(), 200);
    ExpectNothingIsCovered(page);
    cards->Clear();
    EXPECT_EQ(cards->count(), 0);
  }
}

TEST(ThemeTest, AChoiceIsKeptAndTakenBack) {
  const TemporaryFolder folder;
  const auto file = folder.Path() / "Windows.ini";
  const auto shade = [] { return QApplication::palette().color(QPalette::Window).lightness(); };
  const QPalette before = QApplication::palette();
  const QString style = QApplication::style()->objectName();
  for (const bool isNextStart : {false, true}) {
    ThemeChoice choice(file);
    if (!isNextStart) choice.Choose(Theme::Dark);
    EXPECT_EQ(choice.Chosen(), Theme::Dark);
    EXPECT_LT(shade(), 100);
    const std::string kept = TemporaryFolder::Content(file);
    choice.Choose(Theme::Light);
    EXPECT_GT(shade(), 200);
    choice.Choose(Theme::System);
    EXPECT_EQ(QApplication::palette(), before);
    EXPECT_EQ(QApplication::style()->objectName(), style);
    EXPECT_EQ(ThemeChoice(file).Chosen(), Theme::System);
    folder.Put("Windows.ini", kept);
  }
}

struct Window : QWidget {
  Window() {
    setObjectName("frmThing");
    splitter->setObjectName("splitMain");
    table->setObjectName("flgThings");
    table->setColumnCount(3);
    splitter->addWidget(table);
    splitter->addWidget(new QWidget);
    (new QVBoxLayout(this))->addWidget(splitter);
    resize(400, 300);
  }
  QSplitter* splitter = new QSplitter;
  QTableWidget* table = new QTableWidget;
};

TEST(WindowGeometryTest, AWindowComesBackAsItWasLeftUnlessItsPlaceIsDamaged) {
  const TemporaryFolder folder;
  const auto file = folder.Path() / "Windows.ini";
  QList<int> sizes;
  {
    Window window;
    RememberPlace(window, file);
    window.show();
    window.setGeometry(60, 70, 500, 333);
    window.splitter->setSizes({100, 350});
    window.table->setColumnWidth(1, 77);
    sizes = window.splitter->sizes();
    window.close();
  }
  {
    Window again;
    RememberPlace(again, file);
    again.show();
    EXPECT_EQ(again.geometry(), QRect(60, 70, 500, 333));
    EXPECT_EQ(again.splitter->sizes(), sizes);
    EXPECT_EQ(again.table->columnWidth(1), 77);
  }
  const std::string good = TemporaryFolder::Content(file);
  for (std::size_t at = 0; at < good.size(); at += 7) {
    folder.Put("Windows.ini", good.substr(0, at) + (at % 2 == 0 ? "" : "#" + good.substr(at + 1)));
    Window window;
    RememberPlace(window, file);
    EXPECT_TRUE(window.size() == QSize(400, 300) || window.size() == QSize(500, 333)) << at;
  }
}

// A dialog that does not fit keeps its buttons in sight, and takes no more room than it needs.
TEST(ScrollPageTest, ADialogFollowsItsContentAsFarAsTheScreenGoes) {
  QDialog dialog;
  auto* content = new QWidget;
  auto* row = new QFrame(content);
  (new QVBoxLayout(content))->addWidget(row);
  auto* button = new QPushButton("OK");
  auto* page = new QVBoxLayout(&dialog);
  auto* scrolled = new ScrollPage(content, &dialog);
  auto* empty = new QLabel(content);
  empty->setWordWrap(true);
  content->layout()->addWidget(empty);
  page->addWidget(scrolled);
  page->addWidget(button);
  row->setMinimumSize(300, 100);
  dialog.show();
  const int room = RoomFor(dialog).height();
  for (const int height : {100, 400, 3000, 100}) {
    row->setMinimumHeight(height);
    const int least = std::min(height, room);
    EXPECT_TRUE(WaitUntil([&] { return dialog.height() >= least && dialog.height() < least + 200; })) << height;
    EXPECT_LE(dialog.height(), room);
    const bool isNeeded = height > room;
    EXPECT_TRUE(WaitUntil([&] { return scrolled->verticalScrollBar()->isVisible() == isNeeded; })) << "for nothing";
    EXPECT_LE(button->mapTo(&dialog, QPoint(0, button->height())).y(), dialog.height());
  }
}

// What is beside it takes the rest, and the window stays as large as the user has made it, each time that it opens.
TEST(ScrollPageTest, ADialogKeepsTheSizeThatItWasGiven) {
  QDialog dialog;
  auto* text = new QLabel(QString("a long text ").repeated(20));
  text->setWordWrap(true);
  auto* content = new QWidget;
  (new QVBoxLayout(content))->addWidget(text);
  auto* scrolled = new ScrollPage(content, &dialog);
  scrolled->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
  auto* page = new QVBoxLayout(&dialog);
  page->addWidget(scrolled);
  page->addWidget(new QTextEdit, 1);
  dialog.resize(600, 500);
  for (int i = 0; i < 3; ++i) {
    dialog.show();
    QApplication::processEvents();
    EXPECT_EQ(dialog.height(), 500);
    dialog.hide();
  }
}

TEST(QtShellTest, AMissingProgramIsNamedAndAPresentOneStartsInItsFolder) {
  const TemporaryFolder folder;
  QtShell shell;
  const auto missing = shell.Open("open", "nowhere/PID Server.exe", "");
  ASSERT_FALSE(missing);
  EXPECT_EQ(missing.error(), "nowhere/PID Server.exe cannot be opened: it does not exist. Check the installation.");
#ifndef _WIN32
  const auto program = folder.Put("designer", "#!/bin/sh\necho \"$1\" > started.tmp && mv started.tmp started\n");
  std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  EXPECT_TRUE(shell.Open("open", program.string(), "/t:7"));
  ASSERT_TRUE(WaitUntil([&] { return std::filesystem::exists(folder.Path() / "started"); }));
  EXPECT_EQ(TemporaryFolder::Content(folder.Path() / "started"), "/t:7\n");
#endif
}

}  // namespace
}  // namespace kv
