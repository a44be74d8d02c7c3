// Boundaries of hatches that are drawn by other entities.
//
// Idea: edges are compared by what does not depend on how a program splits or turns them: straight ones by their ends, arcs by
// their centre and radius. Numbers are rounded to cells as wide as rounding makes them differ, and looked for in neighbouring
// cells.
#include <algorithm>
#include <array>
#include <cmath>
#include <set>

#include "formats/dxf/dxf_contents.h"

namespace zbr::formats {
namespace {

constexpr double kCell = 1e-7;  // of the drawing's size: above what programs round, below what anybody draws

using Cell = std::array<double, 3>;

class DrawnEdges {
 public:
  explicit DrawnEdges(const Extent& extent) : cell_(std::max(extent.Size(), extent.Magnitude()) * kCell) {}

  void Add(const Path& path) {
    for (const ZBR_PT& p : path.points) ends_.insert(CellOf(p, 0));
    for (const Curve& curve : path.curves) {
      if (curve.spline == nullptr) centres_.insert(CellOf(curve.centre, curve.u.Length()));
    }
  }

  // Whether there is a contour through every corner of this one, and a circle for every arc.
  bool Holds(const Path& path) const {
    auto curve = path.curves.begin();
    for (std::size_t i = 0; i < path.points.size(); ++i) {
      const bool isCurve = curve != path.curves.end() && curve->at == i;
      const bool isArc = isCurve && curve->spline == nullptr;
      if (isArc ? !Find(centres_, curve->centre, curve->u.Length())
                : !Find(ends_, path.points[i], 0) || !Find(ends_, path.points[(i + 1) % path.points.size()], 0))
        return false;
      if (isCurve) ++curve;
    }
    return true;
  }

 private:
  Cell CellOf(const ZBR_PT& p, double radius) const {
    return {std::floor(p.x() / cell_), std::floor(p.y() / cell_), std::floor(radius / cell_)};
  }

  bool Find(const std::set<Cell>& cells, const ZBR_PT& p, double radius) const {
    const Cell home = CellOf(p, radius);
    for (const double dx : {0.0, -1.0, 1.0}) {
      for (const double dy : {0.0, -1.0, 1.0}) {
        for (const double dr : {0.0, -1.0, 1.0}) {
          if (cells.contains({home[0] + dx, home[1] + dy, home[2] + dr})) return true;
        }
      }
    }
    return false;
  }

  double cell_;
  std::set<Cell> ends_, centres_;
};

}  // namespace

void DropDrawnHatches(Drawing& drawing, const std::vector<std::size_t>& hatches) {
  if (hatches.empty() || hatches.size() == drawing.paths.size()) return;
  const Extent extent = ExtentOf(drawing);
  if (!std::isfinite(extent.Magnitude()) || extent.Magnitude() == 0) return;
  DrawnEdges drawn(extent);
  std::vector<bool> isDropped(drawing.paths.size(), false);
  for (const std::size_t hatch : hatches) isDropped[hatch] = true;
  for (std::size_t i = 0; i < drawing.paths.size(); ++i) {
    if (!isDropped[i]) drawn.Add(drawing.paths[i]);
  }
  for (const std::size_t hatch : hatches) isDropped[hatch] = drawn.Holds(drawing.paths[hatch]);
  std::size_t index = 0;
  std::erase_if(drawing.paths, [&](const Path&) { return isDropped[index++]; });
}

}  // namespace zbr::formats
