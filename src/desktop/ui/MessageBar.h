#pragma once

#include <QStatusBar>

class QLabel;

namespace kv {

class ElidedLabel;

// A status bar with a message that gives way on the left, and fields on the right. Its names are "statusBar" and
// "lblMessage".
class MessageBar : public QStatusBar {
 public:
  explicit MessageBar(QWidget* parent);

  void ShowText(const QString& message);

 protected:
  // A field behind those that are there; `what` is its tooltip, and its name for screen readers.
  [[nodiscard]] QLabel* AddField(const char* name, const QString& what);

 private:
  ElidedLabel* mMessage;
};

}  // namespace kv
