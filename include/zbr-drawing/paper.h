// Paper sizes and drawing scales, by the names that people give them.
#pragma once

#include <string>
#include <vector>

namespace zbr::drawing {

struct Paper {
  std::string name;
  double width = 0.0, height = 0.0;  // millimetres
  bool mayTurn = false;              // lying and standing are the same to the one who asks for it
};

// A4 to A0 lying, smallest first.
const std::vector<Paper>& StandardPapers();

// "A3", which may be turned, or "420x297", the width first, which may not but is named A3, too. Fails on anything else and on sizes
// of less than 50 mm or more than 10 m.
Paper ParsePaper(const std::string& text);

Paper Turned(const Paper& paper);

// "1:2", "2:1" or a number. Fails unless positive and finite.
double ParseScale(const std::string& text);

// The largest scale of the series 1, 2, 2.5, 5, 10, ... on either side of 1:1 that is at most `limit`.
double StandardScale(double limit);
// The same of all scales with three digits, such as 1:1.37.
double FittingScale(double limit);

std::string ScaleText(double scale);

}  // namespace zbr::drawing
