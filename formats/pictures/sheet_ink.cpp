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

std::optional<std::array<double, 4>> ChainPattern(const Sheet& sheet, const Line& line) {
  const double length = line.chain.points.front().Distance(line.chain.points.back()) * sheet.perUnit / sheet.thin;
  const double period = kLongDash + 2 * kDashGap + kDot;
  const double periods = 2 * std::round((length - kLongDash) / period / 2);
  if (length < kLongDash + period) return std::nullopt;
  const double stretch = length / (std::max(periods, 2.0) * period + kLongDash) * sheet.thin;
  return std::array{kLongDash * stretch, kDashGap * stretch, kDot * stretch, kDashGap * stretch};
}

std::array<int, 3> ShadeOf(std::size_t object) {
  constexpr std::array<std::array<int, 3>, 6> kShades = {
      {{0xe4, 0xe6, 0xe9}, {0xc9, 0xd8, 0xe6}, {0xec, 0xdf, 0xc4}, {0xcf, 0xe3, 0xcf}, {0xe9, 0xd0, 0xcd}, {0xd8, 0xd0, 0xe6}}};
  return kShades[object % kShades.size()];
}

}  // namespace zbr::formats
