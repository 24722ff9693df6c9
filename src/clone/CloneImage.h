#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "base/Bytes.h"
#include "clone/CloneFrame.h"
#include "clone/CloneInfo.h"

namespace kv {

// The memory that a sound clone file stands for, byte by byte, without ever holding more than a line of it.
class CloneImage {
 public:
  // Inspects the file; a damaged one is refused with the first place.
  [[nodiscard]] static std::expected<CloneImage, CloneOutcome> Open(const std::filesystem::path& file,
                                                                    const CloneWork& work);

  [[nodiscard]] const CloneInfo& Info() const { return mInfo; }

  // Goes to the start of a segment (an index into Info().segments).
  void Begin(std::size_t segment);
  // The next bytes of it: what the lines say, and 255 where there is none. They must lie within the segment. Fails when
  // the file is no longer what was inspected.
  [[nodiscard]] std::expected<Bytes, CloneOutcome> Read(std::uint32_t count);

 private:
  CloneImage(std::string name, std::ifstream stream, CloneInfo info)
      : mName(std::move(name)), mStream(std::move(stream)), mInfo(std::move(info)) {}

  [[nodiscard]] bool NextFrame();

  std::string mName;
  std::ifstream mStream;
  CloneInfo mInfo;
  std::optional<CloneLineReader> mLines;  // nothing when the segment has no lines, or no more
  CloneFrame mFrame;                      // the line that was read last
  std::uint64_t mAddress = 0;             // of the next byte
  std::uint64_t mEnd = 0;                 // of the segment
};

}  // namespace kv
