#pragma once

namespace sim {

// The operands of the controller, as its plant uses them.
class PlantOperands {
 public:
  virtual ~PlantOperands() = default;
  [[nodiscard]] virtual int Word(int address) const = 0;  // MI, signed
  virtual void SetWord(int address, int value) = 0;
  [[nodiscard]] virtual bool Bit(int address) const = 0;  // MB
  virtual void SetBit(int address, bool value) = 0;
  virtual void SetInput(int address, bool value) = 0;
  virtual void SetOutput(int address, bool value) = 0;
};

// The operands of the demonstration plant, which every model with a display has; docs/users-guide.md lists them.
namespace plant {

// MI
inline constexpr int kVolume = 200;     // of a bottle, ml
inline constexpr int kSpeed = 201;      // that is wanted, bottles a minute
inline constexpr int kBatch = 202;      // bottles that are wanted
inline constexpr int kTank = 203;       // level, thousandths
inline constexpr int kBowl = 204;       // level, thousandths
inline constexpr int kFilled = 205;     // bottles of this batch
inline constexpr int kRejected = 206;   // of them thrown out
inline constexpr int kRate = 207;       // bottles a minute at this moment
inline constexpr int kCycle = 208;      // where the machine is between two bottles, thousandths
inline constexpr int kFillLevel = 209;  // of the bottle under the valve, thousandths
inline constexpr int kTrendPlace = 219;
inline constexpr int kTrend = 220;  // to 243: levels of the bowl, one every two seconds, round and round
inline constexpr int kTrendLength = 24;

// MB
inline constexpr int kRuns = 200;
inline constexpr int kJogConveyor = 201;  // 201 to 203: while held
inline constexpr int kJogPump = 202;
inline constexpr int kJogValve = 203;
inline constexpr int kRefills = 204;  // the tank refills itself
inline constexpr int kAlarm = 205;    // to 208: the alarm is there
inline constexpr int kUnseen = 209;   // to 212: it is to be acknowledged
inline constexpr int kAlarms = 4;
inline constexpr int kPumps = 213;          // the pump runs
inline constexpr int kSomebodyThere = 219;  // somebody operates at the panel itself

// OUTPUT
inline constexpr int kConveyorOut = 4;
inline constexpr int kPumpOut = 5;
inline constexpr int kValveOut = 6;
inline constexpr int kRefillOut = 7;
inline constexpr int kAlarmOut = 8;

// INPUT
inline constexpr int kBottleIn = 4;  // a bottle stands under the valve

enum Alarm { TankLow, BowlEmpty, BatchDone, CapsLow };

// What of the recipe can be changed at the panel.
struct Setting {
  const char* name;
  const char* unit;
  int word;
  int least;
  int most;
};
inline constexpr int kSettings = 3;
inline constexpr Setting kSettingTable[kSettings] = {
    {"Volume", "ml", kVolume, 50, 2000},
    {"Speed", "/min", kSpeed, 5, 120},
    {"Batch", "bottles", kBatch, 1, 30000},
};

inline constexpr const char* kAlarmTexts[kAlarms] = {"Product tank low", "Filler bowl dry", "Batch finished",
                                                     "Caps running low"};

}  // namespace plant

}  // namespace sim
