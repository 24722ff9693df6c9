#pragma once

#include "dataview/GridChanges.h"
#include "desktop/ui/MessageBar.h"

namespace kv::mdlDataTypesView {

// The status bar: the outcome of the last command, and on the right the mode, passes a second, edited cells, the last
// error and how old the values are.
class ViewStatusBar final : public MessageBar {
 public:
  explicit ViewStatusBar(QWidget* parent);

  // `age` says how old the oldest shown value is; empty when there is none, or values are being refreshed.
  void Show(const ViewStatus& status, const QString& age);

 private:
  static void SetField(QLabel& field, const QString& text);
  void ShowError(const ViewStatus& status);

  QLabel* mError;
  QLabel* mEdited;
  QLabel* mAge;
  QLabel* mPasses;
  QLabel* mMode;
};

}  // namespace kv::mdlDataTypesView
