#pragma once

#include <QDialog>
#include <string>

#include "desktop/Prompts.h"
#include "desktop/WallClock.h"
#include "journal/JournalCheck.h"
#include "journal/JournalList.h"

class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QTableView;

namespace kv {

class JournalTable;

// What the window of the journal asks of the program; all outlive it.
struct JournalServices {
  JournalPlaces places;
  JournalDisk& disk;
  Prompts& prompts;
  Pacer& pacer;
  const WallClock& clock;
  std::string user;  // who acknowledges
};

// The journal of changes of the current session: at the top what the check has found, below it who changed what, by
// operand, user and day, and at the bottom the values of the selected entry. It changes nothing, but can record that
// what the check has found was looked at.
class frmJournal final : public QDialog {
 public:
  frmJournal(JournalServices services, QWidget* parent);

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void BuildVerdict();
  void BuildFilters();
  void BuildList();
  void BuildButtons();
  void ArrangeControls();
  [[nodiscard]] QLineEdit* AddFilter(const char* objectName, const char* what, const char* keys,
                                     const char* placeholder);

  void Read();
  void Filter();
  void ShowVerdict();
  void ShowSelected();
  void FitColumns(int width);
  void Acknowledge();
  void Export();
  [[nodiscard]] JournalFilter Wanted() const;

  JournalServices mServices;
  JournalCheck mCheck;
  JournalListing mAll;
  JournalListing mShown;
  QLabel* mVerdict = nullptr;
  QPlainTextEdit* mFindings = nullptr;
  QLineEdit* mOperand = nullptr;
  QLineEdit* mUser = nullptr;
  QLineEdit* mDay = nullptr;
  QLabel* mCount = nullptr;
  JournalTable* mRows = nullptr;
  QTableView* mList = nullptr;
  QPlainTextEdit* mDetails = nullptr;
  QPushButton* mAcknowledge = nullptr;
  QPushButton* mExport = nullptr;
  QPushButton* mRefresh = nullptr;
  QPushButton* mClose = nullptr;
};

}  // namespace kv
