#include "clone/CloneCompare.h"

#include <algorithm>

#include "base/AnsiText.h"
#include "base/Texts.h"

namespace kv {
namespace {

bool IsValues(std::string_view code) {
  return code == "OP" || code == "DT";
}

}  // namespace

std::vector<std::string> CodesOf(const CloneInfo& info, ComparedKinds kinds) {
  std::vector<std::string> codes;
  for (const CloneInfoSegment& each : info.segments) {
    const bool isMeant = kinds == ComparedKinds::All || IsValues(each.segment.code) == (kinds == ComparedKinds::Values);
    if (isMeant) codes.push_back(each.segment.code);
  }
  return codes;
}

bool CloneComparison::IsSame() const {
  return onlyInFirst.empty() && onlyInSecond.empty() && DifferingBytes() == 0;
}

std::uint64_t CloneComparison::DifferingBytes() const {
  std::uint64_t bytes = 0;
  for (const SegmentDifference& segment : segments) bytes += segment.differing.Bytes();
  return bytes;
}

std::string KindVerdict::Text() const {
  const std::string name = isValues ? "Values of operands (" : "Program and settings (";
  if (bytes == 0) return name + codes + "): same.";
  const std::string differ = name + codes + "): " + Counted(bytes, "byte differs", "bytes differ");
  return differ + (isValues ? "; a running program changes them by itself." : ".");
}

std::vector<KindVerdict> VerdictsByKind(const CloneComparison& comparison) {
  std::vector<KindVerdict> verdicts;
  for (const bool isValues : {false, true}) {
    KindVerdict verdict{isValues, {}, 0};
    for (const SegmentDifference& each : comparison.segments) {
      const std::string& code = each.segment.code;
      if (IsValues(code) != isValues) continue;
      verdict.codes += (verdict.codes.empty() ? "" : ", ") + AnsiToUtf8(code);
      verdict.bytes += each.differing.Bytes();
    }
    if (!verdict.codes.empty()) verdicts.push_back(verdict);
  }
  return verdicts;
}

void AddDifferences(std::uint32_t address, std::span<const std::uint8_t> first, std::span<const std::uint8_t> second,
                    AddressRanges& differing) {
  if (std::ranges::equal(first, second)) return;
  for (std::size_t i = 0; i < first.size(); ++i) {
    if (first[i] != second[i]) differing.Add(address + static_cast<std::uint32_t>(i), 1);
  }
}

CloneOutcome NothingToCompare() {
  return CloneOutcome::Failed(CloneCause::File,
                              "There is nothing to compare: no segment of the clone file has a byte.");
}

std::uint64_t BytesOf(const CloneInfo& info) {
  std::uint64_t bytes = 0;
  for (const CloneInfoSegment& segment : info.segments) bytes += segment.segment.length;
  return bytes;
}

}  // namespace kv
