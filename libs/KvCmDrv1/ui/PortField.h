#pragma once

#include <QWidget>
#include <functional>
#include <string>
#include <vector>

#include "KvCmDrv1/ports/PortList.h"

class QComboBox;
class QLabel;

namespace kv {

using PortLister = std::function<std::vector<SerialPortInfo>()>;

// The choice of a serial port: those of this machine with their descriptions, read again on request, or any name that
// is entered. A port that is gone stays in the list as "not present".
class PortField final : public QWidget {
 public:
  PortField(PortLister listPorts, QWidget* parent);

  void SetText(const std::string& port);
  [[nodiscard]] std::string Text() const;  // what a link is opened with
  [[nodiscard]] QComboBox& Combo() const { return *mCombo; }

  std::function<void()> onChange;

 private:
  void Refresh();
  void Choose(int index);
  void ShowInfo();

  PortLister mListPorts;
  std::vector<SerialPortInfo> mPorts;
  QComboBox* mCombo = nullptr;
  QLabel* mInfo = nullptr;
};

}  // namespace kv
