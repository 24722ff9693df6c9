#include "simulator/panel/PanelView.h"

#include <algorithm>

namespace sim {

using namespace plant;

std::string StateText(const PanelView& view) {
  if (!view.programRuns) return "NO PROGRAM";
  if (view.MachineRuns()) return "RUNNING";
  return CountUnseen(view.operands) > 0 ? "STOPPED" : "READY";
}

std::string PercentText(int thousandths) {
  return std::to_string((std::clamp(thousandths, 0, 1000) + 5) / 10) + " %";
}

std::string SettingText(const PanelView& view, int setting) {
  const Setting& row = kSettingTable[setting];
  return std::to_string(view.operands.Word(row.word)) + " " + row.unit;
}

std::string TypedText(const Entry& entry) {
  return entry.digits + "_ " + kSettingTable[entry.setting].unit;
}

bool IsListed(const PlantOperands& operands, int alarm) {
  return operands.Bit(kAlarm + alarm) || operands.Bit(kUnseen + alarm);
}

std::string AlarmStateText(const PlantOperands& operands, int alarm) {
  if (!operands.Bit(kAlarm + alarm)) return "gone";
  return operands.Bit(kUnseen + alarm) ? "new" : "seen";
}

int CountUnseen(const PlantOperands& operands) {
  int count = 0;
  for (int alarm = 0; alarm < kAlarms; ++alarm) count += operands.Bit(kUnseen + alarm) ? 1 : 0;
  return count;
}

int ShareOf(const PlantOperands& operands, int word) {
  return std::clamp(operands.Word(word), 0, 1000) * 10;
}

}  // namespace sim
