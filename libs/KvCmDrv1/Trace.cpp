#include "KvCmDrv1/Trace.h"

#include <algorithm>
#include <chrono>

#include "KvCmDrv1/FrameMeaning.h"
#include "base/DateText.h"
#include "base/Hex.h"
#include "base/Numbers.h"
#include "base/PathText.h"

namespace kv {
namespace {

// Seconds with microseconds.
std::string SecondsText(Duration span) {
  return std::to_string(span.count() / 1000000) + "." + PaddedInteger(span.count() % 1000000, 6);
}

std::string LocalText(std::chrono::local_time<Duration> time) {
  const auto second = std::chrono::floor<std::chrono::seconds>(time);
  return DateText(second) + "T" + TimeOfDayText(second) + "." + PaddedInteger((time - second).count(), 6);
}

std::string_view Arrow(Trace::Direction direction) {
  switch (direction) {
    case Trace::Direction::Sent:
      return "-->";
    case Trace::Direction::Received:
      return "<--";
    case Trace::Direction::Dropped:
      return "<xx";
    case Trace::Direction::Note:
      return "---";
  }
  return "";
}

// Bytes as they are where they can be shown, others as <0D>.
std::string Shown(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size() + 8);
  for (const char c : bytes) {
    if (c >= 0x20 && c <= 0x7E) {
      text += c;
    } else {
      text += "<" + ToHex(static_cast<unsigned char>(c), 2) + ">";
    }
  }
  return text;
}

TraceSecrets::Passage PassageOf(Trace::Direction direction) {
  if (direction == Trace::Direction::Sent) return TraceSecrets::Passage::Sent;
  return direction == Trace::Direction::Received ? TraceSecrets::Passage::Answer : TraceSecrets::Passage::Garbage;
}

}  // namespace

const Trace::Entry* Trace::Ring::Find(std::uint64_t number) const {
  std::uint64_t first = Begin();
  for (std::uint64_t last = mEnd; first < last;) {
    const std::uint64_t middle = first + (last - first) / 2;
    At(middle).number < number ? first = middle + 1 : last = middle;
  }
  return first < mEnd && At(first).number == number ? &At(first) : nullptr;
}

void Trace::SetClock(const WallClock& clock, const Pacer& pacer) {
  mClock = &clock;
  mPacer = &pacer;
}

// Asked anew for each entry, so that a clock that is set meanwhile is followed.
std::string Trace::TimeText(Instant when) const {
  if (mClock == nullptr) return SecondsText(when.time_since_epoch());
  return LocalText(mClock->LocalMoment() - (mPacer->Now() - when));
}

void Trace::Add(Instant when, Direction direction, std::string_view bytes) {
  const auto harmless = direction == Direction::Note ? bytes : mSecrets.Harmless(when, PassageOf(direction), bytes);
  Entry& entry = mEntries.Add();
  entry.number = mTotal++;
  entry.when = when;
  entry.direction = direction;
  entry.length = static_cast<std::uint32_t>(bytes.size());
  entry.owner = mOwner;
  entry.isWithheld = !harmless;
  const std::string_view kept = harmless.value_or(std::string_view());
  std::copy_n(kept.begin(), std::min(kept.size(), kKeptBytes), entry.bytes.begin());
  if (mFile.is_open()) mFile << RowOf(entry, kept).Line() << '\n' << std::flush;
}

void Trace::SetPollAside(std::uint64_t from) {
  constexpr std::uint64_t kGood = Ring::kSpare;  // the question and its answer
  if (mTotal - from != kGood) return;
  for (std::uint64_t at = mEntries.End() - kGood; at < mEntries.End(); ++at) mPolls.Add() = mEntries.At(at);
  mEntries.TakeBack(kGood);
}

void Trace::SetOwner(std::string_view owner) {
  constexpr std::size_t kMostOwners = 200;  // names beyond these share the first place
  const auto found = std::ranges::find(mOwners, owner);
  if (found == mOwners.end() && mOwners.size() >= kMostOwners) {
    mOwner = 0;
    return;
  }
  mOwner = static_cast<std::uint16_t>(found - mOwners.begin());
  if (found == mOwners.end()) mOwners.emplace_back(owner);
}

bool Trace::WriteTo(const std::string& path) {
  mPath.clear();
  mFile.close();
  mFile.clear();
  if (path.empty()) return true;
  mFile.open(PathFromUtf8(path), std::ios::binary | std::ios::trunc);
  if (!mFile.is_open()) return false;
  mPath = path;
  return true;
}

std::vector<std::uint64_t> Trace::Numbers() const {
  std::vector<std::uint64_t> numbers;
  for (const Ring* ring : {&mEntries, &mPolls}) {
    for (std::uint64_t at = ring->Begin(); at < ring->End(); ++at) numbers.push_back(ring->At(at).number);
  }
  std::ranges::sort(numbers);
  return numbers;
}

Trace::Row Trace::RowAt(std::uint64_t number) const {
  const Entry* entry = mEntries.Find(number);
  if (entry == nullptr) entry = mPolls.Find(number);
  if (entry == nullptr) return {};
  return RowOf(*entry, std::string_view(entry->bytes.data(), std::min<std::size_t>(entry->length, kKeptBytes)));
}

std::string Trace::Text() const {
  std::string text;
  for (const std::uint64_t number : Numbers()) text += RowAt(number).Line() + "\n";
  return text;
}

Trace::Row Trace::RowOf(const Entry& entry, std::string_view bytes) const {
  Row row{TimeText(entry.when), entry.direction, mOwners[entry.owner], {}, {}};
  if (entry.isWithheld) {
    row.text = "(" + std::to_string(entry.length) + " bytes withheld: they may be an echo of a password)";
    return row;
  }
  row.text = Shown(bytes);
  if (bytes.size() < entry.length) row.text += "... (" + std::to_string(entry.length) + " bytes)";
  if (entry.direction != Direction::Note) row.meaning = FrameMeaning(bytes);
  return row;
}

std::string Trace::Row::Line() const {
  std::string line = time + " " + std::string(Arrow(direction)) + " ";
  if (!owner.empty()) line += owner + " ";
  line += text;
  return meaning.empty() ? line : line + "   [" + meaning + "]";
}

}  // namespace kv
