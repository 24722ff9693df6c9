#pragma once

#include <QWidget>
#include <vector>

#include "KvTele2/ui/PanelPress.h"

namespace kv {

class PanelKeyButton;

// The keys beside a text display as buttons, where they lie on a controller, each with its lamp and with what it means
// on this page. A button that is held is a key that is held; one that the pointer has left is let go and stays so.
class PanelKeys final : public QWidget {
 public:
  PanelKeys(PanelPress& press, QWidget* parent);

  // Hidden for a display without keys, and without a panel (null).
  void Follow(const panel::PanelSession* session);
  // They leave at least so much of this width to the screen that it can be read, or are not seen: the keyboard has
  // them, too.
  void FitInto(int room);
  void ShowBlinking(bool isSeen);

  // The press that goes on at this moment on one of them.
  [[nodiscard]] std::optional<panel::PanelPlace> PressedNow() const;

 private:
  void Build(const std::vector<PanelKey>& keys);

  PanelPress& mPress;
  int mRoom = 0;
  std::vector<PanelKey> mKeys;
  std::vector<PanelKeyButton*> mButtons;  // one for each
};

}  // namespace kv
