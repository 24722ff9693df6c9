#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "KvCmDrv1/TraceSecrets.h"
#include "base/Time.h"
#include "desktop/Pacer.h"
#include "desktop/WallClock.h"

namespace kv {

// What passed on the line. The last 1000 entries are always kept for an error report: their memory is there from the
// start and nothing is formatted before somebody asks, so keeping them costs a copy of a few bytes. On request every
// entry is also written to a file, as it passes. Nothing that depends on a password is kept.
class Trace {
 public:
  enum class Direction {
    Sent,
    Received,  // a good frame or block message
    Dropped,   // noise, damage, or a message that answers nothing
    Note,      // something about the connection, in words
  };

  static constexpr std::size_t kEntries = 1000;
  static constexpr std::size_t kKeptBytes = 288;  // of each entry; an operand request or reply fits whole

  Trace();

  // Gives entries the time of day from now on, in place of seconds since an origin that means nothing. Both outlive the
  // trace.
  void SetClock(const WallClock& clock, const Pacer& pacer);

  void Add(Instant when, Direction direction, std::string_view bytes);
  // Who is talking from now on; a few letters.
  void SetOwner(std::string_view owner);

  // Writes every entry from now on to this file (UTF-8 path), from its beginning; an empty path ends it. False when the
  // file cannot be written.
  [[nodiscard]] bool WriteTo(const std::string& path);
  // The file that is being written; empty: none.
  [[nodiscard]] const std::string& File() const { return mPath; }

  // One entry in words. The time is that of the day, "2026-11-20T14:03:21.012345", without a blank in it; without a
  // clock it is in seconds from an origin that means nothing, but whose differences do.
  struct Row {
    std::string time;
    Direction direction = Direction::Note;
    std::string owner;
    std::string text;     // the bytes, or the words of a note
    std::string meaning;  // of the frame; empty when it has none

    [[nodiscard]] std::string Line() const;  // "2026-11-20T14:03:21.012345 --> owner /01ID   [unit 1: identify]"
  };

  // How many entries there have been; the last kEntries of them are kept.
  [[nodiscard]] std::uint64_t Total() const { return mTotal; }
  [[nodiscard]] std::uint64_t FirstKept() const { return mTotal - std::min<std::uint64_t>(mTotal, kEntries); }
  // One that is kept: FirstKept() to Total() - 1.
  [[nodiscard]] Row RowAt(std::uint64_t index) const;

  // The kept entries, oldest first, one a line.
  [[nodiscard]] std::string Text() const;

 private:
  struct Entry {
    Instant when{};
    Direction direction = Direction::Note;
    std::uint32_t length = 0;  // of the whole; kKeptBytes at most are kept
    std::uint16_t owner = 0;
    bool isWithheld = false;  // nothing is kept: it may tell a password
    std::array<char, kKeptBytes> bytes;
  };

  [[nodiscard]] Row RowOf(const Entry& entry, std::string_view bytes) const;

  [[nodiscard]] std::string TimeText(Instant when) const;

  TraceSecrets mSecrets;
  std::vector<Entry> mEntries;
  const WallClock* mClock = nullptr;
  const Pacer* mPacer = nullptr;
  std::uint64_t mTotal = 0;
  std::vector<std::string> mOwners;
  std::uint16_t mOwner = 0;
  std::string mPath;
  std::ofstream mFile;
};

}  // namespace kv
