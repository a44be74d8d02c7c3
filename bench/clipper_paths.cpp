// Workloads as the integer paths of Clipper 6.4.

#include "clipper_paths.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace bench {

std::vector<Ring> RingsOf(const Region& region) {
  std::vector<Ring> rings;
  for (const Polygon& polygon : region) {
    rings.push_back(polygon.outer);
    rings.insert(rings.end(), polygon.holes.begin(), polygon.holes.end());
  }
  return rings;
}

double LargestCoordinate(const std::vector<Ring>& rings) {
  double largest = 0.0;
  for (const Ring& ring : rings) {
    for (const ZBR_PT& p : ring) largest = std::max({largest, std::abs(p.x()), std::abs(p.y())});
  }
  return largest;
}

double ScaleFor(double largest, double finest) {
  double scale = finest;
  while (largest * scale > 0x3fffffff) scale *= 0.5;
  return scale;
}

ClipperLib::Path Scaled(const Ring& ring, double scale) {
  ClipperLib::Path path;
  path.reserve(ring.size());
  for (const ZBR_PT& p : ring) path.emplace_back(std::llround(p.x() * scale), std::llround(p.y() * scale));
  return path;
}

ClipperLib::Paths Scaled(const std::vector<Ring>& rings, double scale) {
  ClipperLib::Paths paths;
  paths.reserve(rings.size());
  for (const Ring& ring : rings) paths.push_back(Scaled(ring, scale));
  return paths;
}

Summary Summarise(const ClipperLib::Paths& paths, double scale) {
  Summary summary;
  for (const ClipperLib::Path& path : paths) summary.Add(ClipperLib::Area(path) / (scale * scale));
  return summary;
}

Summary Summarise(const ClipperLib::PolyTree& tree, double scale) {
  Summary summary;
  for (const ClipperLib::PolyNode* node = tree.GetFirst(); node != nullptr; node = node->GetNext()) {
    summary.Add(ClipperLib::Area(node->Contour) / (scale * scale));
  }
  return summary;
}

}  // namespace bench
