#pragma once

#include <QLabel>

class QPlainTextEdit;

namespace kv {

// The link from an error to its page of the help: "Help on this", seen while the error tells what to do.
class HelpLink final : public QLabel {
 public:
  explicit HelpLink(QWidget* parent);

  void Follow(const QString& error);
  // The last error that stands in a list of what happened.
  void FollowLast(const QPlainTextEdit& list);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void TakeColour();

  QString mError;
};

// The palette's colour for links, or a lighter one where that cannot be read: many dark palettes leave out this colour.
[[nodiscard]] QColor ReadableLinkColour(const QPalette& palette);

// Whether a text tells what to do, and so has a page.
[[nodiscard]] bool TellsWhatToDo(const QString& text);

}  // namespace kv
