// Axis-aligned boxes.
#pragma once

#include <algorithm>
#include <limits>

#include <zbr/planar.h>

namespace zbr {

struct Box {
  double xmin = std::numeric_limits<double>::infinity();
  double ymin = std::numeric_limits<double>::infinity();
  double xmax = -std::numeric_limits<double>::infinity();
  double ymax = -std::numeric_limits<double>::infinity();

  void Add(const ZBR_PT& p) {
    xmin = std::min(xmin, p.x());
    ymin = std::min(ymin, p.y());
    xmax = std::max(xmax, p.x());
    ymax = std::max(ymax, p.y());
  }
  void Add(const Box& o) {
    xmin = std::min(xmin, o.xmin);
    ymin = std::min(ymin, o.ymin);
    xmax = std::max(xmax, o.xmax);
    ymax = std::max(ymax, o.ymax);
  }
  // The box widened by d on every side.
  Box Widened(double d) const { return {xmin - d, ymin - d, xmax + d, ymax + d}; }
  ZBR_PT Center() const { return ZBR_PT((xmin + xmax) / 2.0, (ymin + ymax) / 2.0); }
  bool Contains(const ZBR_PT& p) const { return xmin <= p.x() && p.x() <= xmax && ymin <= p.y() && p.y() <= ymax; }
};

// Closed boxes: touching counts. The tests are joined without branches because they sit in loops whose outcome is irregular.
inline bool Overlap(const Box& a, const Box& b) {
  return (a.xmin <= b.xmax) & (b.xmin <= a.xmax) & (a.ymin <= b.ymax) & (b.ymin <= a.ymax);
}

inline Box BoxOfSegment(const ZBR_PT& p, const ZBR_PT& q) {
  return {std::min(p.x(), q.x()), std::min(p.y(), q.y()), std::max(p.x(), q.x()), std::max(p.y(), q.y())};
}

}  // namespace zbr
