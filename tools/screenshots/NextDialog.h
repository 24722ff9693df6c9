#pragma once

#include <QApplication>
#include <QDialog>
#include <QTimer>
#include <functional>

namespace kv::test {

// Does something to the dialog that opens next while `context` lives.
inline void WithNextDialog(QObject& context, const std::function<void(QDialog& dialog)>& use) {
  auto* timer = new QTimer(&context);
  QObject::connect(timer, &QTimer::timeout, &context, [=] {
    auto* dialog = dynamic_cast<QDialog*>(QApplication::activeModalWidget());
    if (!dialog) return;
    timer->stop();
    use(*dialog);
  });
  timer->start(10);
}

}  // namespace kv::test
