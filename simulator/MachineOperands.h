#pragma once

#include <cstdint>

#include "simulator/Operands.h"
#include "simulator/panel/PlantOperands.h"

namespace sim {

// The controller's operands for the plant at its panel.
class MachineOperands final : public PlantOperands {
 public:
  explicit MachineOperands(Operands& operands) : mOperands(operands) {}

  [[nodiscard]] int Word(int address) const override {
    return static_cast<std::int16_t>(mOperands.Cell(Area::MI, static_cast<std::size_t>(address)));
  }
  void SetWord(int address, int value) override { Set(Area::MI, address, static_cast<std::uint16_t>(value)); }
  [[nodiscard]] bool Bit(int address) const override {
    return mOperands.Cell(Area::MB, static_cast<std::size_t>(address)) != 0;
  }
  void SetBit(int address, bool value) override { Set(Area::MB, address, value ? 1 : 0); }
  void SetInput(int address, bool value) override { Set(Area::Input, address, value ? 1 : 0); }
  void SetOutput(int address, bool value) override { Set(Area::Output, address, value ? 1 : 0); }

 private:
  void Set(Area area, int address, std::uint32_t value) {
    mOperands.SetCell(area, static_cast<std::size_t>(address), value);
  }

  Operands& mOperands;
};

}  // namespace sim
