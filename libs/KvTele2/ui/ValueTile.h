#pragma once

#include <QFrame>

#include "KvTele2/HostState.h"

class QLabel;

namespace kv {

class ElidedLabel;

// One region with its values and their age. Old values are pale, and say so by their age.
class ValueTile final : public QFrame {
 public:
  explicit ValueTile(QWidget* parent);

  void Show(const ShownTile& tile);

 private:
  ElidedLabel* mTitle = nullptr;
  ElidedLabel* mOperands = nullptr;
  QLabel* mValues = nullptr;
  ElidedLabel* mFault = nullptr;
  QLabel* mAge = nullptr;
  ShownTile mShown;
};

}  // namespace kv
