#include "segments/polyline.h"

#include <cmath>

#include "core/planar_inline.h"
#include "core/tolerance_state.h"

namespace zbr {
namespace {

// Whether the line goes straight on at cur: no corner, and no reversal.
bool IsRedundant(const ZBR_PT& prev, const ZBR_PT& cur, const ZBR_PT& next) {
  const Tolerance& tol = t_tolerance;
  if (SideOfLine(prev, cur, next, tol.eps2) != 0) return false;
  const ZBR_PT back = prev - cur;
  const ZBR_PT ahead = next - cur;
  return std::fabs(Cross(ahead, back)) <= tol.eps && back.InnerProduct(ahead) < 0.0;
}

// Keeps, of the points 1 to n - 2, those at which the line turns, moved up behind point 0. Returns how many points are kept with
// point 0. A point is judged by the last kept point before it and the next point as given.
std::size_t KeepTurns(std::vector<ZBR_PT>& line) {
  std::size_t kept = 1;
  for (std::size_t i = 1; i + 1 < line.size(); ++i) {
    if (!IsRedundant(line[kept - 1], line[i], line[i + 1])) line[kept++] = line[i];
  }
  return kept;
}

}  // namespace

void StraightenOpen(std::vector<ZBR_PT>& line) {
  if (line.size() < 3) return;
  const std::size_t kept = KeepTurns(line);
  line[kept] = line.back();
  line.resize(kept + 1);
}

void StraightenClosed(std::vector<ZBR_PT>& line) {
  if (line.size() >= 3) line.resize(KeepTurns(line));
  if (line.size() > 3 && IsRedundant(line.back(), line[0], line[1])) line.erase(line.begin());
  line.push_back(line[0]);
}

}  // namespace zbr
