#include "journal/JournalFiles.h"

#include <algorithm>

#include "base/Numbers.h"
#include "base/PathText.h"
#include "digest/Sha256.h"
#include "journal/JournalRecord.h"
#include "sessions/SessionIni.h"

namespace kv {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kPiece = std::size_t{64} * 1024;
constexpr std::string_view kExtension = ".journal";
constexpr std::size_t kSegmentDigits = 4;

}  // namespace

fs::path SegmentFile(const fs::path& folder, unsigned segment) {
  return folder / (std::string(kChangesFilePrefix) + PaddedInteger(segment, kSegmentDigits) + std::string(kExtension));
}

fs::path LockFile(const fs::path& folder) {
  return folder / (std::string(kChangesFilePrefix) + "lock");
}

std::vector<unsigned> SegmentsIn(const fs::path& folder) {
  std::vector<unsigned> segments;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    const std::string name = Utf8FromPath(entry->path().filename());
    const bool isSegment = name.size() == kChangesFilePrefix.size() + kSegmentDigits + kExtension.size() &&
                           name.starts_with(kChangesFilePrefix) && name.ends_with(kExtension);
    if (!isSegment) continue;
    const auto digits = std::string_view(name).substr(kChangesFilePrefix.size(), kSegmentDigits);
    const bool areDigits = digits.find_first_not_of("0123456789") == std::string_view::npos;
    if (!areDigits || digits == "0000") continue;
    unsigned number = 0;
    for (const char digit : digits) number = number * 10 + static_cast<unsigned>(digit - '0');
    segments.push_back(number);
  }
  std::ranges::sort(segments);
  return segments;
}

std::string HashOfPart(JournalFile& file, std::uint64_t from, std::uint64_t to) {
  Sha256 digest;
  while (from < to) {
    const auto piece = file.Read(from, static_cast<std::size_t>(std::min<std::uint64_t>(kPiece, to - from)));
    if (!piece || piece->empty()) break;
    digest.Add(*piece);
    from += piece->size();
  }
  return digest.Hex();
}

bool JournalLines::Next() {
  bool isTooLong = false;
  std::size_t searched = mStart;
  while (true) {
    const std::size_t end = mBuffer.find('\n', searched);
    if (end != std::string::npos) {
      isTooLong = isTooLong || end - mStart > kLongestJournalLine;
      mLine = isTooLong ? std::string_view() : std::string_view(mBuffer).substr(mStart, end - mStart);
      mStart = end + 1;
      mEnd = mReadTo - (mBuffer.size() - mStart);
      return true;
    }
    mBuffer.erase(0, mStart);
    mStart = 0;
    if (mBuffer.size() > kLongestJournalLine) {
      isTooLong = true;
      mBuffer.clear();
    }
    searched = mBuffer.size();
    if (!ReadMore()) return false;
  }
}

bool JournalLines::ReadMore() {
  const auto most = static_cast<std::size_t>(std::min<std::uint64_t>(kPiece, mTo - mReadTo));
  if (most == 0) return false;
  const auto piece = mFile.Read(mReadTo, most);
  if (!piece || piece->empty()) {
    mError = piece ? std::make_error_code(std::errc::io_error) : piece.error();
    return false;
  }
  mBuffer += *piece;
  mReadTo += piece->size();
  return true;
}

}  // namespace kv
