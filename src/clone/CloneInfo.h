#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <istream>
#include <optional>
#include <string>
#include <vector>

#include "clone/CloneFile.h"
#include "clone/CloneOutcome.h"

namespace kv {

// Addresses of controller memory, both ends included.
struct AddressRange {
  std::uint32_t first = 0;
  std::uint32_t last = 0;

  bool operator==(const AddressRange&) const = default;
};

// "00100000..001000FF", and "00100000" for a single address.
[[nodiscard]] std::string AddressText(const AddressRange& range);

// Address ranges in ascending order, as many as are of use to a person: memory does not grow with the controller's.
class AddressRanges {
 public:
  static constexpr std::size_t kMost = 1000;

  // Adds bytes behind all that were added before; a stretch that follows without a gap lengthens its range.
  void Add(std::uint32_t address, std::uint32_t length);

  [[nodiscard]] const std::vector<AddressRange>& Ranges() const { return mRanges; }  // the first kMost
  [[nodiscard]] std::uint64_t RangeCount() const { return mRangeCount; }
  [[nodiscard]] std::uint64_t Bytes() const { return mBytes; }
  [[nodiscard]] bool IsEmpty() const { return mBytes == 0; }

 private:
  std::vector<AddressRange> mRanges;
  std::uint64_t mRangeCount = 0;
  std::uint64_t mBytes = 0;
  std::uint64_t mEnd = 0;
};

// One segment as the file holds it.
struct CloneInfoSegment {
  CloneSegment segment;        // its kind is that of its frames
  bool hasFrames = false;      // false: the kind is not known; all of it was 255, or it is empty
  AddressRanges covered;       // what its frames write; the rest was erased (255) when the file was made
  std::uint64_t position = 0;  // in the file, of its first frame
};

// What can be told about a clone file without a controller.
struct CloneInfo {
  static constexpr std::size_t kMostDamages = 100;

  std::optional<CloneHead> head;           // nothing when it is damaged; the rest is then empty
  std::vector<CloneInfoSegment> segments;  // in the order of the head
  std::optional<std::uint8_t> unit;        // for which the frames are; nothing when there are none
  std::size_t frames = 0;                  // good ones, the end frame among them
  bool hasEnd = false;                     // the last line is a good end frame
  std::vector<LineError> damages;          // the first kMostDamages
  std::size_t damageCount = 0;
  std::uint64_t length = 0;  // of the file, bytes
  std::string sha256;        // of the file; empty when it was not read to its end

  [[nodiscard]] bool IsSound() const { return damageCount == 0; }
};

// Reads a whole clone file. Damage is no error: it stands in the result. Every line must be a frame as the engine
// writes it, for one unit, inside a segment of the head, in the order of the head and of the addresses, with the line
// sizes of its kind of memory; full lines of RAM must all be there; an end frame must be the last line. An erased line
// that was left out and one that was lost look alike, so a lost line of flash is not found.
//
// Errors are a file that cannot be read, and a stop.
[[nodiscard]] std::expected<CloneInfo, CloneOutcome> InspectClone(const std::filesystem::path& file,
                                                                  const CloneWork& work = {});
// The same of a stream; `size`, its bytes, is for the progress alone.
[[nodiscard]] std::expected<CloneInfo, CloneOutcome> InspectClone(std::istream& stream, const std::string& name,
                                                                  std::uint64_t size, const CloneWork& work = {});

// That a file was made from another model than the controller's.
[[nodiscard]] std::string OtherModelText(const VersionInfo& inFile, const VersionInfo& inController);

// Why a file should not be restored into a controller that reports `version`, a sentence each: damage, another model,
// nothing in it. Empty when nothing speaks against it.
[[nodiscard]] std::vector<std::string> FindingsBeforeRestore(const CloneInfo& info, const VersionInfo& version);

// That the lines of a file are for another unit than the controller's; empty when they are not. On a shared line that
// unit may be a controller that nobody has looked at, so they are sent for the controller's unit or not at all.
[[nodiscard]] std::string OtherUnitText(const CloneInfo& info, std::uint8_t unit);

}  // namespace kv
