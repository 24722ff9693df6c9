#pragma once

#include <cstdint>

// The operation codes of block messages.
namespace kv::BlockOperation {

inline constexpr std::uint16_t kRunState = 0;
inline constexpr std::uint16_t kPrepare = 1;
inline constexpr std::uint16_t kConfirmPassword = 2;
inline constexpr std::uint16_t kStatus = 7;
inline constexpr std::uint16_t kPrepareAgain = 8;
inline constexpr std::uint16_t kDownloadData = 65;
inline constexpr std::uint16_t kBeginDownload = 66;
inline constexpr std::uint16_t kProgram = 69;
inline constexpr std::uint16_t kOperandList = 256;
inline constexpr std::uint16_t kMemory = 257;
inline constexpr std::uint16_t kResourceDirectory = 258;
inline constexpr std::uint16_t kResourcePiece = 259;
inline constexpr std::uint16_t kDisplayMode = 260;
inline constexpr std::uint16_t kPanelDescription = 270;
inline constexpr std::uint16_t kPanelChanges = 271;
inline constexpr std::uint16_t kPanelEvent = 272;

}  // namespace kv::BlockOperation
