#pragma once

#include <QLabel>
#include <functional>
#include <string_view>

namespace kv {

// An address that opens with a click, or with Enter when the keys are on it. It is underlined and raised in colour
// while the pointer is over it or the keys are on it.
class AddressLabel final : public QLabel {
 public:
  // `what` says where it leads, for its tooltip and screen readers.
  AddressLabel(const char* name, std::string_view address, const QString& what, std::function<void()> open,
               QWidget* parent);

 protected:
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void ShowLook();

  std::function<void()> mOpen;
  bool mIsHovered = false;
};

}  // namespace kv
