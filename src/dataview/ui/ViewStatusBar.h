#pragma once

#include <QStatusBar>

#include "dataview/GridChanges.h"

class QLabel;

namespace kv {
class ElidedLabel;
}

namespace kv::mdlDataTypesView {

// The status bar: the outcome of the last command, and on the right the mode, passes a second, edited cells, the last
// error and how old the values are.
class ViewStatusBar final : public QStatusBar {
 public:
  explicit ViewStatusBar(QWidget* parent);

  // `age` says how old the oldest shown value is; empty when there is none, or values are being refreshed.
  void Show(const ViewStatus& status, const QString& age);
  // A sentence of the window's own, until the next status.
  void Say(const QString& message);

 private:
  [[nodiscard]] QLabel* AddField(const char* name, const QString& what);
  static void SetField(QLabel& field, const QString& text);
  void ShowError(const ViewStatus& status);

  ElidedLabel* mMessage;
  QLabel* mError;
  QLabel* mEdited;
  QLabel* mAge;
  QLabel* mPasses;
  QLabel* mMode;
};

}  // namespace kv::mdlDataTypesView
