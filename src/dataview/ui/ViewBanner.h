#pragma once

#include <QFrame>
#include <functional>

class QCheckBox;
class QPushButton;

namespace kv {
class HelpLink;
}

namespace kv::mdlDataTypesView {

class DataTypesView;
class ScrolledText;
struct LinkLoss;

// What the user has to know before he trusts the values, above both grids: that the controller is out of reach, why and
// what to do, with the way to go on; what it, or a file, refused; and that the host has another model or link by now.
// Hidden where there is nothing to tell.
class ViewBanner final : public QFrame {
 public:
  // `view` outlives the banner.
  ViewBanner(DataTypesView& view, QWidget* parent);

  // The user wants to go on, with whatever controller answers when another one does.
  std::function<void()> onGoOn;

  // Shows what the view holds now.
  void Follow();

 private:
  // True when it is another text than before.
  bool ShowLoss();
  void Fold(bool isFolded);
  void ShowGoOn();
  void ShowByItself(const LinkLoss& loss);

  DataTypesView& mView;
  ScrolledText* mDifference;
  ScrolledText* mLoss;
  QPushButton* mGoOn;
  QCheckBox* mByItself;
  QPushButton* mFold;
  HelpLink* mHelp;
  bool mIsFolded = false;
};

}  // namespace kv::mdlDataTypesView
