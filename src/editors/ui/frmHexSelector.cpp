#include "editors/ui/frmHexSelector.h"

#include <QAbstractButton>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <array>

#include "desktop/ui/Commands.h"
#include "desktop/ui/WindowGeometry.h"
#include "editors/CharacterTable.h"

namespace kv {
namespace {

constexpr QSize kFirstSize(340, 460);
enum Column { kDecimal, kHex, kName, kColumns };

class CharacterGrid final : public QTableWidget {
 public:
  using QTableWidget::QTableWidget;

  // A typed character is its own code, not the beginning of a longer name.
  void keyboardSearch(const QString& typed) override {
    if (const auto code = CodeOfCharacter(typed.toStdString())) setCurrentCell(*code, kName);
  }
};

QColor FromGridValue(std::uint32_t value) {
  return {static_cast<int>(value & 0xFF), static_cast<int>(value >> 8 & 0xFF), static_cast<int>(value >> 16 & 0xFF)};
}

QString NameOf(const CharacterRow& row) {
  const QString name = QString::fromStdString(row.name);
  const QString note = QString::fromStdString(row.note);
  return note.isEmpty() ? name : name + "  " + note;
}

QTableWidgetItem* MakeItem(const CharacterRow& row, Column column, const QFont& fixedFace) {
  const std::array<const std::string*, kColumns> texts = {&row.decimal, &row.hex, &row.name};
  auto* item = new QTableWidgetItem(QString::fromStdString(*texts[column]));
  item->setToolTip(QString::fromStdString(row.note));
  item->setData(Qt::AccessibleTextRole, column == kName ? NameOf(row) : item->text());
  if (column == kName) {
    item->setTextAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  } else {
    item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    item->setFont(fixedFace);
  }
  if (row.mark != CharacterMark::None) {
    item->setBackground(FromGridValue(row.mark == CharacterMark::Fit ? kFitColour : kUnfitColour));
    item->setForeground(QColor(Qt::black));
  }
  return item;
}

}  // namespace

frmHexSelector::frmHexSelector(const std::filesystem::path& placesFile, QWidget* parent) : QDialog(parent) {
  setObjectName("frmHexSelector");
  setWindowTitle("Choose CSV Separator");
  resize(kFirstSize);
  BuildTable();
  ArrangeControls();
  RememberPlace(*this, placesFile);
}

void frmHexSelector::BuildTable() {
  mTable = new CharacterGrid(static_cast<int>(kCharacterCount), kColumns, this);
  mTable->setObjectName("flgLowChars");
  mTable->setAccessibleName("Characters");
  mTable->setAccessibleDescription("Type a character to go to it");
  mTable->setHorizontalHeaderLabels({"Dec", "Hex", "Character"});
  mTable->horizontalHeader()->setStretchLastSection(true);
  mTable->horizontalHeader()->setHighlightSections(false);
  for (const Column column : {kDecimal, kHex}) {
    mTable->setColumnWidth(column, mTable->fontMetrics().horizontalAdvance("0000000000"));
  }
  mTable->verticalHeader()->hide();
  mTable->setSelectionMode(QAbstractItemView::SingleSelection);
  mTable->setSelectionBehavior(QAbstractItemView::SelectRows);
  mTable->setEditTriggers(QAbstractItemView::NoEditTriggers);
  mTable->setTabKeyNavigation(false);
  const QFont fixedFace = FixedFont(mTable->font());
  for (const CharacterRow& row : CharacterTable()) {
    for (const Column column : {kDecimal, kHex, kName})
      mTable->setItem(row.code, column, MakeItem(row, column, fixedFace));
  }
  connect(mTable, &QTableWidget::currentCellChanged, this, [this](int row) { ShowChoice(row); });
  connect(mTable, &QTableWidget::cellDoubleClicked, this, [this] { accept(); });
}

void frmHexSelector::ArrangeControls() {
  auto* hint = new QLabel("Choose a character, or type it:", this);
  hint->setBuddy(mTable);
  mChoiceText = new QLabel(this);
  mChoiceText->setObjectName("lblChoice");
  mChoiceText->setTextFormat(Qt::PlainText);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  QPushButton* confirm = buttons->button(QDialogButtonBox::Ok);
  confirm->setObjectName("cmdOK");
  confirm->setDefault(true);
  Describe(*confirm, "Takes the chosen character", "Enter");
  QPushButton* leave = buttons->button(QDialogButtonBox::Cancel);
  leave->setObjectName("cmdCancel");
  leave->setAutoDefault(false);
  Describe(*leave, "Leaves without choosing", "Escape");
  connect(buttons, &QDialogButtonBox::accepted, this, [this] { accept(); });
  connect(buttons, &QDialogButtonBox::rejected, this, [this] { reject(); });
  auto* page = new QVBoxLayout(this);
  page->addWidget(hint);
  page->addWidget(mTable);
  page->addWidget(mChoiceText);
  page->addWidget(buttons);
}

void frmHexSelector::ShowChoice(int row) {
  if (row < 0) return;
  const CharacterRow& chosen = CharacterTable()[static_cast<std::size_t>(row)];
  mChoice = chosen.hex;
  mChoiceText->setText("Chosen: " + QString::fromStdString(chosen.hex) + "  " + NameOf(chosen));
}

std::optional<std::string> frmHexSelector::Edit(const std::string& hexCode) {
  mChoice = hexCode;
  if (const auto code = CodeFromHex(hexCode)) {
    mTable->setCurrentCell(*code, kName);
    ShowChoice(*code);  // also when the row was the current one before
  }
  mTable->setFocus();
  if (exec() != QDialog::Accepted) return std::nullopt;
  return mChoice;
}

}  // namespace kv
