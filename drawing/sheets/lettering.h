// How much room text takes on paper.
#pragma once

#include <zbr-drawing/sheet.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace zbr::drawing {

// Millimetres that text in capitals of this height is wide, or a little more.
double TextWidth(const std::string& text, double height);

// A rectangle on paper.
struct PaperBox {
  ZBR_PT low, high;

  // What a stroke between two points covers.
  static PaperBox Around(const ZBR_PT& a, const ZBR_PT& b) {
    return {{std::min(a.x(), b.x()), std::min(a.y(), b.y())}, {std::max(a.x(), b.x()), std::max(a.y(), b.y())}};
  }

  bool IsClearOf(const PaperBox& o) const {
    return low.x() > o.high.x() || o.low.x() > high.x() || low.y() > o.high.y() || o.low.y() > high.y();
  }
  bool IsWithin(const PaperBox& o) const {
    return low.x() >= o.low.x() && high.x() <= o.high.x() && low.y() >= o.low.y() && high.y() <= o.high.y();
  }
  PaperBox Wider(double by) const { return {low - ZBR_PT(by, by), high + ZBR_PT(by, by)}; }
  // Whether a straight line from a to b passes it.
  bool IsClearOfLine(const ZBR_PT& a, const ZBR_PT& b) const;
};

// What a text covers, with what its letters have below the base line.
PaperBox BoxOf(const SheetText& text);

// From the base line of one line to that of the next one, of the height of capitals.
inline constexpr double kLineSpacing = 1.4;

// Text in lines, broken at blanks and hyphens; within words only where these are longer than a line in the smallest letters.
struct Lettering {
  double height = 0.0;
  std::vector<std::string> lines;
  bool isWhole = true;  // or cut, which "..." tells

  // From the lowest base line upwards.
  double Height() const { return lines.empty() ? 0.0 : height * (1 + kLineSpacing * static_cast<double>(lines.size() - 1)); }
};

// As large as text fits into a rectangle, from `largest` millimetres downwards; of what does not fit in the smallest letters the
// beginning.
Lettering FitText(const std::string& text, double largest, double width, double height);

}  // namespace zbr::drawing
