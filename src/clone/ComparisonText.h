#pragma once

#include <string>
#include <vector>

#include "clone/CloneCompare.h"

namespace kv {

// What a comparison found, for people. The bytes are Windows-1252 in the codes of segments; texts here are UTF-8.

// "OP  00100000  1554 bytes": code, start and length; an empty segment has no last address.
[[nodiscard]] std::string SegmentText(const CloneSegment& segment);

// A line a segment, and below it, with blanks in front, the places that differ.
[[nodiscard]] std::vector<std::string> ComparisonLines(const CloneComparison& comparison);

// "the same." or how much differs; against a controller, what each kind of memory says, a sentence a line.
[[nodiscard]] std::string VerdictText(const CloneComparison& comparison, bool isWithController);

}  // namespace kv
