#pragma once

#include <QDialog>
#include <string>

#include "desktop/Prompts.h"
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
};

// The journal of changes of the current session: at the top what the check has found, below it who changed what, by
// operand, user and day, and at the bottom the values of the selected entry. It changes nothing.
class frmJournal final : public QDialog {
 public:
  frmJournal(JournalServices services, QWidget* parent);

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
  QPushButton* mExport = nullptr;
  QPushButton* mRefresh = nullptr;
  QPushButton* mClose = nullptr;
};

}  // namespace kv
