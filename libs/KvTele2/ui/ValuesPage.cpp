#include "KvTele2/ui/ValuesPage.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "KvTele2/HostCommands.h"
#include "KvTele2/ui/ValueTile.h"
#include "desktop/ui/CardLayout.h"
#include "desktop/ui/Commands.h"
#include "desktop/ui/Icons.h"

namespace kv {
namespace {

constexpr int kTileWidth = 38;  // in characters

}  // namespace

ValuesPage::ValuesPage(OnCommand onCommand, QWidget* parent) : QWidget(parent), mOnCommand(std::move(onCommand)) {
  setObjectName("pageValues");
  new QVBoxLayout(this);
  BuildHead();
  mCards = new CardLayout(nullptr, kTileWidth * fontMetrics().averageCharWidth());
  auto* page = static_cast<QVBoxLayout*>(layout());
  page->addLayout(mCards);
  page->addStretch(1);
}

void ValuesPage::BuildHead() {
  mNote = new QLabel(this);
  mNote->setObjectName("lblValuesNote");
  mNote->setTextFormat(Qt::PlainText);
  mNote->setWordWrap(true);
  auto* view = new QPushButton(IconOf("datatypes"), "Operand V&iew...", this);
  view->setObjectName("cmdOperandView");
  Describe(*view, "Selects which regions are shown here, and changes their values");
  connect(view, &QPushButton::clicked, this, [this] { mOnCommand(command::kOperandView); });
  auto* head = new QHBoxLayout;
  head->addWidget(mNote, 1);
  head->addWidget(view);
  static_cast<QVBoxLayout*>(layout())->addLayout(head);
}

void ValuesPage::Show(const HostState& state) {
  mNote->setText(QString::fromStdString(TilesNote(state)));
  if (mTiles.size() != state.tiles.size()) {
    mCards->Clear();
    mTiles.clear();
    for (std::size_t i = 0; i < state.tiles.size(); ++i) {
      mTiles.push_back(new ValueTile(this));
      mCards->addWidget(mTiles.back());
    }
  }
  for (std::size_t i = 0; i < mTiles.size(); ++i) mTiles[i]->Show(state.tiles[i]);
}

}  // namespace kv
