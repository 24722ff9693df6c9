#pragma once

#include <QDialog>
#include <string>

#include "sessions/SessionManager.h"

class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableWidget;

namespace kv {

// The session window: lists the sessions, creates one as a copy of the current one, activates another one and leaves,
// deletes. Every rule is the SessionManager's; the window shows its texts and hands on what the user does.
class frmSession : public QDialog {
 public:
  frmSession(SharedState& shared, Prompts& prompts, QWidget* parent);

 private:
  void BuildList();
  void BuildSaveFrame();
  void BuildMenu();
  void ArrangeControls();

  void Fill();
  void RefreshCaptions();
  [[nodiscard]] std::string Selected() const;

  void Create();
  void ActivateAndClose();
  void DeleteSelected();
  void ShowHold();
  void ShowMenu(const QPoint& at);  // on the screen

  SharedState& mShared;
  SessionManager mSessions;
  QTableWidget* mList = nullptr;
  QLabel* mActive = nullptr;
  QLabel* mFault = nullptr;
  QLabel* mHold = nullptr;
  QGroupBox* mSaveFrame = nullptr;
  QLineEdit* mFolder = nullptr;
  QPushButton* mSave = nullptr;
  QPushButton* mClose = nullptr;
  QAction* mDelete = nullptr;
};

}  // namespace kv
