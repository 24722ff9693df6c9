#pragma once

#include <QWidget>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "KvTele2/HostState.h"

class QLabel;

namespace kv {

class CardLayout;
class ValueTile;

// The page of a controller that is on line and has no display: the values of the session's regions, each with its age.
class ValuesPage final : public QWidget {
 public:
  using OnCommand = std::function<void(std::string_view id)>;

  ValuesPage(OnCommand onCommand, QWidget* parent);

  void Show(const HostState& state);

 private:
  void BuildHead();

  OnCommand mOnCommand;
  QLabel* mNote = nullptr;
  CardLayout* mCards = nullptr;
  std::vector<ValueTile*> mTiles;
};

}  // namespace kv
