#pragma once

#include <QFrame>
#include <vector>

#include "KvTele2/panel/PanelSession.h"

class QAction;
class QLabel;

namespace kv {

class ElidedLabel;

// Above the screen: whether it is viewed or operated, by colour, sign and word, which page it is, and the panel's
// commands. Below that why the screen is old, who else is there and what became of the last press, in one line that is
// always as high: what comes and goes would move the screen, and with it what lies under the pointer. Where nothing is
// operated the rest of what has failed, its cause and cure, stands below that.
class PanelBanner final : public QFrame {
 public:
  PanelBanner(const std::vector<QAction*>& commands, QWidget* parent);

  // `note` is what there is to say of the last press; empty: nothing.
  void Show(const panel::PanelState& state, const QString& note);

  // The colours of Operate, for its frame around the screen too.
  [[nodiscard]] static QColor OperateColour();

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  class ModeTag;

  ModeTag* mTag = nullptr;
  ElidedLabel* mPage = nullptr;
  std::vector<QWidget*> mButtons;  // of the commands, as many as there is room for
  ElidedLabel* mNote = nullptr;
  QLabel* mCure = nullptr;
};

}  // namespace kv
