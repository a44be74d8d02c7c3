#include "formats/pictures/sheet_ink.h"

#include <algorithm>
#include <cmath>

namespace zbr::formats {

std::optional<DashPattern> DashesOf(const Sheet& sheet, const Line& line) {
  constexpr double kShortest = 1;
  double length = 0.0;
  for (std::size_t i = 1; i < line.chain.points.size(); ++i)
    length += (line.chain.points[i] * sheet.perUnit).Distance(line.chain.points[i - 1] * sheet.perUnit);
  if (length < kShortest) return std::nullopt;
  const double dash = kDash * sheet.thin, period = (kDash + kDashGap) * sheet.thin;
  const double gaps = std::max(std::round((length - dash) / period), 1.0);
  const double stretch = length / (gaps * period + dash);
  return DashPattern{dash * stretch, (period - dash) * stretch};
}

std::array<double, 4> ChainPattern(const Sheet& sheet) {
  return {kLongDash * sheet.thin, kDashGap * sheet.thin, kDot * sheet.thin, kDashGap * sheet.thin};
}

std::array<int, 3> ShadeOf(std::size_t object) {
  constexpr std::array<std::array<int, 3>, 6> kShades = {
      {{0xe4, 0xe6, 0xe9}, {0xc9, 0xd8, 0xe6}, {0xec, 0xdf, 0xc4}, {0xcf, 0xe3, 0xcf}, {0xe9, 0xd0, 0xcd}, {0xd8, 0xd0, 0xe6}}};
  return kShades[object % kShades.size()];
}

}  // namespace zbr::formats
