#pragma once

#include <QObject>
#include <cstdint>
#include <functional>

class QWidget;

namespace kv {

// Finds the page for whoever asks for help, in all windows: by the help key, by a help command or button, by the link
// behind an error. From the widget outwards the nearest topic counts; a box that asks or complains has the page of its
// error, or that of the window that it belongs to.
//
// In the main window, where nothing nearer has a topic, the help key is left to the command "Help" there.
class HelpKey final : public QObject {
 public:
  using Show = std::function<void(std::int32_t mapNumber)>;

  // Watches the program's events from now on. Needs the QApplication.
  explicit HelpKey(Show show);

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  Show mShow;
};

// The map number of the topic that is nearest to a widget.
[[nodiscard]] std::int32_t HelpNumberOf(const QWidget& widget);

}  // namespace kv
