// Narrow boxes around the leaves of an index, each along the chord of its edges.
//
// Leaves of curves that run beside each other, such as concentric circles, overlap by the hundred in boxes parallel to the axes,
// though no edge comes near another.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include <zbr/planar.h>

#include "core/constants.h"
#include "core/planar_inline.h"
#include "loops/edge_index.h"

namespace zbr {

class LeafStrips {
 public:
  bool IsEmpty() const { return strips_.empty(); }

  void Fill(const EdgeIndex& index) {
    const std::uint32_t count = index.tree().Count(0);
    strips_.reserve(count);
    for (std::uint32_t leaf = 0; leaf < count; ++leaf) strips_.push_back(StripOf(index, leaf));
  }

  // Whether all of one leaf is surely farther than `distance` from all of the other, seen across one of them.
  bool AreApart(std::uint32_t a, std::uint32_t b, double distance) const {
    const Strip& s = strips_[a];
    const Strip& t = strips_[b];
    const ZBR_PT apart = t.middle - s.middle;
    const double across = std::fabs(Cross(s.along, t.along)), beside = std::fabs(s.along.InnerProduct(t.along));
    const double least = distance + s.rounding + t.rounding;
    return std::fabs(Cross(s.along, apart)) > s.halfWidth + t.halfLength * across + t.halfWidth * beside + least ||
           std::fabs(Cross(t.along, apart)) > t.halfWidth + s.halfLength * across + s.halfWidth * beside + least;
  }

 private:
  // Of the largest coordinate: some fifty roundings. Anything below a thousandth of the distances that matter costs nothing.
  static constexpr double kRounding = 1e-14;

  struct Strip {
    ZBR_PT middle, along{1.0, 0.0};
    double halfLength = 0.0, halfWidth = 0.0;
    double rounding = 0.0;  // of all of this; infinite where lengths are
  };

  static Strip StripOf(const EdgeIndex& index, std::uint32_t leaf) {
    const EdgeIndex::Leaf& at = index.leaf(leaf);
    const IndexedRing& ring = index.rings()[at.ring];
    const ZBR_PT& first = ring.points[ring.Vertex(at.first)];
    const ZBR_PT chord = ring.points[ring.Next(ring.Vertex(index.LastSlot(at) - 1))] - first;
    Strip strip;
    const double length = chord.Length();
    if (length > kMinNormalizeLength) strip.along = chord * (1.0 / length);
    double low[2] = {0.0, 0.0}, high[2] = {0.0, 0.0}, largest = 0.0;
    index.VisitEdges(leaf, [&](const ZBR_PT& /*p*/, const ZBR_PT& q) {
      const ZBR_PT d = q - first;
      const double place[2] = {strip.along.InnerProduct(d), Cross(strip.along, d)};
      for (int k = 0; k < 2; ++k) {
        low[k] = std::min(low[k], place[k]);
        high[k] = std::max(high[k], place[k]);
      }
      largest = std::max({largest, std::fabs(q.x()), std::fabs(q.y())});
    });
    const ZBR_PT normal(-strip.along.y(), strip.along.x());
    strip.middle = first + strip.along * (0.5 * (low[0] + high[0])) + normal * (0.5 * (low[1] + high[1]));
    strip.halfLength = 0.5 * (high[0] - low[0]);
    strip.halfWidth = 0.5 * (high[1] - low[1]);
    strip.rounding = std::isfinite(length) ? kRounding * std::max({largest, std::fabs(first.x()), std::fabs(first.y())})
                                           : std::numeric_limits<double>::infinity();
    return strip;
  }

  std::vector<Strip> strips_;
};

}  // namespace zbr
