#include "help/ui/frmHelp.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPrintDialog>
#include <QPrinter>
#include <QShortcut>
#include <QSplitter>
#include <QTabWidget>
#include <QTimer>
#include <QToolBar>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QVBoxLayout>
#include <utility>

#include "desktop/ui/Commands.h"
#include "desktop/ui/Icons.h"
#include "desktop/ui/RunDialog.h"
#include "desktop/ui/WindowGeometry.h"
#include "help/ui/HelpBrowser.h"

namespace kv {
namespace {

constexpr QSize kFirstSize(1000, 720);
constexpr int kPageRole = Qt::UserRole;  // of an item: the name of its page

QListWidgetItem* AddItem(QListWidget& list, const std::string& title, const std::string& page) {
  auto* item = new QListWidgetItem(QString::fromStdString(title), &list);
  item->setData(kPageRole, QString::fromStdString(page));
  return item;
}

QString PageOf(const QListWidgetItem& item) {
  return item.data(kPageRole).toString();
}

QString PageOf(const QTreeWidgetItem& item) {
  return item.data(0, kPageRole).toString();
}

// A click and Enter show the page of an item.
template <typename List>
void OnChosen(List& list, frmHelp& window) {
  const auto show = [&window](const auto* item) { window.ShowPage(PageOf(*item).toStdString()); };
  QObject::connect(&list, &List::itemClicked, &window, show);
  QObject::connect(&list, &List::itemActivated, &window, show);
}

}  // namespace

frmHelp::frmHelp(HelpBook book, Prompts& prompts, const std::filesystem::path& windowsFile)
    : mBook(std::move(book)), mPrompts(prompts) {
  setObjectName("frmHelp");
  setProperty(kStandsBeside, true);
  setWindowTitle("Telepanel help");
  setWindowIcon(IconOf("help"));
  auto* split = new QSplitter(Qt::Horizontal, this);
  split->setObjectName("splHelp");
  split->setChildrenCollapsible(false);
  mTabs = new QTabWidget(split);
  mTabs->setObjectName("tabHelp");
  mTabs->setAccessibleName("Ways to find a page");
  mBrowser = new HelpBrowser(mBook, split);
  mTabs->addTab(BuildContents(), "&Contents");
  mTabs->addTab(BuildIndex(), "&Index");
  mTabs->addTab(BuildSearch(), "&Search");
  // Whoever clicks a tab types next.
  connect(mTabs, &QTabWidget::tabBarClicked, this, [this](int index) {
    auto* field = index < 0 ? nullptr : mTabs->widget(index)->findChild<QLineEdit*>();
    if (field) QTimer::singleShot(0, field, [field] { field->setFocus(); });  // behind the click's own focus
  });
  split->setStretchFactor(1, 1);
  split->setSizes({300, 700});
  auto* page = new QVBoxLayout(this);
  page->setContentsMargins({});
  page->addWidget(BuildCommands());
  page->addWidget(split);
  connect(mBrowser, &QTextBrowser::sourceChanged, this, [this](const QUrl& shown) { MarkPage(HelpPageName(shown)); });
  connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, &QWidget::close);
  resize(kFirstSize);
  RememberPlace(*this, windowsFile);
}

QToolBar* frmHelp::BuildCommands() {
  auto* bar = new QToolBar(this);
  bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  const auto add = [&](const char* name, const QIcon& icon, const char* text, const QKeySequence& keys,
                       const char* tip) {
    QAction* command = bar->addAction(icon, text);
    command->setObjectName(name);
    command->setShortcut(keys);
    Describe(*command, tip);
    return command;
  };
  QAction* back = add("cmdBack", IconOf("back"), "&Back", Qt::ALT | Qt::Key_Left, "Shows the page before");
  QAction* forward =
      add("cmdForward", IconOf("forward"), "&Forward", Qt::ALT | Qt::Key_Right, "Shows the page after this one again");
  QAction* home = add("cmdHome", IconOf("home"), "&Home", Qt::ALT | Qt::Key_Home, "Shows the first page");
  QAction* find = add("cmdSearch", IconOf("search"), "S&earch", QKeySequence::Find, "Goes to the search");
  QAction* print = add("cmdPrint", IconOf("print"), "&Print...", QKeySequence::Print, "Prints this page");
  connect(back, &QAction::triggered, mBrowser, &QTextBrowser::backward);
  connect(forward, &QAction::triggered, mBrowser, &QTextBrowser::forward);
  connect(home, &QAction::triggered, this, [this] { ShowTopic(0); });
  connect(print, &QAction::triggered, this, [this] { Print(); });
  connect(find, &QAction::triggered, this, [this] {
    mTabs->setCurrentWidget(mQuestion->parentWidget());
    mQuestion->setFocus();
    mQuestion->selectAll();
  });
  connect(mBrowser, &QTextBrowser::backwardAvailable, this,
          [back](bool is) { Allow(*back, is ? "" : "This is the first page that was shown."); });
  connect(mBrowser, &QTextBrowser::forwardAvailable, this,
          [forward](bool is) { Allow(*forward, is ? "" : "This is the last page that was shown."); });
  return bar;
}

QWidget* frmHelp::BuildContents() {
  mContents = new QTreeWidget;
  mContents->setObjectName("tvwContents");
  mContents->setAccessibleName("Contents");
  mContents->setHeaderHidden(true);
  QTreeWidgetItem* chapter = nullptr;
  for (const HelpBook::Entry& entry : mBook.Contents()) {
    auto* item = entry.level > 0 && chapter ? new QTreeWidgetItem(chapter) : new QTreeWidgetItem(mContents);
    item->setText(0, QString::fromStdString(entry.title));
    item->setData(0, kPageRole, QString::fromStdString(entry.page));
    if (entry.level == 0) chapter = item;
  }
  OnChosen(*mContents, *this);
  return mContents;
}

QWidget* frmHelp::BuildIndex() {
  auto* tab = new QWidget;
  auto* keyword = new QLineEdit;
  keyword->setObjectName("txtKeyword");
  keyword->setAccessibleName("Word of the index");
  keyword->setPlaceholderText("Begin to type a word");
  keyword->setToolTip("Goes to the first word that begins like this");
  mIndex = new QListWidget;
  mIndex->setObjectName("lstIndex");
  mIndex->setAccessibleName("Index");
  for (const HelpBook::Entry& entry : mBook.Index()) AddItem(*mIndex, entry.title, entry.page);
  connect(keyword, &QLineEdit::textChanged, this, [this](const QString& text) { GoToKeyword(text); });
  connect(keyword, &QLineEdit::returnPressed, this, [this] {
    if (mIndex->currentItem()) ShowPage(PageOf(*mIndex->currentItem()).toStdString());
  });
  OnChosen(*mIndex, *this);
  auto* lines = new QVBoxLayout(tab);
  lines->addWidget(keyword);
  lines->addWidget(mIndex);
  return tab;
}

QWidget* frmHelp::BuildSearch() {
  auto* tab = new QWidget;
  mQuestion = new QLineEdit;
  mQuestion->setObjectName("txtSearch");
  mQuestion->setAccessibleName("Search for");
  mQuestion->setPlaceholderText("What are you looking for?");
  mQuestion->setToolTip("Pages with all of these words; Enter shows the first (Ctrl+F)");
  mQuestion->setClearButtonEnabled(true);
  mFound = new QLabel;
  mFound->setObjectName("lblFound");
  mFound->setTextFormat(Qt::PlainText);
  mFound->setWordWrap(true);
  mFound->hide();
  mHits = new QListWidget;
  mHits->setObjectName("lstHits");
  mHits->setAccessibleName("Pages that were found");
  connect(mQuestion, &QLineEdit::textChanged, this, [this](const QString& text) { Search(text); });
  connect(mQuestion, &QLineEdit::returnPressed, this, [this] {
    if (mHits->count() > 0) ShowPage(PageOf(*mHits->item(0)).toStdString());
  });
  OnChosen(*mHits, *this);
  auto* lines = new QVBoxLayout(tab);
  lines->addWidget(mQuestion);
  lines->addWidget(mFound);
  lines->addWidget(mHits);
  return tab;
}

void frmHelp::ShowTopic(std::int32_t mapNumber) {
  ShowPage(mBook.PageOf(mapNumber));
}

void frmHelp::ShowPage(const std::string& page) {
  mBrowser->ShowPage(page);
}

// The contents follow, whatever way the page was found by.
void frmHelp::MarkPage(const std::string& page) {
  for (QTreeWidgetItemIterator at(mContents); *at; ++at) {
    if (PageOf(**at).toStdString() == page) mContents->setCurrentItem(*at);
  }
  setWindowTitle(mBrowser->documentTitle().isEmpty() ? "Telepanel help"
                                                     : mBrowser->documentTitle() + " - Telepanel help");
}

void frmHelp::GoToKeyword(const QString& beginning) {
  const auto found = mIndex->findItems(beginning, Qt::MatchStartsWith);
  if (beginning.isEmpty() || found.isEmpty()) return;
  mIndex->setCurrentItem(found.front());
  mIndex->scrollToItem(found.front(), QAbstractItemView::PositionAtTop);
}

void frmHelp::Search(const QString& question) {
  mHits->clear();
  mFound->hide();
  if (question.trimmed().isEmpty()) return;
  if (!mSearch) mSearch.emplace(mBook);
  const HelpSearch::Answer answer = mSearch->Find(question.toStdString());
  for (const HelpSearch::Hit& hit : answer.hits) AddItem(*mHits, hit.title, hit.page);
  QStringList remarks;
  QStringList taken;
  for (const std::string& word : answer.taken) taken << QString::fromStdString(word) + "...";
  if (!taken.isEmpty()) remarks << "What was typed stands nowhere; this was looked for: " + taken.join(", ") + ".";
  if (answer.hits.empty()) remarks << "No page has these words.";
  if (!answer.hits.empty() && answer.complete == 0) remarks << "No page has all words; these have the most.";
  mFound->setText(remarks.join(" "));
  mFound->setVisible(!remarks.isEmpty());
}

void frmHelp::Print() {
  const OwnCommand command(*this);
  QPrinter printer;
#ifdef _WIN32  // whose dialog does not open without a printer; others make a file then
  if (printer.outputFormat() != QPrinter::NativeFormat) {
    mPrompts.Show({.text = "There is no printer on this computer.\nWhat to do: add one in the settings of the system; "
                           "one that makes PDF files will do.",
                   .title = "Help",
                   .icon = PromptIcon::Exclamation});
    return;
  }
#endif
  QPrintDialog dialog(&printer, this);
  dialog.setObjectName("PrintDialog");
  if (dialog.exec() == QDialog::Accepted) mBrowser->print(&printer);
}

}  // namespace kv
