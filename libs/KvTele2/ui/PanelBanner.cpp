#include "KvTele2/ui/PanelBanner.h"

#include <QAction>
#include <QEvent>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QToolButton>
#include <QVBoxLayout>

#include "KvTele2/PanelText.h"
#include "desktop/ui/ElidedLabel.h"
#include "desktop/ui/Icons.h"
#include "desktop/ui/TextLabel.h"

namespace kv {

// The mode in one word with its sign: an eye on the window's colour, or a hand on amber.
class PanelBanner::ModeTag final : public QFrame {
 public:
  explicit ModeTag(QWidget* parent) : QFrame(parent) {
    mSign = new QLabel(this);
    mWord = new QLabel(this);
    mWord->setObjectName("lblPanelMode");
    mWord->setAccessibleDescription("Whether the panel is viewed or operated");
    QFont bold = mWord->font();
    bold.setBold(true);
    bold.setPointSizeF(kLarge * bold.pointSizeF());
    mWord->setFont(bold);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(8, 2, 8, 2);
    row->addWidget(mSign);
    row->addWidget(mWord);
    Show(panel::PanelMode::View);
  }

  void Show(panel::PanelMode mode) {
    const QString word = QString::fromStdString(PanelModeText(mode));
    const bool isChange = word != mWord->text();
    mWord->setText(word);
    mMode = mode;
    if (isChange) TakeColours();
  }

 protected:
  bool event(QEvent* event) override {
    const bool isTaken = QFrame::event(event);
    if (event->type() == QEvent::ApplicationPaletteChange) TakeColours();
    return isTaken;
  }

 private:
  static constexpr double kLarge = 1.2;
  static constexpr int kSignSize = 22;

  void TakeColours() {
    const bool isOperate = mMode == panel::PanelMode::Operate;
    setAutoFillBackground(isOperate);
    QPalette colours;
    if (isOperate) {
      colours.setColor(QPalette::Window, OperateColour());
      colours.setColor(QPalette::WindowText, Qt::black);
    }
    setPalette(colours);
    mSign->setPixmap(Sign(isOperate ? IconOf("hand") : IconOf("eye"), colours.color(QPalette::WindowText)));
  }

  // Drawings have the colour of a button's text; this one has that of the word.
  [[nodiscard]] QPixmap Sign(const QIcon& icon, const QColor& colour) const {
    QPixmap sign = icon.pixmap(QSize(kSignSize, kSignSize), devicePixelRatioF());
    QPainter painter(&sign);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(sign.rect(), colour);
    return sign;
  }

  QLabel* mSign;
  QLabel* mWord;
  panel::PanelMode mMode = panel::PanelMode::View;
};

QColor PanelBanner::OperateColour() {
  return {0xff, 0xb0, 0x20};
}

PanelBanner::PanelBanner(const std::vector<QAction*>& commands, QWidget* parent) : QFrame(parent) {
  setObjectName("bnrPanel");
  mTag = new ModeTag(this);
  mPage = new ElidedLabel(this);
  mPage->setObjectName("lblPanelPage");
  auto* head = new QHBoxLayout;
  head->addWidget(mTag);
  head->addWidget(mPage, 1);
  for (QAction* command : commands) {
    auto* button = new QToolButton(this);
    button->setObjectName("cmd" + command->objectName());
    button->setDefaultAction(command);
    button->setAutoRaise(true);
    if (!command->menu() && command->priority() == QAction::HighPriority)
      button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    if (command->menu()) button->setPopupMode(QToolButton::InstantPopup);
    head->addWidget(button);
    mButtons.push_back(button);
  }
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(6, 4, 6, 4);
  rows->addLayout(head);
  mNote = new ElidedLabel(this);
  mNote->setObjectName("lblPanelNote");
  mNote->setAccessibleDescription("Why the screen is old, who operates it, and what became of the last press");
  rows->addWidget(mNote);
  mCure = MakeTextLabel("lblPanelCure", "Likely cause, and what to do", this);
  mCure->hide();
  rows->addWidget(mCure);
}

// The mode's word never gives way: whoever does not see it does not know whether he operates. The menus have all
// commands.
void PanelBanner::resizeEvent(QResizeEvent* event) {
  QFrame::resizeEvent(event);
  constexpr int kPageLetters = 10;
  int left = width() - mTag->sizeHint().width() - kPageLetters * fontMetrics().averageCharWidth();
  for (QWidget* button : mButtons) {
    left -= button->sizeHint().width() + layout()->spacing();
    button->setVisible(left > 0);
  }
}

void PanelBanner::Show(const panel::PanelState& state, const QString& note) {
  mTag->Show(state.mode);
  mPage->SetFullText(QString::fromStdString(PanelPageText(state)));
  QStringList notes;
  for (const std::string& text : {PanelOldText(state), PanelOperatorText(state)}) notes += QString::fromStdString(text);
  notes += note;
  notes.removeAll({});
  const QString all = notes.join(' ').remove('\r');
  mNote->SetFullText(all);
  // Cause and cure of what failed. Who operates has the screen stay where it is.
  const QString cure = state.mode == panel::PanelMode::View ? all.section('\n', 1) : QString();
  mCure->setText(cure);
  mCure->setVisible(!cure.isEmpty());
}

}  // namespace kv
