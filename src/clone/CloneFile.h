#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <fstream>
#include <istream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/AtomicFile.h"
#include "base/LineError.h"
#include "clone/CloneSegment.h"
#include "digest/Sha256.h"
#include "link/VersionInfo.h"

namespace kv {

// Longest line that is read. The longest command line has 531 characters; a segment line holds what one reply to "GI"
// can name, in about half of this.
inline constexpr std::size_t kLongestCloneLine = 4096;

// Lines before the first command line: title, version, segments, an empty one.
inline constexpr std::size_t kCloneHeadLines = 4;

// What a clone file says in its first lines.
struct CloneHead {
  std::string title;                   // the whole first line
  std::string format;                  // "V100"; its second field
  std::string created;                 // date and time, as they stand there
  VersionInfo version;                 // of the controller that was cloned
  std::vector<CloneSegment> segments;  // without their kind: the frames know it (RAM stands here)

  bool operator==(const CloneHead&) const = default;
};

// Reads the lines of a clone file one after the other, whatever the bytes are, with a bound on their length.
//
// A line ends with LF. One CR before it belongs to the line end and is not handed out; but a line that begins with "/"
// is a frame and keeps one CR, so that a file whose CR LF were turned into LF still gives whole frames.
// The last line may lack its end.
class CloneLineReader {
 public:
  // `stream` must outlive this; `name` stands in errors.
  // `digest`, which may be null, gets all bytes that are read; all of the file's when Next() has come to its end.
  CloneLineReader(std::istream& stream, std::string name, Sha256* digest = nullptr)
      : mStream(stream), mName(std::move(name)), mDigest(digest) {}

  // The next line, valid until the next call; nothing at the end. A line that is too long and a stream that fails are
  // errors.
  [[nodiscard]] std::expected<std::optional<std::string_view>, FileError> Next();

  [[nodiscard]] std::size_t LineNumber() const { return mLineNumber; }  // of the last line handed out; 0 before it
  [[nodiscard]] std::uint64_t Position() const { return mPosition; }    // in the file, behind the last line
  [[nodiscard]] const std::string& Name() const { return mName; }

 private:
  [[nodiscard]] bool Fill();

  std::istream& mStream;
  std::string mName;
  Sha256* mDigest = nullptr;
  std::string mBuffer;
  std::size_t mNext = 0;  // in mBuffer
  std::string mLine;
  std::size_t mLineNumber = 0;
  std::uint64_t mPosition = 0;
};

// Reads the four head lines; the damage is the first line that is not as it must be.
[[nodiscard]] std::expected<CloneHead, LineError> ReadCloneHead(CloneLineReader& lines);

}  // namespace kv
