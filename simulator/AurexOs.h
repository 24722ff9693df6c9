#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "simulator/ModelTable.h"
#include "simulator/OsVersion.h"
#include "simulator/Refusal.h"

namespace sim {

// One chunk of an O/S transfer, as block operation 65 carries it to a boot loader.
struct OsChunk {
  std::uint32_t address = 0;
  std::uint16_t sequence = 0;  // 1 to 255 and around, from 1 again with each topic; not looked at in the header
  std::uint16_t topic = 0;     // 0 header, 1 O/S, 2 fonts
  std::string data;

  bool operator==(const OsChunk&) const = default;
};

// The replacement of an Aurex O/S by its boot loader: a header, the chunks of the topics, programming, and the new
// version after the reset. The last chunk may come twice: that is a repeat whose answer was lost, and changes nothing.
class AurexOs {
 public:
  explicit AurexOs(const Model& model) : mModel(model) {}

  void Drop();
  [[nodiscard]] Result<void> Take(const OsChunk& chunk);
  [[nodiscard]] Result<std::size_t> Program();  // how many bytes are programmed

  [[nodiscard]] std::uint8_t ChunkCount() const { return mChunks; }  // its low 8 bits
  // Whether there is an O/S and every chunk so far came in step.
  [[nodiscard]] bool IsGoodSoFar() const { return mHasOs; }
  // What the header announced, once programmed. It names no build: that is 0.
  [[nodiscard]] std::optional<OsVersion> NewVersion() const;

 private:
  [[nodiscard]] Result<void> TakeHeader(std::string_view header);

  const Model& mModel;
  std::optional<OsVersion> mVersion;
  std::optional<OsChunk> mLast;
  std::size_t mBytes = 0;
  std::uint8_t mChunks = 0;
  bool mHasOs = false;
  bool mProgrammed = false;
};

}  // namespace sim
