#pragma once

#include <QDialog>
#include <filesystem>

#include "editors/clsHexSelector.h"

class QLabel;
class QTableWidget;

namespace kv {

// Picks a character: a table of all 256 codes, in which the arrow keys move and a typed character jumps to itself.
// Enter and a double click confirm, Escape leaves.
class frmHexSelector : public QDialog, public HexSelectorWindow {
 public:
  // `placesFile` is where windows remember their places.
  frmHexSelector(const std::filesystem::path& placesFile, QWidget* parent);

  [[nodiscard]] std::optional<std::string> Edit(const std::string& hexCode) override;

 private:
  void BuildTable();
  void ArrangeControls();
  void ShowChoice(int row);

  QTableWidget* mTable = nullptr;
  QLabel* mChoiceText = nullptr;
  std::string mChoice;
};

}  // namespace kv
