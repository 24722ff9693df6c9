#include "journal/ui/frmJournal.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>
#include <numeric>

#include "base/AtomicFile.h"
#include "base/PathText.h"
#include "base/Texts.h"
#include "desktop/ui/Commands.h"
#include "desktop/ui/Icons.h"
#include "desktop/ui/WindowGeometry.h"
#include "journal/Acknowledgement.h"
#include "journal/ui/JournalTable.h"

namespace kv {
namespace {

constexpr const char* kCaption = "Change Journal";
constexpr QSize kFirstSize(160, 40);                                 // in characters and lines
constexpr const char* kWhole[] = {"Number", "2026-11-22 08:41:12"};  // what the first columns show, never cut
constexpr int kShares[] = {12, 32, 40, 26};                          // of the others in the width that is left
constexpr int kFindingLines = 4;

QString Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += (text.empty() ? "" : "\n") + line;
  return QString::fromStdString(text);
}

// All that the row above has no room for.
std::vector<std::string> DetailsOf(const JournalEntry& entry) {
  const JournalRecord& record = entry.record;
  std::vector<std::string> lines;
  const auto add = [&lines](const char* what, const std::string& text) {
    if (!text.empty()) lines.push_back(what + text);
  };
  add("Operation: ", (record.tool.empty() ? "" : record.tool + ": ") + entry.What());
  add("Controller: ", entry.Controller());
  add("Link: ", record.link);
  add(entry.IsOperation() ? "Begun: " : "Recorded: ", record.time);
  add("Ended: ", entry.end ? entry.end->time : "");
  add("Result: ", entry.Result());
  add("Reason: ", record.reason);
  const std::vector<std::string> values = OperandLines(entry);
  lines.insert(lines.end(), values.begin(), values.end());
  return lines;
}

QPlainTextEdit* NewText(QWidget* parent, const char* objectName, const char* what) {
  auto* text = new QPlainTextEdit(parent);
  text->setObjectName(objectName);
  text->setAccessibleName(what);
  text->setToolTip(what);
  text->setReadOnly(true);
  text->setTabChangesFocus(true);
  text->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);  // lines are wrapped
  return text;
}

}  // namespace

frmJournal::frmJournal(JournalServices services, QWidget* parent) : QDialog(parent), mServices(std::move(services)) {
  setObjectName("frmJournal");
  setWindowTitle(kCaption);
  setWindowIcon(IconOf("journal"));
  const QSize letter(fontMetrics().averageCharWidth(), fontMetrics().lineSpacing());
  resize(QSize(kFirstSize.width() * letter.width(), kFirstSize.height() * letter.height()).boundedTo(RoomFor(*this)));
  BuildVerdict();
  BuildFilters();
  BuildList();
  BuildButtons();
  ArrangeControls();
  Read();
}

void frmJournal::BuildVerdict() {
  mVerdict = new QLabel(this);
  mVerdict->setObjectName("lblVerdict");
  mVerdict->setAccessibleName("Whether the journal is as it was written");
  mVerdict->setTextFormat(Qt::PlainText);
  mVerdict->setWordWrap(true);
  mVerdict->setTextInteractionFlags(Qt::TextSelectableByMouse);
  mFindings = NewText(this, "txtFindings", "What the check of the journal has found");
  mFindings->setMaximumHeight(kFindingLines * fontMetrics().lineSpacing() + 2 * mFindings->frameWidth() + 8);
}

QLineEdit* frmJournal::AddFilter(const char* objectName, const char* what, const char* keys, const char* placeholder) {
  auto* field = new QLineEdit(this);
  field->setObjectName(objectName);
  field->setAccessibleName(what);
  field->setToolTip(QString("%1 (%2)").arg(what, keys));
  field->setPlaceholderText(placeholder);
  field->setClearButtonEnabled(true);
  connect(field, &QLineEdit::textChanged, this, [this] { Filter(); });
  return field;
}

void frmJournal::BuildFilters() {
  mOperand = AddFilter("txtOperand", "Only changes of this operand", "Alt+O", "MI 5, MI 0..9 or MI");
  mUser = AddFilter("txtUser", "Only changes by this user", "Alt+U", "a part of the name");
  mDay = AddFilter("txtDay", "Only changes of this day", "Alt+D", "2026-11-22, or 2026-11");
  mCount = new QLabel(this);
  mCount->setObjectName("lblCount");
  mCount->setAccessibleName("How many entries are shown");
  mCount->setTextFormat(Qt::PlainText);
  mCount->setWordWrap(true);
}

void frmJournal::BuildList() {
  mRows = new JournalTable(this);
  mList = new QTableView(this);
  mList->setObjectName("tblChanges");
  mList->setAccessibleName("Changes, the newest first");
  mList->setToolTip("Who changed what, the newest first; the values of the selected one stand below");
  mList->setModel(mRows);
  mList->setSelectionMode(QAbstractItemView::SingleSelection);
  mList->setSelectionBehavior(QAbstractItemView::SelectRows);
  mList->setTabKeyNavigation(false);
  mList->setWordWrap(false);
  mList->setTextElideMode(Qt::ElideMiddle);  // the end of a path tells more than its middle
  mList->verticalHeader()->hide();
  mList->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  mList->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
  mList->horizontalHeader()->setStretchLastSection(true);
  mList->horizontalHeader()->setHighlightSections(false);
  FitColumns(width());
  mDetails = NewText(this, "txtDetails", "The selected change: from which values to which");
  connect(mList->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { ShowSelected(); });
}

// All columns are in sight, whatever the size of letters and window; the user may set them otherwise.
void frmJournal::FitColumns(int width) {
  constexpr int kMargin = 12;
  int column = 0;
  for (const char* text : kWhole) {
    const int whole = fontMetrics().horizontalAdvance(text) + kMargin;
    mList->setColumnWidth(column++, whole);
    width -= whole;
  }
  const int all = std::accumulate(std::begin(kShares), std::end(kShares), 0);
  for (const int share : kShares) mList->setColumnWidth(column++, std::max(0, width * share / all));
}

void frmJournal::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  const int room = mList->viewport()->width();
  if (mList->horizontalHeader()->length() > room) FitColumns(room);
}

void frmJournal::BuildButtons() {
  mAcknowledge = new QPushButton(IconOf("warning"), "&Acknowledge...", this);
  mAcknowledge->setObjectName("cmdAcknowledge");
  mAcknowledge->setAutoDefault(false);
  Describe(*mAcknowledge, "Records that what the check has found was looked at, and why it is so", "Alt+A");
  connect(mAcknowledge, &QPushButton::clicked, this, [this] { Acknowledge(); });
  mExport = new QPushButton(IconOf("export"), "&Export...", this);
  mExport->setObjectName("cmdExport");
  mExport->setAutoDefault(false);
  Describe(*mExport, "Writes the changes that are shown to a table, a line for each operand", "Alt+E");
  mRefresh = new QPushButton(IconOf("refresh"), "&Refresh", this);
  mRefresh->setObjectName("cmdRefresh");
  mRefresh->setAutoDefault(false);
  mRefresh->setShortcut(QKeySequence::Refresh);
  Describe(*mRefresh, "Reads the journal anew and checks it",
           QKeySequence(QKeySequence::Refresh).toString(QKeySequence::NativeText));
  mClose = new QPushButton(IconOf("exit"), "&Close", this);
  mClose->setObjectName("cmdClose");
  mClose->setAutoDefault(false);
  Describe(*mClose, "Closes this window", "Esc");
  connect(mExport, &QPushButton::clicked, this, [this] { Export(); });
  connect(mRefresh, &QPushButton::clicked, this, [this] { Read(); });
  connect(mClose, &QPushButton::clicked, this, [this] { reject(); });
}

void frmJournal::ArrangeControls() {
  auto* filters = new QHBoxLayout;
  const auto addFilter = [this, filters](const char* text, QLineEdit* field) {
    auto* label = new QLabel(text, this);
    label->setBuddy(field);
    filters->addWidget(label);
    filters->addWidget(field);
  };
  addFilter("&Operand:", mOperand);
  addFilter("&User:", mUser);
  addFilter("&Day:", mDay);

  auto* parts = new QSplitter(Qt::Vertical, this);
  parts->setObjectName("splParts");
  parts->setChildrenCollapsible(false);
  parts->addWidget(mList);
  parts->addWidget(mDetails);
  parts->setStretchFactor(0, 3);
  parts->setStretchFactor(1, 2);

  auto* buttons = new QHBoxLayout;
  buttons->addWidget(mRefresh);
  buttons->addWidget(mExport);
  buttons->addWidget(mAcknowledge);
  buttons->addStretch();
  buttons->addWidget(mClose);

  auto* page = new QVBoxLayout(this);
  page->addWidget(mVerdict);
  page->addWidget(mFindings);
  page->addLayout(filters);
  page->addWidget(mCount);
  page->addWidget(parts, 1);
  page->addLayout(buttons);
  mList->setFocus();
}

void frmJournal::Read() {
  mCheck = CheckJournal(mServices.places, mServices.disk, mServices.pacer);
  mAll = ListJournal(mServices.places, mServices.disk, mServices.pacer, {});
  ShowVerdict();
  Filter();
}

void frmJournal::ShowVerdict() {
  QFont font = this->font();
  font.setBold(!mCheck.IsSound());
  mVerdict->setFont(font);
  mVerdict->setText(QString::fromStdString(VerdictText(mCheck)));
  mFindings->setPlainText(Joined(CheckLines(mCheck)));
  mFindings->setVisible(!mFindings->toPlainText().isEmpty());
  Allow(*mAcknowledge, mCheck.findings.empty() ? "The check has found nothing." : "");
}

JournalFilter frmJournal::Wanted() const {
  const auto text = [](const QLineEdit& field) { return field.text().trimmed().toStdString(); };
  return {.operand = text(*mOperand), .user = text(*mUser), .day = text(*mDay)};
}

void frmJournal::Filter() {
  const JournalFilter filter = Wanted();
  mShown = {.entries = {}, .left = mAll.left, .unreadable = mAll.unreadable, .readBefore = mAll.readBefore};
  const std::string fault = filter.Fault();
  if (fault.empty()) {
    std::ranges::copy_if(mAll.entries, std::back_inserter(mShown.entries),
                         [&filter](const JournalEntry& entry) { return filter.Wants(entry); });
  }
  mRows->Show(mShown.entries);
  const std::size_t shown = mShown.entries.size();
  std::string count = Counted(shown, "entry", "entries");
  if (shown < mAll.entries.size()) count += " of " + std::to_string(mAll.entries.size());
  if (mAll.left > 0) count += "; " + std::to_string(mAll.left) + " older ones are left out";
  if (mAll.unreadable > 0) count += "; " + Counted(mAll.unreadable, "line is no record", "lines are no records");
  mCount->setText(QString::fromStdString(fault.empty() ? count : "Nothing is shown: " + fault));
  Allow(*mExport, shown > 0 ? "" : "No entry is shown.");
  if (shown > 0) mList->selectRow(0);
  ShowSelected();
}

void frmJournal::ShowSelected() {
  const auto rows = mList->selectionModel()->selectedRows();
  const JournalEntry* entry = rows.isEmpty() ? nullptr : mRows->EntryAt(rows.front().row());
  mDetails->setPlainText(entry ? Joined(DetailsOf(*entry)) : "");
}

void frmJournal::Acknowledge() {
  const auto reason = mServices.prompts.Ask(
      {.text =
           "Why is it so, and who has looked at it? This is recorded in the journal. What is found now is told apart "
           "from then on; what is done to these records later is not.",
       .title = kCaption});
  const Acknowledgement by{mServices.user, std::string(TrimBlanks(reason.value_or("")))};
  if (by.reason.empty()) return;
  const auto number = AcknowledgeFindings(mServices.places, mServices.disk, mServices.pacer, mServices.clock, by);
  Read();
  if (number) return;
  mServices.prompts.Show({.text = number.error(), .title = kCaption, .icon = PromptIcon::Exclamation});
}

void frmJournal::Export() {
  const auto file = mServices.prompts.SaveFile({.title = "Export the Change Journal",
                                                .filter = "Tables (*.csv)|*.csv",
                                                .purpose = "Journal",
                                                .initial = "changes.csv"});
  if (!file) return;
  const auto saved = SaveAtomically(PathFromUtf8(*file), JournalCsv(mShown, mCheck));
  if (saved) return;
  mServices.prompts.Show({.text = "The table was not written: " + saved.error().Text() + ".",
                          .title = kCaption,
                          .icon = PromptIcon::Exclamation});
}

}  // namespace kv
