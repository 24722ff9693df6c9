#pragma once

#include <array>
#include <cstddef>

#include "base/Bytes.h"
#include "link/CommDriver.h"

namespace kv {

// The editor for panel designs, which belongs to the host product. It works on three blocks of bytes that only it
// understands; the program keeps them in the session between runs.
class PanelDesigner {
 public:
  // Design, cell values, layout.
  using Blocks = std::array<Bytes, 3>;

  virtual ~PanelDesigner() = default;

  virtual void SetDriver(CommDriver& driver) = 0;
  virtual void SetBlocks(const Blocks& blocks) = 0;
  virtual void Run() = 0;
  [[nodiscard]] virtual std::size_t ItemCount() const = 0;
  [[nodiscard]] virtual Blocks GetBlocks() const = 0;
};

}  // namespace kv
