#include "outline/outline_geos.h"

#include <algorithm>
#include <cmath>

OutlineComparison CompareOutline(const Geos& geos, const std::vector<ZBR_HL_SHELL>& shells, const LoopList& outline) {
  OutlineComparison result;
  std::vector<Ring> triangles;
  for (const ZBR_HL_SHELL& shell : shells) {
    for (unsigned k = 0; k < shell.count; ++k) {
      const ZBR_HL_TRI& t = shell.tris[k];
      if (t.tri_state != 1) continue;
      triangles.push_back({t.pt[0].xy(), t.pt[1].xy(), t.pt[2].xy()});
      result.extent = std::max({result.extent, t.max_x, t.max_y, -t.min_x, -t.min_y});
    }
  }
  result.loops = {static_cast<int>(outline.size()), static_cast<int>(RingsOf(outline).size() - outline.size())};
  Geos::Geometry expected;
  for (const double grid : {0.0, std::exp2(std::floor(std::log2(result.extent)) - 36.0)}) {
    Geos::Geometry joined = geos.Union(triangles, grid);
    if (joined) result.expected = geos.CountRings(joined, 1e-8 * result.extent);
    result.rounded = grid != 0.0;
    if (!expected) expected = std::move(joined);
    if (result.expected == result.loops) break;
  }
  result.area = geos.Area(expected);
  result.error = std::abs(NetArea(outline) - result.area);
  if (expected) result.difference = geos.Difference(geos.Region(outline), expected, 1e-9 * result.area);
  return result;
}
