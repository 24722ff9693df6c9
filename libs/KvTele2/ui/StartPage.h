#pragma once

#include <QWidget>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "KvTele2/HostState.h"

class QFrame;
class QLabel;
class QPushButton;

namespace kv {

class CardLayout;

// The page while no controller is on line: a card for each session, with which to go on line, a new session, and a
// simulated controller for who has none.
class StartPage final : public QWidget {
 public:
  using OnCommand = std::function<void(std::string_view id, const std::string& argument)>;

  StartPage(OnCommand onCommand, QWidget* parent);

  void Show(const HostState& state);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void BuildHead();
  [[nodiscard]] QPushButton* MakeButton(const char* name, const QIcon& icon, const char* text, std::string_view id);
  void Fill();
  void Start(const std::string& session);
  [[nodiscard]] QFrame* MakeCard(const SessionCard& session);

  OnCommand mOnCommand;
  QLabel* mFault = nullptr;
  CardLayout* mCards = nullptr;
  std::vector<SessionCard> mShown;
  std::string mActive;  // the session that is current
};

}  // namespace kv
