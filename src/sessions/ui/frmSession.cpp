#include "sessions/ui/frmSession.h"

#include <QAction>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QShortcut>
#include <QSignalBlocker>
#include <QTableWidget>
#include <QVBoxLayout>

#include "desktop/ui/Commands.h"
#include "desktop/ui/ContextMenu.h"
#include "desktop/ui/Icons.h"
#include "link/LinkError.h"

namespace kv {
namespace {

constexpr QSize kFirstSize(720, 420);
constexpr int kNameWidth = 24;  // of the columns, in characters
constexpr int kModelWidth = 28;
enum Column { Name, Model, Link, kColumns };
constexpr const char* kNothingSelected = "No session is selected.";

// The caption is fixed to the last character, so it has no letter to underline.
const QKeySequence kCloseShortcut(Qt::ALT | Qt::Key_A);

// A name may hold "&", which a button would take for the mark of its shortcut.
QString ButtonText(const std::string& text) {
  return QString::fromStdString(text).replace("&", "&&");
}

}  // namespace

frmSession::frmSession(SharedState& shared, Prompts& prompts, QWidget* parent)
    : QDialog(parent), mShared(shared), mSessions(shared, prompts) {
  setObjectName("frmSession");
  setWindowTitle("Sessions");
  setWindowIcon(IconOf("session"));
  resize(kFirstSize);
  BuildList();
  BuildSaveFrame();
  BuildMenu();
  ArrangeControls();
  Fill();
}

void frmSession::BuildList() {
  mActive = new QLabel(this);
  mActive->setObjectName("lblActive");
  mActive->setTextFormat(Qt::PlainText);
  mFault = new QLabel(this);
  mFault->setObjectName("lblFault");
  mFault->setAccessibleName("Why there are no sessions");
  mFault->setTextFormat(Qt::PlainText);
  mFault->setWordWrap(true);
  mFault->setTextInteractionFlags(Qt::TextSelectableByMouse);
  mList = new QTableWidget(0, kColumns, this);
  mList->setObjectName("flgSession");
  mList->setAccessibleName("Sessions");
  mList->setToolTip(
      "The sessions beside the program; Enter or a double click activates one, Delete removes the selected one");
  mList->setHorizontalHeaderLabels({"Session", "Model", "Link"});
  mList->horizontalHeader()->setStretchLastSection(true);
  mList->horizontalHeader()->setHighlightSections(false);
  mList->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  mList->verticalHeader()->hide();
  mList->setSelectionMode(QAbstractItemView::SingleSelection);
  mList->setSelectionBehavior(QAbstractItemView::SelectRows);
  mList->setEditTriggers(QAbstractItemView::NoEditTriggers);
  mList->setTabKeyNavigation(false);
  const int letter = fontMetrics().averageCharWidth();
  mList->setColumnWidth(Name, kNameWidth * letter);
  mList->setColumnWidth(Model, kModelWidth * letter);
  connect(mList, &QTableWidget::itemSelectionChanged, this, [this] { RefreshCaptions(); });
  OnContextMenu(*mList, [this](const QModelIndex& row, const QPoint& at) {
    if (row.isValid()) ShowMenu(at);  // over empty ground it would delete a session that is not meant
  });
  mHold = new QLabel(this);
  mHold->setObjectName("lblHold");
  mHold->setAccessibleName("Why the selected session is not deleted");
  mHold->setTextFormat(Qt::PlainText);
  mHold->setWordWrap(true);
  mHold->setTextInteractionFlags(Qt::TextSelectableByMouse);
}

void frmSession::BuildSaveFrame() {
  mSaveFrame = new QGroupBox(this);
  mSaveFrame->setObjectName("fSaveSession");
  mFolder = new QLineEdit(mSaveFrame);
  mFolder->setObjectName("txtFolder");
  mFolder->setAccessibleName("Name of the new session");
  mFolder->setPlaceholderText("Name of the new session");
  mFolder->setToolTip("The name of a folder that is made beside the other sessions (Alt+N)");
  mSave = new QPushButton(IconOf("save"), "&Save", mSaveFrame);
  mSave->setObjectName("cmdSave");
  mSave->setAutoDefault(false);
  Describe(*mSave, "Copies the active session to a new one of this name, and makes that the active one", "Enter");
  mClose = new QPushButton(IconOf("test"), "", this);
  mClose->setObjectName("cmdClose");
  mClose->setAutoDefault(false);
  Describe(*mClose, "Makes the selected session the active one and closes this window",
           kCloseShortcut.toString(QKeySequence::NativeText));
  connect(mSave, &QPushButton::clicked, this, [this] { Create(); });
  connect(mFolder, &QLineEdit::returnPressed, this, [this] {
    if (mSave->isEnabled()) Create();
  });
  connect(mClose, &QPushButton::clicked, this, [this] { ActivateAndClose(); });
}

void frmSession::BuildMenu() {
  mDelete = new QAction(IconOf("delete"), "&Delete", mList);
  mDelete->setObjectName("mnuDelete");
  mDelete->setShortcut(QKeySequence::Delete);
  mDelete->setShortcutContext(Qt::WidgetShortcut);
  Describe(*mDelete, "Deletes the selected session with everything in it, after a question");
  mList->addAction(mDelete);
  for (const auto& key : {Qt::Key_Return, Qt::Key_Enter}) {
    auto* activate = new QShortcut(key, mList, nullptr, nullptr, Qt::WidgetShortcut);
    connect(activate, &QShortcut::activated, mClose, &QPushButton::click);
  }
  connect(mList, &QTableWidget::cellDoubleClicked, mClose, &QPushButton::click);
  connect(mDelete, &QAction::triggered, this, [this] { DeleteSelected(); });
}

void frmSession::ArrangeControls() {
  auto* name = new QLabel("&Name:", mSaveFrame);
  name->setBuddy(mFolder);
  auto* save = new QHBoxLayout(mSaveFrame);
  save->addWidget(name);
  save->addWidget(mFolder);
  save->addWidget(mSave);
  auto* page = new QVBoxLayout(this);
  page->addWidget(mActive);
  page->addWidget(mFault);
  page->addWidget(mList);
  page->addWidget(mHold);
  page->addWidget(mSaveFrame);
  page->addWidget(mClose);
  mList->setFocus();
}

void frmSession::Fill() {
  const QSignalBlocker quiet(mList);
  mList->setRowCount(0);
  for (const std::string& name : mSessions.List()) {
    const int row = mList->rowCount();
    mList->insertRow(row);
    const SessionFacts facts = mSessions.Describe(name);
    const std::string texts[kColumns] = {name, facts.model, facts.link};
    for (int column = 0; column < kColumns; ++column) {
      auto* item = new QTableWidgetItem(QString::fromStdString(texts[column]));
      item->setToolTip(item->text());
      mList->setItem(row, column, item);
    }
    if (name == mShared.CurrentSession) mList->setCurrentCell(row, 0);
  }
  mFault->setText(QString::fromStdString(mSessions.ListFault()));
  mFault->setVisible(!mFault->text().isEmpty());
  RefreshCaptions();
}

void frmSession::RefreshCaptions() {
  mSaveFrame->setTitle(ButtonText(mSessions.SaveCaption()));
  mActive->setText(QString::fromStdString(mSessions.ActiveCaption()));
  mClose->setText(ButtonText(SessionManager::ActivateCaption(Selected())));
  mClose->setShortcut(kCloseShortcut);  // a new text has taken it away
  const QString whyNot = Selected().empty() ? kNothingSelected : "";
  Allow(*mClose, whyNot);
  Allow(*mSave, whyNot);
  Allow(*mDelete, whyNot);
  ShowHold();
}

std::string frmSession::Selected() const {
  const auto rows = mList->selectionModel()->selectedRows();
  return rows.isEmpty() ? "" : rows.front().data().toString().toStdString();
}

void frmSession::Create() {
  if (!mSessions.Create(mFolder->text().toStdString())) return;
  Fill();
  mFolder->clear();
}

void frmSession::ActivateAndClose() {
  if (mSessions.Activate(Selected())) {
    accept();
  } else {
    Fill();
  }
}

void frmSession::DeleteSelected() {
  if (mSessions.DeleteOnConsent(Selected()) != SessionManager::Deletion::Declined) Fill();
}

// The active one is marked because it is active.
void frmSession::ShowHold() {
  const std::string selected = Selected();
  const bool isOther = !selected.empty() && selected != mShared.CurrentSession;
  const SessionHold hold = isOther ? mSessions.HoldOf(selected) : SessionHold();
  const LinkError text{LinkErrorCode::BadArgument, 0, "", hold.happened, hold.cause, hold.cure};
  mHold->setText(QString::fromStdString(text.Text()));
  mHold->setVisible(!hold.happened.empty());
}

void frmSession::ShowMenu(const QPoint& at) {
  QMenu menu(this);
  menu.setToolTipsVisible(true);
  menu.addAction(mDelete);
  menu.exec(at);
}

}  // namespace kv
