#include "host/DesignFiles.h"

#include <algorithm>
#include <array>
#include <system_error>

#include "sessions/SessionIni.h"

namespace kv {
namespace {

// In the order of the blocks: design, cell values, layout.
constexpr std::array<const char*, 3> kFiles{"DesignBlock.bin", "CellsValues.bin", "DesignLayoutBlock.bin"};
constexpr std::size_t kLargestBlock = std::size_t{64} << 20;

bool AllExist(const SharedState& shared) {
  return std::ranges::all_of(kFiles, [&](const char* name) {
    std::error_code ignored;
    return std::filesystem::exists(SessionFile(shared, name), ignored);
  });
}

}  // namespace

std::expected<std::optional<PanelDesigner::Blocks>, FileError> ReadDesign(const SharedState& shared) {
  if (!AllExist(shared)) return std::nullopt;
  PanelDesigner::Blocks blocks;
  for (std::size_t i = 0; i < kFiles.size(); ++i) {
    const auto content = ReadWholeFile(SessionFile(shared, kFiles[i]), kLargestBlock);
    if (!content) return std::unexpected(content.error());
    blocks[i].assign(content->begin(), content->end());
  }
  return blocks;
}

std::expected<void, FileError> WriteDesign(const SharedState& shared, const PanelDesigner::Blocks& blocks) {
  for (std::size_t i = 0; i < kFiles.size(); ++i) {
    const std::string content(blocks[i].begin(), blocks[i].end());
    if (auto saved = SaveAtomically(SessionFile(shared, kFiles[i]), content); !saved) return saved;
  }
  return {};
}

void RemoveDesign(const SharedState& shared) {
  if (!AllExist(shared)) return;
  for (const char* name : kFiles) {
    std::error_code ignored;
    std::filesystem::remove(SessionFile(shared, name), ignored);
  }
}

}  // namespace kv
