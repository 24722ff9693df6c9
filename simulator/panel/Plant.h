#pragma once

#include "base/Time.h"
#include "simulator/panel/PlantOperands.h"

namespace sim {

// A line that fills bottles: a tank, a pump to the filler's bowl, a conveyor that brings a bottle under the valve and
// takes it away again. It has no state but the operands and what is too fine for them, so whoever writes an operand
// changes the plant.
//
// It stands still, whatever the operands say, until something on its panel is pressed for the first time: until then
// each operand keeps what is written to it.
class Plant {
 public:
  static void SetFirstValues(PlantOperands& operands);

  [[nodiscard]] bool IsAwake() const { return mAwake; }
  // Somebody has pressed something. What the bits said before starts nothing.
  void Wake(PlantOperands& operands);

  // Lets time pass while the program runs.
  void Advance(PlantOperands& operands, kv::Duration elapsed);

  void Start(PlantOperands& operands);
  static void Stop(PlantOperands& operands);
  static void Acknowledge(PlantOperands& operands);
  static void BeginBatch(PlantOperands& operands);

 private:
  void Step(PlantOperands& operands);
  void RunUp(PlantOperands& operands, bool runs);
  void Produce(PlantOperands& operands);
  void Jog(PlantOperands& operands);
  void FinishBottle(PlantOperands& operands);
  void FillBowl(PlantOperands& operands);
  void Refill(PlantOperands& operands);
  void TakeFromBowl(PlantOperands& operands, int millilitres);
  void RecordTrend(PlantOperands& operands);

  bool mAwake = false;
  bool mPumps = false;
  bool mRefills = false;
  kv::Duration mSpare{0};  // time that is no whole step
  int mSteps = 0;          // of the trend
  int mRunUpSteps = 0;
  int mCycleRest = 0;  // of a thousandth
  int mDrawn = 0;      // millilitres out of the bowl that are no thousandth of it
  int mPumped = 0;     // the same of what was pumped out of the tank
};

}  // namespace sim
