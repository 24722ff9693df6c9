#pragma once

#include <cstddef>
#include <cstdint>

#include "base/Time.h"
#include "link/PanelLink.h"

namespace kv::panel {

// When to ask for changes of the screen, and how much at once.
//
//   At once after an input and while a reply had more to come; every 33 ms for a second after an input or a change,
//   then with pauses that double up to 500 ms. Not at all while nobody looks. Never more often than that the questions
//   take half of the line.
//   A piece takes at most 50 ms of the line, so that an input does not wait longer behind it, or the least size there
//   is. Where the line is slower than it says (a network behind it), the piece follows what was measured.
class Rhythm {
 public:
  static constexpr Duration kFast = std::chrono::milliseconds(33);
  static constexpr Duration kStill = std::chrono::milliseconds(500);
  static constexpr Duration kLively = std::chrono::seconds(1);
  static constexpr Duration kLongestPiece = std::chrono::milliseconds(50);
  static constexpr int kShareOfLine = 2;  // one part of so many

  explicit Rhythm(const PanelLinkCost& cost);

  // A request was answered: when it began and ended, how many bytes of changes came, and whether there are more.
  void NoteAnswer(Instant began, Instant ended, std::size_t bytes, bool hasMore);
  // The same without an answer: the next question waits as for a screen that stands still.
  void NoteFailure(Instant ended);
  void NoteInput(Instant now);
  // Somebody looks again, after nobody did: asked at once.
  void NoteLook(Instant now);

  // When the next question is due.
  [[nodiscard]] Instant NextAsk() const { return mNext; }
  // Bytes of changes to ask for.
  [[nodiscard]] std::uint16_t Piece() const { return mPiece; }

 private:
  void FitPiece(Duration took, std::size_t bytes);

  PanelLinkCost mCost;
  std::uint16_t mMostPiece;
  std::uint16_t mPiece;
  Duration mPause = kFast;
  Instant mLivelyUntil{};
  Instant mNext{};
};

}  // namespace kv::panel
