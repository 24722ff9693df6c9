#pragma once

#include <QFrame>
#include <functional>

class QCheckBox;
class QLabel;
class QPushButton;

namespace kv::mdlDataTypesView {

class DataTypesView;

// What the user has to know of the controller before he trusts the values, above both grids: that it is out of reach,
// why and what to do, with the way to go on; and that the host has another model or link by now. Hidden where there is
// nothing to tell.
class ViewBanner final : public QFrame {
 public:
  // `view` outlives the banner.
  ViewBanner(DataTypesView& view, QWidget* parent);

  // The user wants to go on.
  std::function<void()> onWatchAgain;

  // Shows what the view holds now.
  void Follow();

 private:
  void ShowLoss();

  DataTypesView& mView;
  QLabel* mDifference;
  QLabel* mLoss;
  QPushButton* mWatchAgain;
  QCheckBox* mByItself;
};

}  // namespace kv::mdlDataTypesView
