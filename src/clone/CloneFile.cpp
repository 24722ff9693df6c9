#include "clone/CloneFile.h"

#include <algorithm>
#include <array>

#include "base/Numbers.h"
#include "base/PathText.h"
#include "base/Texts.h"

namespace kv {

namespace {

constexpr std::string_view kTitle = "Korvantis Clone File:";
constexpr std::string_view kFormat = "V100";

std::expected<void, std::string> ReadTitle(std::string_view line, CloneHead& head) {
  head.title = line;
  if (TakeField(line, '\t') != kTitle) {
    return std::unexpected("expected the title \"" + std::string(kTitle) + "\": this is no clone file");
  }
  head.format = TakeField(line, '\t');
  if (head.format != kFormat) return std::unexpected("expected the format V100, the only one that this program knows");
  head.created = line;
  std::ranges::replace(head.created, '\t', ' ');
  return {};
}

std::expected<void, std::string> ReadVersion(std::string_view line, CloneHead& head) {
  if (std::ranges::count(line, '\t') != 3) return std::unexpected("expected four version texts with tabs between them");
  for (std::string* text :
       {&head.version.model, &head.version.hardwareCode, &head.version.osVersion, &head.version.osBuild}) {
    *text = TakeField(line, '\t');
  }
  return {};
}

std::optional<CloneSegment> ReadSegment(std::string_view field) {
  constexpr std::int64_t kAddresses = std::int64_t{1} << 32;
  if (std::ranges::count(field, ',') != 2) return std::nullopt;
  const std::string code(TakeField(field, ','));
  const auto start = ParseInteger(TakeField(field, ','));
  const auto length = ParseInteger(field);
  const bool isGood = code.size() == 2 && start && length && *start >= 0 && *start < kAddresses && *length >= 0 &&
                      *length <= kAddresses - *start && *length < kAddresses && *length % 2 == 0;
  if (!isGood) return std::nullopt;
  return CloneSegment{code, MemoryKind::Ram, static_cast<std::uint32_t>(*start), static_cast<std::uint32_t>(*length)};
}

std::expected<void, std::string> ReadSegments(std::string_view line, CloneHead& head) {
  if (!line.empty() && !line.ends_with('\t')) return std::unexpected("expected a tab at the end of the segments");
  while (!line.empty()) {
    auto segment = ReadSegment(TakeField(line, '\t'));
    if (!segment) {
      return std::unexpected("expected code, start and even length of segment " +
                             std::to_string(head.segments.size() + 1) + ", as in \"OP,1048576,1554\"");
    }
    head.segments.push_back(*std::move(segment));
  }
  return {};
}

std::expected<void, std::string> ReadEmptyLine(std::string_view line, CloneHead&) {
  if (!line.empty()) return std::unexpected("expected an empty line");
  return {};
}

}  // namespace

std::expected<std::optional<std::string_view>, FileError> CloneLineReader::Next() {
  mLine.clear();
  bool isEnded = false;
  while (!isEnded) {
    if (mNext == mBuffer.size() && !Fill()) break;
    const std::size_t end = mBuffer.find('\n', mNext);
    isEnded = end != std::string::npos;
    const std::size_t count = (isEnded ? end : mBuffer.size()) - mNext;
    const auto fail = [this](const std::string& what) {
      return std::unexpected(LineError{mLineNumber + 1, what}.In(mName));
    };
    if (mLine.size() + count > kLongestCloneLine) {
      return fail("it is longer than " + std::to_string(kLongestCloneLine) + " characters: this is no clone file");
    }
    mLine.append(mBuffer, mNext, count);
    mNext += count + (isEnded ? 1 : 0);
    mPosition += count + (isEnded ? 1 : 0);
  }
  if (mStream.bad()) return std::unexpected(FileError{mName, "", "reading it failed in the middle"});
  if (!isEnded && mLine.empty()) return std::nullopt;
  ++mLineNumber;
  const bool isFrame = mLine.starts_with('/');
  if (isEnded && mLine.ends_with(isFrame ? "\r\r" : "\r")) mLine.pop_back();
  return mLine;
}

bool CloneLineReader::Fill() {
  constexpr std::size_t kPiece = std::size_t{8} * 1024;
  mNext = 0;
  mBuffer.resize(kPiece);
  mStream.read(mBuffer.data(), kPiece);
  mBuffer.resize(static_cast<std::size_t>(mStream.gcount()));
  if (mDigest != nullptr) mDigest->Add(mBuffer);
  return !mBuffer.empty();
}

std::expected<CloneHead, LineError> ReadCloneHead(CloneLineReader& lines) {
  constexpr std::array kReaders = {ReadTitle, ReadVersion, ReadSegments, ReadEmptyLine};
  CloneHead head;
  for (const auto& read : kReaders) {
    const auto line = lines.Next();
    if (!line) return std::unexpected(LineError{lines.LineNumber() + 1, line.error().what});
    if (!*line) return std::unexpected(LineError{lines.LineNumber() + 1, "expected four head lines: it ends here"});
    if (const auto done = read(**line, head); !done) {
      return std::unexpected(LineError{lines.LineNumber(), done.error()});
    }
  }
  return head;
}

}  // namespace kv
