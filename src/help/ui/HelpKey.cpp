#include "help/ui/HelpKey.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <utility>
#include <vector>

#include "desktop/ui/HelpRequest.h"
#include "help/HelpTopics.h"

namespace kv {
namespace {

bool IsHelpKey(const QEvent& event) {
  if (event.type() != QEvent::KeyPress && event.type() != QEvent::ShortcutOverride) return false;
  const auto& key = static_cast<const QKeyEvent&>(event);
  return QKeySequence(key.keyCombination()).matches(QKeySequence(QKeySequence::HelpContents)) ==
         QKeySequence::ExactMatch;
}

bool IsBox(const QWidget& window) {
  return window.objectName() == "MessageBox" || window.objectName() == "InputBox";
}

std::string TextOf(const QWidget& box) {
  if (const auto* message = qobject_cast<const QMessageBox*>(&box)) return message->text().toStdString();
  std::string text = box.windowTitle().toStdString();
  for (const auto* label : box.findChildren<QLabel*>()) text += "\n" + label->text().toStdString();
  return text;
}

// The nearest in the widget's window.
const HelpTopic* TopicInWindow(const QWidget& widget) {
  std::vector<std::string> names;
  for (const QWidget* at = &widget; at; at = at->isWindow() ? nullptr : at->parentWidget()) {
    names.push_back(at->objectName().toStdString());
  }
  return HelpTopicAt(names);
}

const HelpTopic* TopicOf(const QWidget& widget);

const HelpTopic* TopicOfBox(const QWidget& box) {
  if (const HelpTopic* error = HelpTopicOfError(TextOf(box))) return error;
  const QWidget* owner = box.parentWidget();
  const HelpTopic* topic = owner ? TopicOf(*owner) : nullptr;
  return topic && topic != &HelpTopics().front() ? topic : TopicInWindow(box);
}

const HelpTopic* TopicOf(const QWidget& widget) {
  const QWidget& window = *widget.window();
  if (IsBox(window)) return TopicOfBox(window);
  if (const HelpTopic* topic = TopicInWindow(widget)) return topic;
  return window.parentWidget() ? TopicOf(*window.parentWidget()) : nullptr;
}

}  // namespace

std::int32_t HelpNumberOf(const QWidget& widget) {
  const HelpTopic* topic = TopicOf(widget);
  return topic ? topic->number : HelpTopics().front().number;
}

HelpKey::HelpKey(Show show) : mShow(std::move(show)) {
  qApp->installEventFilter(this);
}

bool HelpKey::eventFilter(QObject* receiver, QEvent* event) {
  if (!receiver->isWidgetType()) return false;
  const auto& widget = *static_cast<QWidget*>(receiver);
  if (event->type() == HelpRequest::Kind()) {
    const HelpTopic* error = HelpTopicOfError(static_cast<HelpRequest*>(event)->Message().toStdString());
    mShow(error ? error->number : HelpNumberOf(widget));
    return true;
  }
  if (!IsHelpKey(*event) || widget.property(kTakesHelpKey).toBool()) return false;
  const std::int32_t number = HelpNumberOf(widget);
  if (number == HelpTopics().front().number) return false;
  event->accept();  // an accepted override comes again as a key, and is no shortcut of the window
  if (event->type() == QEvent::KeyPress) mShow(number);
  return true;
}

}  // namespace kv
