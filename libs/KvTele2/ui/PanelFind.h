#pragma once

#include <QWidget>
#include <functional>
#include <vector>

#include "KvTele2/panel/ScreenText.h"

class QLabel;
class QLineEdit;

namespace kv {

// The line in which a text is looked for on the controller's screen. Upper and lower case are alike; names of what can
// be pressed are found, too.
class PanelFind final : public QWidget {
 public:
  // Hears of the place that is found now; nothing: none.
  using OnFound = std::function<void(const std::optional<panel::PixelRect>&)>;

  PanelFind(OnFound onFound, QWidget* parent);

  void Open();
  void Close();
  // The texts are others now.
  void Follow(const std::vector<panel::ScreenText>& texts);

  std::function<void()> onClose;

 protected:
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void Search();
  void Step(int step);
  void Tell();

  OnFound mOnFound;
  QLineEdit* mText = nullptr;
  QLabel* mCount = nullptr;
  std::vector<panel::ScreenText> mTexts;
  std::vector<panel::PixelRect> mHits;
  std::size_t mHit = 0;
};

}  // namespace kv
