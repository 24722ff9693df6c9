#pragma once

#include <QPointer>
#include <QWidget>

class QDialog;

namespace kv {

// A window of which this property is true stands beside those that its user works in, as help and trace do. What is
// asked while it is in front belongs to one of them, and does not go away with it.
inline constexpr const char* kStandsBeside = "kvStandsBeside";

// While it lives, what is asked belongs to this window all the same: it is the window's own command that asks.
class OwnCommand {
 public:
  explicit OwnCommand(QWidget& window);
  ~OwnCommand();
  OwnCommand(const OwnCommand&) = delete;
  OwnCommand& operator=(const OwnCommand&) = delete;

 private:
  QPointer<QWidget> mBefore;
};

// The window that a box or dialog belongs to which is opened now; null when there is none.
[[nodiscard]] QWidget* DialogOwner();

// Runs a dialog with the ordinary pointer and no overlay, whatever the operation behind it shows; its result.
int RunDialog(QDialog& dialog);

}  // namespace kv
