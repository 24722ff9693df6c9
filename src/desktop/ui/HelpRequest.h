#pragma once

#include <QEvent>
#include <QString>
#include <QWidget>

namespace kv {

// Asks for the help on a widget: what a help command, a button with a question mark and the link behind an error do.
// Whoever shows the help watches the program's events for it and finds the page; without him nothing happens.
class HelpRequest final : public QEvent {
 public:
  explicit HelpRequest(QString message) : QEvent(Kind()), mMessage(std::move(message)) {}

  [[nodiscard]] static QEvent::Type Kind();
  // The error that the help is wanted on; empty: on the widget.
  [[nodiscard]] const QString& Message() const { return mMessage; }

 private:
  QString mMessage;
};

// A widget whose property of this name is true takes the help key for itself at the moment.
inline constexpr const char* kTakesHelpKey = "kvTakesHelpKey";

void RequestHelp(QWidget& on, const QString& message = {});

}  // namespace kv
