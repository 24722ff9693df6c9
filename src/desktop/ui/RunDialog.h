#pragma once

class QDialog;
class QWidget;

namespace kv {

// The window that a box or dialog belongs to which is opened now; null when there is none.
[[nodiscard]] QWidget* DialogOwner();

// Runs a dialog with the ordinary pointer and no overlay, whatever the operation behind it shows; its result.
int RunDialog(QDialog& dialog);

}  // namespace kv
