#include "KvTele2/ui/ValueTile.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "desktop/ui/Commands.h"
#include "desktop/ui/ElidedLabel.h"

namespace kv {

ValueTile::ValueTile(QWidget* parent) : QFrame(parent) {
  setFrameShape(StyledPanel);
  setAutoFillBackground(true);
  setBackgroundRole(QPalette::Base);
  mTitle = new ElidedLabel(this);
  QFont bold = mTitle->font();
  bold.setBold(true);
  mTitle->setFont(bold);
  mOperands = new ElidedLabel(this);
  mValues = new QLabel(this);
  mValues->setTextFormat(Qt::PlainText);
  mValues->setWordWrap(true);
  mValues->setFont(FixedFont(mValues->font()));
  mValues->setTextInteractionFlags(Qt::TextSelectableByMouse);
  mFault = new ElidedLabel(this);
  mAge = new QLabel(this);
  mAge->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

  auto* foot = new QHBoxLayout;
  foot->addWidget(mOperands, 1);
  foot->addWidget(mAge);
  auto* rows = new QVBoxLayout(this);
  rows->addWidget(mTitle);
  rows->addWidget(mValues);
  rows->addWidget(mFault);
  rows->addStretch(1);
  rows->addLayout(foot);
}

void ValueTile::Show(const ShownTile& tile) {
  if (tile == mShown) return;
  mShown = tile;
  const QString operands = QString::fromStdString(tile.operands);
  const QString title = QString::fromStdString(tile.title);
  mTitle->SetFullText(title.isEmpty() ? operands : title);
  mOperands->SetFullText(title.isEmpty() ? QString() : operands);
  mValues->setText(tile.values.empty() ? "-" : QString::fromStdString(tile.values));
  mValues->setToolTip(QString::fromStdString(tile.allValues));
  mValues->setEnabled(!tile.isOld);
  mFault->SetFullText(QString::fromStdString(tile.fault));
  mFault->setVisible(!tile.fault.empty());
  mAge->setText(tile.age.empty() ? "never read" : QString::fromStdString(tile.age));
}

}  // namespace kv
