#pragma once

#include <QDialog>
#include <functional>
#include <string>
#include <vector>

#include "KvCmDrv1/LinkInput.h"
#include "KvCmDrv1/ui/LinkFields.h"

class QHBoxLayout;
class QLabel;
class QPushButton;
class QVBoxLayout;

namespace kv {

// What the dialogs offer to be chosen.
struct LinkChoices {
  std::vector<std::string> models;  // that can be simulated
  PortLister listPorts;
};

// What the dialogs for link settings share: the window that asks for it as a sub-caption, the fields, what is wrong
// with them said while they are filled in, OK only while nothing is, and Cancel.
class LinkDialog : public QDialog {
 public:
  // What the user has entered; to be asked after the dialog was accepted, when every value is in its range.
  [[nodiscard]] virtual LinkSettings Settings() const { return mChecked.settings; }

 protected:
  LinkDialog(const LinkSettings& current, const std::string& caller, const LinkChoices& choices, QWidget* parent);

  [[nodiscard]] LinkFields& Fields() { return *mFields; }
  [[nodiscard]] const CheckedInput& Checked() const { return mChecked; }
  [[nodiscard]] QVBoxLayout& Below() { return *mBelow; }  // the fields
  // Adds a button left of OK.
  void AddButton(QPushButton* button);
  // Puts `control` before the fields for the Tab key. To be called when all buttons are there.
  void BeginTabsWith(QWidget* control);

  // Checks all fields and shows what is wrong; called with every change.
  virtual void Check();

 private:
  LinkSettings mBefore;
  CheckedInput mChecked;
  LinkFields* mFields;
  QLabel* mFault;
  QVBoxLayout* mBelow;
  QHBoxLayout* mButtons;
  std::vector<QWidget*> mTabs;  // added buttons, OK, Cancel
  QPushButton* mOk;
};

}  // namespace kv
