#include "KvTele2/ui/PanelKeyButton.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace kv {
namespace {

constexpr int kLampSize = 8;
constexpr QColor kLampOn(0x2e, 0xb8, 0x4a);

}  // namespace

PanelKeyButton::PanelKeyButton(const QString& name, QWidget* parent) : QPushButton(name, parent), mName(name) {
  setObjectName("cmdKey " + name);
  setFocusPolicy(Qt::TabFocus);  // whoever clicks it keeps the keyboard on the screen
  setAutoDefault(false);
}

void PanelKeyButton::Show(const QString& meaning, std::optional<panel::Lamp> lamp) {
  if (meaning == mMeaning && lamp == mLamp && !accessibleName().isEmpty()) return;
  mMeaning = meaning;
  mLamp = lamp;
  QString name = "Key " + mName + (meaning.isEmpty() ? "" : ", " + meaning);
  if (lamp == panel::Lamp::On) name += ", lamp on";
  if (lamp == panel::Lamp::Blinking) name += ", lamp blinks";
  if (lamp == panel::Lamp::Off) name += ", lamp off";
  setAccessibleName(name);
  update();
}

void PanelKeyButton::ShowBlinking(bool isSeen) {
  if (std::exchange(mIsBlinkSeen, isSeen) != isSeen && mLamp == panel::Lamp::Blinking) update();
}

// The lamp by colour and by form: a ring is off, a disc is on.
void PanelKeyButton::paintEvent(QPaintEvent* event) {
  QPushButton::paintEvent(event);
  if (!mLamp) return;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const bool isLit = *mLamp == panel::Lamp::On || (*mLamp == panel::Lamp::Blinking && mIsBlinkSeen);
  painter.setPen(palette().color(QPalette::ButtonText));
  if (isLit) painter.setBrush(kLampOn);
  painter.drawEllipse(QRectF(kLampSize / 2.0, kLampSize / 2.0, kLampSize, kLampSize));
}

void PanelKeyButton::Down() {
  if (isDown()) return;
  setDown(true);
  if (onDown) onDown();
}

void PanelKeyButton::Up() {
  mHeldKey.Forget();
  if (!isDown()) return;
  setDown(false);
  if (onUp) onUp();
}

void PanelKeyButton::mousePressEvent(QMouseEvent* event) {
  event->button() == Qt::LeftButton ? Down() : Up();
}

void PanelKeyButton::mouseMoveEvent(QMouseEvent* event) {
  if (!hitButton(event->position().toPoint())) Up();
}

void PanelKeyButton::mouseReleaseEvent(QMouseEvent*) {
  Up();
}

void PanelKeyButton::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Space) return QPushButton::keyPressEvent(event);
  if (mHeldKey.Begins(*event)) Down();
}

void PanelKeyButton::keyReleaseEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Space) return QPushButton::keyReleaseEvent(event);
  mHeldKey.Release(*event);
}

void PanelKeyButton::focusOutEvent(QFocusEvent* event) {
  Up();
  QPushButton::focusOutEvent(event);
}

void PanelKeyButton::hideEvent(QHideEvent* event) {
  Up();
  QPushButton::hideEvent(event);
}

void PanelKeyButton::changeEvent(QEvent* event) {
  if (event->type() == QEvent::ActivationChange && !isActiveWindow()) Up();
  QPushButton::changeEvent(event);
}

bool PanelKeyButton::event(QEvent* event) {
  const auto type = event->type();
  if (type == QEvent::UngrabMouse || type == QEvent::WindowDeactivate || type == QEvent::WindowBlocked) Up();
  return QPushButton::event(event);
}

}  // namespace kv
