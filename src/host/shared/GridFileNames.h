#pragma once

#include <array>

namespace kv {

// The operand view's grids in a session's folder. They mean nothing for a model of another family, and are deleted with
// a change to one.
inline constexpr const char* kRegionsGridFile = "vsfRegions_1.vsf";
inline constexpr const char* kOperandsGridFile = "vsfOperands_1.vsf";
inline constexpr std::array kGridFiles{kOperandsGridFile, kRegionsGridFile};

}  // namespace kv
