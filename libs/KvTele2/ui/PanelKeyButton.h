#pragma once

#include <QPushButton>
#include <functional>

#include "KvTele2/panel/ScreenItems.h"
#include "KvTele2/ui/HeldKey.h"

namespace kv {

// One key beside a text display. It takes no click, but a press that begins and ends: where the pointer leaves the key,
// with the focus, or when it is hidden, the press ends, and does not begin again when the pointer comes back.
class PanelKeyButton final : public QPushButton {
 public:
  PanelKeyButton(const QString& name, QWidget* parent);

  std::function<void()> onDown;
  std::function<void()> onUp;

  // `meaning` is what it does on this page; empty: nothing.
  void Show(const QString& meaning, std::optional<panel::Lamp> lamp);
  void ShowBlinking(bool isSeen);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void changeEvent(QEvent* event) override;
  bool event(QEvent* event) override;

 private:
  void Down();
  void Up();

  HeldKey mHeldKey{[this] { Up(); }};
  QString mName;
  QString mMeaning;
  std::optional<panel::Lamp> mLamp;
  bool mIsBlinkSeen = true;
};

}  // namespace kv
