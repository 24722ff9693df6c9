#include "clone/CloneInfo.h"

#include <algorithm>
#include <system_error>

#include "base/AnsiText.h"
#include "base/Hex.h"
#include "base/PathText.h"
#include "clone/CloneFrame.h"
#include "clone/CloneLines.h"

namespace kv {
namespace {

constexpr std::string_view kStage = "Reading the clone file";

std::string Address(std::uint32_t address) {
  return ToHex(address, kAddressDigits);
}

// Holds the frames of a file against its head, one after the other.
class Inspector {
 public:
  explicit Inspector(CloneInfo& info) : mInfo(info) {}

  void Damage(std::size_t line, std::string what) {
    if (mInfo.damages.size() < CloneInfo::kMostDamages) mInfo.damages.push_back({line, std::move(what)});
    ++mInfo.damageCount;
    mIsAfterDamage = true;
  }

  void TakeLine(std::size_t number, std::string_view line, std::uint64_t position) {
    mLine = number;
    if (mInfo.hasEnd) return Damage(number, "expected nothing behind the end frame");
    const auto frame = ParseCloneFrame(line);
    if (!frame) return Damage(number, frame.error());
    if (mInfo.unit.value_or(frame->unit) != frame->unit) {
      return Damage(number, "expected a frame for unit " + std::to_string(*mInfo.unit) + ", as in the lines before");
    }
    mInfo.unit = frame->unit;
    if (frame->isEnd) {
      mInfo.hasEnd = true;
      LeaveSegments(mInfo.segments.size());
    } else if (auto what = TakeWrite(*frame, position); !what.empty()) {
      return Damage(number, std::move(what));
    }
    ++mInfo.frames;
    mIsAfterDamage = false;
  }

  void End(std::size_t lastLine) {
    if (!mInfo.hasEnd) Damage(lastLine + 1, "expected more lines and an end frame: the file has been cut");
  }

 private:
  // What is wrong with a write frame; empty when nothing is.
  std::string TakeWrite(const CloneFrame& frame, std::uint64_t position) {
    const std::size_t place = FindSegment(frame.address);
    if (place == mInfo.segments.size()) {
      return "expected an address of a segment that the head names, in its order, instead of " + Address(frame.address);
    }
    if (place != mCurrent) LeaveSegments(place);
    CloneInfoSegment& holder = mInfo.segments[mCurrent];
    const std::uint32_t offset = frame.address - holder.segment.start;
    if (std::string what = Misplacement(frame, holder, offset); !what.empty()) return what;
    if (!holder.hasFrames) {
      holder.hasFrames = true;
      holder.segment.kind = frame.kind;
      holder.position = position;
    }
    const auto bytes = static_cast<std::uint32_t>(frame.data.size());
    holder.covered.Add(frame.address, bytes);
    mNextOffset = offset + bytes;
    return {};
  }

  // The first segment, from the current one on, in which the address lies.
  std::size_t FindSegment(std::uint32_t address) const {
    std::size_t place = mCurrent;
    const auto holds = [&](const CloneSegment& segment) {
      return address >= segment.start && address - segment.start < segment.length;
    };
    while (place < mInfo.segments.size() && !holds(mInfo.segments[place].segment)) ++place;
    return place;
  }

  std::string Misplacement(const CloneFrame& frame, const CloneInfoSegment& holder, std::uint32_t offset) const {
    const CloneSegment& segment = holder.segment;
    if (holder.hasFrames && frame.kind != segment.kind) {
      return std::string("expected the memory letter ") + LetterOf(segment.kind) + ", as before in segment " +
             segment.code;
    }
    const std::uint32_t lineSize = LineSizeOf(frame.kind);
    if (offset < mNextOffset) {
      return "expected address " + Address(segment.start + mNextOffset) + " or a later one: lines are out of order";
    }
    const std::uint32_t wanted = std::min(lineSize, segment.length - offset / lineSize * lineSize);
    if (offset % lineSize != 0 || frame.data.size() != wanted) {
      return "expected " + std::to_string(wanted) + " bytes from " +
             Address(segment.start + offset / lineSize * lineSize) + " on";
    }
    const bool isGap = frame.kind == MemoryKind::Ram && offset > mNextOffset && !mIsAfterDamage;
    return isGap ? "expected the line for address " + Address(segment.start + mNextOffset) + " before this one" : "";
  }

  // The segments from the current one up to `next` are over: RAM must be complete but for a short last line.
  void LeaveSegments(std::size_t next) {
    if (mCurrent == mInfo.segments.size()) return;
    const CloneInfoSegment& left = mInfo.segments[mCurrent];
    const CloneSegment& segment = left.segment;
    const std::uint32_t fullLines = segment.length - segment.length % LineSizeOf(MemoryKind::Ram);
    const bool isRam = left.hasFrames && segment.kind == MemoryKind::Ram;
    if (isRam && mNextOffset < fullLines && !mIsAfterDamage) {
      Damage(mLine, "expected the lines from address " + Address(segment.start + mNextOffset) + " on, of segment " +
                        segment.code);
    }
    mCurrent = next;
    mNextOffset = 0;
  }

  CloneInfo& mInfo;
  std::size_t mCurrent = 0;       // index of the segment that the last frame was in
  std::uint32_t mNextOffset = 0;  // in it, behind that frame
  std::size_t mLine = 0;
  bool mIsAfterDamage = false;  // the line before may have been the one that is missing
};

// The lines behind the head. False when the stream failed.
std::expected<void, CloneOutcome> InspectLines(CloneLineReader& lines, Inspector& inspector, const std::istream& stream,
                                               std::uint64_t size, const CloneWork& work) {
  constexpr std::size_t kLinesBetweenReports = 256;
  while (true) {
    const std::uint64_t position = lines.Position();
    const auto line = lines.Next();
    if (!line && stream.bad()) return std::unexpected(CloneOutcome::OfFile(line.error()));
    if (!line) {
      inspector.Damage(lines.LineNumber() + 1, line.error().what);
      return {};
    }
    if (!*line) break;
    inspector.TakeLine(lines.LineNumber(), **line, position);
    if (lines.LineNumber() % kLinesBetweenReports != 0) continue;
    if (work.IsStopped()) return std::unexpected(CloneOutcome::OfStop());
    work.Report(kStage, lines.Position(), size);
  }
  inspector.End(lines.LineNumber());
  return {};
}

}  // namespace

std::string AddressText(const AddressRange& range) {
  std::string text = Address(range.first);
  if (range.last != range.first) text += ".." + Address(range.last);
  return text;
}

void AddressRanges::Add(std::uint32_t address, std::uint32_t length) {
  if (length == 0) return;
  const bool continues = mBytes > 0 && mEnd == address;
  if (!continues) ++mRangeCount;
  const std::uint32_t last = address + (length - 1);
  if (mRangeCount <= kMost) {
    if (continues) {
      mRanges.back().last = last;
    } else {
      mRanges.push_back({address, last});
    }
  }
  mBytes += length;
  mEnd = std::uint64_t{address} + length;
}

std::expected<CloneInfo, CloneOutcome> InspectClone(const std::filesystem::path& file, const CloneWork& work) {
  auto stream = OpenForReading(file);
  if (!stream) return std::unexpected(CloneOutcome::OfFile(stream.error()));
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(file, error);
  return InspectClone(*stream, Utf8FromPath(file), error ? 0 : size, work);
}

std::expected<CloneInfo, CloneOutcome> InspectClone(std::istream& stream, const std::string& name, std::uint64_t size,
                                                    const CloneWork& work) {
  CloneInfo info;
  Inspector inspector(info);
  Sha256 digest;
  CloneLineReader lines(stream, name, &digest);
  auto head = ReadCloneHead(lines);
  if (!head) {
    inspector.Damage(head.error().line, head.error().what);
    return info;
  }
  for (const CloneSegment& segment : head->segments) info.segments.push_back({.segment = segment, .covered = {}});
  info.head = *std::move(head);
  if (const auto done = InspectLines(lines, inspector, stream, size, work); !done) return std::unexpected(done.error());
  if (stream.eof() && !stream.bad()) {
    info.length = lines.Position();
    info.sha256 = digest.Hex();
  }
  work.Report(kStage, size, size);
  return info;
}

std::string OtherModelText(const VersionInfo& inFile, const VersionInfo& inController) {
  return "The clone file was made from a " + AnsiToUtf8(inFile.model) + ", but the controller is a " +
         AnsiToUtf8(inController.model) + ".";
}

std::vector<std::string> FindingsBeforeRestore(const CloneInfo& info, const VersionInfo& version) {
  std::vector<std::string> findings;
  if (!info.IsSound()) {
    std::string damage = "The clone file is damaged: " + info.damages.front().Text();
    if (info.damageCount > 1) damage += " (and " + std::to_string(info.damageCount - 1) + " more)";
    findings.push_back(damage + ".");
  }
  if (info.IsSound() && info.frames <= 1) {
    findings.emplace_back("The clone file has no line of memory: a restore writes nothing.");
  }
  if (info.head && info.head->version.model != version.model) {
    findings.push_back(OtherModelText(info.head->version, version));
  }
  return findings;
}

std::string OtherUnitText(const CloneInfo& info, std::uint8_t unit) {
  if (info.unit.value_or(unit) == unit) return "";
  return "The clone file is for unit " + std::to_string(*info.unit) + ", but the controller is unit " +
         std::to_string(unit) + ".";
}

}  // namespace kv
