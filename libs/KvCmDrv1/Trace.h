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
// start and nothing is formatted before somebody asks, so keeping them costs a copy of a few bytes. What is asked all
// the time and goes well has a place of its own, or within minutes nothing else would be left. On request every entry
// is also written to a file, as it passes. Nothing that depends on a password is kept.
class Trace {
 public:
  enum class Direction {
    Sent,
    Received,  // a good frame or block message
    Dropped,   // noise, damage, or a message that answers nothing
    Note,      // something about the connection, in words
  };

  static constexpr std::size_t kEntries = 1000;
  static constexpr std::size_t kPolls = 200;      // beside these, of questions that went well
  static constexpr std::size_t kKeptBytes = 288;  // of each entry; an operand request or reply fits whole

  // Gives entries the time of day from now on, in place of seconds since an origin that means nothing. Both outlive the
  // trace.
  void SetClock(const WallClock& clock, const Pacer& pacer);

  void Add(Instant when, Direction direction, std::string_view bytes);
  // All entries since Total() was `from` are those of a question that is asked again and again. Where they are no more
  // than it and its answer they push out nothing but their likes; what went otherwise stays with all others.
  void SetPollAside(std::uint64_t from);
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

  // How many entries there have been. They are numbered from 0 on.
  [[nodiscard]] std::uint64_t Total() const { return mTotal; }
  // Those that are kept, the oldest first.
  [[nodiscard]] std::vector<std::uint64_t> Numbers() const;
  // One of these.
  [[nodiscard]] Row RowAt(std::uint64_t number) const;

  // The kept entries, oldest first, one a line.
  [[nodiscard]] std::string Text() const;

 private:
  struct Entry {
    std::uint64_t number = 0;
    Instant when{};
    Direction direction = Direction::Note;
    std::uint32_t length = 0;  // of the whole; kKeptBytes at most are kept
    std::uint16_t owner = 0;
    bool isWithheld = false;  // nothing is kept: it may tell a password
    std::array<char, kKeptBytes> bytes;
  };

  // The last of the entries that were put into it.
  class Ring {
   public:
    // So many, and some more that were the newest ones when the last were taken back.
    explicit Ring(std::size_t kept) : mKept(kept), mEntries(kept + kSpare) {}
    Entry& Add() { return mEntries[mEnd++ % mEntries.size()]; }
    void TakeBack(std::uint64_t count) { mEnd -= count; }
    [[nodiscard]] std::uint64_t Begin() const { return mEnd - std::min<std::uint64_t>(mEnd, mKept); }
    [[nodiscard]] std::uint64_t End() const { return mEnd; }
    [[nodiscard]] const Entry& At(std::uint64_t index) const { return mEntries[index % mEntries.size()]; }
    // Null: it is not kept.
    [[nodiscard]] const Entry* Find(std::uint64_t number) const;

    static constexpr std::size_t kSpare = 2;

   private:
    std::size_t mKept;
    std::vector<Entry> mEntries;
    std::uint64_t mEnd = 0;
  };

  [[nodiscard]] Row RowOf(const Entry& entry, std::string_view bytes) const;

  [[nodiscard]] std::string TimeText(Instant when) const;

  TraceSecrets mSecrets;
  Ring mEntries{kEntries};
  Ring mPolls{kPolls};
  const WallClock* mClock = nullptr;
  const Pacer* mPacer = nullptr;
  std::uint64_t mTotal = 0;
  std::vector<std::string> mOwners = std::vector<std::string>(1);
  std::uint16_t mOwner = 0;
  std::string mPath;
  std::ofstream mFile;
};

}  // namespace kv
