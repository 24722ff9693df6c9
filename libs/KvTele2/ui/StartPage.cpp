#include "KvTele2/ui/StartPage.h"

#include <QEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "KvTele2/HostCommands.h"
#include "desktop/ui/CardLayout.h"
#include "desktop/ui/Commands.h"
#include "desktop/ui/ElidedLabel.h"
#include "desktop/ui/Icons.h"
#include "desktop/ui/TextLabel.h"

namespace kv {
namespace {

constexpr int kCardWidth = 38;    // in characters
constexpr double kHeading = 1.2;  // of the usual size

void AddLine(QVBoxLayout& lines, QWidget* card, const std::string& text) {
  auto* line = new ElidedLabel(card);
  line->SetFullText(QString::fromStdString(text));
  lines.addWidget(line);
}

QFont Larger(QFont font) {
  font.setPointSizeF(kHeading * font.pointSizeF());
  font.setBold(true);
  return font;
}

std::string LastUsedText(const SessionCard& session) {
  return session.lastUsed.empty() ? "Never on line" : "Last on line " + session.lastUsed;
}

}  // namespace

StartPage::StartPage(OnCommand onCommand, QWidget* parent) : QWidget(parent), mOnCommand(std::move(onCommand)) {
  setObjectName("pageStart");
  new QVBoxLayout(this);
  BuildHead();
  mFault = MakeTextLabel("lblSessionsFault", "Why there are no sessions", this);
  mFault->hide();
  auto* page = static_cast<QVBoxLayout*>(layout());
  page->addWidget(mFault);
  mCards = new CardLayout(nullptr, kCardWidth * fontMetrics().averageCharWidth());
  page->addLayout(mCards);
  page->addStretch(1);
}

void StartPage::BuildHead() {
  auto* title = new QLabel("Sessions", this);
  title->setFont(Larger(title->font()));
  QPushButton* add = MakeButton("cmdNewSession", IconOf("new"), "&New Session...", command::kNewSession);
  Describe(*add, "Makes a new session, a copy of the active one, for another controller");
  QPushButton* simulate = MakeButton("cmdSimulate", IconOf("simulate"), "Try a Simulated &K670", command::kSimulate);
  Describe(*simulate, "Goes on line with a simulated controller, in a session of its own; it needs nothing");
  auto* head = new QHBoxLayout;
  head->addWidget(title, 1);
  head->addWidget(add);
  head->addWidget(simulate);
  static_cast<QVBoxLayout*>(layout())->addLayout(head);
}

QPushButton* StartPage::MakeButton(const char* name, const QIcon& icon, const char* text, std::string_view id) {
  auto* button = new QPushButton(icon, text, this);
  button->setObjectName(name);
  connect(button, &QPushButton::clicked, this, [this, id] { mOnCommand(id, ""); });
  return button;
}

void StartPage::Show(const HostState& state) {
  mFault->setText(QString::fromStdString(state.sessionsFault));
  mFault->setVisible(!state.sessionsFault.empty());
  if (state.sessions == mShown && state.session == mActive) return;
  mShown = state.sessions;
  mActive = state.session;
  Fill();
}

void StartPage::Fill() {
  mCards->Clear();
  for (const SessionCard& session : mShown) mCards->addWidget(MakeCard(session));
}

QFrame* StartPage::MakeCard(const SessionCard& session) {
  const QString name = QString::fromStdString(session.name);
  const bool isActive = session.name == mActive;
  auto* card = new QFrame(this);
  card->setFrameShape(QFrame::StyledPanel);
  card->setAutoFillBackground(true);
  card->setBackgroundRole(QPalette::Base);
  card->setProperty("kvSession", name);
  card->installEventFilter(this);

  auto* lines = new QVBoxLayout(card);
  auto* title = new ElidedLabel(card);
  title->SetFullText(name);
  title->setFont(Larger(title->font()));
  lines->addWidget(title);
  AddLine(*lines, card, session.model);
  AddLine(*lines, card, session.link);
  AddLine(*lines, card, LastUsedText(session));

  auto* button = new QPushButton(IconOf("online"), "On Line", card);
  button->setObjectName("cmdStart " + name);
  button->setAccessibleName("On Line, session " + name);
  Describe(*button, "Activates this session, and connects to its controller; a double click on the card does it, too");
  connect(button, &QPushButton::clicked, this, [this, id = session.name] { Start(id); });
  const bool isElsewhere = session.isMarked && !isActive;
  auto* note = new QLabel(isActive ? "Active session" : isElsewhere ? "Marked as in use" : "", card);
  note->setToolTip(isElsewhere ? "It is the active session of a program, or of one that was ended abruptly" : "");
  auto* foot = new QHBoxLayout;
  foot->addWidget(note, 1);
  foot->addWidget(button);
  lines->addLayout(foot);
  return card;
}

bool StartPage::eventFilter(QObject* watched, QEvent* event) {
  const QVariant session = watched->property("kvSession");
  if (event->type() != QEvent::MouseButtonDblClick || !session.isValid()) return false;
  Start(session.toString().toStdString());
  return true;
}

// Behind the click: another session has other cards, and the one that was clicked must outlive its click.
void StartPage::Start(const std::string& session) {
  QMetaObject::invokeMethod(
      this, [this, session] { mOnCommand(command::kStartSession, session); }, Qt::QueuedConnection);
}

}  // namespace kv
