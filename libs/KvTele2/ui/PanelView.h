#pragma once

#include <QImage>
#include <QWidget>
#include <functional>
#include <optional>
#include <vector>

#include "KvTele2/panel/ScreenText.h"
#include "KvTele2/ui/HeldKey.h"
#include "KvTele2/ui/PanelPress.h"
#include "KvTele2/ui/PanelScale.h"

namespace kv {

// The controller's screen, dot for dot or scaled, with what is selected and found on it. While it is operated it takes
// mouse, finger and keyboard; in View the mouse selects texts, as it does with Shift in Operate.
//
// What is pressed is let go when the button or key is, when the pointer leaves what it pressed, when the focus goes,
// the window is hidden or another program comes to the front. The repetition of a key that is kept down is no press.
class PanelView final : public QWidget {
 public:
  static constexpr QSize kSmallest{96, 48};  // what is larger is shown smaller
  // Null while there is no panel. Asked each time, because it ends with the link.
  using Source = std::function<panel::PanelSession*()>;

  PanelView(Source source, const PanelPress::OnChange& onChange, QWidget* parent);
  ~PanelView() override;

  // Takes in what has changed, and how it is to be shown.
  void Follow(const panel::ScreenResources& resources);
  void SetScale(PanelScale scale);
  void SetFullScreen(bool isFull) { mIsFullScreen = isFull; }

  // The press that goes on at this moment, seen fresh: also focus and window are right for it.
  [[nodiscard]] std::optional<panel::PanelPlace> PressedNow() const;
  [[nodiscard]] PanelPress& Press() { return mPress; }

  [[nodiscard]] const std::vector<panel::ScreenText>& Texts() const { return mTexts; }
  // Of those that are selected, or of all; a line each.
  [[nodiscard]] QString TextToCopy() const;
  // A copy, dot for dot; null without a screen.
  [[nodiscard]] QImage Picture() const;
  // Frames this text, and none before it; nothing: none.
  void ShowFound(const std::optional<panel::PixelRect>& place);
  // In the widget's own units.
  [[nodiscard]] QRect PlaceOf(const panel::PixelRect& dots) const;

  std::function<void()> onCopy;          // the usual keys for it
  std::function<void()> onTextsChanged;  // behind each Follow that brought others

  [[nodiscard]] QSize sizeHint() const override;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override { mousePressEvent(event); }
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  [[nodiscard]] const panel::Picture* Dots() const;
  [[nodiscard]] QSize DotCount() const;
  [[nodiscard]] double Factor() const;
  [[nodiscard]] QRectF Place() const;
  [[nodiscard]] std::optional<QPoint> DotAt(QPointF at) const;
  [[nodiscard]] std::optional<std::uint16_t> AreaAt(QPoint dot) const;
  [[nodiscard]] std::optional<std::uint8_t> KeyOf(const QKeyEvent& event) const;
  [[nodiscard]] bool IsOperated() const;
  [[nodiscard]] bool HasTouch() const;
  void BeginTouch(QPointF at);
  void BeginSelection(QPointF at);
  void Select(const QRect& dots);
  void MoveArea(int step);
  void PressArea(const QKeyEvent& event);
  void LetGo();
  void DrawMarks(QPainter& painter) const;
  void TakeTexts(const panel::ScreenResources& resources);

  Source mSource;
  PanelPress mPress;
  PanelScale mScale;
  QSize mShownDots;
  bool mIsPale = false;
  bool mIsFullScreen = false;
  std::vector<panel::ScreenText> mTexts;
  PanelRevision mTextsOf;
  std::optional<panel::PixelRect> mFound;
  std::optional<panel::PixelRect> mArea;  // that the keyboard would press, on a display that is touched

  std::optional<QPoint> mTouched;  // the dot that the pointer pressed; what lies there may still be on its way
  HeldKey mHeldKey{[this] { LetGo(); }};
  std::optional<QPoint> mSelectFrom;  // a dot, while the mouse selects
  QRect mSelected;                    // dots
};

}  // namespace kv
