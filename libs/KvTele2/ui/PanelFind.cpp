#include "KvTele2/ui/PanelFind.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <algorithm>

#include "desktop/ui/Commands.h"

namespace kv {

PanelFind::PanelFind(OnFound onFound, QWidget* parent) : QWidget(parent), mOnFound(std::move(onFound)) {
  setObjectName("panFind");
  mText = new QLineEdit(this);
  mText->setObjectName("txtFind");
  mText->setAccessibleName("Text to find on the screen");
  mText->setPlaceholderText("Text on the screen");
  mText->setClearButtonEnabled(true);
  mCount = new QLabel(this);
  mCount->setObjectName("lblFound");
  mCount->setAccessibleName("How often it was found");
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(6, 2, 6, 2);
  row->addWidget(mText, 1);
  row->addWidget(mCount);
  const auto add = [&](const char* name, const char* text, const char* tip, const char* keys, auto action) {
    auto* button = new QPushButton(text, this);
    button->setObjectName(name);
    button->setAutoDefault(false);
    Describe(*button, tip, keys);
    connect(button, &QPushButton::clicked, this, action);
    row->addWidget(button);
  };
  add("cmdFindNext", "Next", "Goes on to the next place", "Enter", [this] { Step(1); });
  add("cmdFindPrevious", "Previous", "Goes back to the place before", "Shift+Enter", [this] { Step(-1); });
  add("cmdFindClose", "Close", "Ends the search", "Esc", [this] { Close(); });
  connect(mText, &QLineEdit::textChanged, this, [this] {
    mHit = 0;
    Search();
  });
  hide();
}

void PanelFind::Open() {
  show();
  mText->setFocus();
  mText->selectAll();
  Search();
}

void PanelFind::Close() {
  hide();
  mOnFound(std::nullopt);
  if (onClose) onClose();
}

void PanelFind::Follow(const std::vector<panel::ScreenText>& texts) {
  mTexts = texts;
  if (isVisible()) Search();
}

void PanelFind::Search() {
  mHits.clear();
  const QString wanted = mText->text();
  for (const panel::ScreenText& text : mTexts) {
    const bool isThere = QString::fromStdString(text.text).contains(wanted, Qt::CaseInsensitive);
    const bool isKnown = std::ranges::find(mHits, text.place) != mHits.end();  // a button and its words
    if (!wanted.isEmpty() && isThere && !text.place.IsEmpty() && !isKnown) mHits.push_back(text.place);
  }
  if (mHit >= mHits.size()) mHit = 0;
  Tell();
}

void PanelFind::Step(int step) {
  if (mHits.empty()) return;
  const auto count = static_cast<int>(mHits.size());
  mHit = static_cast<std::size_t>((static_cast<int>(mHit) + step + count) % count);
  Tell();
}

void PanelFind::Tell() {
  const QString of = QString::number(mHits.empty() ? 0 : mHit + 1) + " of " + QString::number(mHits.size());
  mCount->setText(mText->text().isEmpty() ? QString() : mHits.empty() ? QString("Not on this page") : of);
  mOnFound(mHits.empty() ? std::nullopt : std::optional(mHits[mHit]));
}

// Here Escape closes this line, and is no command of the window.
bool PanelFind::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
    event->accept();
    return true;
  }
  return QWidget::event(event);
}

void PanelFind::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) return Close();
  const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (isEnter) return Step((event->modifiers() & Qt::ShiftModifier) != 0 ? -1 : 1);
  QWidget::keyPressEvent(event);
}

}  // namespace kv
