#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "journal/JournalDisk.h"

namespace kv {

// Where a journal is kept: its files in the folder of the session, its head in a folder of the user's.
struct JournalPlaces {
  std::filesystem::path folder;
  std::filesystem::path stateFolder;  // empty: no head is kept
};

// A journal begins another file when one has grown to this, and after a write that failed.
inline constexpr std::uint64_t kFullSegment = std::uint64_t{64} << 20;
inline constexpr unsigned kMostSegments = 9999;

// "Changes.0001.journal", and the file whose lock every writer holds.
[[nodiscard]] std::filesystem::path SegmentFile(const std::filesystem::path& folder, unsigned segment);
[[nodiscard]] std::filesystem::path LockFile(const std::filesystem::path& folder);
// Numbers of the segments that are there, in their order.
[[nodiscard]] std::vector<unsigned> SegmentsIn(const std::filesystem::path& folder);

// SHA-256 of a part of a file; of what can be read of it.
[[nodiscard]] std::string HashOfPart(JournalFile& file, std::uint64_t from, std::uint64_t to);

// The lines of a part of a file. Only LF ends one: writing, repairing and checking all go by this reader. It holds one
// line in memory at most.
class JournalLines {
 public:
  JournalLines(JournalFile& file, std::uint64_t from, std::uint64_t to)
      : mFile(file), mTo(to), mReadTo(from), mEnd(from) {}

  // Goes to the next whole line; false behind the last one.
  bool Next();
  // Without its LF; empty for a line that is longer than a record can be. Good until Next.
  [[nodiscard]] std::string_view Line() const { return mLine; }
  // Where the bytes behind the line begin; behind the last one: that have no line end.
  [[nodiscard]] std::uint64_t End() const { return mEnd; }
  [[nodiscard]] std::uint64_t TornBytes() const { return mTo - mEnd; }
  // Why not all could be read.
  [[nodiscard]] const std::error_code& Error() const { return mError; }

 private:
  [[nodiscard]] bool ReadMore();

  JournalFile& mFile;
  std::uint64_t mTo;
  std::uint64_t mReadTo;
  std::uint64_t mEnd;
  std::string mBuffer;
  std::size_t mStart = 0;  // of the next line in the buffer
  std::string_view mLine;
  std::error_code mError;
};

}  // namespace kv
