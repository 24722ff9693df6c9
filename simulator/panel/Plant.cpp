#include "simulator/panel/Plant.h"

#include <algorithm>
#include <chrono>

namespace sim {
namespace {

using namespace plant;

constexpr kv::Duration kStep = std::chrono::milliseconds(20);
constexpr int kStepsASecond = 50;
constexpr kv::Duration kLongest = std::chrono::minutes(30);  // at once; nobody looks at what is in between
constexpr int kFull = 1000;

// Millilitres in a thousandth.
constexpr int kOfTank = 60;
constexpr int kOfBowl = 8;

constexpr int kPumpStep = 12;   // ml a step: 600 ml/s
constexpr int kRefillStep = 1;  // thousandths of the tank a step: 3 l/s
constexpr int kDrainStep = 5;   // ml a step: 250 ml/s
constexpr int kJogStep = 6;     // thousandths of a cycle a step
constexpr int kRunUpStep = 2;   // steps until the rate is one bottle a minute higher

// The cycle of a bottle: the conveyor brings it, the valve fills it, it settles.
constexpr int kMoveEnd = 400;
constexpr int kFillEnd = 920;

constexpr int kRejectEvery = 37;
constexpr int kCapsEvery = 60;
constexpr int kMostBottles = 30000;

int Level(const PlantOperands& operands, int word) {
  return std::clamp(operands.Word(word), 0, kFull);
}

void SetAlarm(PlantOperands& operands, int alarm, bool isThere) {
  if (isThere && !operands.Bit(kAlarm + alarm)) operands.SetBit(kUnseen + alarm, true);
  operands.SetBit(kAlarm + alarm, isThere);
}

// An alarm that comes at one level and goes at a higher one.
void WatchLevel(PlantOperands& operands, int alarm, int level, int comes, int goes) {
  SetAlarm(operands, alarm, level < (operands.Bit(kAlarm + alarm) ? goes : comes));
}

void WatchAlarms(PlantOperands& operands) {
  WatchLevel(operands, TankLow, Level(operands, kTank), 150, 250);
  WatchLevel(operands, BowlEmpty, Level(operands, kBowl), 30, 120);
  const int wanted = operands.Word(kBatch);
  SetAlarm(operands, BatchDone, wanted > 0 && operands.Word(kFilled) >= wanted);
  bool isAny = false;
  for (int alarm = 0; alarm < kAlarms; ++alarm) isAny = isAny || operands.Bit(kAlarm + alarm);
  operands.SetOutput(kAlarmOut, isAny);
}

}  // namespace

void Plant::SetFirstValues(PlantOperands& operands) {
  operands.SetWord(kVolume, 500);
  operands.SetWord(kSpeed, 30);
  operands.SetWord(kBatch, 250);
  operands.SetWord(kTank, 820);
  operands.SetWord(kBowl, 600);
  operands.SetBit(kRefills, true);
}

void Plant::Wake(PlantOperands& operands) {
  if (mAwake) return;
  mAwake = true;
  for (const int bit : {kRuns, kJogConveyor, kJogPump, kJogValve}) operands.SetBit(bit, false);
}

void Plant::Advance(PlantOperands& operands, kv::Duration elapsed) {
  if (!mAwake) return;
  mSpare += std::min(elapsed, kLongest);
  for (; mSpare >= kStep; mSpare -= kStep) Step(operands);
}

void Plant::Step(PlantOperands& operands) {
  const bool runs = operands.Bit(kRuns);
  RunUp(operands, runs);
  if (runs) {
    Produce(operands);
  } else {
    Jog(operands);
  }
  FillBowl(operands);
  Refill(operands);
  WatchAlarms(operands);
  if (operands.Bit(kAlarm + BowlEmpty) || operands.Bit(kAlarm + BatchDone)) operands.SetBit(kRuns, false);
  RecordTrend(operands);
}

// The rate follows what is wanted, up and down, and is 0 at once when the machine stops.
void Plant::RunUp(PlantOperands& operands, bool runs) {
  const int wanted = std::clamp(operands.Word(kSpeed), 0, 200);
  const int rate = std::clamp(operands.Word(kRate), 0, 200);
  if (!runs) return operands.SetWord(kRate, 0);
  if (++mRunUpSteps < kRunUpStep || rate == wanted) return;
  mRunUpSteps = 0;
  operands.SetWord(kRate, rate + (wanted > rate ? 1 : -1));
}

void Plant::Produce(PlantOperands& operands) {
  // A cycle has 3000 thirds of a thousandth, and a step at one bottle a minute is one of them.
  mCycleRest += operands.Word(kRate);
  const int before = std::clamp(operands.Word(kCycle), 0, kFull - 1);
  const int after = before + mCycleRest / 3;
  mCycleRest %= 3;
  const int fillFrom = std::clamp(before, kMoveEnd, kFillEnd);
  const int fillTo = std::clamp(after, kMoveEnd, kFillEnd);
  const int volume = std::clamp(operands.Word(kVolume), 0, 5000);
  const auto filledAt = [volume](int place) { return volume * (place - kMoveEnd) / (kFillEnd - kMoveEnd); };
  TakeFromBowl(operands, filledAt(fillTo) - filledAt(fillFrom));
  operands.SetWord(kFillLevel, kFull * (fillTo - kMoveEnd) / (kFillEnd - kMoveEnd));
  operands.SetOutput(kConveyorOut, after < kMoveEnd);
  operands.SetOutput(kValveOut, fillTo > fillFrom);
  operands.SetInput(kBottleIn, after >= kMoveEnd);
  if (after >= kFull) FinishBottle(operands);
  operands.SetWord(kCycle, after % kFull);
}

void Plant::FinishBottle(PlantOperands& operands) {
  const int filled = std::clamp(operands.Word(kFilled), 0, kMostBottles) % kMostBottles + 1;
  operands.SetWord(kFilled, filled);
  operands.SetWord(kFillLevel, 0);
  if (filled % kRejectEvery == 0) operands.SetWord(kRejected, (operands.Word(kRejected) + 1) % kMostBottles);
  if (filled % kCapsEvery == 0) SetAlarm(operands, CapsLow, true);
}

// By hand: the conveyor moves bottle by bottle and stops with the next one under the valve.
void Plant::Jog(PlantOperands& operands) {
  const int cycle = std::clamp(operands.Word(kCycle), 0, kFull - 1);
  const bool moves = operands.Bit(kJogConveyor);
  const bool drains = operands.Bit(kJogValve);
  if (moves) {
    const int from = cycle >= kMoveEnd ? 0 : cycle;
    operands.SetWord(kCycle, (from + kJogStep) % kMoveEnd);
    operands.SetWord(kFillLevel, 0);
  }
  if (drains) TakeFromBowl(operands, kDrainStep);
  operands.SetOutput(kConveyorOut, moves);
  operands.SetOutput(kValveOut, drains);
}

void Plant::FillBowl(PlantOperands& operands) {
  const int bowl = Level(operands, kBowl);
  if (operands.Bit(kRuns) || operands.Bit(kAlarm + BowlEmpty)) {
    mPumps = bowl < (mPumps ? 850 : 450);
  } else {
    mPumps = operands.Bit(kJogPump) && bowl < kFull;
  }
  const bool pumps = mPumps && Level(operands, kTank) > 0;
  operands.SetOutput(kPumpOut, pumps);
  operands.SetBit(kPumps, pumps);
  if (!pumps) return;
  mPumped += kPumpStep;
  mDrawn -= kPumpStep;
  operands.SetWord(kTank, std::max(0, Level(operands, kTank) - mPumped / kOfTank));
  mPumped %= kOfTank;
  TakeFromBowl(operands, 0);
}

void Plant::Refill(PlantOperands& operands) {
  const int tank = Level(operands, kTank);
  mRefills = operands.Bit(kRefills) && tank < (mRefills ? 950 : 120);
  operands.SetOutput(kRefillOut, mRefills);
  if (mRefills) operands.SetWord(kTank, tank + kRefillStep);
}

void Plant::TakeFromBowl(PlantOperands& operands, int millilitres) {
  mDrawn += millilitres;
  const int thousandths = mDrawn / kOfBowl;
  mDrawn %= kOfBowl;
  if (thousandths != 0) operands.SetWord(kBowl, std::clamp(Level(operands, kBowl) - thousandths, 0, kFull));
}

void Plant::RecordTrend(PlantOperands& operands) {
  if (++mSteps < 2 * kStepsASecond) return;
  mSteps = 0;
  const int place = std::clamp(operands.Word(kTrendPlace), 0, kTrendLength - 1);
  operands.SetWord(kTrend + place, Level(operands, kBowl));
  operands.SetWord(kTrendPlace, (place + 1) % kTrendLength);
}

void Plant::Start(PlantOperands& operands) {
  Wake(operands);
  if (operands.Bit(kAlarm + BatchDone)) BeginBatch(operands);
  operands.SetBit(kRuns, true);
}

void Plant::Stop(PlantOperands& operands) {
  operands.SetBit(kRuns, false);
}

void Plant::Acknowledge(PlantOperands& operands) {
  for (int alarm = 0; alarm < kAlarms; ++alarm) operands.SetBit(kUnseen + alarm, false);
  operands.SetBit(kAlarm + CapsLow, false);  // whoever acknowledges it has put new caps in
}

void Plant::BeginBatch(PlantOperands& operands) {
  operands.SetWord(kFilled, 0);
  operands.SetWord(kRejected, 0);
  operands.SetBit(kAlarm + BatchDone, false);
  operands.SetBit(kUnseen + BatchDone, false);
}

}  // namespace sim
