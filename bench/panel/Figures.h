#pragma once

#include <algorithm>
#include <cstdio>
#include <vector>

namespace bench {

// What the benchmarks of the panel measure and print: a median is judged, and the worst is shown beside it.
struct Figure {
  double median;
  double worst;
};

inline Figure FigureOf(std::vector<double> values) {
  std::ranges::sort(values);
  return {values[values.size() / 2], values.back()};
}

// Prints a figure and whether it is good enough.
inline bool Tell(const char* way, const char* what, const Figure& figure, double scale, double wanted) {
  const bool isGood = figure.median <= wanted;
  std::printf("%-12s %-34s %8.2f worst %8.2f wanted %8.2f%s\n", way, what, figure.median * scale, figure.worst * scale,
              wanted * scale, isGood ? "" : "  <");
  std::fflush(stdout);
  return isGood;
}

}  // namespace bench
