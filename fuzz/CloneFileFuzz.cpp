// Any bytes as a clone file: every damage lies in the file, what is covered lies in its segment, and a line that is
// taken as a frame is what the engine would write.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string_view>

#include "clone/CloneFrame.h"
#include "clone/CloneInfo.h"

namespace {

void Require(bool holds, const char* what) {
  if (holds) return;
  std::cerr << "broken: " << what << '\n';
  std::abort();
}

void CheckFrames(const std::string& bytes) {
  std::istringstream stream(bytes);
  kv::CloneLineReader lines(stream, "fuzz");
  while (true) {
    const auto line = lines.Next();
    if (!line || !*line) return;
    Require((*line)->size() <= kv::kLongestCloneLine, "a line is bounded");
    const auto frame = kv::ParseCloneFrame(**line);
    if (!frame) continue;
    const std::string again = frame->isEnd ? kv::BuildEndFrame(frame->unit)
                                           : kv::BuildWriteFrame(frame->unit, frame->kind, frame->address, frame->data);
    Require(again == **line, "what is read is what is written");
  }
}

void CheckSegment(const kv::CloneInfoSegment& held) {
  const std::uint64_t end = std::uint64_t{held.segment.start} + held.segment.length;
  Require(held.covered.Bytes() <= held.segment.length, "no byte is covered twice");
  for (const kv::AddressRange& range : held.covered.Ranges()) {
    Require(range.first >= held.segment.start && range.last < end, "what is covered lies in the segment");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  std::istringstream stream(bytes);
  const auto info = kv::InspectClone(stream, "fuzz", size);
  Require(info.has_value(), "a stream that does not fail can be inspected");
  const auto lines = static_cast<std::size_t>(std::ranges::count(bytes, '\n')) + 1;
  for (const kv::LineError& damage : info->damages) {
    Require(damage.line >= 1 && damage.line <= lines + 1, "a damage lies in the file");
    Require(!damage.what.empty(), "a damage says what was expected");
  }
  Require(info->IsSound() == info->damages.empty(), "a damaged file is known as such");
  Require(!info->IsSound() || (info->head && info->hasEnd), "a sound file is whole");
  for (const kv::CloneInfoSegment& segment : info->segments) CheckSegment(segment);
  CheckFrames(bytes);
  return 0;
}
