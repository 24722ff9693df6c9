#include "clone/ComparisonText.h"

#include "base/AnsiText.h"
#include "base/Hex.h"
#include "base/Texts.h"

namespace kv {
namespace {

void AddLone(const std::vector<CloneSegment>& segments, const char* where, std::vector<std::string>& lines) {
  for (const CloneSegment& segment : segments) lines.push_back(SegmentText(segment) + ": " + where);
}

}  // namespace

std::string SegmentText(const CloneSegment& segment) {
  return AnsiToUtf8(segment.code) + "  " + ToHex(segment.start, kAddressDigits) + "  " +
         Counted(segment.length, "byte");
}

std::vector<std::string> ComparisonLines(const CloneComparison& comparison) {
  std::vector<std::string> lines;
  for (const SegmentDifference& each : comparison.segments) {
    const AddressRanges& differing = each.differing;
    const std::string verdict =
        differing.IsEmpty() ? "same" : Counted(differing.Bytes(), "byte differs", "bytes differ");
    lines.push_back(SegmentText(each.segment) + ": " + verdict);
    for (const AddressRange& range : differing.Ranges()) lines.push_back("    " + AddressText(range));
    const std::uint64_t more = differing.RangeCount() - differing.Ranges().size();
    if (more > 0) lines.push_back("    and " + Counted(more, "more range"));
  }
  AddLone(comparison.onlyInFirst, "only in the first file", lines);
  AddLone(comparison.onlyInSecond, "only in the second file", lines);
  return lines;
}

std::string VerdictText(const CloneComparison& comparison, bool isWithController) {
  if (comparison.IsSame()) return "the same.";
  std::string text = Counted(comparison.DifferingBytes(), "byte differs", "bytes differ");
  const std::size_t lone = comparison.onlyInFirst.size() + comparison.onlyInSecond.size();
  if (lone > 0) text += ", " + Counted(lone, "segment stands", "segments stand") + " on one side only";
  text += ".";
  if (!isWithController) return text;
  for (const KindVerdict& verdict : VerdictsByKind(comparison)) text += "\n" + verdict.Text();
  return text;
}

}  // namespace kv
